#include "commands.h"

#include <QtCore/QJsonArray>

#include "store.h"
#include "tree_snapshot.h"

namespace vruinfo::tool
{
namespace
{

/// What was removed, and where it can be had from again.
struct Removal {
    Place place;
    Snapshot values;
    QString backup; ///< Empty when none was made.
};

void printLines(Printer& printer, const Removal& removal)
{
    for (auto row = removal.values.cbegin(); row != removal.values.cend(); ++row)
        printer.line(QStringLiteral("%1: %2 -> absent").arg(joined(removal.place, row.key()), row->text()));
    if (!removal.backup.isEmpty())
        printer.line(QStringLiteral("backup: %1").arg(removal.backup));
}

void printJson(Printer& printer, const Removal& removal)
{
    QJsonArray values;
    for (auto row = removal.values.cbegin(); row != removal.values.cend(); ++row) {
        QJsonObject value = row->json();
        insertText(value, QStringLiteral("path"), joined(removal.place, row.key()));
        values.append(value);
    }
    printer.json(QJsonDocument(
        QJsonObject{{QStringLiteral("path"), removal.place.path()},
                    {QStringLiteral("removed"), values},
                    {QStringLiteral("backup"), removal.backup.isEmpty() ? QJsonValue() : removal.backup}}));
}

bool isSingleValue(const Snapshot& values)
{
    return values.size() == 1 && values.contains(QString());
}

Exit remove(const Context& context, const Place& place)
{
    Removal removal{place, liveSnapshot(place), {}};
    if (removal.values.isEmpty())
        return context.fail(absent(place, QStringLiteral("value or item")));
    if (!isSingleValue(removal.values)) {
        if (!context.isSet("recursive"))
            return context.fail(
                {Exit::Failed, QStringLiteral("%1 is an item with content; --recursive removes it").arg(place.path())});
        const Result<QString> backup = backUp();
        if (!backup)
            return context.fail(backup.problem());
        removal.backup = *backup;
    }
    removeAll(place);
    if (const auto problem = saveChanges(context.printer()))
        return context.fail(*problem);
    context.wantsJson() ? printJson(context.printer(), removal) : printLines(context.printer(), removal);
    return Exit::Done;
}

} // namespace

Exit runRm(Context& context)
{
    const Result<Place> place = placeOf(context, TreePath::Kind::Named, Purpose::Change);
    if (!place)
        return context.fail(place.problem());
    return remove(context, *place);
}

} // namespace vruinfo::tool
