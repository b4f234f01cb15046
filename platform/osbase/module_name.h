#pragma once

#include <string>
#include <string_view>

namespace vrosbase::internal
{

/// The file name of a library that may be named in the Windows way: "dir/X.dll" is "dir/libX.so", the ending
/// in either case. Other names stay as they are.
[[nodiscard]] std::string libraryFileName(std::string_view name);

/// A path from the root for one that begins in the current directory. A bare name stays bare.
[[nodiscard]] std::string absoluteLibraryPath(std::string_view name);

/// The full path of the running program.
[[nodiscard]] std::string executablePath();

} // namespace vrosbase::internal
