#include "osbase/last_error.h"
#include "osbase/path_text.h"
#include "osbase/wide_buffer.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace vrosbase::internal
{
namespace
{

constexpr int kMayWrite = 2;
constexpr int kMayRead = 4;

/// One of the three errors that the access test tells apart.
int accessError(int error)
{
    const bool isMissing = error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == ELOOP;
    return isMissing ? ENOENT : EACCES;
}

int testAccess(const std::string& path, int mode)
{
    const int rights = ((mode & kMayWrite) != 0 ? W_OK : 0) | ((mode & kMayRead) != 0 ? R_OK : 0);
    if (::faccessat(AT_FDCWD, path.c_str(), rights, AT_EACCESS) == 0) {
        return 0;
    }
    errno = accessError(errno);
    return -1;
}

DWORD changeError(int error)
{
    if (error == ENOENT) {
        return ERROR_FILE_NOT_FOUND;
    }
    return error == EACCES || error == EPERM ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND;
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

int _waccess(const wchar_t* path, int mode)
{
    const bool isKnownMode = (mode & ~(kMayRead | kMayWrite)) == 0;
    if (path == nullptr || !isKnownMode) {
        errno = EINVAL;
        return failWith(ERROR_INVALID_PARAMETER, -1);
    }
    return testAccess(pathBytes(path), mode);
}

DWORD GetCurrentDirectoryW(DWORD nBufferLength, LPWSTR lpBuffer)
{
    std::error_code error;
    const std::wstring directory = wideText(std::filesystem::current_path(error).native());
    if (error) {
        return failWith(changeError(error.value()), DWORD{0});
    }
    const auto length = static_cast<DWORD>(directory.size());
    if (lpBuffer == nullptr || nBufferLength <= length) {
        return length + 1;
    }
    return copyText(lpBuffer, nBufferLength, directory) == Fit::Whole ? length : 0;
}

BOOL SetCurrentDirectoryW(LPCWSTR lpPathName)
{
    if (lpPathName == nullptr) {
        return failWith(ERROR_INVALID_PARAMETER, FALSE);
    }
    return ::chdir(pathBytes(lpPathName).c_str()) == 0 ? TRUE : failWith(changeError(errno), FALSE);
}
