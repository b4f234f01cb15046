// Recursive deletion: an item of the settings tree, and a key of the platform's registry.
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QString>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/VornaConfig.h"
#include "started_store.h"
#include "store_values.h"

namespace fs = std::filesystem;
using namespace vrtest;

// Items of the settings tree --------------------------------------------------------------------------------

class DeleteItem : public testing::Test
{
protected:
    void SetUp() override
    {
        vornConfig()->initRegObject(nullptr, nullptr);
        ASSERT_NE(g_globalSettings, nullptr);
    }
    static void put(const std::wstring& key) { putText(key, "5$x"); }
    static bool remove(const std::wstring& key) { return RegDeleteKeyAndAllSubkeys(QString::fromStdWString(key)); }
};

TEST_F(DeleteItem, EmptyKeyIsFalseAndDeletesNothing)
{
    put(L"A/Name");
    EXPECT_FALSE(remove(L""));
    EXPECT_FALSE(RegDeleteKeyAndAllSubkeys(QString()));
    EXPECT_TRUE(isInStore(L"A/Name"));
}

TEST_F(DeleteItem, WithoutASettingsObjectIsFalse)
{
    vornConfig()->uinitRegObject();
    EXPECT_FALSE(remove(L"A"));
}

TEST_F(DeleteItem, MissingItemIsFalse)
{
    put(L"A/Name");
    EXPECT_FALSE(remove(L"B"));
    EXPECT_FALSE(remove(L"A/B"));
    EXPECT_EQ(keysInStore(), std::vector<std::string>{"A/Name"});
}

TEST_F(DeleteItem, ItemWithAValueIsTrue)
{
    put(L"A/Name");
    EXPECT_TRUE(remove(L"A"));
    EXPECT_FALSE(isWritten(L"A/Name"));
}

TEST_F(DeleteItem, ItemWithOnlySubItemsIsTrue)
{
    put(L"A/B/C/Name");
    EXPECT_TRUE(remove(L"A/B"));
    EXPECT_FALSE(isWritten(L"A/B/C/Name"));
}

TEST_F(DeleteItem, EverythingBelowGoesAndNothingElse)
{
    for (const wchar_t* const key : {L"A/B/1", L"A/B/2", L"A/B/C/1", L"A/B/C/D/E/F/1", L"A/B/X Y/1"})
        put(key);
    for (const wchar_t* const key : {L"A/1", L"A/Bee/1", L"B/1", L"A/b/1", L"1"})
        put(key);
    EXPECT_TRUE(remove(L"A/B"));
    flush();
    EXPECT_EQ(keysInFile(Installation::here().settingsFile()),
              (std::vector<std::string>{"1", "A/1", "A/Bee/1", "A/b/1", "B/1"}));
}

TEST_F(DeleteItem, SecondTimeIsFalse)
{
    put(L"A/B/Name");
    EXPECT_TRUE(remove(L"A"));
    EXPECT_FALSE(remove(L"A"));
}

TEST_F(DeleteItem, WhatWasDeletedInOneProcessIsGoneFromTheFileOfTheLast)
{
    Installation::here().writeSetting("A/B/Name", "5$x");
    Installation::here().writeSetting("A/Other", "5$x");
    g_globalSettings->sync();
    EXPECT_TRUE(remove(L"A/B"));
    flush();
    EXPECT_EQ(keysInFile(Installation::here().settingsFile()), std::vector<std::string>{"A/Other"});
}

TEST_F(DeleteItem, KeyIsRelativeToTheOpenGroup)
{
    put(L"Open/A/Name");
    put(L"A/Name");
    g_globalSettings->beginGroup(QStringLiteral("Open"));
    EXPECT_TRUE(remove(L"A"));
    EXPECT_EQ(g_globalSettings->group(), QStringLiteral("Open"));
    g_globalSettings->endGroup();
    EXPECT_FALSE(isInStore(L"Open/A/Name"));
    EXPECT_TRUE(isInStore(L"A/Name"));
}

TEST_F(DeleteItem, ValueOfTheItemsNameGoesEvenThoughNothingIsBelow)
{
    put(L"A/B");
    EXPECT_FALSE(remove(L"A/B"));
    EXPECT_FALSE(isInStore(L"A/B"));
}

TEST_F(DeleteItem, ValueOfTheItemsNameGoesWithTheItem)
{
    put(L"A/B");
    put(L"A/B/Name");
    EXPECT_TRUE(remove(L"A/B"));
    EXPECT_TRUE(keysInStore().empty());
}

