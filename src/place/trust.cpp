#include "place/trust.h"

#include <climits>
#include <cstdlib>
#include <cwchar>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

#include "text/wide_text.h"

namespace vruinfo::internal
{
namespace
{

std::string bytesOf(const wchar_t* path)
{
    return toQString(path).toStdString();
}

/// With all links followed; empty when there is nothing.
std::string realPath(const std::string& path)
{
    char real[PATH_MAX];
    return realpath(path.c_str(), real) ? real : "";
}

/// Also false where there is nothing.
bool isOfAnother(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && status.st_uid != 0 && status.st_uid != geteuid();
}

/// Only root and this process' user can change it. In a directory where everybody may make files and nobody may touch
/// those of others, what is ours stays ours.
bool isOnlyOurs(const std::string& path)
{
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0 || (status.st_uid != 0 && status.st_uid != geteuid()))
        return false;
    const bool isShared = (status.st_mode & (S_IWGRP | S_IWOTH)) != 0;
    return !isShared || (S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0);
}

bool isOnlyOursFromTheRoot(const std::string& path)
{
    for (std::size_t end = path.size(); end != std::string::npos && end != 0; end = path.rfind('/', end - 1)) {
        if (!isOnlyOurs(path.substr(0, end)))
            return false;
    }
    return true;
}

bool isBelow(const std::string& directory, const std::string& path)
{
    return !directory.empty() && path.compare(0, directory.size(), directory) == 0;
}

} // namespace

bool exceedsRightsOf(const std::wstring& settingsFile)
{
    if (getauxval(AT_SECURE) != 0)
        return true;
    const std::string file = bytesOf(settingsFile.c_str());
    const std::string directory = file.substr(0, file.rfind('/'));
    return geteuid() == 0 && (isOfAnother(file) || isOfAnother(directory));
}

std::optional<std::wstring> trustedLibrary(const wchar_t* name, const wchar_t* installation)
{
    if (!std::wcschr(name, L'/'))
        return name;
    const std::string path = realPath(bytesOf(name));
    const bool isTrusted = !path.empty() && (isBelow(bytesOf(installation), path) || isOnlyOursFromTheRoot(path));
    return isTrusted ? std::optional<std::wstring>(toWide(QString::fromStdString(path))) : std::nullopt;
}

} // namespace vruinfo::internal
