// A process of a stress program's own executable, started in an installation to play one of its roles.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "installation.h"

namespace stress
{

using Arguments = std::vector<std::string>;
using Milliseconds = std::chrono::milliseconds;
using Microseconds = std::chrono::microseconds;
using Clock = std::chrono::steady_clock;

/// Standard input and output are this process's; standard error is shared. Killed, if it still runs, with the object.
class HostProcess
{
public:
    HostProcess(const vrtest::Installation& installation, const std::string& role, const Arguments& arguments = {});
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    ~HostProcess();

    /// The next line that it prints; nothing when it printed none within the time, or has ended.
    [[nodiscard]] std::optional<std::string> line(Milliseconds patience = Milliseconds(60000));
    /// Says a line to it.
    void say(const std::string& line) const;
    /// Says a line, and its answer; empty when there is none within a minute.
    [[nodiscard]] std::string ask(const std::string& question);

    void signal(int number) const;
    /// The files that it has open just now, as the system names them.
    [[nodiscard]] std::vector<std::filesystem::path> openFiles() const;
    /// Ends it with SIGKILL. \return whether it still ran
    bool kill();
    /// Waits for its end. \return its exit code, or -1 when a signal ended it
    int finish();

private:
    [[nodiscard]] bool readMore(Milliseconds patience);

    pid_t m_process = 0;
    int m_input = -1;
    int m_output = -1;
    std::string m_unread;
    std::optional<int> m_status;
};

using Role = int (*)(const Arguments& arguments);
using Roles = std::map<std::string, Role>;

/// Plays the role that the arguments name, if this process was started for one.
[[nodiscard]] std::optional<int> playedRole(int count, char** values, const Roles& roles);
/// Prints a line to whoever started this process.
void tell(const std::string& line);
/// The next line that whoever started this process says; nothing at the end.
[[nodiscard]] std::optional<std::string> hear();

} // namespace stress
