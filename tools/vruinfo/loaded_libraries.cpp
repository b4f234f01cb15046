#include "loaded_libraries.h"

#include <array>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <link.h>

#include "VrUInfo/Oem.h"
#include "VrUInfo/VornaConfig.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

int append(dl_phdr_info* loaded, std::size_t, void* libraries)
{
    const QString path = QFile::decodeName(loaded->dlpi_name);
    if (!path.isEmpty()) // the program itself has no name
        static_cast<std::vector<LoadedLibrary>*>(libraries)->push_back({QFileInfo(path).fileName(), path});
    return 0;
}

/// A partner's library can have any name.
QString brandingLibrary()
{
    const HMODULE library = vornConfig()->isNeedCheckOemPath() ? GetOemResourceDllHandle() : nullptr;
    if (!library)
        return {};
    std::array<wchar_t, kVornPathCapacity> path{};
    GetModuleFileNameW(library, path.data(), kVornPathCapacity);
    return fromWide(path.data());
}

} // namespace

std::vector<LoadedLibrary> loadedLibraries()
{
    std::vector<LoadedLibrary> all;
    dl_iterate_phdr(append, &all);
    const QString branding = brandingLibrary();
    std::vector<LoadedLibrary> own;
    for (const LoadedLibrary& library : all) {
        if (library.name.startsWith(QLatin1String("libVr")) || library.path == branding)
            own.push_back(library);
    }
    return own;
}

} // namespace vruinfo::tool
