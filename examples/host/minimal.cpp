// The least host: starts the library, keeps a setting, and says who it runs as.
#include <cstdio>

#include <VrUInfo/VrUInfo.h>

int main()
{
    if (InitVornConfig(nullptr, nullptr, nullptr, nullptr) != Vorn::eOk)
        return 1;
    VornVariant greeting;
    greeting.setString(L"good morning", VornVariant::kVarString);
    vornConfig()->setValue(VornaConfig::SettingsRoot, L"Hello/Greeting", greeting);
    std::printf("%ls runs in %ls\n", GetOemProductName(), GetCurrentLanguageGlobalName());
}
