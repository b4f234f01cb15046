// The user's list of installed products, as the library writes it.
#pragma once

#include <vector>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include "result.h"

namespace vruinfo::tool
{

/// A product that the list names.
struct ListedProduct {
    QString number;
    QString entry;           ///< The group that tells about it.
    bool isComplete = false; ///< Whether there is such a group; without it, the texts below are empty.
    QString name;
    QString product;
    QString language;
    QString version;
    QString location;

    [[nodiscard]] bool isThere() const;            ///< Whether its location is a directory.
    [[nodiscard]] bool isThisInstallation() const; ///< Whether its location is the program directory.
};

[[nodiscard]] QString productsListFile();
/// By number. The file is left alone, and so is what stands beside it.
[[nodiscard]] Result<std::vector<ListedProduct>> readProductsList();

} // namespace vruinfo::tool
