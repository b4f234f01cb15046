// The command line taken apart.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QStringList>

#include "command.h"
#include "result.h"

namespace vruinfo::tool
{

struct CommandLine {
    const Command* command = nullptr; ///< Null only where help or the version is asked for without one.
    QStringList arguments;
    QMap<QString, QString> options; ///< Those given, with their values; switches have an empty one.

    [[nodiscard]] bool isSet(const char* option) const { return options.contains(text(option)); }
};

/// \param arguments with the program's name first
[[nodiscard]] Result<CommandLine> parseCommandLine(const QStringList& arguments);

} // namespace vruinfo::tool
