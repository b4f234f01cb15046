// Reading, writing and removing values and items.
#include "store/items.h"

#include <algorithm>
#include <mutex>

#include <QtCore/QStringBuilder>

#include "store/store_group.h"
#include "store/value_conversion.h"
#include "text/owned_text.h"
#include "text/wide_text.h"

namespace vruinfo::internal
{
namespace
{

unsigned int removeNamed(const KeyPath& item, const QString& name)
{
    StoreGroup group(item.transient());
    if (!group.contains(name))
        return Vorn::eFailed;
    group.remove(name);
    return Vorn::eOk;
}

bool holdsValue(const KeyPath& item, const QString& name)
{
    const StoreGroup group(item.transient());
    return group.contains(name);
}

/// Appends the item whose existence is asked: one leading separator of it is skipped, nothing else is trimmed.
bool appendAsked(const wchar_t* subkey, KeyPath& path)
{
    const std::wstring_view asked(subkey);
    const std::size_t skipped = asked[0] == L'/' || asked[0] == L'\\' ? 1 : 0;
    return path.length() + asked.size() + 2 <= KeyPath::kLongest && path.join(asked.substr(skipped));
}

QString valuePath(const QString& item, const QString& name)
{
    return item % QLatin1Char('/') % name;
}

unsigned int readAt(const QString& path, VornVariant& out)
{
    const QVariant stored = storedValue(path);
    if (!isStored(stored))
        return Vorn::eNotFound;
    fromStored(stored, out);
    return Vorn::eOk;
}

} // namespace

std::optional<KeyPath> itemPath(const VornaConfig& config, VornaConfig::Path root, const wchar_t* subPath)
{
    std::optional<KeyPath> path(std::in_place);
    if (!appendRoot(config, root, *path) || !path->join(trimmedPath(subPath)))
        path.reset();
    return path;
}

std::optional<KeyPath> storedItemPath(const VornaConfig& config, VornaConfig::Path root, const wchar_t* subPath)
{
    return isStoreThere() ? itemPath(config, root, subPath) : std::nullopt;
}

std::optional<KeyPath> freePath(const wchar_t* key)
{
    std::optional<KeyPath> path(std::in_place, trimmedPath(key));
    if (!path->fitsAlone())
        path.reset();
    return path;
}

ValueName valueName(const wchar_t* name)
{
    return name ? ValueName(name) : std::nullopt;
}

unsigned int writeValue(const QString& group, ValueName name, const VornVariant& value)
{
    if (!name || !isStoreThere())
        return Vorn::eMissing;
    const QVariant stored = toStored(value);
    const TransientString key(*name);
    if (!namesNothing(key.string()))
        storeValue(valuePath(group, key.string()), stored);
    return Vorn::eOk;
}

unsigned int readValue(const QString& group, const QString& name, VornVariant& out)
{
    if (namesNothing(name))
        return Vorn::eNotFound;
    KeyPath path;
    return readAt(path.assign(group, name) ? path.transient() : valuePath(group, name), out);
}

unsigned int readValue(KeyPath& item, ValueName name, VornVariant& out)
{
    const std::wstring_view key = name.value_or(std::wstring_view());
    if (key.find_first_not_of(L'/') == std::wstring_view::npos)
        return Vorn::eNotFound;
    if (!item.appendComponent(key))
        return readAt(valuePath(item.copy(), toQString(key)), out);
    return readAt(item.transient(), out);
}

} // namespace vruinfo::internal

using namespace vruinfo::internal;

unsigned int WriteValueToReg(const wchar_t* key, const wchar_t* name, const VornVariant& value)
{
    return key ? writeValue(TransientString(key).string(), valueName(name), value)
               : static_cast<unsigned int>(Vorn::eMissing);
}

unsigned int VornaConfig::getValue(const wchar_t* key, const wchar_t* name, VornVariant& out) const
{
    if (!key || !name || !isStoreThere())
        return Vorn::eFailed;
    std::optional<KeyPath> item = freePath(key);
    return item ? readValue(*item, valueName(name), out) : static_cast<unsigned int>(Vorn::eFailed);
}

