// What happens in a settings file, seen from outside.
#pragma once

#include <optional>

#include "printer.h"
#include "tree_snapshot.h"

namespace vruinfo::tool
{

/// Tells one state of a file from another.
struct FileStamp {
    bool exists = false;
    quint64 inode = 0;
    qint64 size = 0;
    qint64 seconds = 0; ///< Of the last change,
    qint64 nanoseconds = 0;

    /// That of a file now.
    [[nodiscard]] static FileStamp of(const QString& file);
    bool operator==(const FileStamp& other) const;
};

/// Looks at the file whenever it is asked to. Looking works where being notified does not: a home on a network is
/// changed from other machines, too.
class SettingsWatch final
{
public:
    /// The first look has no changes.
    SettingsWatch(QString file, Place place) : m_file(std::move(file)), m_place(std::move(place)) {}

    /// What changed at the place since the look before. A file that cannot be read, or has lines that are no settings,
    /// is told once; for the first, all stays as it was, for the other until the look after finds the same file.
    [[nodiscard]] Changes look(Printer& printer);

private:
    enum class Trouble { None, Unreadable, Damaged };
    struct Reading {
        Snapshot values;
        Trouble trouble;
    };

    [[nodiscard]] Reading read() const;
    void tell(Trouble trouble, Printer& printer);

    QString m_file;
    Place m_place;
    FileStamp m_stamp;
    std::optional<Snapshot> m_values; ///< Nothing until the file could be read.
    bool m_isDoubtful = true;         ///< Whether the file is looked into even when it is still the same.
    Trouble m_told = Trouble::None;
};

} // namespace vruinfo::tool
