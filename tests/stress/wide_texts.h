// Texts that a careless library loses, cuts or mixes up.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace stress
{

/// A text with what is special about it.
struct WideText {
    const char* what;
    std::wstring text;

    [[nodiscard]] bool has(const wchar_t* characters) const
    {
        return text.find_first_of(characters) != std::wstring::npos;
    }
    /// Halves of surrogate pairs cannot be said in UTF-8.
    [[nodiscard]] bool hasHalf() const
    {
        return std::any_of(text.begin(), text.end(), [](wchar_t c) { return c >= 0xD800 && c <= 0xDFFF; });
    }
};

inline constexpr wchar_t kHighHalf = 0xD83D;
inline constexpr wchar_t kLowHalf = 0xDE00;

/// None of them names nothing (see docs/reliability.md): each has a character that is no separator.
inline const std::vector<WideText>& wideTexts()
{
    static const std::vector<WideText> kTexts = {
        {"beyond the BMP", L"a\U0001F600b\U00010000"},
        {"the last character", L"\U0010FFFF"},
        {"a lone high half", std::wstring(L"x") + kHighHalf + L"y"},
        {"a lone low half at the end", std::wstring(L"x") + kLowHalf},
        {"halves in the wrong order", std::wstring() + kLowHalf + kHighHalf},
        {"combining marks", L"e\u0301 \u00E9 n\u0303\u0323"},
        {"a mark alone", L"\u0301"},
        {"newline and carriage return", L"a\nb\r\nc\rd"},
        {"tab and control characters", L"a\tb\u0001\u001F\u007F"},
        {"quotes", L"\"a\" 'b'"},
        {"an unpaired quote", L"a\""},
        {"equals signs", L"=a=b="},
        {"percent signs", L"%41%U0041 100%"},
        {"slashes", L"a/b/c"},
        {"backslashes", L"a\\b\\x41"},
        {"blanks around", L"  a b  "},
        {"a blank alone", L" "},
        {"other blanks", L"\u00A0a\u2003\u3000"},
        {"line separators of Unicode", L"a\u0085b\u2028c\u2029d"},
        {"a byte-order mark in front", L"\uFEFFa\uFEFF"},
        {"no characters of Unicode", L"a\uFFFEb\uFFFF"},
        {"the replacement character", L"\uFFFD"},
        {"what an INI file means something by", L"[a];b#c,d"},
        {"what the settings library means something by", L"@Variant(a)"},
        {"its invalid value", L"@Invalid()"},
        {"a tag", L"1$5$x"},
        {"the general section", L"General"},
        {"the escaped general section", L"%general"},
        {"Turkish letters", L"I\u0130\u0131i"},
        {"right to left", L"\u05D0\u202E\u0627b"},
        {"hexadecimal digits behind what is escaped", L"\u00E4bc\u20ACdef0\u0001f"},
        {"dots", L".."},
    };
    return kTexts;
}

} // namespace stress
