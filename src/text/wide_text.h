// Conversions between the wide text of the interface (one code point a character) and QString (UTF-16).
// Every character survives the way there and back, lone surrogates and U+FEFF included; what is no Unicode
// code point (above U+10FFFF) becomes U+FFFD.
#pragma once

#include <cstddef>
#include <new>
#include <string>
#include <string_view>

#include <QtCore/QString>

namespace vruinfo::internal
{

/// Writes the text's units to `target`, which must have room for two a character. \return how many were written
[[nodiscard]] std::size_t narrow(std::wstring_view text, char16_t* target);
/// The same with room for one a character only: false, with `target` in no particular state, when a character lies
/// beyond the BMP.
[[nodiscard]] bool narrowBmp(std::wstring_view text, char16_t* target);

[[nodiscard]] QString toQString(std::wstring_view text);
/// The text behind a prefix of Latin-1 characters, in one piece of memory.
[[nodiscard]] QString toQString(QLatin1String prefix, std::wstring_view text);
[[nodiscard]] QString toQString(const wchar_t* text); ///< Null counts as empty.

/// Characters that a text of UTF-16 units has as wide text.
[[nodiscard]] std::size_t wideLength(const QChar* units, std::size_t count);
/// Writes a character a unit; false, with `target` in no particular state, when a unit is half of a pair.
[[nodiscard]] bool widenBmp(const QChar* units, std::size_t count, wchar_t* target);
/// Writes that many characters, without a terminator.
void widen(const QChar* units, std::size_t count, wchar_t* target);
[[nodiscard]] std::wstring toWide(const QString& text);

/// A string over units that stand in `data`, as string literals have it: its characters are never counted and never
/// freed. It must not be kept by anybody: its characters go with `data`. (A settings object keeps a key that it is
/// given while no group is open; it makes its own of one that stands in a group.)
template <int Units>
[[nodiscard]] QString literalString(QStaticStringData<Units>& data, std::size_t count)
{
    new (&data.str) QArrayData Q_STATIC_STRING_DATA_HEADER_INITIALIZER(static_cast<int>(count));
    data.data[count] = 0;
    return QString(QStringDataPtr{data.data_ptr()});
}

/// A wide text as such a string, which stands for the time of one call; without touching the heap where it is short and
/// within the BMP.
class TransientString final
{
public:
    explicit TransientString(std::wstring_view text);
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
