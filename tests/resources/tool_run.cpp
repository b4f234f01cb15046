#include "tool_run.h"

#include <QFile>
#include <QProcess>

namespace resources::test
{

ToolRun runTool(const QString& program, const QStringList& arguments)
{
    constexpr int kTimeLimit = 240000; // milliseconds
    QProcess process;
    process.start(program, arguments, QIODevice::ReadOnly);
    const bool ended = process.waitForFinished(kTimeLimit) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll();
}

} // namespace resources::test
