#include "stored_value.h"

#include <algorithm>
#include <cmath>

#include <QtCore/QDataStream>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include "store/tagged_text.h"
#include "text.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

using vruinfo::internal::TaggedText;
using vruinfo::internal::taggedText;

constexpr auto kStreamVersion = QDataStream::Qt_5_15;
constexpr int kHexDigitsOfAUnit = 4;
constexpr int kHexDigitsOfADouble = 16;

QString typeKey()
{
    return QStringLiteral("type");
}

QString valueKey()
{
    return QStringLiteral("value");
}

QString bitsKey()
{
    return QStringLiteral("bits");
}

QString storedKey()
{
    return QStringLiteral("stored");
}

QString variantKey()
{
    return QStringLiteral("storedVariant");
}

Problem wrong(const QString& what)
{
    return {Exit::Failed, what};
}

bool isTextOrList(const QVariant& stored)
{
    return stored.userType() == QMetaType::QString || stored.userType() == QMetaType::QStringList;
}

QString storedText(const QVariant& stored)
{
    if (!stored.isValid())
        return QStringLiteral("nothing");
    return isTextOrList(stored) ? quoted(stored.toStringList().join(QStringLiteral(", ")))
                                : QString::fromLatin1(stored.typeName());
}

/// A double reads as its bytes.
bool isStoredDouble(const QVariant& stored)
{
    const TaggedText tagged = TaggedText::parse(stored.toString());
    return tagged.tag && vruinfo::internal::tagNumber(*tagged.tag) == VornVariant::kVarDouble;
}

VornVariant viewOf(const QVariant& stored)
{
    QVariant input = stored;
    VornVariant value;
    QVarToVVar(input, value);
    return isStoredDouble(stored) ? asDouble(value) : value;
}

/// The text that a module's write of the value gives (but for the growth of bytes).
QString canonicalText(const VornVariant& value)
{
    if (value.type == VornVariant::kVarDouble)
        return taggedText(value.type, QString::fromLatin1(payloadOf(value).toHex()));
    return taggedText(value.type, plainText(value));
}

QString unitsOf(const QString& text)
{
    QString digits;
    for (const QChar unit : text)
        digits += QString::number(unit.unicode(), 16).rightJustified(kHexDigitsOfAUnit, QLatin1Char('0'));
    return digits;
}

std::optional<QString> fromUnits(const QString& digits)
{
    const QByteArray bytes = QByteArray::fromHex(digits.toLatin1());
    if (digits.size() % kHexDigitsOfAUnit != 0 || QString::fromLatin1(bytes.toHex()) != digits.toLower())
        return std::nullopt;
    QString text;
    for (int i = 0; i < digits.size(); i += kHexDigitsOfAUnit)
        text += QChar(static_cast<ushort>(digits.midRef(i, kHexDigitsOfAUnit).toUInt(nullptr, 16)));
    return text;
}

QString reversedPairs(const QString& digits)
{
    QByteArray bytes = QByteArray::fromHex(digits.toLatin1());
    std::reverse(bytes.begin(), bytes.end());
    return QString::fromLatin1(bytes.toHex());
}

/// The bits of a double, the highest first.
QString bitsOf(const VornVariant& value)
{
    return reversedPairs(QString::fromLatin1(payloadOf(value).toHex()));
}

QString streamed(const QVariant& stored)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(kStreamVersion);
    stream << stored;
    return QString::fromLatin1(bytes.toBase64());
}

/// A value that exists, but is none, is among them.
Result<StoredValue> fromStream(const QString& base64)
{
    const QByteArray bytes = QByteArray::fromBase64(base64.toLatin1());
    QDataStream stream(bytes);
    stream.setVersion(kStreamVersion);
    QVariant stored;
    stream >> stored;
    if (stream.status() != QDataStream::Ok || streamed(stored) != base64)
        return wrong(QStringLiteral("\"storedVariant\" is no value of the settings library"));
    return StoredValue(stored);
}

Result<StoredValue> fromList(const QJsonArray& array)
{
    QStringList list;
    for (const QJsonValue& element : array) {
        if (!element.isString())
            return wrong(QStringLiteral("\"stored\" is a list with an element that is no text"));
        list.append(element.toString());
    }
    return StoredValue(QVariant(list));
}

Result<StoredValue> fromBits(const QJsonObject& object)
{
    const QString bits = object.value(bitsKey()).toString();
    const QString payload = reversedPairs(bits);
    if (bits.size() != kHexDigitsOfADouble || reversedPairs(payload) != bits.toLower())
        return wrong(QStringLiteral("\"bits\" is not 16 hexadecimal digits"));
    return StoredValue(QVariant(taggedText(VornVariant::kVarDouble, payload)));
}

/// What stands under "value", as it would be typed.
std::optional<QString> typedWord(VornVariant::VarType type, const QJsonObject& object)
{
    const QJsonValue value = object.value(valueKey());
    if (value.isString())
        return textFrom(object, valueKey());
    const bool isNumber = value.isDouble() && (type == VornVariant::kVarInt32 || type == VornVariant::kVarDouble);
    if (!isNumber)
        return std::nullopt;
    constexpr int kExact = 17; // significant digits that tell every double from its neighbours
    const double number = value.toDouble();
    const bool isWhole = type == VornVariant::kVarInt32 && std::trunc(number) == number && std::abs(number) < 1e15;
    return isWhole ? QString::number(static_cast<qint64>(number)) : QString::number(number, 'g', kExact);
}

