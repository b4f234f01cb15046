#include "json_position.h"

#include <algorithm>
#include <cstring>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

namespace vruinfo::tool
{
namespace
{

bool isOneOf(char c, const char* characters)
{
    return c != '\0' && std::strchr(characters, c);
}

/// Walks over valid JSON; at its end everything stays where it is.
class Cursor final
{
public:
    Cursor(const QByteArray& text, int at) : m_text(text), m_at(at) { skipBlanks(); }

    [[nodiscard]] int at() const { return m_at; }
    /// Steps behind the bracket or comma in front of an element. \return false behind the last element
    bool enter()
    {
        step();
        return m_at < m_text.size() && !isOneOf(m_text.at(m_at), "]}");
    }
    void step() { moveTo(m_at + 1); }
    void skipValue()
    {
        int depth = 0;
        do
            depth += skipToken();
        while (depth > 0 && m_at < m_text.size());
    }

private:
    /// \return how much deeper the walk is behind it
    int skipToken()
    {
        const char first = m_at < m_text.size() ? m_text.at(m_at) : '\0';
        if (first == '"')
            moveTo(endOfText());
        else if (isOneOf(first, "{}[]:,"))
            step();
        else
            moveTo(endOfWord());
        return isOneOf(first, "{[") ? 1 : isOneOf(first, "}]") ? -1 : 0;
    }
    [[nodiscard]] int endOfText() const
    {
        int end = m_at + 1;
        while (end < m_text.size() && m_text.at(end) != '"')
            end += m_text.at(end) == '\\' ? 2 : 1;
        return end + 1;
    }
    [[nodiscard]] int endOfWord() const
    {
        int end = m_at + 1;
        while (end < m_text.size() && !isOneOf(m_text.at(end), ",:{}[]\" \t\r\n"))
            ++end;
        return end;
    }
    void moveTo(int offset)
    {
        m_at = std::min(offset, m_text.size());
        skipBlanks();
    }
    void skipBlanks()
    {
        while (m_at < m_text.size() && isOneOf(m_text.at(m_at), " \t\r\n"))
            ++m_at;
    }

    const QByteArray& m_text;
    int m_at;
};

int beginOf(const QByteArray& text)
{
    return text.startsWith("\xEF\xBB\xBF") ? 3 : 0;
}

int beginOfNumber(const QByteArray& text, int end)
{
    int begin = end;
    while (begin > 0 && isOneOf(text.at(begin - 1), "+-.0123456789eE"))
        --begin;
    return begin;
}

QString decoded(const QByteArray& quotedText)
{
    return QJsonDocument::fromJson('[' + quotedText + ']').array().at(0).toString();
}

} // namespace

QString lineAndColumn(const QByteArray& text, int offset)
{
    const QByteArray before = text.left(offset);
    const int line = before.count('\n') + 1;
    int column = 1;
    for (int i = before.lastIndexOf('\n') + 1; i < before.size(); ++i)
        column += (static_cast<unsigned char>(before.at(i)) & 0xC0U) == 0x80U ? 0 : 1;
    return QStringLiteral("%1:%2").arg(line).arg(column);
}

int offsetOf(const QByteArray& text, const QJsonParseError& error)
{
    switch (error.error) {
    case QJsonParseError::IllegalUTF8String:
    case QJsonParseError::GarbageAtEnd: // noticed at the byte itself
        return error.offset;
    case QJsonParseError::IllegalNumber: // noticed behind it
        return beginOfNumber(text, error.offset);
    default: // noticed when one byte more was taken
        return std::max(0, error.offset - 1);
    }
}

int memberOffset(const QByteArray& text, const QString& name)
{
    const int object = Cursor(text, beginOf(text)).at();
    int found = object;
    Cursor cursor(text, object);
    while (cursor.enter()) {
        const int key = cursor.at();
        cursor.skipValue();
        const QByteArray quotedKey = text.mid(key, cursor.at() - key);
        cursor.step(); // the colon
        if (decoded(quotedKey) == name)
            found = cursor.at();
        cursor.skipValue();
    }
    return found;
}

int elementOffset(const QByteArray& text, int array, int index)
{
    Cursor cursor(text, array);
    int position = 0;
    while (cursor.enter()) {
        if (position++ == index)
            return cursor.at();
        cursor.skipValue();
    }
    return array;
}

} // namespace vruinfo::tool
