#include "repair_report.h"

#include <QtCore/QJsonArray>

namespace vruinfo::tool
{
namespace
{

using doctor::Finding;
using doctor::Findings;

constexpr int kMostShown = 120; // characters of a line

/// How a kind of line is told.
struct Kind {
    const char* id;
    const char* meaning; ///< Before the line's text.
    const char* remedy;
};

constexpr Kind kLost = {
    "settings.line-lost", "It is no setting, or one that nobody can read, and is not in the repaired file: ",
    "If it was one, write it again with `vruinfo set`, or correct it in the damaged file that is kept, "
    "and put that back."};
constexpr Kind kClosed = {"settings.line-closed", "Its end was missing; it ends with its line now: ",
                          "See whether the text is as it should be; what stood behind it is in lines of its own."};
constexpr Kind kBroughtBack = {
    "settings.line-brought-back",
    "It had been taken for a part of a text above it, and is a setting again: ", "None is needed."};

QString shown(const QByteArray& line)
{
    const QString words = QString::fromUtf8(line);
    return words.size() > kMostShown ? words.left(kMostShown) + QStringLiteral("...") : words;
}

Findings told(const LineNotes& lines, const QString& file, doctor::Severity severity, const Kind& kind)
{
    Findings findings;
    for (const LineNote& line : lines)
        findings.push_back({severity, text(kind.id), QStringLiteral("%1:%2").arg(file).arg(line.number),
                            text(kind.meaning) + shown(line.text), text(kind.remedy)});
    return findings;
}

Finding summary(const QString& file, const Repair& repair)
{
    if (repair.setAside.isEmpty())
        return doctor::note("settings.repairable", file,
                            QStringLiteral("It is damaged; %1 values can be read from it.").arg(repair.values),
                            QStringLiteral("To repair it: vruinfo doctor --repair"));
    return doctor::note("settings.repaired", file,
                        QStringLiteral("It is whole, with %1 values; the damaged file is kept as %2")
                            .arg(repair.values)
                            .arg(repair.setAside),
                        QStringLiteral("Remove the damaged file when nothing of it is needed any more."));
}

QJsonArray json(const LineNotes& lines)
{
    QJsonArray rows;
    for (const LineNote& line : lines)
        rows.append(
            QJsonObject{{QStringLiteral("line"), line.number}, {QStringLiteral("text"), QString::fromUtf8(line.text)}});
    return rows;
}

} // namespace

Findings repairFindings(const QString& file, const Repair& repair)
{
    if (!repair.isDamaged)
        return {};
    Findings findings;
    if (repair.lines.hadMark)
        findings.push_back(
            doctor::note("settings.mark", file,
                         QStringLiteral("It began with a byte-order mark, which the settings library takes "
                                        "for a part of its first line; that is gone."),
                         QStringLiteral("Have your text editor write UTF-8 without one.")));
    append(findings, told(repair.lines.lost, file, doctor::Severity::Warning, kLost));
    append(findings, told(repair.lines.closed, file, doctor::Severity::Note, kClosed));
    append(findings, told(repair.lines.broughtBack, file, doctor::Severity::Note, kBroughtBack));
    findings.push_back(summary(file, repair));
    return findings;
}

QJsonObject repairJson(const Repair& repair, RepairMode mode)
{
    return {{QStringLiteral("dryRun"), mode == RepairMode::Look},
            {QStringLiteral("damaged"), repair.isDamaged},
            {QStringLiteral("setAside"), repair.setAside.isEmpty() ? QJsonValue() : QJsonValue(repair.setAside)},
            {QStringLiteral("closed"), json(repair.lines.closed)},
            {QStringLiteral("broughtBack"), json(repair.lines.broughtBack)},
            {QStringLiteral("lost"), json(repair.lines.lost)}};
}

} // namespace vruinfo::tool
