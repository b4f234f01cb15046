#include "text/wide_text.h"

#include <algorithm>
#include <cwchar>
#include <limits>
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

std::size_t narrowPairs(std::wstring_view text, char16_t* target)
{
    std::size_t units = 0;
    for (const wchar_t character : text) {
        auto c = static_cast<char32_t>(character);
        if (c > kLast)
            c = kReplacement;
        if (c < kFirstBeyondBmp) {
            target[units++] = static_cast<char16_t>(c);
            continue;
        }
        target[units++] = QChar::highSurrogate(c);
        target[units++] = QChar::lowSurrogate(c);
    }
    return units;
}

bool narrowOneByOne(const wchar_t* text, std::size_t length, char16_t* target)
{
    for (std::size_t i = 0; i < length; ++i) {
        const auto c = static_cast<char32_t>(text[i]);
        if (c >= kFirstBeyondBmp)
            return false;
        target[i] = static_cast<char16_t>(c);
    }
    return true;
}

#if defined(__SSE2__)
constexpr std::size_t kHalfRound = 4; // characters in a register

__m128i loadFour(const wchar_t* text)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
}

bool isWithinBmp(__m128i characters)
{
    const __m128i upper = _mm_srli_epi32(characters, 16);
    return _mm_movemask_epi8(_mm_cmpeq_epi32(upper, _mm_setzero_si128())) == 0xFFFF;
}

/// Sign-extends the lower halves, so that the signed packing that follows does not clip 0x8000 and above.
__m128i forPacking(__m128i characters)
{
    return _mm_srai_epi32(_mm_slli_epi32(characters, 16), 16);
}

bool narrowAll(const wchar_t* text, std::size_t length, char16_t* target)
{
    std::size_t i = 0;
    for (; i + 2 * kHalfRound <= length; i += 2 * kHalfRound) {
        const __m128i low = loadFour(text + i);
        const __m128i high = loadFour(text + i + kHalfRound);
        if (!isWithinBmp(_mm_or_si128(low, high)))
            return false;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i), _mm_packs_epi32(forPacking(low), forPacking(high)));
    }
    if (i + kHalfRound <= length) {
        const __m128i four = loadFour(text + i);
        if (!isWithinBmp(four))
            return false;
        const __m128i packed = _mm_packs_epi32(forPacking(four), forPacking(four));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(target + i), packed);
        i += kHalfRound;
    }
    return narrowOneByOne(text + i, length - i, target + i);
}
#else
bool narrowAll(const wchar_t* text, std::size_t length, char16_t* target)
{
    return narrowOneByOne(text, length, target);
}
#endif

bool beginsPair(const QChar* units, std::size_t count, std::size_t i)
{
    return units[i].isHighSurrogate() && i + 1 < count && units[i + 1].isLowSurrogate();
}

} // namespace

bool narrowBmp(std::wstring_view text, char16_t* target)
{
    return narrowAll(text.data(), text.size(), target);
}

std::size_t narrow(std::wstring_view text, char16_t* target)
{
    return narrowBmp(text, target) ? text.size() : narrowPairs(text, target);
}

QString toQString(QLatin1String prefix, std::wstring_view text)
{
    constexpr auto kLongest = static_cast<std::size_t>(std::numeric_limits<int>::max()) / 4;
    const int begin = prefix.size();
    const std::wstring_view taken = text.substr(0, kLongest);
    QString result(begin + static_cast<int>(taken.size()), Qt::Uninitialized);
    std::copy_n(prefix.data(), begin, reinterpret_cast<char16_t*>(result.data()));
    if (narrowBmp(taken, reinterpret_cast<char16_t*>(result.data()) + begin))
        return result;
    result.resize(begin + static_cast<int>(taken.size() * 2));
    result.resize(begin + static_cast<int>(narrowPairs(taken, reinterpret_cast<char16_t*>(result.data()) + begin)));
    return result;
}

QString toQString(std::wstring_view text)
{
    return toQString(QLatin1String(), text);
}

QString toQString(const wchar_t* text)
{
    return text ? toQString(std::wstring_view(text)) : QString();
}

std::size_t wideLength(const QChar* units, std::size_t count)
{
    std::size_t pairs = 0;
    for (std::size_t i = 0; i + 1 < count; ++i)
        pairs += beginsPair(units, count, i) ? 1 : 0;
    return count - pairs;
}

bool widenBmp(const QChar* units, std::size_t count, wchar_t* target)
{
    const auto* const from = reinterpret_cast<const ushort*>(units);
    unsigned int halves = 0;
    for (std::size_t i = 0; i < count; ++i) {
        halves |= (from[i] & 0xF800U) == 0xD800U ? 1U : 0U;
        target[i] = from[i];
    }
    return halves == 0;
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

TransientString::TransientString(std::wstring_view text)
{
    const bool isShort = text.size() < static_cast<std::size_t>(kUnits);
    if (isShort && narrowBmp(text, reinterpret_cast<char16_t*>(m_units.data)))
        m_string = literalString(m_units, text.size());
    else
        m_string = toQString(text);
}

} // namespace vruinfo::internal
