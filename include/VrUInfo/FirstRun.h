/// \file FirstRun.h
/// What a host writes when it runs for the first time: default keys of the settings tree, and its entry in the user's
/// list of installed products. Both after `InitVornConfig`; the library never calls them by itself.
#pragma once

#include "VrUInfo/Export.h"

class QSettings;
class QString;

/// Writes the current version, product, language and profile into the settings tree, and the migration flag:
///   - "CurVer" of ProductNameRoot: `GetVornProgramVersionString()`;
///   - "CurVer" of "Software/<company>": the product name, only when ProductNameRoot held nothing at the call;
///   - "CurVer" of VersionRoot: the current language's short name;
///   - "Profiles" of ProfilesRoot: the current profile's name;
///   - "AutoMigrate" of LanguageRoot, an integer, when it is missing: 1 when an older release has this language, else
///     2; a 1 becomes 2 when there is no such release (any more). Every other content stays.
/// Several store operations, not one: other threads may write between them. Any thread.
/// \return 0, also when a later write was refused; 5 when ProductNameRoot holds nothing after its value was written (no
///   settings object, or before `InitVornConfig`); 7 without a configuration object
/// \throws VrErrorStatus* with status 6 when memory ends
VRUINFO_API unsigned int CreateConfigReg();

/// Lists this release in the user's products list, ".local/share/HALVIK/VR2D.conf" in the home, unless it stands there
/// already; see `VornaConfig::createProductsConfigReg`. \return false when the list's directory cannot be made
VRUINFO_API bool CreateProductsConfigReg();

/// \name Parts of the products list
/// @{

/// Writes the group `entryKey` with "Location" (the running program's directory; empty when its path is longer than
/// 1022 characters and there is no application object), "ProductName", "Product", "Language" and "Version", each a
/// plain string. The name is spelt as modules bind to it.
VRUINFO_API void wrirteProductInfo(QSettings& settings, const QString& entryKey, const QString& displayName,
                                   const QString& productCode, const QString& languageName, const QString& version);
/// Writes one key of a group as a string.
VRUINFO_API void setValue(QSettings& settings, const QString& group, const QString& key, const QString& value);
/// The product code to list. \param code [out] `name`, or "VORNA" when that is null or empty
VRUINFO_API void getProductName(const wchar_t* name, QString& code);
/// The language name to list. \param language [out] `shortName`, or "zh-CN" when that is null or empty
VRUINFO_API void getLangName(const wchar_t* shortName, QString& language);
/// @}
