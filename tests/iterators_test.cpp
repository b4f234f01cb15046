// Snapshots of sub-items and values, stepped through one name at a time.
#include <algorithm>
#include <climits>
#include <filesystem>
#include <fstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QSettings>
#include <QtCore/QStringList>

#include "VrUInfo/VornaConfig.h"
#include "started_store.h"
#include "store_values.h"

using namespace vrtest;

/// Looks into iterators, whose fields are not for others.
struct VornaLayout {
    template <typename Iterator>
    static int indexOf(const Iterator& iterator)
    {
        return iterator.m_index;
    }
    template <typename Iterator>
    static int countOf(const Iterator& iterator)
    {
        return iterator.m_count;
    }
    template <typename Iterator>
    static QStringList listOf(const Iterator& iterator)
    {
        return QStringList(*iterator.m_list);
    }
    template <typename Iterator>
    static void loseList(Iterator& iterator)
    {
        delete iterator.m_list;
        iterator.m_list = nullptr;
    }
};

namespace
{

using ItemIterator = VornaConfig::ItemIterator;
using ValueIterator = VornaConfig::ValueIterator;

const std::wstring kSettings = L"Software/HALVIK/VORNA/2026/en-US/Settings";
constexpr VornaConfig::Path kRoot = VornaConfig::SettingsRoot;
constexpr auto kUnknownRoot = static_cast<VornaConfig::Path>(9);
constexpr std::size_t kLongestPath = 1022;

static_assert(!std::is_copy_constructible_v<ItemIterator> && !std::is_copy_assignable_v<ItemIterator>);
static_assert(!std::is_copy_constructible_v<ValueIterator> && !std::is_copy_assignable_v<ValueIterator>);
static_assert(!std::is_polymorphic_v<ItemIterator> && !std::is_polymorphic_v<ValueIterator>);

/// The name at the position, or the status in brackets.
std::wstring nameAt(const ItemIterator& iterator)
{
    GuardedBuffer buffer(kCapacity);
    int length = buffer.capacity();
    const unsigned int status = iterator.name(buffer.data(), length);
    EXPECT_TRUE(buffer.isWhole());
    return status == 0 ? buffer.text() : L"(" + std::to_wstring(status) + L")";
}

std::wstring nameAt(const ValueIterator& iterator)
{
    std::wstring buffer(kCapacity, L'\0'); // cleared, as no terminator is written
    int length = static_cast<int>(kCapacity);
    const unsigned int status = iterator.key(buffer.data(), length);
    return status == 0 ? untilTerminator(buffer) : L"(" + std::to_wstring(status) + L")";
}

/// Every name that a loop sees that uses the position and then steps.
template <typename Iterator>
std::vector<std::wstring> walk(const Iterator& iterator)
{
    std::vector<std::wstring> names;
    do
        names.push_back(nameAt(iterator));
    while (iterator.step() == 0);
    return names;
}

template <typename Iterator>
std::vector<std::wstring> elementsOf(const Iterator& iterator)
{
    std::vector<std::wstring> names;
    for (const QString& name : VornaLayout::listOf(iterator))
        names.push_back(name.toStdWString());
    return names;
}

} // namespace

class Iterators : public StartedStore
{
protected:
    static void put(const std::wstring& key, const std::string& text = "x") { putText(key, "5$" + text); }
    static void putBelowRoot(const std::wstring& key, const std::string& text = "x")
    {
        put(kSettings + L"/" + key, text);
    }
    /// Below the root: items A and B, values V and W.
    static void putTwoOfEach()
    {
        putBelowRoot(L"A/Name", "of A");
        putBelowRoot(L"B/Name", "of B");
        putBelowRoot(L"V", "of V");
        putBelowRoot(L"W", "of W");
    }
    static std::wstring read(const ItemIterator& iterator, const wchar_t* name)
    {
        VornVariant value = int64Value(-77);
        return outcome(config().getValue(iterator, name, value), value);
    }
    static std::wstring read(const ValueIterator& iterator)
    {
        VornVariant value = int64Value(-77);
        return outcome(iterator.value(value), value);
    }
    static std::wstring outcome(unsigned int status, const VornVariant& value)
    {
        if (status == 0)
            return textIn(value);
        EXPECT_EQ(numberIn<std::int64_t>(value), -77) << "a failed read changed its target";
        return L"(" + std::to_wstring(status) + L")";
    }
    template <typename Iterator>
    static void steps(const Iterator& iterator, int count)
    {
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(iterator.step(), 0U);
    }
    template <typename Iterator>
    static void expectFailedWith7(unsigned int status, const Iterator& iterator)
    {
        EXPECT_EQ(status, 7U);
        EXPECT_EQ(VornaLayout::indexOf(iterator), 0);
        EXPECT_EQ(VornaLayout::countOf(iterator), 0);
        EXPECT_EQ(iterator.step(), 4U);
    }
};

