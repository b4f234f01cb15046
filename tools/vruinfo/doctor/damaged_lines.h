// Lines of a settings file that the settings library takes for no settings, and drops when it writes the file.
#pragma once

#include <vector>

#include <QtCore/QByteArray>

namespace vruinfo::tool::doctor
{

/// The numbers of lines that are neither a group's beginning nor a key with a value, the first being 1. A text in
/// quotes may go over several lines; the first counts. A byte-order mark is one, too: the settings library does not
/// pass over it.
[[nodiscard]] std::vector<int> damagedLines(const QByteArray& bytes);

/// The numbers of lines that do not end where they should, because a quote or a backslash is in the way: settings
/// behind them are taken for a part of their text, and are not read.
[[nodiscard]] std::vector<int> openLines(const QByteArray& bytes);

} // namespace vruinfo::tool::doctor
