#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vrosbase::internal
{

/// Blanks of the INI dialect: everything up to and including the space.
template <typename Character>
[[nodiscard]] constexpr bool isBlank(Character character)
{
    return static_cast<char32_t>(std::char_traits<Character>::to_int_type(character)) <= U' ';
}

template <typename Character>
[[nodiscard]] std::basic_string_view<Character> withoutTrailingBlanks(std::basic_string_view<Character> text)
{
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

template <typename Character>
[[nodiscard]] std::basic_string_view<Character> withoutBlanks(std::basic_string_view<Character> text)
{
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return withoutTrailingBlanks(text);
}

/// A line that says something: a section's beginning, or an entry.
struct IniLine {
    enum class Kind { Section, Entry };
    Kind kind;
    std::string_view name;
    std::string_view value; ///< as it stands, quotes included; empty for a section
};

/// Goes through a UTF-8 text line by line, without copying any of it. LF, CR or both end a line; a zero ends
/// what counts of one. A line that neither begins with "[" nor has a "=" says nothing.
class IniReader final
{
public:
    explicit IniReader(std::string_view text) : m_rest(text) {}
    [[nodiscard]] std::optional<IniLine> next();

    /// The name of the next section; entries before it are passed over.
    [[nodiscard]] std::optional<std::string_view> nextSection();

private:
    [[nodiscard]] std::string_view takeLine();

    std::string_view m_rest;
};

/// The value of the first key of that name in the first section of that name, without its quotes. The asked
/// names are compared without regard to case.
[[nodiscard]] std::optional<std::string_view> iniValue(std::string_view text, std::wstring_view section,
                                                       std::wstring_view key);

/// Names of all sections, each ended by a zero. Names without a character are left out, since they would end
/// the list.
[[nodiscard]] std::wstring iniSections(std::string_view text);

/// Names of the keys of the first section of that name, likewise. Nothing when there is no such section.
[[nodiscard]] std::optional<std::wstring> iniKeys(std::string_view text, std::wstring_view section);

/// Sign and leading digits as an integer that wraps to 32 bits; 0x is understood. 0 when there are no digits.
[[nodiscard]] unsigned iniInteger(std::string_view value);

} // namespace vrosbase::internal