template <typename Iterator>
class EachIterator : public Iterators
{
};

using BothIterators = testing::Types<ItemIterator, ValueIterator>;
TYPED_TEST_SUITE(EachIterator, BothIterators, );

// Never filled ----------------------------------------------------------------------------------------------

TYPED_TEST(EachIterator, NewOneIsEmptyAtPositionMinusOne)
{
    const TypeParam iterator;
    EXPECT_EQ(VornaLayout::indexOf(iterator), -1);
    EXPECT_TRUE(elementsOf(iterator).empty());
}

TYPED_TEST(EachIterator, NewOneDoesNotStepAndHasNoName)
{
    const TypeParam iterator;
    EXPECT_EQ(iterator.step(), 4U);
    EXPECT_EQ(iterator.step(), 4U);
    EXPECT_EQ(nameAt(iterator), L"(4)");
    EXPECT_EQ(VornaLayout::indexOf(iterator), -1);
}

TYPED_TEST(EachIterator, FieldsAreListIndexCount)
{
    EXPECT_EQ(sizeof(TypeParam), 16U);
}

TYPED_TEST(EachIterator, WithoutAListHasNoName)
{
    TypeParam iterator;
    VornaLayout::loseList(iterator);
    EXPECT_EQ(nameAt(iterator), L"(4)");
}

TEST_F(Iterators, ValueIteratorWithoutAListReadsAndWritesNothing)
{
    ValueIterator iterator;
    VornaLayout::loseList(iterator);
    EXPECT_EQ(read(iterator), L"(4)");
    EXPECT_EQ(iterator.setValue(int32Value(1)), 4U);
}

TEST_F(Iterators, ItemIteratorWithoutAListReadsAndWritesNothing)
{
    ItemIterator iterator;
    VornaLayout::loseList(iterator);
    EXPECT_EQ(read(iterator, L"Name"), L"(4)");
    EXPECT_EQ(config().setValue(iterator, L"Name", int32Value(1)), 1U);
}

TEST_F(Iterators, NeverFilledOnesReadAndWriteNothing)
{
    ValueIterator values;
    EXPECT_EQ(read(values), L"(4)");
    EXPECT_EQ(values.setValue(int32Value(1)), 4U);
    ItemIterator items;
    EXPECT_EQ(read(items, L"Name"), L"(4)");
    EXPECT_EQ(config().setValue(items, L"Name", int32Value(1)), 4U);
}

// Finding ---------------------------------------------------------------------------------------------------

TEST_F(Iterators, ItemsOfAKeyPathAreFoundInOrderWithTheBasePathBehind)
{
    putTwoOfEach();
    ItemIterator iterator;
    ASSERT_EQ(config().findItem((L"\\" + kSettings + L"//").c_str(), iterator), 0U);
    EXPECT_EQ(VornaLayout::indexOf(iterator), 0);
    EXPECT_EQ(VornaLayout::countOf(iterator), 2);
    EXPECT_EQ(elementsOf(iterator), (std::vector<std::wstring>{L"A", L"B", kSettings}));
}

TEST_F(Iterators, ValuesOfAKeyPathAreFoundInOrderWithTheBasePathBehind)
{
    putTwoOfEach();
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kSettings.c_str(), iterator), 0U);
    EXPECT_EQ(VornaLayout::countOf(iterator), 2);
    EXPECT_EQ(elementsOf(iterator), (std::vector<std::wstring>{L"V", L"W", kSettings}));
}

TEST_F(Iterators, SubPathBelowARootIsNormalisedInTheBasePath)
{
    putBelowRoot(L"Sub/Item/A/Name");
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, L"\\Sub\\Item/", iterator), 0U);
    EXPECT_EQ(elementsOf(iterator), (std::vector<std::wstring>{L"A", kSettings + L"/Sub/Item"}));
}

