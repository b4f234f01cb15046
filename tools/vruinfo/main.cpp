// vruinfo: product information and settings on the command line.
#include <csignal>
#include <cstdlib>
#include <memory>
#include <new>

#include <QtCore/QTextCodec>

#include "VrPlatformBase/VrPlatformBase.h"
#include "command_line.h"
#include "context.h"
#include "help.h"
#include "printer.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

Result<QStringList> decodedArguments(int count, char** arguments)
{
    QStringList result;
    for (int i = 0; i < count; ++i) {
        const std::optional<QString> argument = fromUtf8(arguments[i]);
        if (!argument && i > 0)
            return Problem{Exit::Misuse, QStringLiteral("Argument %1 is not valid UTF-8.").arg(i)};
        result.append(argument.value_or(QString()));
    }
    return result;
}

Exit dispatch(const CommandLine& line, Printer& printer)
{
    if (line.isSet("version")) {
        printVersion(printer);
        return Exit::Done;
    }
    if (!line.command) {
        printGeneralHelp(printer);
        return Exit::Done;
    }
    if (line.isSet("help")) {
        printCommandHelp(printer, *line.command);
        return Exit::Done;
    }
    Context context(line, printer);
    return line.command->run(context);
}

Exit run(int count, char** arguments, Printer& printer)
{
    const Result<QStringList> decoded = decodedArguments(count, arguments);
    if (!decoded) {
        printer.error(decoded.problem().text);
        return decoded.problem().exit;
    }
    const Result<CommandLine> line = parseCommandLine(*decoded);
    if (!line) {
        printer.error(line.problem().text);
        return line.problem().exit;
    }
    return dispatch(*line, printer);
}

/// Values throw when memory ends.
Exit runGuarded(int count, char** arguments, Printer& printer)
{
    try {
        return run(count, arguments, printer);
    } catch (VrErrorStatus* thrown) { // NOLINT(misc-throw-by-value-catch-by-reference) so they are thrown
        const std::unique_ptr<VrErrorStatus> status(thrown);
        printer.error(QStringLiteral("out of memory (status %1)").arg(status->status()));
        return Exit::Failed;
    } catch (const std::bad_alloc&) {
        printer.error(
            QStringLiteral("out of memory; nothing was changed; `vruinfo doctor` says whether a damaged value "
                           "asks for it"));
        return Exit::Failed;
    }
}

} // namespace
} // namespace vruinfo::tool

int main(int argc, char** argv)
{
    using namespace vruinfo::tool;
    // A file that grows over its limit is a failed write, which is told, and no end of the tool.
    std::signal(SIGXFSZ, SIG_IGN);
    // File names and arguments are UTF-8 here, also where the locale is that of C.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    Printer printer;
    const Exit exit = printer.finish(runGuarded(argc, argv, printer));
    // What is to be kept has been saved by now: looking changes nothing, and a start leaves no trace of itself.
    std::_Exit(static_cast<int>(exit));
}
