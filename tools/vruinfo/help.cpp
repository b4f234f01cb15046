#include "help.h"

#include "VrUInfo/Naming.h"
#include "command_table.h"
#include "commands.h"
#include "context.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr int kNameWidth = 20;

constexpr char kAbout[] =
    "Shows and changes what the product-information library knows. The tool belongs into the program directory of an\n"
    "application, beside its executable: that directory is the installation it tells about. Running it is a start "
    "like\n"
    "that of the application, so product and language are remembered for the next start.\n";

constexpr char kTreePaths[] =
    "Settings tree:\n"
    "  PATH is a key path from the top, with \"/\" (or \"\\\") between its parts, such as\n"
    "  Software/HALVIK/VORNA/2026/CurVer, or begins with one of the roots\n"
    "    @product       Software/<company>/<product>\n"
    "    @version       @product/<version>\n"
    "    @language      @version/<language>\n"
    "    @profiles      @language/Profiles\n"
    "    @profile       @profiles/<current profile>\n"
    "    @applications  @language/Applications\n"
    "    @recent        @language/Recent File List\n"
    "    @settings      @language/Settings\n"
    "    @userconfig    @settings/UserConfig\n"
    "  For a value, the last part is its name. A value whose name is empty or holds a separator cannot be addressed.\n";

constexpr char kExitCodes[] = "Exit codes:\n"
                              "  0  done\n"
                              "  1  failed\n"
                              "  2  wrong command line, nothing was done\n"
                              "  3  not found\n";

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
    printText(printer, kAbout);
    printer.line(QStringLiteral("\nCommands:"));
    for (const Command& command : commands())
        printRow(printer, text(command.name), command.summary);
    printer.line(QStringLiteral("\nOptions of every command:"));
    printOptions(printer, globalOptions());
    printer.line(QString());
    printText(printer, kTreePaths);
    printer.line(QString());
    printText(printer, kExitCodes);
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
    printText(printer, kExitCodes);
}

void printVersion(Printer& printer)
{
    printer.line(QStringLiteral("%1 %2, release %3")
                     .arg(text(kProgram), text(VRUINFO_VERSION), fromWide(GetVornProgramVersionString())));
}

Exit runHelp(Context& context)
{
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
