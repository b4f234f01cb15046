// The nine roots of the settings tree, and the functions that hand them out.
#include <algorithm>

#include "VrUInfo/RootKeys.h"
#include "VrUInfo/VornaConfig.h"
#include "store/items.h"
#include "store/value_conversion.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

namespace vruinfo::internal
{
namespace
{

constexpr wchar_t kConfigItem[] = L"Config";
constexpr std::size_t kLongestWithConfig = 1022;

/// A root that hangs below another one by a fixed name.
struct FixedChild {
    VornaConfig::Path parent;
    const wchar_t* name;
};

FixedChild fixedChild(VornaConfig::Path path)
{
    switch (path) {
    case VornaConfig::ProfilesRoot:
        return {VornaConfig::LanguageRoot, L"Profiles"};
    case VornaConfig::ApplicationsRoot:
        return {VornaConfig::LanguageRoot, L"Applications"};
    case VornaConfig::RecentFileListRoot:
        return {VornaConfig::LanguageRoot, L"Recent File List"};
    case VornaConfig::SettingsRoot:
        return {VornaConfig::LanguageRoot, L"Settings"};
    default:
        return {VornaConfig::SettingsRoot, L"UserConfig"};
    }
}

/// The current profile's name, adopted from the tree if none was set; null when that cannot be resolved.
const wchar_t* resolvedProfileName(const VornaConfig& config, const wchar_t* profilesRoot)
{
    if (!isEmpty(config.profileName()))
        return config.profileName();
    wchar_t recorded[kPathCapacity];
    if (config.getCurrentProfileNameFromReg(recorded, profilesRoot) != Vorn::eOk)
        return nullptr;
    vornConfig()->updateProfileName(recorded);
    return config.profileName();
}

unsigned int writeRoot(VornaConfig::Path root, wchar_t* key)
{
    if (!key)
        return 0;
    vornConfig()->getRegRootPath(root, key);
    return static_cast<unsigned int>(std::wcslen(key));
}

unsigned int copyProfileName(const wchar_t* text, wchar_t* name, unsigned int& length)
{
    const auto needed = static_cast<unsigned int>(std::wcslen(text)) + 1;
    if (!name || length < needed) {
        length = needed;
        return 0;
    }
    std::wmemcpy(name, text, needed);
    return needed - 1;
}

} // namespace

std::optional<KeyPath> rootPath(const VornaConfig& config, VornaConfig::Path root)
{
    std::optional<KeyPath> path(std::in_place);
    config.getRegRootPath(root, path->buffer());
    path->measure();
    if (path->isEmpty())
        path.reset();
    return path;
}

} // namespace vruinfo::internal

using namespace vruinfo::internal;

void VornaConfig::getRegRootPath(Path path, wchar_t* out) const
{
    if (!out)
        return;
    WideWriter writer(out, kPathCapacity);
    if (!m_initialized || path > UserConfigRoot || !appendRoot(path, writer))
        writer.clear();
}

bool VornaConfig::appendRoot(Path path, WideWriter& out) const
{
    switch (path) {
    case ProductNameRoot:
        return out.append(m_companyRootPath);
    case VersionRoot:
        return out.append(m_productRootPath);
    case LanguageRoot:
        return out.append(m_productRootPath) && out.appendComponent(m_language.shortName());
    case CurrentProfileRoot:
        return appendRoot(ProfilesRoot, out) && appendProfile(out);
    default:
        const FixedChild child = fixedChild(path);
        return appendRoot(child.parent, out) && out.appendComponent(child.name);
    }
}

bool VornaConfig::appendProfile(WideWriter& out) const
{
    const wchar_t* const name = resolvedProfileName(*this, out.text());
    return name && out.appendComponent(name);
}

unsigned int GetRegistryProductNameRootKey(wchar_t* key)
{
    return writeRoot(VornaConfig::ProductNameRoot, key);
}

unsigned int GetRegistryVersionRootKey(wchar_t* key)
{
    return writeRoot(VornaConfig::VersionRoot, key);
}

unsigned int GetVornRegistryLanguageRootKey(wchar_t* key)
{
    return writeRoot(VornaConfig::LanguageRoot, key);
}

unsigned int GetRegistryProfilesRootKey(wchar_t* key)
{
    return writeRoot(VornaConfig::ProfilesRoot, key);
}

unsigned int GetVornRegistryCurrentProfileRootKey(wchar_t* key)
{
    return writeRoot(VornaConfig::CurrentProfileRoot, key);
}

unsigned int GetVornRegistryCurrentProfileConfigRootKey(wchar_t* key)
{
    const std::size_t root = writeRoot(VornaConfig::CurrentProfileRoot, key);
    if (root == 0 || root + std::size(kConfigItem) + 1 > kLongestWithConfig)
        return 0;
    key[root] = L'/';
    std::wmemcpy(key + root + 1, kConfigItem, std::size(kConfigItem));
    return static_cast<unsigned int>(root + std::size(kConfigItem));
}

unsigned int GetCurrentProfileName(wchar_t* name, unsigned int& length)
{
    if (!isEmpty(vornConfig()->profileName()))
        return copyProfileName(vornConfig()->profileName(), name, length);
    VornVariant recorded;
    const unsigned int status = vornConfig()->getValue(VornaConfig::ProfilesRoot, nullptr, recorded);
    if (status != Vorn::eOk || recorded.type != VornVariant::kVarString) {
        length = 0;
        return 0;
    }
    const unsigned int copied = copyProfileName(textOf(recorded), name, length);
    if (copied > 0)
        vornConfig()->updateProfileName(name);
    return copied;
}