Result<StoredValue> fromTyped(const QJsonObject& object)
{
    const Result<VornVariant::VarType> type = typeFromName(object.value(typeKey()).toString());
    if (!type)
        return type.problem();
    const std::optional<QString> word = typedWord(*type, object);
    if (!word)
        return wrong(
            QStringLiteral("\"value\" is missing, or is not what a value of type %1 is told by").arg(typeName(*type)));
    const Result<VornVariant> value = parseValue(*type, *word);
    if (!value)
        return wrong(value.problem().text);
    return StoredValue(*value);
}

/// What a reader of its text gets: some texts and numbers are told in a way that is only near to them.
QJsonObject asRead(const QJsonObject& object)
{
    return QJsonDocument::fromJson(QJsonDocument(object).toJson(QJsonDocument::Compact)).object();
}

/// What tells the whole value wins; so that nobody changes what stands beside it in vain, that must not tell another.
Result<StoredValue> agreeing(const Result<StoredValue>& value, const QJsonObject& object)
{
    if (!value)
        return value;
    const QJsonObject whole = asRead(value->json());
    for (const QString& key : {typeKey(), valueKey(), storedKey()}) {
        if (object.contains(key) && object.value(key) != whole.value(key))
            return wrong(QStringLiteral("\"%1\" tells another value than the keys beside it; change all of them, or "
                                        "leave \"type\" and \"value\" only")
                             .arg(key));
    }
    return value;
}

/// By what tells the whole value.
Result<StoredValue> fromWhole(const QJsonObject& object)
{
    if (object.contains(variantKey()))
        return fromStream(object.value(variantKey()).toString());
    if (object.value(storedKey()).isArray())
        return fromList(object.value(storedKey()).toArray());
    if (!object.contains(storedKey()))
        return fromBits(object);
    const std::optional<QString> stored = textFrom(object, storedKey());
    return stored ? Result<StoredValue>(StoredValue(QVariant(*stored)))
                  : wrong(QStringLiteral("\"stored\" is no text"));
}

/// JSON is UTF-8, which has no lone surrogates, and whose readers take a byte-order mark for none of the text.
bool isLossyInJson(const QString& text)
{
    return text.contains(QChar(QChar::ByteOrderMark)) || QString::fromUtf8(text.toUtf8()) != text;
}

} // namespace

StoredValue::StoredValue(const QVariant& stored) : m_stored(stored), m_value(viewOf(stored)) {}

StoredValue::StoredValue(const VornVariant& value) : m_stored(canonicalText(value)), m_value(value) {}

bool StoredValue::isCanonical() const
{
    const bool isTyped = m_value.type != VornVariant::kVarNone && m_value.data; // no bytes at all cannot be typed in
    return isTyped && m_stored.userType() == QMetaType::QString && canonicalText(m_value) == m_stored.toString();
}

QString StoredValue::text() const
{
    QString typed = typedText(m_value);
    if (isCanonical())
        return typed;
    return QStringLiteral("%1 (stored as %2)").arg(typed, storedText(m_stored));
}

QJsonObject StoredValue::json() const
{
    QJsonObject object = typedJson(m_value);
    if (m_value.type == VornVariant::kVarDouble)
        object.insert(bitsKey(), bitsOf(m_value));
    if (isCanonical() && !isLossyInJson(m_stored.toString()))
        return object;
    if (m_stored.userType() == QMetaType::QString)
        insertText(object, storedKey(), m_stored.toString());
    else if (m_stored.userType() == QMetaType::QStringList && !isLossyInJson(m_stored.toStringList().join(QString())))
        object.insert(storedKey(), QJsonArray::fromStringList(m_stored.toStringList()));
    else
        object.insert(variantKey(), streamed(m_stored));
    return object;
}

bool StoredValue::isSame(const QVariant& one, const QVariant& other)
{
    if (one.userType() != other.userType())
        return false; // the comparison of variants would convert them
    if (isTextOrList(one))
        return one == other;
    return streamed(one) == streamed(other);
}

Result<StoredValue> StoredValue::fromJson(const QJsonObject& object)
{
    const bool hasWhole = object.contains(variantKey()) || object.contains(storedKey()) || object.contains(bitsKey());
    return hasWhole ? agreeing(fromWhole(object), object) : fromTyped(object);
}

void insertText(QJsonObject& object, const QString& key, const QString& text)
{
    const bool isLossy = isLossyInJson(text);
    object.insert(key, isLossy ? QString::fromUtf8(text.toUtf8()) : text);
    if (isLossy)
        object.insert(key + QStringLiteral("Units"), unitsOf(text));
}

std::optional<QString> textFrom(const QJsonObject& object, const QString& key)
{
    const QString units = key + QStringLiteral("Units");
    if (object.contains(units))
        return fromUnits(object.value(units).toString());
    const QJsonValue text = object.value(key);
    return text.isString() ? std::optional<QString>(text.toString()) : std::nullopt;
}

} // namespace vruinfo::tool