TEST_F(DeleteItem, BackslashIsPartOfAName)
{
    put(L"A/B/Name");
    put(L"A\\B/Name");
    EXPECT_TRUE(remove(L"A\\B"));
    EXPECT_EQ(keysInStore(), std::vector<std::string>{"A/B/Name"});
}

TEST_F(DeleteItem, KeyOfSeparatorsIsTheOpenGroupItself)
{
    put(L"Open/A/Name");
    put(L"Other/Name");
    g_globalSettings->beginGroup(QStringLiteral("Open"));
    EXPECT_TRUE(remove(L"/"));
    g_globalSettings->endGroup();
    EXPECT_EQ(keysInStore(), std::vector<std::string>{"Other/Name"});
}

TEST_F(DeleteItem, ItemOfAThousandValuesAndAThousandSubItemsGoesWhole)
{
    for (int i = 0; i < 1000; ++i) {
        put(L"A/B/" + std::to_wstring(i));
        put(L"A/B/Item" + std::to_wstring(i) + L"/Name");
    }
    EXPECT_TRUE(remove(L"A/B"));
    EXPECT_TRUE(keysInStore().empty());
}

TEST_F(DeleteItem, TreeOfAHundredLevelsGoesWhole)
{
    std::wstring path = L"A";
    for (int i = 0; i < 100; ++i)
        path += L"/deeper";
    put(path + L"/Name");
    EXPECT_TRUE(remove(L"A"));
    EXPECT_TRUE(keysInStore().empty());
}

// Keys of the platform's registry ---------------------------------------------------------------------------

namespace
{

/// Makes a key with its parents.
void makeKey(HKEY root, const std::wstring& path)
{
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &key, nullptr), 0);
    EXPECT_EQ(RegCloseKey(key), 0);
}

bool hasKey(HKEY root, const std::wstring& path)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != 0)
        return false;
    RegCloseKey(key);
    return true;
}

bool deleteKey(HKEY root, std::wstring path)
{
    const std::wstring before = path;
    const bool isDeleted = RegDeleteKeyAndAllSubkeys(root, path.data());
    EXPECT_EQ(path, before) << "the caller's text was changed";
    return isDeleted;
}

/// A chain of names below each other, `length` characters in all.
std::wstring chain(std::size_t length)
{
    return longPath(length, L'\\');
}

/// Makes a key below `path` when that itself is too long for one text: through a key in between.
void makeDeepKey(HKEY root, const std::wstring& path, const std::wstring& below)
{
    HKEY between = nullptr;
    ASSERT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &between, nullptr), 0);
    makeKey(between, below);
    EXPECT_EQ(RegCloseKey(between), 0);
}

fs::path registryDirectory()
{
    return Installation::here().home() / ".local/share/VrOsBase/Registry/HKEY_CURRENT_USER";
}

constexpr std::size_t kLongestSubkey = 2046; // with the backslash that is put behind it

} // namespace

class DeleteKey : public testing::Test
{
};

TEST_F(DeleteKey, EmptyOrNullSubkeyIsFalseAndDeletesNothing)
{
    makeKey(HKEY_CURRENT_USER, L"A");
    EXPECT_FALSE(deleteKey(HKEY_CURRENT_USER, L""));
    EXPECT_FALSE(RegDeleteKeyAndAllSubkeys(HKEY_CURRENT_USER, nullptr));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, L"A"));
}

TEST_F(DeleteKey, KeyWithoutChildrenGoes)
{
    makeKey(HKEY_CURRENT_USER, L"A\\B");
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, L"A\\B"));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, L"A\\B"));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, L"A"));
}

TEST_F(DeleteKey, MissingKeyIsTrue)
{
    makeKey(HKEY_CURRENT_USER, L"A");
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, L"B"));
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, L"A\\B\\C"));
    EXPECT_TRUE(deleteKey(HKEY_LOCAL_MACHINE, L"A"));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, L"A"));
}

TEST_F(DeleteKey, EverythingBelowGoesAndNothingElse)
{
    for (const wchar_t* const path : {L"A\\B\\1", L"A\\B\\2\\3", L"A\\B\\2\\4\\5", L"A\\B\\x y", L"A\\C", L"B"})
        makeKey(HKEY_CURRENT_USER, path);
    makeKey(HKEY_LOCAL_MACHINE, L"A\\B\\1");
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, L"A\\B"));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, L"A\\B"));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, L"A\\C"));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, L"B"));
    EXPECT_TRUE(hasKey(HKEY_LOCAL_MACHINE, L"A\\B\\1"));
    EXPECT_FALSE(fs::exists(registryDirectory() / "A/B"));
}