TYPED_TEST(EachIterator, NullEmptyOrSeparatorsAsSubPathAreTheRoot)
{
    this->putTwoOfEach();
    for (const wchar_t* const subkey : {static_cast<const wchar_t*>(nullptr), L"", L"/\\"}) {
        TypeParam iterator;
        ASSERT_EQ(vornConfig()->findItem(kRoot, subkey, iterator), 0U);
        EXPECT_EQ(elementsOf(iterator).back(), kSettings);
        EXPECT_EQ(VornaLayout::countOf(iterator), 2);
    }
}

TYPED_TEST(EachIterator, EmptyKeyPathIsTheTopLevelOfTheFile)
{
    this->put(L"Top");
    for (const wchar_t* const key : {L"", L"/", L"\\"}) {
        TypeParam iterator;
        ASSERT_EQ(vornConfig()->findItem(key, iterator), 0U);
        EXPECT_EQ(VornaLayout::countOf(iterator), 1);
        EXPECT_EQ(elementsOf(iterator).back(), L"");
    }
}

TYPED_TEST(EachIterator, NothingFoundIsStatus1WithTheBasePathAtThePosition)
{
    TypeParam iterator;
    EXPECT_EQ(vornConfig()->findItem(L"No/Such", iterator), 1U);
    EXPECT_EQ(VornaLayout::countOf(iterator), 0);
    EXPECT_EQ(nameAt(iterator), L"No/Such");
    EXPECT_EQ(iterator.step(), 4U);
    TypeParam belowRoot;
    EXPECT_EQ(vornConfig()->findItem(kRoot, L"Such", belowRoot), 1U);
    EXPECT_EQ(nameAt(belowRoot), kSettings + L"/Such");
}

TEST_F(Iterators, NamesComeAsTheSettingsLibraryListsThem)
{
    for (const wchar_t* const name : {L"b", L"B", L"a", L"10", L"9", L"\u00FC", L"_", L"Z z"}) {
        putBelowRoot(std::wstring(name) + L"/Name");
        putBelowRoot(name);
    }
    g_globalSettings->beginGroup(QString::fromStdWString(kSettings));
    QStringList groups = g_globalSettings->childGroups();
    QStringList keys = g_globalSettings->childKeys();
    g_globalSettings->endGroup();
    ItemIterator items;
    ValueIterator values;
    ASSERT_EQ(config().findItem(kRoot, nullptr, items), 0U);
    ASSERT_EQ(config().findItem(kRoot, nullptr, values), 0U);
    EXPECT_EQ(VornaLayout::listOf(items), groups << QString::fromStdWString(kSettings));
    EXPECT_EQ(VornaLayout::listOf(values), keys << QString::fromStdWString(kSettings));
}

TYPED_TEST(EachIterator, FindLeavesNoGroupOpen)
{
    TypeParam iterator;
    vornConfig()->findItem(L"A/B", iterator);
    vornConfig()->findItem(kRoot, L"Sub", iterator);
    EXPECT_EQ(g_globalSettings->group(), QString());
}

TYPED_TEST(EachIterator, NullKeyIsStatus7)
{
    TypeParam iterator;
    this->expectFailedWith7(vornConfig()->findItem(nullptr, iterator), iterator);
    EXPECT_TRUE(elementsOf(iterator).empty());
}

TYPED_TEST(EachIterator, UnknownRootIsStatus7)
{
    TypeParam iterator;
    this->expectFailedWith7(vornConfig()->findItem(kUnknownRoot, L"Sub", iterator), iterator);
    EXPECT_TRUE(elementsOf(iterator).empty());
}

TYPED_TEST(EachIterator, WithoutASettingsObjectIsStatus7)
{
    this->closeStore();
    TypeParam iterator;
    this->expectFailedWith7(vornConfig()->findItem(L"A", iterator), iterator);
    this->expectFailedWith7(vornConfig()->findItem(kRoot, L"A", iterator), iterator);
    EXPECT_TRUE(elementsOf(iterator).empty());
}

TYPED_TEST(EachIterator, KeyPathIsBoundBy1021Characters)
{
    TypeParam iterator;
    EXPECT_EQ(vornConfig()->findItem(longPath(kLongestPath - 1).c_str(), iterator), 1U);
    EXPECT_EQ(elementsOf(iterator), std::vector<std::wstring>{longPath(kLongestPath - 1)});
    this->expectFailedWith7(vornConfig()->findItem(longPath(kLongestPath).c_str(), iterator), iterator);
    EXPECT_EQ(elementsOf(iterator), std::vector<std::wstring>{longPath(kLongestPath - 1)});
}

