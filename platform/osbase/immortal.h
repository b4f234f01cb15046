#pragma once

#include <memory>

namespace vrosbase::internal
{

/// The one object of its type that the process shares. It is never destroyed: libraries and static objects
/// that end later than we do may still call, and modules that nobody freed must stay loaded to the very end.
template <typename T>
[[nodiscard]] T& immortal()
{
    static T& object = *std::make_unique<T>().release();
    return object;
}

} // namespace vrosbase::internal
