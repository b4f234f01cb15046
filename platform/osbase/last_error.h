#pragma once

#include "VrOsBase/VrOsBase.h"

namespace vrosbase::internal
{

/// Sets the calling thread's last error and gives the value that the failing function returns.
template <typename Value>
[[nodiscard]] Value failWith(DWORD error, Value value)
{
    SetLastError(error);
    return value;
}

} // namespace vrosbase::internal
