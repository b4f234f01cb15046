#include "interruption.h"

#include <initializer_list>

#include <poll.h>
#include <unistd.h>

namespace vruinfo::tool
{
namespace
{

bool isIgnored(int signal)
{
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN; // NOLINT(*-union-access)
}

timespec timespecOf(std::chrono::milliseconds time)
{
    using namespace std::chrono;
    const auto whole = duration_cast<seconds>(time);
    return {static_cast<time_t>(whole.count()), static_cast<long>(duration_cast<nanoseconds>(time - whole).count())};
}

bool hasReader()
{
    pollfd output{STDOUT_FILENO, 0, 0};
    return poll(&output, 1, 0) <= 0 || (static_cast<unsigned int>(output.revents) & POLLERR) == 0;
}

} // namespace

Interruption::Interruption()
{
    sigemptyset(&m_signals);
    for (const int signal : {SIGINT, SIGTERM, SIGPIPE})
        sigaddset(&m_signals, signal);
    if (!isIgnored(SIGHUP)) // that is what nohup is for
        sigaddset(&m_signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &m_signals, &m_former);
}

Interruption::~Interruption()
{
    pthread_sigmask(SIG_SETMASK, &m_former, nullptr);
}

Interruption::Kind Interruption::wait(std::chrono::milliseconds time) const
{
    const timespec duration = timespecOf(time);
    const int signal = sigtimedwait(&m_signals, nullptr, &duration);
    if (signal == SIGPIPE || !hasReader())
        return Kind::NoReader;
    return signal > 0 ? Kind::Asked : Kind::None;
}

} // namespace vruinfo::tool
