// What the settings file makes of values that are no plain texts.
#pragma once

#include "result.h"
#include "tree_snapshot.h"

namespace vruinfo::tool
{

/// The paths whose values the settings library would not read back as they are: a list of one text comes back as the
/// text, for instance. Texts come back always. \return a problem when it cannot be tried
[[nodiscard]] Result<QStringList> changedBySaving(const Snapshot& values);

/// A value of a kind that this program cannot read whole (a colour or a font, whose kinds belong to libraries that it
/// does not have), and therefore cannot write either.
[[nodiscard]] bool isForeign(const QVariant& stored);
/// The same anywhere in the settings, where saving would lose its content. \return nothing when there is none
[[nodiscard]] std::optional<Problem> foreignValueInSettings();

} // namespace vruinfo::tool
