#include "manual.h"

#include <QtCore/QStringList>

#include "command_table.h"
#include "help_texts.h"

namespace vruinfo::tool
{
namespace
{

constexpr char kDate[] = "2026-11-20";

constexpr char kEnvironment[] = ".TP\n.B HOME\nThe user whose settings these are.\n"
                                ".TP\n.B XDG_CONFIG_HOME\nWhere the settings lie, if not in .config of the home.\n"
                                ".TP\n.B XDG_CONFIG_DIRS\nWhere defaults for all users lie, if not in /etc/xdg.\n"
                                ".TP\n.B NO_COLOR\nNothing is coloured when it is set and not empty.\n";

constexpr char kFiles[] = ".TP\n.I ~/.config/COMPANY/PRODUCT/VERSION/PRODUCT.conf\nThe settings of a release.\n"
                          ".TP\n.I ~/.local/share/HALVIK/VR2D.conf\nThe user's list of installed products.\n"
                          ".TP\n.I VORNA.ini, product.ini\nOf the installation, beside the executable.\n";

/// A line of running text, with what the page's language would take for its own.
QString escaped(QString line)
{
    line.replace(QLatin1Char('\\'), QLatin1String("\\e")).replace(QLatin1Char('-'), QLatin1String("\\-"));
    const bool isControl = line.startsWith(QLatin1Char('.')) || line.startsWith(QLatin1Char('\''));
    return isControl ? QLatin1String("\\&") + line : line;
}

QString escapedLines(const QString& lines)
{
    QString result;
    for (const QString& line : lines.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        result += escaped(line) + QLatin1Char('\n');
    return result;
}

QString section(const char* title)
{
    return QStringLiteral(".SH %1\n").arg(text(title));
}

QString bold(const QString& words)
{
    return QStringLiteral("\\fB%1\\fR").arg(escaped(words));
}

QString italic(const QString& words)
{
    return QStringLiteral("\\fI%1\\fR").arg(escaped(words));
}

/// Lines that stand as they are.
QString asTheyAre(const QString& lines)
{
    return QStringLiteral(".nf\n.RS\n%1.RE\n.fi\n").arg(escapedLines(lines));
}

/// Running text, with its indented lines as they are.
QString block(const char* lines)
{
    QString result;
    QString laidOut;
    for (const QString& line : text(lines).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const bool isIndented = line.startsWith(QLatin1String("  "));
        if (!isIndented && !laidOut.isEmpty())
            result += asTheyAre(laidOut);
        laidOut = isIndented ? laidOut + line.mid(2) + QLatin1Char('\n') : QString();
        result += isIndented ? QString() : escapedLines(line);
    }
    return QStringLiteral(".PP\n") + result + (laidOut.isEmpty() ? QString() : asTheyAre(laidOut));
}

QString options(Rows<Option> rows)
{
    QString result;
    for (const Option& option : rows) {
        const QString letter =
            option.letter ? bold(QLatin1Char('-') + text(option.letter)) + QLatin1String(", ") : QString();
        const QString value = option.value ? QLatin1Char(' ') + italic(text(option.value)) : QString();
        result += QStringLiteral(".TP\n%1%2%3\n%4\n")
                      .arg(letter, bold(QLatin1String("--") + text(option.name)), value, escaped(text(option.help)));
    }
    return result;
}

QString arguments(Rows<Argument> rows)
{
    QString result;
    for (const Argument& argument : rows)
        result += QStringLiteral(".TP\n%1\n%2\n").arg(italic(text(argument.name)), escaped(text(argument.help)));
    return result;
}

QString examples(const Command& command)
{
    QString lines;
    for (const char* const example : command.examples)
        lines += text(kProgram) + QLatin1Char(' ') + text(example) + QLatin1Char('\n');
    return QStringLiteral(".PP\n") + asTheyAre(lines);
}

QString commandPart(const Command& command)
{
    QString part = QStringLiteral(".SS %1\n").arg(escaped(synopsis(command)));
    QString summary = text(command.summary);
    summary[0] = summary.at(0).toUpper();
    part += escaped(summary) + QStringLiteral(".\n") + arguments(command.arguments) + options(command.options);
    if (*command.notes)
        part += block(command.notes);
    return part + examples(command);
}

QString commandParts()
{
    QString parts;
    for (const Command& command : commands())
        parts += commandPart(command);
    return parts;
}

/// A text whose first line is a heading, which the section has already.
QString withoutHeading(const char* lines)
{
    return asTheyAre(text(lines).section(QLatin1Char('\n'), 1));
}

} // namespace

QString manualPage()
{
    const QString program = text(kProgram);
    return QStringLiteral(".TH %1 1 %2 \"%3 %4\"\n")
               .arg(program.toUpper(), text(kDate), program, text(VRUINFO_VERSION)) +
           section("NAME") + program + QStringLiteral(" \\- product information and settings of an application\n") +
           section("SYNOPSIS") +
           QStringLiteral("%1 %2 [%3...] [%4...]\n")
               .arg(bold(program), italic(QStringLiteral("COMMAND")), italic(QStringLiteral("ARGUMENT")),
                    italic(QStringLiteral("OPTION"))) +
           section("DESCRIPTION") + escapedLines(text(aboutText())) + section("COMMANDS") + commandParts() +
           section("OPTIONS OF EVERY COMMAND") + options(globalOptions()) + section("SETTINGS TREE") +
           withoutHeading(treePathsText()) + section("EXIT STATUS") + withoutHeading(exitCodesText()) +
           section("ENVIRONMENT") + text(kEnvironment) + section("FILES") + text(kFiles);
}

} // namespace vruinfo::tool
