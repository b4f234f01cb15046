// The settings tree through the library.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <QtCore/QStringList>

#include "VrUInfo/VornVariant.h"
#include "context.h"
#include "result.h"
#include "stored_value.h"
#include "tree_path.h"

namespace vruinfo::tool
{

struct NamedValue {
    QString name;
    StoredValue value;
};

/// What lies right in an item, each list sorted by name.
struct ItemContent {
    QStringList items;
    std::vector<NamedValue> values;

    [[nodiscard]] bool isEmpty() const { return items.isEmpty() && values.empty(); }
};

/// The place that a text names, with the settings open. A path that begins with a root is one of the start that the
/// options give; what that start remembers is taken back. A path from the top needs no start.
[[nodiscard]] Result<Place> placeOf(const Context& context, const QString& text, TreePath::Kind kind, Purpose purpose);
/// That of a command's first argument.
[[nodiscard]] Result<Place> placeOf(const Context& context, TreePath::Kind kind, Purpose purpose);

[[nodiscard]] std::optional<StoredValue> readValue(const Place& place);
[[nodiscard]] ItemContent readItem(const Place& place);

[[nodiscard]] std::optional<Problem> writeValue(const Place& place, const VornVariant& value);
/// Removes the value and the item of that name, with everything below it.
void removeAll(const Place& place);

/// Where the settings lie; the settings must be open.
[[nodiscard]] QString settingsFile();
/// A dated copy of the settings file beside it, for what changes much at once. \return its name; empty when there is no
/// settings file yet
[[nodiscard]] Result<QString> backUp();
/// Brings the changes into the settings file; warns of lines in it that were no settings, since they are gone then.
/// \return what stood against it
[[nodiscard]] std::optional<Problem> saveChanges(Printer& printer);
/// Nothing is at the place; or the settings file could not be read, so that nobody knows.
[[nodiscard]] Problem absent(const Place& place, const QString& what);

} // namespace vruinfo::tool
