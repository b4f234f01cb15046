// Resolution of the user's profile.
#include <algorithm>
#include <array>
#include <mutex>
#include <set>
#include <string>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/Paths.h"
#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "config/identity_value.h"
#include "config/start_record.h"
#include "place/program_place.h"
#include "store/root_cache.h"
#include "store/store_group.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr wchar_t kProfileExtension[] = L".ARG";
constexpr std::size_t kExtensionLength = 4;
constexpr std::size_t kPartCapacity = 256;

/// The argument without the extension of a profile file, in whatever case that is written.
std::wstring profileStem(const std::wstring& profile, const wchar_t* extension)
{
    const bool hasExtension = _wcsicmp(extension, kProfileExtension) == 0;
    return hasExtension ? profile.substr(0, profile.size() - kExtensionLength) : profile;
}

/// The extension with the letters upper-cased that the bits of `which` leave so.
std::wstring extensionSpelling(unsigned int which)
{
    std::wstring spelling = kProfileExtension;
    for (std::size_t i = 1; i < kExtensionLength; ++i) {
        if ((which >> (i - 1)) & 1U)
            spelling[i] += L'a' - L'A';
    }
    return spelling;
}

/// Whether a profile file of that name lies beside the executable, its extension in any case.
bool isProfileFile(const std::wstring& profile, const wchar_t* extension)
{
    constexpr unsigned int kSpellings = 8;
    const std::wstring stem = programDirectory() + profileStem(profile, extension);
    for (unsigned int which = 0; which < kSpellings; ++which) {
        if (isThere((stem + extensionSpelling(which)).c_str()))
            return true;
    }
    return false;
}

/// Keeps each profile name that this process has had until it ends: other threads may still read a former
/// one. Called under the store lock.
wchar_t* keptProfileName(const wchar_t* name)
{
    static auto* const kNames = new std::set<std::wstring>; // never destroyed: names are read until the very end
    return const_cast<wchar_t*>(kNames->insert(name).first->c_str());
}

bool writeProfilesGroup(const wchar_t* productRoot, const wchar_t* language, wchar_t* group)
{
    WideWriter writer(group, kPathCapacity);
    return !isEmpty(productRoot) && writer.append(productRoot) && writer.appendComponent(language) &&
           writer.appendComponent(kProfilesValue);
}

} // namespace

unsigned int VornaConfig::initProfileName(const wchar_t* profile)
{
    if (isEmpty(profile))
        return Vorn::eOk;
    std::array<wchar_t, kPathCapacity> directory{};
    std::array<wchar_t, kPartCapacity> extension{};
    _wsplitpath(profile, nullptr, directory.data(), nullptr, extension.data());
    if (directory[0] != L'\0' || isProfileFile(profile, extension.data()))
        return Vorn::eNotBareName;
    const unsigned int status = initProfileNamePart(profile);
    if (status == Vorn::eOk)
        StartRecord::instance().take(L"profile", profile, VornOrigin::Argument);
    return status;
}

unsigned int VornaConfig::initProfileNamePart(const wchar_t* profile)
{
    if (isEmpty(profile))
        return Vorn::eOk;
    if (!isStoreThere())
        return Vorn::eMissing;
    std::array<wchar_t, kPathCapacity> group{};
    if (!writeProfilesGroup(m_productRootPath, m_language.shortName(), group.data()))
        return Vorn::eFailed;
    const std::lock_guard<VrLocker> lock(storeLock());
    m_profileName.store(keptProfileName(profile), std::memory_order_release);
    RootCache::instance().identityChanged();
    const IdentityValue recorded(group.data(), kProfilesValue);
    if (const auto text = recorded.read(Marks::TextOnly)) {
        std::array<wchar_t, kPathCapacity> stored{};
        copyBounded(stored.data(), stored.size(), text->c_str());
        if (_wcsicmp(stored.data(), profile) != 0)
            recorded.write(profile);
    }
    return Vorn::eOk;
}

unsigned int VornaConfig::updateProfileName(const wchar_t* name)
{
    return initProfileNamePart(name);
}

unsigned int VornaConfig::getCurrentProfileNameFromReg(wchar_t* name, const wchar_t* group) const
{
    if (!isStoreThere())
        return Vorn::eMissing;
    if (!name)
        return Vorn::eFailed;
    name[0] = L'\0';
    std::array<wchar_t, kPathCapacity> profilesRoot{};
    if (isEmpty(group)) {
        getRegRootPath(ProfilesRoot, profilesRoot.data());
        group = profilesRoot.data();
    }
    if (isEmpty(group))
        return Vorn::eFailed;
    const std::lock_guard<VrLocker> lock(storeLock());
    const IdentityValue recorded(group, kProfilesValue);
    const auto text = recorded.resolve(Marks::Any);
    copyBounded(name, kPathCapacity, text ? text->c_str() : kDefaultProfile);
    if (!text)
        recorded.write(kDefaultProfile);
    StartRecord::instance().take(L"profile", name, text ? VornOrigin::Settings : VornOrigin::Default,
                                 text ? recorded.place() : std::wstring());
    return Vorn::eOk;
}
