#include "osbase/last_error.h"
#include "osbase/module_access.h"
#include "osbase/wide_buffer.h"

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <cwchar>

namespace vrosbase::internal
{
namespace
{

std::atomic<HINSTANCE> resourceModule{nullptr};

/// A symbol that the module itself defines. The loader also finds those of the module's dependencies.
const void* ownSymbol(void* module, const char* name)
{
    const void* const symbol = ::dlsym(module, name);
    Dl_info info = {};
    void* owner = nullptr;
    if (symbol == nullptr || ::dladdr1(symbol, &info, &owner, RTLD_DL_LINKMAP) == 0) {
        return nullptr;
    }
    return owner == module ? symbol : nullptr;
}

/// The text of an id in a module's string table, or null.
const wchar_t* tableText(void* module, std::uint32_t id)
{
    const auto* const rows = static_cast<const VrResourceString*>(ownSymbol(module, "VrResourceStrings"));
    const auto* const count = static_cast<const std::uint32_t*>(ownSymbol(module, "VrResourceStringCount"));
    if (rows == nullptr || count == nullptr) {
        return nullptr;
    }
    const auto* const end = rows + *count;
    const auto* const row =
        std::lower_bound(rows, end, id, [](const VrResourceString& r, std::uint32_t wanted) { return r.id < wanted; });
    return row != end && row->id == id ? row->text : nullptr;
}

/// Gives the text itself, or a copy when there is a capacity.
int giveText(const wchar_t* text, wchar_t* buffer, int capacity)
{
    const std::size_t length = std::wcslen(text);
    if (capacity == 0) {
        std::memcpy(buffer, &text, sizeof text);
        return static_cast<int>(length);
    }
    const auto room = static_cast<std::size_t>(capacity);
    return static_cast<int>(copyText(buffer, room, {text, length}) == Fit::Whole ? length : room - 1);
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

int LoadStringW(HINSTANCE hInstance, UINT uID, LPWSTR lpBuffer, int cchBufferMax)
{
    if (lpBuffer == nullptr || cchBufferMax < 0) {
        return failWith(ERROR_INVALID_PARAMETER, 0);
    }
    const ModulePin pin = pinOrMain(hInstance);
    if (pin == nullptr) {
        return failWith(ERROR_INVALID_HANDLE, 0);
    }
    const wchar_t* const text = tableText(pin.get(), uID);
    return text == nullptr ? failWith(ERROR_RESOURCE_NAME_NOT_FOUND, 0) : giveText(text, lpBuffer, cchBufferMax);
}

HINSTANCE AfxGetResourceHandle(void)
{
    void* const chosen = resourceModule.load();
    return chosen == nullptr ? mainModule() : chosen;
}

void AfxSetResourceHandle(HINSTANCE hInstResource)
{
    resourceModule.store(hInstResource);
}
