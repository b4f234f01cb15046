#pragma once

#include <string_view>

namespace vrosbase::internal
{

/// A character's simple case folding, the same in every locale. What is no code point folds to itself.
[[nodiscard]] char32_t foldCase(wchar_t character);

/// Less than, equal to or greater than 0, by folded characters.
[[nodiscard]] int compareFolded(std::wstring_view left, std::wstring_view right);

} // namespace vrosbase::internal
