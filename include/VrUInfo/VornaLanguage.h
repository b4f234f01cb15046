/// \file VornaLanguage.h
/// The fifteen languages of the user interface, and the language value.
///
/// Conventions of this header:
///  1. A language is an id, 0 to 14, or -1 for unknown. The ids stand in settings and never change.
///  2. Short names are compared without regard to case, the same in every locale.
///  3. Texts are handed out as pointers that the caller does not free. Names from the table live as long as
///  the
///     library. A local name lives as long as the object that it came from, also when that object is assigned
///     to.
///  4. Nothing here throws or locks; `localName` is for the user-interface thread, everything else for any.
#pragma once

#include <cstdint>

#include "VrUInfo/Export.h"

/// Number of rows of the language table.
constexpr int kVornLanguageCount = 15;

// NOLINTBEGIN(bugprone-reserved-identifier) fixed names of the interface
/// Short names ("en-US") by id.
extern VRUINFO_API const wchar_t* const _std_short_languages[kVornLanguageCount];
/// English names ("English") by id.
extern VRUINFO_API const wchar_t* const _std_global_languages[kVornLanguageCount];
// NOLINTEND(bugprone-reserved-identifier)

/// A language of the user interface.
class VRUINFO_API VornaLanguage
{
public:
    /// \param id 0 to 14; every other number becomes -1.
    VornaLanguage(int id); // NOLINT(google-explicit-constructor) part of the fixed interface
    /// The language with this short name, in any case; -1 for null, empty or unknown.
    VornaLanguage(const wchar_t* shortName); // NOLINT(google-explicit-constructor)
    /// Copies the id only; the copy loads its own local name.
    VornaLanguage(const VornaLanguage& other);
    /// Takes over the id only. A local name handed out before stays valid until the process ends; the next
    /// `localName` loads that of the new language.
    VornaLanguage& operator=(const VornaLanguage& other);
    ~VornaLanguage();

    bool operator==(const VornaLanguage& other) const;                              ///< Equal ids.
    bool operator!=(const VornaLanguage& other) const { return !(*this == other); } ///< Different ids.

    int id() const;                    ///< 0 to 14, or -1.
    const wchar_t* shortName() const;  ///< Such as "en-US"; "unknown" for id -1. Never null.
    const wchar_t* globalName() const; ///< Such as "English"; "unknown" for id -1. Never null.

    /// The language's name in its own tongue, from the resource library of the current language (for id -1
    /// that library's word for an unknown language). Loaded on first request, then kept. \return null when
    /// the library or the text cannot be had; the next call tries again.
    const wchar_t* localName() const;

    /// Windows locale identifier (LCID); 1033 for id -1. Portuguese is 0x416 and Spanish 0xC0A, on purpose.
    std::uint32_t vornLanguage() const;

    /// Id of a short name in any case; all bits set (-1) for null, empty or unknown.
    static std::uint32_t shortNameToLangId(const wchar_t* shortName);
    /// Whether the short name stands in the table; false for null or empty.
    static bool isValidShortName(const wchar_t* shortName);

private:
    friend struct VornaLayout;

    std::int32_t m_id;
    mutable wchar_t* m_localName; // owned; array new, array delete
};

/// \name The current language
/// That of the configuration object; before `initial` it is unknown (-1).
/// @{
VRUINFO_API const wchar_t* GetCurrentLanguageShortName();  ///< `shortName` of it. Never null.
VRUINFO_API const wchar_t* GetCurrentLanguageGlobalName(); ///< `globalName` of it. Never null.
VRUINFO_API const wchar_t* GetCurrentLanguageLocalName();  ///< `localName` of it; may be null.
VRUINFO_API std::uint32_t GetCurrentVornLanguageId();      ///< Its LCID.
/// LCID of a short name in any case; 1033 for an unknown name, 0 for null or empty.
VRUINFO_API std::uint32_t GetVornLanguageIdByShortName(const wchar_t* shortName);
/// @}
