// Conversions between wide text (one code point a character) and UTF-16, character by character.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QString>

#include "text/wide_text.h"

using namespace vruinfo::internal;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace
{

constexpr char16_t kCanary = u'\x5A5A';
constexpr unsigned int kLast = 0x10FFFF;

wchar_t character(unsigned int code)
{
    return static_cast<wchar_t>(code);
}

/// A text of `length` different characters of the BMP, those included that a signed conversion would get wrong.
std::wstring bmpText(std::size_t length)
{
    static const std::vector<unsigned int> codes = {'a', 0x7FFF, 0x8000, 0xFFFF, 0xFEFF, 0xE000, 0xFFFD, 1, 0xD7FF};
    std::wstring text;
    for (std::size_t i = 0; i < length; ++i)
        text += character(codes[i % codes.size()]);
    return text;
}

std::u16string unitsOf(const QString& text)
{
    return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())};
}

} // namespace

TEST(NarrowBmp, GivesEachCharacterItsUnitAtEveryLength)
{
    for (std::size_t length = 0; length <= 40; ++length) {
        const std::wstring text = bmpText(length);
        std::u16string target(length + 1, kCanary);
        ASSERT_TRUE(narrowBmp(text, target.data())) << length;
        EXPECT_EQ(std::wstring(target.begin(), target.end() - 1), text) << length;
        EXPECT_EQ(target[length], kCanary);
    }
}

TEST(NarrowBmp, RefusesACharacterBeyondTheBmpAtEveryPlace)
{
    for (const unsigned int code : {0x10000U, 0x1F600U, 0x10FFFFU, 0x110000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        for (std::size_t place = 0; place < 30; ++place) {
            std::wstring text = bmpText(30);
            text[place] = character(code);
            std::u16string target(31, kCanary);
            EXPECT_FALSE(narrowBmp(text, target.data())) << code << " at " << place;
            EXPECT_EQ(target[30], kCanary);
        }
    }
}

TEST(Narrow, WritesSurrogatePairsAtEveryPlace)
{
    for (std::size_t place = 0; place < 20; ++place) {
        std::wstring text = bmpText(20);
        text[place] = L'\x1F600';
        std::u16string target(41, kCanary);
        ASSERT_EQ(narrow(text, target.data()), 21U);
        EXPECT_EQ(target[place], 0xD83D);
        EXPECT_EQ(target[place + 1], 0xDE00);
        EXPECT_EQ(target[21], kCanary);
    }
}

TEST(Narrow, NeedsNoMoreThanTwoUnitsACharacter)
{
    const std::wstring text(50, character(kLast));
    std::u16string target(101, kCanary);
    EXPECT_EQ(narrow(text, target.data()), 100U);
    EXPECT_EQ(target[100], kCanary);
}

TEST(ToQString, IsWhatQtMakesOfEveryCodePoint)
{
    for (uint code = 1; code <= kLast; ++code) {
        if (QChar::isSurrogate(code))
            continue; // Qt's own conversion has no opinion on halves
        if (code == QChar::ByteOrderMark)
            continue; // and drops this one at the beginning
        const wchar_t c = character(code);
        ASSERT_EQ(toQString(std::wstring_view(&c, 1)), QString::fromUcs4(&code, 1)) << std::hex << code;
    }
}

TEST(ToQString, KeepsHalvesOfPairsAndMarks)
{
    const std::wstring text = {character(0xFEFF), character(0xDC00), L'x', character(0xD800)};
    EXPECT_EQ(unitsOf(toQString(text)), (std::u16string{0xFEFF, 0xDC00, u'x', 0xD800}));
}

TEST(ToQString, ReplacesWhatIsNoCodePoint)
{
    for (const unsigned int code : {0x110000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        const std::wstring text = {L'a', character(code), L'b'};
        EXPECT_EQ(unitsOf(toQString(text)), (std::u16string{u'a', 0xFFFD, u'b'})) << code;
    }
}

TEST(ToQString, TakesZeroCharactersAlong)
{
    EXPECT_EQ(unitsOf(toQString(L"a\0b"sv)), u"a\0b"s);
}

TEST(ToQString, NullIsEmpty)
{
    EXPECT_TRUE(toQString(static_cast<const wchar_t*>(nullptr)).isEmpty());
    EXPECT_TRUE(toQString(L"").isEmpty());
}

TEST(ToQString, PutsAPrefixBefore)
{
    EXPECT_EQ(toQString(QLatin1String("5$"), L"text"sv), QStringLiteral("5$text"));
    EXPECT_EQ(toQString(QLatin1String("5$"), L""sv), QStringLiteral("5$"));
    EXPECT_EQ(toQString(QLatin1String("5$"), L"a\U0001F600b"sv), QString::fromUtf8("5$a\U0001F600b"));
    EXPECT_EQ(toQString(QLatin1String(""), L"text"sv), QStringLiteral("text"));
}

TEST(Widen, JoinsPairsAndKeepsHalves)
{
    const std::u16string units = {0xD83D, 0xDE00, 0xDE00, u'x', 0xD83D, 0xD83D, 0xDE00, 0xD83D};
    const auto* const text = reinterpret_cast<const QChar*>(units.data());
    ASSERT_EQ(wideLength(text, units.size()), 6U);
    std::wstring target(7, L'#');
    widen(text, units.size(), target.data());
    const std::wstring expected = {L'\x1F600', character(0xDE00), L'x', character(0xD83D),
                                   L'\x1F600', character(0xD83D), L'#'};
    EXPECT_EQ(target, expected);
}

TEST(Widen, DoesNotLookBehindTheEnd)
{
    const std::u16string units = {0xD83D, 0xDE00};
    EXPECT_EQ(wideLength(reinterpret_cast<const QChar*>(units.data()), 1), 1U);
    EXPECT_EQ(wideLength(reinterpret_cast<const QChar*>(units.data()), 0), 0U);
}

TEST(WideText, SurvivesTheWayThereAndBack)
{
    std::wstring all;
    for (uint code = 0; code <= kLast; ++code)
        all += character(code);
    std::reverse(all.begin(), all.end()); // a high half before a low one would be a pair
    EXPECT_EQ(toWide(toQString(all)), all);
}

TEST(TransientString, IsTheTextAtEveryLength)
{
    for (const std::size_t length : {0U, 1U, 7U, 8U, 9U, 1023U, 1024U, 1025U, 5000U}) {
        const std::wstring text = bmpText(length);
        const TransientString transient(text);
        EXPECT_EQ(transient.string(), toQString(text)) << length;
        EXPECT_EQ(transient.string().size(), static_cast<int>(length));
        EXPECT_EQ(transient.string().utf16()[length], 0U);
    }
}

TEST(TransientString, TakesCharactersBeyondTheBmp)
{
    for (const std::size_t length : {1U, 8U, 1022U, 1023U, 2000U}) {
        std::wstring text = bmpText(length);
        text.back() = L'\x1F600';
        EXPECT_EQ(TransientString(text).string(), toQString(text)) << length;
    }
}

TEST(TransientString, ChangedCopyIsItsOwn)
{
    QString copy;
    {
        const TransientString transient(L"text"sv);
        copy = transient.string();
        copy += QLatin1Char('!');
        EXPECT_EQ(transient.string(), QStringLiteral("text"));
    }
    EXPECT_EQ(copy, QStringLiteral("text!"));
}
