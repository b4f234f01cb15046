#include "osbase_support.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <thread>

namespace
{

namespace fs = std::filesystem;
using vrosbase::testing::EnvGuard;
using vrosbase::testing::GuardedBuffer;
using vrosbase::testing::runWithoutPrivileges;
using vrosbase::testing::TempDir;
using Names = std::vector<std::wstring>;

struct Made {
    LSTATUS status;
    DWORD disposition;
};

Made make(HKEY parent, LPCWSTR path)
{
    HKEY key = nullptr;
    DWORD disposition = 0;
    const LSTATUS status = RegCreateKeyExW(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, &disposition);
    if (status == 0) {
        EXPECT_EQ(RegCloseKey(key), 0);
    }
    return {status, disposition};
}

LSTATUS tryOpen(HKEY parent, LPCWSTR path)
{
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExW(parent, path, 0, KEY_READ, &key);
    EXPECT_EQ(status == 0, key != nullptr);
    if (status == 0) {
        EXPECT_EQ(RegCloseKey(key), 0);
    }
    return status;
}

Names children(HKEY key)
{
    Names names;
    for (DWORD index = 0;; ++index) {
        GuardedBuffer buffer(256);
        DWORD length = 256;
        const LSTATUS status = RegEnumKeyExW(key, index, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (status != 0) {
            EXPECT_EQ(status, 259);
            return names;
        }
        EXPECT_EQ(buffer.text().size(), length);
        names.push_back(buffer.text());
    }
}

class RegistryTest : public ::testing::Test
{
protected:
    [[nodiscard]] std::string onDisk(const std::string& path) const
    {
        return m_dir.at("VrOsBase/Registry/HKEY_CURRENT_USER/" + path);
    }

    const TempDir m_dir;
    const EnvGuard m_data{"XDG_DATA_HOME", m_dir.path().c_str()};
};

TEST_F(RegistryTest, KeyIsADirectoryInTheUsersData)
{
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"Software\\Maker/App").status, 0);
    EXPECT_TRUE(fs::is_directory(onDisk("Software/Maker/App")));
    EXPECT_EQ(make(HKEY_LOCAL_MACHINE, L"x").status, 0);
    EXPECT_TRUE(fs::is_directory(m_dir.at("VrOsBase/Registry/HKEY_LOCAL_MACHINE/x")));
    EXPECT_FALSE(fs::exists(onDisk("x")));
}

TEST_F(RegistryTest, DispositionTellsWhetherTheKeyIsNew)
{
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a\\b").disposition, REG_CREATED_NEW_KEY);
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a\\b").disposition, REG_OPENED_EXISTING_KEY);
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a").disposition, REG_OPENED_EXISTING_KEY);
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a\\c").disposition, REG_CREATED_NEW_KEY);
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"").disposition, REG_OPENED_EXISTING_KEY);
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, L"d", 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr), 0);
    EXPECT_EQ(RegCloseKey(key), 0);
}

TEST_F(RegistryTest, OpenFindsOnlyWhatIsThere)
{
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, L"a"), 2);
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a\\b").status, 0);
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, L"a"), 0);
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, L"a\\b"), 0);
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, L"a\\b\\c"), 2);
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, L"b"), 2);
    EXPECT_FALSE(fs::exists(onDisk("b")));
}

TEST_F(RegistryTest, NullOrEmptyPathOpensTheKeyItself)
{
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, nullptr), 0);
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, L""), 0);
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, L"\\"), 0);
}

TEST_F(RegistryTest, KeysAreOpenedBelowOpenKeys)
{
    HKEY outer = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, L"a", 0, nullptr, 0, KEY_WRITE, nullptr, &outer, nullptr), 0);
    EXPECT_EQ(make(outer, L"b\\c").status, 0);
    EXPECT_TRUE(fs::is_directory(onDisk("a/b/c")));
    EXPECT_EQ(tryOpen(outer, L"b"), 0);
    EXPECT_EQ(tryOpen(outer, L"a"), 2);
    EXPECT_EQ(RegDeleteKeyW(outer, L"b\\c"), 0);
    EXPECT_FALSE(fs::exists(onDisk("a/b/c")));
    EXPECT_EQ(RegCloseKey(outer), 0);
}

