#include "child_process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>

using vrplatformbase::internal::after;
using vrplatformbase::internal::Deadline;
using vrplatformbase::internal::Descriptor;

namespace
{

constexpr std::chrono::seconds kPatience(60);

struct Pair {
    Descriptor ours;
    Descriptor theirs;
};

Descriptor closedOnExec(int fd)
{
    fcntl(fd, F_SETFD, FD_CLOEXEC);
    return Descriptor(fd);
}

Pair readPipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Pair writePipe()
{
    Pair pair = readPipe();
    std::swap(pair.ours, pair.theirs);
    return pair;
}

Pair terminal()
{
    int master = -1;
    int slave = -1;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error("no terminal");
    return {closedOnExec(master), closedOnExec(slave)};
}

[[noreturn]] void become(const std::vector<std::string>& command, const ChildProcess::Environment& environment)
{
    for (const auto& [name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments.front(), arguments.data());
    _exit(127);
}

void readInto(std::string& text, Descriptor& from)
{
    std::array<char, 4096> buffer{};
    const ssize_t got = read(from.get(), buffer.data(), buffer.size());
    if (got <= 0)
        return from.reset();
    text.append(buffer.data(), static_cast<std::size_t>(got));
}

/// For its lifetime a pipe that nobody reads any more is an error of the writing call, and no signal.
class BrokenPipesAreErrors
{
public:
    BrokenPipesAreErrors()
    {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
    }
    BrokenPipesAreErrors(const BrokenPipesAreErrors&) = delete;
    BrokenPipesAreErrors& operator=(const BrokenPipesAreErrors&) = delete;
    ~BrokenPipesAreErrors()
    {
        const timespec atOnce{};
        sigtimedwait(&m_pipe, nullptr, &atOnce);
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

private:
    sigset_t m_pipe{};
    sigset_t m_before{};
};

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, const Environment& environment, Streams streams)
{
    const bool onTerminal = streams == Streams::Terminal;
    Pair output = readPipe();
    Pair errors = onTerminal ? terminal() : readPipe();
    Pair input =
        onTerminal ? Pair{closedOnExec(dup(errors.ours.get())), closedOnExec(dup(errors.theirs.get()))} : writePipe();
    m_pid = fork();
    if (m_pid == 0) {
        setsid();
        dup2(input.theirs.get(), STDIN_FILENO);
        dup2(output.theirs.get(), STDOUT_FILENO);
        dup2(errors.theirs.get(), STDERR_FILENO);
        if (onTerminal)
            ioctl(STDIN_FILENO, TIOCSCTTY, 0);
        become(command, environment);
    }
    m_input = std::move(input.ours);
    m_output = std::move(output.ours);
    m_errors = std::move(errors.ours);
}

ChildProcess::~ChildProcess()
{
    if (m_hasEnded)
        return;
    kill(-m_pid, SIGTERM); // with what it started
    if (exitCode(std::chrono::seconds(5)) >= 0)
        return;
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
}

void ChildProcess::type(std::string_view text)
{
    const BrokenPipesAreErrors guard;
    const ssize_t typed = write(m_input.get(), text.data(), text.size());
    const bool hasEnded = typed < 0 && errno == EPIPE;
    if (!hasEnded && typed != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the process takes no input");
}

bool ChildProcess::waitForText(const std::string& where, std::string_view text)
{
    const Deadline deadline = after(kPatience);
    while (where.find(text) == std::string::npos && std::chrono::steady_clock::now() < *deadline && !reap())
        pump(std::chrono::milliseconds(50));
    return where.find(text) != std::string::npos;
}

void ChildProcess::pump(std::chrono::milliseconds time)
{
    std::array<pollfd, 2> entries{{{m_output.get(), POLLIN, 0}, {m_errors.get(), POLLIN, 0}}};
    if (poll(entries.data(), entries.size(), static_cast<int>(time.count())) <= 0)
        return;
    if (entries[0].revents != 0)
        readInto(m_outputText, m_output);
    if (entries[1].revents != 0)
        readInto(m_errorText, m_errors);
}

bool ChildProcess::reap()
{
    m_hasEnded = m_hasEnded || waitpid(m_pid, &m_status, WNOHANG) == m_pid;
    return m_hasEnded;
}

int ChildProcess::exitCode(std::chrono::seconds patience)
{
    const Deadline deadline = after(patience);
    while (!reap()) {
        if (std::chrono::steady_clock::now() > *deadline)
            return -1;
        pump(std::chrono::milliseconds(5));
    }
    for (std::size_t before = 1; before != m_outputText.size() + m_errorText.size();) {
        before = m_outputText.size() + m_errorText.size();
        pump(std::chrono::milliseconds(20));
    }
    return WIFEXITED(m_status) ? WEXITSTATUS(m_status) : 128 + WTERMSIG(m_status);
}

std::string outputOf(const std::vector<std::string>& command, const ChildProcess::Environment& environment)
{
    ChildProcess child(command, environment);
    child.closeInput();
    return child.exitCode() == 0 ? child.output() : std::string();
}