TYPED_TEST(EachIterator, SubPathBelowARootIsBoundBy1022Characters)
{
    const std::wstring sub = longPath(kLongestPath - kSettings.size() - 1);
    TypeParam iterator;
    EXPECT_EQ(vornConfig()->findItem(kRoot, sub.c_str(), iterator), 1U);
    EXPECT_EQ(nameAt(iterator).size(), kLongestPath);
    TypeParam other;
    this->expectFailedWith7(vornConfig()->findItem(kRoot, (sub + L"p").c_str(), other), other);
}

TYPED_TEST(EachIterator, FailedFindLeavesTheListAndResetsThePosition)
{
    this->putTwoOfEach();
    TypeParam iterator;
    ASSERT_EQ(vornConfig()->findItem(kRoot, nullptr, iterator), 0U);
    const auto before = elementsOf(iterator);
    ASSERT_EQ(iterator.step(), 0U);
    this->expectFailedWith7(vornConfig()->findItem(nullptr, iterator), iterator);
    EXPECT_EQ(elementsOf(iterator), before);
    EXPECT_EQ(nameAt(iterator), before.front());
}

TYPED_TEST(EachIterator, SecondFindKeepsTheEarlierSnapshotInFront)
{
    this->putTwoOfEach();
    this->putBelowRoot(L"Sub/Value");
    this->putBelowRoot(L"Sub/Item/Value");
    TypeParam iterator;
    ASSERT_EQ(vornConfig()->findItem((kSettings + L"/Sub").c_str(), iterator), 0U);
    std::vector<std::wstring> expected = elementsOf(iterator);
    ASSERT_EQ(expected.size(), 2U);
    // The earlier names count, too: so there is something even where the second item has nothing.
    ASSERT_EQ(vornConfig()->findItem(kRoot, L"A", iterator), 0U);
    if (std::is_same_v<TypeParam, ValueIterator>)
        expected.emplace_back(L"Name");
    expected.push_back(kSettings + L"/A");
    EXPECT_EQ(elementsOf(iterator), expected);
    EXPECT_EQ(VornaLayout::countOf(iterator), static_cast<int>(expected.size()) - 1);
    EXPECT_EQ(walk(iterator), expected);
}

// Stepping --------------------------------------------------------------------------------------------------

TEST_F(Iterators, TwoSubItemsAreSeenAndThenTheBasePathOnce)
{
    putTwoOfEach();
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    EXPECT_EQ(nameAt(iterator), L"A");
    EXPECT_EQ(iterator.step(), 0U);
    EXPECT_EQ(nameAt(iterator), L"B");
    EXPECT_EQ(iterator.step(), 0U);
    EXPECT_EQ(nameAt(iterator), kSettings);
    EXPECT_EQ(iterator.step(), 4U);
    EXPECT_EQ(nameAt(iterator), kSettings);
}

TEST_F(Iterators, TwoValuesAreSeenAndThenTheBasePathOnce)
{
    putTwoOfEach();
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    EXPECT_EQ(walk(iterator), (std::vector<std::wstring>{L"V", L"W", kSettings}));
}

TYPED_TEST(EachIterator, ExhaustedPositionStaysAtTheCount)
{
    this->putTwoOfEach();
    TypeParam iterator;
    ASSERT_EQ(vornConfig()->findItem(kRoot, nullptr, iterator), 0U);
    this->steps(iterator, 2);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(iterator.step(), 4U);
    EXPECT_EQ(VornaLayout::indexOf(iterator), 2);
}

TYPED_TEST(EachIterator, SnapshotDoesNotChangeByItself)
{
    this->putTwoOfEach();
    TypeParam iterator;
    ASSERT_EQ(vornConfig()->findItem(kRoot, nullptr, iterator), 0U);
    const auto before = elementsOf(iterator);
    this->putBelowRoot(L"C/Name");
    this->putBelowRoot(L"X");
    vornConfig()->removeItem(kRoot, L"A");
    vornConfig()->removeValue(kRoot, nullptr, L"V");
    EXPECT_EQ(elementsOf(iterator), before);
    EXPECT_EQ(walk(iterator), before);
}

// Names -----------------------------------------------------------------------------------------------------

