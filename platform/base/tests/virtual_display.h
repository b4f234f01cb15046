#pragma once

#include <memory>
#include <string>

#include "child_process.h"

/// An X server of its own, and the hands of its user.
class VirtualDisplay final
{
public:
    VirtualDisplay();

    [[nodiscard]] const std::string& name() const { return m_name; } ///< for DISPLAY; empty when it did not start

    [[nodiscard]] std::string messages() const { return m_server ? m_server->errors() : std::string(); }

    /// Waits for a visible window of this title (a regular expression): its number, or an empty text when it does not
    /// come.
    [[nodiscard]] std::string windowOf(const std::string& title) const;
    /// False when there is still a window of this title after a while.
    [[nodiscard]] bool isWithoutWindow(const std::string& title) const;
    [[nodiscard]] std::string titleOf(const std::string& window) const;
    [[nodiscard]] pid_t processOf(const std::string& window) const;
    void press(const std::string& window, const std::string& key) const;
    void click(const std::string& window, int fromRight, int fromBottom) const; ///< pixels from the corner
    void stop() { m_server.reset(); }

private:
    [[nodiscard]] std::string tool(std::vector<std::string> arguments) const;
    [[nodiscard]] std::string visibleWindowOf(const std::string& title) const;

    std::unique_ptr<ChildProcess> m_server;
    std::string m_name;
};
