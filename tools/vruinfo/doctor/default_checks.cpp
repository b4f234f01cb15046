#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

#include "doctor/checks.h"
#include "doctor/file_state.h"

namespace vruinfo::tool::doctor
{
namespace
{

/// The files that the settings library reads behind the user's own, first those that go before.
QStringList filesBehind(const Patient& patient)
{
    QStringList directories = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    QStringList files{directories.isEmpty() ? QString()
                                            : directories.takeFirst() + QLatin1Char('/') + patient.names.sharedFile()};
    for (const QString& name : {patient.names.file(), patient.names.sharedFile()}) {
        for (const QString& directory : directories)
            files.append(directory + QLatin1Char('/') + name);
    }
    return files;
}

Findings defaultsFindings(const QString& path)
{
    const FileState state = FileState::of(path);
    if (state.kind == FileState::Kind::Missing || path.isEmpty())
        return {};
    if (const auto fault = faultFinding(path, {"defaults.",
                                               Severity::Note,
                                               Severity::Warning,
                                               "so that defaults that may be meant for everybody are not in effect",
                                               {}}))
        return {*fault};
    return {note(
        "defaults.in-effect", path, QStringLiteral("Its values are in effect where the user has none of that name."),
        QStringLiteral("None is needed, if they are meant; `vruinfo export` has the user's own values only."))};
}

} // namespace

Findings checkDefaults(const Patient& patient)
{
    Findings findings;
    for (const QString& file : filesBehind(patient))
        append(findings, defaultsFindings(file));
    return findings;
}

} // namespace vruinfo::tool::doctor
