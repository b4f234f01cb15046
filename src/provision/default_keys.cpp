// The keys that the first run writes into the settings tree.
#include <array>
#include <string>

#include "VrUInfo/FirstRun.h"
#include "VrUInfo/Naming.h"
#include "VrUInfo/RootKeys.h"
#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "store/value_conversion.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

/// What the migration flag tells the host. It only ever moves from the first to the second.
constexpr std::int32_t kMigrate = 1;
constexpr std::int32_t kNothingToMigrate = 2;

VornVariant textValue(const wchar_t* text)
{
    VornVariant value;
    value.setString(text, VornVariant::kVarString);
    return value;
}

void writeProduct(VornaConfig& config, bool isNewTree)
{
    config.addValue(VornaConfig::ProductNameRoot, nullptr, kCurrentVersionValue,
                    textValue(GetVornProgramVersionString()));
    if (!isNewTree)
        return;
    const std::wstring company = std::wstring(kTopItem) + L'/' + config.companyName();
    WriteValueToReg(company.c_str(), kCurrentVersionValue, textValue(config.productName()));
}

void writeLanguage(VornaConfig& config)
{
    if (const wchar_t* const language = GetCurrentLanguageShortName())
        config.addValue(VornaConfig::VersionRoot, nullptr, kCurrentVersionValue, textValue(language));
}

/// The current profile's name, as the tree or the start has it.
std::wstring currentProfile(const VornaConfig& config)
{
    std::array<wchar_t, kPathCapacity> name{};
    auto capacity = static_cast<unsigned int>(name.size());
    if (GetCurrentProfileName(name.data(), capacity) > 0)
        return name.data();
    return isEmpty(config.profileName()) ? kDefaultProfile : config.profileName();
}

void writeProfile(VornaConfig& config)
{
    config.setValue(VornaConfig::ProfilesRoot, kProfilesValue, textValue(currentProfile(config).c_str()));
}

void writeFlag(VornaConfig& config, std::int32_t content)
{
    VornVariant flag;
    setInt32(flag, content);
    config.setValue(VornaConfig::LanguageRoot, kMigrationFlag, flag);
}

void refreshFlag(VornaConfig& config)
{
    VornVariant flag;
    if (config.getValue(VornaConfig::LanguageRoot, kMigrationFlag, flag) != Vorn::eOk)
        writeFlag(config, config.isSameLanVersionExist() ? kMigrate : kNothingToMigrate);
    else if (int32Of(flag) == kMigrate && !config.isSameLanVersionExist())
        writeFlag(config, kNothingToMigrate);
}

} // namespace

unsigned int CreateConfigReg()
{
    VornaConfig* const config = vornConfig();
    if (!config)
        return Vorn::eFailed;
    writeProduct(*config, !config->isItemExist(VornaConfig::ProductNameRoot, nullptr));
    if (!config->isItemExist(VornaConfig::ProductNameRoot, nullptr))
        return Vorn::eMissing;
    writeLanguage(*config);
    writeProfile(*config);
    refreshFlag(*config);
    return Vorn::eOk;
}
