#include "repair_lines.h"

#include <algorithm>
#include <cstring>

namespace vruinfo::tool
{
namespace
{

constexpr char kMark[] = "\xEF\xBB\xBF";
constexpr int kMarkLength = 3;
constexpr char kLineEnds[] = "\r\n";
constexpr char kTelling[] = "=]\"\\\r\n;"; // what says something about a line or ends it

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool endsLine(char c)
{
    return c == '\n' || c == '\r';
}

/// Where the first of some characters stands, at a place or behind it; the end when there is none.
int firstOf(const char* characters, const QByteArray& bytes, int place)
{
    for (; place < bytes.size(); ++place) {
        place += static_cast<int>(std::strcspn(bytes.constData() + place, characters));
        if (bytes.constData()[place] != '\0') // where the C library's search ends, and none of the characters
            break;
    }
    return std::min(place, bytes.size());
}

/// Where a line's first end stands; the line's own end when it has none.
int firstEnd(const QByteArray& bytes, const SettingsLine& line)
{
    return std::min(firstOf(kLineEnds, bytes, line.begin), line.end);
}

/// What stands behind the "=" of a line, without blanks and the quote in front.
QByteArray valueText(const QByteArray& text)
{
    const QByteArray value = text.mid(text.indexOf('=') + 1).trimmed();
    return value.startsWith('"') ? value.mid(1) : value;
}

/// A value of another kind than text, which nobody writes by hand.
bool isOfOtherKind(const QByteArray& value)
{
    return value.startsWith('@');
}

/// A text with a tag, or a value of another kind: what programs write, and nobody within a text of several lines.
bool isStoredForm(const QByteArray& value)
{
    const bool isTagged = value.size() > 1 && value.at(0) >= '0' && value.at(0) <= '9' && value.at(1) == '$';
    return isTagged || isOfOtherKind(value);
}

enum class Certainty { Sure, Likely };

/// Whether a line alone, up to its first end, is a setting or a group.
bool isSetting(const QByteArray& text, Certainty wanted)
{
    const std::optional<SettingsLine> line = LineScanner(text).next();
    if (!line || line->isDamaged())
        return false;
    if (line->isGroup)
        return text.trimmed().endsWith(']');
    return wanted == Certainty::Likely || isStoredForm(valueText(text));
}

/// A line without what kept it from ending: the backslash at its end, and the quote that is not closed.
QByteArray closedText(QByteArray text)
{
    bool isQuoted = false;
    int place = 0;
    while (place < text.size()) {
        if (text.at(place) == '"')
            isQuoted = !isQuoted;
        place += text.at(place) == '\\' ? 2 : 1;
    }
    if (place > text.size())
        text.chop(1);
    return isQuoted ? text + '"' : text;
}

/// A group's beginning in one line that is whole, with the name that the settings library reads.
QByteArray groupText(const QByteArray& text)
{
    const int bracket = text.indexOf(']');
    QByteArray name = (bracket < 0 ? text.mid(1) : text.mid(1, bracket - 1)).trimmed();
    name.replace('"', "%22").replace(';', "%3B").replace('\n', "%0A").replace('\r', "%0D");
    return '[' + name + ']';
}

/// Puts a file together from the lines of another one.
class Mender final
{
public:
    Mender(const QByteArray& bytes, const LineTest& isOfUse) : m_bytes(bytes), m_isOfUse(isOfUse), m_scanner(bytes)
    {
        m_mended.hadMark = hasMark(bytes);
        m_copiedTo = m_mended.hadMark ? kMarkLength : 0;
    }

    MendedLines run()
    {
        while (const std::optional<SettingsLine> line = m_scanner.next())
            take(*line);
        copyTo(m_bytes.size());
        return m_mended;
    }

private:
    void take(const SettingsLine& line)
    {
        if (swallowsSettings(m_bytes, line))
            return unfold(line);
        const QByteArray text = m_bytes.mid(line.begin, line.end - line.begin);
        if (line.isGroup)
            m_group = groupText(text);
        if (line.isDamaged())
            return line.isGroup ? close(line, line.end, m_group) : lose(line, line.end);
        if (!m_isOfUse(text))
            return lose(line, line.end);
        if (line.begin < m_swallowedTo)
            m_mended.broughtBack.push_back({line.number, text});
    }
    /// The line ends where it ends for the eye, and those behind it are lines of their own.
    void unfold(const SettingsLine& line)
    {
        const int end = firstEnd(m_bytes, line);
        const QByteArray text = m_bytes.mid(line.begin, end - line.begin);
        m_swallowedTo = std::max(m_swallowedTo, line.end);
        m_scanner.continueAt(line, end);
        if (line.isGroup) {
            m_group = groupText(text);
            return close(line, end, m_group);
        }
        const QByteArray closed = closedText(text);
        const std::optional<SettingsLine> alone = LineScanner(closed).next();
        if (!alone || alone->isDamaged() || !m_isOfUse(closed))
            return lose(line, end);
        m_mended.closedAlone += m_group + '\n' + closed + '\n';
        close(line, end, closed);
    }
    void close(const SettingsLine& line, int end, const QByteArray& replacement)
    {
        m_mended.closed.push_back({line.number, m_bytes.mid(line.begin, end - line.begin)});
        replace(line.begin, end, replacement);
    }
    void lose(const SettingsLine& line, int end)
    {
        m_mended.lost.push_back({line.number, m_bytes.mid(line.begin, end - line.begin)});
        replace(line.begin, end, QByteArray());
    }
    void replace(int begin, int end, const QByteArray& text)
    {
        copyTo(begin);
        m_mended.bytes += text;
        m_copiedTo = end;
    }
    void copyTo(int place)
    {
        m_mended.bytes += m_bytes.mid(m_copiedTo, place - m_copiedTo);
        m_copiedTo = place;
    }

