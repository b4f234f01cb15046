#include "store.h"

#include <algorithm>

#include <QtCore/QFileInfo>
#include <QtCore/QSettings>

#include "VrUInfo/VornaConfig.h"
#include "text.h"

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

QString settingsFile()
{
    return g_globalSettings->fileName();
}

Problem notWritten()
{
    return {Exit::Failed,
            QStringLiteral("the settings file %1 cannot be written, nothing was changed; make the file and its "
                           "directory writable for this user and see that the disk has room")
                .arg(settingsFile())};
}

} // namespace

Result<Place> startAt(const Context& context, TreePath::Kind kind)
{
    const Result<TreePath> path = TreePath::parse(context.argument(0), kind);
    if (!path)
        return path.problem();
    if (const auto problem = context.start())
        return *problem;
    return path->resolve();
}

std::optional<VornVariant> readValue(const Place& place)
{
    VornVariant value;
    if (vornConfig()->getValue(place.wideGroup().c_str(), place.wideName().c_str(), value) != Vorn::eOk)
        return std::nullopt;
    return value;
}

ItemContent readItem(const Place& place)
{
    ItemContent content;
    content.items = namesIn<VornaConfig::ItemIterator>(place);
    for (const QString& name : namesIn<VornaConfig::ValueIterator>(place)) {
        VornVariant value;
        vornConfig()->getValue(place.widePath().c_str(), toWide(name).c_str(), value);
        content.values.push_back({name, std::move(value)});
    }
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

std::optional<Problem> saveChanges(Printer& printer)
{
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
    if (g_globalSettings->status() == QSettings::AccessError)
        return {
            Exit::Failed,
            QStringLiteral("the settings file %1 cannot be read; make it readable for this user").arg(settingsFile())};
    return {Exit::NotFound, QStringLiteral("%1: there is no such %2").arg(place.shown(), what)};
}

} // namespace vruinfo::tool
