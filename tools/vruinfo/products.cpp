#include "commands.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include "context.h"
#include "products_list.h"
#include "table.h"

namespace vruinfo::tool
{
namespace
{

QString stateOf(const ListedProduct& product)
{
    if (!product.isComplete)
        return QStringLiteral("incomplete: nothing is told about it");
    if (product.isThisInstallation())
        return QStringLiteral("this installation");
    return product.isThere() ? QStringLiteral("there") : QStringLiteral("location is gone");
}

void printLines(Printer& printer, const std::vector<ListedProduct>& products)
{
    if (products.empty())
        return printer.line(QStringLiteral("%1: no product is listed").arg(productsListFile()));
    QList<QStringList> rows{{QStringLiteral("NO"), QStringLiteral("ENTRY"), QStringLiteral("NAME"),
                             QStringLiteral("PRODUCT"), QStringLiteral("LANGUAGE"), QStringLiteral("VERSION"),
                             QStringLiteral("LOCATION"), QStringLiteral("STATE")}};
    for (const ListedProduct& product : products)
        rows.append({product.number, product.entry, product.name, product.product, product.language, product.version,
                     product.location, stateOf(product)});
    printTable(printer, rows);
}

QJsonObject jsonOf(const ListedProduct& product)
{
    return {{QStringLiteral("number"), product.number},
            {QStringLiteral("entry"), product.entry},
            {QStringLiteral("complete"), product.isComplete},
            {QStringLiteral("name"), product.name},
            {QStringLiteral("product"), product.product},
            {QStringLiteral("language"), product.language},
            {QStringLiteral("version"), product.version},
            {QStringLiteral("location"), product.location},
            {QStringLiteral("exists"), product.isThere()},
            {QStringLiteral("thisInstallation"), product.isThisInstallation()}};
}

} // namespace

Exit runProducts(Context& context)
{
    const auto products = readProductsList();
    if (!products)
        return context.fail(products.problem());
    if (!context.wantsJson()) {
        printLines(context.printer(), *products);
        return Exit::Done;
    }
    QJsonArray rows;
    for (const ListedProduct& product : *products)
        rows.append(jsonOf(product));
    context.printer().json(QJsonDocument(rows));
    return Exit::Done;
}

} // namespace vruinfo::tool
