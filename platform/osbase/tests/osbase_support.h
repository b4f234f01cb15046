#pragma once

#include "VrOsBase/VrOsBase.h"

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace vrosbase::testing
{

/// A directory of the test's own, removed at its end. Others may enter it, so that tests of rights can, too.
class TempDir final
{
public:
    TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    TempDir(TempDir&&) = delete;
    TempDir& operator=(TempDir&&) = delete;
    ~TempDir();

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] std::string at(const std::string& name) const { return m_path + '/' + name; }
    [[nodiscard]] std::wstring wideAt(const std::string& name) const;

    /// Each gives the path of what it made.
    std::string addFile(const std::string& name, const std::string& content = {}) const;
    std::string addDirectory(const std::string& name) const;

private:
    std::string m_path;
};

/// Sets an environment variable, or takes it away, until the end of the scope.
class EnvGuard final
{
public:
    EnvGuard(std::string name, const char* value);
    EnvGuard(const EnvGuard&) = delete;
    EnvGuard& operator=(const EnvGuard&) = delete;
    EnvGuard(EnvGuard&&) = delete;
    EnvGuard& operator=(EnvGuard&&) = delete;
    ~EnvGuard();

private:
    static void put(const std::string& name, const char* value);

    std::string m_name;
    std::string m_former;
    bool m_wasSet = false;
};

/// Goes back to the current directory at the end of the scope.
class DirectoryGuard final
{
public:
    DirectoryGuard();
    DirectoryGuard(const DirectoryGuard&) = delete;
    DirectoryGuard& operator=(const DirectoryGuard&) = delete;
    DirectoryGuard(DirectoryGuard&&) = delete;
    DirectoryGuard& operator=(DirectoryGuard&&) = delete;
    ~DirectoryGuard();

private:
    std::string m_former;
};

/// A buffer of an exact capacity with guards behind it.
class GuardedBuffer final
{
public:
    static constexpr wchar_t kFill = L'#';

    explicit GuardedBuffer(std::size_t capacity) : m_capacity(capacity), m_memory(capacity + kGuards, kFill) {}

    [[nodiscard]] wchar_t* data() { return m_memory.data(); }
    [[nodiscard]] DWORD capacity() const { return static_cast<DWORD>(m_capacity); }
    [[nodiscard]] std::wstring text() const { return {m_memory.data()}; }
    [[nodiscard]] std::wstring first(std::size_t count) const { return {m_memory.data(), count}; }
    [[nodiscard]] bool isUntouched() const { return holdsFillFrom(0); }
    [[nodiscard]] bool guardsHold() const { return holdsFillFrom(m_capacity); }

private:
    static constexpr std::size_t kGuards = 16;
    [[nodiscard]] bool holdsFillFrom(std::size_t begin) const;

    std::size_t m_capacity;
    std::vector<wchar_t> m_memory;
};

/// ASCII text as wide text.
[[nodiscard]] std::wstring wide(const std::string& ascii);
[[nodiscard]] std::string readFile(const std::string& path);

/// Runs a shell command.
struct CommandResult {
    int exitCode;       ///< -1 when it ended otherwise
    std::string output; ///< of both streams
};
[[nodiscard]] CommandResult run(const std::string& command);

/// Runs a function in a child process that has no special rights. Gives what it returns.
[[nodiscard]] int runWithoutPrivileges(const std::function<int()>& function);

} // namespace vrosbase::testing
