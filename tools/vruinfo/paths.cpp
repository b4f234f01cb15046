#include "commands.h"

#include <array>
#include <vector>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include "VrUInfo/Paths.h"
#include "VrUInfo/Resources.h"
#include "VrUInfo/VornaConfig.h"
#include "context.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr int kStateWidth = 9;
constexpr int kNameWidth = 26;

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
    unsigned int (*write)(wchar_t* path);
};

constexpr std::array<PathRow, 21> kRows = {{
    {"program directory", GetVornProgramPath},
    {"home", GetUserProfileDirectory},
    {"roaming data", GetUserApplicationDataPath},
    {"roaming company data", GetUserApplicationDataComanyPath},
    {"roaming product data", GetUserApplicationDataProductPath},
    {"roaming version data", GetUserApplicationDataVersionPath},
    {"roaming language data", GetUserApplicationDataLanguagePath},
    {"support", GetUserApplicationDataSupportPath},
    {"plotters", GetUserApplicationDataPlottersPath},
    {"crash reports", GetUserApplicationDataCrashReportPath},
    {"print styles", GetUserApplicationDataPrintstylePath},
    {"local data", GetUserLocalApplicationDataPath},
    {"local company data", GetUserLocalApplicationDataComanyPath},
    {"local product data", GetUserLocalApplicationDataProductPath},
    {"local version data", GetUserLocalApplicationDataVersionPath},
    {"local language data", GetUserLocalApplicationDataLanguagePath},
    {"templates", GetUserLocalApplicationDataTemplatePath},
    {"user data cache", cachePath},
    {"language user data cache", GetVornUserDataCacheLanPath},
    {"resource directory", resourcePath},
    {"help file", helpPath},
}};

struct Found {
    QString name;
    QString path; ///< Empty when it cannot be had.

    [[nodiscard]] bool exists() const { return !path.isEmpty() && QFileInfo::exists(path); }
    [[nodiscard]] QString state() const { return exists() ? QStringLiteral("exists") : QStringLiteral("missing"); }
};

QString settingsFile()
{
    std::array<char, std::size_t{kVornPathCapacity} * 4> path{}; // up to four bytes a character
    const bool isKnown = getConfigPath(static_cast<int>(path.size()), path.data());
    return isKnown ? QFile::decodeName(path.data()) : QString();
}

std::vector<Found> findAll()
{
    std::vector<Found> all{{QStringLiteral("settings file"), settingsFile()}};
    for (const PathRow& row : kRows) {
        std::array<wchar_t, kVornLeafPathCapacity> path{};
        const bool isKnown = row.write(path.data()) != 0;
        all.push_back({text(row.name), isKnown ? fromWide(path.data()) : QString()});
    }
    return all;
}

void printLines(Printer& printer, const std::vector<Found>& all)
{
    for (const Found& found : all) {
        const QString path = found.path.isEmpty() ? QStringLiteral("(cannot be built: too long)") : found.path;
        printer.line(padded(found.state(), kStateWidth) + padded(found.name, kNameWidth) + path);
    }
}

void printJson(Printer& printer, const std::vector<Found>& all)
{
    QJsonArray rows;
    for (const Found& found : all)
        rows.append(QJsonObject{{QStringLiteral("name"), found.name},
                                {QStringLiteral("path"), found.path},
                                {QStringLiteral("exists"), found.exists()}});
    printer.json(QJsonDocument(rows));
}

} // namespace

Exit runPaths(Context& context)
{
    if (const auto problem = context.start())
        return context.fail(*problem);
    const std::vector<Found> all = findAll();
    if (context.wantsJson())
        printJson(context.printer(), all);
    else
        printLines(context.printer(), all);
    return Exit::Done;
}

} // namespace vruinfo::tool