class ItemNames : public Iterators
{
protected:
    void SetUp() override
    {
        Iterators::SetUp();
        putBelowRoot(L"Item/Name");
        ASSERT_EQ(config().findItem(kRoot, nullptr, m_iterator), 0U);
    }
    /// Asks with that length; the length afterwards.
    int lengthAfter(int length, unsigned int expectedStatus)
    {
        GuardedBuffer buffer(static_cast<std::size_t>(std::max(length, 0)));
        EXPECT_EQ(m_iterator.name(buffer.data(), length), expectedStatus);
        EXPECT_TRUE(buffer.isUntouchedFrom(expectedStatus == 0 ? 5 : 0));
        EXPECT_TRUE(expectedStatus != 0 || buffer.text() == L"Item");
        return length;
    }

    ItemIterator m_iterator; // at an item of four characters
};

TEST_F(ItemNames, TooShortLengthIsStatus6WithTheLengthNeeded)
{
    for (const int length : {INT_MIN, -1, 0, 1, 3, 4})
        EXPECT_EQ(lengthAfter(length, 6), 5) << length;
}

TEST_F(ItemNames, LengthOfNameAndTerminatorCopies)
{
    EXPECT_EQ(lengthAfter(5, 0), 5);
}

TEST_F(ItemNames, GreaterLengthIsSetToTheLengthNeeded)
{
    EXPECT_EQ(lengthAfter(6, 0), 5);
    EXPECT_EQ(lengthAfter(1024, 0), 5);
}

TEST_F(ItemNames, NullBufferIsStatus6WithTheLengthNeeded)
{
    for (int length : {0, 5, 1024}) {
        EXPECT_EQ(m_iterator.name(nullptr, length), 6U);
        EXPECT_EQ(length, 5);
    }
}

TEST_F(ItemNames, LengthCountsWideCharacters)
{
    putBelowRoot(L"Sub/\U0001F600\U0001F600/Name");
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, L"Sub", iterator), 0U);
    GuardedBuffer buffer(3);
    int length = 3;
    EXPECT_EQ(iterator.name(buffer.data(), length), 0U);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(buffer.text(), L"\U0001F600\U0001F600");
    EXPECT_TRUE(buffer.isWhole());
}

class ValueNames : public Iterators
{
protected:
    void SetUp() override
    {
        Iterators::SetUp();
        putBelowRoot(L"Name");
        ASSERT_EQ(config().findItem(kRoot, nullptr, m_iterator), 0U);
    }

    ValueIterator m_iterator; // at a value of four characters
};

TEST_F(ValueNames, TooShortLengthIsStatus6WithTheLengthNeeded)
{
    for (int length : {INT_MIN, -1, 0, 1, 4}) {
        GuardedBuffer buffer(4);
        EXPECT_EQ(m_iterator.key(buffer.data(), length), 6U);
        EXPECT_EQ(length, 5);
        EXPECT_TRUE(buffer.isUntouchedFrom(0));
    }
}

TEST_F(ValueNames, OneMoreThanTheNameCopiesWithoutATerminator)
{
    for (const int given : {5, 6, 1024}) {
        GuardedBuffer buffer(static_cast<std::size_t>(given));
        int length = given;
        EXPECT_EQ(m_iterator.key(buffer.data(), length), 0U);
        EXPECT_EQ(length, 5);
        EXPECT_EQ(std::wstring(buffer.data(), 4), L"Name");
        EXPECT_TRUE(buffer.isUntouchedFrom(4)) << given;
    }
}

TEST_F(ValueNames, NullBufferIsStatus6WithTheLengthNeeded)
{
    int length = 1024;
    EXPECT_EQ(m_iterator.key(nullptr, length), 6U);
    EXPECT_EQ(length, 5);
}

TEST_F(ValueNames, LengthCountsUtf16UnitsButWideCharactersAreWritten)
{
    putBelowRoot(L"Sub/\U0001F600\U0001F600");
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, L"Sub", iterator), 0U);
    GuardedBuffer buffer(5);
    int length = 4;
    EXPECT_EQ(iterator.key(buffer.data(), length), 6U);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(iterator.key(buffer.data(), length), 0U);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(std::wstring(buffer.data(), 2), L"\U0001F600\U0001F600");
    EXPECT_TRUE(buffer.isUntouchedFrom(2));
}

