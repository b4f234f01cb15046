/// \file Lookups.h
/// Single settings and places that modules ask for without knowing where they are kept.
///
/// A path buffer has room for kVornPathCapacity characters, terminator included (null: 0, nothing is done); it is empty
/// when the function fails. Lengths do not count the terminator. Nothing is printed, nothing throws but values
/// (VornVariant.h). Any thread, after `InitVornConfig`.
#pragma once

#include "VrUInfo/Export.h"

/// Whether the brand's name goes into the window title: key `MergeTitle` of section `PartnerOEM` of "VORNA.ini".
/// \return the number there, 0 for a text that is no number; `defaultValue` when there is no such key, or a negative
/// one
VRUINFO_API int GetVornIniOEMMergeTitleValue(int defaultValue);

/// The file that styles the user interface: the text of the value "UIStyle" of item "Config" below
/// VornaConfig::UserConfigRoot; where there is no such value, "Style.zus" in the user's support folder.
/// \return its length; 0 when the value is no text, is empty or longer than 1023 characters, or when that folder's
///   path cannot be had or leaves no room
VRUINFO_API unsigned int GetVornUIStyleConfigFilePath(wchar_t* path);

/// Whether the settings of an older release wait to be taken over: the integer "AutoMigrate" of the current language is
/// 1 (see `CreateConfigReg`).
VRUINFO_API bool GetIsNeedStartMigrator();

/// Whether a module, by its base name in any case, is one of those that the product loads by itself.
VRUINFO_API bool GetCurrentFileIsVORNARegAutoLoadFile(const wchar_t* name);

/// Where the editor's extension for the product's Lisp dialect is installed: "HALVIK.VrLisp" in the folder
/// ".vscode/extensions" of the user's home, when a folder there has that in its name, in any case.
/// The path ends in exactly these letters, also when the folder's own name carries a version.
/// \return its length; 0 when there is no such folder, or the path does not fit
VRUINFO_API unsigned int GetVrLispVSCodeExtensionDirectory(wchar_t* path);
