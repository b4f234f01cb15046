#include "osbase/module_registry.h"

#include <dlfcn.h>
#include <link.h>

namespace vrosbase::internal
{
namespace
{

void closeModule(void* module)
{
    if (module != nullptr) {
        ::dlclose(module);
    }
}

} // namespace

ModulePin openModule(const char* name, int mode)
{
    return {::dlopen(name, mode), closeModule};
}

HMODULE mainModule()
{
    static void* const handle = openModule(nullptr, RTLD_LAZY).get();
    return handle;
}

// The system's loader wrote this text under its own lock, which the thread sanitizer does not see; so the text is read
// here, character by character, where the sanitizer does not look.
__attribute__((no_sanitize("thread"))) std::string loaderPath(void* module)
{
    link_map* map = nullptr;
    if (::dlinfo(module, RTLD_DI_LINKMAP, &map) != 0 || map == nullptr || map->l_name == nullptr) {
        return {};
    }
    std::string path;
    for (const char* c = map->l_name; *c != '\0'; ++c) {
        path.push_back(*c);
    }
    return path;
}

HMODULE ModuleRegistry::addReference(ModulePin pin)
{
    void* const module = pin.get();
    // Given back after the lock, when the module was loaded already: one reference of the system's loader is
    // enough.
    const std::lock_guard<std::mutex> lock(m_mutex);
    Loaded& loaded = m_loaded[module];
    ++loaded.references;
    loaded.pin.swap(pin);
    return module;
}

ModuleRegistry::Release ModuleRegistry::releaseReference(HMODULE module)
{
    ModulePin last;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_loaded.find(module);
        if (found != m_loaded.end() && --found->second.references > 0) {
            return Release::Done;
        }
        if (found != m_loaded.end()) {
            last.swap(found->second.pin);
            m_loaded.erase(found);
        }
    }
    if (last != nullptr) {
        return Release::Done;
    }
    return pin(module) != nullptr ? Release::NotOurs : Release::Unknown;
}

HMODULE ModuleRegistry::addSeen(const ModulePin& pin)
{
    std::string path = loaderPath(pin.get());
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_seen[pin.get()] = std::move(path);
    return pin.get();
}

ModulePin ModuleRegistry::pin(HMODULE module)
{
    if (module == nullptr) {
        return nullptr;
    }
    if (module == mainModule()) {
        return openModule(nullptr, RTLD_LAZY);
    }
    ModulePin pin = pinOfLoaded(module);
    return pin != nullptr ? pin : pinOfSeen(module);
}

ModulePin ModuleRegistry::pinOfLoaded(HMODULE module) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_loaded.find(module);
    return found == m_loaded.end() ? nullptr : found->second.pin;
}

ModulePin ModuleRegistry::pinOfSeen(HMODULE module)
{
    const std::string path = seenPath(module);
    if (path.empty()) {
        return nullptr;
    }
    ModulePin pin = openModule(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (pin.get() == module) {
        return pin;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_seen.erase(module);
    return nullptr;
}

std::string ModuleRegistry::seenPath(HMODULE module) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_seen.find(module);
    return found == m_seen.end() ? std::string() : found->second;
}

} // namespace vrosbase::internal
