#include <algorithm>
#include <vector>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include "commands.h"
#include "context.h"
#include "doctor/checks.h"
#include "place/user_settings.h"
#include "repair_report.h"
#include "settings_names.h"

namespace vruinfo::tool
{
namespace
{

using doctor::Finding;
using doctor::Findings;
using doctor::Severity;

constexpr int kIndent = 9; // the longest severity, and blanks

struct Group {
    const char* name;
    Findings findings;
};

/// The findings of each group, worst first.
std::vector<Group> examine(const doctor::Patient& patient)
{
    std::vector<Group> groups;
    for (const doctor::Check& check : doctor::checks()) {
        if (groups.empty() || groups.back().name != check.group)
            groups.push_back({check.group, {}});
        append(groups.back().findings, check.run(patient));
    }
    const auto isWorse = [](const Finding& a, const Finding& b) { return a.severity > b.severity; };
    for (Group& group : groups)
        std::stable_sort(group.findings.begin(), group.findings.end(), isWorse);
    return groups;
}

Findings allOf(const std::vector<Group>& groups)
{
    Findings all;
    for (const Group& group : groups)
        append(all, group.findings);
    return all;
}

Style styleOf(Severity severity)
{
    switch (severity) {
    case Severity::Error:
        return Style::Bad;
    case Severity::Warning:
        return Style::Warning;
    default:
        return Style::Plain;
    }
}

/// Names from disk and from the settings may hold anything; the answer stays a text in lines.
QString oneLine(const QString& text)
{
    QString line;
    for (const QChar c : text) {
        const bool isControl = c.category() == QChar::Other_Control;
        line += isControl ? QStringLiteral("\\x%1;").arg(static_cast<int>(c.unicode()), 0, 16) : QString(c);
    }
    return line;
}

void printFinding(Printer& printer, const Finding& finding)
{
    const QString indent(kIndent, QLatin1Char(' '));
    printer.line(styleOf(finding.severity), nameOf(finding.severity).leftJustified(kIndent) + finding.id +
                                                QStringLiteral(": ") + oneLine(finding.thing));
    printer.line(indent + oneLine(finding.meaning));
    printer.line(indent + QStringLiteral("Remedy: ") + oneLine(finding.remedy));
    printer.line(QString());
}

QString counted(const Findings& findings, Severity severity)
{
    const auto count = std::count_if(findings.begin(), findings.end(),
                                     [severity](const Finding& finding) { return finding.severity == severity; });
    const QString plural = count == 1 ? QString() : QStringLiteral("s");
    return count == 0 ? QString() : QStringLiteral("%1 %2%3").arg(count).arg(nameOf(severity), plural);
}

QString summary(const Findings& findings)
{
    QStringList counts;
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
        const QString count = counted(findings, severity);
        if (!count.isEmpty())
            counts.append(count);
    }
    return counts.isEmpty() ? QStringLiteral("everything is in order") : counts.join(QStringLiteral(", "));
}

/// What is looked at.
struct Subject {
    QString installation;
    QString settingsFile;
};

void printGroups(Printer& printer, const Subject& subject, const std::vector<Group>& groups)
{
    printer.line(QStringLiteral("Installation: ") + oneLine(subject.installation));
    printer.line(QStringLiteral("Settings:     ") + oneLine(subject.settingsFile));
    printer.line(QString());
    for (const Group& group : groups) {
        if (!group.findings.empty())
            printer.line(Style::Heading, text(group.name));
        for (const Finding& finding : group.findings)
            printFinding(printer, finding);
    }
    const Findings all = allOf(groups);
    const Severity worst = worstOf(all).value_or(Severity::Note);
    printer.line(worst == Severity::Note ? Style::Good : styleOf(worst), summary(all));
}

QJsonObject reportJson(const Subject& subject, const Findings& findings)
{
    QJsonArray array;
    for (const Finding& finding : findings)
        array.append(finding.json());
    const auto worst = worstOf(findings);
    return {{QStringLiteral("installation"), subject.installation},
            {QStringLiteral("settingsFile"), subject.settingsFile},
            {QStringLiteral("worst"), worst ? nameOf(*worst) : QStringLiteral("none")},
            {QStringLiteral("findings"), array}};
}

Exit exitOf(const Findings& findings)
{
    switch (worstOf(findings).value_or(Severity::Note)) {
    case Severity::Error:
        return Exit::Errors;
    case Severity::Warning:
        return Exit::Warnings;
    default:
        return Exit::Done;
    }
}

Exit checkAll(Context& context)
{
    const doctor::Patient patient(context);
    const Subject subject{patient.installation, patient.settingsFile};
    const std::vector<Group> groups = examine(patient);
    const Findings findings = allOf(groups);
    if (context.wantsJson())
        context.printer().json(QJsonDocument(reportJson(subject, findings)));
    else
        printGroups(context.printer(), subject, groups);
    return exitOf(findings);
}

/// Without a start, which a damaged file could keep from coming to its end.
Exit repair(Context& context)
{
    const RepairMode mode = context.isSet("dry-run") ? RepairMode::Look : RepairMode::Change;
    const Subject subject{doctor::installationDirectory(), vruinfo::internal::userSettingsDirectory() +
                                                               QLatin1Char('/') + SettingsNames::of(context).file()};
    const Result<Repair> result = repairSettings(subject.settingsFile, mode);
    if (!result)
        return context.fail(result.problem());
    const Findings findings = repairFindings(subject.settingsFile, *result);
    if (context.wantsJson()) {
        QJsonObject report = reportJson(subject, findings);
        report.insert(QStringLiteral("repair"), repairJson(*result, mode));
        context.printer().json(QJsonDocument(report));
    } else {
        printGroups(context.printer(), subject, {{"Repair", findings}});
    }
    return exitOf(findings);
}

} // namespace

Exit runDoctor(Context& context)
{
    if (context.isSet("repair"))
        return repair(context);
    if (context.isSet("dry-run"))
        return context.fail({Exit::Misuse, QStringLiteral("--dry-run goes with --repair")});
    return checkAll(context);
}

} // namespace vruinfo::tool
