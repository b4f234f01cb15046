// The names under which the identity is written in settings and INI files, and its built-in defaults.
#pragma once

#include <cstddef>

namespace vruinfo::internal
{

inline constexpr wchar_t kDefaultCompany[] = L"HALVIK";
inline constexpr wchar_t kDefaultCompanyLtd[] = L"HALVIK CO., LTD.(Eastport)";
inline constexpr wchar_t kDefaultProduct[] = L"VORNA";
inline constexpr wchar_t kRelease[] = L"2026";
inline constexpr wchar_t kDefaultProfile[] = L"Default";

inline constexpr wchar_t kTopItem[] = L"Software"; ///< Of the settings tree.

inline constexpr wchar_t kProductIni[] = L"VORNA.ini";
inline constexpr wchar_t kProductSection[] = L"Product";
inline constexpr wchar_t kLocaleSection[] = L"LocaleIdLangName";
inline constexpr wchar_t kCompanyNameKey[] = L"CompanyName";
inline constexpr wchar_t kProductNameKey[] = L"ProductName";
inline constexpr wchar_t kVersionKey[] = L"Version";
inline constexpr wchar_t kLocaleIdKey[] = L"LocaleId";
inline constexpr wchar_t kPrefixKey[] = L"PreStr";

inline constexpr wchar_t kCurrentProductValue[] = L"CurProduct";
inline constexpr wchar_t kCurrentVersionValue[] = L"CurVer";
inline constexpr wchar_t kProfilesValue[] = L"Profiles";
inline constexpr wchar_t kMigrationFlag[] = L"AutoMigrate";

inline constexpr wchar_t kLanguageLibrary[] = L"libVrUInfoRes.so";

/// Size given to the INI reader for names, and characters that a host's name may have.
inline constexpr unsigned int kNameSize = 255;
inline constexpr std::size_t kLongestNameArgument = 254;

} // namespace vruinfo::internal
