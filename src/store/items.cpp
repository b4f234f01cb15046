// Reading, writing and removing values and items.
#include "store/items.h"

#include <algorithm>
#include <mutex>

#include "store/store_group.h"
#include "store/value_conversion.h"
#include "text/owned_text.h"
#include "text/wide_text.h"

namespace vruinfo::internal
{
namespace
{

/// A group path as the settings object takes it.
class GroupName final
{
public:
    explicit GroupName(const KeyPath& path) : m_text(path.text(), path.length()) {}
    [[nodiscard]] const QString& string() const { return m_text.string(); }

private:
    TransientString m_text;
};

unsigned int removeNamed(const KeyPath& item, const QString& name)
{
    StoreGroup group(GroupName(item).string());
    if (!group.contains(name))
        return Vorn::eFailed;
    group.remove(name);
    return Vorn::eOk;
}

bool holdsValue(const KeyPath& item, const QString& name)
{
    const StoreGroup group(GroupName(item).string());
    return group.contains(name);
}

/// The path whose existence is asked: one leading separator of the sub-path is skipped, nothing else is
/// changed but backslashes.
std::optional<KeyPath> askedPath(const VornaConfig& config, VornaConfig::Path root, const wchar_t* subkey)
{
    std::optional<KeyPath> path = rootPath(config, root);
    if (!path || isEmpty(subkey))
        return path;
    const std::size_t length = std::wcslen(subkey);
    const std::size_t skipped = subkey[0] == L'/' || subkey[0] == L'\\' ? 1 : 0;
    if (path->length() + length + 2 > KeyPath::kLongest || !path->join(subkey + skipped, length - skipped))
        path.reset();
    return path;
}

} // namespace

std::optional<KeyPath> itemPath(const VornaConfig& config, VornaConfig::Path root, const wchar_t* subPath)
{
    std::optional<KeyPath> path = rootPath(config, root);
    if (path && !path->join(KeyPath::normalised(subPath)))
        path.reset();
    return path;
}

std::optional<KeyPath> freePath(const wchar_t* key)
{
    std::optional<KeyPath> path(KeyPath::normalised(key));
    if (!path->fitsAlone())
        path.reset();
    return path;
}

unsigned int readValue(const QString& item, const QString& name, VornVariant& out)
{
    const QVariant stored = StoreGroup(item).value(name);
    if (stored.isNull())
        return Vorn::eNotFound;
    fromStored(stored, out);
    return Vorn::eOk;
}

unsigned int readValue(const KeyPath& item, const wchar_t* name, VornVariant& out)
{
    const TransientString key(name ? name : L"", name ? std::wcslen(name) : 0);
    return readValue(GroupName(item).string(), key.string(), out);
}

} // namespace vruinfo::internal

using namespace vruinfo::internal;

unsigned int WriteValueToReg(const wchar_t* key, const wchar_t* name, const VornVariant& value)
{
    if (!key || !name || !isStoreThere())
        return Vorn::eMissing;
    const QVariant stored = toStored(value);
    const TransientString item(key, std::wcslen(key));
    StoreGroup(item.string()).setValue(toQString(name), stored);
    return Vorn::eOk;
}

unsigned int VornaConfig::getValue(const wchar_t* key, const wchar_t* name, VornVariant& out) const
{
    if (!key || !name || !isStoreThere())
        return Vorn::eFailed;
    const std::optional<KeyPath> item = freePath(key);
    return item ? readValue(*item, name, out) : static_cast<unsigned int>(Vorn::eFailed);
}

unsigned int VornaConfig::getValue(Path root, const wchar_t* name, VornVariant& out) const
{
    std::optional<KeyPath> item = rootPath(*this, root);
    if (!item)
        return Vorn::eFailed;
    const KeyPath whole = KeyPath::normalised(name);
    const KeyPath::Split split = whole.split();
    if (!item->join(split.parent, split.parentLength, KeyPath::Slack::Two))
        return Vorn::eFailed;
    if (!isStoreThere())
        return Vorn::eMissing;
    return readValue(*item, split.name, out);
}

unsigned int VornaConfig::setValue(Path root, const wchar_t* name, const VornVariant& value)
{
    const KeyPath whole = KeyPath::normalised(name);
    const KeyPath::Split split = whole.split();
    return addValue(root, split.parentPath().text(), split.name, value);
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
    return WriteValueToReg(item->text(), name, value);
}

unsigned int VornaConfig::addValue(Path root, const wchar_t* subkey, const wchar_t* name,
                                   const VornVariant& value)
{
    const std::optional<KeyPath> item = itemPath(*this, root, subkey);
    return item ? WriteValueToReg(item->text(), name, value) : static_cast<unsigned int>(Vorn::eFailed);
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
    const std::optional<KeyPath> item = itemPath(*this, root, subkey);
    if (!item || !isStoreThere())
        return Vorn::eFailed;
    StoreGroup(GroupName(*item).string()).remove(toQString(name));
    return Vorn::eOk;
}

unsigned int VornaConfig::addItem(Path root, const wchar_t* subkey)
{
    const std::optional<KeyPath> item = itemPath(*this, root, subkey);
    if (!item || !isStoreThere())
        return Vorn::eFailed;
    const StoreGroup group(GroupName(*item).string());
    return Vorn::eOk;
}

bool VornaConfig::isItemExist(Path root, const wchar_t* subkey)
{
    const std::optional<KeyPath> item = askedPath(*this, root, subkey);
    if (!item || !isStoreThere())
        return false;
    QString path = toQString(item->text(), item->length());
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return StoreGroup(path).holdsAnything();
}

unsigned int VornaConfig::removeItem(const wchar_t* key, const wchar_t* subkey)
{
    if (!key || !subkey || !isStoreThere())
        return Vorn::eFailed;
    const KeyPath item = KeyPath::normalised(key);
    if (item.isEmpty() || item.length() + std::wcslen(subkey) + 1 > KeyPath::kLongest)
        return Vorn::eFailed;
    const QString path = toQString(item.text(), item.length()) + QLatin1Char('/') + toQString(subkey);
    return RegDeleteKeyAndAllSubkeys(path) ? Vorn::eOk : Vorn::eFailed;
}

unsigned int VornaConfig::removeItem(Path root, const wchar_t* subkey)
{
    std::optional<KeyPath> item = rootPath(*this, root);
    if (!item)
        return Vorn::eFailed;
    if (!isEmpty(subkey)) {
        const KeyPath below = KeyPath::normalised(subkey);
        if (below.isEmpty())
            return Vorn::eNotFound;
        if (!item->join(below))
            return Vorn::eFailed;
    }
    RegDeleteKeyAndAllSubkeys(toQString(item->text(), item->length()));
    return Vorn::eOk;
}