    const QByteArray m_bytes;
    const LineTest& m_isOfUse;
    LineScanner m_scanner;
    MendedLines m_mended;
    QByteArray m_group = "[General]";
    int m_copiedTo = 0;
    int m_swallowedTo = 0;
};

} // namespace

LineScanner::LineScanner(const QByteArray& bytes) : m_bytes(bytes), m_place(hasMark(bytes) ? kMarkLength : 0) {}

std::optional<SettingsLine> LineScanner::next()
{
    passOverBlanksAndComments();
    if (isAtEnd())
        return std::nullopt;
    SettingsLine line{m_number, m_place, m_place, here() == '[', false, false};
    for (bool isQuoted = false; goToNextTelling() && (isQuoted || !isLineEnd()); step()) {
        line.hasEquals = line.hasEquals || (here() == '=' && !isQuoted);
        line.hasBracket = line.hasBracket || here() == ']';
        if (here() == '"')
            isQuoted = !isQuoted;
        else if (here() == '\\')
            passOverEscaped(line);
    }
    line.end = m_place;
    return line;
}

void LineScanner::continueAt(const SettingsLine& line, int place)
{
    m_number = line.number;
    for (m_place = line.begin; m_place < place;)
        step();
}

/// Passes over what says nothing about a line. False at the end.
bool LineScanner::goToNextTelling()
{
    m_place = firstOf(kTelling, m_bytes, m_place);
    return !isAtEnd();
}

void LineScanner::step()
{
    m_number += here() == '\n' ? 1 : 0;
    ++m_place;
}

/// Goes to the last character that a backslash covers: a line's end may have two. One that closes a group's name does
/// so there, too.
void LineScanner::passOverEscaped(SettingsLine& line)
{
    if (m_place + 1 >= m_bytes.size())
        return;
    step();
    line.hasBracket = line.hasBracket || here() == ']';
    const char next = m_place + 1 < m_bytes.size() ? m_bytes.at(m_place + 1) : '\0';
    if (endsLine(here()) && endsLine(next) && here() != next)
        step();
}

void LineScanner::passOverBlanksAndComments()
{
    while (!isAtEnd() && (isBlank(here()) || here() == ';')) {
        const bool isComment = here() == ';';
        while (isComment && !isAtEnd() && !endsLine(here()))
            step();
        if (!isAtEnd())
            step();
    }
}

bool hasMark(const QByteArray& bytes)
{
    return bytes.startsWith(kMark);
}

bool swallowsSettings(const QByteArray& bytes, const SettingsLine& line)
{
    int place = firstEnd(bytes, line);
    const bool isText = !isOfOtherKind(valueText(bytes.mid(line.begin, place - line.begin)));
    const Certainty wanted = isText ? Certainty::Sure : Certainty::Likely;
    while (place < line.end) {
        const int end = firstOf(kLineEnds, bytes, ++place);
        if (isSetting(bytes.mid(place, end - place), wanted))
            return true;
        place = end;
    }
    return false;
}

MendedLines mendedLines(const QByteArray& bytes, const LineTest& isOfUse)
{
    return Mender(bytes, isOfUse).run();
}

QByteArray endedText(const QByteArray& bytes)
{
    std::optional<SettingsLine> last;
    LineScanner scanner(bytes);
    while (const std::optional<SettingsLine> line = scanner.next())
        last = line;
    const bool isOpen = last && last->end == bytes.size();
    const QByteArray closed = isOpen ? bytes.left(last->begin) + closedText(bytes.mid(last->begin)) : bytes;
    // A backslash before "\r" would cover "\n" behind it as well.
    return closed + (closed.endsWith('\r') ? '\r' : '\n');
}

QByteArray groupLines(const QByteArray& bytes, const char* behindEach)
{
    QByteArray groups;
    LineScanner scanner(bytes);
    while (const std::optional<SettingsLine> line = scanner.next()) {
        if (line->isGroup)
            groups += groupText(bytes.mid(line->begin, line->end - line->begin)) + behindEach;
    }
    return groups;
}

} // namespace vruinfo::tool
