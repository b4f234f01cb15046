#include "osbase_support.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

namespace
{

using vrosbase::testing::DirectoryGuard;
using vrosbase::testing::runWithoutPrivileges;
using vrosbase::testing::TempDir;
using Names = std::vector<std::wstring>;

Names listed(const std::wstring& pattern)
{
    Names names;
    WIN32_FIND_DATAW data = {};
    HANDLE handle = FindFirstFileW(pattern.c_str(), &data);
    if (handle == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.emplace_back(data.cFileName);
    } while (FindNextFileW(handle, &data));
    EXPECT_EQ(GetLastError(), 18U);
    EXPECT_EQ(FindClose(handle), TRUE);
    return names;
}

/// The last error of a listing that does not begin.
DWORD refusal(const std::wstring& pattern)
{
    WIN32_FIND_DATAW data = {};
    SetLastError(0);
    EXPECT_EQ(FindFirstFileW(pattern.c_str(), &data), INVALID_HANDLE_VALUE);
    return GetLastError();
}

WIN32_FIND_DATAW only(const std::wstring& path)
{
    WIN32_FIND_DATAW data = {};
    HANDLE handle = FindFirstFileW(path.c_str(), &data);
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindClose(handle), TRUE);
    return data;
}

class FindFileTest : public ::testing::Test
{
protected:
    const TempDir m_dir;
};

TEST_F(FindFileTest, PatternListsWhatMatchesSortedByName)
{
    for (const char* name : {"b.txt", "a.txt", "B.txt", "c.ini", "readme", "a2.txt"}) {
        m_dir.addFile(name);
    }
    EXPECT_EQ(listed(m_dir.wideAt("*.txt")), Names({L"B.txt", L"a.txt", L"a2.txt", L"b.txt"}));
    EXPECT_EQ(listed(m_dir.wideAt("?.txt")), Names({L"B.txt", L"a.txt", L"b.txt"}));
    EXPECT_EQ(listed(m_dir.wideAt("*.TXT")), Names());
    EXPECT_EQ(listed(m_dir.wideAt("r*e")), Names({L"readme"}));
}

TEST_F(FindFileTest, StarAndStarDotStarListEverything)
{
    m_dir.addFile("readme");
    m_dir.addFile(".hidden");
    const Names all = {L".", L"..", L".hidden", L"readme"};
    EXPECT_EQ(listed(m_dir.wideAt("*")), all);
    EXPECT_EQ(listed(m_dir.wideAt("*.*")), all);
}

TEST_F(FindFileTest, NamesAreSortedByCodePoint)
{
    // In UTF-8 and in code points U+FFFD is before U+1F600; bytes that are no UTF-8 stand between letters and
    // it.
    m_dir.addFile("\xF0\x9F\x98\x80");
    m_dir.addFile("\xEF\xBF\xBD");
    m_dir.addFile("\xFF");
    const Names expected = {std::wstring(1, wchar_t{0xDCFF}), L"\xFFFD", L"\x1F600"};
    EXPECT_EQ(listed(m_dir.wideAt("?")).size(), 4U);
    Names names = listed(m_dir.wideAt("?"));
    names.erase(names.begin()); // "."
    EXPECT_EQ(names, expected);
}

TEST_F(FindFileTest, NameWithoutWildcardIsFoundExactly)
{
    m_dir.addFile("Name");
    EXPECT_EQ(listed(m_dir.wideAt("Name")), Names({L"Name"}));
    EXPECT_EQ(refusal(m_dir.wideAt("name")), 2U);
    EXPECT_EQ(listed(m_dir.wideAt(".")), Names({L"."}));
    EXPECT_EQ(listed(m_dir.wideAt("..")), Names({L".."}));
}

