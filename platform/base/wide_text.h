#pragma once

#include <string>

namespace vrplatformbase::internal
{

/// UTF-8 of a wide text, whatever the C locale. A number that is no Unicode character (surrogates, beyond U+10FFFF)
/// becomes U+FFFD.
[[nodiscard]] std::string toUtf8(const wchar_t* text);

/// As toUtf8, for what is written to a terminal or a log: control characters other than line feed and tab are left out,
/// so that a text cannot steer the terminal.
[[nodiscard]] std::string toPrintableUtf8(const wchar_t* text);

} // namespace vrplatformbase::internal