unsigned int VornaConfig::getValue(Path root, const wchar_t* name, VornVariant& out) const
{
    KeyPath item;
    if (!appendRoot(*this, root, item))
        return Vorn::eFailed;
    const ValuePath path = ValuePath::split(name);
    if (!item.join(path.item, KeyPath::Slack::Two))
        return Vorn::eFailed;
    if (!isStoreThere())
        return Vorn::eMissing;
    return readValue(item, path.name, out);
}

unsigned int VornaConfig::setValue(Path root, const wchar_t* name, const VornVariant& value)
{
    const ValuePath path = ValuePath::split(name);
    KeyPath item;
    if (!appendRoot(*this, root, item) || !item.join(path.trimmedItem()))
        return Vorn::eFailed;
    return writeValue(item.transient(), path.name, value);
}

unsigned int VornaConfig::addValue(const wchar_t* key, const wchar_t* name, const VornVariant& value)
{
    if (!key || !name || !isStoreThere())
        return Vorn::eFailed;
    const std::optional<KeyPath> item = freePath(key);
    if (!item)
        return Vorn::eFailed;
    const std::lock_guard<VrLocker> lock(storeLock());
    if (!holdsValue(*item, toQString(name)))
        return Vorn::eFailed;
    return writeValue(item->transient(), valueName(name), value);
}

unsigned int VornaConfig::addValue(Path root, const wchar_t* subkey, const wchar_t* name, const VornVariant& value)
{
    const std::optional<KeyPath> item = itemPath(*this, root, subkey);
    return item ? writeValue(item->transient(), valueName(name), value) : static_cast<unsigned int>(Vorn::eFailed);
}

unsigned int VornaConfig::removeValue(const wchar_t* key, const wchar_t* name)
{
    if (!key || !name || !isStoreThere())
        return Vorn::eFailed;
    const std::optional<KeyPath> item = freePath(key);
    return item ? removeNamed(*item, toQString(name)) : static_cast<unsigned int>(Vorn::eFailed);
}

unsigned int VornaConfig::removeValue(Path root, const wchar_t* subkey, const wchar_t* name)
{
    const std::optional<KeyPath> item = storedItemPath(*this, root, subkey);
    if (!item)
        return Vorn::eFailed;
    StoreGroup(item->transient()).remove(toQString(name));
    return Vorn::eOk;
}

unsigned int VornaConfig::addItem(Path root, const wchar_t* subkey)
{
    const std::optional<KeyPath> item = storedItemPath(*this, root, subkey);
    if (!item)
        return Vorn::eFailed;
    const StoreGroup group(item->transient());
    return Vorn::eOk;
}

bool VornaConfig::isItemExist(Path root, const wchar_t* subkey)
{
    KeyPath item;
    if (!appendRoot(*this, root, item) || !isStoreThere())
        return false;
    if (!isEmpty(subkey) && !appendAsked(subkey, item))
        return false;
    item.replaceBackslashes(); // also those in the root's own names
    return StoreGroup(item.transient()).holdsAnything();
}

unsigned int VornaConfig::removeItem(const wchar_t* key, const wchar_t* subkey)
{
    if (!key || !subkey || !isStoreThere())
        return Vorn::eFailed;
    const KeyPath item(trimmedPath(key));
    if (item.isEmpty() || item.length() + std::wcslen(subkey) + 1 > KeyPath::kLongest)
        return Vorn::eFailed;
    const QString path = item.copy() + QLatin1Char('/') + toQString(subkey);
    return RegDeleteKeyAndAllSubkeys(path) ? Vorn::eOk : Vorn::eFailed;
}

unsigned int VornaConfig::removeItem(Path root, const wchar_t* subkey)
{
    KeyPath item;
    if (!appendRoot(*this, root, item))
        return Vorn::eFailed;
    if (!isEmpty(subkey)) {
        const std::wstring_view below = trimmedPath(subkey);
        if (below.empty())
            return Vorn::eNotFound;
        if (!item.join(below))
            return Vorn::eFailed;
    }
    if (isStoreThere())
        removeTree(item.copy());
    return Vorn::eOk;
}
