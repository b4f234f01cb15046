// The configuration object's life: construction, the steps of a start in their order, the plain getters, the
// end.
#include "VrUInfo/VornaConfig.h"

#include <array>

#include "VrUInfo/Resources.h"
#include "config/identity_names.h"
#include "config/start_record.h"
#include "place/program_place.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr unsigned int kResourcePathSize = 1023;

const wchar_t* textOr(const wchar_t* text, const wchar_t* fallback)
{
    return text ? text : fallback;
}

} // namespace

VornaConfigException::VornaConfigException(const wchar_t* message, bool exitProcess, const wchar_t* file, int line) :
    VrExceptionWithMsg(message, file, line), m_exitProcess(exitProcess)
{
}

VornaConfigException::~VornaConfigException() = default;

VornaConfig::VornaConfig() = default;

VornaConfig::~VornaConfig()
{
    freeText(m_version);
    freeText(m_oemAppIconPath);
    freeText(m_productName);
    freeText(m_companyName);
    m_profileName = nullptr; // names of profiles are kept elsewhere
    freeText(m_companyRootPath);
    freeText(m_productRootPath);
    freeText(m_oemProductName);
    freeText(m_oemCompanyName);
    freeText(m_oemCompanyLtdName);
    uinitRegObject();
}

unsigned int VornaConfig::initial(const wchar_t* company, const wchar_t* product, const wchar_t* language,
                                  const wchar_t* profile)
{
    if (m_initialized)
        return Vorn::eOk;
    const StartRecord::Recording recording;
    const HeldExecutable executable;
    initRegObject(company, product);
    unsigned int status = initCompanyName(company);
    if (status == Vorn::eOk)
        status = initProductName(product);
    if (status == Vorn::eOk)
        status = initLanguageName(language);
    if (status == Vorn::eOk)
        status = verifyResourcePath();
    if (status != Vorn::eOk)
        return status;
    m_initialized = true;
    status = initProfileName(profile);
    if (status == Vorn::eOk)
        initOemResource();
    return status;
}

bool VornaConfig::isInitialized() const
{
    return false;
}

unsigned int VornaConfig::verifyResourcePath()
{
    std::array<wchar_t, kPathCapacity> path{};
    const unsigned int length = GetResourceDllPath(path.data(), kResourcePathSize);
    if (length == 0 || length + 1 + std::wcslen(kLanguageLibrary) >= path.size())
        return Vorn::eFailed;
    path[length] = L'/';
    std::wcscpy(path.data() + length + 1, kLanguageLibrary);
    return isReadable(path.data()) ? Vorn::eOk : Vorn::eMissing;
}

const VornaLanguage& VornaConfig::language() const
{
    return m_language;
}

const wchar_t* VornaConfig::productName() const
{
    return textOr(m_productName, kDefaultProduct);
}

const wchar_t* VornaConfig::companyName() const
{
    return textOr(m_companyName, kDefaultCompany);
}

const wchar_t* VornaConfig::profileName() const
{
    return m_profileName.load(std::memory_order_acquire);
}

const wchar_t* VornaConfig::version() const
{
    return textOr(m_version, kRelease);
}

const wchar_t* VornaConfig::oemProductName() const
{
    return textOr(m_oemProductName, kDefaultProduct);
}

const wchar_t* VornaConfig::oemCompanyName() const
{
    return textOr(m_oemCompanyName, kDefaultCompany);
}

const wchar_t* VornaConfig::oemCompanyLtdName() const
{
    return textOr(m_oemCompanyLtdName, kDefaultCompanyLtd);
}

const wchar_t* VornaConfig::oemAppIconPath() const
{
    return m_oemAppIconPath;
}

VornaConfig* vornConfig()
{
    return &VornaConfig::_sg_vorna_config;
}

unsigned int InitVornConfig(const wchar_t* company, const wchar_t* product, const wchar_t* language,
                            const wchar_t* profile)
{
    VornaConfig* const config = vornConfig();
    return config ? config->initial(company, product, language, profile) : static_cast<unsigned int>(Vorn::eFailed);
}
