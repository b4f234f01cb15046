// The table of commands and options.
#pragma once

#include "command.h"

namespace vruinfo::tool
{

constexpr char kProgram[] = "vruinfo";

[[nodiscard]] Rows<Command> commands();                        ///< In the order of the help.
[[nodiscard]] const Command* findCommand(const QString& name); ///< Null when there is none.
[[nodiscard]] Rows<Option> globalOptions();                    ///< Of every command.

/// "vruinfo set PATH VALUE [--type TYPE]"
/// By name or letter; an option of whatever command. Null when there is none.
[[nodiscard]] const Option* findOption(const QString& name);
[[nodiscard]] QString synopsis(const Command& command);

} // namespace vruinfo::tool
