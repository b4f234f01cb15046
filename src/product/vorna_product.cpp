#include "VrUInfo/VornaProduct.h"

#include <array>
#include <cwchar>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/Paths.h"
#include "VrUInfo/Resources.h"
#include "VrUInfo/VornaConfig.h"
#include "place/program_place.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr wchar_t kProgramName[] = L"VORNA";
constexpr wchar_t kBareHelpFile[] = L"VrHelp.pdf";
constexpr wchar_t kDotNetVersion[] = L"4.6.1";
constexpr int kHelpFileLimit = 511;
constexpr int kReleaseMajor = 26;
constexpr int kReleaseMinor = 0;
constexpr int kBuild = 1;
constexpr int kInitialEdition = 1;
constexpr int kOtherEdition = 4;

struct Edition {
    const wchar_t* product;
    int number;
};

constexpr std::array<Edition, 4> kEditions = {{{L"VORNAA", 3}, {L"VORNAM", 2}, {L"VORNA", 1}, {L"VORNAGEO", 6}}};

int editionOf(const wchar_t* product)
{
    for (const Edition& edition : kEditions) {
        if (_wcsicmp(edition.product, product) == 0)
            return edition.number;
    }
    return kOtherEdition;
}

} // namespace

VornaProduct::VornaProduct() : m_edition(kInitialEdition)
{
    VornProdUtil::SetWorkingDirectory();
}

const wchar_t* VornaProduct::productName() const
{
    return vornConfig()->productName();
}

const wchar_t* VornaProduct::programName() const
{
    return kProgramName;
}

const wchar_t* VornaProduct::companyName() const
{
    return vornConfig()->companyName();
}

const wchar_t* VornaProduct::version() const
{
    return vornConfig()->version();
}

const wchar_t* VornaProduct::helpFile() const
{
    if (m_helpFile[0] == L'\0' && GetHelpFilePath(m_helpFile, kHelpFileLimit) < 1)
        return kBareHelpFile;
    return m_helpFile;
}

const VornaLanguage& VornaProduct::language() const
{
    return vornConfig()->language();
}

int VornaProduct::edition() const
{
    if (const wchar_t* const product = productName())
        m_edition = editionOf(product);
    return m_edition;
}

int VornaProduct::releaseMajorVer() const
{
    return kReleaseMajor;
}

int VornaProduct::releaseMinorVer() const
{
    return kReleaseMinor;
}

int VornaProduct::buildVer() const
{
    return kBuild;
}

const wchar_t* VornaProduct::dotNetFrameworkVersionRequired() const
{
    return kDotNetVersion;
}

const wchar_t* VornaProduct::userDataCacheDir() const
{
    if (m_userDataCacheDir[0] != L'\0')
        return m_userDataCacheDir;
    WideWriter writer(m_userDataCacheDir, kCacheDirCapacity);
    if (!writer.append(programDirectory()) || writer.length() == 0 || !writer.append(kUserDataCacheFolder))
        writer.clear();
    return m_userDataCacheDir;
}

VornaProduct* vornGetProduct()
{
    return &VornaProduct::sg_vrproduct;
}
