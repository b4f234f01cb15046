#include "osbase/path_text.h"

#include <gtest/gtest.h>

namespace
{

using namespace vrosbase::internal;

struct Form {
    std::string bytes;
    std::wstring text;
};

TEST(PathTextTest, Utf8IsDecodedInEveryLength)
{
    const Form forms[] = {
        {"", L""},
        {"a\x7F", L"a\x7F"},
        {"\xC2\x80\xDF\xBF", L"\x80\x7FF"},
        {"\xE0\xA0\x80\xEF\xBF\xBF", L"\x800\xFFFF"},
        {"\xED\x9F\xBF\xEE\x80\x80", L"\xD7FF\xE000"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\x10000\x10FFFF"},
    };
    for (const Form& form : forms) {
        EXPECT_EQ(wideText(form.bytes), form.text);
        EXPECT_EQ(narrowText(form.text), form.bytes);
    }
}

TEST(PathTextTest, BytesThatAreNotUtf8TravelAsEscapes)
{
    const std::string bytes = "a\xFF/\x80";
    const std::wstring escaped = {L'a', wchar_t{0xDCFF}, L'/', wchar_t{0xDC80}};
    EXPECT_EQ(wideText(bytes), escaped);
    EXPECT_EQ(narrowText(escaped), bytes);
}

TEST(PathTextTest, MalformedSequencesAreEscapedByteByByte)
{
    const std::string malformed[] = {
        "\xC0\xAF",         // longer than needed
        "\xC1\xBF",         // longer than needed
        "\xE0\x9F\xBF",     // longer than needed
        "\xF0\x8F\xBF\xBF", // longer than needed
        "\xED\xA0\x80",     // half a surrogate pair
        "\xED\xBF\xBF",     // half a surrogate pair
        "\xF4\x90\x80\x80", // behind the last code point
        "\xF8\x88\x80\x80", // no lead byte
        "\xC3",             // cut
        "\xE2\x82",         // cut
        "\xF0\x9F\x98",     // cut
    };
    for (const std::string& bytes : malformed) {
        const std::wstring text = wideText(bytes);
        ASSERT_EQ(text.size(), bytes.size());
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            EXPECT_EQ(text[i], static_cast<wchar_t>(0xDC00 + static_cast<unsigned char>(bytes[i])));
        }
        EXPECT_EQ(narrowText(text), bytes);
    }
}

TEST(PathTextTest, SequenceInterruptedByAsciiLosesNothing)
{
    const std::string bytes = "\xE2\x82/x";
    const std::wstring expected = {wchar_t{0xDCE2}, wchar_t{0xDC82}, L'/', L'x'};
    EXPECT_EQ(wideText(bytes), expected);
}

TEST(PathTextTest, EveryPairOfBytesSurvives)
{
    for (int first = 1; first < 256; ++first) {
        for (int second = 1; second < 256; ++second) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(narrowText(wideText(bytes)), bytes);
        }
    }
}

TEST(PathTextTest, WhatIsNoCodePointBecomesTheReplacement)
{
    const wchar_t wrong[] = {wchar_t{0xD800}, wchar_t{0xDC7F},   wchar_t{0xDD00},
                             wchar_t{0xDFFF}, wchar_t{0x110000}, static_cast<wchar_t>(-1)};
    for (const wchar_t character : wrong) {
        EXPECT_EQ(narrowText(std::wstring(1, character)), "\xEF\xBF\xBD");
    }
}

TEST(PathTextTest, BackslashesOfPathsAreSeparators)
{
    EXPECT_EQ(pathBytes(L"a\\b/c\\"), "a/b/c/");
    EXPECT_EQ(withSlashes(L"\\a\\b"), L"/a/b");
    EXPECT_EQ(narrowText(L"a\\b"), "a\\b");
}

TEST(PathTextTest, LastComponentStandsBehindTheLastSeparator)
{
    EXPECT_EQ(lastComponent("a/b/c"), "c");
    EXPECT_EQ(lastComponent("abc"), "abc");
    EXPECT_EQ(lastComponent("abc/"), "");
    EXPECT_EQ(lastComponent("/x"), "x");
    EXPECT_EQ(lastComponent(""), "");
}

} // namespace
