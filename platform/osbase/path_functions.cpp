#include "osbase/last_error.h"
#include "osbase/path_text.h"
#include "osbase/wide_buffer.h"

#include <cwchar>

namespace vrosbase::internal
{
namespace
{

constexpr std::size_t kDriveCapacity = 3;
constexpr std::size_t kDirectoryCapacity = 1024;
constexpr std::size_t kNameCapacity = 256;

std::wstring_view withoutLeadingSeparators(std::wstring_view text)
{
    while (!text.empty() && isSeparator(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::wstring_view withoutTrailingSeparators(std::wstring_view text)
{
    while (!text.empty() && isSeparator(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::wstring joined(std::wstring_view path, std::wstring_view component)
{
    std::wstring result(withoutTrailingSeparators(path));
    if (!path.empty()) {
        result.push_back(L'/');
    }
    return withSlashes(result.append(component));
}

/// Length of what is left of a path without its last component.
std::size_t parentLength(std::wstring_view path)
{
    const std::size_t separator = path.find_last_of(L"/\\");
    if (separator == std::wstring_view::npos) {
        return 0;
    }
    const std::wstring_view parent = withoutTrailingSeparators(path.substr(0, separator));
    return parent.empty() ? 1 : parent.size();
}

void givePart(wchar_t* buffer, std::size_t capacity, std::wstring_view part)
{
    if (buffer != nullptr) {
        static_cast<void>(copyText(buffer, capacity, part));
    }
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

BOOL PathAppendW(LPWSTR pszPath, LPCWSTR pMore)
{
    if (pszPath == nullptr || pMore == nullptr) {
        return failWith(ERROR_INVALID_PARAMETER, FALSE);
    }
    const std::wstring_view more = withoutLeadingSeparators(pMore);
    const std::wstring_view path(pszPath, ::wcsnlen(pszPath, kVrPathCapacity));
    if (more.empty()) {
        return TRUE;
    }
    const std::wstring result = joined(path, more);
    if (path.size() >= kVrPathCapacity || result.size() >= kVrPathCapacity) {
        return failWith(ERROR_FILENAME_EXCED_RANGE, FALSE);
    }
    return copyText(pszPath, kVrPathCapacity, result) == Fit::Whole ? TRUE : FALSE;
}

BOOL PathRemoveFileSpecW(LPWSTR pszPath)
{
    if (pszPath == nullptr) {
        return failWith(ERROR_INVALID_PARAMETER, FALSE);
    }
    const std::wstring_view path(pszPath);
    const std::size_t length = parentLength(path);
    if (length >= path.size()) {
        return FALSE;
    }
    pszPath[length] = L'\0';
    return TRUE;
}

void _wsplitpath(const wchar_t* path, wchar_t* drive, wchar_t* dir, wchar_t* fname, wchar_t* ext)
{
    if (path == nullptr) {
        return SetLastError(ERROR_INVALID_PARAMETER);
    }
    const std::wstring whole = withSlashes(path);
    const std::wstring_view text(whole);
    const std::size_t nameBegin = text.rfind(L'/') + 1; // 0 when there is no separator
    const std::wstring_view name = text.substr(nameBegin);
    const std::wstring_view stem = name.substr(0, name.rfind(L'.'));
    givePart(drive, kDriveCapacity, {});
    givePart(dir, kDirectoryCapacity, text.substr(0, nameBegin));
    givePart(fname, kNameCapacity, stem);
    givePart(ext, kNameCapacity, name.substr(stem.size()));
}
