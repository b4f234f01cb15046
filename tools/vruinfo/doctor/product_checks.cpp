#include <algorithm>

#include <QtCore/QSet>

#include "doctor/checks.h"
#include "doctor/damaged_lines.h"
#include "doctor/file_state.h"
#include "doctor/isolated.h"
#include "doctor/lock_file.h"
#include "products_list.h"

namespace vruinfo::tool::doctor
{
namespace
{

constexpr qint64 kMostBytes = qint64{16} * 1024 * 1024;

using Products = std::vector<ListedProduct>;

QString editIt()
{
    return QStringLiteral("Correct the list in a text editor.");
}

QString called(const ListedProduct& product)
{
    return QStringLiteral("%1 (%2)").arg(product.entry, product.number);
}

/// A release that is added takes the number behind the count, whether or not another has it.
std::optional<Finding> gapFinding(const Products& products)
{
    QStringList numbers;
    bool isInOrder = true;
    for (const ListedProduct& product : products) {
        numbers.append(product.number);
        isInOrder = isInOrder && product.number == QString::number(numbers.size());
    }
    if (isInOrder)
        return std::nullopt;
    return warning(
        "products.gap", productsListFile(),
        QStringLiteral("Its numbers are %1 instead of 1 to %2, so that the next release that is listed may take "
                       "the place of another.")
            .arg(numbers.join(QStringLiteral(", ")))
            .arg(numbers.size()),
        QStringLiteral("Number the list from 1 on in a text editor."));
}

Findings doubleFindings(const Products& products)
{
    Findings findings;
    QSet<QString> entries;
    for (const ListedProduct& product : products) {
        if (entries.contains(product.entry))
            findings.push_back(warning("products.double", called(product),
                                       QStringLiteral("The entry is listed under two numbers."), editIt()));
        entries.insert(product.entry);
    }
    return findings;
}

std::optional<Finding> entryFinding(const ListedProduct& product)
{
    if (!product.isComplete)
        return warning("products.no-entry", called(product),
                       QStringLiteral("The list names it and tells nothing of it."),
                       QStringLiteral("Delete its number in a text editor, and list it again: vruinfo first-run"));
    if (!product.isThere())
        return warning("products.location", called(product),
                       QStringLiteral("Its location %1 is no directory any more.").arg(product.location),
                       QStringLiteral("Delete its number and its group in a text editor, or install it there again."));
    return std::nullopt;
}

/// The list knows two languages only.
bool isChinese(const QString& language)
{
    return language == QLatin1String("zh-CN");
}

bool isListed(const Products& products, const Trial& trial)
{
    return std::any_of(products.begin(), products.end(), [&trial](const ListedProduct& product) {
        return product.product == trial.product() && product.version == trial.version() &&
               isChinese(product.language) == isChinese(trial.language());
    });
}

Finding notListed(const Trial& trial)
{
    return note("products.not-listed", productsListFile(),
                QStringLiteral("This release (%1 %2) is not in the user's list of installed products.")
                    .arg(trial.product(), trial.version()),
                QStringLiteral("Run the application's first start, or: vruinfo first-run"));
}

Findings listFindings(const Trial& trial)
{
    const auto products = readProductsList();
    if (!products)
        return {warning("products.unreadable", productsListFile(), products.problem().text, editIt())};
    Findings findings = doubleFindings(*products);
    append(findings, gapFinding(*products));
    for (const ListedProduct& product : *products)
        append(findings, entryFinding(product));
    if (trial.hasStarted() && !isListed(*products, trial))
        findings.push_back(notListed(trial));
    return findings;
}

} // namespace

Findings checkProductsFile(const Patient&)
{
    const QString file = productsListFile();
    Findings findings;
    if (FileState::of(file).kind != FileState::Kind::Missing)
        append(findings,
               faultFinding(
                   file,
                   {"products.", Severity::Note, Severity::Warning, "so that installed products are not known", {}}));
    if (!damagedLines(bytesOf(file, kMostBytes).value_or(QByteArray())).empty())
        findings.push_back(
            warning("products.damaged", file,
                    QStringLiteral("It has lines that are no settings; they are not read, and are gone when "
                                   "the list is next written."),
                    editIt()));
    append(findings, lockFinding("products.lock", file + QStringLiteral(".lock")));
    return findings;
}

Findings checkProducts(const Patient& patient)
{
    const QString file = productsListFile();
    const FileState state = FileState::of(file);
    if (state.kind == FileState::Kind::Missing && patient.trial.hasStarted())
        return {notListed(patient.trial)};
    if (!state.isReadableFile())
        return {};
    const Finding broken = warning("products.unreadable", file, QStringLiteral("Reading it"), editIt());
    return checkIsolated([&patient] { return listFindings(patient.trial); }, broken);
}

} // namespace vruinfo::tool::doctor
