// A user's folder and the components below it, built in a caller's buffer.
#pragma once

namespace vruinfo::internal
{

/// The user's folders, by their shell numbers.
enum class UserFolder { Roaming = 26, Local = 28, Profile = 40 };

/// How far below a user's folder a path goes: each level adds one component.
enum class FolderLevel { Base, Company, Product, Version, Language };

/// Writes the folder with a separator at its end into a buffer of kVornPathCapacity characters.
/// \return its length; 0 when a component is empty or the path does not fit (an upper part may stand in the
/// buffer)
[[nodiscard]] unsigned int writeFolder(UserFolder folder, FolderLevel level, wchar_t* buffer);

} // namespace vruinfo::internal
