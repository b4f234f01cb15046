#include "standard_error.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>

#include <poll.h>
#include <pthread.h>

#include "descriptor_io.h"

namespace vrplatformbase::internal
{

namespace
{

constexpr std::chrono::seconds kTimeToWrite(5);

/// Keeps the signals of a write from this thread, and takes back a SIGPIPE that the write raised.
class WriteSignalGuard final
{
public:
    WriteSignalGuard() noexcept
    {
        sigemptyset(&m_blocked);
        sigaddset(&m_blocked, SIGPIPE);
        sigaddset(&m_blocked, SIGTTOU);
        m_wasPending = isPipeSignalPending();
        pthread_sigmask(SIG_BLOCK, &m_blocked, &m_former);
    }
    ~WriteSignalGuard()
    {
        if (!m_wasPending && isPipeSignalPending())
            discardPipeSignal();
        pthread_sigmask(SIG_SETMASK, &m_former, nullptr);
    }
    WriteSignalGuard(const WriteSignalGuard&) = delete;
    WriteSignalGuard& operator=(const WriteSignalGuard&) = delete;

private:
    static bool isPipeSignalPending() noexcept
    {
        sigset_t pending;
        sigemptyset(&pending);
        sigpending(&pending);
        return sigismember(&pending, SIGPIPE) == 1;
    }
    static void discardPipeSignal() noexcept
    {
        sigset_t pipeOnly;
        sigemptyset(&pipeOnly);
        sigaddset(&pipeOnly, SIGPIPE);
        const timespec now{0, 0};
        sigtimedwait(&pipeOnly, nullptr, &now);
    }

    sigset_t m_blocked{};
    sigset_t m_former{};
    bool m_wasPending = false;
};

} // namespace

void writeToStandardError(std::string_view text)
{
    const WriteSignalGuard guard;
    const Deadline deadline = after(kTimeToWrite);
    while (!text.empty() && waitFor(STDERR_FILENO, POLLOUT, deadline)) {
        // A pipe that is ready takes this much without waiting.
        const ssize_t written = write(STDERR_FILENO, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        if (written < 0 && errno != EINTR && errno != EAGAIN)
            return;
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
}

} // namespace vrplatformbase::internal