TEST_F(Iterators, ItemNameLongerThanAnyPathIsGivenToWhoHasRoom)
{
    put(wideOf(2000, L'i') + L"/Name");
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(L"", iterator), 0U);
    while (nameAt(iterator) != L"(6)")
        ASSERT_EQ(iterator.step(), 0U);
    GuardedBuffer buffer(2001);
    int length = 2000;
    EXPECT_EQ(iterator.name(buffer.data(), length), 6U);
    EXPECT_EQ(length, 2001);
    EXPECT_EQ(iterator.name(buffer.data(), length), 0U);
    EXPECT_EQ(buffer.text(), wideOf(2000, L'i'));
    EXPECT_TRUE(buffer.isWhole());
}

TEST_F(Iterators, ItemNameThatDoesNotFit1023CharactersIsStatus6ToReadAndWrite)
{
    for (const std::size_t length : {1023U, 1024U}) {
        closeStore();
        config().initRegObject(nullptr, L"Names");
        g_globalSettings->clear();
        put(wideOf(length, L'i') + L"/Name", "long");
        ItemIterator iterator;
        ASSERT_EQ(config().findItem(L"", iterator), 0U);
        EXPECT_EQ(read(iterator, L"Name"), length == 1023 ? L"long" : L"(6)");
        EXPECT_EQ(config().setValue(iterator, L"Name", int32Value(1)), length == 1023 ? 0U : 6U);
    }
}

TEST_F(Iterators, ValueNameThatDoesNotFit1023UnitsIsStatus6ToReadAndWrite)
{
    for (const std::size_t length : {1023U, 1024U}) {
        const std::wstring item = L"Item" + std::to_wstring(length);
        putBelowRoot(item + L"/" + wideOf(length, L'v'), "long");
        ValueIterator iterator;
        ASSERT_EQ(config().findItem(kRoot, item.c_str(), iterator), 0U);
        EXPECT_EQ(read(iterator), length == 1023 ? L"long" : L"(6)");
        EXPECT_EQ(iterator.setValue(int32Value(1)), length == 1023 ? 0U : 6U);
    }
}

// Values at the position ------------------------------------------------------------------------------------

TEST_F(Iterators, ValueAtEachPositionIsReadNow)
{
    putTwoOfEach();
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    EXPECT_EQ(read(iterator), L"of V");
    putBelowRoot(L"V", "changed");
    EXPECT_EQ(read(iterator), L"changed");
    steps(iterator, 1);
    EXPECT_EQ(read(iterator), L"of W");
}

TEST_F(Iterators, ValueIsThatOfTheNameUpToAZero)
{
    // A name with a zero in it can come from a file that was edited by hand.
    const std::wstring zero = std::wstring(L"Half") + L'\0' + L"Name";
    putBelowRoot(zero, "of the whole name");
    ValueIterator values;
    ASSERT_EQ(config().findItem(kRoot, nullptr, values), 0U);
    VornVariant value;
    EXPECT_EQ(values.value(value), 1U);
    putBelowRoot(L"Half", "of the half");
    ValueIterator both;
    ASSERT_EQ(config().findItem(kRoot, nullptr, both), 0U);
    ASSERT_EQ(both.step(), 0U); // "Half", then the longer one
    EXPECT_EQ(read(both), L"of the half");
}

TEST_F(Iterators, ValueThatIsGoneIsStatus1)
{
    putTwoOfEach();
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    ASSERT_EQ(config().removeValue(kRoot, nullptr, L"V"), 0U);
    EXPECT_EQ(read(iterator), L"(1)");
}

TEST_F(Iterators, InvalidValueAtThePositionIsStatus1)
{
    ASSERT_EQ(config().addValue(kRoot, nullptr, L"V", VornVariant()), 0U);
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    EXPECT_EQ(read(iterator), L"(1)");
}

TEST_F(Iterators, BasePathIsNoValue)
{
    putTwoOfEach();
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    steps(iterator, 2);
    EXPECT_EQ(read(iterator), L"(1)");
}

TEST_F(Iterators, ValueOfTheTopLevelIsStatus5)
{
    put(L"Top");
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(L"", iterator), 0U);
    EXPECT_EQ(nameAt(iterator), L"Top");
    EXPECT_EQ(read(iterator), L"(5)");
}

TEST_F(Iterators, SetValueAtTheTopLevelWritesThere)
{
    put(L"Top");
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(L"", iterator), 0U);
    EXPECT_EQ(iterator.setValue(int32Value(5)), 0U);
    EXPECT_EQ(writtenText("Top"), QStringLiteral("1$5"));
}

