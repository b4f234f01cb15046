// Where the tool's words go: answers to standard output, everything else to standard error. Both are UTF-8.
#pragma once

#include <QtCore/QJsonDocument>
#include <QtCore/QString>

#include "command.h"

namespace vruinfo::tool
{

/// What a line is about. Shown by colour on a terminal, unless NO_COLOR is set or the terminal is a dumb one.
enum class Style { Plain, Heading, Added, Removed, Changed, Good, Warning, Bad };

class Printer final
{
public:
    void line(const QString& text);              ///< A line of the answer.
    void line(Style style, const QString& text); ///< The same in colour where that is wanted.
    void json(const QJsonDocument& document);    ///< The answer.
    void jsonLine(const QJsonObject& object);    ///< One of many answers, in one line; handed out at once.
    void bytes(const QByteArray& bytes);         ///< A piece of the answer, as it stands.
    void error(const QString& text);             ///< With the program's name in front.
    /// How far long work is, in one line of a terminal that is written over; nothing elsewhere. Empty text clears it.
    void progress(const QString& text);

    void flush(); ///< Hands out what is still held back.
    /// The same at the end. \return `exit`; Exit::Failed when the answer could not be written whole
    [[nodiscard]] Exit finish(Exit exit);
};

} // namespace vruinfo::tool
