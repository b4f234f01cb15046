#pragma once

#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "descriptor_io.h"

/// What the standard streams of a child process are.
enum class Streams {
    Pipes,   ///< three pipes
    Terminal ///< a terminal of its own for input and errors, which is its controlling one; a pipe for output
};

/// A real process, seen from outside. It is ended with the object: asked to, then forced to.
class ChildProcess final
{
public:
    using Environment = std::map<std::string, std::string>; ///< added to the test's own

    ChildProcess(const std::vector<std::string>& command, const Environment& environment,
                 Streams streams = Streams::Pipes);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t pid() const { return m_pid; }
    void type(std::string_view text); ///< What a process that has ended no longer reads is lost.
    void closeInput() { m_input.reset(); }
    void closeErrors() { m_errors.reset(); }
    /// Waits until standard error holds the text; false when it does not come.
    [[nodiscard]] bool waitForError(std::string_view text) { return waitForText(m_errorText, text); }
    [[nodiscard]] bool waitForOutput(std::string_view text) { return waitForText(m_outputText, text); } ///< likewise
    /// Waits for the end: the exit code, 128 + signal, or -1 when it does not end.
    [[nodiscard]] int exitCode(std::chrono::seconds patience = std::chrono::seconds(60));
    [[nodiscard]] const std::string& output() const { return m_outputText; }
    [[nodiscard]] const std::string& errors() const { return m_errorText; } ///< on a terminal, with the echo

private:
    bool waitForText(const std::string& where, std::string_view text);
    void pump(std::chrono::milliseconds time);
    bool reap();

    vrplatformbase::internal::Descriptor m_input{-1};
    vrplatformbase::internal::Descriptor m_output{-1};
    vrplatformbase::internal::Descriptor m_errors{-1};
    std::string m_outputText;
    std::string m_errorText;
    pid_t m_pid = -1;
    int m_status = -1;
    bool m_hasEnded = false;
};

/// Output of a command that succeeds; empty when it fails.
[[nodiscard]] std::string outputOf(const std::vector<std::string>& command,
                                   const ChildProcess::Environment& environment = {});
