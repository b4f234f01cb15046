#include "help.h"

#include "VrUInfo/Naming.h"
#include "command_table.h"
#include "commands.h"
#include "context.h"
#include "help_texts.h"
#include "manual.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr int kNameWidth = 20;

void printText(Printer& printer, const char* lines)
{
    const QString whole = text(lines);
    for (const QString& line : whole.left(whole.size() - 1).split(QLatin1Char('\n')))
        printer.line(line);
}

void printRow(Printer& printer, const QString& name, const char* help)
{
    printer.line(QStringLiteral("  %1%2").arg(padded(name, kNameWidth), text(help)));
}

void printOptions(Printer& printer, Rows<Option> options)
{
    for (const Option& option : options) {
        const QString letter = option.letter ? QStringLiteral("-%1, ").arg(text(option.letter)) : QString();
        const QString value = option.value ? QLatin1Char(' ') + text(option.value) : QString();
        printRow(printer, letter + QStringLiteral("--") + text(option.name) + value, option.help);
    }
}

void printArguments(Printer& printer, const Command& command)
{
    if (command.arguments.isEmpty() && command.options.isEmpty())
        return;
    printer.line(QString());
    for (const Argument& argument : command.arguments)
        printRow(printer, text(argument.name), argument.help);
    printOptions(printer, command.options);
}

void printExamples(Printer& printer, const Command& command)
{
    printer.line(QStringLiteral("\nExamples:"));
    for (const char* const example : command.examples)
        printer.line(QStringLiteral("  %1 %2").arg(text(kProgram), text(example)));
}

} // namespace

void printGeneralHelp(Printer& printer)
{
    printer.line(QStringLiteral("Usage: %1 COMMAND [ARGUMENT...] [OPTION...]\n").arg(text(kProgram)));
    printText(printer, aboutText());
    printer.line(QStringLiteral("\nCommands:"));
    for (const Command& command : commands())
        printRow(printer, text(command.name), command.summary);
    printer.line(QStringLiteral("\nOptions of every command:"));
    printOptions(printer, globalOptions());
    printer.line(QString());
    printText(printer, treePathsText());
    printer.line(QString());
    printText(printer, exitCodesText());
}

void printCommandHelp(Printer& printer, const Command& command)
{
    printer.line(QStringLiteral("Usage: %1\n").arg(synopsis(command)));
    printer.line(QStringLiteral("%1: %2").arg(text(command.name), text(command.summary)));
    printArguments(printer, command);
    if (*command.notes) {
        printer.line(QString());
        printText(printer, command.notes);
    }
    printer.line(QStringLiteral("\nOptions of every command:"));
    printOptions(printer, globalOptions());
    printExamples(printer, command);
    printer.line(QString());
    printText(printer, exitCodesText());
}

void printVersion(Printer& printer)
{
    printer.line(QStringLiteral("%1 %2, release %3")
                     .arg(text(kProgram), text(VRUINFO_VERSION), fromWide(GetVornProgramVersionString())));
}

Exit runHelp(Context& context)
{
    if (context.isSet("man")) {
        context.printer().bytes(manualPage().toUtf8());
        return Exit::Done;
    }
    if (!context.hasArgument(0)) {
        printGeneralHelp(context.printer());
        return Exit::Done;
    }
    const Command* const command = findCommand(context.argument(0));
    if (!command)
        return context.fail({Exit::Misuse, QStringLiteral("Unknown command '%1'.").arg(context.argument(0))});
    printCommandHelp(context.printer(), *command);
    return Exit::Done;
}

} // namespace vruinfo::tool