TEST_F(Iterators, SetValueWritesTheValueAtThePosition)
{
    putTwoOfEach();
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    steps(iterator, 1);
    EXPECT_EQ(iterator.setValue(int32Value(5)), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/W"), QStringLiteral("1$5"));
    EXPECT_EQ(writtenText(kSettings + L"/V"), QStringLiteral("5$of V"));
}

TEST_F(Iterators, SetValueMakesAValueAgainThatIsGone)
{
    putTwoOfEach();
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    ASSERT_EQ(config().removeValue(kRoot, nullptr, L"V"), 0U);
    EXPECT_EQ(iterator.setValue(int32Value(5)), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/V"), QStringLiteral("1$5"));
}

TEST_F(Iterators, SetValueAtTheBasePathTakesThatAsAName)
{
    putTwoOfEach();
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    steps(iterator, 2);
    EXPECT_EQ(iterator.setValue(int32Value(5)), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/" + kSettings), QStringLiteral("1$5"));
}

TEST_F(Iterators, ValueWithoutASettingsObjectIsStatus5)
{
    putTwoOfEach();
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    closeStore();
    EXPECT_EQ(read(iterator), L"(5)");
    EXPECT_EQ(iterator.setValue(int32Value(5)), 5U);
}

TEST_F(Iterators, ValueOfANameBeyondTheBmpIsReadAndWritten)
{
    putBelowRoot(L"Sub/\U0001F600", "smile");
    ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, L"Sub", iterator), 0U);
    EXPECT_EQ(read(iterator), L"smile");
    EXPECT_EQ(iterator.setValue(int32Value(5)), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/Sub/\U0001F600"), QStringLiteral("1$5"));
}

// Values of the sub-item at the position --------------------------------------------------------------------

TEST_F(Iterators, ValueOfEachSubItemIsRead)
{
    putTwoOfEach();
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    EXPECT_EQ(read(iterator, L"Name"), L"of A");
    EXPECT_EQ(read(iterator, L"Other"), L"(1)");
    steps(iterator, 1);
    EXPECT_EQ(read(iterator, L"Name"), L"of B");
}

TEST_F(Iterators, AtTheBasePathTheEnumeratedItemIsRead)
{
    putTwoOfEach();
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    steps(iterator, 2);
    EXPECT_EQ(read(iterator, L"V"), L"of V");
    EXPECT_EQ(read(iterator, L"Name"), L"(1)");
}

TEST_F(Iterators, AtTheBasePathOfAnItemWithoutSubItemsThatItemIsRead)
{
    putBelowRoot(L"Sub/V", "of Sub");
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, L"Sub", iterator), 1U);
    EXPECT_EQ(read(iterator, L"V"), L"of Sub");
    EXPECT_EQ(config().setValue(iterator, L"W", int32Value(5)), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/Sub/W"), QStringLiteral("1$5"));
}

TEST_F(Iterators, NameToReadIsTakenAsItStands)
{
    putBelowRoot(L"A/Deep/Name", "deep");
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    EXPECT_EQ(read(iterator, L"Deep/Name"), L"deep");
    EXPECT_EQ(read(iterator, L"Deep\\Name"), L"(1)");
    EXPECT_EQ(read(iterator, nullptr), L"(1)");
    EXPECT_EQ(read(iterator, L""), L"(1)");
}

TEST_F(Iterators, SubItemThatIsGoneIsStatus1)
{
    putTwoOfEach();
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    ASSERT_EQ(config().removeItem(kRoot, L"A"), 0U);
    EXPECT_EQ(read(iterator, L"Name"), L"(1)");
}

TEST_F(Iterators, SubItemsOfTheTopLevelAreReadAndWritten)
{
    put(L"Aaa/Name", "top");
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(L"", iterator), 0U);
    ASSERT_EQ(nameAt(iterator), L"Aaa");
    EXPECT_EQ(read(iterator, L"Name"), L"top");
    EXPECT_EQ(config().setValue(iterator, L"Name", int32Value(5)), 0U);
    EXPECT_EQ(writtenText("Aaa/Name"), QStringLiteral("1$5"));
}

TEST_F(Iterators, EmptyBasePathOfTheTopLevelIsStatus5ToRead)
{
    put(L"Top");
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(L"", iterator), 0U);
    while (iterator.step() == 0) {
    }
    EXPECT_EQ(nameAt(iterator), L"");
    EXPECT_EQ(read(iterator, L"Top"), L"(5)");
}

