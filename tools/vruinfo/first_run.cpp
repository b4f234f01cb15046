#include "commands.h"

#include <algorithm>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QTemporaryDir>

#include "VrUInfo/ErrorStatus.h"
#include "VrUInfo/FirstRun.h"
#include "products_list.h"
#include "store.h"
#include "tree_snapshot.h"

namespace vruinfo::tool
{
namespace
{

/// Another home for the process, while it lives.
class [[nodiscard]] OtherHome final
{
public:
    explicit OtherHome(const QString& home) { qputenv("HOME", QFile::encodeName(home)); }
    OtherHome(const OtherHome&) = delete;
    OtherHome& operator=(const OtherHome&) = delete;
    ~OtherHome() { m_former.isNull() ? qunsetenv("HOME") : qputenv("HOME", m_former); }

private:
    QByteArray m_former = qgetenv("HOME");
};

/// What this release is listed as. The library alone knows how it makes that name of the identity: in an empty home,
/// the only entry of its list is the one. Empty when there is no room for that.
QString ownEntry()
{
    const QTemporaryDir home;
    if (!home.isValid() || !QDir(home.path()).mkpath(QStringLiteral(".local/share")))
        return {};
    const OtherHome other(home.path());
    CreateProductsConfigReg();
    const auto products = readProductsList();
    return products && !products->empty() ? products->front().entry : QString();
}

bool isListed(const QString& entry)
{
    const auto products = readProductsList();
    return products && std::any_of(products->begin(), products->end(),
                                   [&entry](const ListedProduct& product) { return product.entry == entry; });
}

/// What became of the products list.
struct Listing {
    QString entry;
    bool isAdded = false;
    std::optional<Problem> problem;
};

Problem directoryNotMade(const QString& directory)
{
    return {Exit::Failed, QStringLiteral("the directory of the products list, %1, cannot be made; make %2 a directory "
                                         "that this user may write in")
                              .arg(directory, QFileInfo(directory).path())};
}

Problem listNotWritten()
{
    return {Exit::Failed, QStringLiteral("the products list %1 could not be written; make the file and its directory "
                                         "writable for this user and see that the disk has room")
                              .arg(productsListFile())};
}

Listing enterProductsList()
{
    Listing listing;
    listing.entry = ownEntry();
    const bool wasListed = isListed(listing.entry);
    const QString directory = QFileInfo(productsListFile()).path();
    QDir().mkpath(QFileInfo(directory).path()); // the library makes the last one only
    if (!CreateProductsConfigReg()) {
        listing.problem = directoryNotMade(directory);
        return listing;
    }
    // The library does not see whether the file could be written.
    const bool isListedNow = isListed(listing.entry);
    listing.isAdded = isListedNow && !wasListed;
    if (!isListedNow)
        listing.problem = listNotWritten();
    return listing;
}

/// What a first run did.
struct FirstRun {
    unsigned int status = 0; ///< Of the default keys.
    Changes changes;
    Listing listing;
};

std::optional<Problem> problemOf(unsigned int status)
{
    if (status == Vorn::eOk)
        return std::nullopt;
    const QString meaning = status == Vorn::eMissing
                                ? QStringLiteral("what was written below the product does not read back")
                                : QStringLiteral("there is no configuration to take them from");
    return Problem{Exit::Failed,
                   QStringLiteral("the default keys could not be written (status %1): %2").arg(status).arg(meaning)};
}

void printLines(Printer& printer, const FirstRun& run)
{
    printChanges(printer, Place(QString()), run.changes);
    if (run.changes.empty())
        printer.line(QStringLiteral("%1: all that a first run writes stands there already").arg(settingsFile()));
    if (run.listing.problem)
        return;
    const QString what =
        run.listing.isAdded ? QStringLiteral("%1 was added") : QStringLiteral("%1 stands there already");
    printer.line(productsListFile() + QStringLiteral(": ") + what.arg(run.listing.entry));
}

void printJson(Printer& printer, const FirstRun& run)
{
    const QJsonObject list{{QStringLiteral("file"), productsListFile()},
                           {QStringLiteral("entry"), run.listing.entry},
                           {QStringLiteral("added"), run.listing.isAdded},
                           {QStringLiteral("ok"), !run.listing.problem}};
    printer.json(QJsonDocument(QJsonObject{{QStringLiteral("status"), static_cast<qint64>(run.status)},
                                           {QStringLiteral("changes"), changesJson(Place(QString()), run.changes)},
                                           {QStringLiteral("productsList"), list}}));
}

Exit report(const Context& context, const FirstRun& run)
{
    context.wantsJson() ? printJson(context.printer(), run) : printLines(context.printer(), run);
    Exit exit = Exit::Done;
    for (const std::optional<Problem>& problem : {problemOf(run.status), run.listing.problem}) {
        if (problem)
            exit = context.fail(*problem);
    }
    return exit;
}

} // namespace

Exit runFirstRun(Context& context)
{
    const Place top{QString()};
    context.openSettings(Purpose::Run);
    const Snapshot before = liveSnapshot(top);
    if (const auto problem = context.start(Purpose::Run))
        return context.fail(*problem);
    FirstRun run;
    run.status = CreateConfigReg();
    run.changes = changesBetween(before, liveSnapshot(top));
    // The tree comes first: while it cannot be written, nothing is.
    if (const auto problem = saveChanges(context.printer()))
        return context.fail(*problem);
    run.listing = enterProductsList();
    return report(context, run);
}

} // namespace vruinfo::tool
