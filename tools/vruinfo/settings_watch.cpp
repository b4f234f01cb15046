#include "settings_watch.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <sys/stat.h>

#include "settings_copy.h"

namespace vruinfo::tool
{

FileStamp FileStamp::of(const QString& file)
{
    struct stat status = {};
    if (stat(QFile::encodeName(file).constData(), &status) != 0)
        return {};
    return {true, static_cast<quint64>(status.st_ino), static_cast<qint64>(status.st_size),
            static_cast<qint64>(status.st_mtim.tv_sec), static_cast<qint64>(status.st_mtim.tv_nsec)};
}

bool FileStamp::operator==(const FileStamp& other) const
{
    return exists == other.exists && inode == other.inode && size == other.size && seconds == other.seconds &&
           nanoseconds == other.nanoseconds;
}

SettingsWatch::Reading SettingsWatch::read() const
{
    const SettingsCopy copy(m_file);
    if (copy.isOpen())
        return {snapshotOf(copy.settings(), m_place), copy.isDamaged() ? Trouble::Damaged : Trouble::None};
    return {{}, FileStamp::of(m_file).exists ? Trouble::Unreadable : Trouble::None};
}

void SettingsWatch::tell(Trouble trouble, Printer& printer)
{
    if (trouble == m_told)
        return;
    m_told = trouble;
    if (trouble == Trouble::Unreadable)
        printer.error(QStringLiteral("the settings file %1 cannot be read, or not be copied to %2; watching goes on")
                          .arg(m_file, QDir::tempPath()));
    if (trouble == Trouble::Damaged)
        printer.error(QStringLiteral("the settings file %1 has lines that are no settings; watching goes on with the "
                                     "others")
                          .arg(m_file));
}

Changes SettingsWatch::look(Printer& printer)
{
    const FileStamp stamp = FileStamp::of(m_file);
    const bool isSettled = stamp == m_stamp;
    if (isSettled && !m_isDoubtful)
        return {};
    m_stamp = stamp;
    const Reading reading = read();
    m_isDoubtful = reading.trouble == Trouble::Unreadable || (reading.trouble == Trouble::Damaged && !isSettled);
    tell(reading.trouble, printer);
    if (m_isDoubtful)
        return {};
    Changes changes = m_values ? changesBetween(*m_values, reading.values) : Changes();
    m_values = reading.values;
    return changes;
}

} // namespace vruinfo::tool
