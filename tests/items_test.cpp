// Reading, writing and removing values and items, by key path and by root.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VrUInfo/VornaConfig.h"
#include "started_store.h"
#include "store_values.h"

using namespace vrtest;

namespace
{

const std::wstring kSettings = L"Software/HALVIK/VORNA/2026/en-US/Settings";
constexpr VornaConfig::Path kRoot = VornaConfig::SettingsRoot;
constexpr std::size_t kLongestPath = 1022;
constexpr std::size_t kLongestKey = 1021;      // of a path that stands alone
constexpr std::size_t kLongestArgument = 1023; // that a work buffer takes

VornVariant untouched()
{
    return int64Value(-77);
}

bool isUntouched(const VornVariant& value)
{
    return value.type == VornVariant::kVarInt64 && numberIn<std::int64_t>(value) == -77;
}

/// A sub-path that makes a path of `length` characters below the settings root.
std::wstring subPathFor(std::size_t length)
{
    return longPath(length - kSettings.size() - 1);
}

} // namespace

class Items : public StartedStore
{
protected:
    /// Reads by key path: the text found, or the status in brackets.
    static std::wstring read(const std::wstring& key, const std::wstring& name)
    {
        VornVariant value = untouched();
        return outcome(config().getValue(key.c_str(), name.c_str(), value), value);
    }
    /// The same below the settings root.
    static std::wstring readBelowRoot(const std::wstring& name)
    {
        VornVariant value = untouched();
        return outcome(config().getValue(kRoot, name.c_str(), value), value);
    }
    static std::wstring outcome(unsigned int status, const VornVariant& value)
    {
        EXPECT_TRUE(status == 0 || isUntouched(value)) << "a failed read changed its target";
        return status == 0 ? textIn(value) : L"(" + std::to_wstring(status) + L")";
    }
    static void put(const std::wstring& key, const std::string& text = "there") { putText(key, "5$" + text); }
    static void putBelowRoot(const std::wstring& key, const std::string& text = "there")
    {
        put(kSettings + L"/" + key, text);
    }
    static bool isBelowRoot(const std::wstring& key) { return isInStore(kSettings + L"/" + key); }
};

// Reading by key path ---------------------------------------------------------------------------------------

TEST_F(Items, KeyPathFindsTheValueOfItsItem)
{
    put(L"A/B/Name", "deep");
    put(L"A/Name", "above");
    EXPECT_EQ(read(L"A/B", L"Name"), L"deep");
    EXPECT_EQ(read(L"A", L"Name"), L"above");
    EXPECT_EQ(read(L"B", L"Name"), L"(1)");
}

TEST_F(Items, MissingValueIsStatus1AndLeavesTheTarget)
{
    EXPECT_EQ(read(L"A/B", L"Name"), L"(1)");
    put(L"A/B/Name");
    EXPECT_EQ(read(L"A/B", L"name"), L"(1)"); // names have a case
    EXPECT_EQ(read(L"a/B", L"Name"), L"(1)");
}

TEST_F(Items, SeparatorsOfAKeyPathAreNormalised)
{
    put(L"A/B/Name");
    for (const wchar_t* const key :
         {L"A\\B", L"/A/B", L"\\A\\B", L"//\\A/B", L"A/B/", L"A\\B\\", L"A/B//\\/", L"\\/A\\B/\\"})
        EXPECT_EQ(read(key, L"Name"), L"there") << utf8(key);
}

TEST_F(Items, EmptyKeyPathIsTheTopLevelOfTheFile)
{
    put(L"Top");
    for (const wchar_t* const key : {L"", L"/", L"\\", L"/\\/"})
        EXPECT_EQ(read(key, L"Top"), L"there") << utf8(key);
}

TEST_F(Items, KeyPathOfTheWholeRootReachesWhatTheRootHolds)
{
    ASSERT_EQ(config().setValue(kRoot, L"Sub/Name", textValue(L"x")), 0U);
    EXPECT_EQ(read(kSettings + L"/Sub", L"Name"), L"x");
}

TEST_F(Items, NameOfAKeyPathReadIsTakenAsItStands)
{
    put(L"A/B/Name");
    EXPECT_EQ(read(L"A", L"B/Name"), L"there");
    EXPECT_EQ(read(L"A", L"B\\Name"), L"(1)");
}

TEST_F(Items, KeyPathReadWithoutKeyOrNameIsStatus7)
{
    VornVariant value = untouched();
    EXPECT_EQ(config().getValue(nullptr, L"Name", value), 7U);
    EXPECT_EQ(config().getValue(L"A", nullptr, value), 7U);
    EXPECT_TRUE(isUntouched(value));
}

TEST_F(Items, KeyPathReadWithoutASettingsObjectIsStatus7)
{
    closeStore();
    EXPECT_EQ(read(L"A", L"Name"), L"(7)");
}

TEST_F(Items, EmptyNameIsNeverThere)
{
    put(L"A/Name");
    for (const wchar_t* const name : {L"", L"/", L"//"})
        EXPECT_EQ(read(L"A", name), L"(1)");
}

TEST_F(Items, KeyPathOf1021CharactersIsAccepted)
{
    const std::wstring key = longPath(kLongestKey);
    put(key + L"/Name");
    EXPECT_EQ(read(key, L"Name"), L"there");
}

TEST_F(Items, KeyPathOf1022CharactersIsStatus7)
{
    for (const std::size_t length : {kLongestKey + 1, kLongestArgument}) {
        put(longPath(length) + L"/Name");
        EXPECT_EQ(read(longPath(length), L"Name"), L"(7)") << length;
    }
}

TEST_F(Items, BoundOfAKeyPathCountsWhatIsLeftOfIt)
{
    put(longPath(kLongestKey) + L"/Name");
    EXPECT_EQ(read(L"/" + longPath(kLongestKey) + L"\\", L"Name"), L"there");
}

TEST_F(Items, NameOfAKeyPathReadMayHaveAnyLength)
{
    const std::wstring name = wideOf(5000, L'n');
    put(L"A/" + name);
    EXPECT_EQ(read(L"A", name), L"there");
}

