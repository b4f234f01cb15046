#include "doctor/finding.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "command.h"

namespace vruinfo::tool::doctor
{
namespace
{

Severity severityFromName(const QString& name)
{
    if (name == nameOf(Severity::Note))
        return Severity::Note;
    return name == nameOf(Severity::Warning) ? Severity::Warning : Severity::Error;
}

} // namespace

QString nameOf(Severity severity)
{
    switch (severity) {
    case Severity::Note:
        return QStringLiteral("note");
    case Severity::Warning:
        return QStringLiteral("warning");
    default:
        return QStringLiteral("error");
    }
}

QJsonObject Finding::json() const
{
    return {{QStringLiteral("severity"), nameOf(severity)},
            {QStringLiteral("id"), id},
            {QStringLiteral("thing"), thing},
            {QStringLiteral("meaning"), meaning},
            {QStringLiteral("remedy"), remedy}};
}

Finding Finding::fromJson(const QJsonObject& object)
{
    const auto field = [&object](const char* key) { return object.value(text(key)).toString(); };
    return {severityFromName(field("severity")), field("id"), field("thing"), field("meaning"), field("remedy")};
}

Finding note(const char* id, const QString& thing, const QString& meaning, const QString& remedy)
{
    return {Severity::Note, text(id), thing, meaning, remedy};
}

Finding warning(const char* id, const QString& thing, const QString& meaning, const QString& remedy)
{
    return {Severity::Warning, text(id), thing, meaning, remedy};
}

Finding error(const char* id, const QString& thing, const QString& meaning, const QString& remedy)
{
    return {Severity::Error, text(id), thing, meaning, remedy};
}

std::optional<Severity> worstOf(const Findings& findings)
{
    const auto worst = std::max_element(findings.cbegin(), findings.cend(),
                                        [](const Finding& a, const Finding& b) { return a.severity < b.severity; });
    return worst == findings.cend() ? std::nullopt : std::optional<Severity>(worst->severity);
}

void append(Findings& findings, Findings more)
{
    std::move(more.begin(), more.end(), std::back_inserter(findings));
}

void append(Findings& findings, std::optional<Finding> more)
{
    if (more)
        findings.push_back(std::move(*more));
}

} // namespace vruinfo::tool::doctor
