/// \file Resources.h
/// Resource libraries of the current language, the help file, and the library's process hooks.
///
/// Conventions of this header:
///  1. A capacity counts characters and includes the terminator. A path result is its length without the
///  terminator, 0 on
///     failure (the buffer may then hold the executable's path or a part of it).
///  2. Handles belong to the loader; libraries loaded here stay loaded. Start-up or user-interface thread.
#pragma once

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/Export.h"

/// Handle of the language resource library ("libVrUInfoRes.so"); null until it is first needed; freed at
/// unload.
extern VRUINFO_API HMODULE gVrUInfoResDllInstance;

/// Directory of the current language's resources: program directory and short name, without a separator at
/// the end. The directory's length, that of the short name and 2 must be less than size - 1.
VRUINFO_API unsigned int GetResourceDllPath(wchar_t* path, unsigned int size);
/// The same with a given name instead of the language's; 0 for a null or empty name.
VRUINFO_API unsigned int GetResourceDllPath(const wchar_t* name, wchar_t* path, unsigned int size);
/// As the first, but the unknown language is looked up in "VORNA.ini": number `LocaleId` of section `Product`
/// (2052 when absent), as key of section `LocaleIdLangName`; 0 when that is empty. A number of 0 or below
/// gives "unknown".
VRUINFO_API unsigned int GetResourceDllPathLocal(wchar_t* path, unsigned int size);
/// Program directory and "CommonBin/lib".
VRUINFO_API unsigned int GetResourceTlbPath(wchar_t* path, unsigned int size);

/// Loads a library from the current language's directory; if that fails, by its bare name where the system's
/// loader searches. Null for a null or empty name, and when neither can be loaded.
VRUINFO_API HMODULE LoadResourceDll(const wchar_t* fileName);
/// The same with the file handle and flags of `LoadLibraryExW`.
VRUINFO_API HMODULE LoadResourceDllEx(const wchar_t* fileName, HANDLE file, DWORD flags);

/// Path of the help file: program directory, short name, "/Help/VrHelp.pdf" (whether or not it is there). Its
/// length must be less than size - 1; buffer untouched on failure.
VRUINFO_API int GetHelpFilePath(wchar_t* path, int size);

/// The partner's resource library: the text value "CommonSettings\CustomResFile" of the current profile; if
/// there is no such value, "VrCustomRes.so" of the local language directory, which is then loaded and
/// recorded. Only while `VornaConfig::isNeedCheckOemPath`. \param path [out] kVornPathCapacity characters;
/// empty on failure
VRUINFO_API unsigned int GetCustomResFileName(wchar_t* path);

extern "C" {
/// Process hook: reason 1 on load, 0 on unload (frees `gVrUInfoResDllInstance`). Called by the library
/// itself; always 1.
VRUINFO_API BOOL DllMain(HMODULE module, DWORD reason, LPVOID reserved);
}
