#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr char32_t kFirstBeyondBmp = 0x10000;

void appendCharacter(QString& target, char32_t c)
{
    if (c < kFirstBeyondBmp) {
        target += QChar(static_cast<ushort>(c));
        return;
    }
    target += QChar(QChar::highSurrogate(c));
    target += QChar(QChar::lowSurrogate(c));
}

QString escaped(QChar c)
{
    switch (c.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    case '"':
        return QStringLiteral("\\\"");
    case '\\':
        return QStringLiteral("\\\\");
    default:
        break;
    }
    const bool isControl = c.category() == QChar::Other_Control;
    return isControl ? QStringLiteral("\\x%1;").arg(static_cast<int>(c.unicode()), 0, 16) : QString(c);
}

} // namespace

std::optional<QString> fromUtf8(const char* bytes)
{
    // The character in front keeps the decoder from taking a byte-order mark for a signature.
    const QByteArray marked = QByteArray("x") + bytes;
    const QString decoded = QString::fromUtf8(marked);
    if (decoded.toUtf8() != marked)
        return std::nullopt;
    return decoded.mid(1);
}

QString fromWide(const wchar_t* text)
{
    return text ? fromWide(std::wstring(text)) : QString();
}

QString fromWide(const std::wstring& text)
{
    QString result;
    result.reserve(static_cast<int>(text.size()));
    for (const wchar_t c : text)
        appendCharacter(result, static_cast<char32_t>(c));
    return result;
}

std::wstring toWide(const QString& text)
{
    return text.toStdWString();
}

QString quoted(const QString& text)
{
    QString result(QLatin1Char('"'));
    for (const QChar c : text)
        result += escaped(c);
    return result + QLatin1Char('"');
}

QString padded(const QString& text, int width)
{
    return text.leftJustified(width, QLatin1Char(' '));
}

} // namespace vruinfo::tool
