// What a shell needs to complete this tool's words: a script for it, and the words themselves, which the script asks
// for.

#include "command_table.h"
#include "commands.h"
#include "completion_scripts.h"
#include "store.h"
#include "text.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

constexpr QLatin1Char kSeparator('/');

/// A command line that is being typed: the program's name, finished words, and the word at the cursor.
class TypedLine final
{
public:
    explicit TypedLine(const QStringList& words)
    {
        const Command* command = nullptr;
        for (int i = 1; i < words.size() - 1; ++i) {
            const QString& word = words.at(i);
            if (const Option* const option = optionOf(word)) {
                const bool isSeparate = option->value && !word.contains(QLatin1Char('='));
                m_line.options.insert(text(option->name),
                                      isSeparate ? words.at(++i) : word.section(QLatin1Char('='), 1));
                m_awaited = i == words.size() - 1 ? option : nullptr;
            } else if (!command) {
                command = findCommand(word);
                m_hasCommand = true;
            } else {
                m_line.arguments.append(word);
            }
        }
        m_line.command = command;
        m_current = words.size() > 1 ? words.constLast() : QString();
    }

    [[nodiscard]] const CommandLine& line() const { return m_line; }
    [[nodiscard]] bool hasCommand() const { return m_hasCommand; }
    [[nodiscard]] const QString& current() const { return m_current; }
    [[nodiscard]] const Option* awaited() const { return m_awaited; } ///< The option whose value the cursor is at.
    /// The option whose value is typed behind its "=".
    [[nodiscard]] const Option* optionWithValue() const
    {
        return m_current.contains(QLatin1Char('=')) ? optionOf(m_current) : nullptr;
    }
    [[nodiscard]] QString argumentName() const
    {
        const auto index = static_cast<std::size_t>(m_line.arguments.size());
        return m_line.command && index < m_line.command->arguments.size() ? text(m_line.command->arguments[index].name)
                                                                          : QString();
    }

private:
    [[nodiscard]] static const Option* optionOf(const QString& word)
    {
        const int dashes = word.startsWith(QLatin1String("--")) ? 2 : 1;
        if (word.size() <= dashes || !word.startsWith(QLatin1Char('-')))
            return nullptr;
        const QString name = word.mid(dashes).section(QLatin1Char('='), 0, 0);
        return findOption(name);
    }

    CommandLine m_line;
    bool m_hasCommand = false;
    QString m_current;
    const Option* m_awaited = nullptr;
};

QStringList commandNames()
{
    QStringList names;
    for (const Command& command : commands())
        names.append(text(command.name));
    return names;
}

QStringList optionNames(const Command* command)
{
    QStringList names;
    for (const Option& option : globalOptions())
        names.append(QStringLiteral("--") + text(option.name));
    if (command) {
        for (const Option& option : command->options)
            names.append(QStringLiteral("--") + text(option.name));
    }
    return names;
}

QStringList languageNames()
{
    QStringList names;
    for (int id = 0; id < kVornLanguageCount; ++id)
        names.append(fromWide(VornaLanguage(id).shortName()));
    return names;
}

/// The part of a path up to its last separator, as it was typed.
QString parentOf(const QString& path)
{
    return path.left(path.lastIndexOf(kSeparator) + 1);
}

QStringList pathsBelow(const Context& context, const QString& parent, bool withValues)
{
    const Result<Place> place =
        placeOf(context, parent.isEmpty() ? QString(kSeparator) : parent, TreePath::Kind::Item, Purpose::Look);
    if (!place)
        return {};
    const ItemContent content = readItem(*place);
    QStringList paths;
    for (const QString& item : content.items)
        paths.append(parent + item + kSeparator);
    if (withValues) {
        for (const NamedValue& row : content.values)
            paths.append(parent + row.name);
    }
    return paths;
}

QStringList paths(const Context& context, const TypedLine& typed)
{
    const QString parent = parentOf(typed.current());
    if (parent.isEmpty() && typed.current().startsWith(QLatin1Char('@')))
        return rootSelectors();
    const QStringList itemsOnly = {QStringLiteral("list"), QStringLiteral("tree")};
    const bool withValues = !typed.line().command || !itemsOnly.contains(text(typed.line().command->name));
    QStringList found = pathsBelow(context, parent, withValues);
    return parent.isEmpty() ? rootSelectors() + found : found;
}

QStringList optionValues(const Option& option)
{
    if (text(option.name) == QLatin1String("type"))
        return typeNames();
    return text(option.name) == QLatin1String("language") ? languageNames() : QStringList();
}

QStringList valuesBehind(const Option& option)
{
    QStringList words;
    for (const QString& value : optionValues(option))
        words.append(QStringLiteral("--%1=%2").arg(text(option.name), value));
    return words;
}

/// What could stand at the cursor, whatever stands there already. Nothing where a file's name is wanted: shells know
/// those.
QStringList candidates(const Context& context, const TypedLine& typed)
{
    if (typed.awaited())
        return text(typed.awaited()->value) == QLatin1String("PATH") ? paths(context, typed)
                                                                     : optionValues(*typed.awaited());
    if (const Option* const option = typed.optionWithValue())
        return valuesBehind(*option);
    if (typed.current().startsWith(QLatin1Char('-')))
        return optionNames(typed.line().command);
    if (!typed.hasCommand() || typed.argumentName() == QLatin1String("COMMAND"))
        return commandNames();
    if (typed.argumentName() == QLatin1String("SHELL"))
        return shellNames();
    return typed.argumentName() == QLatin1String("PATH") ? paths(context, typed) : QStringList();
}

Exit printWords(Context& context, const QString& words)
{
    const TypedLine typed(words.split(QLatin1Char('\n')));
    const Context asTyped(typed.line(), context.printer());
    for (const QString& candidate : candidates(asTyped, typed)) {
        if (candidate.startsWith(typed.current()) && !candidate.contains(QLatin1Char('\n')))
            context.printer().line(candidate);
    }
    return Exit::Done;
}

} // namespace

Exit runCompletion(Context& context)
{
    const std::optional<QString> script = completionScript(context.argument(0));
    if (!script)
        return context.fail({Exit::Misuse, QStringLiteral("unknown shell '%1'; there is completion for %2")
                                               .arg(context.argument(0), shellNames().join(QStringLiteral(" and ")))});
    if (const std::optional<QString> words = context.option("words"))
        return printWords(context, *words);
    context.printer().bytes(script->toUtf8());
    return Exit::Done;
}

} // namespace vruinfo::tool
