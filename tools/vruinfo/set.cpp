#include "commands.h"
#include "store.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

void print(const Context& context, const Place& place, const std::optional<StoredValue>& before,
           const StoredValue& after)
{
    if (!context.wantsJson()) {
        const QString old = before ? before->text() : QStringLiteral("absent");
        return context.printer().line(QStringLiteral("%1: %2 -> ").arg(place.path(), old) + after.text());
    }
    context.printer().json(QJsonDocument(QJsonObject{
        {QStringLiteral("path"), place.path()},
        {QStringLiteral("old"), before ? QJsonValue(before->json()) : QJsonValue()},
        {QStringLiteral("new"), after.json()},
    }));
}

Exit write(const Context& context, const Place& place, const VornVariant& value)
{
    const std::optional<StoredValue> before = readValue(place);
    if (const auto problem = writeValue(place, value))
        return context.fail(*problem);
    if (const auto problem = saveChanges(context.printer()))
        return context.fail(*problem);
    const std::optional<StoredValue> after = readValue(place);
    if (!after)
        return context.fail({Exit::Failed, QStringLiteral("%1 was written but does not read back").arg(place.path())});
    print(context, place, before, *after);
    return Exit::Done;
}

} // namespace

Exit runSet(Context& context)
{
    const auto type = typeFromName(context.option("type").value_or(QStringLiteral("string")));
    if (!type)
        return context.fail(type.problem());
    const Result<VornVariant> value = parseValue(*type, context.argument(1));
    if (!value)
        return context.fail(value.problem());
    const Result<Place> place = placeOf(context, TreePath::Kind::Value, Purpose::Change);
    if (!place)
        return context.fail(place.problem());
    return write(context, *place, *value);
}

} // namespace vruinfo::tool
