#include "printer.h"

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

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

bool isSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value && *value;
}

bool isColourful()
{
    static const bool kIs = isatty(STDOUT_FILENO) == 1 && !isSet("NO_COLOR") && qgetenv("TERM") != "dumb";
    return kIs;
}

const char* colourOf(Style style)
{
    switch (style) {
    case Style::Heading:
        return "\033[1m";
    case Style::Added:
    case Style::Good:
        return "\033[32m";
    case Style::Removed:
    case Style::Bad:
        return "\033[31m";
    case Style::Changed:
    case Style::Warning:
        return "\033[33m";
    default:
        return "";
    }
}

} // namespace

void Printer::line(const QString& text)
{
    write(stdout, text.toUtf8() + '\n');
}

void Printer::line(Style style, const QString& text)
{
    if (style == Style::Plain || !isColourful())
        return line(text);
    write(stdout, colourOf(style) + text.toUtf8() + "\033[0m\n");
}

void Printer::json(const QJsonDocument& document)
{
    write(stdout, document.toJson(QJsonDocument::Indented));
}

void Printer::jsonLine(const QJsonObject& object)
{
    write(stdout, QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
    flush();
}

void Printer::bytes(const QByteArray& bytes)
{
    write(stdout, bytes);
}

void Printer::error(const QString& text)
{
    write(stderr, QByteArray(kProgram) + ": " + text.toUtf8() + '\n');
}

void Printer::progress(const QString& text)
{
    if (isatty(STDERR_FILENO) == 1)
        write(stderr, "\r\033[K" + text.toUtf8());
}

void Printer::flush()
{
    std::fflush(stdout);
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
