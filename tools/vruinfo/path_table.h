// Where program and user data lie, by name.
#pragma once

#include <vector>

#include <QtCore/QString>

namespace vruinfo::tool
{

enum class PathKind {
    Settings, ///< The settings file.
    Program,  ///< Part of the installation.
    User,     ///< A directory of the user's.
    Cache,    ///< A user's, but in the installation.
};

struct NamedPath {
    QString name;
    PathKind kind;
    QString path; ///< Empty when it cannot be had.

    [[nodiscard]] bool exists() const;
};

/// All of them, in the order in which they are told; the library must have started.
[[nodiscard]] std::vector<NamedPath> namedPaths();

} // namespace vruinfo::tool
