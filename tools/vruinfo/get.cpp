#include "commands.h"
#include "store.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

/// The value as the type that is asked for: eight bytes may be meant as a double, and the other way round.
StoredValue inType(const StoredValue& value, const std::optional<VornVariant::VarType>& type)
{
    if (type == VornVariant::kVarDouble)
        return StoredValue(asDouble(value.value()));
    return type == VornVariant::kVarBinary ? StoredValue(asBinary(value.value())) : value;
}

std::optional<Problem> wrongType(const Place& place, const VornVariant& value,
                                 const std::optional<VornVariant::VarType>& type)
{
    if (value.type == VornVariant::kVarNone)
        return Problem{Exit::Failed, QStringLiteral("%1 is of a type that cannot be read").arg(place.path())};
    if (!type || *type == value.type)
        return std::nullopt;
    return Problem{Exit::Failed,
                   QStringLiteral("%1 is of type %2, not %3").arg(place.path(), typeName(value.type), typeName(*type))};
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

void print(const Context& context, const Place& place, const StoredValue& value)
{
    if (!context.wantsJson())
        return context.printer().line(plainText(value.value()));
    QJsonObject answer = value.json();
    answer.insert(QStringLiteral("path"), place.path());
    context.printer().json(QJsonDocument(answer));
}

} // namespace

Exit runGet(Context& context)
{
    const auto type = askedType(context);
    if (!type)
        return context.fail(type.problem());
    const Result<Place> place = placeOf(context, TreePath::Kind::Value, Purpose::Look);
    if (!place)
        return context.fail(place.problem());
    const std::optional<StoredValue> stored = readValue(*place);
    if (!stored)
        return context.fail(absent(*place, QStringLiteral("value")));
    const StoredValue value = inType(*stored, *type);
    if (const auto problem = wrongType(*place, value.value(), *type))
        return context.fail(*problem);
    print(context, *place, value);
    return Exit::Done;
}

} // namespace vruinfo::tool
