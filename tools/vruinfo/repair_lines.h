// A settings file line by line: as the settings library takes its lines, and as they stand.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <QtCore/QByteArray>

namespace vruinfo::tool
{

/// What the settings library takes for one line: a text in quotes, and what a backslash stands before, may go over the
/// ends of several.
struct SettingsLine {
    int number;      ///< Of its first line in the file, which begins with 1.
    int begin;       ///< Of its first character.
    int end;         ///< Behind its last one.
    bool isGroup;    ///< Begins with "[".
    bool hasEquals;  ///< One outside quotes.
    bool hasBracket; ///< One that closes.

    /// Neither a group's beginning nor a key with a value. The settings library says so, too.
    [[nodiscard]] bool isDamaged() const { return isGroup ? !hasBracket : !hasEquals; }
};

/// Goes through the lines of a file by the settings library's own rules: ";" begins a comment, a line's end in quotes
/// or behind a backslash ends nothing.
class LineScanner final
{
public:
    explicit LineScanner(const QByteArray& bytes);

    /// Passes over blanks and comments. Nothing at the end.
    [[nodiscard]] std::optional<SettingsLine> next();
    /// Goes on from a place behind the line's beginning.
    void continueAt(const SettingsLine& line, int place);

private:
    [[nodiscard]] bool isAtEnd() const { return m_place >= m_bytes.size(); }
    [[nodiscard]] char here() const { return m_bytes.at(m_place); }
    [[nodiscard]] bool isLineEnd() const { return here() == '\n' || here() == '\r' || here() == ';'; }
    [[nodiscard]] bool goToNextTelling();
    void step();
    void passOverEscaped(SettingsLine& line);
    void passOverBlanksAndComments();

    const QByteArray m_bytes;
    int m_place = 0;
    int m_number = 1;
};

/// Whether a file begins with a byte-order mark.
[[nodiscard]] bool hasMark(const QByteArray& bytes);

/// Whether lines that are settings are taken for a part of this one: a text in quotes that does not end, or a backslash
/// before the line's end.
[[nodiscard]] bool swallowsSettings(const QByteArray& bytes, const SettingsLine& line);

/// A line that is not as it was.
struct LineNote {
    int number;
    QByteArray text; ///< As it stood.
};
using LineNotes = std::vector<LineNote>;

/// The file with each line that can be read in a form that the settings library reads. Everything else in it is as it
/// was, comments, too.
struct MendedLines {
    QByteArray bytes;
    bool hadMark = false;   ///< A byte-order mark, which the settings library takes for a line, or a part of one.
    LineNotes closed;       ///< Groups and texts whose end was missing: they end with their line.
    LineNotes broughtBack;  ///< Had been taken for a part of another one.
    LineNotes lost;         ///< Are no settings, or of no use, and gone.
    QByteArray closedAlone; ///< The keys among those that were closed, in their groups, and nothing else.

    [[nodiscard]] bool isChanged() const { return hadMark || !closed.empty() || !broughtBack.empty() || !lost.empty(); }
};

/// Whether a line alone is of use.
using LineTest = std::function<bool(const QByteArray& line)>;

[[nodiscard]] MendedLines mendedLines(const QByteArray& bytes, const LineTest& isOfUse);

/// The file with its last line ended, so that what is put behind it is not taken for a part of that.
[[nodiscard]] QByteArray endedText(const QByteArray& bytes);

/// The lines that begin groups, each with something behind it.
[[nodiscard]] QByteArray groupLines(const QByteArray& bytes, const char* behindEach);

} // namespace vruinfo::tool
