#include "kept_value.h"

#include <cstring>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include "store_values.h"

namespace stress
{
namespace
{

constexpr std::int64_t kBeyond32Bits = std::int64_t{1} << 40;
/// What bytes that went through the store have behind them.
const std::string kAddedZeros(4, '\0');

std::string bytesIn(const VornVariant& value)
{
    const vrtest::Bytes bytes = vrtest::payloadOf(value);
    return {bytes.begin(), bytes.end()};
}

VornVariant bytesValue(const std::string& bytes)
{
    return vrtest::binaryValue(vrtest::Bytes(bytes.begin(), bytes.end()));
}

std::u16string hexOf(const std::string& bytes)
{
    return QString::fromLatin1(QByteArray::fromStdString(bytes).toHex()).toStdU16String();
}

std::u16string decimalOf(std::int64_t number)
{
    return QString::number(number).toStdU16String();
}

} // namespace

std::string KeptValue::bytes() const
{
    const auto number = static_cast<double>(m_number) / 8;
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return kind() == Kind::Bytes ? bytes + std::string(static_cast<std::size_t>(m_number % 7), 'b') : bytes;
}

std::wstring KeptValue::text() const
{
    const std::wstring filling(static_cast<std::size_t>(m_number % 40), L'\u00FC');
    return std::to_wstring(m_number) + L" \U0001F600=%\"\\\n" + filling;
}

VornVariant KeptValue::variant() const
{
    switch (kind()) {
    case Kind::Int32:
        return vrtest::int32Value(static_cast<std::int32_t>(m_number));
    case Kind::Int64:
        return vrtest::int64Value(m_number + kBeyond32Bits);
    case Kind::Double:
        return vrtest::doubleValue(static_cast<double>(m_number) / 8);
    case Kind::Bytes:
        return bytesValue(bytes());
    default:
        return vrtest::textValue(text());
    }
}

bool KeptValue::isIn(const VornVariant& value) const
{
    const int type = vrtest::typeOf(value);
    switch (kind()) {
    case Kind::Int32:
        return type == VornVariant::kVarInt32 && vrtest::numberIn<std::int32_t>(value) == m_number;
    case Kind::Int64:
        return type == VornVariant::kVarInt64 && vrtest::numberIn<std::int64_t>(value) == m_number + kBeyond32Bits;
    case Kind::Double:
        return type == VornVariant::kVarBinary && bytesIn(value) == bytes();
    case Kind::Bytes:
        return type == VornVariant::kVarBinary && bytesIn(value) == bytes() + kAddedZeros;
    default:
        return type == VornVariant::kVarString && vrtest::textIn(value) == text();
    }
}

std::u16string KeptValue::inFile() const
{
    switch (kind()) {
    case Kind::Int32:
        return u"1$" + decimalOf(m_number);
    case Kind::Int64:
        return u"2$" + decimalOf(m_number + kBeyond32Bits);
    case Kind::Double:
        return u"3$" + hexOf(bytes());
    case Kind::Bytes:
        return u"4$" + hexOf(bytes() + kAddedZeros);
    default:
        return u"5$" + QString::fromStdWString(text()).toStdU16String();
    }
}

} // namespace stress
