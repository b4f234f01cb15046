#include "VrUInfo/Paths.h"

#include <cwchar>
#include <iterator>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/VornaConfig.h"
#include "VrUInfo/VornaProduct.h"
#include "place/folder_chain.h"
#include "place/program_place.h"
#include "text/owned_text.h"
#include "text/wide_buffer.h"

using namespace vruinfo::internal;

namespace
{

constexpr std::size_t kLongestLeaf = 1022;
constexpr std::size_t kLongestCachePath = 1021;

unsigned int writeUserFolder(UserFolder folder, FolderLevel level, wchar_t* path)
{
    return path ? writeFolder(folder, level, path) : 0;
}

/// A leaf below the language folder. The room asked for is one number, whatever the leaf's own length.
unsigned int writeLeaf(UserFolder folder, const wchar_t* leaf, std::size_t roomAsked, wchar_t* path)
{
    const unsigned int length = writeUserFolder(folder, FolderLevel::Language, path);
    if (length == 0 || length + roomAsked > kLongestLeaf)
        return 0;
    std::wmemcpy(path + length, leaf, std::wcslen(leaf) + 1);
    return static_cast<unsigned int>(length + std::wcslen(leaf));
}

unsigned int writeRoamingLeaf(const wchar_t* leaf, wchar_t* path)
{
    constexpr std::size_t kRoom = 9;
    return writeLeaf(UserFolder::Roaming, leaf, kRoom, path);
}

/// Whether the current directory is the program's cache folder.
bool isInCacheFolder()
{
    const std::optional<ProgramPlace> place = ProgramPlace::find();
    if (!place)
        return false;
    wchar_t cache[kPathCapacity];
    WideWriter writer(cache, kPathCapacity);
    if (!writer.append(place->directory.c_str()) || !writer.append(kUserDataCacheFolder))
        return false;
    wchar_t current[kPathCapacity];
    const DWORD length = GetCurrentDirectoryW(kPathCapacity, current);
    return length != 0 && length < kPathCapacity && _wcsicmp(current, cache) == 0;
}

} // namespace

unsigned int GetProgramPath(wchar_t* path, unsigned int size)
{
    if (!path || size == 0)
        return 0;
    const wchar_t* const directory = programDirectory();
    const std::size_t length = std::wcslen(directory);
    if (length == 0 || length >= size)
        return 0;
    std::wmemcpy(path, directory, length + 1);
    return static_cast<unsigned int>(length);
}

unsigned int GetVornProgramPath(wchar_t* path)
{
    return GetProgramPath(path, kVornPathCapacity - 1);
}

void VornProdUtil::SetWorkingDirectory()
{
    if (!isInCacheFolder())
        return;
    wchar_t documents[kPathCapacity];
    if (SHGetFolderPathW(nullptr, CSIDL_FLAG_CREATE | CSIDL_PERSONAL, nullptr, 0, documents) == S_OK)
        SetCurrentDirectoryW(documents);
}

unsigned int GetUserApplicationDataPath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Roaming, FolderLevel::Base, path);
}

unsigned int GetUserApplicationDataComanyPath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Roaming, FolderLevel::Company, path);
}

unsigned int GetUserApplicationDataProductPath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Roaming, FolderLevel::Product, path);
}

unsigned int GetUserApplicationDataVersionPath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Roaming, FolderLevel::Version, path);
}

unsigned int GetUserApplicationDataLanguagePath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Roaming, FolderLevel::Language, path);
}

unsigned int GetUserApplicationDataSupportPath(wchar_t* path)
{
    return writeRoamingLeaf(L"Support/", path);
}

unsigned int GetUserApplicationDataPlottersPath(wchar_t* path)
{
    return writeRoamingLeaf(L"Plotters/", path);
}

unsigned int GetUserApplicationDataCrashReportPath(wchar_t* path)
{
    return writeRoamingLeaf(L"CrashReport/", path);
}

unsigned int GetUserApplicationDataPrintstylePath(wchar_t* path)
{
    return writeRoamingLeaf(L"Printstyle/", path);
}

unsigned int GetUserLocalApplicationDataPath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Local, FolderLevel::Base, path);
}

unsigned int GetUserLocalApplicationDataComanyPath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Local, FolderLevel::Company, path);
}

unsigned int GetUserLocalApplicationDataProductPath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Local, FolderLevel::Product, path);
}

unsigned int GetUserLocalApplicationDataVersionPath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Local, FolderLevel::Version, path);
}

unsigned int GetUserLocalApplicationDataLanguagePath(wchar_t* path)
{
    return writeUserFolder(UserFolder::Local, FolderLevel::Language, path);
}

unsigned int GetUserLocalApplicationDataTemplatePath(wchar_t* path)
{
    constexpr std::size_t kRoom = 10;
    return writeLeaf(UserFolder::Local, L"/Template", kRoom, path);
}

unsigned int GetUserProfileDirectory(wchar_t* path)
{
    return writeUserFolder(UserFolder::Profile, FolderLevel::Base, path);
}

const wchar_t* GetVornUserDataCachePath()
{
    return vornGetProduct()->userDataCacheDir();
}

unsigned int GetVornUserDataCacheLanPath(wchar_t* path)
{
    if (!path)
        return 0;
    WideWriter writer(path, kPathCapacity);
    const wchar_t* const cache = GetVornUserDataCachePath();
    const wchar_t* const language = GetCurrentLanguageShortName();
    if (isEmpty(cache) || isEmpty(language) || std::wcslen(cache) + std::wcslen(language) >= kLongestCachePath)
        return 0;
    if (!writer.append(cache) || !writer.appendComponent(language))
        return 0;
    return static_cast<unsigned int>(writer.length());
}
