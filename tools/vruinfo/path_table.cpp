#include "path_table.h"

#include <array>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include "VrUInfo/Paths.h"
#include "VrUInfo/Resources.h"
#include "VrUInfo/VornaConfig.h"
#include "command.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

unsigned int cachePath(wchar_t* path)
{
    const std::wstring cache(GetVornUserDataCachePath());
    cache.copy(path, cache.size());
    path[cache.size()] = L'\0'; // the folder's path has fewer than kVornPathCapacity characters
    return static_cast<unsigned int>(cache.size());
}

unsigned int resourcePath(wchar_t* path)
{
    return GetResourceDllPath(path, kVornPathCapacity);
}

unsigned int helpPath(wchar_t* path)
{
    return static_cast<unsigned int>(GetHelpFilePath(path, static_cast<int>(kVornPathCapacity)));
}

struct PathRow {
    const char* name;
    PathKind kind;
    unsigned int (*write)(wchar_t* path);
};

constexpr std::array<PathRow, 21> kRows = {{
    {"program directory", PathKind::Program, GetVornProgramPath},
    {"home", PathKind::User, GetUserProfileDirectory},
    {"roaming data", PathKind::User, GetUserApplicationDataPath},
    {"roaming company data", PathKind::User, GetUserApplicationDataComanyPath},
    {"roaming product data", PathKind::User, GetUserApplicationDataProductPath},
    {"roaming version data", PathKind::User, GetUserApplicationDataVersionPath},
    {"roaming language data", PathKind::User, GetUserApplicationDataLanguagePath},
    {"support", PathKind::User, GetUserApplicationDataSupportPath},
    {"plotters", PathKind::User, GetUserApplicationDataPlottersPath},
    {"crash reports", PathKind::User, GetUserApplicationDataCrashReportPath},
    {"print styles", PathKind::User, GetUserApplicationDataPrintstylePath},
    {"local data", PathKind::User, GetUserLocalApplicationDataPath},
    {"local company data", PathKind::User, GetUserLocalApplicationDataComanyPath},
    {"local product data", PathKind::User, GetUserLocalApplicationDataProductPath},
    {"local version data", PathKind::User, GetUserLocalApplicationDataVersionPath},
    {"local language data", PathKind::User, GetUserLocalApplicationDataLanguagePath},
    {"templates", PathKind::User, GetUserLocalApplicationDataTemplatePath},
    {"user data cache", PathKind::Cache, cachePath},
    {"language user data cache", PathKind::Cache, GetVornUserDataCacheLanPath},
    {"resource directory", PathKind::Program, resourcePath},
    {"help file", PathKind::Program, helpPath},
}};

QString settingsPath()
{
    std::array<char, std::size_t{kVornPathCapacity} * 4> path{}; // up to four bytes a character
    const bool isKnown = getConfigPath(static_cast<int>(path.size()), path.data());
    return isKnown ? QFile::decodeName(path.data()) : QString();
}

} // namespace

bool NamedPath::exists() const
{
    return !path.isEmpty() && QFileInfo::exists(path);
}

std::vector<NamedPath> namedPaths()
{
    std::vector<NamedPath> all{{QStringLiteral("settings file"), PathKind::Settings, settingsPath()}};
    for (const PathRow& row : kRows) {
        std::array<wchar_t, kVornLeafPathCapacity> path{};
        const bool isKnown = row.write(path.data()) != 0;
        all.push_back({text(row.name), row.kind, isKnown ? fromWide(path.data()) : QString()});
    }
    return all;
}

} // namespace vruinfo::tool
