#include "osbase/directory.h"
#include "osbase/handle_table.h"
#include "osbase/immortal.h"
#include "osbase/last_error.h"
#include "osbase/path_text.h"
#include "osbase/wide_buffer.h"
#include "osbase/wildcard.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>

namespace vrosbase::internal
{
namespace
{

struct FoundEntry {
    std::wstring name;
    bool isDirectory = false;
    std::uint64_t size = 0;
};

/// A listing as it was when it began. The entries never change; m_mutex guards m_next.
class Listing final
{
public:
    explicit Listing(std::vector<FoundEntry> entries) : m_entries(std::move(entries)) {}

    /// Null behind the last entry.
    [[nodiscard]] const FoundEntry* takeNext()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_next < m_entries.size() ? &m_entries[m_next++] : nullptr;
    }

private:
    const std::vector<FoundEntry> m_entries;
    std::mutex m_mutex;
    std::size_t m_next = 0;
};

HandleTable<Listing>& listings()
{
    return immortal<HandleTable<Listing>>();
}

struct SearchPlace {
    std::string directory; ///< with the separator behind it; empty for the current directory
    std::string pattern;
};

SearchPlace splitPlace(const std::string& path)
{
    const std::size_t length = lastComponent(path).size();
    return {path.substr(0, path.size() - length), path.substr(path.size() - length)};
}

FoundEntry describe(const std::string& directory, const std::string& name)
{
    FoundEntry entry{wideText(name), false, 0};
    struct stat status = {};
    // A link that leads nowhere is an ordinary entry of no size.
    if (::stat((directory + name).c_str(), &status) != 0) {
        return entry;
    }
    entry.isDirectory = S_ISDIR(status.st_mode);
    entry.size = entry.isDirectory ? 0 : static_cast<std::uint64_t>(status.st_size);
    return entry;
}

struct SearchResult {
    DWORD error;
    std::vector<FoundEntry> entries;
};

std::string openable(const std::string& directory)
{
    return directory.empty() ? "." : directory;
}

DWORD searchError(int error)
{
    return error == EACCES || error == EPERM ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND;
}

/// A name without wildcards is asked for directly: the directory need not be readable for that.
SearchResult findName(const SearchPlace& place)
{
    struct stat status = {};
    if (::lstat((place.directory + place.pattern).c_str(), &status) == 0) {
        return {ERROR_SUCCESS, {describe(place.directory, place.pattern)}};
    }
    if (errno == EACCES) {
        return {ERROR_ACCESS_DENIED, {}};
    }
    return {isDirectory(openable(place.directory)) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND, {}};
}

SearchResult findPattern(const SearchPlace& place)
{
    const DirectoryNames listing = readDirectory(openable(place.directory));
    if (listing.error != 0) {
        return {searchError(listing.error), {}};
    }
    const std::wstring pattern = wideText(place.pattern);
    std::vector<FoundEntry> entries;
    for (const std::string& name : listing.names) {
        if (matchesWildcard(wideText(name), pattern)) {
            entries.push_back(describe(place.directory, name));
        }
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    const DWORD error = entries.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
    return {error, std::move(entries)};
}

SearchResult search(const wchar_t* path)
{
    const SearchPlace place = splitPlace(pathBytes(path));
    if (place.pattern.empty()) {
        return {ERROR_FILE_NOT_FOUND, {}};
    }
    return hasWildcard(wideText(place.pattern)) ? findPattern(place) : findName(place);
}

void giveEntry(const FoundEntry& entry, WIN32_FIND_DATAW& data)
{
    data.dwFileAttributes = entry.isDirectory ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
    data.nFileSizeHigh = static_cast<DWORD>(entry.size >> 32U);
    data.nFileSizeLow = static_cast<DWORD>(entry.size & 0xFFFFFFFFU);
    // Always whole: a name on disk has at most 255 bytes.
    static_cast<void>(copyText(&data.cFileName[0], std::size(data.cFileName), entry.name));
}

HANDLE beginListing(std::vector<FoundEntry> entries, WIN32_FIND_DATAW& data)
{
    auto listing = std::make_shared<Listing>(std::move(entries));
    giveEntry(*listing->takeNext(), data);
    return listings().add(std::move(listing));
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

HANDLE FindFirstFileW(LPCWSTR lpFileName, LPWIN32_FIND_DATAW lpFindFileData)
{
    if (lpFileName == nullptr || lpFindFileData == nullptr) {
        return failWith(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
    }
    SearchResult result = search(lpFileName);
    if (result.error != ERROR_SUCCESS) {
        return failWith(result.error, INVALID_HANDLE_VALUE);
    }
    return beginListing(std::move(result.entries), *lpFindFileData);
}

BOOL FindNextFileW(HANDLE hFindFile, LPWIN32_FIND_DATAW lpFindFileData)
{
    if (lpFindFileData == nullptr) {
        return failWith(ERROR_INVALID_PARAMETER, FALSE);
    }
    const auto listing = listings().get(hFindFile);
    if (listing == nullptr) {
        return failWith(ERROR_INVALID_HANDLE, FALSE);
    }
    const FoundEntry* const entry = listing->takeNext();
    if (entry == nullptr) {
        return failWith(ERROR_NO_MORE_FILES, FALSE);
    }
    giveEntry(*entry, *lpFindFileData);
    return TRUE;
}

BOOL FindClose(HANDLE hFindFile)
{
    return listings().remove(hFindFile) ? TRUE : failWith(ERROR_INVALID_HANDLE, FALSE);
}
