/// \file VrOsBase.h
/// The Win32 subset without a user interface that the application's modules are written against.
///
/// Conventions that hold for the whole header:
///  1. Names, types and behaviour are those of the public Win32 documentation unless a function says otherwise.
///  2. Wide text is zero-terminated `wchar_t` text of 32-bit code points. A capacity counts characters and
///     includes the terminator; a returned length never counts it. Names of files on disk are UTF-8; a byte that
///     is not UTF-8 travels as a code point in the range U+DC80 to U+DCFF, so that every file can be named. A value
///     that is no code point becomes U+FFFD.
///  3. The path separator is "/". A backslash is understood in what callers pass and never written.
///  4. Null is taken where the Win32 documentation allows it; where it does not, the call fails with last error 87
///     (ERROR_INVALID_PARAMETER) and leaves everything as it was.
///  5. The last error is kept per thread. A function sets it where its comment says so.
///  6. All functions may be called from any thread. None prints, none throws.
///  7. Nothing here knows which product is running.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(VROSBASE_STATIC)
#define VROSBASE_API
#else
/// What stands before each function that leaves the library.
#define VROSBASE_API __attribute__((visibility("default")))
#endif

typedef int BOOL;               ///< Zero is false, everything else true.
typedef unsigned int UINT;      ///< 32 bits.
typedef std::uint32_t DWORD;    ///< 32 bits, without a sign.
typedef std::int32_t LONG;      ///< 32 bits, with a sign.
typedef LONG LSTATUS;           ///< What a registry function gives back: 0 or an error.
typedef LONG HRESULT;           ///< What a folder function gives back: not negative is success.
typedef DWORD REGSAM;           ///< Rights that a key is opened with.
typedef void* HANDLE;           ///< Of a listing.
typedef void* HMODULE;          ///< of a loaded shared library
typedef HMODULE HINSTANCE;      ///< As HMODULE.
typedef void* HWND;             ///< Of a window; nothing here looks at it.
typedef void* HKEY;             ///< Of a registry key.
typedef void* LPVOID;           ///< Anything.
typedef wchar_t WCHAR;          ///< A code point.
typedef wchar_t* LPWSTR;        ///< A text, or the buffer for one.
typedef wchar_t* PWSTR;         ///< As LPWSTR.
typedef const wchar_t* LPCWSTR; ///< A text that is only read.
typedef const wchar_t* PCWSTR;  ///< As LPCWSTR.
typedef DWORD* LPDWORD;         ///< A number that is written.
typedef HKEY* PHKEY;            ///< A key that is written.

#ifndef TRUE
#define TRUE 1 ///< Of BOOL.
#endif
#ifndef FALSE
#define FALSE 0 ///< Of BOOL.
#endif

/// Characters, terminator included, of the buffers that the folder functions fill without asking for a size.
constexpr std::size_t kVrPathCapacity = 1024;

constexpr DWORD ERROR_SUCCESS = 0;                    ///< No error.
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;             ///< No such file, key or match.
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;             ///< No such directory.
constexpr DWORD ERROR_ACCESS_DENIED = 5;              ///< Not allowed, or not of that kind.
constexpr DWORD ERROR_INVALID_HANDLE = 6;             ///< Not a handle of that kind.
constexpr DWORD ERROR_NO_MORE_FILES = 18;             ///< Behind the last entry.
constexpr DWORD ERROR_INVALID_PARAMETER = 87;         ///< An argument that cannot be.
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;      ///< A path was cut.
constexpr DWORD ERROR_MOD_NOT_FOUND = 126;            ///< No such module.
constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;            ///< A directory has content.
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;     ///< A path is too long.
constexpr DWORD ERROR_MORE_DATA = 234;                ///< A text was cut, or does not fit.
constexpr DWORD ERROR_NO_MORE_ITEMS = 259;            ///< Behind the last key.
constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814; ///< No such text.

constexpr HRESULT S_OK = 0;                                        ///< Done.
constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);       ///< Failed.
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057); ///< An argument that cannot be.

constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x01;  ///< May not be written.
constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10; ///< A directory.
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;    ///< None of the others.

constexpr DWORD DONT_RESOLVE_DLL_REFERENCES = 0x01; ///< For LoadLibraryExW: functions are bound on first use.

constexpr int CSIDL_PERSONAL = 5;         ///< the user's documents directory (xdg-user-dirs)
constexpr int CSIDL_APPDATA = 26;         ///< the user's configuration directory (XDG)
constexpr int CSIDL_LOCAL_APPDATA = 28;   ///< the user's data directory (XDG)
constexpr int CSIDL_PROFILE = 40;         ///< the home directory
constexpr int CSIDL_FLAG_CREATE = 0x8000; ///< make the directory if it is missing

