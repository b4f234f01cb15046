#include "osbase/text_case.h"

#include "VrOsBase/VrOsBase.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace vrosbase::internal
{
namespace
{

constexpr std::int64_t kLargest = std::numeric_limits<int>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<int>::min();

bool isWhiteSpace(wchar_t character)
{
    return character == L' ' || (character >= L'\t' && character <= L'\r');
}

bool isDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

/// The number that the digits at the beginning of a text make, with the sign, no further out than an int
/// reaches.
int boundedNumber(const wchar_t* digits, int sign)
{
    std::int64_t number = 0;
    for (; isDigit(*digits); ++digits) {
        number = std::clamp(number * 10 + std::int64_t{sign} * (*digits - L'0'), kSmallest, kLargest);
    }
    return static_cast<int>(number);
}

bool beginsWithFolded(const wchar_t* text, const wchar_t* beginning)
{
    while (*beginning != L'\0' && foldCase(*text) == foldCase(*beginning)) {
        ++text;
        ++beginning;
    }
    return *beginning == L'\0';
}

std::wstring_view textOrEmpty(const wchar_t* text)
{
    return text == nullptr ? L"" : text;
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

int _wtoi(const wchar_t* str)
{
    if (str == nullptr) {
        return 0;
    }
    while (isWhiteSpace(*str)) {
        ++str;
    }
    const int sign = *str == L'-' ? -1 : 1;
    return boundedNumber(*str == L'-' || *str == L'+' ? str + 1 : str, sign);
}

PWSTR StrStrIW(PCWSTR pszFirst, PCWSTR pszSrch)
{
    if (pszFirst == nullptr || pszSrch == nullptr || *pszSrch == L'\0') {
        return nullptr;
    }
    for (; *pszFirst != L'\0'; ++pszFirst) {
        if (beginsWithFolded(pszFirst, pszSrch)) {
            return const_cast<PWSTR>(pszFirst); // NOLINT(cppcoreguidelines-pro-type-const-cast) as documented
        }
    }
    return nullptr;
}

int _wcsicmp(const wchar_t* string1, const wchar_t* string2)
{
    return compareFolded(textOrEmpty(string1), textOrEmpty(string2));
}
