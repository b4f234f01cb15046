// What the settings library makes of a value.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVariant>

namespace vrtest
{

/// A value once the settings library has written it and read it again: a list of one text is a text then, a number too.
inline QVariant rewritten(const QVariant& value)
{
    const QTemporaryDir directory;
    const QString written = directory.filePath(QStringLiteral("written.conf"));
    const QString read = directory.filePath(QStringLiteral("read.conf"));
    const QString key = QStringLiteral("a");
    QSettings(written, QSettings::NativeFormat).setValue(key, value);
    QFile::copy(written, read); // of a file that it wrote itself it remembers the values
    return QSettings(read, QSettings::NativeFormat).value(key);
}

} // namespace vrtest
