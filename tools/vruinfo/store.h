// The settings tree through the library.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <QtCore/QStringList>

#include "VrUInfo/VornVariant.h"
#include "context.h"
#include "result.h"
#include "tree_path.h"

namespace vruinfo::tool
{

/// A value found; of a type that the library does not read, it has type kVarNone.
struct NamedValue {
    QString name;
    VornVariant value;
};

/// What lies right in an item, each list sorted by name.
struct ItemContent {
    QStringList items;
    std::vector<NamedValue> values;

    [[nodiscard]] bool isEmpty() const { return items.isEmpty() && values.empty(); }
};

/// The place that a command's first argument names, with the library started: the last thing to do before the store is
/// used, since a start is written to the settings.
[[nodiscard]] Result<Place> startAt(const Context& context, TreePath::Kind kind);

[[nodiscard]] std::optional<VornVariant> readValue(const Place& place);
[[nodiscard]] ItemContent readItem(const Place& place);

[[nodiscard]] std::optional<Problem> writeValue(const Place& place, const VornVariant& value);
/// Removes the value and the item of that name, with everything below it.
void removeAll(const Place& place);

/// Brings the changes into the settings file; warns of lines in it that were no settings, since they are gone then.
/// \return what stood against it
[[nodiscard]] std::optional<Problem> saveChanges(Printer& printer);
/// Nothing is at the place; or the settings file could not be read, so that nobody knows.
[[nodiscard]] Problem absent(const Place& place, const QString& what);

} // namespace vruinfo::tool
