#include <QtCore/QDir>
#include <QtCore/QMap>

#include "doctor/checks.h"
#include "doctor/file_state.h"

namespace vruinfo::tool::doctor
{
namespace
{

/// Directories that one obstacle keeps from being made or written.
struct Blocked {
    Obstacle obstacle;
    QStringList names;
};

Finding blockedFinding(const Blocked& blocked, Severity severity)
{
    return {severity, QStringLiteral("directory.not-writable"), blocked.obstacle.path,
            QStringLiteral("It %1, so that nothing can be put into: %2.")
                .arg(blocked.obstacle.words, blocked.names.join(QStringLiteral(", "))),
            blocked.obstacle.remedy};
}

Findings blockedFindings(const Patient& patient, PathKind kind, Severity severity)
{
    QMap<QString, Blocked> all;
    for (const NamedPath& path : patient.trial.paths()) {
        const bool isMeant = path.kind == kind && !path.path.isEmpty();
        if (const auto obstacle = isMeant ? obstacleTo(path.path) : std::nullopt) {
            Blocked& blocked = all[obstacle->path];
            blocked.obstacle = *obstacle;
            blocked.names.append(path.name);
        }
    }
    all.remove(QDir::homePath()); // has a check of its own
    Findings findings;
    for (const Blocked& blocked : all)
        findings.push_back(blockedFinding(blocked, severity));
    return findings;
}

Findings tooLongFindings(const Patient& patient)
{
    Findings findings;
    for (const NamedPath& path : patient.trial.paths()) {
        if (path.path.isEmpty())
            findings.push_back(
                warning("directory.too-long", path.name,
                        QStringLiteral("Its path has too many characters, so that programs do not get it."),
                        QStringLiteral("Use a home or an installation with a shorter path.")));
    }
    return findings;
}

} // namespace

Findings checkHome(const Patient&)
{
    const QString home = QDir::homePath();
    const FileState state = FileState::of(home);
    if (state.kind != FileState::Kind::Directory)
        return {error("home.missing", home,
                      QStringLiteral("The home is no directory, so that nothing of the user is kept."),
                      QStringLiteral("Make it, or set HOME to the user's home."))};
    if (state.isWritable)
        return {};
    return {error("home.not-writable", home,
                  QStringLiteral("The home cannot be written by this user, so that new settings are not kept."),
                  QStringLiteral("Give it to this user: chown and chmod u+rwx %1").arg(shellWord(home)))};
}

Findings checkDirectories(const Patient& patient)
{
    Findings findings = blockedFindings(patient, PathKind::User, Severity::Warning);
    // An installation that only an administrator writes is a good one.
    append(findings, blockedFindings(patient, PathKind::Cache, Severity::Note));
    append(findings, tooLongFindings(patient));
    return findings;
}

Findings checkStyle(const Patient& patient)
{
    const QString style = patient.trial.styleFile();
    if (style.isEmpty())
        return {};
    Findings findings;
    append(findings, faultFinding(style, {"style.", Severity::Warning, Severity::Warning,
                                          "so that the user interface has not the style that is configured",
                                          QStringLiteral("Put the file there, or name it anew: %1 PATH")
                                              .arg(toolLine("set", QStringLiteral("@userconfig/Config/UIStyle")))}));
    return findings;
}

Findings checkMigration(const Patient& patient)
{
    if (!patient.trial.isMigrationPending())
        return {};
    return {note("migration.pending", QStringLiteral("AutoMigrate"),
                 QStringLiteral("Settings of an older release wait to be taken over."),
                 QStringLiteral("None is needed: the application offers it when it starts."))};
}

Findings checkEditorExtension(const Patient& patient)
{
    const QString extension = patient.trial.editorExtension();
    if (extension.isEmpty())
        return {};
    return {note("editor.extension", extension, QStringLiteral("The editor's extension for the product is installed."),
                 QStringLiteral("None is needed."))};
}

} // namespace vruinfo::tool::doctor
