// Resolution of company and product, and the two root paths made of them.
#include <array>
#include <mutex>
#include <optional>
#include <string>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "config/identity_value.h"
#include "config/start_record.h"
#include "store/root_cache.h"
#include "store/store_group.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr std::size_t kNameCapacity = 256;
constexpr std::size_t kLongestCompanyForRoot = 1014;
constexpr std::size_t kLongestRoot = 1023;

/// Where a name was found.
struct Found {
    std::wstring name;
    VornOrigin origin;
    std::wstring place;
};

std::optional<Found> argumentName(const wchar_t* argument)
{
    if (isEmpty(argument))
        return std::nullopt;
    return Found{argument, VornOrigin::Argument, {}};
}

/// The recorded product. A recorded name of 256 characters or more ends the process.
std::optional<Found> recordedProduct(const wchar_t* companyRoot)
{
    if (!isStoreThere())
        return std::nullopt;
    const IdentityValue value(companyRoot, kCurrentProductValue);
    const std::optional<std::wstring> recorded = value.resolve(Marks::TextOnly);
    if (!recorded)
        return std::nullopt;
    std::array<wchar_t, kNameCapacity> name{};
    copyBounded(name.data(), name.size(), recorded->c_str());
    return Found{name.data(), VornOrigin::Settings, value.place()};
}

Found iniOrDefaultName(VornaConfig& config, const wchar_t* key, const wchar_t* fallback)
{
    std::array<wchar_t, kNameCapacity> name{};
    const std::wstring place = iniPlace(kProductIni, kProductSection, key);
    if (config.readIniString(kProductSection, key, name.data(), kNameSize, kProductIni) == Vorn::eOk)
        return {name.data(), VornOrigin::IniFile, place};
    StartRecord::instance().passOver(place, L"not there, or the file is not readable");
    return {fallback, VornOrigin::Default, {}};
}

} // namespace

unsigned int VornaConfig::initCompanyName(const wchar_t* company)
{
    if (m_companyName || (company && std::wcslen(company) > kLongestNameArgument))
        return Vorn::eFailed;
    const std::optional<Found> argument = argumentName(company);
    const Found found = argument ? *argument : iniOrDefaultName(*this, kCompanyNameKey, kDefaultCompany);
    m_companyName = makeText(found.name.c_str());
    StartRecord::instance().take(L"company", m_companyName, found.origin, found.place);
    return buildRootPathFromCompany();
}

unsigned int VornaConfig::buildRootPathFromCompany()
{
    if (isEmpty(m_companyName) || std::wcslen(m_companyName) > kLongestCompanyForRoot)
        return Vorn::eFailed;
    RootCache::instance().identityChanged();
    replaceText(m_companyRootPath, makeTextBuffer(kPathCapacity));
    WideWriter root(m_companyRootPath, kPathCapacity);
    return root.append(kTopItem) && root.appendComponent(m_companyName) ? Vorn::eOk : Vorn::eFailed;
}

unsigned int VornaConfig::initProductName(const wchar_t* product)
{
    if (m_productName || isEmpty(m_companyRootPath))
        return Vorn::eFailed;
    const std::lock_guard<VrLocker> lock(storeLock());
    if (product && std::wcslen(product) > kLongestNameArgument)
        return Vorn::eFailed;
    std::optional<Found> found = argumentName(product);
    if (!found)
        found = recordedProduct(m_companyRootPath);
    if (!found)
        found = iniOrDefaultName(*this, kProductNameKey, kDefaultProduct);
    m_productName = makeText(found->name.c_str());
    replaceText(m_version, makeText(kRelease));
    StartRecord::instance().take(L"product", m_productName, found->origin, found->place);
    StartRecord::instance().take(L"version", m_version, VornOrigin::Default);
    refreshProductName();
    return buildRootPathFromProduct();
}

unsigned int VornaConfig::refreshProductName()
{
    if (isEmpty(m_companyRootPath) || !isStoreThere())
        return 0;
    IdentityValue(m_companyRootPath, kCurrentProductValue).write(productName());
    return 1;
}

unsigned int VornaConfig::buildRootPathFromProduct()
{
    if (isEmpty(m_companyRootPath) || isEmpty(m_productName))
        return Vorn::eFailed;
    const std::size_t product = std::wcslen(m_productName);
    if (std::wcslen(m_companyRootPath) + product + std::wcslen(version()) + 2 > kLongestRoot)
        return Vorn::eFailed;
    RootCache::instance().identityChanged();
    std::wcscat(m_companyRootPath, L"/");
    std::wcscat(m_companyRootPath, m_productName);
    replaceText(m_productRootPath, makeTextBuffer(kPathCapacity));
    WideWriter root(m_productRootPath, kPathCapacity);
    return root.append(m_companyRootPath) && root.appendComponent(version()) ? Vorn::eOk : Vorn::eFailed;
}

bool VornaConfig::isInitVORNAProduct()
{
    return _wcsicmp(companyName(), kDefaultCompany) == 0 && _wcsicmp(productName(), kDefaultProduct) == 0;
}
