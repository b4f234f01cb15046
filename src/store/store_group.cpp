#include "store/store_group.h"

#include "VrUInfo/VornaConfig.h"

namespace vruinfo::internal
{

bool isStoreThere()
{
    return g_globalSettings != nullptr;
}

StoreGroup::StoreGroup(const QString& path) : m_lock(storeLock()), m_settings(*g_globalSettings)
{
    m_settings.beginGroup(path);
}

StoreGroup::~StoreGroup()
{
    m_settings.endGroup();
}

QVariant StoreGroup::value(const QString& name) const
{
    return namesNothing(name) ? QVariant() : m_settings.value(name);
}

bool StoreGroup::contains(const QString& name) const
{
    return !namesNothing(name) && m_settings.contains(name);
}

void StoreGroup::setValue(const QString& name, const QVariant& value)
{
    if (!namesNothing(name))
        m_settings.setValue(name, value);
}

void StoreGroup::remove(const QString& name)
{
    m_settings.remove(name);
}

bool StoreGroup::holdsAnything() const
{
    return !m_settings.allKeys().isEmpty();
}

QStringList StoreGroup::childGroups() const
{
    return m_settings.childGroups();
}

QStringList StoreGroup::childKeys() const
{
    return m_settings.childKeys();
}

QVariant storedValue(const QString& path)
{
    const std::lock_guard<VrLocker> lock(storeLock());
    return g_globalSettings->value(path);
}

void storeValue(const QString& path, const QVariant& value)
{
    const std::lock_guard<VrLocker> lock(storeLock());
    g_globalSettings->setValue(path, value);
}

} // namespace vruinfo::internal
