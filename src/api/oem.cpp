#include "VrUInfo/Oem.h"

#include "VrUInfo/VornaConfig.h"

const wchar_t* GetOemProductName()
{
    return vornConfig()->oemProductName();
}

const wchar_t* GetOemCompanyName()
{
    return vornConfig()->oemCompanyName();
}

const wchar_t* GetOemCompanyLtdName()
{
    return vornConfig()->oemCompanyLtdName();
}

QIcon* GetOemAppIcon(bool large)
{
    return vornConfig()->oemAppIcon(large);
}

const wchar_t* GetOemAppIconPath()
{
    return vornConfig()->oemAppIconPath();
}

HMODULE GetOemResourceDllHandle()
{
    return VornaConfig::oemResourceDllHandle();
}

bool getOemResourceString(unsigned int id, std::wstring& text)
{
    return vornConfig()->getOemResourceString(id, text);
}
