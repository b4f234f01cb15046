// What the doctor has found: how bad it is, what it is about, what it means and how to mend it.
#pragma once

#include <optional>
#include <vector>

#include <QtCore/QJsonObject>
#include <QtCore/QString>

namespace vruinfo::tool::doctor
{

/// From harmless to bad.
enum class Severity {
    Note,    ///< Good to know.
    Warning, ///< Not as it should be, but the application works.
    Error,   ///< Something does not work.
};

[[nodiscard]] QString nameOf(Severity severity);

struct Finding {
    Severity severity;
    QString id;      ///< Stable: scripts may look for it.
    QString thing;   ///< The file, path, key or language that it is about.
    QString meaning; ///< One sentence.
    QString remedy;  ///< One sentence, or a command line.

    [[nodiscard]] QJsonObject json() const;
    [[nodiscard]] static Finding fromJson(const QJsonObject& object);
};

using Findings = std::vector<Finding>;

/// \name Findings of each severity
/// @{
[[nodiscard]] Finding note(const char* id, const QString& thing, const QString& meaning, const QString& remedy);
[[nodiscard]] Finding warning(const char* id, const QString& thing, const QString& meaning, const QString& remedy);
[[nodiscard]] Finding error(const char* id, const QString& thing, const QString& meaning, const QString& remedy);
/// @}

/// The worst; nothing when there is no finding.
[[nodiscard]] std::optional<Severity> worstOf(const Findings& findings);

void append(Findings& findings, Findings more);
void append(Findings& findings, std::optional<Finding> more);

} // namespace vruinfo::tool::doctor
