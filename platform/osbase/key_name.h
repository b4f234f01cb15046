#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vrosbase::internal
{

/// The directory name of a registry key. Control characters, "%" and the names "." and ".." are written as
/// "%XX". Nothing when the result would be longer than a file name may be.
[[nodiscard]] std::optional<std::string> encodeKeyName(std::wstring_view name);

[[nodiscard]] std::wstring decodeKeyName(std::string_view fileName);

/// The names in a subkey text, with "\" or "/" between them. Empty ones are passed over.
[[nodiscard]] std::vector<std::wstring> splitKeyPath(std::wstring_view path);

} // namespace vrosbase::internal
