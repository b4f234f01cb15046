// The installation's INI files, which lie beside the executable.
#include <array>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/Paths.h"
#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "place/program_place.h"
#include "store/value_conversion.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr std::size_t kLongestIniPath = 1022;
constexpr unsigned int kPathSize = 1023;
constexpr unsigned int kTextCapacity = 1024;
constexpr unsigned int kTextSize = 1023;
constexpr int kAbsent = -1;

bool namesNothing(const wchar_t* section, const wchar_t* key)
{
    return isEmpty(section) || isEmpty(key);
}

} // namespace

unsigned int VornaConfig::getIniFilePath(wchar_t* path, const wchar_t* fileName)
{
    if (!path || !fileName)
        return Vorn::eFailed;
    path[0] = L'\0';
    const unsigned int directory = GetProgramPath(path, kPathSize);
    if (directory == 0 || directory + std::wcslen(fileName) > kLongestIniPath)
        return Vorn::eFailed;
    std::wmemcpy(path + directory, fileName, std::wcslen(fileName) + 1);
    return Vorn::eOk;
}

unsigned int VornaConfig::readIniString(const wchar_t* section, const wchar_t* key, wchar_t* buffer, unsigned int size,
                                        const wchar_t* fileName)
{
    if (namesNothing(section, key) || !buffer || size <= 1)
        return Vorn::eNotFound;
    std::array<wchar_t, kPathCapacity> path{};
    const unsigned int status = getIniFilePath(path.data(), fileName);
    if (status != Vorn::eOk)
        return status;
    if (!isReadable(path.data()))
        return Vorn::eNotFound;
    if (GetPrivateProfileStringW(section, key, nullptr, buffer, size - 1, path.data()) == 0)
        return Vorn::eNotFound;
    return buffer[0] != L'\0' ? Vorn::eOk : Vorn::eNotFound;
}

unsigned int VornaConfig::readIniInt(const wchar_t* section, const wchar_t* key, int& value, const wchar_t* fileName)
{
    if (namesNothing(section, key))
        return Vorn::eNotFound;
    std::array<wchar_t, kPathCapacity> path{};
    const unsigned int status = getIniFilePath(path.data(), fileName);
    if (status != Vorn::eOk)
        return status;
    if (!isReadable(path.data()))
        return Vorn::eNotFound;
    value = static_cast<int>(GetPrivateProfileIntW(section, key, kAbsent, path.data()));
    return value < 0 ? Vorn::eNotFound : Vorn::eOk;
}

unsigned int VornaConfig::getIniValue(const wchar_t* section, const wchar_t* key, VornVariant& value,
                                      VornVariant::VarType type, const wchar_t* fileName)
{
    if (namesNothing(section, key))
        return Vorn::eNotFound;
    if (type == VornVariant::kVarString)
        return readIniText(section, key, value, fileName);
    if (type == VornVariant::kVarInt32)
        return readIniNumber(section, key, value, fileName);
    return Vorn::eUnsupportedType;
}

unsigned int VornaConfig::readIniText(const wchar_t* section, const wchar_t* key, VornVariant& value,
                                      const wchar_t* fileName)
{
    std::array<wchar_t, kTextCapacity> text{};
    const unsigned int status = readIniString(section, key, text.data(), kTextSize, fileName);
    if (status == Vorn::eOk)
        value.setString(text.data(), VornVariant::kVarString);
    return status;
}

unsigned int VornaConfig::readIniNumber(const wchar_t* section, const wchar_t* key, VornVariant& value,
                                        const wchar_t* fileName)
{
    int number = 0;
    const unsigned int status = readIniInt(section, key, number, fileName);
    if (status == Vorn::eOk)
        setInt32(value, number);
    return status;
}

bool GetVornIniConfigValue(const wchar_t* section, const wchar_t* key, VornVariant& value, VornVariant::VarType type)
{
    return vornConfig()->getIniValue(section, key, value, type, kProductIni) == Vorn::eOk;
}
