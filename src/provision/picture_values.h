// Pictures in a settings file, which another program may have stored there, or a damage made of something else.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QMetaType>
#include <QtCore/QString>

namespace vruinfo::internal
{

/// The next byte of a value as the settings library writes it, which goes from the text; that of an escape, too.
inline unsigned char takeEscaped(QByteArray& text)
{
    const auto take = [&text] {
        const char first = text.isEmpty() ? '\0' : text.at(0);
        text.remove(0, 1);
        return first;
    };
    const char first = take();
    if (first != '\\')
        return static_cast<unsigned char>(first);
    const char kind = take();
    const bool isOctal = kind >= '0' && kind <= '7';
    if (kind != 'x' && !isOctal)
        return 0; // no number of a picture has the characters that the others stand for
    QByteArray digits = isOctal ? QByteArray(1, kind) : QByteArray();
    const QByteArray known = isOctal ? "01234567" : "0123456789abcdefABCDEF";
    while (!text.isEmpty() && known.contains(text.at(0)))
        digits += take();
    return static_cast<unsigned char>(digits.toUInt(nullptr, isOctal ? 8 : 16));
}

/// Whether making a value of the type takes an application object of the kind that has pictures; without one the
/// process would end.
inline bool isPictureType(int type)
{
    switch (type) {
    case QMetaType::QPixmap:
    case QMetaType::QBrush:
    case QMetaType::QPalette:
    case QMetaType::QIcon:
    case QMetaType::QBitmap:
    case QMetaType::QCursor:
    case QMetaType::QPen:
    case QMetaType::QTextFormat:
        return true;
    default:
        return false;
    }
}

inline bool hasPictureValues(const QString& path)
{
    constexpr char kMark[] = "@Variant(";
    constexpr int kMarkLength = sizeof kMark - 1;
    constexpr int kLongest = 64; // of four escaped bytes, with room
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    for (int at = bytes.indexOf(kMark); at >= 0; at = bytes.indexOf(kMark, at + kMarkLength)) {
        QByteArray value = bytes.mid(at + kMarkLength, kLongest);
        unsigned int type = 0;
        for (int i = 0; i < 4; ++i)
            type = type << 8U | takeEscaped(value);
        if (isPictureType(static_cast<int>(type)))
            return true;
    }
    return false;
}

/// Whether pictures can be read.
inline bool arePicturesWelcome()
{
    const QCoreApplication* const application = QCoreApplication::instance();
    return application && application->inherits("QGuiApplication");
}

/// Whether somebody has loaded what knows pictures.
inline bool arePicturesKnown()
{
    return QMetaType::sizeOf(QMetaType::QPixmap) > 0;
}

} // namespace vruinfo::internal
