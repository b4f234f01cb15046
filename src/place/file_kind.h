// What stands at a path, asked before the settings library opens it.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <sys/stat.h>

namespace vruinfo::internal
{

/// Whether reading it to its end is over soon: a pipe waits for who writes, and a device may have no end. What is not
/// there and what is a directory are refused at once when they are opened.
[[nodiscard]] inline bool hasAnEnd(const QString& path)
{
    struct stat status = {};
    const bool isThere = stat(QFile::encodeName(path).constData(), &status) == 0;
    return !isThere || S_ISREG(status.st_mode) || S_ISDIR(status.st_mode);
}

/// Whether the name is taken, also by a link that leads nowhere.
[[nodiscard]] inline bool isTaken(const QString& path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0;
}

} // namespace vruinfo::internal
