#include "osbase/wildcard.h"

namespace vrosbase::internal
{
namespace
{

/// Where to go on when the text behind the last "*" does not match: the star takes one character more.
struct Retry {
    std::size_t pattern = std::wstring_view::npos;
    std::size_t name = 0;
};

bool isOnlyStars(std::wstring_view pattern)
{
    return pattern.find_first_not_of(L'*') == std::wstring_view::npos;
}

bool matchesOne(wchar_t character, wchar_t wanted)
{
    return wanted == L'?' || wanted == character;
}

} // namespace

bool hasWildcard(std::wstring_view pattern)
{
    return pattern.find_first_of(L"*?") != std::wstring_view::npos;
}

bool matchesWildcard(std::wstring_view name, std::wstring_view pattern)
{
    if (pattern == L"*.*") {
        return true;
    }
    Retry retry;
    std::size_t n = 0;
    std::size_t p = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            retry = {++p, n};
        } else if (p < pattern.size() && matchesOne(name[n], pattern[p])) {
            ++n;
            ++p;
        } else if (retry.pattern != std::wstring_view::npos) {
            p = retry.pattern;
            n = ++retry.name;
        } else {
            return false;
        }
    }
    return isOnlyStars(pattern.substr(p));
}

} // namespace vrosbase::internal