TEST_F(Items, CharactersBeyondTheBmpAreNamesLikeOthers)
{
    const std::wstring key = L"\U0001F600/\uFEFFitem";
    ASSERT_EQ(WriteValueToReg(key.c_str(), L"n\U0010FFFF", textValue(L"x")), 0U);
    EXPECT_EQ(read(key, L"n\U0010FFFF"), L"x");
    EXPECT_TRUE(isWritten(key + L"/n\U0010FFFF"));
}

TEST_F(Items, LoneSurrogatesAreNamesLikeOthers)
{
    const std::wstring name = {L'a', static_cast<wchar_t>(0xD83D), L'b', static_cast<wchar_t>(0xDE00)};
    ASSERT_EQ(WriteValueToReg(name.c_str(), name.c_str(), textValue(L"x")), 0U);
    EXPECT_EQ(read(name, name), L"x");
    EXPECT_EQ(read(name, {L'a', static_cast<wchar_t>(0xD83D), L'b'}), L"(1)");
}

TEST_F(Items, NameThatIsNoTextMeetsTheReplacementCharacter)
{
    const std::wstring name = {static_cast<wchar_t>(0x110000), L'n'};
    ASSERT_EQ(WriteValueToReg(L"A", name.c_str(), textValue(L"x")), 0U);
    EXPECT_EQ(read(L"A", L"\uFFFDn"), L"x");
}

TEST_F(Items, LengthOfAKeyPathCountsWideCharacters)
{
    const std::wstring key = wideOf(kLongestKey, L'\x1F600'); // twice as many UTF-16 units
    ASSERT_EQ(WriteValueToReg(key.c_str(), L"Name", textValue(L"x")), 0U);
    EXPECT_EQ(read(key, L"Name"), L"x");
}

// Reading below a root --------------------------------------------------------------------------------------

TEST_F(Items, NameBelowARootMayCarryASubPath)
{
    putBelowRoot(L"Sub/Item/Name");
    putBelowRoot(L"Name", "direct");
    EXPECT_EQ(readBelowRoot(L"Sub\\Item/Name"), L"there");
    EXPECT_EQ(readBelowRoot(L"Name"), L"direct");
}

TEST_F(Items, SeparatorsAroundANameBelowARootAreIgnored)
{
    putBelowRoot(L"Sub/Name");
    putBelowRoot(L"Name", "direct");
    for (const wchar_t* const name : {L"/Sub/Name", L"\\Sub\\Name\\", L"//Sub/Name//", L"Sub//Name", L"Sub\\/Name"})
        EXPECT_EQ(readBelowRoot(name), L"there") << utf8(name);
    EXPECT_EQ(readBelowRoot(L"/Name\\"), L"direct");
}

TEST_F(Items, EachRootHasItsOwnValues)
{
    for (unsigned int number = 0; number <= VornaConfig::UserConfigRoot; ++number)
        ASSERT_EQ(
            config().setValue(static_cast<VornaConfig::Path>(number), L"Mine", int32Value(static_cast<int>(number))),
            0U);
    for (unsigned int number = 0; number <= VornaConfig::UserConfigRoot; ++number) {
        VornVariant value;
        ASSERT_EQ(config().getValue(static_cast<VornaConfig::Path>(number), L"Mine", value), 0U);
        EXPECT_EQ(numberIn<std::uint32_t>(value), number);
    }
}

TEST_F(Items, NullEmptyOrSeparatorsAsNameBelowARootAreNotThere)
{
    putBelowRoot(L"Name");
    VornVariant value = untouched();
    EXPECT_EQ(config().getValue(kRoot, nullptr, value), 1U);
    EXPECT_TRUE(isUntouched(value));
    EXPECT_EQ(readBelowRoot(L""), L"(1)");
    EXPECT_EQ(readBelowRoot(L"/\\"), L"(1)");
}

TEST_F(Items, ReadBelowAnUnknownRootIsStatus7)
{
    VornVariant value = untouched();
    EXPECT_EQ(config().getValue(static_cast<VornaConfig::Path>(9), L"Name", value), 7U);
    EXPECT_TRUE(isUntouched(value));
}

TEST_F(Items, ReadBelowARootWithoutASettingsObjectIsStatus5)
{
    closeStore();
    EXPECT_EQ(readBelowRoot(L"Name"), L"(5)");
    EXPECT_EQ(readBelowRoot(subPathFor(kLongestPath) + L"/n"), L"(7)"); // the path is looked at first
}

TEST_F(Items, SubPathToRead1021CharactersDeepIsAccepted)
{
    const std::wstring sub = subPathFor(kLongestPath - 1);
    putBelowRoot(sub + L"/n");
    EXPECT_EQ(readBelowRoot(sub + L"/n"), L"there");
}

TEST_F(Items, SubPathToRead1022CharactersDeepIsStatus7)
{
    const std::wstring sub = subPathFor(kLongestPath);
    putBelowRoot(sub + L"/n");
    EXPECT_EQ(readBelowRoot(sub + L"/n"), L"(7)");
}

TEST_F(Items, NameBelowARootMayFillItsBuffer)
{
    const std::wstring name = wideOf(kLongestArgument, L'n');
    EXPECT_EQ(readBelowRoot(name), L"(1)");
    ASSERT_EQ(config().setValue(kRoot, name.c_str(), textValue(L"x")), 0U);
    EXPECT_EQ(readBelowRoot(name), L"x");
}

// Writing ---------------------------------------------------------------------------------------------------

