#include "VrOsBase/VrOsBase.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <string>
#include <tuple>

namespace
{

int signOf(int value)
{
    return (value > 0 ? 1 : 0) - (value < 0 ? 1 : 0);
}

TEST(WtoiTest, ReadsBlanksSignAndDigits)
{
    const std::pair<const wchar_t*, int> rows[] = {
        {L"0", 0},
        {L"42", 42},
        {L"-42", -42},
        {L"+7", 7},
        {L" \t\n\v\f\r5", 5},
        {L"12abc", 12},
        {L"1 2", 1},
        {L"", 0},
        {L"abc", 0},
        {L"-", 0},
        {L"+-1", 0},
        {L"- 1", 0},
        {L"0x10", 0},
        {L"007", 7},
        {L"\x1F"
         L"5",
         0},
        {L"\x0665", 0},
        {L"\xA0"
         L"5",
         0},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(_wtoi(text), expected) << text;
    }
    EXPECT_EQ(_wtoi(nullptr), 0);
}

TEST(WtoiTest, StaysWithinAnInt)
{
    EXPECT_EQ(_wtoi(L"2147483647"), INT_MAX);
    EXPECT_EQ(_wtoi(L"2147483648"), INT_MAX);
    EXPECT_EQ(_wtoi(L"-2147483648"), INT_MIN);
    EXPECT_EQ(_wtoi(L"-2147483649"), INT_MIN);
    EXPECT_EQ(_wtoi(std::wstring(1000, L'9').c_str()), INT_MAX);
    EXPECT_EQ(_wtoi((L"-" + std::wstring(1000, L'9')).c_str()), INT_MIN);
}

TEST(StrStrITest, FindsTheFirstPlaceInAnyCase)
{
    const wchar_t* const text = L"One two ONE \xC4pfel";
    EXPECT_EQ(StrStrIW(text, L"one"), text);
    EXPECT_EQ(StrStrIW(text + 1, L"oNe"), text + 8);
    EXPECT_EQ(StrStrIW(text, L"\xE4PFEL"), text + 12);
    EXPECT_EQ(StrStrIW(text, L"l"), text + 16);
    EXPECT_EQ(StrStrIW(L"aab", L"AB") != nullptr, true);
}

TEST(StrStrITest, WhatIsNotThereIsNull)
{
    EXPECT_EQ(StrStrIW(L"abc", L"abcd"), nullptr);
    EXPECT_EQ(StrStrIW(L"abc", L"x"), nullptr);
    EXPECT_EQ(StrStrIW(L"", L"x"), nullptr);
}

TEST(StrStrITest, NullAndEmptyArgumentsGiveNull)
{
    EXPECT_EQ(StrStrIW(nullptr, L"x"), nullptr);
    EXPECT_EQ(StrStrIW(L"x", nullptr), nullptr);
    EXPECT_EQ(StrStrIW(L"x", L""), nullptr);
    EXPECT_EQ(StrStrIW(L"", L""), nullptr);
}

TEST(WcsicmpTest, ComparesWithoutRegardToCase)
{
    const std::tuple<const wchar_t*, const wchar_t*, int> rows[] = {
        {L"", L"", 0},
        {L"abc", L"ABC", 0},
        {L"abc", L"abd", -1},
        {L"ABD", L"abc", 1},
        {L"ab", L"abc", -1},
        {L"abc", L"AB", 1},
        {L"\xE4\xF6", L"\xC4\xD6", 0},
        {L"\x3C3", L"\x3C2", 0},
        {L"\x10400", L"\x10428", 0},
        {L"_", L"A", -1},
        {L"[", L"a", -1},
        {L"\xDF", L"ss", 1},
        {L"\x1E9E", L"\xDF", 0},
        {L"\x17F", L"S", 0},
        {L"\x212A", L"k", 0},
        {L"\xDF", L"\x1E9E", 0},
    };
    for (const auto& [left, right, expected] : rows) {
        EXPECT_EQ(signOf(_wcsicmp(left, right)), expected) << left << " " << right;
        EXPECT_EQ(signOf(_wcsicmp(right, left)), -expected) << right << " " << left;
    }
}

TEST(WcsicmpTest, DotlessIIsNotAnI)
{
    EXPECT_NE(_wcsicmp(L"\x131", L"i"), 0);
    EXPECT_NE(_wcsicmp(L"\x131", L"I"), 0);
    EXPECT_NE(_wcsicmp(L"\x130", L"i"), 0);
    EXPECT_EQ(_wcsicmp(L"I", L"i"), 0);
}

TEST(WcsicmpTest, NullCountsAsEmpty)
{
    EXPECT_EQ(_wcsicmp(nullptr, nullptr), 0);
    EXPECT_EQ(_wcsicmp(nullptr, L""), 0);
    EXPECT_LT(_wcsicmp(nullptr, L"a"), 0);
    EXPECT_GT(_wcsicmp(L"a", nullptr), 0);
}

TEST(WcsicmpTest, ValuesThatAreNoCodePointsEqualThemselves)
{
    const wchar_t odd[] = {wchar_t{0x110000}, static_cast<wchar_t>(-1), wchar_t{0xDCFF}, L'\0'};
    EXPECT_EQ(_wcsicmp(odd, odd), 0);
    EXPECT_NE(_wcsicmp(odd, odd + 1), 0);
}

TEST(WcsicmpTest, LocaleMakesNoDifference)
{
    for (const char* name : {"C", "C.UTF-8", ""}) {
        static_cast<void>(std::setlocale(LC_ALL, name));
        EXPECT_EQ(_wcsicmp(L"\xC4\x416", L"\xE4\x436"), 0);
        EXPECT_NE(_wcsicmp(L"\x131", L"I"), 0);
    }
    static_cast<void>(std::setlocale(LC_ALL, "C"));
}

} // namespace
