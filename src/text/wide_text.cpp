#include "text/wide_text.h"

#include <cwchar>
#include <limits>
#include <new>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vruinfo::internal
{
namespace
{

static_assert(sizeof(wchar_t) == 4, "wide text is UTF-32");
static_assert(std::is_unsigned_v<char16_t>);

constexpr char32_t kFirstBeyondBmp = 0x10000;
constexpr char32_t kLast = 0x10FFFF;
constexpr char32_t kReplacement = 0xFFFD;

std::size_t narrow(const wchar_t* text, std::size_t length, QChar* target)
{
    std::size_t units = 0;
    for (std::size_t i = 0; i < length; ++i) {
        auto c = static_cast<char32_t>(text[i]);
        if (c > kLast)
            c = kReplacement;
        if (c < kFirstBeyondBmp) {
            target[units++] = QChar(static_cast<ushort>(c));
            continue;
        }
        target[units++] = QChar(QChar::highSurrogate(c));
        target[units++] = QChar(QChar::lowSurrogate(c));
    }
    return units;
}

#if defined(__SSE2__)
// Eight characters a round; false at the first round that holds a character beyond the BMP.
std::size_t narrowRounds(const wchar_t* text, std::size_t length, char16_t* target)
{
    const __m128i zero = _mm_setzero_si128();
    std::size_t i = 0;
    for (; i + 8 <= length; i += 8) {
        __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i + 4));
        const __m128i upper = _mm_or_si128(_mm_srli_epi32(low, 16), _mm_srli_epi32(high, 16));
        if (_mm_movemask_epi8(_mm_cmpeq_epi32(upper, zero)) != 0xFFFF)
            break;
        // Signed saturation would clip 0x8000 and above: sign-extend the lower halves first.
        low = _mm_srai_epi32(_mm_slli_epi32(low, 16), 16);
        high = _mm_srai_epi32(_mm_slli_epi32(high, 16), 16);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i), _mm_packs_epi32(low, high));
    }
    return i;
}
#else
std::size_t narrowRounds(const wchar_t*, std::size_t, char16_t*)
{
    return 0;
}
#endif

bool beginsPair(const QChar* units, std::size_t count, std::size_t i)
{
    return units[i].isHighSurrogate() && i + 1 < count && units[i + 1].isLowSurrogate();
}

} // namespace

std::ptrdiff_t narrowBmp(const wchar_t* text, std::size_t length, char16_t* target)
{
    for (std::size_t i = narrowRounds(text, length, target); i < length; ++i) {
        const auto c = static_cast<char32_t>(text[i]);
        if (c >= kFirstBeyondBmp)
            return -1;
        target[i] = static_cast<char16_t>(c);
    }
    return static_cast<std::ptrdiff_t>(length);
}

QString toQString(const wchar_t* text, std::size_t length)
{
    constexpr auto kLongest = static_cast<std::size_t>(std::numeric_limits<int>::max()) / 4;
    const std::size_t taken = length < kLongest ? length : kLongest;
    QString result(static_cast<int>(taken), Qt::Uninitialized);
    if (narrowBmp(text, taken, reinterpret_cast<char16_t*>(result.data())) >= 0)
        return result;
    result.resize(static_cast<int>(taken * 2));
    result.resize(static_cast<int>(narrow(text, taken, result.data())));
    return result;
}

QString toQString(const wchar_t* text)
{
    return text ? toQString(text, std::wcslen(text)) : QString();
}

std::size_t wideLength(const QChar* units, std::size_t count)
{
    std::size_t pairs = 0;
    for (std::size_t i = 0; i + 1 < count; ++i)
        pairs += beginsPair(units, count, i) ? 1 : 0;
    return count - pairs;
}

void widen(const QChar* units, std::size_t count, wchar_t* target)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (!beginsPair(units, count, i)) {
            *target++ = static_cast<wchar_t>(units[i].unicode());
            continue;
        }
        *target++ = static_cast<wchar_t>(QChar::surrogateToUcs4(units[i], units[i + 1]));
        ++i;
    }
}

std::wstring toWide(const QString& text)
{
    const auto count = static_cast<std::size_t>(text.size());
    std::wstring wide(wideLength(text.constData(), count), L'\0');
    widen(text.constData(), count, wide.data());
    return wide;
}

TransientString::TransientString(const wchar_t* text, std::size_t length)
{
    if (length >= static_cast<std::size_t>(kUnits) ||
        narrowBmp(text, length, reinterpret_cast<char16_t*>(m_units.data)) < 0) {
        m_string = toQString(text, length);
        return;
    }
    // The header that string literals have: never counted, never freed.
    new (&m_units.str) QArrayData Q_STATIC_STRING_DATA_HEADER_INITIALIZER(static_cast<int>(length));
    m_units.data[length] = 0;
    m_string = QString(QStringDataPtr{m_units.data_ptr()});
}

} // namespace vruinfo::internal
