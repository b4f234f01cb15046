#include "doctor/lock_file.h"

#include <cerrno>
#include <csignal>

#include <QtCore/QFileInfo>
#include <QtCore/QStringList>
#include <QtCore/QSysInfo>

#include "command.h"
#include "doctor/file_state.h"

namespace vruinfo::tool::doctor
{
namespace
{

constexpr qint64 kMostBytes = 4096;

/// Who made the lock file, by its first three lines.
struct Holder {
    qint64 process = 0; ///< 0 or less when it does not tell.
    QString application;
    QString host;
};

Holder holderOf(const QString& lock)
{
    const QStringList lines =
        QString::fromUtf8(bytesOf(lock, kMostBytes).value_or(QByteArray())).split(QLatin1Char('\n'));
    if (lines.size() < 3)
        return {};
    return {lines.at(0).toLongLong(), lines.at(1), lines.at(2)};
}

bool isOnThisHost(const Holder& holder)
{
    return holder.host == QSysInfo::machineHostName();
}

/// The name of the program that a process runs, or as much of it as the system tells.
QString programOf(pid_t process)
{
    const QString directory = QStringLiteral("/proc/%1/").arg(process);
    const QString program = QFileInfo(directory + QStringLiteral("exe")).symLinkTarget();
    if (!program.isEmpty())
        return QFileInfo(program).fileName();
    return QString::fromUtf8(bytesOf(directory + QStringLiteral("comm"), kMostBytes).value_or(QByteArray())).trimmed();
}

/// Numbers of processes are given again: one that runs another program is not the holder.
bool isAlive(const Holder& holder)
{
    const auto process = static_cast<pid_t>(holder.process);
    if (process != holder.process || (kill(process, 0) != 0 && errno != EPERM))
        return false;
    return holder.application.startsWith(programOf(process));
}

QString wordsOf(const Holder& holder)
{
    return QStringLiteral("process %1 (%2) on host %3").arg(holder.process).arg(holder.application, holder.host);
}

QString remove(const QString& lock)
{
    return QStringLiteral("Remove it when no application of the user runs: rm %1").arg(shellWord(lock));
}

} // namespace

std::optional<Finding> lockFinding(const char* id, const QString& lock)
{
    const FileState state = FileState::of(lock);
    if (state.kind == FileState::Kind::Missing || state.kind == FileState::Kind::OutOfReach)
        return std::nullopt;
    if (state.kind == FileState::Kind::Directory)
        return error(id, lock, QStringLiteral("A directory stands where the lock file goes, so that nothing is saved."),
                     QStringLiteral("Remove it: rm -r %1").arg(shellWord(lock)));
    const Holder holder = holderOf(lock);
    if (holder.process <= 0)
        return warning(id, lock, QStringLiteral("A lock file stands there that does not tell whose it is."),
                       remove(lock));
    if (!isOnThisHost(holder))
        return warning(
            id, lock,
            QStringLiteral("A lock file of %1 stands there; whether that lives cannot be told from this host.")
                .arg(wordsOf(holder)),
            remove(lock));
    if (isAlive(holder))
        return note(
            id, lock,
            QStringLiteral("A lock file of %1 stands there, which lives and seems to be writing.").arg(wordsOf(holder)),
            QStringLiteral("None is needed, unless it stays: then end that process."));
    return warning(
        id, lock,
        QStringLiteral("A lock file was left behind by %1, which does not live any more; the next start of the "
                       "application removes it.")
            .arg(wordsOf(holder)),
        remove(lock));
}

} // namespace vruinfo::tool::doctor
