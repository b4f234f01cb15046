#include "store.h"

#include <algorithm>

#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>

#include <sys/stat.h>
#include <unistd.h>

#include "VrUInfo/VornaConfig.h"
#include "identity_values.h"
#include "saved_form.h"
#include "text.h"
#include "tree_snapshot.h"

namespace vruinfo::tool
{
namespace
{

unsigned int nameAt(const VornaConfig::ItemIterator& iterator, wchar_t* buffer, int& length)
{
    return iterator.name(buffer, length);
}

unsigned int nameAt(const VornaConfig::ValueIterator& iterator, wchar_t* buffer, int& length)
{
    return iterator.key(buffer, length);
}

template <typename Iterator>
QString currentName(const Iterator& iterator)
{
    int capacity = 0;
    nameAt(iterator, nullptr, capacity);
    std::wstring name(static_cast<std::size_t>(capacity), L'\0'); // a terminator is not always written
    nameAt(iterator, name.data(), capacity);
    return fromWide(name.c_str());
}

template <typename Iterator>
QStringList namesIn(const Place& item)
{
    Iterator iterator;
    QStringList names;
    if (vornConfig()->findItem(item.widePath().c_str(), iterator) != Vorn::eOk)
        return names;
    // The position behind the last one holds the item's own path.
    QString name = currentName(iterator);
    while (iterator.step() == Vorn::eOk) {
        names.append(name);
        name = currentName(iterator);
    }
    names.sort();
    return names;
}

/// The library leaves some files alone, and reads from and writes to a place below them then, where nothing can be.
std::optional<Problem> leftAlone()
{
    const QString file = QFileInfo(settingsFile()).path();
    if (!QFileInfo::exists(file) || QFileInfo(file).isDir())
        return std::nullopt;
    return Problem{Exit::Failed, QStringLiteral("the settings file %1 is left alone, neither read nor written; "
                                                "`vruinfo doctor` says why")
                                     .arg(file)};
}

Problem notWritten()
{
    if (const std::optional<Problem> problem = leftAlone())
        return *problem;
    return {Exit::Failed,
            QStringLiteral("the settings file %1 cannot be written, nothing was changed; make the file and its "
                           "directory writable for this user and see that the disk has room")
                .arg(settingsFile())};
}

/// Whether a lock file stands that the settings library cannot take away, and would wait for without end.
bool isLockedForGood(const QString& lock)
{
    struct stat status = {};
    if (lstat(QFile::encodeName(lock).constData(), &status) != 0)
        return false;
    return !S_ISREG(status.st_mode) || access(QFile::encodeName(QFileInfo(lock).path()).constData(), W_OK) != 0;
}

Problem lockedOut(const QString& lock)
{
    return {Exit::Failed,
            QStringLiteral("the lock file %1 cannot be removed, nothing was changed; remove it when no application of "
                           "the user runs")
                .arg(lock)};
}

/// Names that a backup can have within one second.
constexpr int kMostBackups = 100;

QString backupName(int attempt)
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString number = attempt == 0 ? QString() : QLatin1Char('-') + QString::number(attempt);
    return settingsFile() + QLatin1Char('.') + stamp + number + QStringLiteral(".bak");
}

/// Whether what a start writes there could be taken for what stood there before.
bool mayMeetIdentity(const TreePath& path, TreePath::Kind kind)
{
    return kind != TreePath::Kind::Value || isIdentityName(path.lastName());
}

Result<Place> placeOfStart(const Context& context, const TreePath& path, TreePath::Kind kind, Purpose purpose)
{
    // Looking for them takes a pass over all values: a plain value is read without.
    const bool isAsItWas = purpose != Purpose::Look || mayMeetIdentity(path, kind);
    const std::optional<IdentityValues> before = isAsItWas ? std::make_optional<IdentityValues>() : std::nullopt;
    if (const auto problem = context.start(purpose))
        return *problem;
    Result<Place> place = path.resolve();
    if (before)
        before->putBack();
    return place;
}

} // namespace

Result<Place> placeOf(const Context& context, const QString& text, TreePath::Kind kind, Purpose purpose)
{
    const Result<TreePath> path = TreePath::parse(text, kind);
    if (!path)
        return path.problem();
    context.openSettings(purpose);
    return path->needsStart() ? placeOfStart(context, *path, kind, purpose) : path->resolve();
}

Result<Place> placeOf(const Context& context, TreePath::Kind kind, Purpose purpose)
{
    return placeOf(context, context.argument(0), kind, purpose);
}

std::optional<StoredValue> readValue(const Place& place)
{
    const QVariant stored = g_globalSettings->value(place.path());
    return stored.isValid() ? std::optional<StoredValue>(stored) : std::nullopt;
}

ItemContent readItem(const Place& place)
{
    ItemContent content;
    content.items = namesIn<VornaConfig::ItemIterator>(place);
    for (const QString& name : namesIn<VornaConfig::ValueIterator>(place))
        content.values.push_back({name, StoredValue(g_globalSettings->value(joined(place, name)))});
    return content;
}

std::optional<Problem> writeValue(const Place& place, const VornVariant& value)
{
    const unsigned int status = WriteValueToReg(place.wideGroup().c_str(), place.wideName().c_str(), value);
    if (status == Vorn::eOk)
        return std::nullopt;
    return Problem{Exit::Failed, QStringLiteral("%1 could not be written (status %2)").arg(place.path()).arg(status)};
}

void removeAll(const Place& place)
{
    RegDeleteKeyAndAllSubkeys(place.path());
}

QString settingsFile()
{
    return g_globalSettings->fileName();
}

Result<QString> backUp()
{
    if (!QFileInfo::exists(settingsFile()))
        return QString();
    for (int attempt = 0; attempt < kMostBackups; ++attempt) {
        const QString name = backupName(attempt);
        if (QFileInfo::exists(name))
            continue;
        if (QFile::copy(settingsFile(), name))
            return name;
        break;
    }
    return Problem{Exit::Failed,
                   QStringLiteral("no backup of the settings file %1 could be made, nothing was changed; see that its "
                                  "directory is writable for this user and that the disk has room")
                       .arg(settingsFile())};
}

std::optional<Problem> saveChanges(Printer& printer)
{
    if (auto problem = foreignValueInSettings())
        return problem;
    const QString lock = settingsFile() + QStringLiteral(".lock");
    if (isLockedForGood(lock))
        return lockedOut(lock);
    g_globalSettings->sync();
    if (g_globalSettings->status() == QSettings::AccessError)
        return notWritten();
    if (g_globalSettings->status() == QSettings::FormatError)
        printer.error(QStringLiteral("warning: the settings file %1 had lines that are no settings; they are dropped")
                          .arg(settingsFile()));
    return std::nullopt;
}

Problem absent(const Place& place, const QString& what)
{
    if (const std::optional<Problem> problem = leftAlone())
        return *problem;
    if (g_globalSettings->status() == QSettings::AccessError)
        return {
            Exit::Failed,
            QStringLiteral("the settings file %1 cannot be read; make it readable for this user").arg(settingsFile())};
    return {Exit::NotFound, QStringLiteral("%1: there is no such %2").arg(place.shown(), what)};
}

} // namespace vruinfo::tool
