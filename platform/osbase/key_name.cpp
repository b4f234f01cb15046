#include "osbase/key_name.h"

#include "osbase/path_text.h"

#include <climits>

namespace vrosbase::internal
{
namespace
{

constexpr std::string_view kDigits = "0123456789ABCDEF";

bool needsEscape(unsigned char byte)
{
    return byte < 0x20 || byte == 0x7F || byte == '%';
}

void appendEscaped(std::string& text, unsigned char byte)
{
    text.push_back('%');
    text.push_back(kDigits[byte >> 4U]);
    text.push_back(kDigits[byte & 0x0FU]);
}

/// The byte that "%XX" at the beginning of a text stands for.
std::optional<char> escapedByte(std::string_view text)
{
    if (text.size() < 3 || text[0] != '%') {
        return std::nullopt;
    }
    const std::size_t high = kDigits.find(text[1]);
    const std::size_t low = kDigits.find(text[2]);
    if (high == std::string_view::npos || low == std::string_view::npos) {
        return std::nullopt;
    }
    return static_cast<char>(static_cast<unsigned char>(high * 16 + low));
}

} // namespace

std::optional<std::string> encodeKeyName(std::wstring_view name)
{
    const bool isDots = name == L"." || name == L"..";
    std::string fileName;
    for (const char character : narrowText(name)) {
        const auto byte = static_cast<unsigned char>(character);
        if (isDots || needsEscape(byte)) {
            appendEscaped(fileName, byte);
        } else {
            fileName.push_back(character);
        }
    }
    return fileName.size() <= NAME_MAX ? std::optional(fileName) : std::nullopt;
}

std::wstring decodeKeyName(std::string_view fileName)
{
    std::string bytes;
    while (!fileName.empty()) {
        const auto escaped = escapedByte(fileName);
        bytes.push_back(escaped.value_or(fileName.front()));
        fileName.remove_prefix(escaped ? 3 : 1);
    }
    return wideText(bytes);
}

std::vector<std::wstring> splitKeyPath(std::wstring_view path)
{
    std::vector<std::wstring> names;
    while (!path.empty()) {
        const std::wstring_view name = path.substr(0, path.find_first_of(L"\\/"));
        if (!name.empty()) {
            names.emplace_back(name);
        }
        path.remove_prefix(name.size() < path.size() ? name.size() + 1 : path.size());
    }
    return names;
}

} // namespace vrosbase::internal
