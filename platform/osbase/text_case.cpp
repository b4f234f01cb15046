#include "osbase/text_case.h"

#include <QChar>

#include <algorithm>

namespace vrosbase::internal
{

char32_t foldCase(wchar_t character)
{
    const auto point = static_cast<char32_t>(character);
    if (point < 0x80) {
        return point >= U'A' && point <= U'Z' ? point + (U'a' - U'A') : point;
    }
    return point <= QChar::LastValidCodePoint ? QChar::toCaseFolded(static_cast<uint>(point)) : point;
}

int compareFolded(std::wstring_view left, std::wstring_view right)
{
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        const char32_t a = foldCase(left[i]);
        const char32_t b = foldCase(right[i]);
        if (a != b) {
            return a < b ? -1 : 1;
        }
    }
    if (left.size() == right.size()) {
        return 0;
    }
    return left.size() < right.size() ? -1 : 1;
}

} // namespace vrosbase::internal
