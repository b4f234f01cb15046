#include "commands.h"

#include <vector>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include "context.h"
#include "path_table.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr int kStateWidth = 9;
constexpr int kNameWidth = 26;

QString stateOf(const NamedPath& found)
{
    return found.exists() ? QStringLiteral("exists") : QStringLiteral("missing");
}

void printLines(Printer& printer, const std::vector<NamedPath>& all)
{
    for (const NamedPath& found : all) {
        const QString path = found.path.isEmpty() ? QStringLiteral("(cannot be built: too long)") : found.path;
        printer.line(padded(stateOf(found), kStateWidth) + padded(found.name, kNameWidth) + path);
    }
}

void printJson(Printer& printer, const std::vector<NamedPath>& all)
{
    QJsonArray rows;
    for (const NamedPath& found : all)
        rows.append(QJsonObject{{QStringLiteral("name"), found.name},
                                {QStringLiteral("path"), found.path},
                                {QStringLiteral("exists"), found.exists()}});
    printer.json(QJsonDocument(rows));
}

} // namespace

Exit runPaths(Context& context)
{
    if (const auto problem = context.start(Purpose::Look))
        return context.fail(*problem);
    const std::vector<NamedPath> all = namedPaths();
    if (context.wantsJson())
        printJson(context.printer(), all);
    else
        printLines(context.printer(), all);
    return Exit::Done;
}

} // namespace vruinfo::tool
