#include "tree_snapshot.h"

#include <algorithm>

#include <QtCore/QJsonArray>
#include <QtCore/QSettings>

#include "own_values.h"
#include "store.h"

namespace vruinfo::tool
{
namespace
{

constexpr QLatin1Char kSeparator('/');

QJsonValue jsonOf(const std::optional<StoredValue>& value)
{
    return value ? QJsonValue(value->json()) : QJsonValue();
}

/// The settings library hands such a name out, but takes it for another one.
bool hasEmptyPart(const QString& key)
{
    return key.isEmpty() || key.startsWith(kSeparator) || key.endsWith(kSeparator) || key.contains(QLatin1String("//"));
}

void printChange(Printer& printer, const QString& front, const QString& path, const Change& change)
{
    if (!change.before)
        printer.line(Style::Added, front + QStringLiteral("+ %1: %2").arg(path, change.after->text()));
    else if (!change.after)
        printer.line(Style::Removed, front + QStringLiteral("- %1: %2").arg(path, change.before->text()));
    else
        printer.line(Style::Changed,
                     front + QStringLiteral("~ %1: %2 -> %3").arg(path, change.before->text(), change.after->text()));
}

} // namespace

Snapshot snapshotOf(QSettings& settings, const Place& place)
{
    Snapshot snapshot;
    if (!place.isTop() && settings.contains(place.path()))
        snapshot.insert(QString(), StoredValue(settings.value(place.path())));
    if (!place.isTop())
        settings.beginGroup(place.path());
    for (const QString& key : settings.allKeys()) {
        if (!hasEmptyPart(key))
            snapshot.insert(key, StoredValue(settings.value(key)));
    }
    if (!place.isTop())
        settings.endGroup();
    return snapshot;
}

Snapshot liveSnapshot(const Place& place)
{
    const OwnValues own;
    return snapshotOf(*g_globalSettings, place);
}

Result<Snapshot> readableSnapshot(const Place& place)
{
    const Snapshot values = liveSnapshot(place);
    if (values.isEmpty()) {
        const Problem why = absent(place, QStringLiteral("value or item"));
        if (why.exit == Exit::Failed)
            return why;
    }
    return values;
}

int hiddenValues(const Place& place)
{
    const OwnValues own;
    const QString prefix = place.isTop() ? QString() : place.path() + kSeparator;
    const QStringList keys = g_globalSettings->allKeys();
    return static_cast<int>(std::count_if(keys.begin(), keys.end(), [&prefix](const QString& key) {
        return key.startsWith(prefix) && hasEmptyPart(key.mid(prefix.size()));
    }));
}

Changes changesBetween(const Snapshot& before, const Snapshot& after)
{
    Changes changes;
    auto former = before.cbegin();
    auto next = after.cbegin();
    while (former != before.cend() || next != after.cend()) {
        const bool goes = next == after.cend() || (former != before.cend() && former.key() < next.key());
        const bool comes = !goes && (former == before.cend() || next.key() < former.key());
        if (goes)
            changes.push_back({former.key(), *former, std::nullopt});
        else if (comes)
            changes.push_back({next.key(), std::nullopt, *next});
        else if (*former != *next)
            changes.push_back({next.key(), *former, *next});
        if (!comes)
            ++former;
        if (!goes)
            ++next;
    }
    return changes;
}

QString joined(const Place& place, const QString& below)
{
    if (place.isTop() || below.isEmpty())
        return place.isTop() ? below : place.path();
    return place.path() + kSeparator + below;
}

void printChanges(Printer& printer, const Place& place, const Changes& changes, const QString& front)
{
    for (const Change& change : changes)
        printChange(printer, front, joined(place, change.path), change);
}

QJsonArray changesJson(const Place& place, const Changes& changes)
{
    QJsonArray rows;
    for (const Change& change : changes) {
        QJsonObject row{{QStringLiteral("old"), jsonOf(change.before)}, {QStringLiteral("new"), jsonOf(change.after)}};
        insertText(row, QStringLiteral("path"), joined(place, change.path));
        rows.append(row);
    }
    return rows;
}

} // namespace vruinfo::tool
