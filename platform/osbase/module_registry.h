#pragma once

#include "VrOsBase/VrOsBase.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace vrosbase::internal
{

/// Owns one reference of the system's loader to the module it points at, so that the module stays while it is
/// used.
using ModulePin = std::shared_ptr<void>;

/// Null when the system's loader cannot give the module; its message waits in dlerror() then.
[[nodiscard]] ModulePin openModule(const char* name, int mode);

/// The handle of the main program. It never becomes invalid.
[[nodiscard]] HMODULE mainModule();

/// The path under which the system's loader knows a module; empty for the main program.
[[nodiscard]] std::string loaderPath(void* module);

/// The module handles that callers were given. A handle that is not known here is never handed to the
/// system's loader, which would follow it.
///
/// m_mutex guards both maps. It is never held while the system's loader is called: the loader runs
/// initialisers and finalisers of modules under a lock of its own, and those may call us.
class ModuleRegistry final
{
public:
    /// Takes over a new reference as one that a caller has to give back.
    [[nodiscard]] HMODULE addReference(ModulePin pin);

    enum class Release { Done, NotOurs, Unknown };

    /// Gives back one reference. NotOurs: the module is loaded, but nobody loaded it through us.
    [[nodiscard]] Release releaseReference(HMODULE module);

    /// Remembers a handle that was found without a reference being taken.
    [[nodiscard]] HMODULE addSeen(const ModulePin& pin);

    /// Keeps a known module loaded while it is used. Null for a handle that is not one of a loaded module.
    [[nodiscard]] ModulePin pin(HMODULE module);

private:
    struct Loaded {
        ModulePin pin;
        unsigned references;
    };

    [[nodiscard]] ModulePin pinOfLoaded(HMODULE module) const;
    [[nodiscard]] ModulePin pinOfSeen(HMODULE module);
    [[nodiscard]] std::string seenPath(HMODULE module) const;

    mutable std::mutex m_mutex;
    std::map<HMODULE, Loaded> m_loaded;
    std::map<HMODULE, std::string> m_seen; ///< with the loader's path; loaded or not is asked when the handle is used
};

} // namespace vrosbase::internal