TEST_F(FindFileTest, DirectoriesCarryTheirAttribute)
{
    m_dir.addDirectory("d");
    m_dir.addFile("f");
    std::filesystem::create_symlink("d", m_dir.at("toDirectory"));
    std::filesystem::create_symlink("f", m_dir.at("toFile"));
    std::filesystem::create_symlink("none", m_dir.at("toNothing"));
    EXPECT_EQ(only(m_dir.wideAt("d")).dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(only(m_dir.wideAt("toDirector?")).dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(only(m_dir.wideAt("f")).dwFileAttributes, FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(only(m_dir.wideAt("toF*")).dwFileAttributes, FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(only(m_dir.wideAt("toNothing")).dwFileAttributes, FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FindFileTest, SizeHasTwoHalves)
{
    m_dir.addFile("small", "12345");
    m_dir.addFile("large");
    std::filesystem::resize_file(m_dir.at("large"), (std::uintmax_t{3} << 32U) + 7);
    EXPECT_EQ(only(m_dir.wideAt("small")).nFileSizeLow, 5U);
    EXPECT_EQ(only(m_dir.wideAt("small")).nFileSizeHigh, 0U);
    EXPECT_EQ(only(m_dir.wideAt("large")).nFileSizeLow, 7U);
    EXPECT_EQ(only(m_dir.wideAt("large")).nFileSizeHigh, 3U);
}

TEST_F(FindFileTest, LongestNameFits)
{
    const std::string name(255, 'x');
    m_dir.addFile(name);
    EXPECT_EQ(listed(m_dir.wideAt("x*")), Names({std::wstring(255, L'x')}));
}

TEST_F(FindFileTest, ListingStaysAsItBegan)
{
    m_dir.addFile("a");
    m_dir.addFile("b");
    WIN32_FIND_DATAW data = {};
    HANDLE handle = FindFirstFileW(m_dir.wideAt("?").c_str(), &data);
    std::filesystem::remove(m_dir.at("b"));
    m_dir.addFile("c");
    EXPECT_STREQ(data.cFileName, L".");
    EXPECT_EQ(FindNextFileW(handle, &data), TRUE);
    EXPECT_STREQ(data.cFileName, L"a");
    EXPECT_EQ(FindNextFileW(handle, &data), TRUE);
    EXPECT_STREQ(data.cFileName, L"b");
    EXPECT_EQ(FindNextFileW(handle, &data), FALSE);
    EXPECT_EQ(FindClose(handle), TRUE);
}

TEST_F(FindFileTest, NoMatchIsError2)
{
    EXPECT_EQ(refusal(m_dir.wideAt("*.none")), 2U);
    EXPECT_EQ(refusal(m_dir.wideAt("none")), 2U);
}

TEST_F(FindFileTest, NoLastComponentIsError2)
{
    EXPECT_EQ(refusal(m_dir.wideAt("")), 2U);
    EXPECT_EQ(refusal(L"/"), 2U);
    EXPECT_EQ(refusal(L""), 2U);
    EXPECT_EQ(refusal(m_dir.wideAt("none/")), 2U);
}

TEST_F(FindFileTest, MissingDirectoryIsError3)
{
    m_dir.addFile("f");
    for (const char* path : {"none/*", "none/x", "f/*", "f/x"}) {
        EXPECT_EQ(refusal(m_dir.wideAt(path)), 3U) << path;
    }
}

TEST_F(FindFileTest, WildcardsOfADirectoryStandForThemselves)
{
    m_dir.addDirectory("ab");
    m_dir.addFile("ab/f");
    EXPECT_EQ(refusal(m_dir.wideAt("a*/f")), 3U);
    m_dir.addDirectory("a*");
    m_dir.addFile("a*/g");
    EXPECT_EQ(listed(m_dir.wideAt("a*/g")), Names({L"g"}));
}

TEST_F(FindFileTest, UnreadableDirectoryIsError5)
{
    m_dir.addDirectory("d");
    m_dir.addFile("d/f");
    ASSERT_EQ(::chmod(m_dir.at("d").c_str(), 0000), 0);
    const auto refusalOf = [this](const char* pattern) {
        return runWithoutPrivileges([&] { return static_cast<int>(refusal(m_dir.wideAt(pattern))); });
    };
    EXPECT_EQ(refusalOf("d/*"), 5);
    EXPECT_EQ(refusalOf("d/f"), 5);
}

TEST_F(FindFileTest, NameIsFoundInADirectoryThatOnlyMayBeEntered)
{
    m_dir.addDirectory("d");
    m_dir.addFile("d/f");
    ASSERT_EQ(::chmod(m_dir.at("d").c_str(), 0111), 0);
    EXPECT_EQ(runWithoutPrivileges([&] { return static_cast<int>(listed(m_dir.wideAt("d/f")).size()); }), 1);
}

TEST_F(FindFileTest, NullArgumentsAreError87)
{
    WIN32_FIND_DATAW data = {};
    EXPECT_EQ(FindFirstFileW(nullptr, &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), 87U);
    SetLastError(0);
    EXPECT_EQ(FindFirstFileW(m_dir.wideAt("*").c_str(), nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), 87U);
    HANDLE handle = FindFirstFileW(m_dir.wideAt("*").c_str(), &data);
    SetLastError(0);
    EXPECT_EQ(FindNextFileW(handle, nullptr), FALSE);
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_EQ(FindNextFileW(handle, &data), TRUE);
    EXPECT_STREQ(data.cFileName, L"..");
    EXPECT_EQ(FindClose(handle), TRUE);
}

TEST_F(FindFileTest, BadHandlesAreError6)
{
    WIN32_FIND_DATAW data = {};
    HANDLE closed = FindFirstFileW(m_dir.wideAt("*").c_str(), &data);
    EXPECT_EQ(FindClose(closed), TRUE);
    for (HANDLE handle : {closed, static_cast<HANDLE>(nullptr), INVALID_HANDLE_VALUE, static_cast<HANDLE>(&data)}) {
        SetLastError(0);
        EXPECT_EQ(FindNextFileW(handle, &data), FALSE);
        EXPECT_EQ(GetLastError(), 6U);
        SetLastError(0);
        EXPECT_EQ(FindClose(handle), FALSE);
        EXPECT_EQ(GetLastError(), 6U);
    }
}

TEST_F(FindFileTest, RelativePathBeginsInTheCurrentDirectory)
{
    const DirectoryGuard back;
    m_dir.addDirectory("d");
    m_dir.addFile("d/f");
    std::filesystem::current_path(m_dir.path());
    EXPECT_EQ(listed(L"d"), Names({L"d"}));
    EXPECT_EQ(listed(L"d*"), Names({L"d"}));
    EXPECT_EQ(listed(L"d\\f*"), Names({L"f"}));
    EXPECT_EQ(listed(L"/pro?"), Names({L"proc"}));
}

TEST_F(FindFileTest, ThreadsMayShareAListing)
{
    for (int i = 0; i < 50; ++i) {
        m_dir.addFile("f" + std::to_string(i));
    }
    WIN32_FIND_DATAW first = {};
    HANDLE handle = FindFirstFileW(m_dir.wideAt("f*").c_str(), &first);
    std::vector<std::thread> threads;
    std::vector<int> counts(3, 0);
    threads.reserve(counts.size());
    for (int& count : counts) {
        threads.emplace_back([&count, handle] {
            WIN32_FIND_DATAW data = {};
            while (FindNextFileW(handle, &data)) {
                ++count;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counts[0] + counts[1] + counts[2], 49);
    EXPECT_EQ(FindClose(handle), TRUE);
}

} // namespace
