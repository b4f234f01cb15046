#include "osbase/ini_file.h"

#include "osbase/file_descriptor.h"
#include "osbase/path_text.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <optional>

namespace vrosbase::internal
{
namespace
{

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::size_t kSmallestRead = 4096;

bool beginsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

char32_t takeUnit(std::string_view& rest)
{
    const auto low = static_cast<unsigned char>(rest[0]);
    const auto high = static_cast<unsigned char>(rest[1]);
    rest.remove_prefix(2);
    return static_cast<char32_t>(low | (high << 8));
}

/// Takes a code point off UTF-16LE text of at least one unit.
char32_t takeUtf16(std::string_view& rest)
{
    constexpr char32_t kReplacement = 0xFFFD;
    const char32_t unit = takeUnit(rest);
    if (unit < 0xD800 || unit > 0xDFFF) {
        return unit;
    }
    std::string_view behind = rest;
    const char32_t second = behind.size() > 1 ? takeUnit(behind) : 0;
    if (unit > 0xDBFF || second < 0xDC00 || second > 0xDFFF) {
        return kReplacement;
    }
    rest = behind;
    return 0x10000 + ((unit - 0xD800) << 10U) + (second - 0xDC00);
}

std::string utf8OfUtf16(std::string_view units)
{
    std::string text;
    text.reserve(units.size());
    while (units.size() > 1) {
        appendCodePoint(text, takeUtf16(units));
    }
    return text;
}

/// What read() gives, interrupted or not.
ssize_t readSome(int descriptor, char* place, std::size_t room)
{
    ssize_t count = -1;
    do {
        count = ::read(descriptor, place, room);
    } while (count < 0 && errno == EINTR);
    return count;
}

/// Reads a file's content: as many bytes as it says it has, or, when it says none, to its end. A file that
/// says none may have some nevertheless (those of /proc do). Nothing on failure.
std::optional<std::string> readContent(int descriptor, std::size_t size)
{
    std::string content(size != 0 ? size : kSmallestRead, '\0');
    std::size_t used = 0;
    while (used < content.size()) {
        const ssize_t count = readSome(descriptor, &content[used], content.size() - used);
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        used += static_cast<std::size_t>(count);
        if (used == content.size() && size == 0) {
            content.resize(std::min(used * 2, kMaxIniBytes));
        }
    }
    content.resize(used);
    return content;
}

bool isReadableSize(const struct stat& status)
{
    return S_ISREG(status.st_mode) && status.st_size >= 0 && static_cast<std::size_t>(status.st_size) <= kMaxIniBytes;
}

DWORD openError(int error)
{
    const bool isMissing = error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG;
    return isMissing ? ERROR_FILE_NOT_FOUND : ERROR_ACCESS_DENIED;
}

} // namespace

std::string iniTextOfBytes(std::string bytes)
{
    if (beginsWith(bytes, kUtf16Mark)) {
        return utf8OfUtf16(std::string_view(bytes).substr(kUtf16Mark.size()));
    }
    if (beginsWith(bytes, kUtf8Mark)) {
        bytes.erase(0, kUtf8Mark.size());
    }
    return bytes;
}

IniFile readIniFile(const std::string& path)
{
    // Without blocking, so that opening a pipe that nobody writes to does not wait for ever.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.isOpen()) {
        return {openError(errno), {}};
    }
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0 || !isReadableSize(status)) {
        return {ERROR_ACCESS_DENIED, {}};
    }
    auto content = readContent(file.get(), static_cast<std::size_t>(status.st_size));
    if (!content) {
        return {ERROR_ACCESS_DENIED, {}};
    }
    return {ERROR_SUCCESS, iniTextOfBytes(std::move(*content))};
}

} // namespace vrosbase::internal
