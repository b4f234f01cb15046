#include "osbase/ini_text.h"

#include "osbase/path_text.h"
#include "osbase/text_case.h"

#include <algorithm>

namespace vrosbase::internal
{
namespace
{

bool isSameName(std::string_view name, std::wstring_view asked)
{
    for (const wchar_t character : asked) {
        if (name.empty() || foldCase(static_cast<wchar_t>(takeCodePoint(name))) != foldCase(character)) {
            return false;
        }
    }
    return name.empty();
}

std::string_view withoutQuotes(std::string_view value)
{
    if (value.size() < 2 || value.front() != value.back()) {
        return value;
    }
    const bool isQuoted = value.front() == '"' || value.front() == '\'';
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

bool isSectionLine(std::string_view line)
{
    return !line.empty() && line.front() == '[';
}

std::string_view sectionName(std::string_view line)
{
    const std::string_view inner = line.substr(1);
    return withoutBlanks(inner.substr(0, inner.find(']')));
}

std::optional<IniLine> parsedLine(std::string_view line)
{
    if (line.empty() || line.front() == ';') {
        return std::nullopt;
    }
    if (isSectionLine(line)) {
        return IniLine{IniLine::Kind::Section, sectionName(line), {}};
    }
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos) {
        return std::nullopt;
    }
    return IniLine{IniLine::Kind::Entry, withoutBlanks(line.substr(0, sign)), withoutBlanks(line.substr(sign + 1))};
}

/// Puts a reader behind the first line of the section.
bool enterSection(IniReader& reader, std::wstring_view section)
{
    while (const auto name = reader.nextSection()) {
        if (isSameName(*name, section)) {
            return true;
        }
    }
    return false;
}

/// The next entry of the section that the reader is in.
std::optional<IniLine> nextEntry(IniReader& reader)
{
    auto line = reader.next();
    return line && line->kind == IniLine::Kind::Entry ? line : std::nullopt;
}

void appendName(std::wstring& list, std::string_view name)
{
    if (name.empty()) {
        return;
    }
    list += wideText(name);
    list.push_back(L'\0');
}

unsigned digitValue(char digit)
{
    if (digit >= '0' && digit <= '9') {
        return static_cast<unsigned>(digit - '0');
    }
    const auto letter = static_cast<char>(digit | 0x20);
    return letter >= 'a' && letter <= 'f' ? static_cast<unsigned>(letter - 'a') + 10 : 16;
}

unsigned leadingNumber(std::string_view digits, unsigned base)
{
    unsigned number = 0;
    for (const char digit : digits) {
        if (digitValue(digit) >= base) {
            break;
        }
        number = number * base + digitValue(digit);
    }
    return number;
}

} // namespace

std::optional<IniLine> IniReader::next()
{
    while (!m_rest.empty()) {
        if (auto line = parsedLine(withoutBlanks(takeLine()))) {
            return line;
        }
    }
    return std::nullopt;
}

std::optional<std::string_view> IniReader::nextSection()
{
    while (!m_rest.empty()) {
        const std::string_view line = withoutBlanks(takeLine());
        if (isSectionLine(line)) {
            return sectionName(line);
        }
    }
    return std::nullopt;
}

std::string_view IniReader::takeLine()
{
    std::string_view line = m_rest.substr(0, m_rest.find('\n'));
    line = line.substr(0, line.find('\r'));
    m_rest.remove_prefix(std::min(line.size() + 1, m_rest.size()));
    return line.substr(0, line.find('\0'));
}

std::optional<std::string_view> iniValue(std::string_view text, std::wstring_view section, std::wstring_view key)
{
    IniReader reader(text);
    if (!enterSection(reader, section)) {
        return std::nullopt;
    }
    while (const auto entry = nextEntry(reader)) {
        if (isSameName(entry->name, key)) {
            return withoutQuotes(entry->value);
        }
    }
    return std::nullopt;
}

std::wstring iniSections(std::string_view text)
{
    IniReader reader(text);
    std::wstring list;
    while (const auto name = reader.nextSection()) {
        appendName(list, *name);
    }
    return list;
}

std::optional<std::wstring> iniKeys(std::string_view text, std::wstring_view section)
{
    IniReader reader(text);
    if (!enterSection(reader, section)) {
        return std::nullopt;
    }
    std::wstring list;
    while (const auto entry = nextEntry(reader)) {
        appendName(list, entry->name);
    }
    return list;
}

unsigned iniInteger(std::string_view value)
{
    std::string_view digits = withoutBlanks(value);
    const bool isNegative = !digits.empty() && digits.front() == '-';
    if (isNegative || (!digits.empty() && digits.front() == '+')) {
        digits.remove_prefix(1);
    }
    const bool isHexadecimal = digits.size() > 1 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
    const unsigned number = isHexadecimal ? leadingNumber(digits.substr(2), 16) : leadingNumber(digits, 10);
    return isNegative ? 0U - number : number;
}

} // namespace vrosbase::internal
