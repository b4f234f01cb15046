#pragma once

#include <string_view>

namespace vrplatformbase::internal
{

/// Whether windows of the Qt platform of this name are seen by somebody. Takes what QT_QPA_PLATFORM takes: of a list
/// the first name counts, and arguments behind a colon do not.
[[nodiscard]] constexpr bool isVisiblePlatform(std::string_view name) noexcept
{
    const std::string_view first = name.substr(0, name.find_first_of(";:"));
    return first != "offscreen" && first != "minimal" && first != "minimalegl";
}

} // namespace vrplatformbase::internal
