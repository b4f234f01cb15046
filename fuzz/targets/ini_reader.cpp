// The INI reader against a reference that cuts the text into lines first: every value, the lists, each encoding and
// each end of line; and the exported functions, over a file of the same bytes, with buffers of any capacity.
#include <map>
#include <optional>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include "VrOsBase/VrOsBase.h"
#include "fuzz_input.h"
#include "osbase/ini_file.h"
#include "osbase/ini_text.h"
#include "osbase/path_text.h"
#include "osbase/text_case.h"

using namespace vrosbase::internal;

namespace
{

std::string stripped(std::string text)
{
    const auto isBlankByte = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (!text.empty() && isBlankByte(text.back()))
        text.pop_back();
    while (!text.empty() && isBlankByte(text.front()))
        text.erase(0, 1);
    return text;
}

struct Entry {
    std::string name;
    std::string value;
};
struct Section {
    std::string name;
    std::vector<Entry> entries;
};

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n' || c == '\r')
            lines.emplace_back();
        else
            lines.back().push_back(c);
    }
    for (std::string& line : lines)
        line = stripped(line.substr(0, line.find('\0')));
    return lines;
}

std::string unquoted(const std::string& value)
{
    const bool isQuoted =
        value.size() > 1 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

std::vector<Section> parsed(const std::string& text)
{
    std::vector<Section> sections;
    for (const std::string& line : linesOf(text)) {
        const std::size_t sign = line.find('=');
        if (line.empty() || line.front() == ';')
            continue;
        if (line.front() == '[')
            sections.push_back({stripped(line.substr(1, line.find(']') - 1)), {}});
        else if (sign != std::string::npos && !sections.empty())
            sections.back().entries.push_back(
                {stripped(line.substr(0, sign)), unquoted(stripped(line.substr(sign + 1)))});
    }
    return sections;
}

bool isSame(const std::string& name, const std::wstring& asked)
{
    return compareFolded(wideText(name), asked) == 0;
}

std::optional<std::string> expectedValue(const std::vector<Section>& sections, const std::wstring& section,
                                         const std::wstring& key)
{
    for (const Section& candidate : sections) {
        if (!isSame(candidate.name, section))
            continue;
        for (const Entry& entry : candidate.entries) {
            if (isSame(entry.name, key))
                return entry.value;
        }
        return std::nullopt;
    }
    return std::nullopt;
}

std::wstring listOf(const std::vector<std::string>& names)
{
    std::wstring list;
    for (const std::string& name : names) {
        if (!name.empty())
            list += wideText(name) + L'\0';
    }
    return list;
}

void checkValue(const std::string& text, const std::vector<Section>& sections, const std::wstring& section,
                const std::wstring& key)
{
    const auto value = iniValue(text, section, key);
    const auto expected = expectedValue(sections, section, key);
    VR_HOLDS(value.has_value() == expected.has_value(), "a value is found where there is one");
    VR_HOLDS(!value || *value == *expected, "a value is that of the first key of the first section");
    if (value)
        static_cast<void>(iniInteger(*value));
}

void checkLists(const std::string& text, const std::vector<Section>& sections)
{
    std::vector<std::string> names;
    for (const Section& section : sections)
        names.push_back(section.name);
    VR_HOLDS(iniSections(text) == listOf(names), "all sections are listed");
    for (const Section& section : sections) {
        const std::wstring name = wideText(section.name);
        const auto first = std::find_if(sections.begin(), sections.end(),
                                        [&name](const Section& other) { return isSame(other.name, name); });
        std::vector<std::string> keys;
        for (const Entry& entry : first->entries)
            keys.push_back(entry.name);
        const auto listed = iniKeys(text, name);
        VR_HOLDS(listed && *listed == listOf(keys), "all keys of a section are listed");
    }
}

/// However the text is encoded, and whatever ends its lines, it reads the same.
void checkForms(const std::string& text, const std::wstring& section, const std::wstring& key)
{
    const auto plain = iniValue(text, section, key);
    VR_HOLDS(iniTextOfBytes("\xEF\xBB\xBF" + text) == text, "a mark of UTF-8 goes");
    std::string returns = text;
    std::replace(returns.begin(), returns.end(), '\n', '\r');
    VR_HOLDS(iniValue(returns, section, key) == plain, "CR ends lines as LF does");
    const QString decoded = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    if (decoded.toStdString() != text)
        return; // no UTF-8, so that UTF-16 cannot say the same
    const std::string utf16(reinterpret_cast<const char*>(decoded.utf16()),
                            static_cast<std::size_t>(decoded.size()) * 2);
    VR_HOLDS(iniTextOfBytes("\xFF\xFE" + utf16) == text, "UTF-16 reads as UTF-8 does");
    VR_HOLDS(iniTextOfBytes("\xFF\xFE" + utf16 + "x") == text, "half a unit at the end goes");
}

/// Reference of the integer: sign and digits, wrapped to 32 bits.
void checkInteger(std::string_view value)
{
    const std::string digits = stripped(std::string(value));
    const bool isPlain = !digits.empty() && digits.size() < 18 &&
                         std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (isPlain)
        VR_HOLDS(iniInteger(value) == static_cast<unsigned int>(std::stoull(digits)), "digits are their number");
}

class MemoryFile final
{
public:
    explicit MemoryFile(std::string_view bytes) : m_descriptor(memfd_create("ini", MFD_CLOEXEC))
    {
        VR_HOLDS(m_descriptor >= 0 &&
                     write(m_descriptor, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
                 "a file can be made");
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(m_descriptor); }
    [[nodiscard]] std::wstring path() const { return L"/proc/self/fd/" + std::to_wstring(m_descriptor); }

private:
    int m_descriptor;
};

void checkExported(std::string_view bytes, const std::wstring& section, const std::wstring& key, std::size_t capacity)
{
    const MemoryFile file(bytes);
    const std::string text = iniTextOfBytes(std::string(bytes));
    std::vector<wchar_t> buffer(capacity, L'#'); // exact, so that a sanitizer sees a step beyond its end
    const DWORD count = GetPrivateProfileStringW(section.c_str(), key.c_str(), L"", buffer.data(),
                                                 static_cast<DWORD>(capacity), file.path().c_str());
    const auto value = iniValue(text, withoutBlanks(std::wstring_view(section)), withoutBlanks(std::wstring_view(key)));
    const std::wstring expected = value ? wideText(*value) : std::wstring();
    if (capacity > 0) {
        VR_HOLDS(count == std::min(expected.size(), capacity - 1), "what fits is copied");
        VR_HOLDS(std::wstring(buffer.data(), count) == expected.substr(0, count) && buffer[count] == L'\0',
                 "a text is copied from its beginning and terminated");
    }
    std::fill(buffer.begin(), buffer.end(), L'#');
    const DWORD listed = GetPrivateProfileStringW(nullptr, nullptr, nullptr, buffer.data(),
                                                  static_cast<DWORD>(capacity), file.path().c_str());
    if (capacity > 1)
        VR_HOLDS(listed <= capacity - 1 && buffer[listed] == L'\0', "a list ends in its buffer");
    static_cast<void>(GetPrivateProfileIntW(section.c_str(), key.c_str(), 7, file.path().c_str()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vrfuzz::Input input(data, size);
    const std::size_t capacity = input.takeByte();
    const std::wstring section = vrfuzz::terminated(wideText(input.takeLine()));
    const std::wstring key = vrfuzz::terminated(wideText(input.takeLine()));
    const std::string text = iniTextOfBytes(std::string(input.rest()));
    const std::vector<Section> sections = parsed(text);
    checkValue(text, sections, section, key);
    checkLists(text, sections);
    checkForms(text, section, key);
    checkInteger(text.substr(0, text.find('\n')));
    checkExported(input.rest(), section, key, capacity);
    return 0;
}
