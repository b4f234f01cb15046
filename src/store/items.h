// What the exported value and item operations have in common.
#pragma once

#include <cstddef>
#include <optional>

#include "VrUInfo/VornaConfig.h"
#include "store/key_path.h"

namespace vruinfo::internal
{

/// A root of the tree; nothing when there is none.
[[nodiscard]] std::optional<KeyPath> rootPath(const VornaConfig& config, VornaConfig::Path root);
/// root/subPath, the sub-path normalised first; nothing when there is no such root or it does not fit.
[[nodiscard]] std::optional<KeyPath> itemPath(const VornaConfig& config, VornaConfig::Path root,
                                              const wchar_t* subPath);
/// A free key path, normalised; nothing when it is too long.
[[nodiscard]] std::optional<KeyPath> freePath(const wchar_t* key);

/// Reads a value under the store lock. The settings object must be there. \return eOk or eNotFound
[[nodiscard]] unsigned int readValue(const QString& item, const QString& name, VornVariant& out);
/// The same; a null name is the empty one, which is never there.
[[nodiscard]] unsigned int readValue(const KeyPath& item, const wchar_t* name, VornVariant& out);

} // namespace vruinfo::internal
