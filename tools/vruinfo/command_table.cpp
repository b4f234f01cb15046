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
constexpr const char* kHelpExamples[] = {"help set"};

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
    {"help", "print help about the tool or a command", runHelp,
     kMaybeCommand, {}, "", kHelpExamples},
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
