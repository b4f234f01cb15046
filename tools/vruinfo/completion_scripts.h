// The scripts that shells read to complete this tool's words.
#pragma once

#include <optional>

#include <QtCore/QStringList>

namespace vruinfo::tool
{

[[nodiscard]] QStringList shellNames();
/// Nothing for an unknown shell.
[[nodiscard]] std::optional<QString> completionScript(const QString& shell);

} // namespace vruinfo::tool
