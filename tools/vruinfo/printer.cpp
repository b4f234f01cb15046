#include "printer.h"

#include <cstdio>

#include "command_table.h"

namespace vruinfo::tool
{
namespace
{

void write(std::FILE* stream, const QByteArray& bytes)
{
    // A failure stays noted in the stream, and is asked for at the end.
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

} // namespace

void Printer::line(const QString& text)
{
    write(stdout, text.toUtf8() + '\n');
}

void Printer::json(const QJsonDocument& document)
{
    write(stdout, document.toJson(QJsonDocument::Indented));
}

void Printer::error(const QString& text)
{
    write(stderr, QByteArray(kProgram) + ": " + text.toUtf8() + '\n');
}

Exit Printer::finish(Exit exit)
{
    const bool isFlushed = std::fflush(stdout) == 0;
    if (isFlushed && std::ferror(stdout) == 0)
        return exit;
    error(QStringLiteral("the answer could not be written to standard output"));
    return Exit::Failed;
}

} // namespace vruinfo::tool
