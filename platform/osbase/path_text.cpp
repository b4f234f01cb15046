#include "osbase/path_text.h"

#include <algorithm>

namespace vrosbase::internal
{
namespace
{

constexpr char32_t kByteEscapes = 0xDC00;
constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kLastCodePoint = 0x10FFFF;

/// The form of a sequence of more than one byte, by its first byte.
struct Sequence {
    std::size_t length; ///< 0: no sequence begins with such a byte
    char32_t leadBits;  ///< the first byte's part of the code point
    char32_t smallest;  ///< what is less could have been written shorter
};

constexpr char32_t byteValue(char byte)
{
    return static_cast<unsigned char>(byte);
}

constexpr bool isSurrogate(char32_t point)
{
    return point >= 0xD800 && point <= 0xDFFF;
}

Sequence sequenceOf(char32_t lead)
{
    if ((lead & 0xE0U) == 0xC0U) {
        return {2, lead & 0x1FU, 0x80};
    }
    if ((lead & 0xF0U) == 0xE0U) {
        return {3, lead & 0x0FU, 0x800};
    }
    if ((lead & 0xF8U) == 0xF0U) {
        return {4, lead & 0x07U, 0x10000};
    }
    return {0, 0, 0};
}

/// The code point of a whole sequence; more than the last code point when it is not well-formed.
char32_t decoded(std::string_view bytes, const Sequence& sequence)
{
    constexpr char32_t kNone = kLastCodePoint + 1;
    if (sequence.length == 0 || bytes.size() < sequence.length) {
        return kNone;
    }
    char32_t point = sequence.leadBits;
    for (const char byte : bytes.substr(1, sequence.length - 1)) {
        if ((byteValue(byte) & 0xC0U) != 0x80U) {
            return kNone;
        }
        point = (point << 6U) | (byteValue(byte) & 0x3FU);
    }
    return point < sequence.smallest || isSurrogate(point) ? kNone : point;
}

void appendByte(std::string& bytes, char32_t value)
{
    bytes.push_back(static_cast<char>(static_cast<unsigned char>(value)));
}

void appendTail(std::string& bytes, char32_t point, unsigned shift)
{
    appendByte(bytes, 0x80U | ((point >> shift) & 0x3FU));
}

} // namespace

char32_t takeCodePoint(std::string_view& rest)
{
    const char32_t lead = byteValue(rest.front());
    const Sequence sequence = sequenceOf(lead);
    const char32_t point = lead < 0x80 ? lead : decoded(rest, sequence);
    const bool isWhole = lead >= 0x80 && point <= kLastCodePoint;
    rest.remove_prefix(isWhole ? sequence.length : 1);
    return point <= kLastCodePoint ? point : kByteEscapes + lead;
}

void appendCodePoint(std::string& bytes, char32_t point)
{
    if (point >= kByteEscapes + 0x80 && point <= kByteEscapes + 0xFF) {
        return appendByte(bytes, point - kByteEscapes);
    }
    if (isSurrogate(point) || point > kLastCodePoint) {
        point = kReplacement;
    }
    if (point < 0x80) {
        return appendByte(bytes, point);
    }
    if (point < 0x800) {
        appendByte(bytes, 0xC0U | (point >> 6U));
        return appendTail(bytes, point, 0);
    }
    if (point < 0x10000) {
        appendByte(bytes, 0xE0U | (point >> 12U));
    } else {
        appendByte(bytes, 0xF0U | (point >> 18U));
        appendTail(bytes, point, 12);
    }
    appendTail(bytes, point, 6);
    appendTail(bytes, point, 0);
}

std::wstring wideText(std::string_view bytes)
{
    std::wstring text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        text.push_back(static_cast<wchar_t>(takeCodePoint(bytes)));
    }
    return text;
}

std::string narrowText(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (const wchar_t character : text) {
        appendCodePoint(bytes, static_cast<char32_t>(character));
    }
    return bytes;
}

std::string pathBytes(std::wstring_view path)
{
    std::string bytes = narrowText(path);
    std::replace(bytes.begin(), bytes.end(), '\\', '/');
    return bytes;
}

std::wstring withSlashes(std::wstring_view path)
{
    std::wstring text(path);
    std::replace(text.begin(), text.end(), L'\\', L'/');
    return text;
}

std::string_view lastComponent(std::string_view path)
{
    const std::size_t separator = path.rfind('/');
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

} // namespace vrosbase::internal
