// The manual page, made from the table of commands.
#pragma once

#include <QtCore/QString>

namespace vruinfo::tool
{

[[nodiscard]] QString manualPage(); ///< In the language of man pages.

} // namespace vruinfo::tool