TEST_F(Items, SetValueMakesWhatDoesNotExist)
{
    ASSERT_EQ(config().setValue(kRoot, L"Name", int32Value(42)), 0U);
    ASSERT_EQ(config().setValue(kRoot, L"\\Sub\\Item\\Name/", int32Value(43)), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/Name"), QStringLiteral("1$42"));
    EXPECT_EQ(writtenText(kSettings + L"/Sub/Item/Name"), QStringLiteral("1$43"));
}

TEST_F(Items, SetValueReplacesWhatExists)
{
    ASSERT_EQ(config().setValue(kRoot, L"Name", int32Value(42)), 0U);
    ASSERT_EQ(config().setValue(kRoot, L"Name", textValue(L"x")), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/Name"), QStringLiteral("5$x"));
}

TEST_F(Items, SetValueWithoutANameIsStatus5)
{
    EXPECT_EQ(config().setValue(kRoot, nullptr, int32Value(1)), 5U);
    EXPECT_EQ(config().setValue(kRoot, L"", int32Value(1)), 5U);
    EXPECT_EQ(config().setValue(kRoot, L"/\\", int32Value(1)), 5U);
}

TEST_F(Items, SetValueTo1022CharactersDeepIsAccepted)
{
    const std::wstring sub = subPathFor(kLongestPath);
    ASSERT_EQ(config().setValue(kRoot, (sub + L"/n").c_str(), int32Value(1)), 0U);
    EXPECT_TRUE(isBelowRoot(sub + L"/n"));
}

TEST_F(Items, SetValueTo1023CharactersDeepIsStatus7)
{
    const std::wstring sub = subPathFor(kLongestPath + 1);
    EXPECT_EQ(config().setValue(kRoot, (sub + L"/n").c_str(), int32Value(1)), 7U);
    EXPECT_FALSE(isBelowRoot(sub + L"/n"));
}

TEST_F(Items, AddValueBelowARootMakesWhatDoesNotExist)
{
    ASSERT_EQ(config().addValue(kRoot, L"\\Sub/Item/", L"Name", int32Value(42)), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/Sub/Item/Name"), QStringLiteral("1$42"));
}

TEST_F(Items, AddValueWithoutASubPathWritesAtTheRoot)
{
    ASSERT_EQ(config().addValue(kRoot, nullptr, L"First", int32Value(1)), 0U);
    ASSERT_EQ(config().addValue(kRoot, L"", L"Second", int32Value(2)), 0U);
    ASSERT_EQ(config().addValue(kRoot, L"/\\", L"Third", int32Value(3)), 0U);
    for (const wchar_t* const name : {L"First", L"Second", L"Third"})
        EXPECT_TRUE(isBelowRoot(name)) << utf8(name);
}

TEST_F(Items, AddValueBelowARootTakesTheNameAsItStands)
{
    ASSERT_EQ(config().addValue(kRoot, L"Sub", L"A/B", int32Value(1)), 0U);
    ASSERT_EQ(config().addValue(kRoot, L"Sub", L"A\\C", int32Value(1)), 0U);
    EXPECT_TRUE(isBelowRoot(L"Sub/A/B"));
    EXPECT_TRUE(isBelowRoot(L"Sub/A\\C"));
}

TEST_F(Items, AddValueBelowARootWithoutANameIsStatus5)
{
    EXPECT_EQ(config().addValue(kRoot, L"Sub", nullptr, int32Value(1)), 5U);
}

TEST_F(Items, AddValueBelowARootWithAnEmptyNameWritesNothing)
{
    const std::vector<std::string> before = keysInStore();
    EXPECT_EQ(config().addValue(kRoot, L"Sub", L"", int32Value(1)), 0U);
    EXPECT_EQ(keysInStore(), before);
}

TEST_F(Items, AddValueBelowARootWithoutASettingsObjectIsStatus5)
{
    closeStore();
    EXPECT_EQ(config().addValue(kRoot, L"Sub", L"Name", int32Value(1)), 5U);
    EXPECT_EQ(config().setValue(kRoot, L"Name", int32Value(1)), 5U);
}

TEST_F(Items, WriteBelowAnUnknownRootIsStatus7)
{
    const auto unknown = static_cast<VornaConfig::Path>(9);
    EXPECT_EQ(config().addValue(unknown, L"Sub", L"Name", int32Value(1)), 7U);
    EXPECT_EQ(config().setValue(unknown, L"Name", int32Value(1)), 7U);
}

TEST_F(Items, AddValueBelowARootIsBoundBy1022Characters)
{
    EXPECT_EQ(config().addValue(kRoot, subPathFor(kLongestPath).c_str(), L"n", int32Value(1)), 0U);
    EXPECT_TRUE(isBelowRoot(subPathFor(kLongestPath) + L"/n"));
    EXPECT_EQ(config().addValue(kRoot, subPathFor(kLongestPath + 1).c_str(), L"n", int32Value(1)), 7U);
    EXPECT_FALSE(isBelowRoot(subPathFor(kLongestPath + 1) + L"/n"));
}

TEST_F(Items, AddValueByKeyPathOnlyReplaces)
{
    EXPECT_EQ(config().addValue(L"A/B", L"Name", int32Value(1)), 7U);
    EXPECT_FALSE(isInStore(L"A/B/Name"));
    put(L"A/B/Name");
    EXPECT_EQ(config().addValue(L"\\A\\B\\", L"Name", int32Value(1)), 0U);
    EXPECT_EQ(writtenText("A/B/Name"), QStringLiteral("1$1"));
}

TEST_F(Items, AddValueByKeyPathReplacesAtTheTopLevel)
{
    put(L"Top");
    EXPECT_EQ(config().addValue(L"", L"Top", int32Value(1)), 0U);
    EXPECT_EQ(writtenText("Top"), QStringLiteral("1$1"));
}

TEST_F(Items, AddValueByKeyPathWithoutKeyOrNameIsStatus7)
{
    put(L"A/Name");
    EXPECT_EQ(config().addValue(nullptr, L"Name", int32Value(1)), 7U);
    EXPECT_EQ(config().addValue(L"A", nullptr, int32Value(1)), 7U);
    EXPECT_EQ(config().addValue(L"A", L"", int32Value(1)), 7U);
    EXPECT_EQ(config().addValue(L"A", L"/", int32Value(1)), 7U);
}

TEST_F(Items, AddValueByKeyPathWithoutASettingsObjectIsStatus7)
{
    closeStore();
    EXPECT_EQ(config().addValue(L"A", L"Name", int32Value(1)), 7U);
}

TEST_F(Items, AddValueByKeyPathIsBoundBy1021Characters)
{
    for (const std::size_t length : {kLongestKey, kLongestKey + 1})
        put(longPath(length) + L"/Name");
    EXPECT_EQ(config().addValue(longPath(kLongestKey).c_str(), L"Name", int32Value(1)), 0U);
    EXPECT_EQ(config().addValue(longPath(kLongestKey + 1).c_str(), L"Name", int32Value(1)), 7U);
    EXPECT_EQ(writtenText(longPath(kLongestKey) + L"/Name"), QStringLiteral("1$1"));
    EXPECT_EQ(writtenText(longPath(kLongestKey + 1) + L"/Name"), QStringLiteral("5$there"));
}

TEST_F(Items, InvalidValueStandsInTheStoreAndCanBeReplaced)
{
    ASSERT_EQ(config().addValue(kRoot, L"Sub", L"Name", VornVariant()), 0U);
    EXPECT_EQ(readBelowRoot(L"Sub/Name"), L"(1)");
    EXPECT_EQ(config().addValue((kSettings + L"/Sub").c_str(), L"Name", textValue(L"x")), 0U);
    EXPECT_EQ(readBelowRoot(L"Sub/Name"), L"x");
}

TEST_F(Items, NothingIsForcedIntoTheFile)
{
    ASSERT_EQ(config().setValue(kRoot, L"Name", int32Value(42)), 0U);
    const auto file = Installation::here().settingsFile();
    EXPECT_TRUE(textInFile(file, utf8(kSettings) + "/Name").isNull());
    flush();
    EXPECT_EQ(textInFile(file, utf8(kSettings) + "/Name"), QStringLiteral("1$42"));
}

TEST_F(Items, EndOfTheSettingsObjectWritesBack)
{
    ASSERT_EQ(config().setValue(kRoot, L"Name", int32Value(42)), 0U);
    closeStore();
    EXPECT_EQ(textInFile(Installation::here().settingsFile(), utf8(kSettings) + "/Name"), QStringLiteral("1$42"));
}

// Removing values -------------------------------------------------------------------------------------------

TEST_F(Items, RemoveValueByKeyPathRemovesWhatExists)
{
    put(L"A/B/Name");
    put(L"A/B/Other");
    EXPECT_EQ(config().removeValue(L"\\A/B\\", L"Name"), 0U);
    EXPECT_FALSE(isWritten(L"A/B/Name"));
    EXPECT_TRUE(isWritten(L"A/B/Other"));
}

TEST_F(Items, RemoveValueByKeyPathOfAMissingValueIsStatus7)
{
    put(L"A/B/Name");
    EXPECT_EQ(config().removeValue(L"A/B", L"Other"), 7U);
    EXPECT_EQ(config().removeValue(L"A", L"B"), 7U); // an item, no value
    EXPECT_TRUE(isInStore(L"A/B/Name"));
}

TEST_F(Items, RemoveValueByKeyPathWithoutKeyOrNameIsStatus7)
{
    put(L"A/Name");
    EXPECT_EQ(config().removeValue(nullptr, L"Name"), 7U);
    EXPECT_EQ(config().removeValue(L"A", nullptr), 7U);
    EXPECT_EQ(config().removeValue(L"A", L""), 7U);
    EXPECT_EQ(config().removeValue(L"A", L"/"), 7U);
    EXPECT_TRUE(isInStore(L"A/Name"));
}

TEST_F(Items, RemoveValueByKeyPathWithoutASettingsObjectIsStatus7)
{
    closeStore();
    EXPECT_EQ(config().removeValue(L"A", L"Name"), 7U);
}

TEST_F(Items, RemoveValueByKeyPathIsBoundBy1021Characters)
{
    for (const std::size_t length : {kLongestKey, kLongestKey + 1})
        put(longPath(length) + L"/Name");
    EXPECT_EQ(config().removeValue(longPath(kLongestKey).c_str(), L"Name"), 0U);
    EXPECT_EQ(config().removeValue(longPath(kLongestKey + 1).c_str(), L"Name"), 7U);
    EXPECT_TRUE(isInStore(longPath(kLongestKey + 1) + L"/Name"));
}

TEST_F(Items, RemoveValueByKeyPathTakesAnItemOfTheSameNameAlong)
{
    put(L"A/Name", "value");
    put(L"A/Name/Below", "item");
    EXPECT_EQ(config().removeValue(L"A", L"Name"), 0U);
    EXPECT_FALSE(isInStore(L"A/Name/Below")); // the settings library removes a key with what lies below it
}

TEST_F(Items, RemoveValueBelowARootIsStatus0WhetherOrNotItExisted)
{
    putBelowRoot(L"Sub/Name");
    putBelowRoot(L"Sub/Other");
    EXPECT_EQ(config().removeValue(kRoot, L"/Sub\\", L"Name"), 0U);
    EXPECT_EQ(config().removeValue(kRoot, L"Sub", L"Name"), 0U);
    EXPECT_FALSE(isBelowRoot(L"Sub/Name"));
    EXPECT_TRUE(isBelowRoot(L"Sub/Other"));
}

TEST_F(Items, RemoveValueWithoutASubPathRemovesAtTheRoot)
{
    for (const wchar_t* const subkey : {static_cast<const wchar_t*>(nullptr), L"", L"\\/"}) {
        putBelowRoot(L"Name");
        EXPECT_EQ(config().removeValue(kRoot, subkey, L"Name"), 0U);
        EXPECT_FALSE(isBelowRoot(L"Name"));
    }
}

TEST_F(Items, RemoveValueBelowARootWithoutANameRemovesEverythingInTheItem)
{
    for (const wchar_t* const name : {static_cast<const wchar_t*>(nullptr), L""}) {
        putBelowRoot(L"Sub/Name");
        putBelowRoot(L"Sub/Item/Name");
        putBelowRoot(L"Submarine/Name");
        EXPECT_EQ(config().removeValue(kRoot, L"Sub", name), 0U);
        EXPECT_FALSE(isBelowRoot(L"Sub/Name"));
        EXPECT_FALSE(isBelowRoot(L"Sub/Item/Name"));
        EXPECT_TRUE(isBelowRoot(L"Submarine/Name"));
    }
}

TEST_F(Items, RemoveValueBelowAnUnknownRootIsStatus7)
{
    EXPECT_EQ(config().removeValue(static_cast<VornaConfig::Path>(9), L"Sub", L"Name"), 7U);
}

TEST_F(Items, RemoveValueBelowARootWithoutASettingsObjectIsStatus7)
{
    closeStore();
    EXPECT_EQ(config().removeValue(kRoot, L"Sub", L"Name"), 7U);
}

TEST_F(Items, RemoveValueBelowARootIsBoundBy1022Characters)
{
    for (const std::size_t length : {kLongestPath, kLongestPath + 1})
        putBelowRoot(subPathFor(length) + L"/n");
    EXPECT_EQ(config().removeValue(kRoot, subPathFor(kLongestPath).c_str(), L"n"), 0U);
    EXPECT_EQ(config().removeValue(kRoot, subPathFor(kLongestPath + 1).c_str(), L"n"), 7U);
    EXPECT_FALSE(isBelowRoot(subPathFor(kLongestPath) + L"/n"));
    EXPECT_TRUE(isBelowRoot(subPathFor(kLongestPath + 1) + L"/n"));
}

// Items -----------------------------------------------------------------------------------------------------

TEST_F(Items, AddItemMakesNothing)
{
    const std::vector<std::string> before = keysInStore();
    EXPECT_EQ(config().addItem(kRoot, L"\\Sub/Item"), 0U);
    EXPECT_EQ(config().addItem(kRoot, nullptr), 0U);
    EXPECT_EQ(config().addItem(kRoot, L""), 0U);
    EXPECT_EQ(config().addItem(kRoot, L"/\\"), 0U);
    EXPECT_EQ(keysInStore(), before);
}

TEST_F(Items, AddedItemExistsOnlyOnceAValueIsWrittenBelowIt)
{
    ASSERT_EQ(config().addItem(kRoot, L"Sub"), 0U);
    EXPECT_FALSE(config().isItemExist(kRoot, L"Sub"));
    ASSERT_EQ(config().addValue(kRoot, L"Sub", L"Name", int32Value(1)), 0U);
    EXPECT_TRUE(config().isItemExist(kRoot, L"Sub"));
}

TEST_F(Items, AddItemLeavesNoGroupOpen)
{
    ASSERT_EQ(config().addItem(kRoot, L"Sub"), 0U);
    EXPECT_EQ(g_globalSettings->group(), QString());
}

TEST_F(Items, AddItemIsBoundBy1022Characters)
{
    EXPECT_EQ(config().addItem(kRoot, subPathFor(kLongestPath).c_str()), 0U);
    EXPECT_EQ(config().addItem(kRoot, subPathFor(kLongestPath + 1).c_str()), 7U);
}

TEST_F(Items, AddItemWithoutRootOrSettingsObjectIsStatus7)
{
    EXPECT_EQ(config().addItem(static_cast<VornaConfig::Path>(9), L"Sub"), 7U);
    closeStore();
    EXPECT_EQ(config().addItem(kRoot, L"Sub"), 7U);
}

TEST_F(Items, ItemExistsByAValueAtAnyDepth)
{
    putBelowRoot(L"Sub/Child/Grandchild/Name");
    EXPECT_TRUE(config().isItemExist(kRoot, L"Sub"));
    EXPECT_TRUE(config().isItemExist(kRoot, L"Sub/Child"));
    EXPECT_TRUE(config().isItemExist(kRoot, L"Sub\\Child\\Grandchild"));
    EXPECT_FALSE(config().isItemExist(kRoot, L"Sub/Child/Grandchild/Name")); // a value
    EXPECT_FALSE(config().isItemExist(kRoot, L"Su"));
}

TEST_F(Items, ItemWithoutASubPathIsTheRoot)
{
    EXPECT_FALSE(config().isItemExist(kRoot, nullptr));
    putBelowRoot(L"Sub/Name");
    EXPECT_TRUE(config().isItemExist(kRoot, nullptr));
    EXPECT_TRUE(config().isItemExist(kRoot, L""));
    EXPECT_TRUE(config().isItemExist(kRoot, L"/"));
}

TEST_F(Items, OneLeadingSeparatorOfAnAskedItemIsSkipped)
{
    putBelowRoot(L"Sub/Name");
    EXPECT_TRUE(config().isItemExist(kRoot, L"/Sub"));
    EXPECT_TRUE(config().isItemExist(kRoot, L"\\Sub"));
}

TEST_F(Items, ItemOfAnUnknownRootDoesNotExist)
{
    EXPECT_FALSE(config().isItemExist(static_cast<VornaConfig::Path>(9), nullptr));
}

TEST_F(Items, ItemDoesNotExistWithoutASettingsObject)
{
    putBelowRoot(L"Sub/Name");
    closeStore();
    EXPECT_FALSE(config().isItemExist(kRoot, L"Sub"));
}

TEST_F(Items, ItemOf1022CharactersDoesNotExist)
{
    for (const std::size_t length : {kLongestPath - 1, kLongestPath})
        putBelowRoot(subPathFor(length) + L"/n");
    EXPECT_TRUE(config().isItemExist(kRoot, subPathFor(kLongestPath - 1).c_str()));
    EXPECT_FALSE(config().isItemExist(kRoot, subPathFor(kLongestPath).c_str()));
}

TEST_F(Items, BoundOfAnAskedItemCountsItsLeadingSeparator)
{
    for (const std::size_t length : {kLongestPath - 2, kLongestPath - 1})
        putBelowRoot(subPathFor(length) + L"/n");
    EXPECT_TRUE(config().isItemExist(kRoot, (L"/" + subPathFor(kLongestPath - 2)).c_str()));
    EXPECT_FALSE(config().isItemExist(kRoot, (L"/" + subPathFor(kLongestPath - 1)).c_str()));
}

TEST_F(Items, AskedItemMayBeLongerThanAnyBuffer)
{
    EXPECT_FALSE(config().isItemExist(kRoot, wideOf(1024).c_str()));
    EXPECT_FALSE(config().isItemExist(kRoot, wideOf(100000).c_str()));
}

TEST_F(Items, RemoveItemByKeyPathRemovesEverythingBelow)
{
    put(L"A/B/Name");
    put(L"A/B/C/D/Name");
    put(L"A/Name");
    put(L"A/Bee/Name");
    EXPECT_EQ(config().removeItem(L"\\A/", L"B"), 0U);
    flush();
    EXPECT_FALSE(isWritten(L"A/B/Name"));
    EXPECT_FALSE(isWritten(L"A/B/C/D/Name"));
    EXPECT_TRUE(isWritten(L"A/Name"));
    EXPECT_TRUE(isWritten(L"A/Bee/Name"));
}

TEST_F(Items, RemoveItemByKeyPathOfNothingIsStatus7)
{
    put(L"A/Name");
    EXPECT_EQ(config().removeItem(L"A", L"B"), 7U);
    EXPECT_EQ(config().removeItem(L"A", L"B/C"), 7U);
    ASSERT_EQ(config().removeItem(L"A", L""), 0U);
    EXPECT_EQ(config().removeItem(L"A", L""), 7U);
}

TEST_F(Items, RemoveItemOfOnlySubItemsOrOnlyValuesIsStatus0)
{
    put(L"A/Values/Name");
    put(L"A/Items/Child/Name");
    EXPECT_EQ(config().removeItem(L"A", L"Values"), 0U);
    EXPECT_EQ(config().removeItem(L"A", L"Items"), 0U);
    EXPECT_FALSE(isInStore(L"A/Values/Name"));
    EXPECT_FALSE(isInStore(L"A/Items/Child/Name"));
}

TEST_F(Items, RemoveItemWithAnEmptySubkeyRemovesTheKeyItself)
{
    put(L"A/B/Name");
    put(L"A/C/Name");
    EXPECT_EQ(config().removeItem(L"A/B", L""), 0U);
    EXPECT_FALSE(isInStore(L"A/B/Name"));
    EXPECT_TRUE(isInStore(L"A/C/Name"));
}

TEST_F(Items, RemoveItemDoesNotNormaliseTheSubkey)
{
    put(L"A/B/C/Name");
    EXPECT_EQ(config().removeItem(L"A", L"B\\C"), 7U);
    EXPECT_TRUE(isInStore(L"A/B/C/Name"));
    EXPECT_EQ(config().removeItem(L"A", L"B/C"), 0U);
    EXPECT_FALSE(isInStore(L"A/B/C/Name"));
}

TEST_F(Items, RemoveItemWithAnEmptyKeyIsStatus7AndRemovesNothing)
{
    put(L"A/Name");
    for (const wchar_t* const key : {L"", L"/", L"\\", L"/\\/"}) {
        EXPECT_EQ(config().removeItem(key, L"A"), 7U);
        EXPECT_EQ(config().removeItem(key, L""), 7U);
    }
    EXPECT_TRUE(isInStore(L"A/Name"));
}

TEST_F(Items, RemoveItemByKeyPathWithoutKeySubkeyOrSettingsObjectIsStatus7)
{
    EXPECT_EQ(config().removeItem(static_cast<const wchar_t*>(nullptr), L"B"), 7U);
    EXPECT_EQ(config().removeItem(L"A", nullptr), 7U);
    closeStore();
    EXPECT_EQ(config().removeItem(L"A", L"B"), 7U);
}

TEST_F(Items, RemoveItemByKeyPathIsBoundBy1022CharactersWithTheRawSubkey)
{
    const std::wstring atBound = longPath(kLongestPath - 2);
    put(L"A/" + atBound + L"/Name");
    put(L"A/" + atBound + L"p/Name");
    EXPECT_EQ(config().removeItem(L"/A/", (atBound + L"p").c_str()), 7U);
    EXPECT_EQ(config().removeItem(L"/A/", atBound.c_str()), 0U);
    EXPECT_FALSE(isInStore(L"A/" + atBound + L"/Name"));
    EXPECT_TRUE(isInStore(L"A/" + atBound + L"p/Name"));
}

TEST_F(Items, SeparatorsOfTheRawSubkeyCount)
{
    const std::wstring sub = longPath(kLongestPath - 2);
    put(L"A/" + sub + L"/Name");
    EXPECT_EQ(config().removeItem(L"A", (sub + L"/").c_str()), 7U);
    EXPECT_EQ(config().removeItem(L"A", wideOf(100000).c_str()), 7U);
}

TEST_F(Items, RemoveItemByKeyPathTakesAValueOfTheSameNameAlong)
{
    put(L"A/B", "value");
    EXPECT_EQ(config().removeItem(L"A", L"B"), 7U); // nothing below it
    EXPECT_FALSE(isInStore(L"A/B"));                // and yet it is gone
}

TEST_F(Items, RemoveItemBelowARootRemovesEverythingBelow)
{
    putBelowRoot(L"Sub/Item/Name");
    putBelowRoot(L"Sub/Item/Deep/Name");
    putBelowRoot(L"Sub/Name");
    EXPECT_EQ(config().removeItem(kRoot, L"\\Sub\\Item/"), 0U);
    EXPECT_FALSE(isWritten(kSettings + L"/Sub/Item/Name"));
    EXPECT_FALSE(isWritten(kSettings + L"/Sub/Item/Deep/Name"));
    EXPECT_TRUE(isWritten(kSettings + L"/Sub/Name"));
}

TEST_F(Items, RemoveItemBelowARootIsStatus0WhateverItFound)
{
    EXPECT_EQ(config().removeItem(kRoot, L"Sub"), 0U);
    EXPECT_EQ(config().removeItem(kRoot, nullptr), 0U);
}

TEST_F(Items, RemoveItemWithoutASubPathRemovesTheWholeRoot)
{
    for (const wchar_t* const subkey : {static_cast<const wchar_t*>(nullptr), L""}) {
        putBelowRoot(L"Name");
        putBelowRoot(L"Sub/Name");
        ASSERT_EQ(config().setValue(VornaConfig::ApplicationsRoot, L"Name", int32Value(1)), 0U);
        EXPECT_EQ(config().removeItem(kRoot, subkey), 0U);
        EXPECT_FALSE(isBelowRoot(L"Name"));
        EXPECT_FALSE(isBelowRoot(L"Sub/Name"));
        EXPECT_TRUE(isInStore(L"Software/HALVIK/VORNA/2026/en-US/Applications/Name"));
    }
}

TEST_F(Items, RemoveItemOfSeparatorsOnlyIsStatus1)
{
    putBelowRoot(L"Name");
    for (const wchar_t* const subkey : {L"/", L"\\", L"/\\/"})
        EXPECT_EQ(config().removeItem(kRoot, subkey), 1U);
    EXPECT_TRUE(isBelowRoot(L"Name"));
}

TEST_F(Items, RemoveItemBelowAnUnknownRootIsStatus7)
{
    EXPECT_EQ(config().removeItem(static_cast<VornaConfig::Path>(9), L"Sub"), 7U);
    EXPECT_EQ(config().removeItem(static_cast<VornaConfig::Path>(9), nullptr), 7U);
}

TEST_F(Items, RemoveItemBelowARootIsBoundBy1022Characters)
{
    for (const std::size_t length : {kLongestPath, kLongestPath + 1})
        putBelowRoot(subPathFor(length) + L"/n");
    EXPECT_EQ(config().removeItem(kRoot, subPathFor(kLongestPath).c_str()), 0U);
    EXPECT_EQ(config().removeItem(kRoot, subPathFor(kLongestPath + 1).c_str()), 7U);
    EXPECT_FALSE(isBelowRoot(subPathFor(kLongestPath) + L"/n"));
    EXPECT_TRUE(isBelowRoot(subPathFor(kLongestPath + 1) + L"/n"));
}

TEST_F(Items, RemoveItemOfALongSingleComponentIsBoundLikewise)
{
    const std::size_t room = kLongestPath - kSettings.size() - 1;
    EXPECT_EQ(config().removeItem(kRoot, wideOf(room).c_str()), 0U);
    EXPECT_EQ(config().removeItem(kRoot, wideOf(room + 1).c_str()), 7U);
}

TEST_F(Items, OperationsLeaveNoGroupOpen)
{
    VornVariant value;
    put(L"A/Name");
    config().getValue(L"A", L"Name", value);
    config().getValue(kRoot, L"Sub/Name", value);
    config().addValue(L"A", L"Name", int32Value(1));
    config().addValue(L"A", L"Other", int32Value(1));
    config().removeValue(L"A", L"Name");
    config().removeValue(L"A", L"Name");
    config().removeValue(kRoot, L"Sub", L"Name");
    config().isItemExist(kRoot, L"Sub");
    config().removeItem(L"A", L"B");
    config().removeItem(kRoot, L"Sub");
    EXPECT_EQ(g_globalSettings->group(), QString());
}

TEST_F(Items, VersionIsTheReleaseOfTheRoots)
{
    EXPECT_STREQ(config().version(), L"2026");
}

// Before the start ------------------------------------------------------------------------------------------

class BeforeTheStart : public testing::Test
{
protected:
    void SetUp() override { vornConfig()->initRegObject(nullptr, nullptr); }
};

TEST_F(BeforeTheStart, KeyPathsWorkOnTheSettingsObjectAlone)
{
    ASSERT_EQ(WriteValueToReg(L"A", L"Name", int32Value(1)), 0U);
    VornVariant value;
    EXPECT_EQ(vornConfig()->getValue(L"A", L"Name", value), 0U);
    EXPECT_EQ(vornConfig()->removeValue(L"A", L"Name"), 0U);
}

TEST_F(BeforeTheStart, RootsAreUnknown)
{
    VornaConfig& config = *vornConfig();
    VornVariant value = untouched();
    EXPECT_EQ(config.getValue(kRoot, L"Name", value), 7U);
    EXPECT_TRUE(isUntouched(value));
    EXPECT_EQ(config.setValue(kRoot, L"Name", value), 7U);
    EXPECT_EQ(config.addValue(kRoot, L"Sub", L"Name", value), 7U);
    EXPECT_EQ(config.removeValue(kRoot, L"Sub", L"Name"), 7U);
    EXPECT_EQ(config.addItem(kRoot, L"Sub"), 7U);
    EXPECT_EQ(config.removeItem(kRoot, nullptr), 7U);
    EXPECT_FALSE(config.isItemExist(kRoot, nullptr));
    EXPECT_TRUE(keysInStore().empty());
}

TEST_F(BeforeTheStart, VersionIsTheDefault)
{
    EXPECT_STREQ(vornConfig()->version(), L"2026");
}

// Arguments that no buffer takes ----------------------------------------------------------------------------

namespace
{

struct BoundedOperation {
    std::function<unsigned int(const wchar_t*)> run;
    unsigned int statusOfLongest; // of an argument that just fits its buffer
};

const std::map<std::string, BoundedOperation>& boundedOperations()
{
    static VornVariant value = int32Value(1);
    static VornaConfig::ItemIterator items;
    static VornaConfig::ValueIterator values;
    VornaConfig* const c = vornConfig();
    static const std::map<std::string, BoundedOperation> operations = {
        {"getValue by key", {[c](const wchar_t* a) { return c->getValue(a, L"n", value); }, 7}},
        {"addValue by key", {[c](const wchar_t* a) { return c->addValue(a, L"n", value); }, 7}},
        {"removeValue by key", {[c](const wchar_t* a) { return c->removeValue(a, L"n"); }, 7}},
        {"removeItem by key", {[c](const wchar_t* a) { return c->removeItem(a, L""); }, 7}},
        {"findItem of items by key", {[c](const wchar_t* a) { return c->findItem(a, items); }, 7}},
        {"findItem of values by key", {[c](const wchar_t* a) { return c->findItem(a, values); }, 7}},
        {"getValue by root", {[c](const wchar_t* a) { return c->getValue(kRoot, a, value); }, 1}},
        {"setValue by root", {[c](const wchar_t* a) { return c->setValue(kRoot, a, value); }, 0}},
        {"addValue by root", {[c](const wchar_t* a) { return c->addValue(kRoot, a, L"n", value); }, 7}},
        {"removeValue by root", {[c](const wchar_t* a) { return c->removeValue(kRoot, a, L"n"); }, 7}},
        {"addItem by root", {[c](const wchar_t* a) { return c->addItem(kRoot, a); }, 7}},
        {"removeItem by root", {[c](const wchar_t* a) { return c->removeItem(kRoot, a); }, 7}},
        {"findItem of items by root", {[c](const wchar_t* a) { return c->findItem(kRoot, a, items); }, 7}},
        {"findItem of values by root", {[c](const wchar_t* a) { return c->findItem(kRoot, a, values); }, 7}},
    };
    return operations;
}

} // namespace

PROBE(RunWithArgumentOfLength)
{
    if (InitVornConfig(nullptr, nullptr, L"en-US", nullptr) != 0)
        return 100;
    const std::wstring argument = wide(arguments.at(2)) + wideOf(std::stoul(arguments.at(1)) - arguments.at(2).size());
    return static_cast<int>(boundedOperations().at(arguments.at(0)).run(argument.c_str()));
}

class TooLongArgument : public testing::Test
{
protected:
    void SetUp() override { Installation::here().installLanguage("en-US"); }
    static ProcessResult run(const std::string& operation, std::size_t length, const std::string& beginning = "x")
    {
        return Installation::here().run("RunWithArgumentOfLength", {operation, std::to_string(length), beginning});
    }
    static void expectEnd(const ProcessResult& result, const std::string& operation)
    {
        EXPECT_EQ(result.signal, SIGABRT) << operation;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << operation << ": " << result.err;
        EXPECT_EQ(result.out, "");
    }
};

TEST_F(TooLongArgument, Of1024CharactersEndsTheProcess)
{
    for (const auto& operation : boundedOperations())
        expectEnd(run(operation.first, kLongestArgument + 1), operation.first);
}

TEST_F(TooLongArgument, Of1023CharactersIsOnlyRefused)
{
    for (const auto& [name, operation] : boundedOperations()) {
        const ProcessResult result = run(name, kLongestArgument);
        EXPECT_EQ(result.exitCode, static_cast<int>(operation.statusOfLongest)) << name << ": " << result.err;
        EXPECT_EQ(result.err, "") << name;
    }
}

TEST_F(TooLongArgument, EndsTheProcessAlsoWhereSeparatorsWouldBeDropped)
{
    expectEnd(run("getValue by key", kLongestArgument + 1, "////////"), "getValue by key");
    expectEnd(run("addItem by root", kLongestArgument + 1, R"(\\\)"), "addItem by root");
}

PROBE(UseAClosedStoreWithALongArgument)
{
    if (InitVornConfig(nullptr, nullptr, L"en-US", nullptr) != 0)
        return 100;
    vornConfig()->uinitRegObject();
    const std::wstring tooLong = wideOf(kLongestArgument + 1);
    return vornConfig()->addItem(kRoot, tooLong.c_str()) == 7 &&
                   vornConfig()->removeValue(kRoot, tooLong.c_str(), L"Name") == 7
               ? 0
               : 1;
}

TEST_F(TooLongArgument, IsNotLookedAtWithoutASettingsObject)
{
    const ProcessResult result = Installation::here().run("UseAClosedStoreWithALongArgument");
    EXPECT_EQ(result.exitCode, 0) << result.err;
}

// Nothing is printed ----------------------------------------------------------------------------------------

namespace
{

/// Counts the answers that are not the expected ones.
class Answers
{
public:
    void expect(unsigned int expected, unsigned int answer) { m_wrong += answer == expected ? 0 : 1; }
    int wrong() const { return m_wrong; }

private:
    int m_wrong = 0;
};

void useByKey(const wchar_t* key, const wchar_t* name, Answers& answers)
{
    VornVariant value = int32Value(1);
    answers.expect(1, vornConfig()->getValue(key, name, value));
    answers.expect(7, vornConfig()->addValue(key, name, value));
    answers.expect(7, vornConfig()->removeValue(key, name));
    answers.expect(0, WriteValueToReg(key, name, value));
}

void useByRoot(const wchar_t* name, Answers& answers)
{
    VornVariant value = int32Value(1);
    answers.expect(1, vornConfig()->getValue(kRoot, name, value));
    answers.expect(5, vornConfig()->setValue(kRoot, name, value));
    answers.expect(0, vornConfig()->addValue(kRoot, name, name, value));
    answers.expect(0, vornConfig()->addItem(kRoot, name));
    answers.expect(0, vornConfig()->isItemExist(kRoot, name) ? 1 : 0);
    answers.expect(0, vornConfig()->removeValue(kRoot, name, name));
    answers.expect(7, vornConfig()->removeItem(name, name));
}

void useByIterator(const wchar_t* name, Answers& answers)
{
    VornVariant value = int32Value(1);
    VornaConfig::ItemIterator items;
    answers.expect(0, vornConfig()->findItem(name, items));
    answers.expect(1, vornConfig()->getValue(items, name, value));
    answers.expect(0, vornConfig()->setValue(items, name, value));
    VornaConfig::ValueIterator values;
    answers.expect(1, vornConfig()->findItem(kRoot, name, values));
}

} // namespace

PROBE(UseEmptyNames)
{
    if (InitVornConfig(nullptr, nullptr, L"en-US", nullptr) != 0)
        return 100;
    const std::vector<std::string> before = keysInStore();
    Answers answers;
    for (const wchar_t* const name : {L"", L"/", L"//"}) {
        for (const wchar_t* const key : {L"", L"/", L"Item", L"Item/"})
            useByKey(key, name, answers);
        useByRoot(name, answers);
        useByIterator(name, answers);
    }
    std::printf("%s", keysInStore() == before ? "" : "something was written");
    return answers.wrong();
}

TEST(EmptyNames, ReadAsAbsentWriteNothingAndPrintNothing)
{
    Installation::here().installLanguage("en-US");
    const ProcessResult result = Installation::here().run("UseEmptyNames");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
}

// The next process ------------------------------------------------------------------------------------------

PROBE(WriteEveryType)
{
    if (InitVornConfig(nullptr, nullptr, L"en-US", nullptr) != 0)
        return 100;
    VornaConfig& config = *vornConfig();
    return static_cast<int>(config.setValue(kRoot, L"Sub/Int32", int32Value(-42)) +
                            config.setValue(kRoot, L"Sub/Int64", int64Value(-42000000000)) +
                            config.setValue(kRoot, L"Sub/Double", doubleValue(0.1)) +
                            config.setValue(kRoot, L"Sub/Binary", binaryValue({1, 2, 3})) +
                            config.setValue(kRoot, L"Sub/Text", textValue(L"\u00FC\U0001F600")));
}

TEST(NextProcess, ReadsEveryTypeThatTheLastOneWrote)
{
    Installation::here().installLanguage("en-US");
    ASSERT_EQ(Installation::here().run("WriteEveryType").exitCode, 0);
    ASSERT_EQ(start(), 0U);
    const auto read = [](const wchar_t* name) {
        VornVariant value;
        EXPECT_EQ(vornConfig()->getValue(kRoot, name, value), 0U);
        return value;
    };
    EXPECT_EQ(numberIn<std::int32_t>(read(L"Sub/Int32")), -42);
    EXPECT_EQ(numberIn<std::int64_t>(read(L"Sub/Int64")), -42000000000);
    EXPECT_EQ(numberIn<double>(read(L"Sub/Double")), 0.1);
    EXPECT_EQ(payloadOf(read(L"Sub/Binary")), (Bytes{1, 2, 3, 0, 0, 0, 0}));
    EXPECT_EQ(textIn(read(L"Sub/Text")), L"\u00FC\U0001F600");
}
