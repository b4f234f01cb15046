#pragma once

#include "osbase/module_registry.h"

namespace vrosbase::internal
{

/// The process's registry of module handles.
[[nodiscard]] ModuleRegistry& modules();

/// Keeps a module loaded while it is used; null stands for the main program. Null for what is not a module's
/// handle.
[[nodiscard]] ModulePin pinOrMain(HMODULE module);

} // namespace vrosbase::internal