constexpr REGSAM KEY_READ = 0x20019;         ///< To read.
constexpr REGSAM KEY_WRITE = 0x20006;        ///< To write.
constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;   ///< Both.
constexpr DWORD REG_CREATED_NEW_KEY = 1;     ///< The key was made.
constexpr DWORD REG_OPENED_EXISTING_KEY = 2; ///< The key was there.

// NOLINTBEGIN(performance-no-int-to-ptr) predefined keys are such values in the documentation
/// The predefined key of the user.
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000001u)))
/// The predefined key of the machine, kept for the user, too.
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000002u)))
// NOLINTEND(performance-no-int-to-ptr)
/// What FindFirstFileW gives where there is nothing.
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1)))

/// One entry of a directory listing.
struct WIN32_FIND_DATAW {
    DWORD dwFileAttributes; ///< FILE_ATTRIBUTE_DIRECTORY for directories (links to directories, too), else NORMAL
    DWORD nFileSizeHigh;    ///< upper half of the size in bytes
    DWORD nFileSizeLow;     ///< lower half of the size in bytes
    WCHAR cFileName[260];   ///< the entry's own name, without its directory
};
typedef WIN32_FIND_DATAW* LPWIN32_FIND_DATAW; ///< An entry that is written.

/// One row of a resource library's string table. A resource library exports the two symbols
/// `VrResourceStrings` (rows in ascending order of id, each id once) and `VrResourceStringCount`.
struct VrResourceString {
    std::uint32_t id;    ///< 1 to 65535
    const wchar_t* text; ///< never null
};

extern "C" {

/// \name Errors
/// @{
VROSBASE_API DWORD GetLastError(void);           ///< The calling thread's last error; 0 at thread start.
VROSBASE_API void SetLastError(DWORD dwErrCode); ///< Sets the calling thread's last error.
/// @}

/// \name Private profiles (INI files)
/// The Windows dialect. Section and key are found without regard to case, blanks around the asked names are
/// ignored; the first section and the first key of a name win; blanks around names and values go; one pair of
/// matching quotes (single or double) around a value goes; ";" opens a comment only as the first thing on a line;
/// a missing "]" is forgiven. UTF-8 with or without byte-order mark, UTF-16LE with one; LF, CRLF and CR. Bytes that
/// are not UTF-8 are given as in convention 2. Blanks are all characters up to U+0020. A line without "=" is no key:
/// it is neither read nor listed. A name without a character can be read, but is not listed. A zero ends what counts of
/// its line. A relative file name begins in the current directory; a file of more than 64 MiB is not read. Nothing is
/// kept between calls.
/// @{

/// Reads a text.
/// \param lpAppName   section; null lists the sections of the file
/// \param lpKeyName   key; null lists the keys of the section
/// \param lpDefault   what is given, as a plain text, when the key, or the section or file to list, is not there;
///   null counts as empty; its trailing blanks go
/// \param lpReturnedString [out] receives the text, always terminated when nSize is not 0
/// \param nSize       capacity in characters with the terminator
/// \param lpFileName  path of the file
/// \return characters copied, without the terminator. A text that does not fit is cut to nSize - 1. A list is
///   names that each end with a zero, and one more zero behind the last (a name that stands twice is listed twice);
///   a list that does not fit is cut so that two zeros end it and nSize - 2 is returned. Never less than 0; with an
///   nSize of 0 nothing is written.
/// Last error: 0, 2 (no such file), 5 (not a file, or not readable), 87 (no buffer; or no file name, which gives the
/// default), else 234 (cut).
VROSBASE_API DWORD GetPrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName, LPCWSTR lpDefault,
                                            LPWSTR lpReturnedString, DWORD nSize, LPCWSTR lpFileName);

/// Reads an integer: sign and leading decimal digits (or 0x and hexadecimal digits) of the key's text; text that has
/// none reads as 0; an absent section, key or file gives nDefault. The value wraps to 32 bits. Last error: 0, 2, 5, or
/// 87 (a null argument, which gives nDefault).
VROSBASE_API UINT GetPrivateProfileIntW(LPCWSTR lpAppName, LPCWSTR lpKeyName, int nDefault, LPCWSTR lpFileName);
/// @}

/// \name Modules
/// A name `X.dll` is found as `libX.so` in the same place, by every function that takes a module name.
/// @{

/// Loads a library by path or by bare name (the latter is searched as the system's loader does).
/// \return its handle, or null (last error 126, or 87 for a null or empty name). Each success is one reference.
VROSBASE_API HMODULE LoadLibraryW(LPCWSTR lpLibFileName);

