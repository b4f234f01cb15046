#include "osbase/wide_buffer.h"

#include <algorithm>

namespace vrosbase::internal
{

Fit copyText(wchar_t* buffer, std::size_t capacity, std::wstring_view text)
{
    if (capacity == 0) {
        return Fit::Cut;
    }
    const std::wstring_view part = text.substr(0, capacity - 1);
    *std::copy(part.begin(), part.end(), buffer) = L'\0';
    return part.size() == text.size() ? Fit::Whole : Fit::Cut;
}

Fit copyList(wchar_t* buffer, std::size_t capacity, std::wstring_view list)
{
    const Fit fit = copyText(buffer, capacity, list);
    if (fit == Fit::Cut && capacity > 1) {
        buffer[capacity - 2] = L'\0';
    }
    return fit;
}

} // namespace vrosbase::internal
