/// \file tool_run.h
/// Runs a program to its end, and writes and reads the files it works on.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace resources::test
{

struct ToolRun {
    int exitCode = -1; ///< -1 also when the program did not start or crashed
    QString output;    ///< standard output
    QString errors;    ///< standard error
};

[[nodiscard]] ToolRun runTool(const QString& program, const QStringList& arguments);

[[nodiscard]] bool writeFile(const QString& path, const QByteArray& bytes);
[[nodiscard]] QByteArray readFile(const QString& path); ///< empty when it cannot be read

} // namespace resources::test
