#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include <unistd.h>

namespace vrplatformbase::internal
{

/// Until when to wait; nothing: as long as it takes.
using Deadline = std::optional<std::chrono::steady_clock::time_point>;

[[nodiscard]] Deadline after(std::chrono::milliseconds time);

/// Owns an open descriptor, or none (-1).
class Descriptor final
{
public:
    explicit Descriptor(int fd) noexcept : m_fd(fd) {}
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }

    [[nodiscard]] int get() const noexcept { return m_fd; }
    void reset() noexcept
    {
        if (m_fd >= 0)
            close(m_fd);
        m_fd = -1;
    }

private:
    int m_fd;
};

/// Waits for one of poll's events, or for the other end to go. False when the time is over.
[[nodiscard]] bool waitFor(int fd, short events, const Deadline& deadline);

/// \name Whole messages over a connected socket
/// False when the other end is gone or the time is over. Neither raises a signal.
/// @{
[[nodiscard]] bool sendAll(int fd, std::string_view data, const Deadline& deadline);
[[nodiscard]] bool receiveAll(int fd, void* data, std::size_t size, const Deadline& deadline);
/// @}

} // namespace vrplatformbase::internal
