// Wide text to UTF-16 and back, against a reference that goes character by character.
#include <vector>

#include "fuzz_input.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

namespace
{

constexpr char32_t kLast = 0x10FFFF;

std::u16string expectedUnits(const std::wstring& text)
{
    std::u16string units;
    for (const wchar_t character : text) {
        auto c = static_cast<char32_t>(character);
        if (c > kLast)
            c = 0xFFFD;
        if (c > 0xFFFF) {
            units.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10U)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FFU)));
        } else {
            units.push_back(static_cast<char16_t>(c));
        }
    }
    return units;
}

std::u16string unitsOf(const QString& text)
{
    return text.toStdU16String();
}

void checkNarrow(const std::wstring& text)
{
    const std::u16string expected = expectedUnits(text);
    std::vector<char16_t> roomy(text.size() * 2);
    const std::size_t count = narrow(text, roomy.data());
    VR_HOLDS(std::u16string(roomy.data(), count) == expected, "narrow() gives the units of each character");

    std::vector<char16_t> exact(text.size());
    const bool isBmp = narrowBmp(text, exact.data());
    const bool expectsBmp =
        std::all_of(text.begin(), text.end(), [](wchar_t c) { return static_cast<char32_t>(c) < 0x10000; });
    VR_HOLDS(isBmp == expectsBmp, "narrowBmp() is for texts within the BMP");
    VR_HOLDS(!isBmp || std::u16string(exact.begin(), exact.end()) == expected, "narrowBmp() gives the same units");

    VR_HOLDS(unitsOf(toQString(std::wstring_view(text))) == expected, "toQString() gives the same units");
    const QString prefixed = toQString(QLatin1String("5$"), text);
    VR_HOLDS(unitsOf(prefixed) == u"5$" + expected, "a prefix stands before the same units");
    const TransientString transient(text);
    VR_HOLDS(unitsOf(transient.string()) == expected, "a transient string has the same units");
    VR_HOLDS(unitsOf(toQString(text.c_str())) == expectedUnits(vrfuzz::terminated(text)), "a zero ends wide text");
}

void checkWiden(const QString& text)
{
    const auto count = static_cast<std::size_t>(text.size());
    const std::wstring wide = toWide(text);
    VR_HOLDS(wide.size() == wideLength(text.constData(), count), "wideLength() is the length");
    VR_HOLDS(toQString(std::wstring_view(wide)) == text, "UTF-16 comes back from wide text");

    std::vector<wchar_t> exact(count);
    const bool isPlain = widenBmp(text.constData(), count, exact.data());
    const bool expectsPlain = std::none_of(text.begin(), text.end(), [](QChar c) { return c.isSurrogate(); });
    VR_HOLDS(isPlain == expectsPlain, "widenBmp() is for texts without halves of pairs");
    VR_HOLDS(!isPlain || std::wstring(exact.begin(), exact.end()) == wide, "widenBmp() gives the same characters");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vrfuzz::Input input(data, size);
    const unsigned int form = input.takeByte();
    checkNarrow(input.wideRest((form & 1U) != 0));
    checkWiden(input.stringRest((form & 2U) != 0));
    return 0;
}
