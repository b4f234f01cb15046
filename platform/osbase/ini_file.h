#pragma once

#include "VrOsBase/VrOsBase.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace vrosbase::internal
{

/// A longer file is no INI file and counts as one that cannot be read.
constexpr std::size_t kMaxIniBytes = std::size_t{64} * 1024 * 1024;

struct IniFile {
    DWORD error;      ///< 0, 2 (no such file) or 5 (not a file, or not readable)
    std::string text; ///< UTF-8 without byte-order mark
};

[[nodiscard]] IniFile readIniFile(const std::string& path);

/// A file's bytes as UTF-8 without byte-order mark, whichever of the known encodings they have. The last byte
/// of UTF-16 with an odd number of bytes goes; half a surrogate pair becomes U+FFFD.
[[nodiscard]] std::string iniTextOfBytes(std::string bytes);

} // namespace vrosbase::internal
