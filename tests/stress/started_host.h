// What the hosts of the stress programs do: start the library, and write and read values below one root.
#pragma once

#include <string>

#include "VrUInfo/VornaConfig.h"
#include "store_values.h"

namespace stress
{

inline constexpr VornaConfig::Path kRoot = VornaConfig::SettingsRoot;
inline constexpr char16_t kSettings[] = u"Software/HALVIK/VORNA/2026/en-US/Settings";

/// Starts with all defaults in an installation that has English.
[[nodiscard]] inline bool startHost()
{
    return InitVornConfig(nullptr, nullptr, L"en-US", nullptr) == Vorn::eOk;
}

[[nodiscard]] inline bool writeText(const std::wstring& name, const std::wstring& text)
{
    return vornConfig()->setValue(kRoot, name.c_str(), vrtest::textValue(text)) == Vorn::eOk;
}

/// The text of a value, or "(status)".
[[nodiscard]] inline std::wstring readText(const std::wstring& name)
{
    VornVariant value;
    const unsigned int status = vornConfig()->getValue(kRoot, name.c_str(), value);
    return status == Vorn::eOk ? vrtest::textIn(value) : L"(" + std::to_wstring(status) + L")";
}

} // namespace stress
