// The project's own libraries in this process.
#pragma once

#include <vector>

#include <QtCore/QString>

namespace vruinfo::tool
{

struct LoadedLibrary {
    QString name; ///< Of its file.
    QString path;
};

/// In the order of loading. After a start, the resource libraries of language and partner are among them.
[[nodiscard]] std::vector<LoadedLibrary> loadedLibraries();

} // namespace vruinfo::tool
