/// \file Paths.h
/// Where the program and its user's data lie on disk.
///
/// Conventions of this header:
///  1. Paths are only built; nothing is created on disk. The separator is "/"; a directory ends with one
///  unless a function
///     says otherwise.
///  2. A buffer without a capacity argument has room for kVornPathCapacity characters, terminator included;
///  the four leaf
///     folders below the roaming language folder need kVornLeafPathCapacity.
///  3. The result is the path's length without the terminator; 0 is failure, the buffer then holds an empty
///  text or the
///     upper part of the path. Null buffers give 0.
///  4. Everything follows the configuration object at the time of the call; only the program directory is
///  remembered. Any
///     thread, after `InitVornConfig`.
#pragma once

#include "VrUInfo/Export.h"

/// Characters, terminator included, that the leaf folder functions can need: their one shared length limit is
/// made for the shortest names, so "CrashReport" and "Printstyle" may pass kVornPathCapacity.
constexpr unsigned int kVornLeafPathCapacity = 1026;

/// The directory of the running executable. \param size capacity in characters with the terminator
/// \return 0, buffer untouched, when it does not fit
VRUINFO_API unsigned int GetProgramPath(wchar_t* path, unsigned int size);
VRUINFO_API unsigned int GetVornProgramPath(wchar_t* path); ///< As above with a size of 1023.

namespace VornProdUtil
{
/// Moves a process whose current directory is the program's "UserDataCache" folder (compared without regard
/// to case; a trailing separator makes it another text) to the user's documents folder, made if missing.
VRUINFO_API void SetWorkingDirectory();
} // namespace VornProdUtil

/// \name Roaming data: the user's configuration directory, company, product, version, language
/// @{
VRUINFO_API unsigned int GetUserApplicationDataPath(wchar_t* path);         ///< The configuration directory.
VRUINFO_API unsigned int GetUserApplicationDataComanyPath(wchar_t* path);   ///< ... and the company's folder.
VRUINFO_API unsigned int GetUserApplicationDataProductPath(wchar_t* path);  ///< ... and the product's.
VRUINFO_API unsigned int GetUserApplicationDataVersionPath(wchar_t* path);  ///< ... and the version's.
VRUINFO_API unsigned int GetUserApplicationDataLanguagePath(wchar_t* path); ///< ... and the language's.
/// @}

/// \name Leaf folders (buffers of kVornLeafPathCapacity)
/// 0 when the roaming language folder is longer than 1013 characters.
/// @{
VRUINFO_API unsigned int GetUserApplicationDataSupportPath(wchar_t* path);     ///< "Support/"
VRUINFO_API unsigned int GetUserApplicationDataPlottersPath(wchar_t* path);    ///< "Plotters/"
VRUINFO_API unsigned int GetUserApplicationDataCrashReportPath(wchar_t* path); ///< "CrashReport/"
VRUINFO_API unsigned int GetUserApplicationDataPrintstylePath(wchar_t* path);  ///< "Printstyle/"
/// @}

/// \name Local data: the user's data directory, company, product, version, language
/// @{
VRUINFO_API unsigned int GetUserLocalApplicationDataPath(wchar_t* path);         ///< The data directory.
VRUINFO_API unsigned int GetUserLocalApplicationDataComanyPath(wchar_t* path);   ///< ... and the company's folder.
VRUINFO_API unsigned int GetUserLocalApplicationDataProductPath(wchar_t* path);  ///< ... and the product's.
VRUINFO_API unsigned int GetUserLocalApplicationDataVersionPath(wchar_t* path);  ///< ... and the version's.
VRUINFO_API unsigned int GetUserLocalApplicationDataLanguagePath(wchar_t* path); ///< ... and the language's.
/// The templates: "//Template" behind the language folder's name, without a separator at the end; 0 when the
/// language folder is longer than 1012 characters.
VRUINFO_API unsigned int GetUserLocalApplicationDataTemplatePath(wchar_t* path);
/// @}

/// The home directory; 0 also when it is longer than 1021 characters.
VRUINFO_API unsigned int GetUserProfileDirectory(wchar_t* path);

/// The product object's cache folder (`IVornaProduct::userDataCacheDir`); no separator at its end.
VRUINFO_API const wchar_t* GetVornUserDataCachePath();
/// That folder, "/" and the language's short name; no separator at its end.
VRUINFO_API unsigned int GetVornUserDataCacheLanPath(wchar_t* path);
