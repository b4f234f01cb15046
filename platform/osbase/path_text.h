#pragma once

#include <string>
#include <string_view>

namespace vrosbase::internal
{

/// Takes the first code point off a UTF-8 text that is not empty. A byte that is not part of well-formed
/// UTF-8 is taken alone and given as U+DC00 plus its value, so that it is not lost.
[[nodiscard]] char32_t takeCodePoint(std::string_view& rest);

/// Appends a code point as UTF-8, or the byte that it stands for (U+DC80 to U+DCFF). What is no code point
/// becomes U+FFFD.
void appendCodePoint(std::string& bytes, char32_t point);

/// Bytes as wide text, and back; nothing is lost on the way there and back.
[[nodiscard]] std::wstring wideText(std::string_view bytes);
[[nodiscard]] std::string narrowText(std::wstring_view text);

/// The bytes of a path that a caller passed: a backslash is a separator.
[[nodiscard]] std::string pathBytes(std::wstring_view path);

[[nodiscard]] constexpr bool isSeparator(wchar_t character)
{
    return character == L'/' || character == L'\\';
}

/// The same path with "/" as its only separator.
[[nodiscard]] std::wstring withSlashes(std::wstring_view path);

/// What stands behind the last separator. Empty when the path ends in one.
[[nodiscard]] std::string_view lastComponent(std::string_view path);

} // namespace vrosbase::internal