TEST_F(Iterators, EmptyBasePathOfTheTopLevelIsWrittenTo)
{
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(L"", iterator), 0U);
    while (iterator.step() == 0) {
    }
    EXPECT_EQ(config().setValue(iterator, L"Top", int32Value(5)), 0U);
    EXPECT_EQ(writtenText("Top"), QStringLiteral("1$5"));
}

TEST_F(Iterators, SubItemNamedAsItsBasePathIsTakenForIt)
{
    put(L"Same/Name", "outer");
    put(L"Same/Same/Name", "inner");
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(L"Same", iterator), 0U);
    EXPECT_EQ(nameAt(iterator), L"Same");
    EXPECT_EQ(read(iterator, L"Name"), L"outer");
}

TEST_F(Iterators, SetValueWritesIntoTheSubItemAtThePosition)
{
    putTwoOfEach();
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    steps(iterator, 1);
    EXPECT_EQ(config().setValue(iterator, L"New", int32Value(5)), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/B/New"), QStringLiteral("1$5"));
}

TEST_F(Iterators, SetValueAtTheBasePathWritesIntoTheEnumeratedItem)
{
    putTwoOfEach();
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    steps(iterator, 2);
    EXPECT_EQ(config().setValue(iterator, L"New", int32Value(5)), 0U);
    EXPECT_EQ(writtenText(kSettings + L"/New"), QStringLiteral("1$5"));
}

TEST_F(Iterators, SetValueWithoutANameIsStatus5)
{
    putTwoOfEach();
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    EXPECT_EQ(config().setValue(iterator, nullptr, int32Value(5)), 5U);
    EXPECT_EQ(config().setValue(iterator, L"", int32Value(5)), 0U); // writes nothing
    EXPECT_TRUE(writtenText(kSettings + L"/A/").isNull());
}

TEST_F(Iterators, SubItemWithoutASettingsObjectIsStatus5)
{
    putTwoOfEach();
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    closeStore();
    EXPECT_EQ(read(iterator, L"Name"), L"(5)");
    EXPECT_EQ(config().setValue(iterator, L"Name", int32Value(5)), 5U);
}

TEST_F(Iterators, SecondFindReadsEarlierNamesBelowTheLastBasePath)
{
    putTwoOfEach();
    putBelowRoot(L"Sub/A/Name", "of Sub/A");
    ItemIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, L"Sub", iterator), 0U);
    ASSERT_EQ(config().findItem(kRoot, nullptr, iterator), 0U);
    EXPECT_EQ(nameAt(iterator), L"A");
    EXPECT_EQ(read(iterator, L"Name"), L"of A");
}

TEST(HandWrittenTree, IsEnumeratedAsItStandsInTheFile)
{
    const auto file = Installation::here().settingsFile();
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "[General]\nTop=1$1\n[Item]\nLast=1$1\nFirst=1$2\nSub%20Item\\Name=1$3\n[Other]\nName=1$4\n";
    vornConfig()->initRegObject(nullptr, nullptr);
    ItemIterator items;
    ASSERT_EQ(vornConfig()->findItem(L"", items), 0U);
    EXPECT_EQ(elementsOf(items), (std::vector<std::wstring>{L"Item", L"Other", L""}));
    ItemIterator subItems;
    ASSERT_EQ(vornConfig()->findItem(L"Item", subItems), 0U);
    EXPECT_EQ(elementsOf(subItems), (std::vector<std::wstring>{L"Sub Item", L"Item"}));
    ValueIterator values;
    ASSERT_EQ(vornConfig()->findItem(L"Item", values), 0U);
    std::vector<std::wstring> names = elementsOf(values);
    std::sort(names.begin(), names.end() - 1);
    EXPECT_EQ(names, (std::vector<std::wstring>{L"First", L"Last", L"Item"}));
}

PROBE(FindWithTooLongKey)
{
    ItemIterator items;
    ValueIterator values;
    const std::wstring tooLong = wideOf(5000);
    return vornConfig()->findItem(tooLong.c_str(), items) == 7 &&
                   vornConfig()->findItem(tooLong.c_str(), values) == 7 &&
                   vornConfig()->findItem(kRoot, tooLong.c_str(), items) == 7
               ? 0
               : 1;
}

TEST(MissingSettingsObject, IsSeenBeforeTheKeyIsLookedAt)
{
    EXPECT_EQ(Installation::here().run("FindWithTooLongKey").exitCode, 0);
}
