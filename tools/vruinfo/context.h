// What a command is given: its arguments and options, a printer, and the start of the library.
#pragma once

#include <optional>

#include "command_line.h"
#include "printer.h"
#include "result.h"

namespace vruinfo::tool
{

/// What a command starts the library for.
enum class Purpose {
    Look,   ///< To see what a start would do. A question of the start is answered with yes, and told.
    Change, ///< To change something that depends on the start. A question is answered with no, which ends the process.
    Run,    ///< As the application: what the start remembers stays in the settings.
};

class Context final
{
public:
    Context(const CommandLine& line, Printer& printer) : m_line(line), m_printer(printer) {}

    [[nodiscard]] Printer& printer() const { return m_printer; }
    [[nodiscard]] bool hasArgument(int index) const { return index < m_line.arguments.size(); }
    [[nodiscard]] const QString& argument(int index) const { return m_line.arguments.at(index); }
    [[nodiscard]] bool isSet(const char* option) const { return m_line.isSet(option); }
    [[nodiscard]] std::optional<QString> option(const char* name) const; ///< Nothing when not given.
    [[nodiscard]] bool wantsJson() const { return isSet("json"); }

    /// Opens the settings of the identity options, without a start. Looking leaves a lock file beside them alone;
    /// otherwise it counts as left behind, and goes.
    void openSettings(Purpose purpose) const;
    /// Starts the library with the identity options. What the start remembers is in memory only: it reaches the file
    /// with `saveChanges`, or not at all. \return nothing when it worked
    [[nodiscard]] std::optional<Problem> start(Purpose purpose) const;

    /// Tells what went wrong. \return its exit code
    [[nodiscard]] Exit fail(const Problem& problem) const;

private:
    const CommandLine& m_line;
    Printer& m_printer;
};

} // namespace vruinfo::tool
