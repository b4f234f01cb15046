#include "osbase/handle_table.h"
#include "osbase/immortal.h"
#include "osbase/registry_tree.h"
#include "osbase/wide_buffer.h"

#include <optional>

namespace vrosbase::internal
{
namespace
{

/// The directories of the keys that callers hold open.
HandleTable<const std::string>& openKeys()
{
    return immortal<HandleTable<const std::string>>();
}

std::optional<std::string> directoryOf(HKEY key)
{
    std::string predefined = predefinedDirectory(key);
    if (!predefined.empty()) {
        return predefined;
    }
    const auto directory = openKeys().get(key);
    return directory == nullptr ? std::nullopt : std::optional(*directory);
}

HKEY openKey(std::string directory)
{
    return openKeys().add(std::make_shared<const std::string>(std::move(directory)));
}

LSTATUS giveName(const std::wstring& name, wchar_t* buffer, DWORD& capacity)
{
    if (capacity <= name.size() || copyText(buffer, capacity, name) == Fit::Cut) {
        return ERROR_MORE_DATA;
    }
    capacity = static_cast<DWORD>(name.size());
    return ERROR_SUCCESS;
}

/// Keys have no class here: an empty one is given to who asks.
void giveClass(wchar_t* buffer, DWORD* capacity)
{
    if (capacity == nullptr) {
        return;
    }
    if (buffer != nullptr && *capacity != 0) {
        buffer[0] = L'\0';
    }
    *capacity = 0;
}

LSTATUS enumerate(const std::string& directory, DWORD index, wchar_t* buffer, DWORD& capacity)
{
    const KeyNames children = childKeys(directory);
    if (children.status != ERROR_SUCCESS) {
        return children.status;
    }
    return index < children.names.size() ? giveName(children.names[index], buffer, capacity) : ERROR_NO_MORE_ITEMS;
}

LSTATUS removeBelow(HKEY key, const std::string& directory, const wchar_t* path)
{
    const KeyResult found = findKey(directory, path);
    if (found.status != ERROR_SUCCESS) {
        return found.status;
    }
    const bool isPredefined = found.directory == predefinedDirectory(key);
    return isPredefined ? static_cast<LSTATUS>(ERROR_ACCESS_DENIED) : removeKey(found.directory);
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

LSTATUS RegCreateKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD, LPWSTR, DWORD, REGSAM, const void*, PHKEY phkResult,
                        LPDWORD lpdwDisposition)
{
    const auto directory = directoryOf(hKey);
    if (!directory) {
        return ERROR_INVALID_HANDLE;
    }
    if (lpSubKey == nullptr || phkResult == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    const KeyResult made = makeKey(*directory, lpSubKey);
    if (made.status != ERROR_SUCCESS) {
        return made.status;
    }
    *phkResult = openKey(made.directory);
    if (lpdwDisposition != nullptr) {
        *lpdwDisposition = made.disposition;
    }
    return ERROR_SUCCESS;
}

LSTATUS RegOpenKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD, REGSAM, PHKEY phkResult)
{
    const auto directory = directoryOf(hKey);
    if (!directory) {
        return ERROR_INVALID_HANDLE;
    }
    if (phkResult == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    const KeyResult found = findKey(*directory, lpSubKey == nullptr ? L"" : lpSubKey);
    if (found.status == ERROR_SUCCESS) {
        *phkResult = openKey(found.directory);
    }
    return found.status;
}

// NOLINTNEXTLINE(readability-non-const-parameter) lpReserved has the documented type
LSTATUS RegEnumKeyExW(HKEY hKey, DWORD dwIndex, LPWSTR lpName, LPDWORD lpcchName, LPDWORD lpReserved, LPWSTR lpClass,
                      LPDWORD lpcchClass, void*)
{
    const auto directory = directoryOf(hKey);
    if (!directory) {
        return ERROR_INVALID_HANDLE;
    }
    if (lpName == nullptr || lpcchName == nullptr || lpReserved != nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    const LSTATUS status = enumerate(*directory, dwIndex, lpName, *lpcchName);
    if (status == ERROR_SUCCESS) {
        giveClass(lpClass, lpcchClass);
    }
    return status;
}

LSTATUS RegDeleteKeyW(HKEY hKey, LPCWSTR lpSubKey)
{
    const auto directory = directoryOf(hKey);
    if (!directory) {
        return ERROR_INVALID_HANDLE;
    }
    return lpSubKey == nullptr ? static_cast<LSTATUS>(ERROR_INVALID_PARAMETER)
                               : removeBelow(hKey, *directory, lpSubKey);
}

LSTATUS RegCloseKey(HKEY hKey)
{
    const bool isPredefined = hKey == HKEY_CURRENT_USER || hKey == HKEY_LOCAL_MACHINE;
    return isPredefined || openKeys().remove(hKey) ? static_cast<LSTATUS>(ERROR_SUCCESS) : ERROR_INVALID_HANDLE;
}
