// What the exported value and item operations have in common.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "VrUInfo/VornaConfig.h"
#include "store/key_path.h"

namespace vruinfo::internal
{

/// Writes a root into an empty path; false when there is no such root.
[[nodiscard]] bool appendRoot(const VornaConfig& config, VornaConfig::Path root, KeyPath& path);
/// root/subPath, the sub-path trimmed first; nothing when there is no such root or it does not fit.
[[nodiscard]] std::optional<KeyPath> itemPath(const VornaConfig& config, VornaConfig::Path root,
                                              const wchar_t* subPath);
/// The same for operations that need the settings object: nothing also while there is none.
[[nodiscard]] std::optional<KeyPath> storedItemPath(const VornaConfig& config, VornaConfig::Path root,
                                                    const wchar_t* subPath);
/// A free key path, trimmed; nothing when it is too long.
[[nodiscard]] std::optional<KeyPath> freePath(const wchar_t* key);

/// A value's name: a null name is no name.
using ValueName = std::optional<std::wstring_view>;
[[nodiscard]] ValueName valueName(const wchar_t* name);

/// Writes a value; the group is a transient or a lasting string. \return eOk; eMissing without a name or settings
/// object
[[nodiscard]] unsigned int writeValue(const QString& group, ValueName name, const VornVariant& value);
/// Reads a value under the store lock; the settings object must be there. \return eOk or eNotFound
[[nodiscard]] unsigned int readValue(const QString& group, const QString& name, VornVariant& out);
/// The same; afterwards the path is the value's.
[[nodiscard]] unsigned int readValue(KeyPath& item, ValueName name, VornVariant& out);

/// Removes an item and everything below it; the settings object must be there.
void removeTree(const QString& key);

} // namespace vruinfo::internal
