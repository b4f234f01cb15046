// The text form of values: reading any text, writing any value, and both after each other.
#include <QtCore/QByteArray>
#include <QtCore/QVariant>

#include "VrUInfo/VornVariant.h"
#include "fuzz_input.h"
#include "store/tagged_text.h"
#include "store/value_conversion.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

namespace
{

QByteArray payloadBytes(const VornVariant& value)
{
    const std::uint32_t whole = sizeWord(value);
    return whole > 4 ? QByteArray(reinterpret_cast<const char*>(payload(value)), static_cast<int>(whole - 4))
                     : QByteArray();
}

/// The block is as long as its size word says, and the zeros stand behind it; a sanitizer sees a step beyond.
void checkBlock(const VornVariant& value)
{
    if (!value.data)
        return;
    const auto* const bytes = static_cast<const unsigned char*>(value.data);
    const std::uint32_t whole = sizeWord(value);
    VR_HOLDS(whole >= 4, "a size word counts itself");
    for (std::uint32_t i = whole; i < whole + 4; ++i)
        VR_HOLDS(bytes[i] == 0, "four zeros stand behind a block");
}

void checkTag(const QString& text)
{
    const TaggedText tagged = TaggedText::parse(text);
    if (!tagged.tag) {
        VR_HOLDS(tagged.payloadBegin == 0, "a text without a tag is payload as a whole");
        return;
    }
    VR_HOLDS(QString(*tagged.tag) + QLatin1Char('$') + text.mid(tagged.payloadBegin) == text,
             "tag, separator and payload are the text");
}

/// What the text must read as, by the settings library's own number and byte reading.
void checkAgainstReference(const QString& text, const VornVariant& value)
{
    const TaggedText tagged = TaggedText::parse(text);
    const QString rest = text.mid(tagged.payloadBegin);
    const int type = tagged.tag ? tagNumber(*tagged.tag) : VornVariant::kVarString;
    const QByteArray bytes = payloadBytes(value);
    if (type == VornVariant::kVarInt32) {
        const auto number = static_cast<std::int32_t>(static_cast<std::uint32_t>(rest.toLongLong()));
        VR_HOLDS(bytes == QByteArray(reinterpret_cast<const char*>(&number), 4), "an int32 reads as its digits say");
    } else if (type == VornVariant::kVarInt64) {
        const qlonglong number = rest.toLongLong();
        VR_HOLDS(bytes == QByteArray(reinterpret_cast<const char*>(&number), 8), "an int64 reads as its digits say");
    } else if (type == VornVariant::kVarDouble || type == VornVariant::kVarBinary) {
        VR_HOLDS(bytes == QByteArray::fromHex(rest.toUtf8()), "bytes read as their hexadecimal digits say");
    } else if (type == VornVariant::kVarString) {
        VR_HOLDS(bytes.size() % 4 == 0, "a text has whole characters");
        const std::wstring read(reinterpret_cast<const wchar_t*>(bytes.constData()),
                                static_cast<std::size_t>(bytes.size()) / 4);
        VR_HOLDS(read == toWide(rest) + L'\0', "a text reads as it stands");
    } else {
        VR_HOLDS(value.type == VornVariant::kVarNone && !value.data, "an unknown tag reads as nothing");
    }
}

/// What was read is written so that it reads the same, but for bytes, which get four zeros more.
void checkRoundTrip(const VornVariant& value)
{
    const QVariant stored = toStored(value);
    VornVariant again;
    if (!stored.isNull())
        fromStored(stored, again);
    checkBlock(again);
    const QByteArray bytes = payloadBytes(value);
    if (value.type == VornVariant::kVarString) {
        const auto* const text = reinterpret_cast<const wchar_t*>(bytes.constData());
        const std::wstring first = bytes.isEmpty() ? std::wstring() : std::wstring(text);
        VR_HOLDS(textOf(again) == toWide(toQString(std::wstring_view(first))), "a text comes back");
        return;
    }
    const bool growsByFour = value.type == VornVariant::kVarBinary && value.data;
    const QByteArray expected = growsByFour ? bytes + QByteArray(4, '\0') : bytes;
    VR_HOLDS(payloadBytes(again) == expected, "a number or bytes come back");
}

void checkReading(const QString& text)
{
    checkTag(text);
    VornVariant value;
    fromStored(QVariant(text), value);
    checkBlock(value);
    checkAgainstReference(text, value);
    checkRoundTrip(value);
    QVariant other(text.toUtf8()); // a value that is no text is read through its text
    VornVariant throughBytes;
    QVarToVVar(other, throughBytes);
    checkBlock(throughBytes);
}

/// A variant that held something else before reads the same.
void checkReuse(const QString& text, const VornVariant& former)
{
    VornVariant fresh;
    VornVariant reused(former);
    fromStored(QVariant(text), fresh);
    fromStored(QVariant(text), reused);
    checkBlock(reused);
    if (fresh.type == VornVariant::kVarNone)
        return; // then it stays as it was
    VR_HOLDS(fresh.type == reused.type && payloadBytes(fresh) == payloadBytes(reused), "a used variant reads the same");
}

VornVariant madeFrom(unsigned int type, std::string_view bytes)
{
    VornVariant value;
    if (type % 2 == 0) {
        const std::wstring text = vrfuzz::wide(bytes);
        value.setString(text.c_str(), VornVariant::kVarString);
        return value;
    }
    value.type = static_cast<VornVariant::VarType>(1 + type / 2 % 4);
    const bool isFixed = value.type != VornVariant::kVarBinary;
    const std::size_t wanted = value.type == VornVariant::kVarInt32 ? 4 : 8;
    if (!isFixed && bytes.empty())
        return value;
    value.data = VornVariant::allocateValue(value.type, isFixed ? 0 : static_cast<std::int32_t>(bytes.size()));
    std::memset(static_cast<char*>(value.data) + 4, 0, sizeWord(value) - 4);
    std::memcpy(static_cast<char*>(value.data) + 4, bytes.data(),
                isFixed ? std::min(wanted, bytes.size()) : bytes.size());
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vrfuzz::Input input(data, size);
    const unsigned int form = input.takeByte();
    const VornVariant made = madeFrom(input.takeByte(), input.rest());
    checkBlock(made);
    checkRoundTrip(made);
    checkReading(input.stringRest((form & 1U) != 0));
    checkReuse(input.stringRest((form & 1U) != 0), made);
    return 0;
}
