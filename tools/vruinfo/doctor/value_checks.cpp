#include <QtCore/QMap>
#include <QtCore/QSettings>

#include "doctor/checks.h"
#include "doctor/file_state.h"
#include "doctor/isolated.h"
#include "doctor/value_fault.h"

namespace vruinfo::tool::doctor
{
namespace
{

/// Of each kind, more are counted only.
constexpr int kMostOfAKind = 20;

Findings faultsIn(const QSettings& settings)
{
    Findings findings;
    QMap<QString, int> counts;
    for (const QString& path : settings.allKeys()) {
        const std::optional<Finding> fault = faultOfValue(path, settings.value(path));
        if (fault && ++counts[fault->id] <= kMostOfAKind)
            findings.push_back(*fault);
    }
    for (auto count = counts.cbegin(); count != counts.cend(); ++count) {
        if (*count > kMostOfAKind)
            findings.push_back({Severity::Warning, count.key(), settings.fileName(),
                                QStringLiteral("%1 more values are like those above.").arg(*count - kMostOfAKind),
                                QStringLiteral("Mend those above, and run this check again.")});
    }
    return findings;
}

} // namespace

Findings checkValues(const Patient& patient)
{
    const QString file = patient.settingsFile;
    if (!FileState::of(file).isReadableFile())
        return {};
    const Finding broken =
        error("settings.unreadable", file, QStringLiteral("Reading its values"),
              QStringLiteral("`vruinfo doctor --repair` keeps a copy and brings back what can be read. Where that "
                             "does not help, move it away and bring a backup back: mv %1 %1.old").arg(shellWord(file)));
    return checkIsolated([&file] { return faultsIn(QSettings(file, QSettings::NativeFormat)); }, broken);
}

} // namespace vruinfo::tool::doctor
