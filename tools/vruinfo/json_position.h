// Where things stand in a JSON text, for messages about them.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonParseError>
#include <QtCore/QString>

namespace vruinfo::tool
{

/// "LINE:COLUMN" of a byte, both from 1; columns count characters.
[[nodiscard]] QString lineAndColumn(const QByteArray& text, int offset);

/// The byte that a parser's complaint about a text is about.
[[nodiscard]] int offsetOf(const QByteArray& text, const QJsonParseError& error);

/// \name Of a text that is one valid JSON object
/// @{
/// Where the value of a member begins: the last one of that name, which is the one that counts; the object itself when
/// there is none.
[[nodiscard]] int memberOffset(const QByteArray& text, const QString& name);
/// Where an element begins in the array at an offset; the array itself when it has fewer.
[[nodiscard]] int elementOffset(const QByteArray& text, int array, int index);
/// @}

} // namespace vruinfo::tool
