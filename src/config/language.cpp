// Resolution of the user-interface language.
#include <array>
#include <mutex>

#include "VrOsBase/VrOsBase.h"
#include "VrPlatformBase/VrPlatformBase.h"
#include "VrUInfo/Naming.h"
#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "config/identity_value.h"
#include "config/start_record.h"
#include "place/program_place.h"
#include "store/root_cache.h"
#include "store/store_group.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

namespace
{

constexpr std::size_t kShortNameCapacity = 8;
constexpr unsigned int kShortNameSize = 7; // given to the INI reader
constexpr std::size_t kPatternLimit = 1017;
constexpr int kEnglish = 2;
constexpr int kUnknown = -1;
constexpr unsigned int kFailureExitCode = 1;

constexpr wchar_t kNotValidText[] =
    L"The input initial language name is not a valid short language name.The program will exit.";
constexpr wchar_t kNoneInstalledText[] = L"Could't find any installed languages!";
constexpr wchar_t kQuestionBegin[] = L"The input language is not installed, continue with ";
constexpr wchar_t kQuestionEnd[] = L"?";

using ShortName = std::array<wchar_t, kShortNameCapacity>;

[[noreturn]] void endWithMessage(const wchar_t* text, const wchar_t* caption)
{
    MessageBoxW(nullptr, text, caption, MB_OK | MB_ICONERROR);
    ExitProcess(kFailureExitCode);
}

bool userAccepts(const VornaLanguage& language, const wchar_t* caption)
{
    std::array<wchar_t, kPathCapacity> question{};
    WideWriter writer(question.data(), question.size());
    if (!writer.append(kQuestionBegin) || !writer.append(language.globalName()) || !writer.append(kQuestionEnd))
        return false;
    return MessageBoxW(nullptr, question.data(), caption, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

/// The pattern that finds the folder's libraries; a folder that ends in a separator is searched as it stands,
/// in vain.
bool writeLibraryPattern(const wchar_t* folder, wchar_t* pattern)
{
    WideWriter writer(pattern, kPathCapacity);
    if (!writer.append(folder) || writer.length() >= kPatternLimit)
        return false;
    return folder[writer.length() - 1] == L'/' || writer.append(L"/*.so");
}

/// The language's own library is one of those that are looked for, and asking for one name is quicker than a listing.
bool hasOwnLibrary(const wchar_t* folder)
{
    std::array<wchar_t, kPathCapacity> path{};
    WideWriter writer(path.data(), path.size());
    if (!writer.append(folder) || path[writer.length() - 1] == L'/')
        return false;
    return writer.appendComponent(kLanguageLibrary) && isThere(path.data());
}

bool findsAnything(const wchar_t* pattern)
{
    WIN32_FIND_DATAW entry;
    const HANDLE listing = FindFirstFileW(pattern, &entry);
    if (listing == INVALID_HANDLE_VALUE)
        return false;
    FindClose(listing);
    return true;
}

} // namespace

unsigned int VornaConfig::initLanguageName(const wchar_t* language)
{
    if (isEmpty(m_productRootPath))
        return Vorn::eFailed;
    const std::lock_guard<VrLocker> lock(storeLock());
    const bool isGiven = !isEmpty(language);
    if (isGiven)
        takeArgumentLanguage(language);
    unsigned int status = isGiven ? static_cast<unsigned int>(Vorn::eOk) : takeRememberedLanguage();
    if (m_language.id() == kUnknown) {
        takeInstalledLanguage();
        status = Vorn::eOk;
    }
    refreshLanguageName();
    return status;
}

void VornaConfig::takeArgumentLanguage(const wchar_t* language)
{
    if (!VornaLanguage::isValidShortName(language))
        endWithMessage(kNotValidText, productName());
    adoptIfInstalled(language, VornOrigin::Argument, {});
}

unsigned int VornaConfig::takeRememberedLanguage()
{
    const IdentityValue value(m_productRootPath, kCurrentVersionValue);
    const auto recorded = isStoreThere() ? value.resolve(Marks::TextOnly) : std::nullopt;
    if (!recorded)
        return takeIniLanguage();
    ShortName name{};
    copyBounded(name.data(), name.size(), recorded->c_str());
    adoptIfInstalled(name.data(), VornOrigin::Settings, value.place());
    return Vorn::eOk;
}

unsigned int VornaConfig::takeIniLanguage()
{
    ShortName number{};
    unsigned int status = readIniPiece(kProductSection, kLocaleIdKey, number.data());
    if (status != Vorn::eOk)
        return status;
    ShortName name{};
    status = readIniPiece(kLocaleSection, number.data(), name.data());
    if (status == Vorn::eOk)
        adoptIfInstalled(name.data(), VornOrigin::IniFile, iniPlace(kProductIni, kLocaleSection, number.data()));
    return status;
}

unsigned int VornaConfig::readIniPiece(const wchar_t* section, const wchar_t* key, wchar_t* text)
{
    const unsigned int status = readIniString(section, key, text, kShortNameSize, kProductIni);
    if (status != Vorn::eOk)
        StartRecord::instance().passOver(iniPlace(kProductIni, section, key),
                                         L"not there, or the file is not readable");
    return status;
}

void VornaConfig::adoptIfInstalled(const wchar_t* shortName, VornOrigin origin, const std::wstring& place)
{
    // The table's spelling is what folders are named after, however the name was written.
    const VornaLanguage language(shortName);
    const std::wstring source = place.empty() ? std::wstring(shortName) : place + L" = " + shortName;
    if (language.id() == kUnknown) {
        StartRecord::instance().passOver(source, L"not the short name of a language");
        return;
    }
    if (!isLanguageExist(language.shortName())) {
        StartRecord::instance().passOver(source, L"its folder is missing, not readable, or holds no *.so");
        return;
    }
    takeLanguage(language);
    StartRecord::instance().take(L"language", m_language.shortName(), origin, place);
}

void VornaConfig::takeLanguage(const VornaLanguage& language)
{
    m_language = language;
    RootCache::instance().identityChanged();
}

void VornaConfig::takeInstalledLanguage()
{
    const VornaLanguage installed(queryAInstalledLangInOrder());
    if (installed.id() == kUnknown)
        endWithMessage(kNoneInstalledText, productName());
    if (!userAccepts(installed, productName()))
        ExitProcess(kFailureExitCode);
    takeLanguage(installed);
    StartRecord::instance().take(L"language", m_language.shortName(), VornOrigin::Asked);
}

unsigned int VornaConfig::refreshLanguageName()
{
    if (isEmpty(m_productRootPath) || m_language.id() == kUnknown || !isStoreThere())
        return 0;
    IdentityValue(m_productRootPath, kCurrentVersionValue).write(m_language.shortName());
    return 1;
}

bool VornaConfig::isLanguageExist(const wchar_t* shortName)
{
    if (isEmpty(shortName))
        return false;
    if (isInitVORNAProduct()) {
        const bool isKnown = VornaLanguage::isValidShortName(shortName);
        if (!isKnown || !isLangVerExist(shortName) || !isLangMatch(shortName))
            return false;
    }
    return isLangFolderExist(shortName);
}

bool VornaConfig::isLangFolderExist(const wchar_t* shortName)
{
    if (isEmpty(shortName))
        return false;
    wchar_t folder[kPathCapacity];
    if (executablePath(folder, kPathCapacity) == 0)
        return false;
    PathRemoveFileSpecW(folder);
    if (std::wcslen(folder) + std::wcslen(shortName) + 1 >= kPathCapacity || !PathAppendW(folder, shortName))
        return false;
    wchar_t pattern[kPathCapacity];
    if (!isReadable(folder) || !writeLibraryPattern(folder, pattern))
        return false;
    return hasOwnLibrary(folder) || findsAnything(pattern);
}

bool VornaConfig::isLangVerExist(const wchar_t*)
{
    return true;
}

bool VornaConfig::isLangMatch(const wchar_t*)
{
    return true;
}

int VornaConfig::queryAInstalledLangInOrder()
{
    if (isLanguageExist(VornaLanguage(kEnglish).shortName()))
        return kEnglish;
    for (int id = 0; id < kVornLanguageCount; ++id) {
        if (isLanguageExist(VornaLanguage(id).shortName()))
            return id;
    }
    return kUnknown;
}

bool VornaConfig::isSameLanVersionExist() const
{
    const int current = _wtoi(GetVornProgramVersionString());
    ItemIterator releases;
    vornConfig()->findItem(ProductNameRoot, L"", releases);
    for (; releases.m_index < releases.m_count; releases.step()) {
        const std::wstring release = toWide(releases.m_list->at(releases.m_index));
        if (current > _wtoi(release.c_str()) && hasCurrentLanguage(release.c_str()))
            return true;
    }
    return false;
}

bool VornaConfig::hasCurrentLanguage(const wchar_t* release) const
{
    ItemIterator languages;
    vornConfig()->findItem(ProductNameRoot, release, languages);
    for (; languages.m_index < languages.m_count; languages.step()) {
        if (_wcsicmp(toWide(languages.m_list->at(languages.m_index)).c_str(), m_language.shortName()) == 0)
            return true;
    }
    return false;
}
