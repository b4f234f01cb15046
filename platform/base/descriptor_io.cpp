#include "descriptor_io.h"

#include <algorithm>
#include <cerrno>
#include <climits>

#include <poll.h>
#include <sys/socket.h>

namespace vrplatformbase::internal
{

namespace
{

using std::chrono::milliseconds;

int millisecondsUntil(const Deadline& deadline)
{
    if (!deadline)
        return -1;
    const auto left = std::chrono::ceil<milliseconds>(*deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<milliseconds::rep>(left.count(), 0, INT_MAX));
}

bool isWorthRepeating(int error) noexcept
{
    return error == EINTR || error == EAGAIN;
}

} // namespace

Deadline after(milliseconds time)
{
    return std::chrono::steady_clock::now() + time;
}

bool waitFor(int fd, short events, const Deadline& deadline)
{
    for (;;) {
        pollfd entry{fd, events, 0};
        const int ready = poll(&entry, 1, millisecondsUntil(deadline));
        if (ready >= 0)
            return ready > 0;
        if (!isWorthRepeating(errno))
            return false;
    }
}

bool sendAll(int fd, std::string_view data, const Deadline& deadline)
{
    while (!data.empty()) {
        if (!waitFor(fd, POLLOUT, deadline))
            return false;
        const ssize_t sent = send(fd, data.data(), data.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && !isWorthRepeating(errno))
            return false;
        data.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
    }
    return true;
}

bool receiveAll(int fd, void* data, std::size_t size, const Deadline& deadline)
{
    auto* to = static_cast<char*>(data);
    while (size > 0) {
        if (!waitFor(fd, POLLIN, deadline))
            return false;
        const ssize_t got = recv(fd, to, size, MSG_DONTWAIT);
        if (got == 0 || (got < 0 && !isWorthRepeating(errno)))
            return false;
        to += std::max<ssize_t>(got, 0);
        size -= static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    }
    return true;
}

} // namespace vrplatformbase::internal
