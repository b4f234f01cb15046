#pragma once

#include <string>
#include <vector>

namespace vrosbase::internal
{

struct DirectoryNames {
    int error;                      ///< errno of the failure, or 0
    std::vector<std::string> names; ///< "." and ".." among them, in no order
};

[[nodiscard]] DirectoryNames readDirectory(const std::string& directory);

/// Links are followed.
[[nodiscard]] bool isDirectory(const std::string& path);

} // namespace vrosbase::internal
