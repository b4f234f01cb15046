// Everything at a place of the settings tree and below it, and the difference of two such contents.
#pragma once

#include <optional>
#include <vector>

#include <QtCore/QMap>
#include <QtCore/QString>

#include "printer.h"
#include "stored_value.h"
#include "tree_path.h"

class QSettings;

namespace vruinfo::tool
{

/// Values by their path below the place, sorted; the value at the place itself has the empty path.
using Snapshot = QMap<QString, StoredValue>;

/// The user's own values in a settings object.
[[nodiscard]] Snapshot snapshotOf(QSettings& settings, const Place& place);
/// The live tree's.
[[nodiscard]] Snapshot liveSnapshot(const Place& place);
/// The same, or a problem when the settings file could not be read, so that nobody knows.
[[nodiscard]] Result<Snapshot> readableSnapshot(const Place& place);
/// How many values the settings file has there that no snapshot has: their names have an empty part, which nothing can
/// read.
[[nodiscard]] int hiddenValues(const Place& place);

/// A value that is not the same in both.
struct Change {
    QString path;                      ///< Below the place.
    std::optional<StoredValue> before; ///< Nothing for one that comes.
    std::optional<StoredValue> after;  ///< Nothing for one that goes.
};
using Changes = std::vector<Change>;

/// By path.
[[nodiscard]] Changes changesBetween(const Snapshot& before, const Snapshot& after);

/// A full path from a place and what lies below it.
[[nodiscard]] QString joined(const Place& place, const QString& below);

/// A line a change: "+ path: value", "- path: value" or "~ path: value -> value", with a text in front.
void printChanges(Printer& printer, const Place& place, const Changes& changes, const QString& front = {});
/// An object a change: "path", "old" and "new", null where there is none.
[[nodiscard]] QJsonArray changesJson(const Place& place, const Changes& changes);

} // namespace vruinfo::tool
