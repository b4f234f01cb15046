// Where the tool's words go: answers to standard output, everything else to standard error. Both are UTF-8.
#pragma once

#include <QtCore/QJsonDocument>
#include <QtCore/QString>

#include "command.h"

namespace vruinfo::tool
{

class Printer final
{
public:
    void line(const QString& text);           ///< A line of the answer.
    void json(const QJsonDocument& document); ///< The answer.
    void error(const QString& text);          ///< With the program's name in front.

    /// Hands out what is still held back. \return `exit`; Exit::Failed when the answer could not be written whole
    [[nodiscard]] Exit finish(Exit exit);
};

} // namespace vruinfo::tool
