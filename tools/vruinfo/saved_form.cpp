#include "saved_form.h"

#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>

#include "own_values.h"

namespace vruinfo::tool
{
namespace
{

bool isText(const StoredValue& value)
{
    return value.stored().userType() == QMetaType::QString;
}

QString keyOf(int number)
{
    return QStringLiteral("Values/%1").arg(number);
}

/// Values, written under their numbers.
bool write(const QString& file, const QList<StoredValue>& values)
{
    QSettings settings(file, QSettings::NativeFormat);
    for (int i = 0; i < values.size(); ++i)
        settings.setValue(keyOf(i), values.at(i).stored());
    settings.sync();
    return settings.status() == QSettings::NoError;
}

QStringList changedIn(const QString& file, const QStringList& paths, const QList<StoredValue>& values)
{
    const QSettings settings(file, QSettings::NativeFormat);
    QStringList changed;
    for (int i = 0; i < values.size(); ++i) {
        if (!settings.contains(keyOf(i)) || StoredValue(settings.value(keyOf(i))) != values.at(i))
            changed.append(paths.at(i));
    }
    return changed;
}

} // namespace

Result<QStringList> changedBySaving(const Snapshot& values)
{
    QStringList paths;
    QList<StoredValue> others;
    for (auto row = values.cbegin(); row != values.cend(); ++row) {
        if (isText(*row))
            continue;
        paths.append(row.key());
        others.append(*row);
    }
    if (others.isEmpty())
        return QStringList();
    const QTemporaryDir directory;
    // The settings library remembers what it wrote under a name, so that it is read under another one.
    const QString written = directory.filePath(QStringLiteral("written.conf"));
    const QString read = directory.filePath(QStringLiteral("read.conf"));
    if (!directory.isValid() || !write(written, others) || !QFile::rename(written, read))
        return Problem{Exit::Failed, QStringLiteral("no file could be written in %1, where values are tried before "
                                                    "they are imported; see that the directory is writable and has "
                                                    "room, or set TMPDIR to another one")
                                         .arg(QDir::tempPath())};
    return changedIn(read, paths, others);
}

bool isForeign(const QVariant& stored)
{
    const int type = stored.userType();
    return type >= QMetaType::FirstGuiType && type < QMetaType::User && QMetaType::sizeOf(type) == 0;
}

std::optional<Problem> foreignValueInSettings()
{
    const OwnValues own;
    for (const QString& key : g_globalSettings->allKeys()) {
        const QVariant stored = g_globalSettings->value(key);
        if (isForeign(stored))
            return Problem{
                Exit::Failed,
                QStringLiteral("%1 in the settings file %2 holds a %3, which would be lost when this program writes "
                               "the file; nothing was changed")
                    .arg(key, g_globalSettings->fileName(), QString::fromLatin1(stored.typeName()))};
    }
    return std::nullopt;
}

} // namespace vruinfo::tool
