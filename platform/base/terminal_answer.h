#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "message_box_style.h"

namespace vrplatformbase::internal
{

/// The buttons as a prompt: "[Yes/No] ".
[[nodiscard]] std::string promptOf(const ButtonSet& buttons);

/// The answer that a typed line gives: a button's word or its first letter, without regard to case and to blanks around
/// it. An empty line is the cautious answer. With only one button every line is its answer. Nothing for other lines.
[[nodiscard]] std::optional<int> answerOf(const ButtonSet& buttons, std::string_view line);

} // namespace vrplatformbase::internal
