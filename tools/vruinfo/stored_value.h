// What stands in the settings under a name: the library's view of it, and itself, so that it can be told and brought
// back to the bit.
#pragma once

#include <optional>

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include "VrUInfo/VornVariant.h"
#include "result.h"

namespace vruinfo::tool
{

class StoredValue final
{
public:
    /// What the settings library gave.
    explicit StoredValue(const QVariant& stored);
    /// What the settings library is to store for a value, without the growth that bytes have when a module writes them.
    explicit StoredValue(const VornVariant& value);

    [[nodiscard]] const QVariant& stored() const { return m_stored; }
    /// As the library reads it, but a double is one; kVarNone for what the library does not read.
    [[nodiscard]] const VornVariant& value() const { return m_value; }
    /// Whether the view tells all that is stored: a module that writes the value stores just that.
    [[nodiscard]] bool isCanonical() const;
    /// In one line: the type and the value, and what is stored where that tells more.
    [[nodiscard]] QString text() const;
    /// "type" and "value"; doubles have their "bits"; where these do not tell all, "stored", "storedUnits" or
    /// "storedVariant" does.
    [[nodiscard]] QJsonObject json() const;
    /// Of one kind, and the same to the bit.
    [[nodiscard]] static bool isSame(const QVariant& one, const QVariant& other);
    /// The value that such an object tells. The problem's text names what is wrong with it.
    [[nodiscard]] static Result<StoredValue> fromJson(const QJsonObject& object);

    bool operator==(const StoredValue& other) const { return isSame(m_stored, other.m_stored); }
    bool operator!=(const StoredValue& other) const { return !(*this == other); }

private:
    QVariant m_stored;
    VornVariant m_value;
};

/// \name Texts that JSON may not be able to hold
/// A text with a lone surrogate or a byte-order mark is given twice: as near as JSON comes, and as its UTF-16 units in
/// hexadecimal digits under the key with "Units" behind it.
/// @{
void insertText(QJsonObject& object, const QString& key, const QString& text);
/// Nothing when neither key is there, or the units are no such digits.
[[nodiscard]] std::optional<QString> textFrom(const QJsonObject& object, const QString& key);
/// @}

} // namespace vruinfo::tool
