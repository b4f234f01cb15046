#include "doctor/checks.h"
#include "doctor/file_state.h"
#include "text.h"

namespace vruinfo::tool::doctor
{
namespace
{

QString theStart()
{
    return QStringLiteral("start");
}

QString saidBy(const Outcome& outcome)
{
    return outcome.words.isEmpty() ? QString() : QStringLiteral("; it says: %1").arg(quoted(outcome.words));
}

QString sentence(const QString& words)
{
    return words.left(1).toUpper() + words.mid(1) + QLatin1Char('.');
}

QString tryAnother()
{
    return QStringLiteral("Mend what is told below; a start with other names is tried with --company, --product, "
                          "--language and --profile.");
}

const char* idOf(Outcome::End end)
{
    switch (end) {
    case Outcome::End::Exited:
        return "start.ends";
    case Outcome::End::TooLong:
        return "start.hangs";
    case Outcome::End::NotBegun:
        return "start.untried";
    default:
        return "start.crashes";
    }
}

Finding startFault(const Outcome& outcome)
{
    return error(idOf(outcome.end), theStart(),
                 QStringLiteral("The start of the application %1%2.").arg(outcome.ending(), saidBy(outcome)),
                 tryAnother());
}

/// The path of a reason, which is "<path>: <why>" or "<path> = <value>: <why>".
QString pathOf(const QString& reason)
{
    const QString place = reason.left(reason.lastIndexOf(QLatin1String(": ")));
    return place.left(place.indexOf(QLatin1String(" = ")));
}

} // namespace

Findings checkStart(const Patient& patient)
{
    const Trial& trial = patient.trial;
    if (!trial.outcome().isAnswered())
        return {startFault(trial.outcome())};
    if (!trial.problem().isEmpty())
        return {error("start.fails", theStart(), sentence(trial.problem() + saidBy(trial.outcome())), tryAnother())};
    if (trial.hasAsked())
        return {warning(
            "start.asks", theStart(),
            QStringLiteral("The start has to ask the user about the language: %1.").arg(quoted(trial.outcome().words)),
            QStringLiteral("Install the language that is asked for, or start with --language %1.")
                .arg(trial.language()))};
    return {};
}

Findings checkPassedOver(const Patient& patient)
{
    Findings findings;
    for (const QString& reason : patient.trial.passedOver()) {
        const QString path = pathOf(reason);
        findings.push_back(warning("identity.passed-over", path,
                                   QStringLiteral("The start does not take what is remembered here (%1).").arg(reason),
                                   QStringLiteral("Write it anew: %1 NAME, or remove it: %2.")
                                       .arg(toolLine("set", path), toolLine("rm", path))));
    }
    return findings;
}

Findings checkProfile(const Patient& patient)
{
    const Trial& trial = patient.trial;
    if (trial.recordedProfile().isEmpty() || trial.hasProfileItem())
        return {};
    return {note("identity.empty-profile", trial.profileItem(),
                 QStringLiteral("The remembered profile \"%1\" holds no settings yet.").arg(trial.recordedProfile()),
                 QStringLiteral("None is needed, unless the user misses settings; to see what profiles there are: %1")
                     .arg(toolLine("list", QStringLiteral("@profiles"))))};
}

} // namespace vruinfo::tool::doctor
