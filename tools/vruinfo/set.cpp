#include "commands.h"
#include "store.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

/// A value of the store, shown as the type that is being written where its bytes allow that.
VornVariant shownAs(VornVariant::VarType type, const VornVariant& value)
{
    return type == VornVariant::kVarDouble ? asDouble(value) : value;
}

void print(const Context& context, const Place& place, const std::optional<VornVariant>& before,
           const VornVariant& after)
{
    if (!context.wantsJson()) {
        const QString old = before ? typedText(*before) : QStringLiteral("absent");
        return context.printer().line(QStringLiteral("%1: %2 -> ").arg(place.path(), old) + typedText(after));
    }
    context.printer().json(QJsonDocument(QJsonObject{
        {QStringLiteral("path"), place.path()},
        {QStringLiteral("old"), before ? QJsonValue(typedJson(*before)) : QJsonValue()},
        {QStringLiteral("new"), typedJson(after)},
    }));
}

Exit write(const Context& context, const Place& place, const VornVariant& value)
{
    std::optional<VornVariant> before = readValue(place);
    if (const auto problem = writeValue(place, value))
        return context.fail(*problem);
    if (const auto problem = saveChanges(context.printer()))
        return context.fail(*problem);
    const std::optional<VornVariant> after = readValue(place);
    if (!after)
        return context.fail({Exit::Failed, QStringLiteral("%1 was written but does not read back").arg(place.path())});
    if (before)
        before = shownAs(value.type, *before);
    print(context, place, before, shownAs(value.type, *after));
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
    const Result<Place> place = startAt(context, TreePath::Kind::Value);
    if (!place)
        return context.fail(place.problem());
    return write(context, *place, *value);
}

} // namespace vruinfo::tool