TEST_F(RegistryTest, NamesAreFoundWithoutRegardToCase)
{
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"Software\\\xC4pfel").status, 0);
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, L"SOFTWARE\\\xE4PFEL"), 0);
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"software\\\xE4pfel").disposition, REG_OPENED_EXISTING_KEY);
    EXPECT_EQ(children(HKEY_CURRENT_USER), Names({L"Software"}));
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, L"sOFTWARE\\\xE4pFEL"), 0);
    EXPECT_FALSE(fs::exists(onDisk("Software/\xC3\x84pfel")));
}

TEST_F(RegistryTest, NamesThatNoFileNameCanHoldAreKept)
{
    for (LPCWSTR name : {L"..", L".", L"50%", L"a\nb", L"%2E"}) {
        EXPECT_EQ(make(HKEY_CURRENT_USER, name).disposition, REG_CREATED_NEW_KEY) << name;
        EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, name), 0) << name;
    }
    EXPECT_EQ(children(HKEY_CURRENT_USER), Names({L"%2E", L".", L"..", L"50%", L"a\nb"}));
    EXPECT_TRUE(fs::is_directory(onDisk("%2E%2E")));
}

TEST_F(RegistryTest, NameOf255BytesFitsAndALongerOneIsError87)
{
    const std::wstring longest(255, L'k');
    EXPECT_EQ(make(HKEY_CURRENT_USER, longest.c_str()).status, 0);
    EXPECT_EQ(children(HKEY_CURRENT_USER), Names({longest}));
    const std::wstring tooLong(256, L'k');
    EXPECT_EQ(make(HKEY_CURRENT_USER, tooLong.c_str()).status, 87);
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, tooLong.c_str()), 87);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, tooLong.c_str()), 87);
}

TEST_F(RegistryTest, ChildrenComeInTheOrderOfTheirNames)
{
    for (LPCWSTR name : {L"b", L"C", L"a", L"\x1F600", L"\xE4"}) {
        EXPECT_EQ(make(HKEY_CURRENT_USER, name).status, 0);
    }
    EXPECT_EQ(children(HKEY_CURRENT_USER), Names({L"C", L"a", L"b", L"\xE4", L"\x1F600"}));
}

TEST_F(RegistryTest, FilesAreNoKeys)
{
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a").status, 0);
    m_dir.addFile("VrOsBase/Registry/HKEY_CURRENT_USER/file");
    EXPECT_EQ(children(HKEY_CURRENT_USER), Names({L"a"}));
    EXPECT_EQ(tryOpen(HKEY_CURRENT_USER, L"file"), 2);
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"file").status, 5);
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"file\\x").status, 5);
}

TEST_F(RegistryTest, EmptyRegistryHasNoChildren)
{
    EXPECT_EQ(children(HKEY_CURRENT_USER), Names());
    EXPECT_EQ(children(HKEY_LOCAL_MACHINE), Names());
    EXPECT_FALSE(fs::exists(m_dir.at("VrOsBase")));
}

TEST_F(RegistryTest, NameThatDoesNotFitChangesNothing)
{
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"abcd").status, 0);
    for (const DWORD capacity : {0U, 1U, 4U}) {
        GuardedBuffer buffer(capacity);
        DWORD length = capacity;
        EXPECT_EQ(RegEnumKeyExW(HKEY_CURRENT_USER, 0, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr), 234);
        EXPECT_EQ(length, capacity);
        EXPECT_TRUE(buffer.isUntouched());
    }
    GuardedBuffer buffer(5);
    DWORD length = 5;
    EXPECT_EQ(RegEnumKeyExW(HKEY_CURRENT_USER, 0, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(length, 4U);
    EXPECT_EQ(buffer.text(), L"abcd");
    EXPECT_TRUE(buffer.guardsHold());
}

TEST_F(RegistryTest, ClassOfAKeyIsEmpty)
{
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a").status, 0);
    GuardedBuffer name(8);
    GuardedBuffer keyClass(4);
    DWORD nameLength = 8;
    DWORD classLength = 4;
    EXPECT_EQ(
        RegEnumKeyExW(HKEY_CURRENT_USER, 0, name.data(), &nameLength, nullptr, keyClass.data(), &classLength, nullptr),
        0);
    EXPECT_EQ(classLength, 0U);
    EXPECT_EQ(keyClass.text(), L"");
    GuardedBuffer none(0);
    classLength = 0;
    nameLength = 8;
    EXPECT_EQ(
        RegEnumKeyExW(HKEY_CURRENT_USER, 0, name.data(), &nameLength, nullptr, none.data(), &classLength, nullptr), 0);
    EXPECT_TRUE(none.isUntouched());
}

TEST_F(RegistryTest, KeyWithChildrenIsNotDeleted)
{
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a\\b").status, 0);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, L"a"), 5);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, L"a\\b"), 0);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, L"a"), 0);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, L"a"), 2);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, L"a\\b"), 2);
}

TEST_F(RegistryTest, EmptyPathDeletesTheKeyItselfUnlessItIsPredefined)
{
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, L"a", 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr), 0);
    EXPECT_EQ(RegDeleteKeyW(key, L""), 0);
    EXPECT_FALSE(fs::exists(onDisk("a")));
    EXPECT_EQ(RegDeleteKeyW(key, L""), 2);
    EXPECT_EQ(children(key), Names());
    EXPECT_EQ(tryOpen(key, L"x"), 2);
    EXPECT_EQ(RegCloseKey(key), 0);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, L""), 5);
    EXPECT_TRUE(fs::exists(onDisk("")));
}

