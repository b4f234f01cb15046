// Files that are read whole, standard input among them.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include "result.h"

namespace vruinfo::tool
{

/// Bytes that a file may have; who gives more gives no file of this tool.
constexpr qint64 kLargestInput = qint64{1} << 30;

/// The name as messages show it: "-" is standard input.
[[nodiscard]] QString shownInput(const QString& name);

/// \param name "-" for standard input; a pipe is read to its end
[[nodiscard]] Result<QByteArray> readInput(const QString& name);

} // namespace vruinfo::tool