/// As LoadLibraryW. hFile is reserved. The flag DONT_RESOLVE_DLL_REFERENCES binds functions on first use; others
/// have no meaning here and are ignored.
VROSBASE_API HMODULE LoadLibraryExW(LPCWSTR lpLibFileName, HANDLE hFile, DWORD dwFlags);

/// Gives back one reference. With the last one the handle becomes unknown. A module that is loaded, but of which nobody
/// took a reference here (the main program, or one that GetModuleHandleW found), stays: TRUE.
/// FALSE and last error 6 for a handle that is not one of a loaded module.
VROSBASE_API BOOL FreeLibrary(HMODULE hLibModule);

/// A loaded module's handle, by path or by file name, without adding a reference; with null, the main program's. Null
/// and last error 126 when no such module is loaded.
VROSBASE_API HMODULE GetModuleHandleW(LPCWSTR lpModuleName);

/// The full path of a module; for null or the main program's handle, the executable's.
/// \param nSize capacity in characters with the terminator
/// \return characters copied without the terminator, last error 0; nSize when the path was cut (terminated, last
///   error 122); 0 on failure (last error 6 for a handle that is not one of a module, 87 for no buffer).
VROSBASE_API DWORD GetModuleFileNameW(HMODULE hModule, LPWSTR lpFilename, DWORD nSize);

/// The message of the system's loader for this thread's last failed LoadLibraryW or LoadLibraryExW; empty after a
/// success. The text is valid until the thread loads again.
VROSBASE_API LPCWSTR VrGetLoaderMessage(void);

/// Accepted for compatibility: TRUE for a module's handle, FALSE and last error 6 otherwise.
VROSBASE_API BOOL DisableThreadLibraryCalls(HMODULE hLibModule);

/// Reads a text from the string table of a loaded resource library (null: the main program).
/// \param uID id of the text
/// \param lpBuffer [out] receives the text, terminated; untouched when there is no such text
/// \param cchBufferMax capacity in characters with the terminator; a longer text is cut. With 0, lpBuffer is taken as
///   the address of a pointer that receives the read-only text itself, and the full length is returned.
/// \return characters copied without the terminator; 0 when there is no such text (last error 1814), for a handle
///   that is not one of a module (6) or a null buffer or negative capacity (87).
VROSBASE_API int LoadStringW(HINSTANCE hInstance, UINT uID, LPWSTR lpBuffer, int cchBufferMax);

/// The module that the application's own resources are read from: the main program, until AfxSetResourceHandle.
VROSBASE_API HINSTANCE AfxGetResourceHandle(void);
VROSBASE_API void AfxSetResourceHandle(HINSTANCE hInstResource); ///< Null goes back to the main program.
/// @}

/// \name Folders
/// The folder is written without a trailing separator (unless the system names it with one) into a buffer of
/// kVrPathCapacity characters. A folder of more than kVrPathCapacity - 1 characters, or none, is a failure that
/// leaves an empty text in the buffer.
/// @{

/// \param csidl one of 5, 26, 28, 40, optionally with CSIDL_FLAG_CREATE \param fCreate as the flag
/// \return TRUE, or FALSE (unknown number, no folder, cannot be made)
VROSBASE_API BOOL SHGetSpecialFolderPathW(HWND hwnd, LPWSTR pszPath, int csidl, BOOL fCreate);
/// As above: S_OK, E_INVALIDARG (unknown number, null buffer) or E_FAIL. hToken and dwFlags are ignored.
VROSBASE_API HRESULT SHGetFolderPathW(HWND hwnd, int csidl, HANDLE hToken, DWORD dwFlags, LPWSTR pszPath);
/// @}

/// \name Files
/// @{

/// Begins a listing. The last component of lpFileName may hold "*" (any characters, also none) and "?" (exactly one);
/// "*.*" is every name. Names are compared exactly. "." and ".." are listed when the pattern covers them. Entries come
/// sorted by name (code points), so that results do not depend on the file system.
/// \return a handle for FindNextFileW and FindClose, with the first entry in lpFindFileData; INVALID_HANDLE_VALUE when
///   there is none (last error 2: no match, or no last component; 3: no such directory; 5: not readable; 87).
VROSBASE_API HANDLE FindFirstFileW(LPCWSTR lpFileName, LPWIN32_FIND_DATAW lpFindFileData);
/// The next entry; FALSE and last error 18 behind the last one, 6 for a bad handle.
VROSBASE_API BOOL FindNextFileW(HANDLE hFindFile, LPWIN32_FIND_DATAW lpFindFileData);
/// Ends a listing; FALSE and last error 6 for a bad handle.
VROSBASE_API BOOL FindClose(HANDLE hFindFile);

