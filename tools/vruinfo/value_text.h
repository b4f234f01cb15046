// Values of the settings tree as words: types, what is typed on the command line, what is printed.
#pragma once

#include <optional>

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

#include "VrUInfo/VornVariant.h"
#include "result.h"

namespace vruinfo::tool
{

/// The bytes behind the size word.
[[nodiscard]] QByteArray payloadOf(const VornVariant& value);

[[nodiscard]] QString typeName(VornVariant::VarType type);
[[nodiscard]] QStringList typeNames();
[[nodiscard]] Result<VornVariant::VarType> typeFromName(const QString& name);

/// The value that a text stands for.
[[nodiscard]] Result<VornVariant> parseValue(VornVariant::VarType type, const QString& text);

/// Eight bytes as the double that they are; every other value as it is.
[[nodiscard]] VornVariant asDouble(const VornVariant& value);
/// A double as its eight bytes; every other value as it is.
[[nodiscard]] VornVariant asBinary(const VornVariant& value);

[[nodiscard]] QString plainText(const VornVariant& value);
[[nodiscard]] QString
typedText(const VornVariant& value); ///< In one line: the type, and the value with texts in quotes.
[[nodiscard]] QString lineText(const VornVariant& value);      ///< The same without the type.
[[nodiscard]] QJsonObject typedJson(const VornVariant& value); ///< "type" and "value"; int64 as text.

} // namespace vruinfo::tool
