/// \file VrPlatformBase.h
/// The application's base classes on top of VrOsBase: message box, lock, exceptions, crash recorder.
///
/// Conventions that hold for the whole header:
///  1. Texts are zero-terminated wide text; a text handed in is copied, a text handed out lives as long as its object.
///  2. Objects are not shared between threads unless a class says so.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "VrOsBase/VrOsBase.h"

#if defined(VRPLATFORMBASE_STATIC)
#define VRPLATFORMBASE_API
#else
/// What stands before each function that leaves the library.
#define VRPLATFORMBASE_API __attribute__((visibility("default")))
#endif

/// \name Message box styles and answers (Win32 numbers)
/// @{
constexpr UINT MB_OK = 0x00;              ///< Button OK.
constexpr UINT MB_OKCANCEL = 0x01;        ///< Buttons OK and Cancel.
constexpr UINT MB_YESNOCANCEL = 0x03;     ///< Buttons Yes, No and Cancel.
constexpr UINT MB_YESNO = 0x04;           ///< Buttons Yes and No.
constexpr UINT MB_RETRYCANCEL = 0x05;     ///< Buttons Retry and Cancel.
constexpr UINT MB_ICONERROR = 0x10;       ///< An error.
constexpr UINT MB_ICONQUESTION = 0x20;    ///< A question.
constexpr UINT MB_ICONWARNING = 0x30;     ///< A warning.
constexpr UINT MB_ICONINFORMATION = 0x40; ///< An information.
constexpr int IDOK = 1;                   ///< Answer OK.
constexpr int IDCANCEL = 2;               ///< Answer Cancel.
constexpr int IDRETRY = 4;                ///< Answer Retry.
constexpr int IDYES = 6;                  ///< Answer Yes.
constexpr int IDNO = 7;                   ///< Answer No.
/// @}

/// A host's own way of asking; returns one of the answers above.
typedef int (*VrMessageBoxHandler)(HWND owner, const wchar_t* text, const wchar_t* caption, unsigned int style);

extern "C" {

/// Tells or asks the user, wherever the host is in its start-up. The first of these ways that is there is used:
///  1. the handler installed with VrSetMessageBoxHandler;
///  2. a Qt message box in this process, when a QApplication with a visible platform runs and this is its thread;
///  3. a real dialog in a helper process, when there is a display;
///  4. on a terminal, the text and a prompt;
///  5. otherwise the text on standard error and the cautious answer (No for Yes/No, Cancel where there is one, OK where
///     there is only OK).
/// It never waits without someone to answer: a display that cannot be reached within a few seconds is passed over.
/// \return IDOK, IDCANCEL, IDRETRY, IDYES or IDNO. Null texts count as empty. Closing the dialog or ending the
///   terminal's input gives the cautious answer. May be called from any thread.
VRPLATFORMBASE_API int MessageBoxW(HWND hWnd, LPCWSTR lpText, LPCWSTR lpCaption, UINT uType);

/// Installs a handler for the whole process and returns the former one; null restores the default.
VRPLATFORMBASE_API VrMessageBoxHandler VrSetMessageBoxHandler(VrMessageBoxHandler handler);

} // extern "C"

/// A lock that the thread that holds it may take again; each `lock` needs its `unlock`. Shared by all threads. Waiting
/// threads sleep, and none is passed over for long: the lock is handed to one that has waited more than a millisecond.
class VRPLATFORMBASE_API VrLocker
{
public:
    VrLocker() noexcept;
    ~VrLocker(); // NOLINT(performance-trivially-destructible) part of the binary interface
    VrLocker(const VrLocker&) = delete;
    VrLocker& operator=(const VrLocker&) = delete;

    void lock(); ///< Waits until no other thread holds it.
    /// Free after as many as there were `lock`s. Only the thread that holds the lock can; from others it does nothing.
    void unlock() noexcept;

private:
    std::atomic<std::uint32_t> m_state{0};   // free, or held and who waits for it
    std::atomic<std::uint32_t> m_bequest{0}; // 1 while the lock is on its way to the next holder without being free
    std::atomic<std::uintptr_t> m_owner{0};  // the thread that holds it; 0 while none does
    std::uint64_t m_depth = 0;               // the owner's alone
};

/// Base of the application's exceptions.
class VRPLATFORMBASE_API VrException
{
public:
    VrException() = default;
    VrException(const VrException&) = default;            ///< A copy of its own.
    VrException& operator=(const VrException&) = default; ///< As above.
    virtual ~VrException();
    virtual const wchar_t* description() const; ///< What went wrong; never null; here the empty text.
    virtual int code() const;                   ///< A number for it; here 0.
    virtual const wchar_t* className() const;   ///< "VrException".
};

/// An exception that carries a message and the place in the source where it arose.
class VRPLATFORMBASE_API VrExceptionWithMsg : public VrException
{
public:
    /// Null texts count as empty.
    VrExceptionWithMsg(const wchar_t* message, const wchar_t* file, int line);
    VrExceptionWithMsg(const VrExceptionWithMsg&) = default;            ///< A copy of its own.
    VrExceptionWithMsg& operator=(const VrExceptionWithMsg&) = default; ///< As above.
    ~VrExceptionWithMsg() override;
    const wchar_t* description() const override; ///< The message.

    const wchar_t* file() const { return m_file.c_str(); } ///< Source file name.
    int line() const { return m_line; }                    ///< Line in it, from 1; 0 when unknown.

private:
    std::wstring m_message;
    std::wstring m_file;
    int m_line;
};

/// What is thrown, by pointer, when an invariant of a value is broken: a status number and a message.
class VRPLATFORMBASE_API VrErrorStatus
{
public:
    VrErrorStatus(unsigned int status, const wchar_t* message, int line); ///< A null message counts as empty.
    ~VrErrorStatus();
    VrErrorStatus(const VrErrorStatus&) = default;            ///< A copy of its own.
    VrErrorStatus& operator=(const VrErrorStatus&) = default; ///< As above.

    unsigned int status() const { return m_status; }             ///< The number given.
    const wchar_t* message() const { return m_message.c_str(); } ///< The message given; never null.
    int line() const { return m_line; }                          ///< The line given.

private:
    unsigned int m_status;
    int m_line;
    std::wstring m_message;
};

/// What the process wants to be told of before an error is thrown. Slot order is fixed.
class VRPLATFORMBASE_API VrCrashRecorder
{
public:
    virtual void begin();                               ///< A recording begins; by default nothing.
    virtual void recordMessage(const wchar_t* text);    ///< A line of it; by default nothing.
    virtual void end();                                 ///< It ends; by default nothing.
    virtual void recordError(VrErrorStatus* error) = 0; ///< An error about to be thrown; stays the thrower's.

protected:
    ~VrCrashRecorder() = default;
};

/// Installs the process's recorder (not owned; null: none) and returns the former one. Any thread.
VRPLATFORMBASE_API VrCrashRecorder* vornSetCrashRecorder(VrCrashRecorder* recorder);
/// The process's recorder; null until one is installed.
VRPLATFORMBASE_API VrCrashRecorder* vornGetCrashRecorder();

/// Makes a VrErrorStatus on the heap, hands it to the recorder if there is one, and throws the pointer; whoever catches
/// it deletes it.
[[noreturn]] VRPLATFORMBASE_API void VrRaiseErrorStatus(unsigned int status, const wchar_t* message, int line);
