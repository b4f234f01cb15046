#include "osbase/immortal.h"
#include "osbase/last_error.h"
#include "osbase/module_access.h"
#include "osbase/module_name.h"
#include "osbase/path_text.h"
#include "osbase/wide_buffer.h"

#include <dlfcn.h>
#include <link.h>

#include <array>

namespace vrosbase::internal
{

ModuleRegistry& modules()
{
    return immortal<ModuleRegistry>();
}

ModulePin pinOrMain(HMODULE module)
{
    return modules().pin(module == nullptr ? mainModule() : module);
}

namespace
{

/// Plain memory, so that it can still be used while the thread ends.
constexpr std::size_t kMessageCapacity = 2048;
thread_local std::array<wchar_t, kMessageCapacity> loaderMessage{};

void setLoaderMessage(const char* message)
{
    // A message that is too long keeps its beginning, which names the library.
    static_cast<void>(copyText(loaderMessage.data(), loaderMessage.size(), wideText(message)));
}

HMODULE loadModule(const std::string& name, int mode)
{
    ModulePin pin = openModule(absoluteLibraryPath(libraryFileName(name)).c_str(), mode | RTLD_LOCAL);
    if (pin == nullptr) {
        const char* const message = ::dlerror();
        setLoaderMessage(message == nullptr ? "" : message);
        return failWith(ERROR_MOD_NOT_FOUND, HMODULE{});
    }
    // Behind the opening: the module's own initialiser may have loaded, too.
    setLoaderMessage("");
    return modules().addReference(std::move(pin));
}

/// A search among the loaded modules for one whose file has the given name.
struct FileNameSearch {
    std::string_view fileName;
    std::string path;
};

int matchFileName(dl_phdr_info* info, std::size_t, void* data)
{
    auto* const search = static_cast<FileNameSearch*>(data);
    if (info->dlpi_name == nullptr || lastComponent(info->dlpi_name) != search->fileName) {
        return 0;
    }
    search->path = info->dlpi_name;
    return 1;
}

/// A loaded module by name, whatever path it was loaded by. Null when there is none.
ModulePin findModule(const std::string& name)
{
    constexpr int kOnlyLoaded = RTLD_LAZY | RTLD_NOLOAD;
    if (name.empty()) {
        return nullptr;
    }
    ModulePin pin = openModule(name.c_str(), kOnlyLoaded);
    if (pin != nullptr || name.find('/') != std::string::npos) {
        return pin;
    }
    FileNameSearch search{name, {}};
    ::dl_iterate_phdr(matchFileName, &search);
    return search.path.empty() ? nullptr : openModule(search.path.c_str(), kOnlyLoaded);
}

std::wstring modulePath(void* module)
{
    if (module == mainModule()) {
        return wideText(executablePath());
    }
    return wideText(absoluteLibraryPath(loaderPath(module)));
}

DWORD givePath(const std::wstring& path, wchar_t* buffer, DWORD capacity)
{
    const Fit fit = copyText(buffer, capacity, path);
    SetLastError(fit == Fit::Whole ? ERROR_SUCCESS : ERROR_INSUFFICIENT_BUFFER);
    return fit == Fit::Whole ? static_cast<DWORD>(path.size()) : capacity;
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

HMODULE LoadLibraryW(LPCWSTR lpLibFileName)
{
    return LoadLibraryExW(lpLibFileName, nullptr, 0);
}

HMODULE LoadLibraryExW(LPCWSTR lpLibFileName, HANDLE, DWORD dwFlags)
{
    setLoaderMessage("");
    if (lpLibFileName == nullptr || *lpLibFileName == L'\0') {
        return failWith(ERROR_INVALID_PARAMETER, HMODULE{});
    }
    const bool bindsLate = (dwFlags & DONT_RESOLVE_DLL_REFERENCES) != 0;
    return loadModule(pathBytes(lpLibFileName), bindsLate ? RTLD_LAZY : RTLD_NOW);
}

BOOL FreeLibrary(HMODULE hLibModule)
{
    const auto release = modules().releaseReference(hLibModule);
    return release == ModuleRegistry::Release::Unknown ? failWith(ERROR_INVALID_HANDLE, FALSE) : TRUE;
}

HMODULE GetModuleHandleW(LPCWSTR lpModuleName)
{
    if (lpModuleName == nullptr) {
        return mainModule();
    }
    const ModulePin pin = findModule(libraryFileName(pathBytes(lpModuleName)));
    return pin == nullptr ? failWith(ERROR_MOD_NOT_FOUND, HMODULE{}) : modules().addSeen(pin);
}

DWORD GetModuleFileNameW(HMODULE hModule, LPWSTR lpFilename, DWORD nSize)
{
    if (lpFilename == nullptr) {
        return failWith(ERROR_INVALID_PARAMETER, DWORD{0});
    }
    const ModulePin pin = pinOrMain(hModule);
    if (pin == nullptr) {
        return failWith(ERROR_INVALID_HANDLE, DWORD{0});
    }
    return givePath(modulePath(pin.get()), lpFilename, nSize);
}

LPCWSTR VrGetLoaderMessage(void)
{
    return loaderMessage.data();
}

BOOL DisableThreadLibraryCalls(HMODULE hLibModule)
{
    return modules().pin(hLibModule) != nullptr ? TRUE : failWith(ERROR_INVALID_HANDLE, FALSE);
}
