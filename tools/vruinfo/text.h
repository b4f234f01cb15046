// Conversions between the tool's texts and those of the library, and the quoted form of a text.
#pragma once

#include <optional>
#include <string>

#include <QtCore/QString>

namespace vruinfo::tool
{

/// Nothing when the bytes are no UTF-8. A byte-order mark is a character like any other.
[[nodiscard]] std::optional<QString> fromUtf8(const char* bytes);
[[nodiscard]] QString fromWide(const wchar_t* text); ///< Null counts as empty.
[[nodiscard]] QString fromWide(const std::wstring& text);
[[nodiscard]] std::wstring toWide(const QString& text);

/// In double quotes; quotes, backslashes and control characters are escaped, so that the text stays in one line.
[[nodiscard]] QString quoted(const QString& text);

/// The text, with blanks behind it up to a width.
[[nodiscard]] QString padded(const QString& text, int width);

} // namespace vruinfo::tool
