#include "osbase/directory.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>

namespace vrosbase::internal
{
namespace
{

struct DirectoryCloser {
    void operator()(DIR* stream) const { ::closedir(stream); }
};

} // namespace

DirectoryNames readDirectory(const std::string& directory)
{
    const std::unique_ptr<DIR, DirectoryCloser> stream(::opendir(directory.c_str()));
    if (stream == nullptr) {
        return {errno, {}};
    }
    DirectoryNames result = {0, {}};
    // Only one thread ever has this stream, and that is what readdir asks for.
    while (const dirent* const entry = ::readdir(stream.get())) { // NOLINT(concurrency-mt-unsafe)
        result.names.emplace_back(&entry->d_name[0]);
    }
    return result;
}

bool isDirectory(const std::string& path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace vrosbase::internal
