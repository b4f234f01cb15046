#include "store/value_conversion.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include <QtCore/QByteArray>

#include "VrUInfo/ErrorStatus.h"
#include "store/tagged_text.h"
#include "text/wide_text.h"

namespace vruinfo::internal
{
namespace
{

constexpr std::uint32_t kSizeWordBytes = 4;

unsigned char* mutablePayload(VornVariant& value)
{
    return static_cast<unsigned char*>(value.data) + kSizeWordBytes;
}

/// Gives the variant a new block, without ever pointing at a freed one: a failure leaves the tag and no
/// block.
void renewBlock(VornVariant& value, VornVariant::VarType type, std::int32_t payloadBytes)
{
    std::free(value.data);
    value.data = nullptr;
    value.type = type;
    value.data = VornVariant::allocateValue(type, payloadBytes);
}

/// A new kVarString block for a text of that length, with its terminator; the place for the characters.
wchar_t* renewText(VornVariant& value, std::size_t length)
{
    const std::size_t bytes = (length + 1) * sizeof(wchar_t);
    const bool fits = bytes <= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    renewBlock(value, VornVariant::kVarString, fits ? static_cast<std::int32_t>(bytes) : 0);
    auto* const text = reinterpret_cast<wchar_t*>(mutablePayload(value));
    text[length] = L'\0';
    return text;
}

template <typename Number>
void setNumber(VornVariant& value, VornVariant::VarType type, Number number)
{
    if (value.type != type || !value.data)
        renewBlock(value, type, 0);
    std::memcpy(mutablePayload(value), &number, sizeof number);
}

template <typename Number>
Number numberOf(const VornVariant& value)
{
    Number number = 0;
    if (value.data)
        std::memcpy(&number, payload(value), sizeof number);
    return number;
}

void setBinary(VornVariant& value, const QByteArray& bytes)
{
    if (!bytes.isEmpty()) {
        renewBlock(value, VornVariant::kVarBinary, bytes.size());
        std::memcpy(mutablePayload(value), bytes.constData(), static_cast<std::size_t>(bytes.size()));
        return;
    }
    std::free(value.data);
    value.data = nullptr;
    value.type = VornVariant::kVarBinary;
}

/// Decimal digits that surely fit 64 bits, with an optional minus, are read here; everything else the
/// settings library's own number reading decides.
std::int64_t integerOf(const QString& text, int begin)
{
    const int end = text.size();
    const bool negative = begin < end && text.at(begin) == QLatin1Char('-');
    const int first = negative ? begin + 1 : begin;
    if (first == end || end - first > std::numeric_limits<std::int64_t>::digits10)
        return text.mid(begin).toLongLong();
    std::int64_t number = 0;
    for (int i = first; i < end; ++i) {
        const unsigned int digit = text.at(i).unicode() - static_cast<unsigned int>('0');
        if (digit > 9)
            return text.mid(begin).toLongLong();
        number = number * 10 + digit;
    }
    return negative ? -number : number;
}

QByteArray bytesOf(const QString& text, int begin)
{
    return QByteArray::fromHex(text.mid(begin).toUtf8());
}

/// What no text has room for as digits raises what an impossible size does.
void checkBinarySize(std::uint32_t count)
{
    constexpr std::uint32_t kMost = std::numeric_limits<std::int32_t>::max() / 4 - 64; // tag and headers
    if (count > kMost)
        VrRaiseErrorStatus(Vorn::eBadSize, L"\"\"", 0);
}

/// As many bytes as the size word says, which is four more than the payload has: those are zero.
QVariant binaryToStored(const VornVariant& value)
{
    const std::uint32_t count = sizeWord(value);
    if (count == 0)
        return {};
    checkBinarySize(count);
    const std::uint32_t own = count > kSizeWordBytes ? count - kSizeWordBytes : 0;
    QByteArray bytes(static_cast<int>(count), '\0');
    if (own > 0)
        std::memcpy(bytes.data(), payload(value), own);
    return taggedText(VornVariant::kVarBinary, QString::fromLatin1(bytes.toHex()));
}

QVariant doubleToStored(const VornVariant& value)
{
    QByteArray bytes(sizeof(double), '\0');
    if (value.data)
        std::memcpy(bytes.data(), payload(value), sizeof(double));
    return taggedText(VornVariant::kVarDouble, QString::fromLatin1(bytes.toHex()));
}

/// Every digit is a tag of its own; a text without a tag is text.
int typeOf(const TaggedText& tagged)
{
    return tagged.tag ? tagNumber(*tagged.tag) : static_cast<int>(VornVariant::kVarString);
}

/// The text that a variant holds, where it holds one: nearly always, and then nothing is converted or counted.
const QString* heldText(const QVariant& stored)
{
    return stored.userType() == QMetaType::QString ? static_cast<const QString*>(stored.constData()) : nullptr;
}

} // namespace

std::uint32_t sizeWord(const VornVariant& value)
{
    std::uint32_t bytes = 0;
    if (value.data)
        std::memcpy(&bytes, value.data, sizeof bytes);
    return bytes;
}

const unsigned char* payload(const VornVariant& value)
{
    return static_cast<const unsigned char*>(value.data) + kSizeWordBytes;
}

std::int32_t int32Of(const VornVariant& value)
{
    return value.type == VornVariant::kVarInt32 ? numberOf<std::int32_t>(value) : 0;
}

void setInt32(VornVariant& value, std::int32_t number)
{
    setNumber(value, VornVariant::kVarInt32, number);
}

void setText(VornVariant& value, const QChar* units, std::size_t count)
{
    wchar_t* text = renewText(value, count);
    if (widenBmp(units, count, text))
        return;
    const std::size_t length = wideLength(units, count);
    if (length != count)
        text = renewText(value, length);
    widen(units, count, text);
}

const wchar_t* textOf(const VornVariant& value)
{
    if (value.type != VornVariant::kVarString || !value.data)
        return L"";
    return reinterpret_cast<const wchar_t*>(payload(value));
}

QVariant toStored(const VornVariant& value)
{
    switch (value.type) {
    case VornVariant::kVarInt32:
        return taggedNumber(value.type, numberOf<std::int32_t>(value));
    case VornVariant::kVarInt64:
        return taggedNumber(value.type, numberOf<std::int64_t>(value));
    case VornVariant::kVarDouble:
        return doubleToStored(value);
    case VornVariant::kVarBinary:
        return binaryToStored(value);
    case VornVariant::kVarString:
        return taggedText(value.type, textOf(value));
    default:
        return {};
    }
}

namespace
{

void fromText(const QString& text, VornVariant& out)
{
    const TaggedText tagged = TaggedText::parse(text);
    const int begin = tagged.payloadBegin;
    switch (typeOf(tagged)) {
    case VornVariant::kVarInt32:
        setInt32(out, static_cast<std::int32_t>(static_cast<std::uint32_t>(integerOf(text, begin))));
        break;
    case VornVariant::kVarInt64:
        setNumber(out, VornVariant::kVarInt64, integerOf(text, begin));
        break;
    case VornVariant::kVarDouble: // arrives as its bytes, on purpose
    case VornVariant::kVarBinary:
        setBinary(out, bytesOf(text, begin));
        break;
    case VornVariant::kVarString:
        setText(out, text.constData() + begin, static_cast<std::size_t>(text.size() - begin));
        break;
    default:
        break;
    }
}

} // namespace

bool isStored(const QVariant& stored)
{
    const QString* const text = heldText(stored);
    return text ? !text->isNull() : !stored.isNull();
}

void fromStored(const QVariant& stored, VornVariant& out)
{
    if (const QString* const text = heldText(stored))
        fromText(*text, out);
    else
        fromText(stored.toString(), out);
}

} // namespace vruinfo::internal

using namespace vruinfo::internal;

namespace
{

// The library's own copies of the inline members that it uses are part of what it exports: a module that was compiled
// without inlining them binds to these.
[[gnu::used]] void* (*const kAllocateValue)(VornVariant::VarType, std::int32_t) = &VornVariant::allocateValue;
[[gnu::used]] void (VornVariant::*const kSetString)(const wchar_t*, VornVariant::VarType) = &VornVariant::setString;

} // namespace

void QVarToVVar(QVariant& in, VornVariant& out)
{
    fromStored(in, out);
}
