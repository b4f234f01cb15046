#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

#include <sys/statvfs.h>

#include "doctor/checks.h"
#include "doctor/damaged_lines.h"
#include "doctor/file_state.h"
#include "doctor/lock_file.h"

namespace vruinfo::tool::doctor
{
namespace
{

constexpr qint64 kMiB = qint64{1024} * 1024;
constexpr qint64 kHuge = 16 * kMiB;
constexpr qint64 kMostScanned = 64 * kMiB;
constexpr std::size_t kMostNumbers = 20;
constexpr int kManyBackups = 10;

QString numbersOf(const std::vector<int>& lines)
{
    QStringList numbers;
    for (std::size_t i = 0; i < lines.size() && i < kMostNumbers; ++i)
        numbers.append(QString::number(lines.at(i)));
    const QString more =
        lines.size() > kMostNumbers ? QStringLiteral(" and %1 more").arg(lines.size() - kMostNumbers) : QString();
    return numbers.join(QStringLiteral(", ")) + more;
}

constexpr char kMend[] =
    "`vruinfo doctor --repair` keeps a copy and brings back what can be read; what cannot is in a backup, if anywhere.";

Findings damage(const QString& path)
{
    const QByteArray bytes = bytesOf(path, kMostScanned).value_or(QByteArray());
    Findings findings;
    if (const std::vector<int> lines = damagedLines(bytes); !lines.empty())
        findings.push_back(error(
            "settings.damaged", path,
            QStringLiteral("Lines that are no settings (%1) are not read, and are gone when the file is next written.")
                .arg(numbersOf(lines)),
            text(kMend)));
    if (const std::vector<int> lines = openLines(bytes); !lines.empty())
        findings.push_back(error("settings.open-text", path,
                                 QStringLiteral("Texts that do not end with their line (%1) take settings behind them "
                                                "along, which are not read.")
                                     .arg(numbersOf(lines)),
                                 text(kMend)));
    return findings;
}

std::optional<Finding> hugeness(const QString& path)
{
    const qint64 size = FileState::of(path).size;
    if (size <= kHuge)
        return std::nullopt;
    return warning("settings.huge", path,
                   QStringLiteral("It has %1 MiB, which slows down every start.").arg(size / kMiB),
                   QStringLiteral("Find what fills it with `vruinfo tree /`, and remove that with `vruinfo rm`."));
}

QFileInfoList besides(const Patient& patient)
{
    const QFileInfo settings(patient.settingsFile);
    if (!FileState::of(settings.path()).isReadable)
        return {};
    return QDir(settings.path()).entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

QFileInfoList matching(const Patient& patient, const QString& ending)
{
    const QRegularExpression pattern(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(QFileInfo(patient.settingsFile).fileName()) + ending));
    QFileInfoList found;
    for (const QFileInfo& file : besides(patient)) {
        if (pattern.match(file.fileName()).hasMatch())
            found.append(file);
    }
    return found;
}

qint64 sizeOf(const QFileInfoList& files)
{
    qint64 size = 0;
    for (const QFileInfo& file : files)
        size += file.size();
    return size;
}

std::optional<Finding> backups(const Patient& patient)
{
    const QFileInfoList found = matching(patient, QStringLiteral("\\..*\\.bak"));
    if (found.size() <= kManyBackups)
        return std::nullopt;
    return note("settings.backups", patient.settingsFile,
                QStringLiteral("%1 backups of it take %2 bytes.").arg(found.size()).arg(sizeOf(found)),
                QStringLiteral("Remove those that are not needed any more: %1.*.bak").arg(patient.settingsFile));
}

/// A save writes the whole file anew before the old one goes.
std::optional<Finding> roomFinding(const QString& path)
{
    constexpr quint64 kNewValues = 4096;
    struct statvfs disk = {};
    if (statvfs(QFile::encodeName(QFileInfo(path).path()).constData(), &disk) != 0)
        return std::nullopt;
    const quint64 needed = static_cast<quint64>(FileState::of(path).size) + kNewValues;
    if (static_cast<quint64>(disk.f_bavail) * disk.f_frsize >= needed)
        return std::nullopt;
    return error("settings.no-room", path,
                 QStringLiteral("The disk that it lies on is full, so that no change of a setting is kept."),
                 QStringLiteral("Make room there: see df %1").arg(shellWord(QFileInfo(path).path())));
}

} // namespace

Findings checkSettingsFile(const Patient& patient)
{
    const QString& path = patient.settingsFile;
    if (FileState::of(path).kind == FileState::Kind::Missing)
        return {note("settings.missing", path,
                     QStringLiteral("It is not there, so that the next start is a first one with nothing remembered."),
                     QStringLiteral("None is needed: the application makes it."))};
    const auto fault = faultFinding(
        path,
        {"settings.", Severity::Note, Severity::Error, "so that no setting is read, and perhaps none is kept", {}});
    if (fault)
        return {*fault};
    Findings findings;
    append(findings, damage(path));
    append(findings, hugeness(path));
    return findings;
}

Findings checkSettingsWritable(const Patient& patient)
{
    const QString& path = patient.settingsFile;
    const FileState state = FileState::of(path);
    const QString lost = QStringLiteral("so that no change of a setting is kept.");
    Findings findings;
    if (state.kind == FileState::Kind::File && !state.isWritable)
        findings.push_back(error("settings.not-writable", path,
                                 QStringLiteral("It cannot be written by this user, ") + lost,
                                 QStringLiteral("Let this user write it: chmod u+w %1").arg(shellWord(path))));
    if (const auto obstacle = obstacleTo(QFileInfo(path).path()))
        findings.push_back(error("settings.not-writable", obstacle->path,
                                 QStringLiteral("It is above the settings file and %1, ").arg(obstacle->words) + lost,
                                 obstacle->remedy));
    append(findings, roomFinding(path));
    return findings;
}

Findings checkSettingsLock(const Patient& patient)
{
    Findings findings;
    append(findings, lockFinding("settings.lock", patient.settingsFile + QStringLiteral(".lock")));
    return findings;
}

Findings checkLeftovers(const Patient& patient)
{
    Findings findings;
    for (const QFileInfo& file : matching(patient, QStringLiteral("\\.[A-Za-z]{6}")))
        findings.push_back(note(
            "settings.leftover", file.filePath(),
            QStringLiteral("It is what a save left behind that was interrupted, and is never read."),
            QStringLiteral("Remove it when no application of the user runs: rm %1").arg(shellWord(file.filePath()))));
    append(findings, backups(patient));
    return findings;
}

} // namespace vruinfo::tool::doctor
