#include "place/program_place.h"

#include <algorithm>
#include <cwchar>
#include <string_view>

#include "VrOsBase/VrOsBase.h"
#include "text/wide_buffer.h"

namespace vruinfo::internal
{
namespace
{

constexpr DWORD kExecutableLimit = 1023;
constexpr std::size_t kNameCapacity = 256;
constexpr int kExistence = 0;
constexpr int kReadPermission = 4;

thread_local const std::wstring* t_held = nullptr;

} // namespace

unsigned int executablePath(wchar_t* buffer, unsigned int size)
{
    if (!t_held || t_held->size() >= size)
        return GetModuleFileNameW(nullptr, buffer, size);
    std::wmemcpy(buffer, t_held->c_str(), t_held->size() + 1);
    SetLastError(ERROR_SUCCESS);
    return static_cast<unsigned int>(t_held->size());
}

HeldExecutable::HeldExecutable()
{
    wchar_t path[kPathCapacity];
    if (!writeExecutable(path, kPathCapacity))
        return;
    m_path = path;
    t_held = &m_path;
}

HeldExecutable::~HeldExecutable()
{
    t_held = nullptr;
}

bool writeExecutable(wchar_t* buffer, unsigned int size)
{
    SetLastError(ERROR_SUCCESS);
    return executablePath(buffer, size) != 0 && GetLastError() != ERROR_INSUFFICIENT_BUFFER;
}

std::size_t keepBaseName(wchar_t* path)
{
    const wchar_t* const slash = std::wcsrchr(path, L'/');
    if (!slash)
        return std::wcslen(path);
    const std::wstring_view name(slash + 1);
    const std::size_t length = std::min(name.size(), name.rfind(L'.'));
    std::wmemmove(path, name.data(), length);
    path[length] = L'\0';
    return length;
}

std::optional<ProgramPlace> ProgramPlace::find()
{
    wchar_t executable[kPathCapacity];
    if (!writeExecutable(executable, kExecutableLimit))
        return std::nullopt;
    wchar_t directory[kPathCapacity];
    wchar_t name[kNameCapacity];
    wchar_t extension[kNameCapacity];
    _wsplitpath(executable, nullptr, directory, name, extension);
    return ProgramPlace{directory, name, extension};
}

const wchar_t* programDirectory()
{
    static const std::optional<ProgramPlace> kPlace = ProgramPlace::find();
    return kPlace ? kPlace->directory.c_str() : L"";
}

unsigned int writeProgramComponent(wchar_t* buffer, unsigned int size, const wchar_t* component)
{
    if (!writeExecutable(buffer, size))
        return 0;
    PathRemoveFileSpecW(buffer);
    if (std::wcslen(buffer) + std::wcslen(component) + 2 >= size - 1)
        return 0;
    if (!PathAppendW(buffer, component))
        return 0;
    return static_cast<unsigned int>(std::wcslen(buffer));
}

bool isReadable(const wchar_t* path)
{
    return _waccess(path, kReadPermission) == 0;
}

bool isThere(const wchar_t* path)
{
    return _waccess(path, kExistence) == 0;
}

} // namespace vruinfo::internal
