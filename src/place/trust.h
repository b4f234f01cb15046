// What a process with rights of its own may take from the settings of a user.
#pragma once

#include <optional>
#include <string>

namespace vruinfo::internal
{

/// Whether this process has rights that whoever wrote its settings may not have: those of its program's file, or those
/// of root where the settings file or its directory belongs to somebody else.
[[nodiscard]] bool exceedsRightsOf(const std::wstring& settingsFile);

/// Under what name a process with such rights may load a library that settings name: the real one, when the library
/// lies in the installation's directory, which ends with its separator, or nobody but root and the process' own user
/// can put another in its place. A name without a directory is one of the system's and stays as it is.
[[nodiscard]] std::optional<std::wstring> trustedLibrary(const wchar_t* name, const wchar_t* installation);

} // namespace vruinfo::internal
