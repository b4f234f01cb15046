/// \file Naming.h
/// What this program and its release are called.
#pragma once

#include "VrUInfo/Export.h"

/// The product object's version text, "2026". Never null; the library's.
VRUINFO_API const wchar_t* GetVornProgramVersionString();

/// The prefix of the product's library names: key `PreStr` of section `Product` of the INI file named after
/// the executable and lying beside it. Read once per process. \param preName [out] kVornPathCapacity
/// characters; empty on failure \return its length without the terminator; 0 when there is none
VRUINFO_API unsigned int GetVornProductPreName(wchar_t* preName);
