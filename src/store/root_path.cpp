// The nine roots of the settings tree, and the functions that hand them out.
#include <algorithm>

#include "VrUInfo/RootKeys.h"
#include "VrUInfo/VornaConfig.h"
#include "store/items.h"
#include "store/root_cache.h"
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
    std::wstring_view name;
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
const wchar_t* resolvedProfileName(const VornaConfig& config)
{
    if (!isEmpty(config.profileName()))
        return config.profileName();
    wchar_t recorded[kPathCapacity];
    if (config.getCurrentProfileNameFromReg(recorded, nullptr) != Vorn::eOk)
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

/// Writes roots into a WideWriter or a KeyPath.
struct RootBuilder {
    template <typename Text>
    [[nodiscard]] static bool append(const VornaConfig& config, VornaConfig::Path path, Text& out)
    {
        switch (path) {
        case VornaConfig::ProductNameRoot:
            return out.append(config.m_companyRootPath);
        case VornaConfig::VersionRoot:
            return out.append(config.m_productRootPath);
        case VornaConfig::LanguageRoot:
            return out.append(config.m_productRootPath) && out.appendComponent(config.m_language.shortName());
        case VornaConfig::CurrentProfileRoot:
            return append(config, VornaConfig::ProfilesRoot, out) && appendProfile(config, out);
        default:
            const FixedChild child = fixedChild(path);
            return append(config, child.parent, out) && out.appendComponent(child.name);
        }
    }

    template <typename Text>
    [[nodiscard]] static bool appendProfile(const VornaConfig& config, Text& out)
    {
        const wchar_t* const name = resolvedProfileName(config);
        return name && out.appendComponent(name);
    }

    /// Nothing before `initial`, and for what is no selector.
    template <typename Text>
    [[nodiscard]] static bool build(const VornaConfig& config, VornaConfig::Path path, Text& out)
    {
        return config.m_initialized && path <= VornaConfig::UserConfigRoot && append(config, path, out);
    }
};

bool appendRoot(const VornaConfig& config, VornaConfig::Path root, KeyPath& path)
{
    if (root > VornaConfig::UserConfigRoot)
        return false;
    RootCache& cache = RootCache::instance();
    if (const RootText* const known = cache.find(root)) {
        path.assign(known->units, known->characters);
        return true;
    }
    const RootCache::Generation generation = cache.generation();
    if (!RootBuilder::build(config, root, path) || path.isEmpty())
        return false;
    cache.keep(root, {std::u16string(path.units()), path.length()}, generation);
    return true;
}

} // namespace vruinfo::internal

using namespace vruinfo::internal;

void VornaConfig::getRegRootPath(Path path, wchar_t* out) const
{
    if (!out)
        return;
    WideWriter writer(out, kPathCapacity);
    if (!RootBuilder::build(*this, path, writer))
        writer.clear();
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
