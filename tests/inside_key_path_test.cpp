// Key paths: what is left of an argument, how it is split, joined and bounded.
#include <csignal>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QString>

#include "store/key_path.h"

using namespace vruinfo::internal;
using namespace std::string_view_literals;

namespace
{

constexpr std::size_t kLongestArgument = 1023;
constexpr std::size_t kLongest = 1022;

std::wstring letters(std::size_t count)
{
    return std::wstring(count, L'x');
}

std::wstring textOf(const KeyPath& path)
{
    return path.copy().toStdWString();
}

struct SplitCase {
    const wchar_t* argument;
    std::wstring_view item;
    std::wstring_view trimmedItem;
    std::optional<std::wstring_view> name;
};

} // namespace

TEST(TrimmedPath, LosesTheSeparatorsAtItsEnds)
{
    const std::vector<std::pair<const wchar_t*, std::wstring_view>> cases = {
        {nullptr, L""sv},
        {L"", L""sv},
        {L"/", L""sv},
        {L"\\", L""sv},
        {L"/\\//\\", L""sv},
        {L"A", L"A"sv},
        {L"/A", L"A"sv},
        {L"\\A", L"A"sv},
        {L"A/", L"A"sv},
        {L"A\\", L"A"sv},
        {L"//\\A\\B//C\\/", L"A\\B//C"sv},
        {L" /A/ ", L" /A/ "sv},
    };
    for (const auto& [argument, expected] : cases)
        EXPECT_EQ(trimmedPath(argument), expected);
}

TEST(TrimmedPath, ArgumentOf1023CharactersIsTaken)
{
    EXPECT_EQ(trimmedPath(letters(kLongestArgument).c_str()).size(), kLongestArgument);
    EXPECT_EQ(trimmedPath((L"//" + letters(kLongestArgument - 2)).c_str()).size(), kLongestArgument - 2);
}

TEST(TrimmedPathDeathTest, ArgumentOf1024CharactersEndsTheProcess)
{
    EXPECT_EXIT((void)trimmedPath(letters(kLongestArgument + 1).c_str()), testing::KilledBySignal(SIGABRT), "1024");
    EXPECT_EXIT((void)trimmedPath((L"//" + letters(kLongestArgument - 1)).c_str()), testing::KilledBySignal(SIGABRT),
                "1024");
}

TEST(ValuePath, IsSplitAtItsLastSeparator)
{
    const std::vector<SplitCase> cases = {
        {nullptr, L"", L"", std::nullopt},         {L"", L"", L"", std::nullopt},
        {L"/\\/", L"", L"", std::nullopt},         {L"Name", L"", L"", L"Name"},
        {L"/Name\\", L"", L"", L"Name"},           {L"A/Name", L"A", L"A", L"Name"},
        {L"A\\B/Name", L"A\\B", L"A\\B", L"Name"}, {L"A/B\\Name/", L"A/B", L"A/B", L"Name"},
        {L"A//Name", L"A/", L"A", L"Name"},        {L"A/\\/Name", L"A/\\", L"A", L"Name"},
    };
    for (const SplitCase& expected : cases) {
        const ValuePath split = ValuePath::split(expected.argument);
        EXPECT_EQ(split.item, expected.item);
        EXPECT_EQ(split.trimmedItem(), expected.trimmedItem);
        EXPECT_EQ(split.name, expected.name);
    }
}

TEST(KeyPath, NewOneIsEmpty)
{
    KeyPath path;
    EXPECT_TRUE(path.isEmpty());
    EXPECT_EQ(path.length(), 0U);
    EXPECT_EQ(textOf(path), L"");
    EXPECT_EQ(path.transient(), QString());
}

TEST(KeyPath, BackslashesBecomeSlashes)
{
    EXPECT_EQ(textOf(KeyPath(L"\\A\\B/C\\"sv)), L"/A/B/C/");
}

TEST(KeyPath, LengthCountsWideCharacters)
{
    const KeyPath path(L"a\U0001F600\U0010FFFF"sv);
    EXPECT_EQ(path.length(), 3U);
    EXPECT_EQ(path.copy().size(), 5);
    EXPECT_EQ(textOf(path), L"a\U0001F600\U0010FFFF");
    EXPECT_EQ(path.transient(), path.copy());
}