TEST_F(RegistryTest, BadHandlesAreError6)
{
    HKEY closed = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"", 0, KEY_READ, &closed), 0);
    EXPECT_EQ(RegCloseKey(closed), 0);
    int memory = 0;
    for (HKEY key : {closed, static_cast<HKEY>(nullptr), INVALID_HANDLE_VALUE, static_cast<HKEY>(&memory)}) {
        GuardedBuffer buffer(8);
        DWORD length = 8;
        EXPECT_EQ(RegCloseKey(key), 6);
        EXPECT_EQ(tryOpen(key, L"a"), 6);
        EXPECT_EQ(make(key, L"a").status, 6);
        EXPECT_EQ(RegDeleteKeyW(key, L"a"), 6);
        EXPECT_EQ(RegEnumKeyExW(key, 0, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr), 6);
    }
}

TEST_F(RegistryTest, NullArgumentsAreError87)
{
    HKEY key = nullptr;
    GuardedBuffer buffer(8);
    DWORD length = 8;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, nullptr, 0, nullptr, 0, 0, nullptr, &key, nullptr), 87);
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, L"a", 0, nullptr, 0, 0, nullptr, nullptr, nullptr), 87);
    EXPECT_FALSE(fs::exists(onDisk("a")));
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"a", 0, 0, nullptr), 87);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, nullptr), 87);
    EXPECT_EQ(RegEnumKeyExW(HKEY_CURRENT_USER, 0, nullptr, &length, nullptr, nullptr, nullptr, nullptr), 87);
    EXPECT_EQ(RegEnumKeyExW(HKEY_CURRENT_USER, 0, buffer.data(), nullptr, nullptr, nullptr, nullptr, nullptr), 87);
    EXPECT_EQ(RegEnumKeyExW(HKEY_CURRENT_USER, 0, buffer.data(), &length, &length, nullptr, nullptr, nullptr), 87);
    EXPECT_EQ(key, nullptr);
}

TEST_F(RegistryTest, PredefinedKeysStayOpen)
{
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), 0);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), 0);
    EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), 0);
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a").status, 0);
}

TEST_F(RegistryTest, RegistryWithoutRightsIsError5)
{
    EXPECT_EQ(make(HKEY_CURRENT_USER, L"a\\b").status, 0);
    ASSERT_EQ(::chmod(onDisk("a").c_str(), 0000), 0);
    EXPECT_EQ(runWithoutPrivileges([] {
                  const bool isRefused =
                      tryOpen(HKEY_CURRENT_USER, L"a\\b") == 5 && make(HKEY_CURRENT_USER, L"a\\c").status == 5 &&
                      make(HKEY_CURRENT_USER, L"d").status == 5 && RegDeleteKeyW(HKEY_CURRENT_USER, L"a") == 5;
                  return isRefused ? 0 : 1;
              }),
              0);
    EXPECT_TRUE(fs::exists(onDisk("a")));
}

TEST_F(RegistryTest, ThreadsMakeOneKeyOfANameInSeveralCases)
{
    std::vector<std::thread> threads;
    std::vector<DWORD> dispositions(4, 0);
    const wchar_t* const names[] = {L"name", L"NAME", L"Name", L"nAmE"};
    for (std::size_t i = 0; i < dispositions.size(); ++i) {
        threads.emplace_back([&, i] { dispositions[i] = make(HKEY_CURRENT_USER, names[i]).disposition; });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::count(dispositions.begin(), dispositions.end(), REG_CREATED_NEW_KEY), 1);
    EXPECT_EQ(children(HKEY_CURRENT_USER).size(), 1U);
}

} // namespace
