// Bounded wide text: what fits, what is refused, what ends the process.
#include <csignal>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;
using namespace std::string_view_literals;

namespace
{

constexpr wchar_t kCanary = L'#';

/// A buffer with canaries behind it.
std::wstring guarded(std::size_t capacity)
{
    return std::wstring(capacity + 8, kCanary);
}

bool isUntouchedFrom(const std::wstring& buffer, std::size_t index)
{
    return buffer.find_first_not_of(kCanary, index) == std::wstring::npos;
}

} // namespace

TEST(CopyBounded, CopiesWhatFitsWithItsTerminator)
{
    for (const std::size_t capacity : {5U, 6U, 100U}) {
        std::wstring buffer = guarded(capacity);
        copyBounded(buffer.data(), capacity, L"text");
        EXPECT_STREQ(buffer.c_str(), L"text");
        EXPECT_TRUE(isUntouchedFrom(buffer, 5));
    }
}

TEST(CopyBounded, EmptyTextFitsOneCharacter)
{
    std::wstring buffer = guarded(1);
    copyBounded(buffer.data(), 1, L"");
    EXPECT_STREQ(buffer.c_str(), L"");
    EXPECT_TRUE(isUntouchedFrom(buffer, 1));
}

TEST(CopyBoundedDeathTest, EndsTheProcessWithOneLineWhenTheTextDoesNotFit)
{
    std::wstring buffer = guarded(4);
    for (const std::size_t capacity : {0U, 1U, 4U}) {
        EXPECT_EXIT(copyBounded(buffer.data(), capacity, L"text"), testing::KilledBySignal(SIGABRT),
                    "^[^\n]*" + std::to_string(capacity) + "[^\n]*\n$");
    }
}

TEST(WideWriter, BeginsWithAnEmptyText)
{
    std::wstring buffer = guarded(3);
    const WideWriter writer(buffer.data(), 3);
    EXPECT_STREQ(writer.text(), L"");
    EXPECT_EQ(writer.length(), 0U);
    EXPECT_TRUE(isUntouchedFrom(buffer, 1));
}

TEST(WideWriter, AppendsUpToItsCapacity)
{
    std::wstring buffer = guarded(8);
    WideWriter writer(buffer.data(), 8);
    EXPECT_TRUE(writer.append(L"abc"sv));
    EXPECT_FALSE(writer.append(L"12345"sv));
    EXPECT_STREQ(writer.text(), L"abc");
    EXPECT_TRUE(writer.append(L"1234"sv));
    EXPECT_STREQ(writer.text(), L"abc1234");
    EXPECT_EQ(writer.length(), 7U);
    EXPECT_FALSE(writer.append(L"x"sv));
    EXPECT_TRUE(writer.append(L""sv));
    EXPECT_TRUE(isUntouchedFrom(buffer, 8));
}

TEST(WideWriter, AppendsAComponentWithItsSeparatorUpToItsCapacity)
{
    std::wstring buffer = guarded(8);
    WideWriter writer(buffer.data(), 8);
    EXPECT_TRUE(writer.append(L"abc"sv));
    EXPECT_FALSE(writer.appendComponent(L"1234"sv));
    EXPECT_STREQ(writer.text(), L"abc");
    EXPECT_TRUE(writer.appendComponent(L"123"sv));
    EXPECT_STREQ(writer.text(), L"abc/123");
    EXPECT_FALSE(writer.appendComponent(L""sv));
    EXPECT_STREQ(writer.text(), L"abc/123");
    EXPECT_TRUE(isUntouchedFrom(buffer, 8));
}

TEST(WideWriter, ClearedOneIsEmpty)
{
    std::wstring buffer = guarded(8);
    WideWriter writer(buffer.data(), 8);
    EXPECT_TRUE(writer.append(L"1234567"sv));
    writer.clear();
    EXPECT_STREQ(writer.text(), L"");
    EXPECT_EQ(writer.length(), 0U);
    EXPECT_TRUE(writer.append(L"abcdefg"sv));
    EXPECT_STREQ(writer.text(), L"abcdefg");
}

TEST(WideWriter, OfOneCharacterTakesNothing)
{
    std::wstring buffer = guarded(1);
    WideWriter writer(buffer.data(), 1);
    EXPECT_FALSE(writer.append(L"x"sv));
    EXPECT_FALSE(writer.appendComponent(L""sv));
    EXPECT_TRUE(writer.append(L""sv));
    EXPECT_TRUE(isUntouchedFrom(buffer, 1));
}

TEST(OwnedText, NullAndNoCharactersAreEmpty)
{
    EXPECT_TRUE(isEmpty(nullptr));
    EXPECT_TRUE(isEmpty(L""));
    EXPECT_FALSE(isEmpty(L" "));
}

TEST(OwnedText, IsCopiedReplacedAndFreed)
{
    wchar_t* text = makeText(L"text");
    EXPECT_STREQ(text, L"text");
    replaceText(text, makeText(L"another text", 7));
    EXPECT_STREQ(text, L"another");
    replaceText(text, makeTextBuffer(10));
    EXPECT_STREQ(text, L"");
    freeText(text);
    EXPECT_EQ(text, nullptr);
    freeText(text);
    EXPECT_EQ(text, nullptr);
}
