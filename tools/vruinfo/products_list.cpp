#include "products_list.h"

#include <algorithm>
#include <array>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>

#include "VrUInfo/Paths.h"
#include "VrUInfo/VornaConfig.h"
#include "settings_copy.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

QString numbersGroup()
{
    return QStringLiteral("InstalledProducts");
}

QString programDirectory()
{
    std::array<wchar_t, kVornPathCapacity> path{};
    GetVornProgramPath(path.data());
    return fromWide(path.data());
}

/// Numbers by their size; what is no number comes first, by its text.
bool isBefore(const ListedProduct& left, const ListedProduct& right)
{
    const int leftNumber = left.number.toInt();
    const int rightNumber = right.number.toInt();
    return leftNumber != rightNumber ? leftNumber < rightNumber : left.number < right.number;
}

/// The numbers with the entries they stand for.
std::vector<ListedProduct> numbered(QSettings& list)
{
    std::vector<ListedProduct> products;
    list.beginGroup(numbersGroup());
    for (const QString& number : list.childKeys()) {
        ListedProduct product;
        product.number = number;
        product.entry = list.value(number).toString();
        products.push_back(product);
    }
    list.endGroup();
    std::sort(products.begin(), products.end(), isBefore);
    return products;
}

void readEntry(QSettings& list, ListedProduct& product)
{
    if (product.entry.isEmpty())
        return;
    list.beginGroup(product.entry);
    product.isComplete = !list.childKeys().isEmpty();
    product.name = list.value(QStringLiteral("ProductName")).toString();
    product.product = list.value(QStringLiteral("Product")).toString();
    product.language = list.value(QStringLiteral("Language")).toString();
    product.version = list.value(QStringLiteral("Version")).toString();
    product.location = list.value(QStringLiteral("Location")).toString();
    list.endGroup();
}

} // namespace

bool ListedProduct::isThere() const
{
    return !location.isEmpty() && QFileInfo(location).isDir();
}

bool ListedProduct::isThisInstallation() const
{
    return isThere() && QFileInfo(location).canonicalFilePath() == QFileInfo(programDirectory()).canonicalFilePath();
}

QString productsListFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::HomeLocation) +
           QStringLiteral("/.local/share/HALVIK/VR2D.conf");
}

Result<std::vector<ListedProduct>> readProductsList()
{
    const QString file = productsListFile();
    if (!QFileInfo::exists(file))
        return Problem{
            Exit::NotFound,
            QStringLiteral("there is no products list %1 yet; `vruinfo first-run` enters this release into it")
                .arg(file)};
    const SettingsCopy copy(file);
    if (!copy.isOpen())
        return Problem{Exit::Failed,
                       QStringLiteral("the products list %1 cannot be read, or not be copied to %2; make it readable "
                                      "for this user, take damaged values out, and see that the disk has room")
                           .arg(file, QDir::tempPath())};
    std::vector<ListedProduct> products = numbered(copy.settings());
    for (ListedProduct& product : products)
        readEntry(copy.settings(), product);
    return products;
}

} // namespace vruinfo::tool
