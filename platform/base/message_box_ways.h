#pragma once

#include <optional>

namespace vrplatformbase::internal
{

/// What the user is asked; the texts are the caller's and never null.
struct Question {
    const wchar_t* text;
    const wchar_t* caption;
    unsigned int style;
};

/// \name The ways to ask
/// Each gives the user's answer, or nothing when this way is not there or nobody could answer on it.
/// @{
[[nodiscard]] std::optional<int> askInProcess(const Question& question);     ///< box of the running QApplication
[[nodiscard]] std::optional<int> askThroughHelper(const Question& question); ///< dialog of a process of its own
[[nodiscard]] std::optional<int> askOnTerminal(const Question& question);    ///< text and prompt on the terminal
/// @}

/// Writes the text to standard error. Gives the cautious answer.
[[nodiscard]] int tellOnStandardError(const Question& question);

} // namespace vrplatformbase::internal
