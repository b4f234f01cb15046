// What a command of the tool is: one row of the table that help, usage and dispatch are made from.
#pragma once

#include <cstddef>

#include <QtCore/QString>

namespace vruinfo::tool
{

/// The exit codes. They never change.
enum class Exit : int {
    Done = 0,
    Failed = 1,   ///< It could not be carried out.
    Misuse = 2,   ///< The command line is wrong; nothing was done.
    NotFound = 3, ///< What was asked for is not there.
    Warnings = 4, ///< Of `doctor`: something is not as it should be, but works.
    Errors = 5,   ///< Of `doctor`: something does not work.
};

class Context;

/// Rows of a table that stands elsewhere.
template <typename Row>
class Rows final
{
public:
    constexpr Rows() = default;
    template <std::size_t count>
    constexpr Rows(const Row (&rows)[count]) : m_first(rows), m_count(count)
    {
    } // NOLINT(google-explicit-constructor)

    [[nodiscard]] constexpr const Row* begin() const { return m_first; }
    [[nodiscard]] constexpr const Row* end() const { return m_first + m_count; }
    [[nodiscard]] constexpr std::size_t size() const { return m_count; }
    [[nodiscard]] constexpr bool isEmpty() const { return m_count == 0; }
    constexpr const Row& operator[](std::size_t index) const { return m_first[index]; }

private:
    const Row* m_first = nullptr;
    std::size_t m_count = 0;
};

enum class Need { Required, Optional };

struct Argument {
    const char* name;
    Need need;
    const char* help;
};

/// An option name means one thing throughout the tool: with or without a value, whatever the command.
struct Option {
    const char* name;
    const char* letter; ///< One-letter form; null when there is none.
    const char* value;  ///< Name of its value in help texts; null for a switch.
    const char* help;
};

struct Command {
    const char* name;
    const char* summary;
    Exit (*run)(Context& context);
    Rows<Argument> arguments;   ///< Optional ones last.
    Rows<Option> options;       ///< Besides those that every command has.
    const char* notes;          ///< Further text of the help; empty when there is none.
    Rows<const char*> examples; ///< Without the program's name.
};

inline QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

} // namespace vruinfo::tool
