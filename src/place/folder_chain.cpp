#include "place/folder_chain.h"

#include <cwchar>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/VornaConfig.h"
#include "VrUInfo/VornaProduct.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

namespace vruinfo::internal
{
namespace
{

constexpr std::size_t kLongestChain = 1022;
constexpr std::size_t kLongestProfileFolder = 1021;

unsigned int writeBase(UserFolder folder, wchar_t* buffer)
{
    buffer[0] = L'\0';
    if (!SHGetSpecialFolderPathW(nullptr, buffer, static_cast<int>(folder), FALSE))
        return 0;
    const std::size_t length = std::wcslen(buffer);
    if (length == 0 || (folder == UserFolder::Profile && length > kLongestProfileFolder))
        return 0;
    if (buffer[length - 1] == L'/' || buffer[length - 1] == L'\\')
        return static_cast<unsigned int>(length);
    if (length + 1 >= kPathCapacity)
        return 0;
    buffer[length] = L'/';
    buffer[length + 1] = L'\0';
    return static_cast<unsigned int>(length + 1);
}

const wchar_t* componentOf(FolderLevel level)
{
    switch (level) {
    case FolderLevel::Company:
        return vornConfig()->companyName();
    case FolderLevel::Product:
        return vornConfig()->productName();
    case FolderLevel::Version:
        return vornGetProduct()->version();
    default:
        return vornConfig()->language().shortName();
    }
}

/// Appends the component and "/".
unsigned int appendComponent(wchar_t* buffer, std::size_t length, const wchar_t* component)
{
    const std::size_t more = std::wcslen(component);
    if (length + 2 + more > kLongestChain)
        return 0;
    std::wmemcpy(buffer + length, component, more);
    buffer[length + more] = L'/';
    buffer[length + more + 1] = L'\0';
    return static_cast<unsigned int>(length + more + 1);
}

FolderLevel above(FolderLevel level)
{
    return static_cast<FolderLevel>(static_cast<int>(level) - 1);
}

} // namespace

unsigned int writeFolder(UserFolder folder, FolderLevel level, wchar_t* buffer)
{
    if (level == FolderLevel::Base)
        return writeBase(folder, buffer);
    const unsigned int length = writeFolder(folder, above(level), buffer);
    const wchar_t* const component = componentOf(level);
    return length == 0 || isEmpty(component) ? 0 : appendComponent(buffer, length, component);
}

} // namespace vruinfo::internal
