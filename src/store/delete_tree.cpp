// Deleting an item, or a key of the platform's registry, with everything below it.
#include <iterator>
#include <mutex>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/VornaConfig.h"
#include "store/items.h"
#include "store/store_group.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

namespace vruinfo::internal
{
namespace
{

constexpr std::size_t kSubkeyCapacity = 2048;
constexpr std::size_t kChildCapacity = 1024;

class OpenKey final
{
public:
    OpenKey(HKEY root, const wchar_t* subkey) : m_status(RegOpenKeyExW(root, subkey, 0, KEY_READ, &m_key)) {}
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    ~OpenKey()
    {
        if (isOpen())
            RegCloseKey(m_key);
    }
    [[nodiscard]] bool isOpen() const { return m_status == static_cast<LSTATUS>(ERROR_SUCCESS); }
    [[nodiscard]] bool isMissing() const { return m_status == static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND); }
    /// Name of the first child left; false when there is none.
    [[nodiscard]] bool firstChild(wchar_t (&name)[kChildCapacity]) const
    {
        DWORD length = kChildCapacity;
        return RegEnumKeyExW(m_key, 0, name, &length, nullptr, nullptr, nullptr, nullptr) == 0;
    }

private:
    HKEY m_key = nullptr;
    LSTATUS m_status;
};

bool isMissing(HKEY root, const wchar_t* subkey)
{
    return OpenKey(root, subkey).isMissing();
}

bool deleteKey(HKEY root, const wchar_t* subkey)
{
    return RegDeleteKeyW(root, subkey) == static_cast<LSTATUS>(ERROR_SUCCESS);
}

/// A quarter of the characters used, not all of them: the bound is looser than the buffer, whose own copy is
/// bounded.
bool isRoomFor(const wchar_t* child, std::size_t used)
{
    return std::wcslen(child) < kSubkeyCapacity - used / 4;
}

void deleteChildren(const OpenKey& key, HKEY root, wchar_t (&path)[kSubkeyCapacity], std::size_t used)
{
    wchar_t child[kChildCapacity];
    while (key.firstChild(child)) {
        if (!isRoomFor(child, used))
            return;
        copyBounded(path + used, kSubkeyCapacity - used, child);
        if (!RegDeleteKeyAndAllSubkeys(root, path))
            return;
    }
}

/// Deletes every child of a key whose path, in a buffer of its own, can take one more character.
bool deleteAllChildren(HKEY root, const wchar_t* subkey)
{
    wchar_t path[kSubkeyCapacity];
    WideWriter writer(path, kSubkeyCapacity);
    if (!writer.append(subkey) || (path[writer.length() - 1] != L'\\' && !writer.append(L"\\")))
        return false;
    const OpenKey key(root, subkey);
    if (key.isOpen())
        deleteChildren(key, root, path, writer.length());
    return key.isOpen();
}

} // namespace

void removeTree(const QString& key)
{
    // Removing a key of the settings object takes everything below it along, at any depth and in one pass: a
    // walk that removes item by item would end in the same tree.
    StoreGroup(QString()).remove(key);
}

} // namespace vruinfo::internal

using namespace vruinfo::internal;

bool RegDeleteKeyAndAllSubkeys(QString key)
{
    if (key.isEmpty() || !isStoreThere())
        return false;
    const std::lock_guard<VrLocker> lock(storeLock());
    const bool hadChildren = [&key] {
        const StoreGroup item(key);
        return !item.childKeys().isEmpty() || !item.childGroups().isEmpty();
    }();
    removeTree(key);
    return hadChildren;
}

bool RegDeleteKeyAndAllSubkeys(HKEY root, wchar_t* subkey)
{
    if (isEmpty(subkey) || wcsnlen(subkey, kSubkeyCapacity) >= kSubkeyCapacity)
        return false;
    if (deleteKey(root, subkey))
        return true;
    if (isMissing(root, subkey))
        return true;
    return deleteAllChildren(root, subkey) && deleteKey(root, subkey);
}
