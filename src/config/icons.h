// The icons' library, and whether there are icons to be had from it.
#pragma once

class QIcon;
class QString;

namespace vruinfo::internal
{

/// Loads what knows pictures, unless it is loaded.
void loadIconLibrary();

/// A new icon for a picture in the Qt resources; null when the icons' library cannot be loaded.
[[nodiscard]] QIcon* makeIcon(const QString& path);
/// Deletes the icon, if any, and sets the pointer to null.
void deleteIcon(QIcon*& icon);

} // namespace vruinfo::internal
