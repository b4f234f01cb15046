#include <QtCore/QMap>
#include <QtCore/QSettings>

#include "doctor/checks.h"
#include "doctor/file_state.h"
#include "doctor/isolated.h"
#include "doctor/value_fault.h"
#include "provision/bounded_values.h"
#include "text.h"

namespace vruinfo::tool::doctor
{
namespace
{

/// Of each kind, more are counted only.
constexpr int kMostOfAKind = 20;

Findings faultsIn(const QSettings& settings)
{
    if (!vruinfo::internal::canTakeValuesApart(settings))
        return {error("settings.endless-value", settings.fileName(),
                      QStringLiteral("A damaged value asks for more memory than there is: nothing of the file is read, "
                                     "and no change is kept."),
                      text("`vruinfo doctor --repair` keeps a copy and brings back all the others."))};
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
              QStringLiteral("Move it away and bring a backup back: mv %1 %1.old").arg(shellWord(file)));
    return checkIsolated([&file] { return faultsIn(QSettings(file, QSettings::NativeFormat)); }, broken);
}

} // namespace vruinfo::tool::doctor
