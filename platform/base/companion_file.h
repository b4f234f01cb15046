#pragma once

#include <optional>
#include <string>

namespace vrplatformbase::internal
{

/// Path of a file that is delivered with this library, as it is on disk: beside the library, or in one of the places
/// that an installation puts it; nothing when it is in none of them.
[[nodiscard]] std::optional<std::string> findCompanion(const char* fileName);

} // namespace vrplatformbase::internal
