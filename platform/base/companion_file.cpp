#include "companion_file.h"

#include <array>
#include <cstdlib>
#include <memory>

#include <dlfcn.h>
#include <unistd.h>

namespace vrplatformbase::internal
{

namespace
{

// From the library's directory; the last one is for library directories that are one level deeper.
constexpr std::array<const char*, 4> kPlaces{"", "vruinfo/", "../libexec/vruinfo/", "../../libexec/vruinfo/"};

struct Free {
    void operator()(char* text) const noexcept { std::free(text); } // NOLINT(cppcoreguidelines-no-malloc) realpath's
};

// With the trailing separator and symbolic links followed; empty when it cannot be told.
std::string ownDirectory()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&findCompanion), &info) == 0)
        return {};
    const std::unique_ptr<char, Free> path(realpath(info.dli_fname, nullptr));
    if (!path)
        return {};
    const std::string file(path.get());
    return file.substr(0, file.rfind('/') + 1);
}

} // namespace

std::optional<std::string> findCompanion(const char* fileName)
{
    static const std::string directory = ownDirectory();
    if (directory.empty())
        return std::nullopt;
    for (const char* place : kPlaces) {
        std::string path = directory + place + fileName;
        if (access(path.c_str(), R_OK) == 0)
            return path;
    }
    return std::nullopt;
}

} // namespace vrplatformbase::internal
