#include "osbase/module_name.h"

#include "osbase/path_text.h"
#include "osbase/text_case.h"

#include <climits>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace vrosbase::internal
{
namespace
{

bool endsWith(std::string_view text, std::string_view ending)
{
    return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

bool hasWindowsEnding(std::string_view name)
{
    constexpr std::string_view kEnding = ".dll";
    if (name.size() <= kEnding.size()) {
        return false;
    }
    return compareFolded(wideText(name.substr(name.size() - kEnding.size())), L".dll") == 0;
}

std::string_view withoutLeadingDots(std::string_view path)
{
    while (path.substr(0, 2) == "./") {
        path.remove_prefix(std::min(path.find_first_not_of('/', 1), path.size()));
    }
    return path;
}

} // namespace

std::string libraryFileName(std::string_view name)
{
    const std::string_view file = lastComponent(name);
    if (!hasWindowsEnding(file)) {
        return std::string(name);
    }
    std::string mapped(name.substr(0, name.size() - file.size()));
    mapped.append("lib").append(file.substr(0, file.size() - 4)).append(".so");
    return mapped;
}

std::string absoluteLibraryPath(std::string_view name)
{
    if (name.find('/') == std::string_view::npos || name.front() == '/') {
        return std::string(name);
    }
    std::error_code error;
    const std::filesystem::path here = std::filesystem::current_path(error);
    return error ? std::string(name) : (here / withoutLeadingDots(name)).string();
}

std::string executablePath()
{
    std::array<char, PATH_MAX> target; // NOLINT(cppcoreguidelines-pro-type-member-init) filled by the call
    const ssize_t length = ::readlink("/proc/self/exe", target.data(), target.size());
    std::string path(target.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    // The kernel marks a program whose file was replaced while it runs; its path is still the one it came
    // from.
    constexpr std::string_view kDeleted = " (deleted)";
    if (endsWith(path, kDeleted) && ::access(path.c_str(), F_OK) != 0) {
        path.resize(path.size() - kDeleted.size());
    }
    return path;
}

} // namespace vrosbase::internal