/// Appends a component with exactly one separator between the two, in a buffer of kVrPathCapacity characters. An
/// empty pMore leaves the path as it is, a pMore that is absolute loses its leading separators; an empty path becomes
/// pMore.
/// \return TRUE, or FALSE with the path unchanged when the result does not fit (last error 206) or an argument is null.
VROSBASE_API BOOL PathAppendW(LPWSTR pszPath, LPCWSTR pMore);

/// Cuts the last component and the separators before it; the root "/" stays. Of a path that ends in separators only
/// these go. Nonzero when something was cut.
VROSBASE_API BOOL PathRemoveFileSpecW(LPWSTR pszPath);

/// Splits a path. There are no drives here: drive becomes empty. The directory keeps its trailing separator, the
/// extension its dot (the last one of the name). Null outputs are skipped. A part longer than its documented capacity
/// (drive 3, dir 1024, name 256, extension 256 characters with the terminator) is cut to it.
VROSBASE_API void _wsplitpath(const wchar_t* path, wchar_t* drive, wchar_t* dir, wchar_t* fname, wchar_t* ext);

/// Access test by the process's effective rights: mode 0 existence, 2 write, 4 read, 6 both. 0 when allowed, else -1
/// (errno ENOENT, EACCES or EINVAL).
VROSBASE_API int _waccess(const wchar_t* path, int mode);

/// Leading blanks, sign, decimal digits; 0 without digits; the largest or smallest int on overflow; 0 for null.
VROSBASE_API int _wtoi(const wchar_t* str);

/// First place of pszSrch in pszFirst without regard to case (by simple case folding, whatever the locale), or null;
/// null for null or empty arguments.
VROSBASE_API PWSTR StrStrIW(PCWSTR pszFirst, PCWSTR pszSrch);

/// The current directory. \return its length without the terminator; when the capacity is too small (or lpBuffer is
/// null) the capacity needed, with the terminator; 0 on failure.
VROSBASE_API DWORD GetCurrentDirectoryW(DWORD nBufferLength, LPWSTR lpBuffer);
/// Changes it. FALSE and last error 2 (no such directory), 3 (not a directory) or 5 on failure.
VROSBASE_API BOOL SetCurrentDirectoryW(LPCWSTR lpPathName);

/// Compares without regard to case as far as wide text goes, the same in every locale (a dotless i is not an i).
/// Less than, equal to or greater than 0. Null counts as empty.
VROSBASE_API int _wcsicmp(const wchar_t* string1, const wchar_t* string2);
/// @}

/// \name Registry
/// HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE over a directory tree in the user's data directory
/// (`VrOsBase/Registry/<root>`): a key is a directory. Names are found without regard to case; a name that no file name
/// can hold is encoded; one that takes more than 255 bytes then is error 87. A subkey text is a path of names with "\"
/// or "/" between them; empty names in it are passed over, and a path without a name is the key itself.
/// @{
VROSBASE_API LSTATUS RegCreateKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD Reserved, LPWSTR lpClass, DWORD dwOptions,
                                     REGSAM samDesired, const void* lpSecurityAttributes, PHKEY phkResult,
                                     LPDWORD lpdwDisposition); ///< 0; 5, 6 or 87 on failure. Parents are made, too.
VROSBASE_API LSTATUS RegOpenKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD ulOptions, REGSAM samDesired,
                                   PHKEY phkResult); ///< 0; 2 when there is no such key; 5, 6 or 87.
/// Name of the child key at an index, in the order of their names.
/// \param lpcchName [in,out] capacity in characters with the terminator; then the length without it
/// \param lpClass [out] receives an empty text; lpftLastWriteTime is left as it is
/// \return 0; 259 behind the last; 234 when the name does not fit (nothing is changed); 5, 6 or 87.
VROSBASE_API LSTATUS RegEnumKeyExW(HKEY hKey, DWORD dwIndex, LPWSTR lpName, LPDWORD lpcchName, LPDWORD lpReserved,
                                   LPWSTR lpClass, LPDWORD lpcchClass, void* lpftLastWriteTime);
/// \return 0; 2; 5 when the key has children or is predefined; 6 or 87.
VROSBASE_API LSTATUS RegDeleteKeyW(HKEY hKey, LPCWSTR lpSubKey);
VROSBASE_API LSTATUS RegCloseKey(HKEY hKey); ///< 0; 6 for what is not a key. Predefined keys stay open.
/// @}

/// Ends the process at once with the code, of which the system keeps the low 8 bits: standard streams are flushed (but
/// one that another thread holds is not waited for), other files are not, and no static destructor and no exit handler
/// runs, so nothing that is still only in memory reaches a settings file.
[[noreturn]] VROSBASE_API void ExitProcess(UINT uExitCode);

} // extern "C"
