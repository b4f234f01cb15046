// The resource library of the current language, shared by everything that reads texts from it.
#pragma once

#include "VrOsBase/VrOsBase.h"

namespace vruinfo::internal
{

/// The library's handle (`gVrUInfoResDllInstance`); loaded under the given file name when it is not there
/// yet. Null when it cannot be loaded; the next call tries again.
[[nodiscard]] HMODULE languageLibrary(const wchar_t* fileName);

} // namespace vruinfo::internal
