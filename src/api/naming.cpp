#include "VrUInfo/Naming.h"

#include <array>
#include <cwchar>
#include <mutex>
#include <optional>
#include <string>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/VornaConfig.h"
#include "VrUInfo/VornaProduct.h"
#include "build_identifier.h"
#include "config/identity_names.h"
#include "place/program_place.h"
#include "store/value_conversion.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr std::size_t kLongestBaseName = 255;
constexpr wchar_t kReleaseIni[] = L"product.ini";

int printIdentifier(wchar_t* buffer, unsigned int size, bool withTag, const wchar_t* identifier)
{
    if (!buffer)
        return 0;
    return std::swprintf(buffer, size, withTag ? L"VERNUM = \"%ls\"" : L"%ls", identifier);
}

/// The prefix in the executable's own INI file; nothing when that file cannot be named.
std::optional<std::wstring> readPreName()
{
    const std::optional<ProgramPlace> place = ProgramPlace::find();
    if (!place || place->directory.empty() || place->baseName.empty())
        return std::nullopt;
    const std::wstring ini = place->directory + place->baseName.substr(0, kLongestBaseName) + L".ini";
    std::array<wchar_t, kPathCapacity> preName{};
    GetPrivateProfileStringW(kProductSection, kPrefixKey, L"", preName.data(), kPathCapacity, ini.c_str());
    return preName.data();
}

/// An integer of the release's INI file; 0 for what is no integer.
std::optional<int> releaseNumber(const wchar_t* key)
{
    VornVariant number;
    if (vornConfig()->getIniValue(kProductSection, key, number, VornVariant::kVarInt32, kReleaseIni) != Vorn::eOk)
        return std::nullopt;
    return int32Of(number);
}

using Prefix = std::array<wchar_t, 32>; // two integers with their signs, "S" and "_"

/// Leaves the prefix as it is while a number cannot be read.
void buildPrefix(Prefix& prefix)
{
    const std::optional<int> major = releaseNumber(L"MajorVer");
    const std::optional<int> product = major ? releaseNumber(L"ProductId") : std::nullopt;
    if (product)
        std::swprintf(prefix.data(), prefix.size(), L"S%d%d_", *major, *product);
}

} // namespace

int GetVerNum(wchar_t* buffer, unsigned int size, bool withTag)
{
    return printIdentifier(buffer, size, withTag, kBuildIdentifier);
}

int GetResVerNum(wchar_t* buffer, unsigned int size, bool withTag)
{
    return printIdentifier(buffer, size, withTag, L"");
}

const wchar_t* GetVornProgramVersionString()
{
    return vornGetProduct()->version();
}

const wchar_t* GetServicePackageVersionString()
{
    return L"";
}

const wchar_t* GetCurrentProductName()
{
    return vornConfig()->productName();
}

int GetVornReleaseMajorVer()
{
    return vornGetProduct()->releaseMajorVer();
}

int GetVornReleaseMinorVer()
{
    return vornGetProduct()->releaseMinorVer();
}

unsigned int GetVornProgramName(wchar_t* name)
{
    if (!name || !writeExecutable(name, kPathCapacity))
        return 0;
    return static_cast<unsigned int>(keepBaseName(name));
}

unsigned int GetVornProductPreName(wchar_t* preName)
{
    if (!preName)
        return 0;
    static const std::wstring kPreName = readPreName().value_or(std::wstring());
    copyBounded(preName, kPathCapacity, kPreName.c_str());
    return static_cast<unsigned int>(kPreName.size());
}

const wchar_t* GetVornArchitectrueCommandNamePrefix()
{
    static std::mutex mutex;
    static Prefix prefix{};
    const std::lock_guard<std::mutex> lock(mutex);
    if (prefix[0] == L'\0')
        buildPrefix(prefix);
    return prefix[0] == L'\0' ? L"" : prefix.data(); // what is handed out never changes
}
