// Repairing a damaged settings file.
#pragma once

#include <QtCore/QString>

#include "repair_lines.h"
#include "result.h"

namespace vruinfo::tool
{

/// What a repair made of a settings file, or would make of it.
struct Repair {
    bool isDamaged = false;
    MendedLines lines;
    int values = 0;   ///< That can be read from the whole file.
    QString setAside; ///< Where the damaged file is now, byte for byte; empty where it is left in its place.
};

enum class RepairMode { Look, Change };

/// Reads a settings file and, where it is damaged, puts a whole one in its place in one step, with the same rights; the
/// damaged one gets a dated name beside it before. Every value that the settings library reads from the damaged file it
/// reads from the whole one, too; only a text that had other settings in it ends with its line.
///
/// As the settings library does, it follows a symbolic link, and keeps programs that write at the same time waiting by
/// the lock file. A file that is not there is not damaged.
[[nodiscard]] Result<Repair> repairSettings(const QString& file, RepairMode mode);

/// The same without any file.
[[nodiscard]] Result<Repair> repairBytes(const QByteArray& bytes);

} // namespace vruinfo::tool
