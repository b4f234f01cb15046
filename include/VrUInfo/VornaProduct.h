/// \file VornaProduct.h
/// The product object: which product, version and edition this process runs.
///
/// Conventions of this header:
///  1. Texts are the library's; nobody frees them; none is ever null.
///  2. Help file, cache folder and edition are computed on request without a lock, for the user-interface
///  thread.
///  3. Slot order and layout never change: plug-ins are compiled against them.
#pragma once

#include "VrUInfo/Export.h"
#include "VrUInfo/VornaLanguage.h"

/// What plug-ins ask. Not deleted through this interface.
class VRUINFO_API IVornaProduct
{
public:
    virtual const wchar_t* productName() const = 0; ///< Resolved product; "VORNA" until then.
    virtual const wchar_t* programName() const = 0; ///< Always "VORNA".
    virtual const wchar_t* companyName() const = 0; ///< Resolved company; "HALVIK" until then.
    virtual const wchar_t* version() const = 0;     ///< "2026".
    /// Path of the help file in the current language; "VrHelp.pdf" while none can be named.
    virtual const wchar_t* helpFile() const = 0;
    virtual const VornaLanguage& language() const = 0; ///< The current language; id -1 until resolved.
    /// By product name in any case: VORNA 1, VORNAM 2, VORNAA 3, VORNAGEO 6, every other 4.
    virtual int edition() const = 0;
    virtual int releaseMajorVer() const = 0;                           ///< 26.
    virtual int releaseMinorVer() const = 0;                           ///< 0.
    virtual int buildVer() const = 0;                                  ///< 1.
    virtual const wchar_t* dotNetFrameworkVersionRequired() const = 0; ///< "4.6.1".
    /// Folder for cached user data beside the executable, without a trailing separator; empty when the
    /// executable's path is not known or too long.
    virtual const wchar_t* userDataCacheDir() const = 0;

protected:
    IVornaProduct() = default;
    ~IVornaProduct() = default;
};

/// The one product object.
class VRUINFO_API VornaProduct final : public IVornaProduct
{
public:
    VornaProduct(const VornaProduct&) = delete;
    VornaProduct& operator=(const VornaProduct&) = delete;

    const wchar_t* productName() const override;
    const wchar_t* programName() const override;
    const wchar_t* companyName() const override;
    const wchar_t* version() const override;
    const wchar_t* helpFile() const override;
    const VornaLanguage& language() const override;
    int edition() const override;
    int releaseMajorVer() const override;
    int releaseMinorVer() const override;
    int buildVer() const override;
    const wchar_t* dotNetFrameworkVersionRequired() const override;
    const wchar_t* userDataCacheDir() const override;

private:
    friend VRUINFO_API VornaProduct* vornGetProduct();
    friend struct VornaLayout;

    /// Applies `VornProdUtil::SetWorkingDirectory` to the process that loads the library.
    VRUINFO_LOCAL VornaProduct();
    VRUINFO_LOCAL ~VornaProduct() = default;

    static constexpr unsigned int kHelpFileCapacity = 512;
    static constexpr unsigned int kCacheDirCapacity = 1024;

    mutable int m_edition;
    mutable wchar_t m_helpFile[kHelpFileCapacity]{};
    mutable wchar_t m_userDataCacheDir[kCacheDirCapacity]{};

    static VornaProduct sg_vrproduct;
};

/// The product object. Never null; lives as long as the library.
VRUINFO_API VornaProduct* vornGetProduct();
