#pragma once

#include <string_view>

namespace vrosbase::internal
{

[[nodiscard]] bool hasWildcard(std::wstring_view pattern);

/// "*" stands for any characters, also none; "?" for exactly one; "*.*" for every name. Others stand for
/// themselves. Takes time in proportion to the product of the two lengths at most.
[[nodiscard]] bool matchesWildcard(std::wstring_view name, std::wstring_view pattern);

} // namespace vrosbase::internal
