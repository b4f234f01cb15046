#include "commands.h"

#include <QtCore/QJsonArray>

#include "export_file.h"
#include "store.h"
#include "tree_snapshot.h"

namespace vruinfo::tool
{
namespace
{

/// What is compared.
struct Side {
    QString file; ///< Empty for the settings themselves.
    Place place;
    Snapshot values;
};

Result<Side> sideOfFile(const QString& name)
{
    const Result<ExportFile> file = ExportFile::read(name);
    if (!file)
        return file.problem();
    const Result<Snapshot> values = file->valuesAt(file->place());
    if (!values)
        return values.problem();
    return Side{name, file->place(), *values};
}

Result<Place> livePlace(const Context& context, const Side& exported)
{
    if (const std::optional<QString> at = context.option("at"))
        return placeOf(context, *at, TreePath::Kind::Item, Purpose::Look);
    context.openSettings(Purpose::Look);
    return exported.place;
}

Result<Side> liveSide(const Context& context, const Side& exported)
{
    const Result<Place> place = livePlace(context, exported);
    if (!place)
        return place.problem();
    const Result<Snapshot> values = readableSnapshot(*place);
    if (!values)
        return values.problem();
    return Side{{}, *place, *values};
}

std::optional<Problem> misuse(const Context& context)
{
    if (!context.hasArgument(1))
        return std::nullopt;
    if (context.isSet("at"))
        return Problem{Exit::Misuse, QStringLiteral("--at names a place in the settings, but two files are compared")};
    if (context.argument(0) == QLatin1Char('-') && context.argument(1) == QLatin1Char('-'))
        return Problem{Exit::Misuse, QStringLiteral("standard input cannot be both A and B")};
    return std::nullopt;
}

QJsonObject jsonOf(const Side& side)
{
    QJsonObject row{{QStringLiteral("file"), side.file.isEmpty() ? QJsonValue() : QJsonValue(side.file)}};
    insertText(row, QStringLiteral("path"), side.place.shown());
    return row;
}

Exit compare(const Context& context, const Side& a, const Side& b)
{
    const Changes changes = changesBetween(a.values, b.values);
    if (context.wantsJson())
        context.printer().json(QJsonDocument(QJsonObject{{QStringLiteral("a"), jsonOf(a)},
                                                         {QStringLiteral("b"), jsonOf(b)},
                                                         {QStringLiteral("changes"), changesJson(b.place, changes)}}));
    else
        printChanges(context.printer(), b.place, changes);
    return changes.empty() || !context.isSet("exit-code") ? Exit::Done : Exit::NotFound;
}

} // namespace

Exit runDiff(Context& context)
{
    if (const auto problem = misuse(context))
        return context.fail(*problem);
    const Result<Side> a = sideOfFile(context.argument(0));
    if (!a)
        return context.fail(a.problem());
    const Result<Side> b = context.hasArgument(1) ? sideOfFile(context.argument(1)) : liveSide(context, *a);
    return b ? compare(context, *a, *b) : context.fail(b.problem());
}

} // namespace vruinfo::tool
