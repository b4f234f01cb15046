#include "identity_values.h"

#include <algorithm>
#include <array>

#include <QtCore/QSettings>

#include "VrUInfo/VornaConfig.h"
#include "own_values.h"
#include "tree_snapshot.h"

namespace vruinfo::tool
{
namespace
{

QMap<QString, QVariant> identityValues()
{
    const OwnValues own;
    QMap<QString, QVariant> values;
    for (const QString& key : g_globalSettings->allKeys()) {
        if (isIdentityName(key.mid(key.lastIndexOf(QLatin1Char('/')) + 1)))
            values.insert(key, g_globalSettings->value(key));
    }
    return values;
}

/// The value alone: the settings library removes the item of that name with it.
void removeValue(const QString& key)
{
    const Snapshot below = liveSnapshot(Place(key));
    g_globalSettings->remove(key);
    for (auto row = below.cbegin(); row != below.cend(); ++row) {
        if (!row.key().isEmpty())
            g_globalSettings->setValue(joined(Place(key), row.key()), row->stored());
    }
}

} // namespace

bool isIdentityName(const QString& name)
{
    const std::array<QLatin1String, 3> names = {QLatin1String("CurProduct"), QLatin1String("CurVer"),
                                                QLatin1String("Profiles")};
    return std::find(names.begin(), names.end(), name) != names.end();
}

IdentityValues::IdentityValues() : m_values(identityValues()) {}

void IdentityValues::putBack() const
{
    const QMap<QString, QVariant> now = identityValues();
    for (auto written = now.cbegin(); written != now.cend(); ++written) {
        if (!m_values.contains(written.key()))
            removeValue(written.key());
        else if (m_values.value(written.key()) != written.value())
            g_globalSettings->setValue(written.key(), m_values.value(written.key()));
    }
}

} // namespace vruinfo::tool
