/// \file Naming.h
/// What this program, its build and its release are called.
///
/// Texts handed out are the library's, nobody frees them. A buffer whose capacity a signature does not carry has
/// room for kVornPathCapacity characters, terminator included; lengths never count the terminator. Any thread.
#pragma once

#include "VrUInfo/Export.h"

/// Prints the build identifier, such as "26.00_2025.06.25(#13215-01c20d49625)_Linux_arm64": release, build date, build
/// number and source revision, system and processor, as set when the library was built.
/// \param buffer  [out] null: nothing is done
/// \param size    capacity in characters, terminator included
/// \param withTag prints VERNUM = "identifier" instead
/// \return what the platform's `swprintf` returns: the length printed, negative when the text does not fit (the
///   buffer then holds what `swprintf` left there); 0 for a null buffer
VRUINFO_API int GetVerNum(wchar_t* buffer, unsigned int size, bool withTag);
/// The same with an empty identifier: nothing, or VERNUM = "".
VRUINFO_API int GetResVerNum(wchar_t* buffer, unsigned int size, bool withTag);

VRUINFO_API const wchar_t* GetVornProgramVersionString();    ///< The product object's version, "2026". Never null.
VRUINFO_API const wchar_t* GetServicePackageVersionString(); ///< Always empty. Never null.
VRUINFO_API const wchar_t* GetCurrentProductName();          ///< The resolved product; "VORNA" until then.
VRUINFO_API int GetVornReleaseMajorVer();                    ///< The product object's `releaseMajorVer`.
VRUINFO_API int GetVornReleaseMinorVer();                    ///< The product object's `releaseMinorVer`.

/// The executable's name without directory and extension (what follows its last "."). \param name [out]
/// kVornPathCapacity characters; null: 0 \return its length; 0 when the executable's path is not known or has more
/// than 1023 characters
VRUINFO_API unsigned int GetVornProgramName(wchar_t* name);

/// The prefix of the product's library names: key `PreStr` of section `Product` of the INI file named after
/// the executable and lying beside it. Read once per process. \param preName [out] kVornPathCapacity
/// characters; empty on failure \return its length without the terminator; 0 when there is none
VRUINFO_API unsigned int GetVornProductPreName(wchar_t* preName);

/// The prefix of the architecture edition's command names, "S<MajorVer><ProductId>_" of the keys of section `Product`
/// of "product.ini": with 26 and 1 it is "S261_". Kept once both could be read; until then each call tries again.
/// \return the prefix; empty while a key cannot be read; never null
VRUINFO_API const wchar_t* GetVornArchitectrueCommandNamePrefix();
