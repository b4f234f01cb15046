#include "commands.h"

#include <QtCore/QJsonArray>

#include "store.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

/// A value that goes, by its full path.
struct Removed {
    QString path;
    VornVariant value;
};

void collect(const Place& item, std::vector<Removed>& removed)
{
    const ItemContent content = readItem(item);
    for (const NamedValue& row : content.values)
        removed.push_back({item.path() + QLatin1Char('/') + row.name, row.value});
    for (const QString& name : content.items) {
        if (const std::optional<Place> below = item.below(name))
            collect(*below, removed);
    }
}

/// The value at the place and the values below it.
std::vector<Removed> valuesAt(const Place& place)
{
    std::vector<Removed> removed;
    if (const std::optional<VornVariant> value = readValue(place))
        removed.push_back({place.path(), *value});
    collect(place, removed);
    return removed;
}

void print(const Context& context, const Place& place, const std::vector<Removed>& removed)
{
    if (!context.wantsJson()) {
        for (const Removed& row : removed)
            context.printer().line(QStringLiteral("%1: ").arg(row.path) + typedText(row.value) +
                                   QStringLiteral(" -> absent"));
        return;
    }
    QJsonArray values;
    for (const Removed& row : removed) {
        QJsonObject value = typedJson(row.value);
        value.insert(QStringLiteral("path"), row.path);
        values.append(value);
    }
    context.printer().json(
        QJsonDocument(QJsonObject{{QStringLiteral("path"), place.path()}, {QStringLiteral("removed"), values}}));
}

Exit remove(const Context& context, const Place& place)
{
    const bool hasContent = !readItem(place).isEmpty();
    if (!hasContent && !readValue(place))
        return context.fail(absent(place, QStringLiteral("value or item")));
    if (hasContent && !context.isSet("recursive"))
        return context.fail(
            {Exit::Failed, QStringLiteral("%1 is an item with content; --recursive removes it").arg(place.path())});
    const std::vector<Removed> removed = valuesAt(place);
    removeAll(place);
    if (const auto problem = saveChanges(context.printer()))
        return context.fail(*problem);
    print(context, place, removed);
    return Exit::Done;
}

} // namespace

Exit runRm(Context& context)
{
    const Result<Place> place = startAt(context, TreePath::Kind::Named);
    if (!place)
        return context.fail(place.problem());
    return remove(context, *place);
}

} // namespace vruinfo::tool
