// Branding from the partner's resource library, or from the language's.
#include <array>
#include <cstdlib>
#include <mutex>
#include <optional>

#include <QtCore/QFile>
#include <QtCore/QSettings>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/Oem.h"
#include "VrUInfo/Resources.h"
#include "VrUInfo/VornaConfig.h"
#include "config/icons.h"
#include "config/identity_names.h"
#include "config/start_record.h"
#include "place/program_place.h"
#include "place/trust.h"
#include "product/language_library.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

namespace
{

constexpr unsigned int kOemCompanyText = 4091;
constexpr unsigned int kOemProductText = 4092;
constexpr unsigned int kOemCompanyLtdText = 4095;
constexpr int kTextLimit = 1023;
constexpr int kSmallIcon = 16;
constexpr int kLargeIcon = 32;

QString partnerPrefix()
{
    return QStringLiteral(":/VrCustomRes/VrCustomRes");
}

QString languagePrefix()
{
    return QStringLiteral(":/VrUInfoRes/VrUInfoRes");
}

/// Whoever may write the settings names the library. Where this process may do more than they, it has to be one that
/// they could not have made.
HMODULE loadRecordedLibrary(const wchar_t* name)
{
    const bool mustBeTrusted = exceedsRightsOf(toWide(g_globalSettings->fileName()));
    const std::optional<std::wstring> trusted = mustBeTrusted ? trustedLibrary(name, programDirectory()) : name;
    const HMODULE library = trusted ? LoadLibraryExW(trusted->c_str(), nullptr, 0) : nullptr;
    if (!library)
        StartRecord::instance().passOver(name, trusted ? L"the partner library is recorded but cannot be loaded"
                                                       : L"the partner library is recorded, but others than root can "
                                                         "change it");
    return library;
}

HMODULE loadPartnerLibrary()
{
    std::array<wchar_t, kPathCapacity> name{};
    if (GetCustomResFileName(name.data()) == 0)
        return nullptr;
    const HMODULE loaded = GetModuleHandleW(name.data());
    return loaded ? loaded : loadRecordedLibrary(name.data());
}

/// A library of texts, and its path, with which the start record names them.
class TextLibrary final
{
public:
    explicit TextLibrary(HMODULE library) : m_library(library)
    {
        std::array<wchar_t, kPathCapacity> path{};
        GetModuleFileNameW(library, path.data(), kPathCapacity);
        m_path = path.data();
    }
    /// Puts a text in the place; one that is not there leaves it as it is.
    void take(unsigned int id, wchar_t*& place, const wchar_t* piece) const
    {
        const std::wstring source = m_path + L" string " + std::to_wstring(id);
        std::array<wchar_t, kPathCapacity> text{};
        const int length = LoadStringW(m_library, id, text.data(), kTextLimit);
        if (length <= 0) {
            StartRecord::instance().passOver(source, L"not there");
            return;
        }
        replaceText(place, makeText(text.data(), static_cast<std::size_t>(length)));
        StartRecord::instance().take(piece, place, VornOrigin::ResourceLibrary, source);
    }

private:
    HMODULE m_library;
    std::wstring m_path;
};

/// Guards both icons, and whether they are to be had.
std::mutex& iconLock()
{
    static std::mutex lock;
    return lock;
}

bool g_areIconsOffered = false; // there is one configuration object

} // namespace

HMODULE VornaConfig::oemResourceDllHandle()
{
    g_strPrefix = partnerPrefix();
    if (const HMODULE partner = loadPartnerLibrary())
        return partner;
    const HMODULE language = languageLibrary(kLanguageLibrary);
    g_strPrefix = languagePrefix();
    return language;
}

unsigned int VornaConfig::initOemResource()
{
    if (m_oemResourceDll)
        return 1;
    m_oemResourceDll = oemResourceDllHandle();
    if (!m_oemResourceDll)
        return 1;
    loadOemTexts();
    loadOemIcons();
    return 1;
}

void VornaConfig::loadOemTexts()
{
    const TextLibrary texts(m_oemResourceDll);
    texts.take(kOemProductText, m_oemProductName, L"oem product");
    texts.take(kOemCompanyText, m_oemCompanyName, L"oem company");
    texts.take(kOemCompanyLtdText, m_oemCompanyLtdName, L"oem legal name");
}

void VornaConfig::loadOemIcons()
{
    const QString path = g_strPrefix + QStringLiteral("/IDI_VORNA_OEM_APPLICATION_EXE");
    const std::wstring wide = toWide(path);
    if (m_oemAppIconPath && std::wcslen(m_oemAppIconPath) >= wide.size())
        copyBounded(m_oemAppIconPath, wide.size() + 1, wide.c_str());
    else
        replaceText(m_oemAppIconPath, makeText(wide.c_str()));
    deleteIcons();
    const std::lock_guard<std::mutex> lock(iconLock());
    g_areIconsOffered = QFile::exists(path);
}

QIcon* VornaConfig::oemAppIcon(bool large) const
{
    const std::lock_guard<std::mutex> lock(iconLock());
    QIcon*& icon = large ? m_largeIcon : m_smallIcon;
    if (icon || !g_areIconsOffered)
        return icon;
    const int size = large ? kLargeIcon : kSmallIcon;
    icon = loadIcon(toQString(m_oemAppIconPath), size, size);
    // What was loaded later goes earlier: at the end of the process icons go while their library still works.
    static const int kRegistered = std::atexit(deleteIconsAtExit);
    Q_UNUSED(kRegistered)
    return icon;
}

void VornaConfig::deleteIcons()
{
    const std::lock_guard<std::mutex> lock(iconLock());
    g_areIconsOffered = false;
    deleteIcon(m_smallIcon);
    deleteIcon(m_largeIcon);
}

void VornaConfig::deleteIconsAtExit()
{
    vornConfig()->deleteIcons();
}

bool VornaConfig::isNeedCheckOemPath()
{
    return g_strPrefix.contains(QLatin1String("VrCustomRes"));
}

bool VornaConfig::getOemResourceString(unsigned int id, std::wstring& text)
{
    constexpr std::size_t kLeast = 1024;
    if (!m_oemResourceDll)
        m_oemResourceDll = oemResourceDllHandle();
    if (!m_oemResourceDll || !isNeedCheckOemPath())
        return false;
    if (text.size() < kLeast)
        text.resize(kLeast);
    const int length = LoadStringW(m_oemResourceDll, id, text.data(), static_cast<int>(kLeast));
    text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return length > 0;
}

QIcon* loadIcon(const QString& path, int, int)
{
    if (!QFile::exists(path))
        return nullptr;
    return makeIcon(path);
}
