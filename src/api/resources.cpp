#include "VrUInfo/Resources.h"

#include <array>
#include <cwchar>
#include <string>

#include "VrUInfo/Paths.h"
#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "place/program_place.h"
#include "store/value_conversion.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr unsigned int kPathSize = 1023;
constexpr std::size_t kLongestValuePath = 1022;
constexpr int kDefaultLocaleId = 2052;
constexpr DWORD kAttach = 1;
constexpr DWORD kDetach = 0;
constexpr wchar_t kUnknownLanguage[] = L"unknown";
constexpr wchar_t kHelpFile[] = L"/Help/VrHelp.pdf";
constexpr wchar_t kPartnerLibrary[] = L"/VrCustomRes.so";
constexpr wchar_t kPartnerLibraryValue[] = L"CommonSettings\\CustomResFile";

/// The name of the unknown language's directory, as the installation's INI file has it; empty when it has
/// none.
std::wstring unknownLanguageDirectory()
{
    std::array<wchar_t, kPathCapacity> ini{};
    if (vornConfig()->getIniFilePath(ini.data(), kProductIni) != Vorn::eOk)
        return {};
    const auto number =
        static_cast<int>(GetPrivateProfileIntW(kProductSection, kLocaleIdKey, kDefaultLocaleId, ini.data()));
    if (number <= 0)
        return kUnknownLanguage;
    std::array<wchar_t, kPathCapacity> name{};
    GetPrivateProfileStringW(kLocaleSection, std::to_wstring(number).c_str(), L"", name.data(), kPathCapacity,
                             ini.data());
    return name.data();
}

/// Full path of a library in the current language's directory; false when it cannot be built.
bool writeResourceLibraryPath(const wchar_t* fileName, wchar_t* path)
{
    const unsigned int length = GetResourceDllPath(path, kPathSize);
    if (length == 0 || length + std::wcslen(fileName) + 2 >= kPathSize)
        return false;
    return PathAppendW(path, fileName) != FALSE;
}

template <typename Load>
HMODULE loadFromLanguageDirectory(const wchar_t* fileName, Load load)
{
    if (isEmpty(fileName))
        return nullptr;
    std::array<wchar_t, kPathCapacity> path{};
    if (!writeResourceLibraryPath(fileName, path.data()))
        return nullptr;
    const HMODULE library = load(path.data());
    return library ? library : load(fileName);
}

bool isLoadedOrLoads(const wchar_t* path)
{
    return GetModuleHandleW(path) || (isThere(path) && LoadLibraryExW(path, nullptr, 0));
}

/// Looks for the partner's library beside the language's and, when it loads, records its path in the current
/// profile.
bool findPartnerLibrary(VornVariant& value)
{
    std::array<wchar_t, kPathCapacity> path{};
    const unsigned int length = GetResourceDllPathLocal(path.data(), kPathSize);
    if (length == 0 || length + std::size(kPartnerLibrary) > path.size())
        return false;
    std::wcscpy(path.data() + length, kPartnerLibrary);
    if (!isLoadedOrLoads(path.data()))
        return false;
    value.setString(path.data(), VornVariant::kVarString);
    vornConfig()->setValue(VornaConfig::CurrentProfileRoot, kPartnerLibraryValue, value);
    return true;
}

} // namespace

unsigned int GetResourceDllPath(wchar_t* path, unsigned int size)
{
    return GetResourceDllPath(GetCurrentLanguageShortName(), path, size);
}

unsigned int GetResourceDllPath(const wchar_t* name, wchar_t* path, unsigned int size)
{
    if (isEmpty(name) || !path || size == 0)
        return 0;
    return writeProgramComponent(path, size, name);
}

unsigned int GetResourceDllPathLocal(wchar_t* path, unsigned int size)
{
    const wchar_t* const language = GetCurrentLanguageShortName();
    if (isEmpty(language) || _wcsicmp(language, kUnknownLanguage) != 0)
        return GetResourceDllPath(language, path, size);
    return GetResourceDllPath(unknownLanguageDirectory().c_str(), path, size);
}

unsigned int GetResourceTlbPath(wchar_t* path, unsigned int size)
{
    return GetResourceDllPath(L"CommonBin/lib", path, size);
}

HMODULE LoadResourceDll(const wchar_t* fileName)
{
    return loadFromLanguageDirectory(fileName, LoadLibraryW);
}

HMODULE LoadResourceDllEx(const wchar_t* fileName, HANDLE file, DWORD flags)
{
    return loadFromLanguageDirectory(fileName,
                                     [file, flags](const wchar_t* name) { return LoadLibraryExW(name, file, flags); });
}

int GetHelpFilePath(wchar_t* path, int size)
{
    const wchar_t* const language = GetCurrentLanguageShortName();
    if (!path || size <= 0 || isEmpty(language))
        return 0;
    const std::wstring directory = programDirectory();
    if (directory.empty())
        return 0;
    const std::wstring file = directory + language + kHelpFile;
    if (file.size() + 1 >= static_cast<std::size_t>(size))
        return 0;
    std::wmemcpy(path, file.c_str(), file.size() + 1);
    return static_cast<int>(file.size());
}

unsigned int GetCustomResFileName(wchar_t* path)
{
    if (!path)
        return 0;
    path[0] = L'\0';
    VornaConfig* const config = vornConfig();
    if (!config->isNeedCheckOemPath())
        return 0;
    VornVariant value;
    if (config->getValue(VornaConfig::CurrentProfileRoot, kPartnerLibraryValue, value) != Vorn::eOk &&
        !findPartnerLibrary(value))
        return 0;
    const wchar_t* const text = textOf(value);
    const std::size_t length = std::wcslen(text);
    if (length > kLongestValuePath)
        return 0;
    std::wmemcpy(path, text, length + 1);
    return static_cast<unsigned int>(length);
}

BOOL DllMain(HMODULE module, DWORD reason, LPVOID)
{
    if (reason == kAttach)
        DisableThreadLibraryCalls(module);
    if (reason == kDetach && gVrUInfoResDllInstance) {
        FreeLibrary(gVrUInfoResDllInstance);
        gVrUInfoResDllInstance = nullptr;
    }
    return TRUE;
}
