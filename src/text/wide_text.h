// Conversions between the wide text of the interface (one code point a character) and QString (UTF-16).
// Every character survives the way there and back, lone surrogates and U+FEFF included; what is no Unicode
// code point (above U+10FFFF) becomes U+FFFD.
#pragma once

#include <cstddef>
#include <string>

#include <QtCore/QString>

namespace vruinfo::internal
{

/// Units written to `target`, which must have room for one a character, when all characters lie in the BMP;
/// otherwise a negative number, with `target` in no particular state.
[[nodiscard]] std::ptrdiff_t narrowBmp(const wchar_t* text, std::size_t length, char16_t* target);

[[nodiscard]] QString toQString(const wchar_t* text, std::size_t length);
[[nodiscard]] QString toQString(const wchar_t* text); ///< Null counts as empty.

/// Characters that a text of UTF-16 units has as wide text.
[[nodiscard]] std::size_t wideLength(const QChar* units, std::size_t count);
/// Writes that many characters, without a terminator.
void widen(const QChar* units, std::size_t count, wchar_t* target);
[[nodiscard]] std::wstring toWide(const QString& text);

/// A wide text as QString for the time of one call, without touching the heap where it is short and within
/// the BMP. The string must not be kept by anybody: its characters go with this object.
class TransientString final
{
public:
    TransientString(const wchar_t* text, std::size_t length);
    TransientString(const TransientString&) = delete;
    TransientString& operator=(const TransientString&) = delete;
    ~TransientString() = default;

    [[nodiscard]] const QString& string() const { return m_string; }

private:
    static constexpr int kUnits = 1024;

    QStaticStringData<kUnits> m_units;
    QString m_string;
};

} // namespace vruinfo::internal
