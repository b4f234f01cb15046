#include "commands.h"

#include <QtCore/QJsonArray>

#include "store.h"
#include "text.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

constexpr int kIndent = 2;

/// \param depth of the item's content; bounded, since each level makes the path longer
void printLines(Printer& printer, const Place& item, int depth)
{
    const QString indent(depth * kIndent, QLatin1Char(' '));
    const ItemContent content = readItem(item);
    for (const NamedValue& row : content.values)
        printer.line(indent + row.name + QStringLiteral(" = ") + row.value.text());
    for (const QString& name : content.items) {
        printer.line(indent + name + QLatin1Char('/'));
        const std::optional<Place> below = item.below(name);
        if (below)
            printLines(printer, *below, depth + 1);
        else
            printer.line(indent + QStringLiteral("  (too deep to be read)"));
    }
}

QJsonObject jsonOf(const Place& item)
{
    const ItemContent content = readItem(item);
    QJsonArray values;
    for (const NamedValue& row : content.values) {
        QJsonObject value = row.value.json();
        value.insert(QStringLiteral("name"), row.name);
        values.append(value);
    }
    QJsonArray items;
    for (const QString& name : content.items) {
        const std::optional<Place> below = item.below(name);
        QJsonObject child = below ? jsonOf(*below) : QJsonObject{{QStringLiteral("tooDeep"), true}};
        child.insert(QStringLiteral("name"), name);
        items.append(child);
    }
    return {{QStringLiteral("values"), values}, {QStringLiteral("items"), items}};
}

void print(const Context& context, const Place& place)
{
    if (!context.wantsJson()) {
        context.printer().line(place.isTop() ? place.shown() : place.shown() + QLatin1Char('/'));
        return printLines(context.printer(), place, 1);
    }
    QJsonObject answer = jsonOf(place);
    answer.insert(QStringLiteral("path"), place.shown());
    context.printer().json(QJsonDocument(answer));
}

} // namespace

Exit runTree(Context& context)
{
    const Result<Place> place = placeOf(context, TreePath::Kind::Item, Purpose::Look);
    if (!place)
        return context.fail(place.problem());
    if (readItem(*place).isEmpty())
        return context.fail(absent(*place, QStringLiteral("item")));
    print(context, *place);
    return Exit::Done;
}

} // namespace vruinfo::tool
