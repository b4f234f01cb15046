#include "command_line.h"

#include <algorithm>
#include <vector>

#include <QtCore/QCommandLineParser>

#include "command_table.h"

namespace vruinfo::tool
{
namespace
{

constexpr QChar kShield(0); // no argument of a process can hold it

/// A negative number would be taken for an option.
bool looksNegative(const QString& argument)
{
    if (argument.size() < 2 || argument.at(0) != QLatin1Char('-'))
        return false;
    const QString number = argument.mid(1);
    const QChar first = number.at(0);
    const bool isDigit = first >= QLatin1Char('0') && first <= QLatin1Char('9');
    static const QStringList kWords = {QStringLiteral("inf"), QStringLiteral("infinity"), QStringLiteral("nan")};
    return isDigit || first == QLatin1Char('.') || kWords.contains(number, Qt::CaseInsensitive);
}

QStringList shielded(const QStringList& arguments)
{
    QStringList result;
    for (const QString& argument : arguments)
        result.append(looksNegative(argument) ? kShield + argument : argument);
    return result;
}

QString unshielded(const QString& argument)
{
    return argument.startsWith(kShield) ? argument.mid(1) : argument;
}

QCommandLineOption parserOption(const Option& option)
{
    QStringList names(text(option.name));
    if (option.letter)
        names.append(text(option.letter));
    return {names, QString(), option.value ? text(option.value) : QString()};
}

using Options = std::vector<Option>;

/// Appends those that are not there yet.
void append(Options& options, Rows<Option> more)
{
    for (const Option& option : more) {
        const auto hasItsName = [&option](const Option& other) { return text(other.name) == text(option.name); };
        if (std::none_of(options.begin(), options.end(), hasItsName))
            options.push_back(option);
    }
}

/// Those of every command, and those of the one given, or of all where none is given.
Options optionsOf(const Command* given)
{
    Options options(globalOptions().begin(), globalOptions().end());
    for (const Command& command : commands()) {
        if (!given || given == &command)
            append(options, command.options);
    }
    return options;
}

/// One pass over the arguments with a set of options.
class Pass final
{
public:
    Pass(const QStringList& arguments, Options options) : m_options(std::move(options))
    {
        for (const Option& option : m_options)
            m_parser.addOption(parserOption(option));
        m_isRight = m_parser.parse(arguments);
    }
    [[nodiscard]] bool isRight() const { return m_isRight; }
    [[nodiscard]] QString fault() const { return m_parser.errorText(); }
    [[nodiscard]] QStringList positional() const
    {
        QStringList result;
        for (const QString& argument : m_parser.positionalArguments())
            result.append(unshielded(argument));
        return result;
    }
    [[nodiscard]] QMap<QString, QString> given() const
    {
        QMap<QString, QString> result;
        for (const Option& option : m_options) {
            const QString name = text(option.name);
            if (m_parser.isSet(name))
                result.insert(name, option.value ? unshielded(m_parser.value(name)) : QString());
        }
        return result;
    }

private:
    Options m_options;
    QCommandLineParser m_parser;
    bool m_isRight = false;
};

Problem misuse(const QString& fault, const QString& usage)
{
    return {Exit::Misuse, fault + QStringLiteral("\nUsage: ") + usage};
}

QString generalUsage()
{
    return QStringLiteral("%1 COMMAND [OPTION...]; see %1 --help").arg(text(kProgram));
}

bool asksForHelp(const CommandLine& line)
{
    return line.isSet("help") || line.isSet("version");
}

/// What is wrong with the number of arguments; empty when nothing is.
QString countFault(const Command& command, const QStringList& arguments)
{
    const auto given = static_cast<std::size_t>(arguments.size());
    if (given > command.arguments.size())
        return QStringLiteral("Unexpected argument '%1'.")
            .arg(arguments.at(static_cast<int>(command.arguments.size())));
    if (given == command.arguments.size() || command.arguments[given].need == Need::Optional)
        return {};
    return QStringLiteral("%1 is missing.").arg(text(command.arguments[given].name));
}

Result<CommandLine> withoutCommand(const Pass& pass)
{
    CommandLine line;
    line.options = pass.given();
    if (!pass.isRight())
        return misuse(pass.fault(), generalUsage());
    if (!asksForHelp(line))
        return misuse(QStringLiteral("No command is given."), generalUsage());
    return line;
}

} // namespace

Result<CommandLine> parseCommandLine(const QStringList& arguments)
{
    const QStringList safe = shielded(arguments);
    const Pass any(safe, optionsOf(nullptr));
    if (any.positional().isEmpty())
        return withoutCommand(any);
    const QString name = any.positional().constFirst();
    const Command* const command = findCommand(name);
    if (!command)
        return misuse(QStringLiteral("Unknown command '%1'.").arg(name), generalUsage());
    const Pass pass(safe, optionsOf(command));
    CommandLine line{command, pass.positional().mid(1), pass.given()};
    if (!pass.isRight())
        return misuse(pass.fault(), synopsis(*command));
    const QString fault = countFault(*command, line.arguments);
    if (!fault.isEmpty() && !asksForHelp(line))
        return misuse(fault, synopsis(*command));
    return line;
}

} // namespace vruinfo::tool
