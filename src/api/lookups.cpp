#include "VrUInfo/Lookups.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <optional>
#include <string>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/Paths.h"
#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "store/value_conversion.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr wchar_t kStyleFile[] = L"Style.zus";
constexpr std::size_t kStyleRoom = 11; // asked for behind the support folder, whatever its last character
constexpr wchar_t kExtensions[] = L".vscode/extensions/";
constexpr wchar_t kExtension[] = L"HALVIK.VrLisp";

constexpr const wchar_t* kAutoLoadModules[] = {
#include "auto_load_modules.inc"
};

unsigned int writtenText(wchar_t* buffer, const wchar_t* text)
{
    WideWriter writer(buffer, kPathCapacity);
    return writer.append(text) ? static_cast<unsigned int>(writer.length()) : 0;
}

/// The style file where no setting names one.
unsigned int writeDefaultStyle(wchar_t* path)
{
    wchar_t support[kPathCapacity];
    const std::size_t length = GetUserApplicationDataSupportPath(support);
    if (length == 0 || length + kStyleRoom >= kPathCapacity)
        return 0;
    WideWriter writer(path, kPathCapacity);
    const wchar_t last = support[length - 1];
    const bool isClosed = last == L'/' || last == L'\\';
    const bool fits = writer.append(support) && (isClosed || writer.append(L"/")) && writer.append(kStyleFile);
    return fits ? static_cast<unsigned int>(writer.length()) : 0;
}

bool isExtension(const WIN32_FIND_DATAW& entry)
{
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && StrStrIW(entry.cFileName, kExtension);
}

/// Whether a folder that a pattern matches is the extension's.
bool holdsExtension(const std::wstring& pattern)
{
    WIN32_FIND_DATAW entry{};
    const HANDLE listing = FindFirstFileW(pattern.c_str(), &entry);
    if (listing == INVALID_HANDLE_VALUE)
        return false;
    bool isFound = isExtension(entry);
    while (!isFound && FindNextFileW(listing, &entry))
        isFound = isExtension(entry);
    FindClose(listing);
    return isFound;
}

/// The folder of the editor's extensions; nothing when the extension's own path would not fit.
std::optional<std::wstring> extensionsFolder(const std::wstring& profile)
{
    constexpr std::size_t kSlack = 2;
    const std::wstring folder = profile + kExtensions;
    const bool fits = folder.size() + kSlack + std::wcslen(kExtension) < kPathCapacity;
    return fits ? std::optional<std::wstring>(folder) : std::nullopt;
}

} // namespace

int GetVornIniOEMMergeTitleValue(int defaultValue)
{
    VornVariant value;
    if (!GetVornIniConfigValue(L"PartnerOEM", L"MergeTitle", value, VornVariant::kVarInt32))
        return defaultValue;
    return int32Of(value);
}

unsigned int GetVornUIStyleConfigFilePath(wchar_t* path)
{
    if (!path)
        return 0;
    path[0] = L'\0';
    VornVariant value;
    if (vornConfig()->getValue(VornaConfig::UserConfigRoot, L"Config/UIStyle", value) != Vorn::eOk)
        return writeDefaultStyle(path);
    return writtenText(path, textOf(value));
}

bool GetIsNeedStartMigrator()
{
    VornaConfig* const config = vornConfig();
    if (!config->isItemExist(VornaConfig::LanguageRoot, nullptr))
        return false;
    VornVariant flag;
    return config->getValue(VornaConfig::LanguageRoot, kMigrationFlag, flag) == Vorn::eOk && int32Of(flag) == 1;
}

bool GetCurrentFileIsVORNARegAutoLoadFile(const wchar_t* name)
{
    if (isEmpty(name))
        return false;
    return std::any_of(std::begin(kAutoLoadModules), std::end(kAutoLoadModules),
                       [name](const wchar_t* module) { return _wcsicmp(module, name) == 0; });
}

unsigned int GetVrLispVSCodeExtensionDirectory(wchar_t* path)
{
    if (!path)
        return 0;
    path[0] = L'\0';
    wchar_t profile[kPathCapacity];
    if (GetUserProfileDirectory(profile) == 0)
        return 0;
    const std::optional<std::wstring> folder = extensionsFolder(profile);
    if (!folder || !holdsExtension(*folder + L"*"))
        return 0;
    return writtenText(path, (*folder + kExtension).c_str());
}
