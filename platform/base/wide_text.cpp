#include "wide_text.h"

#include <cstdint>

namespace vrplatformbase::internal
{

namespace
{

constexpr std::uint32_t kReplacement = 0xFFFD;

std::uint32_t characterOrReplacement(wchar_t c) noexcept
{
    const auto number = static_cast<std::uint32_t>(c); // NOLINT(bugprone-signed-char-misuse) wchar_t is 32 bits
    const bool isSurrogate = number >= 0xD800 && number <= 0xDFFF;
    return isSurrogate || number > 0x10FFFF ? kReplacement : number;
}

bool isControl(std::uint32_t c) noexcept
{
    return (c < 0x20 && c != U'\n' && c != U'\t') || (c >= 0x7F && c < 0xA0);
}

// The six bits that end `shift` bits from the right, as a byte that continues a character.
char continuation(std::uint32_t c, unsigned shift) noexcept
{
    return static_cast<char>(0x80U | ((c >> shift) & 0x3FU));
}

void appendUtf8(std::string& out, std::uint32_t c)
{
    if (c < 0x80)
        out += static_cast<char>(c);
    else if (c < 0x800)
        out += {static_cast<char>(0xC0U | c >> 6U), continuation(c, 0)};
    else if (c < 0x10000)
        out += {static_cast<char>(0xE0U | c >> 12U), continuation(c, 6), continuation(c, 0)};
    else
        out += {static_cast<char>(0xF0U | c >> 18U), continuation(c, 12), continuation(c, 6), continuation(c, 0)};
}

} // namespace

std::string toUtf8(const wchar_t* text)
{
    std::string out;
    for (; *text != L'\0'; ++text)
        appendUtf8(out, characterOrReplacement(*text));
    return out;
}

std::string toPrintableUtf8(const wchar_t* text)
{
    std::string out;
    for (; *text != L'\0'; ++text) {
        const std::uint32_t c = characterOrReplacement(*text);
        if (!isControl(c))
            appendUtf8(out, c);
    }
    return out;
}

} // namespace vrplatformbase::internal
