#include "process.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "sanitizers.h"

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace vrtest
{
namespace
{

using Clock = std::chrono::steady_clock;

std::vector<std::string> environmentOf(const Environment& changes)
{
    std::vector<std::string> result;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        if (changes.find(text.substr(0, text.find('='))) == changes.end())
            result.push_back(text);
    }
    for (const auto& [name, value] : changes) {
        if (!value.empty())
            result.push_back(name + "=" + value);
    }
    return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

pid_t spawn(const std::vector<std::string>& command, const Environment& changes, posix_spawn_file_actions_t* actions)
{
    std::vector<std::string> arguments = command;
    std::vector<std::string> variables = environmentOf(changes);
    pid_t child = 0;
    const int error = posix_spawnp(&child, command.front().c_str(), actions, nullptr, pointersTo(arguments).data(),
                                   pointersTo(variables).data());
    if (error != 0)
        throw std::runtime_error("cannot start " + command.front() + ", error " + std::to_string(error));
    return child;
}

class Pipe
{
public:
    Pipe()
    {
        if (pipe2(m_ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe()
    {
        close(m_ends[0]);
        closeWriter();
    }
    int reader() const { return m_ends[0]; }
    int writer() const { return m_ends[1]; }
    void closeWriter()
    {
        if (m_ends[1] >= 0)
            close(m_ends[1]);
        m_ends[1] = -1;
    }

private:
    std::array<int, 2> m_ends{-1, -1};
};

bool readSome(int descriptor, std::string& text)
{
    std::array<char, 4096> buffer{};
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count > 0)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

/// Reads both outputs to their ends; false when the time ran out before.
bool drain(const Pipe& out, const Pipe& err, ProcessResult& result, Clock::time_point end)
{
    std::array<pollfd, 2> waits = {{{out.reader(), POLLIN, 0}, {err.reader(), POLLIN, 0}}};
    while (waits[0].fd >= 0 || waits[1].fd >= 0) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0 || poll(waits.data(), waits.size(), static_cast<int>(left)) == 0)
            return false;
        if (waits[0].fd >= 0 && waits[0].revents != 0 && !readSome(waits[0].fd, result.out))
            waits[0].fd = -1;
        if (waits[1].fd >= 0 && waits[1].revents != 0 && !readSome(waits[1].fd, result.err))
            waits[1].fd = -1;
    }
    return true;
}

/// A sanitizer tells on standard error of each request for more memory than there is; the program itself does not.
std::string withoutRefusals(const std::string& words)
{
    std::string own;
    std::istringstream lines(words);
    for (std::string line; std::getline(lines, line);) {
        if (line.find("Sanitizer failed to allocate") == std::string::npos)
            own += line + (lines.eof() ? "" : "\n");
    }
    return own;
}

} // namespace

ProcessResult runProcess(const std::vector<std::string>& command, const Environment& environment,
                         const std::string& workingDirectory, int timeoutSeconds)
{
    Pipe out;
    Pipe err;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out.writer(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.writer(), STDERR_FILENO);
    if (!workingDirectory.empty())
        posix_spawn_file_actions_addchdir_np(&actions, workingDirectory.c_str());
    const pid_t child = spawn(command, environment, &actions);
    posix_spawn_file_actions_destroy(&actions);
    out.closeWriter();
    err.closeWriter();

    ProcessResult result;
    if (!drain(out, err, result, Clock::now() + std::chrono::seconds(timeoutSeconds)))
        kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    if (kHasSanitizerAllocator)
        result.err = withoutRefusals(result.err);
    return result;
}

int passThrough(const std::vector<std::string>& command, const Environment& environment)
{
    const pid_t child = spawn(command, environment, nullptr);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace vrtest
