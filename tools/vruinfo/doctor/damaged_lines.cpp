#include "doctor/damaged_lines.h"

#include <cstring>
#include <optional>

namespace vruinfo::tool::doctor
{
namespace
{

struct Line {
    int number;
    bool isGroup;
    bool hasEquals;
    bool hasBracket; ///< One that closes.

    [[nodiscard]] bool isDamaged() const { return isGroup ? !hasBracket : !hasEquals; }
};

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// Goes through the settings of a file by the settings library's own rules: ";" begins a comment, a line's end in
/// quotes or behind a backslash ends nothing.
class Scanner final
{
public:
    explicit Scanner(const QByteArray& bytes) : m_bytes(bytes)
    {
        if (bytes.startsWith("\xEF\xBB\xBF"))
            m_place = static_cast<int>(std::strlen("\xEF\xBB\xBF"));
    }

    std::optional<Line> next()
    {
        passOverBlanksAndComments();
        if (isAtEnd())
            return std::nullopt;
        Line line{m_number, here() == '[', false, false};
        for (bool isQuoted = false; !isAtEnd() && (isQuoted || !isLineEnd()); step()) {
            line.hasEquals = line.hasEquals || (here() == '=' && !isQuoted);
            line.hasBracket = line.hasBracket || here() == ']';
            if (here() == '"')
                isQuoted = !isQuoted;
            else if (here() == '\\')
                passOverEscaped(line);
        }
        return line;
    }

private:
    [[nodiscard]] bool isAtEnd() const { return m_place >= m_bytes.size(); }
    [[nodiscard]] char here() const { return m_bytes.at(m_place); }
    [[nodiscard]] bool isLineEnd() const { return here() == '\n' || here() == '\r' || here() == ';'; }

    void step()
    {
        m_number += here() == '\n' ? 1 : 0;
        ++m_place;
    }
    /// Goes to the last character that a backslash covers: a line's end may have two. One that closes a group's name
    /// does so there, too.
    void passOverEscaped(Line& line)
    {
        if (m_place + 1 >= m_bytes.size())
            return;
        step();
        line.hasBracket = line.hasBracket || here() == ']';
        const QByteArray pair = m_bytes.mid(m_place, 2);
        if (pair == "\r\n" || pair == "\n\r")
            step();
    }
    void passOverBlanksAndComments()
    {
        while (!isAtEnd() && (isBlank(here()) || here() == ';')) {
            const bool isComment = here() == ';';
            while (isComment && !isAtEnd() && here() != '\n' && here() != '\r')
                step();
            if (!isAtEnd())
                step();
        }
    }

    const QByteArray& m_bytes;
    int m_place = 0;
    int m_number = 1;
};

} // namespace

std::vector<int> damagedLines(const QByteArray& bytes)
{
    std::vector<int> numbers;
    Scanner scanner(bytes);
    while (const std::optional<Line> line = scanner.next()) {
        if (line->isDamaged())
            numbers.push_back(line->number);
    }
    return numbers;
}

} // namespace vruinfo::tool::doctor