TEST_F(DeleteKey, TrailingBackslashIsFine)
{
    makeKey(HKEY_CURRENT_USER, L"A\\B\\C");
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, L"A\\B\\"));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, L"A\\B"));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, L"A"));
}

TEST_F(DeleteKey, SlashIsASeparatorToo)
{
    makeKey(HKEY_CURRENT_USER, L"A\\B\\C");
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, L"A/B"));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, L"A\\B"));
}

TEST_F(DeleteKey, BelowAKeyThatTheCallerOpened)
{
    makeKey(HKEY_CURRENT_USER, L"A\\B\\C");
    HKEY open = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"A", 0, KEY_READ, &open), 0);
    EXPECT_TRUE(deleteKey(open, L"B"));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, L"A\\B"));
    EXPECT_EQ(RegCloseKey(open), 0);
}

TEST_F(DeleteKey, WhatIsNoKeyIsFalse)
{
    HKEY open = nullptr;
    makeKey(HKEY_CURRENT_USER, L"A\\B");
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"A", 0, KEY_READ, &open), 0);
    ASSERT_EQ(RegCloseKey(open), 0);
    EXPECT_FALSE(deleteKey(open, L"B"));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, L"A\\B"));
}

TEST_F(DeleteKey, ManyChildrenGo)
{
    for (int i = 0; i < 300; ++i)
        makeKey(HKEY_CURRENT_USER, L"A\\" + std::to_wstring(i));
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, L"A"));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, L"A"));
}

TEST_F(DeleteKey, NamesBeyondTheBmpAndEncodedNamesGo)
{
    makeKey(HKEY_CURRENT_USER, L"A\\\U0001F600\\.\\50%");
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, L"A"));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, L"A"));
}

TEST_F(DeleteKey, HandlesAreGivenBack)
{
    // Every key opened on the way is closed again: thousands of deletions leave no descriptor and no handle behind.
    const auto descriptors = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = descriptors();
    for (int i = 0; i < 500; ++i) {
        makeKey(HKEY_CURRENT_USER, L"A\\B\\C");
        ASSERT_TRUE(deleteKey(HKEY_CURRENT_USER, L"A"));
    }
    EXPECT_EQ(descriptors(), before);
}

TEST_F(DeleteKey, TreeThatCannotBeDeletedWholeIsFalseAndStaysAsFarAsItGot)
{
    makeKey(HKEY_CURRENT_USER, L"A\\1");
    makeKey(HKEY_CURRENT_USER, L"A\\2\\3");
    makeKey(HKEY_CURRENT_USER, L"A\\4");
    std::ofstream(registryDirectory() / "A/2/3/a file in the way") << "x";
    EXPECT_FALSE(deleteKey(HKEY_CURRENT_USER, L"A"));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, L"A\\1"));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, L"A\\2\\3"));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, L"A\\4"));
}

TEST_F(DeleteKey, SubkeyOf2046CharactersIsAccepted)
{
    const std::wstring path = chain(kLongestSubkey);
    makeKey(HKEY_CURRENT_USER, path);
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, path));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, path));
}

TEST_F(DeleteKey, SubkeyThatPassesTheBufferIsFalse)
{
    const std::wstring path = chain(kLongestSubkey + 2);
    makeKey(HKEY_CURRENT_USER, path);
    EXPECT_FALSE(deleteKey(HKEY_CURRENT_USER, path));
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, path));
}

TEST_F(DeleteKey, SubkeyThatFillsTheBufferIsDeletedWhereItHasNoChildren)
{
    const std::wstring path = chain(kLongestSubkey + 1);
    makeKey(HKEY_CURRENT_USER, path);
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, path));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, path));
}

TEST_F(DeleteKey, ChildWhosePathFillsTheBufferGoes)
{
    makeKey(HKEY_CURRENT_USER, chain(kLongestSubkey - 100) + L"\\" + wideOf(100, L'c'));
    EXPECT_TRUE(deleteKey(HKEY_CURRENT_USER, chain(kLongestSubkey - 100)));
    EXPECT_FALSE(hasKey(HKEY_CURRENT_USER, chain(kLongestSubkey - 100)));
}

PROBE(DeleteDeepTree)
{
    std::wstring top = wide(arguments.at(0));
    return RegDeleteKeyAndAllSubkeys(HKEY_CURRENT_USER, top.data()) ? 0 : 1;
}

TEST_F(DeleteKey, ChildWhosePathPassesTheBufferEndsTheProcess)
{
    const std::wstring top = chain(1900);
    makeDeepKey(HKEY_CURRENT_USER, top, wideOf(200, L'c'));
    const ProcessResult result = Installation::here().run("DeleteDeepTree", {utf8(top)});
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, top));
}
