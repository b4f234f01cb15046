// The settings object as the store uses it: under the store lock, one group open at a time.
#pragma once

#include <algorithm>
#include <mutex>

#include <QtCore/QSettings>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include "VrPlatformBase/VrPlatformBase.h"

namespace vruinfo::internal
{

/// The one lock around the settings object. Recursive for its thread: operations that hold it call others
/// that take it. It guards `g_globalSettings` between `beginGroup` and `endGroup`, since the open group is
/// state of that one object.
[[nodiscard]] VrLocker& storeLock();

/// Whether the settings object has been made.
[[nodiscard]] bool isStoreThere();

/// Whether a group path or a value name is empty or holds separators only.
[[nodiscard]] inline bool namesNothing(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c == QLatin1Char('/'); });
}

/// Takes the store lock and opens a group (relative to the one that is open); undoes both at the end of its
/// scope. The settings object must be there. Every access to the settings tree goes through this class, or through the
/// two functions below it.
///
/// An empty name, or one of separators only, names nothing: it reads as absent and is not written. (The
/// settings library would print a warning, or store a value that nobody can read back.) Removing it removes
/// everything in the group.
class [[nodiscard]] StoreGroup final
{
public:
    [[nodiscard]] explicit StoreGroup(const QString& path);
    StoreGroup(const StoreGroup&) = delete;
    StoreGroup& operator=(const StoreGroup&) = delete;
    ~StoreGroup();

    [[nodiscard]] QVariant value(const QString& name) const; ///< Invalid when there is none.
    [[nodiscard]] bool contains(const QString& name) const;
    void setValue(const QString& name, const QVariant& value);
    void remove(const QString& name);
    [[nodiscard]] bool holdsAnything() const; ///< A value at any depth.
    [[nodiscard]] QStringList childGroups() const;
    [[nodiscard]] QStringList childKeys() const;

private:
    std::unique_lock<VrLocker> m_lock;
    QSettings& m_settings;
};

/// \name One value by its whole path
/// The same as opening the item's group for it, but for what opening costs, which is more than the access itself. The
/// path must end in a name that names something.
/// @{
[[nodiscard]] QVariant storedValue(const QString& path);     ///< Invalid when there is none.
void storeValue(const QString& path, const QVariant& value); ///< The path is kept: it must not be a transient one.
/// @}

} // namespace vruinfo::internal
