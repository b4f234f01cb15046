// What stands at a path, asked without waiting for anything and without changing anything.
#pragma once

#include <optional>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include "doctor/finding.h"

namespace vruinfo::tool::doctor
{

struct FileState {
    enum class Kind {
        Missing,
        DanglingLink, ///< A link to nothing, or in a circle.
        OutOfReach,   ///< In a directory that this user may not look into.
        File,
        Directory,
        Other, ///< A pipe, a socket, a device.
    };

    Kind kind = Kind::Missing;
    bool isReadable = false; ///< By this user; of a directory, that it can be listed and entered.
    bool isWritable = false; ///< By this user; of a directory, that files can be made in it.
    qint64 size = 0;

    [[nodiscard]] static FileState of(const QString& path);
    [[nodiscard]] bool isReadableFile() const { return kind == Kind::File && isReadable; }
};

/// The bytes of a file that this user can read; nothing for what is no such file, or is larger than that.
[[nodiscard]] std::optional<QByteArray> bytesOf(const QString& path, qint64 most);

/// What keeps something from being read as a file.
struct FileFault {
    const char* id; ///< "missing", "dangling-link", "unreadable" or "not-a-file".
    QString words;  ///< Behind the file's name.
    QString remedy; ///< Empty for a missing file, since that depends on what it is.
};

[[nodiscard]] std::optional<FileFault> faultOf(const QString& path);

/// How a check speaks about a file that it needs.
struct FileWords {
    const char* idPrefix;    ///< "ini." makes "ini.missing".
    Severity whenMissing;    ///< How bad it is that there is none.
    Severity otherwise;      ///< How bad it is that there is one that cannot be read.
    const char* consequence; ///< What comes of it: the end of a sentence.
    QString remedyIfMissing;
};

[[nodiscard]] std::optional<Finding> faultFinding(const QString& path, const FileWords& words);

/// What keeps a directory from being written into, or from being made.
struct Obstacle {
    QString path; ///< The directory or an upper one, or what stands in the place of one.
    QString words;
    QString remedy;
};

[[nodiscard]] std::optional<Obstacle> obstacleTo(const QString& directory);

/// A word of a command line, in quotes where a shell needs them.
[[nodiscard]] QString shellWord(const QString& word);
/// "vruinfo", a command and a path.
[[nodiscard]] QString toolLine(const char* command, const QString& path);

} // namespace vruinfo::tool::doctor
