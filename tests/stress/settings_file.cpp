#include "settings_file.h"

#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace stress
{
namespace
{

[[noreturn]] void refuse(const std::string& what)
{
    throw std::runtime_error(what);
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// The number of so many hexadecimal digits at the front, which are taken away.
char16_t takeHex(std::string_view& text, std::size_t digits)
{
    unsigned int number = 0;
    for (std::size_t i = 0; i < digits; ++i) {
        if (text.size() <= i || hexDigit(text[i]) < 0)
            refuse("too few hexadecimal digits");
        number = number * 16 + static_cast<unsigned int>(hexDigit(text[i]));
    }
    text.remove_prefix(digits);
    return static_cast<char16_t>(number);
}

char16_t takeNameUnit(std::string_view& text)
{
    const char first = text.front();
    text.remove_prefix(1);
    if (first == '\\')
        return u'/';
    if (first != '%')
        return static_cast<unsigned char>(first);
    if (!text.empty() && text.front() == 'U') {
        text.remove_prefix(1);
        return takeHex(text, 4);
    }
    return takeHex(text, 2);
}

std::u16string nameOf(std::string_view text)
{
    std::u16string name;
    while (!text.empty())
        name += takeNameUnit(text);
    return name;
}

std::u16string sectionOf(std::string_view text)
{
    if (text == "General")
        return {};
    return text == "%General" ? u"General/" : nameOf(text) + u'/';
}

/// Behind "\x" stand as many digits as there are: the writer escapes a digit that follows and is none of them.
char16_t takeHexOfAnyLength(std::string_view& text)
{
    std::size_t digits = 0;
    while (digits < text.size() && hexDigit(text[digits]) >= 0)
        ++digits;
    if (digits == 0 || digits > 4)
        refuse("a character of no or too many hexadecimal digits");
    return takeHex(text, digits);
}

char16_t takeEscaped(std::string_view& text)
{
    static const std::map<char, char16_t> kPlain = {{'a', u'\a'}, {'b', u'\b'}, {'f', u'\f'}, {'n', u'\n'},
                                                    {'r', u'\r'}, {'t', u'\t'}, {'v', u'\v'}, {'"', u'"'},
                                                    {'0', u'\0'}, {'\\', u'\\'}};
    if (text.empty())
        refuse("nothing behind a backslash");
    const char kind = text.front();
    text.remove_prefix(1);
    if (kind == 'x')
        return takeHexOfAnyLength(text);
    const auto plain = kPlain.find(kind);
    return plain != kPlain.end() ? plain->second : (refuse("an unknown escape"), u'\0');
}

char16_t takeValueUnit(std::string_view& text)
{
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x20 || first > 0x7E)
        refuse("a byte that is never written plain");
    text.remove_prefix(1);
    return first == '\\' ? takeEscaped(text) : first;
}

std::string_view withoutQuotes(std::string_view text)
{
    if (text.empty() || text.front() != '"')
        return text;
    if (text.size() < 2 || text.back() != '"')
        refuse("a quoted text without its end");
    return text.substr(1, text.size() - 2);
}

std::u16string valueOf(std::string_view text)
{
    std::u16string value;
    for (std::string_view rest = withoutQuotes(text); !rest.empty();)
        value += takeValueUnit(rest);
    if (value.rfind(u'@', 0) != 0)
        return value;
    if (value.rfind(u"@@", 0) != 0)
        refuse("a value that is no text");
    return value.substr(1);
}

/// Takes the lines one by one.
class Lines
{
public:
    void take(std::string_view line)
    {
        if (line.empty())
            return;
        if (line.front() == '[')
            return begin(line);
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos || equals == 0 || !m_section)
            refuse("neither a section nor a value in one");
        if (!m_values.emplace(*m_section + nameOf(line.substr(0, equals)), valueOf(line.substr(equals + 1))).second)
            refuse("a value that stands there twice");
    }
    SettingsFile::Values values() { return std::move(m_values); }

private:
    void begin(std::string_view line)
    {
        if (line.size() < 3 || line.back() != ']')
            refuse("a section without its end");
        m_section = sectionOf(line.substr(1, line.size() - 2));
    }

    std::optional<std::u16string> m_section;
    SettingsFile::Values m_values;
};

} // namespace

SettingsFile SettingsFile::parse(const std::string& bytes)
{
    SettingsFile file;
    Lines lines;
    int number = 0;
    std::size_t begin = 0;
    try {
        while (begin < bytes.size()) {
            ++number;
            const std::size_t end = bytes.find('\n', begin);
            if (end == std::string::npos)
                refuse("a line without its end");
            lines.take(std::string_view(bytes).substr(begin, end - begin));
            begin = end + 1;
        }
    } catch (const std::runtime_error& error) {
        file.fault = "line " + std::to_string(number) + ": " + error.what();
    }
    file.values = lines.values();
    return file;
}

SettingsFile SettingsFile::read(const std::filesystem::path& file)
{
    return parse(bytesOf(file));
}

SettingsFile::Values SettingsFile::below(const std::u16string& item) const
{
    Values found;
    const std::u16string prefix = item + u'/';
    for (auto row = values.lower_bound(prefix); row != values.end() && row->first.rfind(prefix, 0) == 0; ++row)
        found.emplace(row->first.substr(prefix.size()), row->second);
    return found;
}

std::string bytesOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

} // namespace stress
