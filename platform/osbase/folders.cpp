#include "osbase/last_error.h"
#include "osbase/path_text.h"
#include "osbase/wide_buffer.h"

#include <QFile>
#include <QStandardPaths>

#include <filesystem>
#include <optional>

namespace vrosbase::internal
{
namespace
{

std::optional<QStandardPaths::StandardLocation> locationOf(int number)
{
    switch (number) {
    case CSIDL_PERSONAL:
        return QStandardPaths::DocumentsLocation;
    case CSIDL_APPDATA:
        return QStandardPaths::ConfigLocation;
    case CSIDL_LOCAL_APPDATA:
        return QStandardPaths::GenericDataLocation;
    case CSIDL_PROFILE:
        return QStandardPaths::HomeLocation;
    default:
        return std::nullopt;
    }
}

std::string folderBytes(QStandardPaths::StandardLocation location)
{
    return QFile::encodeName(QStandardPaths::writableLocation(location)).toStdString();
}

bool makeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    return std::filesystem::is_directory(folder, error);
}

/// Writes the folder into a buffer of kVrPathCapacity characters, which is empty on failure.
HRESULT giveFolder(int csidl, wchar_t* buffer)
{
    buffer[0] = L'\0';
    const auto location = locationOf(csidl & ~CSIDL_FLAG_CREATE);
    if (!location) {
        return E_INVALIDARG;
    }
    const std::string folder = folderBytes(*location);
    const std::wstring text = wideText(folder);
    if (text.empty() || text.size() >= kVrPathCapacity) {
        return E_FAIL;
    }
    if ((csidl & CSIDL_FLAG_CREATE) != 0 && !makeFolder(folder)) {
        return E_FAIL;
    }
    return copyText(buffer, kVrPathCapacity, text) == Fit::Whole ? S_OK : E_FAIL;
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

BOOL SHGetSpecialFolderPathW(HWND, LPWSTR pszPath, int csidl, BOOL fCreate)
{
    if (pszPath == nullptr) {
        return failWith(ERROR_INVALID_PARAMETER, FALSE);
    }
    return giveFolder(fCreate ? csidl | CSIDL_FLAG_CREATE : csidl, pszPath) == S_OK ? TRUE : FALSE;
}

HRESULT SHGetFolderPathW(HWND, int csidl, HANDLE, DWORD, LPWSTR pszPath)
{
    return pszPath == nullptr ? E_INVALIDARG : giveFolder(csidl, pszPath);
}
