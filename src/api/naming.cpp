#include "VrUInfo/Naming.h"

#include <array>
#include <mutex>
#include <string>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/VornaProduct.h"
#include "config/identity_names.h"
#include "place/program_place.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr DWORD kPreNameLimit = 1023;
constexpr std::size_t kLongestBaseName = 255;

/// The prefix in the executable's own INI file; nothing when that file cannot be named.
std::optional<std::wstring> readPreName()
{
    const std::optional<ProgramPlace> place = ProgramPlace::find();
    if (!place || place->directory.empty() || place->baseName.empty())
        return std::nullopt;
    const std::wstring ini = place->directory + place->baseName.substr(0, kLongestBaseName) + L".ini";
    std::array<wchar_t, kPathCapacity> preName{};
    GetPrivateProfileStringW(kProductSection, kPrefixKey, L"", preName.data(), kPreNameLimit, ini.c_str());
    return preName.data();
}

} // namespace

const wchar_t* GetVornProgramVersionString()
{
    return vornGetProduct()->version();
}

unsigned int GetVornProductPreName(wchar_t* preName)
{
    if (!preName)
        return 0;
    static const std::wstring kPreName = readPreName().value_or(std::wstring());
    copyBounded(preName, kPathCapacity, kPreName.c_str());
    return static_cast<unsigned int>(kPreName.size());
}
