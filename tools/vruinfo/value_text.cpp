#include "value_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "text.h"

namespace vruinfo::tool
{
namespace
{

struct TypeName {
    VornVariant::VarType type;
    const char* name;
};

constexpr std::array<TypeName, 5> kTypes = {{
    {VornVariant::kVarInt32, "int32"},
    {VornVariant::kVarInt64, "int64"},
    {VornVariant::kVarDouble, "double"},
    {VornVariant::kVarBinary, "binary"},
    {VornVariant::kVarString, "string"},
}};

constexpr std::size_t kSizeWord = sizeof(std::uint32_t);

VornVariant withPayload(VornVariant::VarType type, const QByteArray& bytes)
{
    VornVariant value;
    value.data = VornVariant::allocateValue(type, bytes.size());
    value.type = type;
    std::memcpy(static_cast<char*>(value.data) + kSizeWord, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return value;
}

template <typename Number>
Number numberOf(const VornVariant& value)
{
    Number number{};
    const QByteArray bytes = payloadOf(value);
    std::memcpy(&number, bytes.constData(), std::min(sizeof number, static_cast<std::size_t>(bytes.size())));
    return number;
}

Problem noValue(const QString& text, const char* what)
{
    return {Exit::Misuse, QStringLiteral("%1 is %2").arg(quoted(text), vruinfo::tool::text(what))};
}

/// Numbers are read as in the C locale, without blanks around them.
template <typename Number>
Result<VornVariant> parseNumber(VornVariant::VarType type, const QString& text, const char* what, const char* outside)
{
    const QByteArray digits = text.toUtf8();
    Number number{};
    const auto [end, error] = std::from_chars(digits.cbegin(), digits.cend(), number);
    if (error == std::errc::invalid_argument || end != digits.cend())
        return noValue(text, what);
    if (error == std::errc::result_out_of_range)
        return noValue(text, outside);
    return withPayload(type, QByteArray(reinterpret_cast<const char*>(&number), sizeof number));
}

Result<VornVariant> parseBinary(const QString& text)
{
    const QByteArray digits = text.toUtf8();
    const QByteArray bytes = QByteArray::fromHex(digits);
    if (bytes.isEmpty() || bytes.toHex() != digits.toLower())
        return noValue(text, "no binary value: an even number of hexadecimal digits is wanted, at least two");
    return withPayload(VornVariant::kVarBinary, bytes);
}

VornVariant stringValue(const QString& text)
{
    VornVariant value;
    value.setString(toWide(text).c_str(), VornVariant::kVarString);
    return value;
}

QString doubleText(double number)
{
    std::array<char, 32> buffer{}; // the shortest form that reads back as the same number needs 24
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return error == std::errc() ? QString::fromLatin1(buffer.data(), static_cast<int>(end - buffer.data())) : QString();
}

QString stringOf(const VornVariant& value)
{
    const QByteArray bytes = payloadOf(value);
    std::wstring text(static_cast<std::size_t>(bytes.size()) / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.constData(), text.size() * sizeof(wchar_t));
    if (!text.empty())
        text.pop_back(); // the terminator
    return fromWide(text);
}

/// JSON numbers are doubles to most who read them: what a double cannot hold stands there as text.
QJsonValue jsonValue(const VornVariant& value)
{
    if (value.type == VornVariant::kVarInt32)
        return numberOf<std::int32_t>(value);
    if (value.type == VornVariant::kVarDouble && std::isfinite(numberOf<double>(value)))
        return numberOf<double>(value);
    return plainText(value);
}

} // namespace

QByteArray payloadOf(const VornVariant& value)
{
    if (!value.data)
        return {};
    std::uint32_t size = 0;
    std::memcpy(&size, value.data, sizeof size);
    return {static_cast<const char*>(value.data) + kSizeWord, static_cast<int>(size - kSizeWord)};
}

QString typeName(VornVariant::VarType type)
{
    for (const TypeName& row : kTypes) {
        if (row.type == type)
            return text(row.name);
    }
    return QStringLiteral("unknown");
}

QStringList typeNames()
{
    QStringList names;
    for (const TypeName& row : kTypes)
        names.append(text(row.name));
    return names;
}

Result<VornVariant::VarType> typeFromName(const QString& name)
{
    for (const TypeName& row : kTypes) {
        if (text(row.name) == name)
            return row.type;
    }
    return Problem{
        Exit::Misuse,
        QStringLiteral("unknown type '%1'; the types are int32, int64, double, binary and string").arg(name)};
}

Result<VornVariant> parseValue(VornVariant::VarType type, const QString& text)
{
    constexpr char kNoInteger[] = "no whole number";
    switch (type) {
    case VornVariant::kVarInt32:
        return parseNumber<std::int32_t>(type, text, kNoInteger, "outside -2147483648 to 2147483647");
    case VornVariant::kVarInt64:
        return parseNumber<std::int64_t>(type, text, kNoInteger, "outside -9223372036854775808 to 9223372036854775807");
    case VornVariant::kVarDouble:
        return parseNumber<double>(type, text, "no number (\".\" is the decimal point)",
                                   "outside the range of a double");
    case VornVariant::kVarBinary:
        return parseBinary(text);
    default:
        return stringValue(text);
    }
}

VornVariant asDouble(const VornVariant& value)
{
    const QByteArray bytes = payloadOf(value);
    const bool isDouble = value.type == VornVariant::kVarBinary && bytes.size() == static_cast<int>(sizeof(double));
    return isDouble ? withPayload(VornVariant::kVarDouble, bytes) : value;
}

VornVariant asBinary(const VornVariant& value)
{
    return value.type == VornVariant::kVarDouble ? withPayload(VornVariant::kVarBinary, payloadOf(value)) : value;
}

QString plainText(const VornVariant& value)
{
    switch (value.type) {
    case VornVariant::kVarInt32:
        return QString::number(numberOf<std::int32_t>(value));
    case VornVariant::kVarInt64:
        return QString::number(static_cast<qint64>(numberOf<std::int64_t>(value)));
    case VornVariant::kVarDouble:
        return doubleText(numberOf<double>(value));
    case VornVariant::kVarBinary:
        return QString::fromLatin1(payloadOf(value).toHex());
    case VornVariant::kVarString:
        return stringOf(value);
    default:
        return {};
    }
}

QString lineText(const VornVariant& value)
{
    return value.type == VornVariant::kVarString ? quoted(plainText(value)) : plainText(value);
}

QString typedText(const VornVariant& value)
{
    const QString text = lineText(value);
    return text.isEmpty() ? typeName(value.type) : typeName(value.type) + QLatin1Char(' ') + text;
}

QJsonObject typedJson(const VornVariant& value)
{
    return {{QStringLiteral("type"), typeName(value.type)}, {QStringLiteral("value"), jsonValue(value)}};
}

} // namespace vruinfo::tool
