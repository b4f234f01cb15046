// What a command is given: its arguments and options, a printer, and the start of the library.
#pragma once

#include <optional>

#include "command_line.h"
#include "printer.h"
#include "result.h"

namespace vruinfo::tool
{

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

    /// Starts the library with the identity options. A command does this once its arguments are known to be right,
    /// since a start is written to the settings. \return nothing when it worked
    [[nodiscard]] std::optional<Problem> start() const;

    /// Tells what went wrong. \return its exit code
    [[nodiscard]] Exit fail(const Problem& problem) const;

private:
    const CommandLine& m_line;
    Printer& m_printer;
};

} // namespace vruinfo::tool
