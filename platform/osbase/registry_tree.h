#pragma once

#include "VrOsBase/VrOsBase.h"

#include <string>
#include <string_view>
#include <vector>

namespace vrosbase::internal
{

/// A key's directory, or why there is none.
struct KeyResult {
    LSTATUS status;
    std::string directory;
    DWORD disposition; ///< of a key that was asked to be made
};

/// The directory of a predefined key; empty for what is none.
[[nodiscard]] std::string predefinedDirectory(HKEY key);

/// The key below a directory that a path names; the directory itself for a path without a name.
[[nodiscard]] KeyResult findKey(const std::string& directory, std::wstring_view path);

/// As findKey, and makes what is missing, the directory itself, too.
[[nodiscard]] KeyResult makeKey(const std::string& directory, std::wstring_view path);

/// Removes a key that has no children.
[[nodiscard]] LSTATUS removeKey(const std::string& directory);

/// Names of the keys right below a directory, sorted; none for a directory that is not there.
struct KeyNames {
    LSTATUS status;
    std::vector<std::wstring> names;
};
[[nodiscard]] KeyNames childKeys(const std::string& directory);

} // namespace vrosbase::internal
