#include "VrUInfo/VornaLanguage.h"

#include <array>
#include <cwchar>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/Naming.h"
#include "VrUInfo/VornaConfig.h"
#include "product/language_library.h"
#include "product/language_table.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

const wchar_t* const _std_short_languages[kVornLanguageCount] = {L"cs-CZ", L"de-DE", L"en-US", L"es-ES", L"fr-FR",
                                                                 L"hu-HU", L"it-IT", L"ja-JP", L"ko-KR", L"pl-PL",
                                                                 L"pt-PT", L"ru-RU", L"tr-TR", L"zh-CN", L"zh-TW"};

const wchar_t* const _std_global_languages[kVornLanguageCount] = {L"Czech",
                                                                  L"German",
                                                                  L"English",
                                                                  L"Spanish",
                                                                  L"French",
                                                                  L"Hungarian",
                                                                  L"Italian",
                                                                  L"Japanese",
                                                                  L"Korean",
                                                                  L"Polish",
                                                                  L"Portuguese",
                                                                  L"Russian",
                                                                  L"Turkish",
                                                                  L"Simplified Chinese",
                                                                  L"Traditional Chinese"};

namespace
{

constexpr int kLongestLocalName = 63;
constexpr wchar_t kUnknownName[] = L"unknown";

int idOf(const wchar_t* shortName)
{
    if (isEmpty(shortName))
        return kUnknownLanguageId;
    for (int id = 0; id < kVornLanguageCount; ++id) {
        if (_wcsicmp(_std_short_languages[id], shortName) == 0)
            return id;
    }
    return kUnknownLanguageId;
}

/// The library that holds the languages' own names, under the product's prefix.
HMODULE nameLibrary()
{
    std::array<wchar_t, kPathCapacity + 16> fileName{};
    WideWriter writer(fileName.data(), fileName.size());
    std::array<wchar_t, kPathCapacity> prefix{};
    const bool isPrefixed = GetVornProductPreName(prefix.data()) != 0;
    if (!writer.append(isPrefixed ? prefix.data() : L"Vr") || !writer.append(L"UInfoRes.dll"))
        return nullptr;
    return languageLibrary(fileName.data());
}

} // namespace

VornaLanguage::VornaLanguage(int id) : m_id(isLanguageId(id) ? id : kUnknownLanguageId), m_localName(nullptr) {}

VornaLanguage::VornaLanguage(const wchar_t* shortName) : m_id(idOf(shortName)), m_localName(nullptr) {}

VornaLanguage::VornaLanguage(const VornaLanguage& other) : m_id(other.m_id), m_localName(nullptr) {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment) empties the cache in every case, on purpose
VornaLanguage& VornaLanguage::operator=(const VornaLanguage& other)
{
    m_id = other.m_id;
    m_localName = nullptr; // the former text lives on: callers may hold it
    return *this;
}

VornaLanguage::~VornaLanguage()
{
    freeText(m_localName);
}

bool VornaLanguage::operator==(const VornaLanguage& other) const
{
    return m_id == other.m_id;
}

int VornaLanguage::id() const
{
    return m_id;
}

const wchar_t* VornaLanguage::shortName() const
{
    return isLanguageId(m_id) ? _std_short_languages[m_id] : kUnknownName;
}

const wchar_t* VornaLanguage::globalName() const
{
    return isLanguageId(m_id) ? _std_global_languages[m_id] : kUnknownName;
}

const wchar_t* VornaLanguage::localName() const
{
    if (m_localName)
        return m_localName;
    const unsigned int id = isLanguageId(m_id) ? kLocalNameTexts[static_cast<std::size_t>(m_id)] : kUnknownLanguageText;
    std::array<wchar_t, kLongestLocalName + 1> text{};
    const int length = LoadStringW(nameLibrary(), id, text.data(), kLongestLocalName);
    if (length > 0)
        m_localName = makeText(text.data(), static_cast<std::size_t>(length));
    return m_localName;
}

std::uint32_t VornaLanguage::vornLanguage() const
{
    return isLanguageId(m_id) ? kLcids[static_cast<std::size_t>(m_id)] : kFallbackLcid;
}

std::uint32_t VornaLanguage::shortNameToLangId(const wchar_t* shortName)
{
    return static_cast<std::uint32_t>(idOf(shortName));
}

bool VornaLanguage::isValidShortName(const wchar_t* shortName)
{
    return idOf(shortName) != kUnknownLanguageId;
}

const wchar_t* GetCurrentLanguageShortName()
{
    return vornConfig()->language().shortName();
}

const wchar_t* GetCurrentLanguageGlobalName()
{
    return vornConfig()->language().globalName();
}

const wchar_t* GetCurrentLanguageLocalName()
{
    return vornConfig()->language().localName();
}

std::uint32_t GetCurrentVornLanguageId()
{
    return vornConfig()->language().vornLanguage();
}

std::uint32_t GetVornLanguageIdByShortName(const wchar_t* shortName)
{
    return isEmpty(shortName) ? 0 : VornaLanguage(shortName).vornLanguage();
}
