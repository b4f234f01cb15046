#include "commands.h"

#include <algorithm>

#include <QtCore/QJsonArray>

#include "store.h"
#include "text.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

constexpr int kTypeWidth = 8;

void printLines(Printer& printer, const ItemContent& content)
{
    for (const QString& item : content.items)
        printer.line(padded(QStringLiteral("item"), kTypeWidth) + item + QLatin1Char('/'));
    for (const NamedValue& row : content.values) {
        const QString type = padded(typeName(row.value.value().type), kTypeWidth);
        printer.line(type + row.name + QStringLiteral(" = ") + lineText(row.value.value()));
    }
}

void printJson(Printer& printer, const Place& place, const ItemContent& content)
{
    QJsonArray values;
    for (const NamedValue& row : content.values) {
        QJsonObject value = row.value.json();
        value.insert(QStringLiteral("name"), row.name);
        values.append(value);
    }
    printer.json(QJsonDocument(QJsonObject{
        {QStringLiteral("path"), place.shown()},
        {QStringLiteral("items"), QJsonArray::fromStringList(content.items)},
        {QStringLiteral("values"), values},
    }));
}

} // namespace

Exit runList(Context& context)
{
    const Result<Place> place = placeOf(context, TreePath::Kind::Item, Purpose::Look);
    if (!place)
        return context.fail(place.problem());
    const ItemContent content = readItem(*place);
    if (content.isEmpty())
        return context.fail(absent(*place, QStringLiteral("item")));
    if (context.wantsJson())
        printJson(context.printer(), *place, content);
    else
        printLines(context.printer(), content);
    return Exit::Done;
}

} // namespace vruinfo::tool
