#include <array>

#include <QtCore/QFileInfo>

#include "VrOsBase/VrOsBase.h"
#include "doctor/checks.h"
#include "doctor/file_state.h"
#include "doctor/isolated.h"
#include "loaded_libraries.h"
#include "text.h"

namespace vruinfo::tool::doctor
{
namespace
{

constexpr char kIcons[] = "libVrUInfoIcons.so";

/// Where a loaded library looks for what goes with it, from its own directory.
constexpr std::array<const char*, 2> kIconPlaces = {"", "vruinfo/"};
constexpr std::array<const char*, 4> kBoxPlaces = {"", "vruinfo/", "../libexec/vruinfo/", "../../libexec/vruinfo/"};

bool isSameDirectory(const QString& one, const QString& other)
{
    return QFileInfo(one).canonicalFilePath() == QFileInfo(other).canonicalFilePath();
}

/// The directory that a library of ours was loaded from, links followed; empty when it is not loaded.
QString directoryOf(const QString& name)
{
    for (const LoadedLibrary& library : loadedLibraries()) {
        if (library.name == name)
            return QFileInfo(QFileInfo(library.path).canonicalFilePath()).path();
    }
    return {};
}

/// Nothing when it is in none of the places.
template <std::size_t count>
QString foundIn(const QString& directory, const std::array<const char*, count>& places, const char* name)
{
    for (const char* const place : places) {
        QString path = directory + QLatin1Char('/') + text(place) + text(name);
        if (FileState::of(path).isReadableFile())
            return path;
    }
    return {};
}

std::optional<Finding> elsewhere(const Patient& patient, const QString& name, const QString& path)
{
    if (isSameDirectory(QFileInfo(path).path(), patient.installation))
        return std::nullopt;
    return note("program.elsewhere", name,
                QStringLiteral("It is not used from the installation, but from %1.").arg(path),
                QStringLiteral("None is needed, if the application takes it from there, too."));
}

Findings loadFindings(const QString& path)
{
    if (LoadLibraryW(toWide(path).c_str()))
        return {};
    return {warning("program.no-icons", path,
                    QStringLiteral("It cannot be loaded, so that there are no icons; the loader says: %1.")
                        .arg(fromWide(VrGetLoaderMessage())),
                    QStringLiteral("Put the library of the installation package in its place, and see that Qt Gui is "
                                   "installed."))};
}

} // namespace

Findings checkLibraries(const Patient& patient)
{
    Findings findings;
    for (const LoadedLibrary& library : loadedLibraries())
        append(findings, elsewhere(patient, library.name, library.path));
    return findings;
}

Findings checkIconLibrary(const Patient& patient)
{
    const QString directory = directoryOf(QStringLiteral("libVrUInfo.so"));
    const QString path = foundIn(directory, kIconPlaces, kIcons);
    if (path.isEmpty())
        return {
            warning("program.no-icons", text(kIcons),
                    QStringLiteral("It is not beside libVrUInfo.so in %1, so that there are no icons.").arg(directory),
                    QStringLiteral("Put the library of the installation package there."))};
    Findings findings;
    append(findings, elsewhere(patient, text(kIcons), path));
    const Finding broken = warning("program.no-icons", path, QStringLiteral("Loading it"),
                                   QStringLiteral("Put the library of the installation package in its place."));
    append(findings, checkIsolated([&path] { return loadFindings(path); }, broken));
    return findings;
}

Findings checkMessageBox(const Patient& patient)
{
    const QString directory = directoryOf(QStringLiteral("libVrPlatformBase.so"));
    Findings findings;
    for (const char* const name : {"libVrMessageBoxUi.so", "VrMessageBox"}) {
        const QString path = foundIn(directory, kBoxPlaces, name);
        if (path.isEmpty())
            findings.push_back(
                warning("program.no-message-box", text(name),
                        QStringLiteral("It does not go with libVrPlatformBase.so in %1, so that messages and "
                                       "questions may not be seen in a window.")
                            .arg(directory),
                        QStringLiteral("Put the file of the installation package there.")));
        else
            append(findings, elsewhere(patient, text(name), path));
    }
    return findings;
}

} // namespace vruinfo::tool::doctor
