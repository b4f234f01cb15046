#include "repair.h"

#include <cerrno>

#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLockFile>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTemporaryFile>
#include <QtCore/QVariant>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "doctor/file_state.h"
#include "provision/bounded_values.h"
#include "saved_form.h"
#include "stored_value.h"

namespace vruinfo::tool
{
namespace
{

using doctor::FileState;

constexpr qint64 kLargest = qint64{64} << 20;
constexpr int kPatience = 2000; // milliseconds
constexpr int kMostNames = 100; // within one second

/// What the settings library reads.
struct Reading {
    QMap<QString, QVariant> values;
    bool isWhole = false;
    bool isBounded = false; ///< No value asks for all the memory there is; with such a one nothing is read.
};

/// The settings library hands such a name out, but nothing can be read by it.
bool hasEmptyPart(const QString& key)
{
    constexpr QLatin1Char kSeparator('/');
    return key.isEmpty() || key.startsWith(kSeparator) || key.endsWith(kSeparator) || key.contains(QLatin1String("//"));
}

/// What this program can neither read nor write stays as it is in its line.
void insert(Reading& reading, const QString& key, const QVariant& value)
{
    if (!hasEmptyPart(key) && !isForeign(value))
        reading.values.insert(key, value);
}

/// While it lives, the settings library says nothing of values that this program does not know, such as colours.
class [[nodiscard]] Quiet final
{
public:
    Quiet() : m_former(qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {})) {}
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
    ~Quiet() { qInstallMessageHandler(m_former); }

private:
    QtMessageHandler m_former;
};

bool writeAll(QFile& file, const QByteArray& bytes)
{
    return file.write(bytes) == bytes.size() && file.flush();
}

/// A directory for files that are read by the settings library alone.
class Workplace final
{
public:
    [[nodiscard]] bool isThere() const { return m_directory.isValid(); }