TEST(KeyPath, TakesItsBufferFullOfCharactersBeyondTheBmp)
{
    const std::wstring text(kLongestArgument, L'\x1F600');
    const KeyPath path(text);
    EXPECT_EQ(path.length(), kLongestArgument);
    EXPECT_EQ(path.transient().toStdWString(), text);
}

TEST(KeyPathDeathTest, TextOf1024CharactersEndsTheProcess)
{
    EXPECT_EXIT(KeyPath{letters(kLongestArgument + 1)}, testing::KilledBySignal(SIGABRT), "1024");
}

TEST(KeyPath, OneCharacterLessThanTheLongestFitsAlone)
{
    EXPECT_TRUE(KeyPath().fitsAlone());
    EXPECT_TRUE(KeyPath(letters(kLongest - 1)).fitsAlone());
    EXPECT_FALSE(KeyPath(letters(kLongest)).fitsAlone());
}

TEST(KeyPath, CopyIsItsOwn)
{
    KeyPath path(L"A\U0001F600"sv);
    const KeyPath copy(path);
    ASSERT_TRUE(path.join(L"B"sv));
    EXPECT_EQ(textOf(copy), L"A\U0001F600");
    EXPECT_EQ(copy.length(), 2U);
    EXPECT_EQ(textOf(path), L"A\U0001F600/B");
}

TEST(KeyPathJoin, PutsASeparatorBetween)
{
    KeyPath path(L"A"sv);
    EXPECT_TRUE(path.join(L"B\\C"sv));
    EXPECT_EQ(textOf(path), L"A/B/C");
    EXPECT_EQ(path.length(), 5U);
}

TEST(KeyPathJoin, LeavesTheBackslashesBeforeIt)
{
    KeyPath path;
    ASSERT_TRUE(path.append(L"A\\B"sv));
    ASSERT_TRUE(path.join(L"C\\D"sv));
    EXPECT_EQ(textOf(path), L"A\\B/C/D");
    path.replaceBackslashes();
    EXPECT_EQ(textOf(path), L"A/B/C/D");
}

TEST(KeyPathJoin, EmptySubPathAppendsNothingAndAlwaysFits)
{
    KeyPath path(letters(kLongestArgument));
    EXPECT_TRUE(path.join({}));
    EXPECT_TRUE(path.join({}, KeyPath::Slack::Two));
    EXPECT_EQ(path.length(), kLongestArgument);
}

TEST(KeyPathJoin, SumWithASlackOfOneMayBe1022)
{
    KeyPath path(letters(1000));
    EXPECT_FALSE(path.join(letters(22)));
    EXPECT_EQ(textOf(path), letters(1000));
    EXPECT_TRUE(path.join(letters(21)));
    EXPECT_EQ(path.length(), kLongest);
}

TEST(KeyPathJoin, SumWithASlackOfTwoMayBe1022)
{
    KeyPath path(letters(1000));
    EXPECT_FALSE(path.join(letters(21), KeyPath::Slack::Two));
    EXPECT_EQ(textOf(path), letters(1000));
    EXPECT_TRUE(path.join(letters(20), KeyPath::Slack::Two));
    EXPECT_EQ(path.length(), kLongest - 1);
}

TEST(KeyPathAppend, FillsTheBufferAndNoMore)
{
    KeyPath path(letters(1000));
    EXPECT_FALSE(path.append(letters(24)));
    EXPECT_EQ(textOf(path), letters(1000));
    EXPECT_TRUE(path.append(letters(23)));
    EXPECT_FALSE(path.append(letters(1)));
    EXPECT_TRUE(path.append({}));
    EXPECT_EQ(path.length(), kLongestArgument);
}

TEST(KeyPathAppend, ComponentWithItsSeparatorFillsTheBufferAndNoMore)
{
    KeyPath path(letters(1000));
    EXPECT_FALSE(path.appendComponent(letters(23)));
    EXPECT_EQ(textOf(path), letters(1000));
    EXPECT_TRUE(path.appendComponent(letters(22)));
    EXPECT_EQ(path.length(), kLongestArgument);
    EXPECT_FALSE(path.appendComponent({}));
    EXPECT_EQ(textOf(path), letters(1000) + L"/" + letters(22));
}

TEST(KeyPathAppend, TakesTheTextAsItStands)
{
    KeyPath path;
    EXPECT_TRUE(path.append(L"\\A"sv));
    EXPECT_TRUE(path.appendComponent(L"B\\/"sv));
    EXPECT_EQ(textOf(path), L"\\A/B\\/");
}
