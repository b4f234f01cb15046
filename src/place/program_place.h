// The executable's place on disk, which is the installation: asked for in this one place.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace vruinfo::internal
{

/// The folder for cached user data, beside the executable.
inline constexpr wchar_t kUserDataCacheFolder[] = L"UserDataCache";

/// The running executable's path taken apart.
struct ProgramPlace {
    std::wstring directory; ///< With its trailing "/".
    std::wstring baseName;  ///< Without extension.
    std::wstring extension; ///< With its dot; empty when there is none.

    /// Nothing when the path is not known or has more than 1022 characters.
    [[nodiscard]] static std::optional<ProgramPlace> find();
};

/// As GetModuleFileNameW gives the executable's path, last error included.
[[nodiscard]] unsigned int executablePath(wchar_t* buffer, unsigned int size);

/// While it stands, its thread takes the executable's path from here: a start needs it again and again, and the system
/// takes its time to find it out.
class [[nodiscard]] HeldExecutable final
{
public:
    HeldExecutable();
    HeldExecutable(const HeldExecutable&) = delete;
    HeldExecutable& operator=(const HeldExecutable&) = delete;
    ~HeldExecutable();

private:
    std::wstring m_path;
};

/// The executable's path in a buffer; false when it is not known, or longer than size - 1 characters (the buffer may
/// hold its beginning then).
[[nodiscard]] bool writeExecutable(wchar_t* buffer, unsigned int size);

/// Cuts a path down to its file's base name: what stands between the last "/" and the last "." behind it. A text
/// without a "/" stays whole. \return the length left
std::size_t keepBaseName(wchar_t* path);

/// The program directory with its trailing "/", kept from the first call on; empty when it is not known.
[[nodiscard]] const wchar_t* programDirectory();

/// Program directory and a component with one "/" between, written into a caller's buffer; no separator at
/// its end. The directory's length (without separator), the component's and 2 must be less than size - 1.
/// \return its length, 0 on failure (the buffer may hold the executable's path or directory then)
[[nodiscard]] unsigned int writeProgramComponent(wchar_t* buffer, unsigned int size, const wchar_t* component);

/// Whether a path may be read.
[[nodiscard]] bool isReadable(const wchar_t* path);
[[nodiscard]] bool isThere(const wchar_t* path);

} // namespace vruinfo::internal
