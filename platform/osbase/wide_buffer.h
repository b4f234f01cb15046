#pragma once

#include <cstddef>
#include <string_view>

namespace vrosbase::internal
{

enum class Fit { Whole, Cut };

/// Copies a text into a caller's buffer. The buffer is terminated unless its capacity is 0.
/// \param capacity characters, terminator included
[[nodiscard]] Fit copyText(wchar_t* buffer, std::size_t capacity, std::wstring_view text);

/// Copies a list of names that each end with a zero and adds the zero that ends the list. A list that does
/// not fit is cut so that two zeros end it.
[[nodiscard]] Fit copyList(wchar_t* buffer, std::size_t capacity, std::wstring_view list);

} // namespace vrosbase::internal
