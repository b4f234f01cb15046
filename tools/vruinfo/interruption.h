// How a command that runs on and on comes to its end.
#pragma once

#include <chrono>
#include <csignal>

namespace vruinfo::tool
{

/// While it lives, signals that ask the process to end are kept back for `wait` to tell: the command ends by itself
/// and leaves nothing behind.
class [[nodiscard]] Interruption final
{
public:
    enum class Kind {
        None,
        Asked,    ///< SIGINT, SIGTERM, or SIGHUP unless it is ignored.
        NoReader, ///< Nobody reads standard output any more.
    };

    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    /// Waits that long, or until something interrupts.
    [[nodiscard]] Kind wait(std::chrono::milliseconds time) const;

private:
    sigset_t m_signals{};
    sigset_t m_former{};
};

} // namespace vruinfo::tool
