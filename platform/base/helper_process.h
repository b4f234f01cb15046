#pragma once

#include <string>

#include <sys/types.h>

#include "descriptor_io.h"

namespace vrplatformbase::internal
{

/// A program started with a socket to this process and nothing else of it: standard streams are /dev/null, signals are
/// at their defaults, and it is in a process group of its own. It is ended, if need be, and reaped with the object.
class HelperProcess final
{
public:
    explicit HelperProcess(const std::string& program);
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    [[nodiscard]] bool isStarted() const noexcept { return m_pid > 0; }
    [[nodiscard]] int socket() const noexcept { return m_socket.get(); }

private:
    Descriptor m_socket;
    pid_t m_pid = -1;
};

} // namespace vrplatformbase::internal
