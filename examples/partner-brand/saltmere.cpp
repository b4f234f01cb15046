// What the application's modules see of a brand.
#include <cstdio>
#include <string>

#include <VrUInfo/VrUInfo.h>

int main()
{
    if (InitVornConfig(nullptr, nullptr, nullptr, nullptr) != Vorn::eOk)
        return 1;
    std::printf("%ls, by %ls\n", GetOemProductName(), GetOemCompanyLtdName());
    std::wstring text;
    for (const unsigned int id : {1103U, 5001U, 5002U})
        std::printf("text %u: %ls\n", id, getOemResourceString(id, text) ? text.c_str() : L"(none)");
    std::printf("icon: %s\n", GetOemAppIcon(true) ? "the brand's" : "none");
    std::printf("brand in the title: %s\n", GetVornIniOEMMergeTitleValue(0) ? "yes" : "no");
    wchar_t preName[kVornPathCapacity];
    std::printf("pre-name: %ls\n", GetVornProductPreName(preName) ? preName : L"(none)");
    const std::wstring prefix = GetVornArchitectrueCommandNamePrefix();
    std::printf("prefix of commands: %ls\n", prefix.empty() ? L"(none)" : prefix.c_str());
}
