/// \file RootKeys.h
/// The roots of the settings tree as texts, and the current profile's name.
///
/// Each root function fills a buffer of kVornPathCapacity characters (terminator included; not null) and
/// returns the length written without the terminator, 0 when there is no such root (before `InitVornConfig`,
/// or too long): the buffer then holds an empty text unless the function says otherwise. Any thread, after
/// `InitVornConfig`.
#pragma once

#include "VrUInfo/Export.h"

VRUINFO_API unsigned int GetRegistryProductNameRootKey(wchar_t* key);        ///< VornaConfig::ProductNameRoot.
VRUINFO_API unsigned int GetRegistryVersionRootKey(wchar_t* key);            ///< VornaConfig::VersionRoot.
VRUINFO_API unsigned int GetVornRegistryLanguageRootKey(wchar_t* key);       ///< VornaConfig::LanguageRoot.
VRUINFO_API unsigned int GetRegistryProfilesRootKey(wchar_t* key);           ///< VornaConfig::ProfilesRoot.
VRUINFO_API unsigned int GetVornRegistryCurrentProfileRootKey(wchar_t* key); ///< VornaConfig::CurrentProfileRoot.
/// The current profile's root with "/Config" behind it. When that root is longer than 1014 characters: 0,
/// with the root itself left in the buffer.
VRUINFO_API unsigned int GetVornRegistryCurrentProfileConfigRootKey(wchar_t* key);

/// The current profile's name.
/// \param name   [out] receives it, terminated; may be null to ask for the size
/// \param length [in,out] capacity in characters with the terminator; on success as it was
/// \return the length copied; 0 with `length` the capacity needed when it is too small or `name` is null; 0
/// with `length`
///   0 when no profile is set and none is recorded as text in the unnamed value of ProfilesRoot
VRUINFO_API unsigned int GetCurrentProfileName(wchar_t* name, unsigned int& length);
