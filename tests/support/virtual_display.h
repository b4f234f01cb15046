// A display of its own for a test, on which real dialogs are shown and answered with real keys.
#pragma once

#include <csignal>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "process.h"

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace vrtest
{

class VirtualDisplay
{
public:
    VirtualDisplay()
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        m_server = startServer(ends[1]);
        close(ends[1]);
        m_name = ":" + readLine(ends[0]);
        close(ends[0]);
        if (m_name == ":")
            stop();
        if (m_server == 0)
            throw std::runtime_error("no virtual display");
    }
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;
    ~VirtualDisplay() { stop(); }

    const std::string& name() const { return m_name; } ///< What DISPLAY must be set to.

    /// Waits for a window with exactly this title, gives it the keyboard, and presses a key ("alt+y"); whether
    /// all of it was done. The key goes to the display as from a keyboard, not as a message to the window.
    bool press(const std::string& title, const std::string& key) const
    {
        return tool({"search", "--sync", "--onlyvisible", "--name", "^" + title + "$", "windowfocus", "--sync", "%1",
                     "sleep", "0.3"}) &&
               tool({"key", "--clearmodifiers", key});
    }

private:
    static constexpr int kPatience = 60; // seconds

    bool tool(std::vector<std::string> words) const
    {
        words.insert(words.begin(), "xdotool");
        return runProcess(words, {{"DISPLAY", m_name}}, {}, kPatience).exitCode == 0;
    }

    static pid_t startServer(int numberEnd)
    {
        constexpr int kNumberDescriptor = 9;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, numberEnd, kNumberDescriptor);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        std::string words[] = {"Xvfb",      "-displayfd", std::to_string(kNumberDescriptor),
                               "-screen",   "0",          "800x600x24",
                               "-nolisten", "tcp",        "-noreset"};
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        pid_t server = 0;
        const int error = posix_spawnp(&server, "Xvfb", &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        return error == 0 ? server : 0;
    }

    static std::string readLine(int end)
    {
        std::string line;
        char c = 0;
        pollfd wait{end, POLLIN, 0};
        while (poll(&wait, 1, kPatience * 1000) == 1 && read(end, &c, 1) == 1 && c != '\n')
            line += c;
        return line;
    }

    void stop()
    {
        if (m_server == 0)
            return;
        kill(m_server, SIGTERM);
        waitpid(m_server, nullptr, 0);
        m_server = 0;
    }

    pid_t m_server = 0;
    std::string m_name;
};

} // namespace vrtest