    /// Nothing when no file could be written.
    std::optional<Reading> read(const QByteArray& bytes)
    {
        QFile file(nextName());
        if (!file.open(QIODevice::WriteOnly) || !writeAll(file, bytes))
            return std::nullopt;
        file.close();
        const Quiet quiet;
        const QSettings settings(file.fileName(), QSettings::NativeFormat);
        Reading reading;
        reading.isBounded = vruinfo::internal::canTakeValuesApart(settings);
        if (!reading.isBounded)
            return reading;
        for (const QString& key : settings.allKeys())
            insert(reading, key, settings.value(key));
        reading.isWhole = settings.status() == QSettings::NoError;
        return reading;
    }
    /// Not where a line has a value that keeps the whole file from being read.
    bool isOfUse(const QByteArray& line)
    {
        if (!line.contains("@Variant("))
            return true;
        const auto alone = read(line);
        return !alone || alone->isBounded;
    }
    /// A value as the settings library writes it: its group's line and its own.
    QByteArray write(const QString& key, const QVariant& value)
    {
        QFile file(nextName());
        QSettings(file.fileName(), QSettings::NativeFormat).setValue(key, value);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// The names that the settings library has for the groups of a file.
    QSet<QString> groupsIn(const QByteArray& bytes)
    {
        const auto names = read(groupLines(bytes, "\na=1$0\n"));
        QSet<QString> groups;
        if (names) {
            for (auto name = names->values.cbegin(); name != names->values.cend(); ++name)
                groups.insert(name.key().section(QLatin1Char('/'), 0, -2));
        }
        return groups;
    }

private:
    /// The settings library remembers what it read under a name.
    QString nextName() { return m_directory.filePath(QStringLiteral("%1.conf").arg(++m_count)); }

    QTemporaryDir m_directory;
    int m_count = 0;
};

Problem noWorkplace()
{
    return {Exit::Failed, QStringLiteral("no file could be written in %1, where the repair is tried before it is made; "
                                         "nothing was changed; see that the directory is writable and has room, or set "
                                         "TMPDIR to another one")
                              .arg(QDir::tempPath())};
}

/// Values that are in the first reading, and not so in the second; without those whose text was meant to change.
QMap<QString, QVariant> missing(const Reading& before, const Reading& after, const Reading& closed)
{
    QMap<QString, QVariant> values;
    for (auto value = before.values.cbegin(); value != before.values.cend(); ++value) {
        const auto now = after.values.constFind(value.key());
        const bool isThere = now != after.values.cend();
        const bool mayDiffer = isThere && closed.values.contains(value.key());
        if (!mayDiffer && (!isThere || !StoredValue::isSame(*now, *value)))
            values.insert(value.key(), *value);
    }
    return values;
}

/// What the settings library wrote for one value, with the first parts of the key's path in the group's name. It takes
/// one part itself, and finds both; a group named "General" it marks where the name has nothing else.
QByteArray inGroupOf(const QByteArray& written, int parts)
{
    const int groupEnd = written.indexOf("]\n");
    QByteArray group = written.mid(1, groupEnd - 1);
    QByteArray rest = written.mid(groupEnd + 2);
    if (parts > 1 && group.compare("%general", Qt::CaseInsensitive) == 0)
        group.remove(0, 1);
    for (; parts > 1; --parts) {
        const int separator = rest.indexOf('\\');
        group += '\\' + rest.left(separator);
        rest.remove(0, separator + 1);
    }
    return '[' + group + "]\n" + rest;
}

/// A value's lines for each group that may have it. Where a file has a group with several parts in its name it depends
/// on the order of reads which group's value is found, unless they agree.
QByteArray linesFor(const QString& key, const QByteArray& written, const QSet<QString>& groups)
{
    QByteArray lines = written;
    const int parts = key.count(QLatin1Char('/'));
    for (int part = 2; part <= parts; ++part) {
        if (groups.contains(key.section(QLatin1Char('/'), 0, part - 1)))
            lines += inGroupOf(written, part);
    }
    return lines;
}

/// Lines that begin with their group's, which is not told twice in a row. A line's end in a value is an escape there.
void append(QByteArray& all, const QByteArray& lines)
{
    const QByteArray group = lines.left(lines.indexOf('\n') + 1);
    const QByteArray last = all.mid(all.lastIndexOf("\n[") + 1);
    all += last.startsWith(group) ? lines.mid(group.size()) : lines;
}

/// Puts behind the lines what the settings library read between them before, and would not read now: as the settings
/// library has such a value once it has written it, which any program's next change does to all of them.
std::optional<Problem> complete(Repair& repair, const QByteArray& damaged, Workplace& workplace)
{
    auto wanted = workplace.read(damaged);
    const auto closed = workplace.read(repair.lines.closedAlone);
    auto after = workplace.read(repair.lines.bytes);
    if (!wanted || !closed || !after)
        return noWorkplace();
    if (const auto values = missing(*wanted, *after, *closed); !values.isEmpty()) {
        const QSet<QString> groups = workplace.groupsIn(repair.lines.bytes);
        QByteArray added;
        for (auto value = values.cbegin(); value != values.cend(); ++value)
            append(added, linesFor(value.key(), workplace.write(value.key(), *value), groups));
        const auto rewritten = workplace.read(added);
        repair.lines.bytes = endedText(repair.lines.bytes) + added;
        after = workplace.read(repair.lines.bytes);
        if (!rewritten || !after)
            return noWorkplace();
        for (auto value = rewritten->values.cbegin(); value != rewritten->values.cend(); ++value)
            wanted->values.insert(value.key(), *value);
    }
    if (!after->isWhole || !missing(*wanted, *after, *closed).isEmpty())
        return Problem{Exit::Failed, QStringLiteral("the settings file cannot be repaired without losing what can be "
                                                    "read from it; nothing was changed; correct it in a text editor")};
    repair.values = after->values.size();
    return std::nullopt;
}

Problem notRepaired(const QString& file)
{
    return {Exit::Failed,
            QStringLiteral("the settings file %1 cannot be written, nothing was changed; make the file and "
                           "its directory writable for this user and see that the disk has room")
                .arg(file)};
}

/// Brings to disk what a directory says about its files.
void syncDirectoryOf(const QString& file)
{
    const int directory =
        open(QFile::encodeName(QFileInfo(file).path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0)
        return;
    fsync(directory);
    close(directory);
}

/// Owner and rights of another file, and everything on disk.
bool finishAs(const QFile& file, const QString& model)
{
    struct stat status = {};
    if (stat(QFile::encodeName(model).constData(), &status) != 0)
        return false;
    constexpr mode_t kRights = 07777;
    if (geteuid() == 0 && fchown(file.handle(), status.st_uid, status.st_gid) != 0)
        return false;
    return fchmod(file.handle(), status.st_mode & kRights) == 0 && fsync(file.handle()) == 0;
}

/// A second name for a file; a copy where the file system has no such.
/// \return 0, or the error; EEXIST where the name is taken
int giveName(const QString& file, const QString& name)
{
    if (link(QFile::encodeName(file).constData(), QFile::encodeName(name).constData()) == 0)
        return 0;
    const int error = errno;
    if (error != EPERM && error != EXDEV && error != EOPNOTSUPP && error != EMLINK)
        return error;
    QFile from(file);
    QFile to(name);
    if (QFileInfo::exists(name))
        return EEXIST;
    const bool isDone = from.open(QIODevice::ReadOnly) && to.open(QIODevice::WriteOnly | QIODevice::NewOnly) &&
                        writeAll(to, from.readAll()) && finishAs(to, file);
    if (!isDone)
        to.remove();
    return isDone ? 0 : EIO;
}

/// Gives the damaged file a dated name that no other has. \return that name; empty when it cannot be done
QString setAside(const QString& target)
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    for (int attempt = 0; attempt < kMostNames; ++attempt) {
        const QString number = attempt == 0 ? QString() : QLatin1Char('-') + QString::number(attempt);
        const QString name = QStringLiteral("%1.%2%3.damaged").arg(target, stamp, number);
        const int error = giveName(target, name);
        if (error != EEXIST)
            return error == 0 ? name : QString();
    }
    return {};
}

/// Puts the whole file in the damaged one's place; at every moment the name stands for one of the two.
std::optional<Problem> replace(const QString& target, Repair& repair)
{
    QTemporaryFile whole(target + QStringLiteral(".XXXXXX"));
    if (!whole.open() || !writeAll(whole, repair.lines.bytes) || !finishAs(whole, target))
        return notRepaired(target);
    const QString aside = setAside(target);
    if (aside.isEmpty())
        return notRepaired(target);
    syncDirectoryOf(target);
    if (rename(QFile::encodeName(whole.fileName()).constData(), QFile::encodeName(target).constData()) != 0) {
        QFile::remove(aside);
        return notRepaired(target);
    }
    whole.setAutoRemove(false);
    syncDirectoryOf(target);
    repair.setAside = aside;
    return std::nullopt;
}

Result<Repair> repaired(const QString& target)
{
    const std::optional<QByteArray> bytes = doctor::bytesOf(target, kLargest);
    if (!bytes)
        return Problem{
            Exit::Failed,
            QStringLiteral("the settings file %1 cannot be read, or has more than %2 MiB; nothing was changed")
                .arg(target)
                .arg(kLargest >> 20)};
    return repairBytes(*bytes);
}

Result<Repair> repairedUnderLock(const QString& file, const QString& target)
{
    if (!FileState::of(target).isWritable)
        return notRepaired(file);
    QLockFile lock(file + QStringLiteral(".lock"));
    if (!lock.tryLock(kPatience)) {
        if (lock.error() != QLockFile::LockFailedError)
            return notRepaired(file);
        return Problem{
            Exit::Failed,
            QStringLiteral("another program holds the lock file %1.lock, nothing was changed; try again, and "
                           "see what `vruinfo doctor` says about that file")
                .arg(file)};
    }
    Result<Repair> result = repaired(target);
    if (!result || !result->isDamaged)
        return result;
    Repair repair = *result;
    const std::optional<Problem> problem = replace(target, repair);
    return problem ? Result<Repair>(*problem) : Result<Repair>(repair);
}

} // namespace

Result<Repair> repairBytes(const QByteArray& bytes)
{
    Workplace workplace;
    if (!workplace.isThere())
        return noWorkplace();
    Repair repair;
    repair.lines = mendedLines(bytes, [&](const QByteArray& line) { return workplace.isOfUse(line); });
    repair.isDamaged = repair.lines.isChanged();
    if (!repair.isDamaged)
        return repair;
    const std::optional<Problem> problem = complete(repair, bytes, workplace);
    return problem ? Result<Repair>(*problem) : Result<Repair>(repair);
}

Result<Repair> repairSettings(const QString& file, RepairMode mode)
{
    if (FileState::of(file).kind == FileState::Kind::Missing)
        return Repair();
    if (const std::optional<doctor::FileFault> fault = doctor::faultOf(file))
        return Problem{
            Exit::Failed,
            QStringLiteral("the settings file %1 %2, nothing was changed. %3").arg(file, fault->words, fault->remedy)};
    const QString target = QFileInfo(file).canonicalFilePath();
    Result<Repair> look = repaired(target);
    if (mode == RepairMode::Look || !look || !look->isDamaged)
        return look;
    return repairedUnderLock(file, target);
}

} // namespace vruinfo::tool
