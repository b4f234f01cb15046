#include "commands.h"
#include "store.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

/// The value as the type that is asked for.
Result<VornVariant> inType(const Place& place, const VornVariant& value,
                           const std::optional<VornVariant::VarType>& type)
{
    const VornVariant typed = type == VornVariant::kVarDouble ? asDouble(value) : value;
    if (typed.type == VornVariant::kVarNone)
        return Problem{Exit::Failed, QStringLiteral("%1 is of a type that cannot be read").arg(place.path())};
    if (!type || *type == typed.type)
        return typed;
    return Problem{Exit::Failed,
                   QStringLiteral("%1 is of type %2, not %3").arg(place.path(), typeName(typed.type), typeName(*type))};
}

Result<std::optional<VornVariant::VarType>> askedType(const Context& context)
{
    using Asked = std::optional<VornVariant::VarType>;
    const std::optional<QString> name = context.option("type");
    if (!name)
        return Asked();
    const Result<VornVariant::VarType> type = typeFromName(*name);
    return type ? Result<Asked>(Asked(*type)) : Result<Asked>(type.problem());
}

void print(const Context& context, const Place& place, const VornVariant& value)
{
    if (!context.wantsJson())
        return context.printer().line(plainText(value));
    QJsonObject answer = typedJson(value);
    answer.insert(QStringLiteral("path"), place.path());
    context.printer().json(QJsonDocument(answer));
}

} // namespace

Exit runGet(Context& context)
{
    const auto type = askedType(context);
    if (!type)
        return context.fail(type.problem());
    const Result<Place> place = startAt(context, TreePath::Kind::Value);
    if (!place)
        return context.fail(place.problem());
    const std::optional<VornVariant> stored = readValue(*place);
    if (!stored)
        return context.fail(absent(*place, QStringLiteral("value")));
    const Result<VornVariant> value = inType(*place, *stored, *type);
    if (!value)
        return context.fail(value.problem());
    print(context, *place, *value);
    return Exit::Done;
}

} // namespace vruinfo::tool
