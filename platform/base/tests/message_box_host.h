#pragma once

// What the host programs of the message box tests have in common. Their command line is: style, text, caption, and
// words that change how they ask. They print the answer and end with it as exit code.

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <QString>

#include <sys/wait.h>

#include "VrPlatformBase/VrPlatformBase.h"

class MessageBoxHost final
{
public:
    MessageBoxHost(int argc, char** argv) : m_arguments(argv + 1, argv + argc)
    {
        if (has("ignore-children"))
            std::signal(SIGCHLD, SIG_IGN);
        if (has("reap-children"))
            std::signal(SIGCHLD, reapAll);
        if (has("bad-text"))
            m_badText = {L'a', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x110000), L'\x1B', L'z'};
    }

    [[nodiscard]] bool has(const char* word) const
    {
        return std::find(m_arguments.begin(), m_arguments.end(), word) != m_arguments.end();
    }

    [[nodiscard]] int ask() const
    {
        int answer = 0;
        if (has("thread"))
            std::thread([&] { answer = askHere(); }).join();
        else
            answer = askHere();
        std::printf("answer=%d\n", answer);
        return answer;
    }

private:
    static void reapAll(int /*signal*/)
    {
        const int error = errno;
        while (waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        errno = error;
    }

    [[nodiscard]] int askHere() const
    {
        const auto style = static_cast<UINT>(std::stoul(m_arguments.at(0), nullptr, 0));
        if (has("null-texts"))
            return MessageBoxW(nullptr, nullptr, nullptr, style);
        const std::wstring text = has("bad-text") ? m_badText : wide(m_arguments.at(1));
        return MessageBoxW(nullptr, text.c_str(), wide(m_arguments.at(2)).c_str(), style);
    }

    static std::wstring wide(const std::string& utf8) { return QString::fromStdString(utf8).toStdWString(); }

    std::vector<std::string> m_arguments;
    std::wstring m_badText;
};
