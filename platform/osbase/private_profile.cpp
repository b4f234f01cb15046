#include "osbase/ini_file.h"
#include "osbase/ini_text.h"
#include "osbase/last_error.h"
#include "osbase/path_text.h"
#include "osbase/wide_buffer.h"

#include <cwchar>

namespace vrosbase::internal
{
namespace
{

struct ProfileAnswer {
    enum class Form { Text, List };
    DWORD error;
    Form form;
    std::wstring text;
};

std::wstring_view askedName(const wchar_t* name)
{
    return withoutBlanks(std::wstring_view(name));
}

IniFile openProfile(const wchar_t* fileName)
{
    if (fileName == nullptr) {
        return {ERROR_INVALID_PARAMETER, {}};
    }
    return readIniFile(pathBytes(fileName));
}

std::optional<std::wstring> askedList(std::string_view text, const wchar_t* section)
{
    return section == nullptr ? iniSections(text) : iniKeys(text, askedName(section));
}

std::optional<std::wstring> askedText(std::string_view text, const wchar_t* section, const wchar_t* key)
{
    const auto value = iniValue(text, askedName(section), askedName(key));
    return value ? std::optional(wideText(*value)) : std::nullopt;
}

std::wstring defaultText(const wchar_t* text)
{
    return std::wstring(withoutTrailingBlanks(std::wstring_view(text == nullptr ? L"" : text)));
}

ProfileAnswer readProfile(const wchar_t* section, const wchar_t* key, const wchar_t* ifAbsent, const wchar_t* fileName)
{
    const IniFile file = openProfile(fileName);
    const bool isList = section == nullptr || key == nullptr;
    auto found = std::optional<std::wstring>();
    if (file.error == ERROR_SUCCESS) {
        found = isList ? askedList(file.text, section) : askedText(file.text, section, key);
    }
    if (!found) {
        return {file.error, ProfileAnswer::Form::Text, defaultText(ifAbsent)};
    }
    return {file.error, isList ? ProfileAnswer::Form::List : ProfileAnswer::Form::Text, std::move(*found)};
}

/// Copies the answer out, sets the last error and gives the number of characters copied.
std::size_t giveAnswer(const ProfileAnswer& answer, wchar_t* buffer, std::size_t capacity)
{
    const bool isList = answer.form == ProfileAnswer::Form::List;
    const Fit fit = isList ? copyList(buffer, capacity, answer.text) : copyText(buffer, capacity, answer.text);
    const DWORD error = answer.error == ERROR_SUCCESS && fit == Fit::Cut ? ERROR_MORE_DATA : answer.error;
    SetLastError(error);
    if (fit == Fit::Whole) {
        return answer.text.size();
    }
    const std::size_t terminators = isList ? 2 : 1;
    return capacity > terminators ? capacity - terminators : 0;
}

UINT readInteger(const wchar_t* section, const wchar_t* key, int ifAbsent, const wchar_t* fileName)
{
    const IniFile file = openProfile(fileName);
    SetLastError(file.error);
    const auto value = iniValue(file.text, askedName(section), askedName(key));
    return value ? iniInteger(*value) : static_cast<UINT>(ifAbsent);
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

DWORD GetPrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName, LPCWSTR lpDefault, LPWSTR lpReturnedString,
                               DWORD nSize, LPCWSTR lpFileName)
{
    if (lpReturnedString == nullptr) {
        return failWith(ERROR_INVALID_PARAMETER, DWORD{0});
    }
    const ProfileAnswer answer = readProfile(lpAppName, lpKeyName, lpDefault, lpFileName);
    return static_cast<DWORD>(giveAnswer(answer, lpReturnedString, nSize));
}

UINT GetPrivateProfileIntW(LPCWSTR lpAppName, LPCWSTR lpKeyName, int nDefault, LPCWSTR lpFileName)
{
    if (lpAppName == nullptr || lpKeyName == nullptr) {
        return failWith(ERROR_INVALID_PARAMETER, static_cast<UINT>(nDefault));
    }
    return readInteger(lpAppName, lpKeyName, nDefault, lpFileName);
}
