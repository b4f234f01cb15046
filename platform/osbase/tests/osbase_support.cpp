#include "osbase_support.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace vrosbase::testing
{
namespace fs = std::filesystem;

TempDir::TempDir() : m_path((fs::temp_directory_path() / "osbase_test_XXXXXX").string())
{
    if (::mkdtemp(m_path.data()) == nullptr) {
        throw std::runtime_error("no temporary directory");
    }
    fs::permissions(m_path, fs::perms(0755));
}

TempDir::~TempDir()
{
    std::error_code error;
    fs::remove_all(m_path, error);
}

std::wstring TempDir::wideAt(const std::string& name) const
{
    return wide(at(name));
}

std::string TempDir::addFile(const std::string& name, const std::string& content) const
{
    std::ofstream(at(name), std::ios::binary) << content;
    return at(name);
}

std::string TempDir::addDirectory(const std::string& name) const
{
    fs::create_directories(at(name));
    return at(name);
}

EnvGuard::EnvGuard(std::string name, const char* value) : m_name(std::move(name))
{
    if (const char* const former = std::getenv(m_name.c_str())) {
        m_former = former;
        m_wasSet = true;
    }
    put(m_name, value);
}

EnvGuard::~EnvGuard()
{
    put(m_name, m_wasSet ? m_former.c_str() : nullptr);
}

void EnvGuard::put(const std::string& name, const char* value)
{
    if (value == nullptr) {
        ::unsetenv(name.c_str());
    } else {
        ::setenv(name.c_str(), value, 1);
    }
}

DirectoryGuard::DirectoryGuard() : m_former(fs::current_path().string()) {}

DirectoryGuard::~DirectoryGuard()
{
    std::error_code error;
    fs::current_path(m_former, error);
}

bool GuardedBuffer::holdsFillFrom(std::size_t begin) const
{
    const auto from = m_memory.begin() + static_cast<std::ptrdiff_t>(begin);
    return std::all_of(from, m_memory.end(), [](wchar_t c) { return c == kFill; });
}

std::wstring wide(const std::string& ascii)
{
    return {ascii.begin(), ascii.end()};
}

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

CommandResult run(const std::string& command)
{
    std::FILE* const pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        throw std::runtime_error("no process");
    }
    std::string output;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        output.push_back(static_cast<char>(c));
    }
    const int status = ::pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

int runWithoutPrivileges(const std::function<int()>& function)
{
    constexpr uid_t kNobody = 65534;
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isReady =
            ::geteuid() != 0 || (::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0);
        ::_exit(isReady ? function() : 255);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace vrosbase::testing
