#include "product/language_library.h"

#include "VrUInfo/Resources.h"

namespace vruinfo::internal
{

HMODULE languageLibrary(const wchar_t* fileName)
{
    if (!gVrUInfoResDllInstance)
        gVrUInfoResDllInstance = LoadResourceDll(fileName);
    return gVrUInfoResDllInstance;
}

} // namespace vruinfo::internal
