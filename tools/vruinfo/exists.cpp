#include "commands.h"
#include "store.h"

namespace vruinfo::tool
{
namespace
{

/// What there is at a place; a value and an item can have one name.
struct Presence {
    bool hasValue;
    bool hasItem;

    [[nodiscard]] bool isAbsent() const { return !hasValue && !hasItem; }
};

Presence presenceAt(const Place& place)
{
    return {!place.isTop() && readValue(place).has_value(), !readItem(place).isEmpty()};
}

QString wordsFor(const Presence& presence)
{
    if (presence.isAbsent())
        return QStringLiteral("absent");
    if (presence.hasValue && presence.hasItem)
        return QStringLiteral("value and item");
    return presence.hasValue ? QStringLiteral("value") : QStringLiteral("item");
}

void print(const Context& context, const Place& place, const Presence& presence)
{
    if (!context.wantsJson())
        return context.printer().line(wordsFor(presence));
    QJsonObject answer{{QStringLiteral("value"), presence.hasValue}, {QStringLiteral("item"), presence.hasItem}};
    insertText(answer, QStringLiteral("path"), place.shown());
    context.printer().json(QJsonDocument(answer));
}

} // namespace

Exit runExists(Context& context)
{
    const Result<Place> place = placeOf(context, TreePath::Kind::Item, Purpose::Look);
    if (!place)
        return context.fail(place.problem());
    const Presence presence = presenceAt(*place);
    const Problem problem = absent(*place, QStringLiteral("value or item"));
    if (presence.isAbsent() && problem.exit != Exit::NotFound)
        return context.fail(problem); // where nothing can be read, nobody knows what there is
    print(context, *place, presence);
    return presence.isAbsent() ? Exit::NotFound : Exit::Done;
}

} // namespace vruinfo::tool
