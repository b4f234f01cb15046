#include "helper_process.h"

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include "helper_protocol.h"

namespace vrplatformbase::internal
{

namespace
{

class SpawnActions final
{
public:
    explicit SpawnActions(int socket)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, socket, kHelperSocket);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&m_actions, stream, "/dev/null", O_RDWR, 0);
        posix_spawn_file_actions_addclosefrom_np(&m_actions, kHelperSocket + 1);
    }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&m_actions); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t* get() const noexcept { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

class SpawnAttributes final
{
public:
    SpawnAttributes()
    {
        sigset_t signals;
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&m_attributes, &signals);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&m_attributes, &signals);
        posix_spawnattr_setpgroup(&m_attributes, 0);
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&m_attributes); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* get() const noexcept { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes{};
};

std::array<int, 2> makeSocketPair() noexcept
{
    std::array<int, 2> ends{-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return {-1, -1};
    return ends;
}

pid_t spawn(const std::string& program, int socket)
{
    const SpawnActions actions(socket);
    const SpawnAttributes attributes;
    std::string name = program;
    const std::array<char*, 2> arguments{name.data(), nullptr};
    pid_t pid = -1;
    const int error = posix_spawn(&pid, program.c_str(), actions.get(), attributes.get(), arguments.data(), environ);
    return error == 0 ? pid : -1;
}

// A host may reap children itself; the number can be another process's then.
bool isStillOurs(pid_t pid) noexcept
{
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

} // namespace

HelperProcess::HelperProcess(const std::string& program) : m_socket(-1)
{
    const std::array<int, 2> ends = makeSocketPair();
    if (ends[0] < 0)
        return;
    const Descriptor theirs(ends[1]);
    m_socket = Descriptor(ends[0]);
    m_pid = spawn(program, theirs.get());
}

HelperProcess::~HelperProcess()
{
    m_socket.reset();
    if (m_pid <= 0 || !isStillOurs(m_pid))
        return;
    kill(m_pid, SIGKILL);
    while (waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace vrplatformbase::internal
