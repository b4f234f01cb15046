#include "command_table.h"

#include <algorithm>

#include "commands.h"

namespace vruinfo::tool
{
namespace
{

constexpr Argument kPath{"PATH", Need::Required, "a place in the settings tree, see `vruinfo --help`"};
constexpr Argument kPathOnly[] = {kPath};
constexpr Argument kPathAndValue[] = {kPath, {"VALUE", Need::Required, "the new value"}};
constexpr Argument kMaybePath[] = {
    {"PATH", Need::Optional, "a place in the settings tree; the whole of it if not given"}};
constexpr Argument kTextAndPath[] = {{"TEXT", Need::Required, "what to look for"}, kMaybePath[0]};
constexpr Argument kFile[] = {{"FILE", Need::Required, "an export; - reads standard input"}};
constexpr Argument kTwoSides[] = {{"A", Need::Required, "an export; - reads standard input"},
                                  {"B", Need::Optional, "another export; the settings themselves if not given"}};
constexpr Argument kMaybeModule[] = {{"NAME", Need::Optional, "base name of a module, or the name of its file"}};
constexpr Argument kShell[] = {{"SHELL", Need::Required, "bash or zsh"}};
constexpr Argument kMaybeCommand[] = {{"COMMAND", Need::Optional, "the command to explain"}};

constexpr Option kGlobalOptions[] = {
    {"company", nullptr, "NAME", "the company to start as"},
    {"product", nullptr, "NAME", "the product to start as"},
    {"language", nullptr, "NAME", "the language to start in, by its short name such as en-US"},
    {"profile", nullptr, "NAME", "the profile to start with"},
    {"json", nullptr, nullptr, "print the answer as JSON"},
    {"help", "h", nullptr, "print help, about a command if one is named"},
    {"version", nullptr, nullptr, "print the version"},
};
constexpr Option kTypeOption[] = {{"type", nullptr, "TYPE", "int32, int64, double, binary or string"}};
constexpr Option kRecursiveOption[] = {{"recursive", nullptr, nullptr, "remove what lies below PATH, too"}};

constexpr Option kFindOptions[] = {
    {"names", nullptr, nullptr, "look at names only"},
    {"values", nullptr, nullptr, "look at values only"},
    {"match-case", nullptr, nullptr, "tell capital and small letters apart"},
};
constexpr Option kExportOptions[] = {{"output", "o", "FILE", "write to a file instead of standard output"}};
constexpr Option kImportOptions[] = {
    {"at", nullptr, "PATH", "bring it to another place than it was exported from"},
    {"merge", nullptr, nullptr, "keep what stands there and is not in FILE"},
    {"dry-run", nullptr, nullptr, "only print what would change"},
};
constexpr Option kDiffOptions[] = {
    {"at", nullptr, "PATH", "another place than it was exported from; without B only"},
    {"exit-code", nullptr, nullptr, "end with exit code 3 when the two differ"},
};
constexpr Option kDoctorOptions[] = {
    {"repair", nullptr, nullptr, "repair a damaged settings file, and keep the damaged one"},
    {"dry-run", nullptr, nullptr, "only print what would change"},
};
constexpr Option kCompletionOptions[] = {
    {"words", nullptr, "TEXT", "print what could stand in the place of the last of these words, one a line"}};
constexpr Option kHelpOptions[] = {{"man", nullptr, nullptr, "print the source of the manual page"}};
constexpr Option kWatchOptions[] = {
    {"for", nullptr, "SECONDS", "end after that time"},
    {"count", nullptr, "NUMBER", "end after that many changes"},
};

constexpr char kLanguagesNotes[] = "The current language is marked with \"*\".\n";
constexpr char kItemNotes[] = "The path \"/\" is the top of the tree.\n";

constexpr char kGetNotes[] =
    "Prints the value and nothing else. Numbers are decimal, bytes are hexadecimal. A value that was written as a\n"
    "double is kept as its 8 bytes: --type double prints such bytes as a number. With --type, a value of another type\n"
    "is a failure (exit code 1). JSON has int64 as text, since its numbers are too short for it.\n";

constexpr char kSetNotes[] =
    "Makes the value, or replaces it whatever its type, and says what was there before. The types:\n"
    "  int32   a whole number from -2147483648 to 2147483647\n"
    "  int64   a whole number from -9223372036854775808 to 9223372036854775807\n"
    "  double  a number with \".\" as decimal point, such as 2.5 or -1e-3; also inf and nan\n"
    "  binary  an even number of hexadecimal digits; the store appends four bytes whenever it writes such a value\n"
    "  string  a text (this is the default)\n"
    "A negative number needs no \"--\" before it; another value that begins with \"-\" does.\n";

constexpr char kRmNotes[] =
    "Removes a value, or with --recursive whatever lies at PATH and below it, and says what was removed. Where\n"
    "something lies below PATH and --recursive is not given, nothing is removed (exit code 1).\n";

constexpr const char* kIdentityExamples[] = {"identity", "identity --language de-DE --json"};
constexpr const char* kPathsExamples[] = {"paths"};
constexpr const char* kLanguagesExamples[] = {"languages"};
constexpr const char* kGetExamples[] = {"get @settings/Grid/Visible", "get @settings/Grid/Spacing --type double"};
constexpr const char* kSetExamples[] = {"set @settings/Grid/Visible 1 --type int32",
                                        "set @profile/Title \"My drawings\""};
constexpr const char* kListExamples[] = {"list @settings", "list Software/HALVIK"};
constexpr const char* kTreeExamples[] = {"tree @product"};
constexpr const char* kRmExamples[] = {"rm @settings/Grid/Visible", "rm @settings/Grid --recursive"};
constexpr char kExistsNotes[] =
    "Prints \"value\", \"item\", \"value and item\" or \"absent\"; absent is exit code 3, without an error message.\n";
constexpr char kFindNotes[] =
    "Prints each value whose path below PATH, or whose text, has TEXT in it, and each item that has it in its name.\n"
    "Capital and small letters are the same unless --match-case is given.\n";
constexpr char kExportNotes[] =
    "Writes the user's own values, without the machine's defaults. The same values give the same bytes: one JSON\n"
    "object with a value in each line, sorted by path.\n"
    "  {\"format\":\"vruinfo-settings\",\"version\":1,\"path\":\"Demo\",\"values\":[\n"
    "  {\"path\":\"Grid/Spacing\",\"type\":\"int32\",\"value\":-25}\n"
    "  ]}\n"
    "The path in the first line is that of the place, / for the top of the tree. That of a value goes on from there,\n"
    "and is empty for the value at the place itself. An int64 is text; a double has its bits, too, the highest first;\n"
    "bytes are hexadecimal. The key stored has what the settings file has, where type and value do not tell all. Keys\n"
    "that end with Units have texts that JSON cannot hold, as UTF-16 units.\n"
    "A file is written whole or not at all; the file - is standard output. With --json, nothing is said about it.\n";
constexpr char kImportNotes[] =
    "Values at PATH and below it that are not in FILE go, unless --merge is given. Everything is checked first: when\n"
    "anything in FILE is wrong, the message tells its line and column, and nothing is changed. The settings file is\n"
    "replaced at once, so that it has the old or the new values at any moment, and a dated copy of the old one stays\n"
    "beside it. When there is nothing to change, no file is touched. A value may be written by hand, with its path,\n"
    "type and value only.\n";
constexpr char kDiffNotes[] =
    "Prints what turns A into B, a line a value: + comes, - goes, ~ changes; nothing when they are the same.\n"
    "Exports of different places are compared by what lies below each.\n";
constexpr char kWatchNotes[] =
    "Prints a line for each value that comes (+), goes (-) or changes (~) in the settings file, whoever writes it,\n"
    "with the time of day in front; with --json, an object a line. Ends with --for, --count, Ctrl+C or SIGTERM (exit\n"
    "code 0). What is not in the file yet is not seen: an application writes its changes back a moment later.\n";
constexpr char kDoctorNotes[] =
    "Checks the directory of this program and what the user has: INI files, languages, a start (tried in a process of\n"
    "its own), the partner's brand, settings file and values, products list, directories, program files. Each finding\n"
    "has a severity, an id that never changes, what it is about, what it means and a remedy. Nothing is changed: a "
    "lock\n"
    "file that was left behind stays, too. The severities, and the exit code that the worst of them gives:\n"
    "  note     good to know (0)\n"
    "  warning  not as it should be, but the application works (4)\n"
    "  error    something does not work (5)\n"
    "\n"
    "With --repair, only the settings file is looked at. Where the settings library reads it as damaged, or a text "
    "that\n"
    "does not end takes settings behind it along, the damaged file gets a dated name beside it "
    "(FILE.DATE-TIME.damaged),\n"
    "and a whole file with everything that can be read takes its place in one step; a file that is not damaged stays "
    "as\n"
    "it is. A symbolic link is followed. Each line that is not as it was is told with its number. Exit code 0 when\n"
    "nothing is damaged or nothing was lost, 4 when lines are lost, 1 when the file could not be read or written: "
    "then\n"
    "nothing was changed. With --dry-run nothing is changed in any case, and the code is the same.\n";
constexpr char kFirstRunNotes[] =
    "A real start: what it remembers stays in the settings, so first-run with --language or --profile is how the next\n"
    "start gets another language or profile. Then the default keys are written, and this release is entered into the\n"
    "user's products list. Prints each change. Exit code 1 when a step failed; the list is left alone while the\n"
    "settings file cannot be written.\n";
constexpr char kProductsNotes[] =
    "Each row tells whether the product's location is still there, and whether it is this installation. An entry that\n"
    "is only a name is incomplete. Without a list, the exit code is 3.\n";
constexpr char kModulesNotes[] =
    "Prints the modules that the product loads by itself, with the file lib<NAME>.so or <NAME>.so in the program\n"
    "directory, and which of the product's own libraries a start loads, and from where. With NAME, tells whether that\n"
    "is one of the modules (any case; exit code 3 when not); of a file name such as lib/libVrPlot.so, the base name\n"
    "VrPlot is taken.\n";
constexpr char kVersionNotes[] = "No start is made: the product is the one that the library knows without.\n";
constexpr char kCompletionNotes[] =
    "Commands, options and names in the settings tree are completed. For bash, read the script where ~/.bashrc is "
    "read,\n"
    "  source <(vruinfo completion bash)\n"
    "or put it into /usr/share/bash-completion/completions/vruinfo. For zsh, put it as _vruinfo into a directory of "
    "$fpath.\n"
    "The scripts ask the tool itself, with --words: the words of the line so far, a newline between them.\n";
constexpr const char* kExistsExamples[] = {"exists @settings/Grid"};
constexpr const char* kFindExamples[] = {"find grid", "find 0.125 @settings --values",
                                         "find Grid / --names --match-case"};
constexpr const char* kExportExamples[] = {"export @settings -o settings.json", "export / > everything.json"};
constexpr const char* kImportExamples[] = {"import settings.json --dry-run", "import settings.json --at @settings"};
constexpr const char* kDiffExamples[] = {"diff settings.json", "diff before.json after.json"};
constexpr const char* kWatchExamples[] = {"watch --for 5", "watch @settings --count 1 --for 0.5 --json"};
constexpr const char* kDoctorExamples[] = {"doctor", "doctor --language de-DE", "doctor --json",
                                           "doctor --repair --dry-run"};
constexpr const char* kFirstRunExamples[] = {"first-run", "first-run --language de-DE"};
constexpr const char* kProductsExamples[] = {"products", "products --json"};
constexpr const char* kModulesExamples[] = {"modules", "modules VrPlot", "modules lib/libVrPlot.so"};
constexpr const char* kVersionExamples[] = {"version", "version --json"};
constexpr const char* kCompletionExamples[] = {"completion bash", "completion zsh > _vruinfo"};
constexpr const char* kHelpExamples[] = {"help set", "help --man > vruinfo.1"};

// clang-format off
constexpr Command kCommands[] = {
    {"identity", "print who the application starts as, and where each piece came from", runIdentity,
     {}, {}, "", kIdentityExamples},
    {"paths", "print where program and user data lie, and what of it exists", runPaths,
     {}, {}, "", kPathsExamples},
    {"languages", "print the languages: which are installed, which is current", runLanguages,
     {}, {}, kLanguagesNotes, kLanguagesExamples},
    {"get", "print a value of the settings tree", runGet,
     kPathOnly, kTypeOption, kGetNotes, kGetExamples},
    {"set", "write a value of the settings tree", runSet,
     kPathAndValue, kTypeOption, kSetNotes, kSetExamples},
    {"list", "print an item of the settings tree: its sub-items and its values", runList,
     kPathOnly, {}, kItemNotes, kListExamples},
    {"tree", "print an item of the settings tree with everything below it", runTree,
     kPathOnly, {}, kItemNotes, kTreeExamples},
    {"rm", "remove a value, or an item with everything below it", runRm,
     kPathOnly, kRecursiveOption, kRmNotes, kRmExamples},
    {"exists", "tell whether there is a value or an item", runExists,
     kPathOnly, {}, kExistsNotes, kExistsExamples},
    {"find", "find names and values that hold a text", runFind,
     kTextAndPath, kFindOptions, kFindNotes, kFindExamples},
    {"export", "write everything at a place and below it as JSON", runExport,
     kMaybePath, kExportOptions, kExportNotes, kExportExamples},
    {"import", "make a place what an export has", runImport,
     kFile, kImportOptions, kImportNotes, kImportExamples},
    {"diff", "compare two exports, or an export and the settings", runDiff,
     kTwoSides, kDiffOptions, kDiffNotes, kDiffExamples},
    {"watch", "print changes of the settings file as they happen", runWatch,
     kMaybePath, kWatchOptions, kWatchNotes, kWatchExamples},
    {"doctor", "check the installation and the user's state", runDoctor,
     {}, kDoctorOptions, kDoctorNotes, kDoctorExamples},
    {"first-run", "write what an application writes when it runs for the first time", runFirstRun,
     {}, {}, kFirstRunNotes, kFirstRunExamples},
    {"products", "print the user's list of installed products", runProducts,
     {}, {}, kProductsNotes, kProductsExamples},
    {"modules", "print the product's own modules and which are installed", runModules,
     kMaybeModule, {}, kModulesNotes, kModulesExamples},
    {"version", "print which build and release this is", runVersion,
     {}, {}, kVersionNotes, kVersionExamples},
    {"completion", "print what makes a shell complete this tool's words", runCompletion,
     kShell, kCompletionOptions, kCompletionNotes, kCompletionExamples},
    {"help", "print help about the tool or a command", runHelp,
     kMaybeCommand, kHelpOptions, "", kHelpExamples},
};
// clang-format on

} // namespace

Rows<Option> globalOptions()
{
    return kGlobalOptions;
}

Rows<Command> commands()
{
    return kCommands;
}

const Command* findCommand(const QString& name)
{
    const auto* const found = std::find_if(commands().begin(), commands().end(),
                                           [&name](const Command& command) { return text(command.name) == name; });
    return found == commands().end() ? nullptr : found;
}

const Option* findOption(const QString& name)
{
    const auto isIt = [&name](const Option& option) {
        return text(option.name) == name || (option.letter && text(option.letter) == name);
    };
    const auto* const global = std::find_if(globalOptions().begin(), globalOptions().end(), isIt);
    if (global != globalOptions().end())
        return global;
    for (const Command& command : commands()) {
        const auto* const own = std::find_if(command.options.begin(), command.options.end(), isIt);
        if (own != command.options.end())
            return own;
    }
    return nullptr;
}

QString synopsis(const Command& command)
{
    QString line = text(kProgram) + QLatin1Char(' ') + text(command.name);
    for (const Argument& argument : command.arguments) {
        const bool isRequired = argument.need == Need::Required;
        line += (isRequired ? QStringLiteral(" %1") : QStringLiteral(" [%1]")).arg(text(argument.name));
    }
    for (const Option& option : command.options) {
        const QString value = option.value ? QLatin1Char(' ') + text(option.value) : QString();
        line += QStringLiteral(" [--%1%2]").arg(text(option.name), value);
    }
    return line;
}

} // namespace vruinfo::tool
