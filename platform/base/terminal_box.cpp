#include <cerrno>
#include <mutex>
#include <string>

#include <poll.h>

#include "descriptor_io.h"
#include "message_box_ways.h"
#include "standard_error.h"
#include "terminal_answer.h"
#include "wide_text.h"

namespace vrplatformbase::internal
{

namespace
{

// In the background, reading would stop the process, and nobody would answer.
bool hasTerminal() noexcept
{
    return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1 && tcgetpgrp(STDIN_FILENO) == getpgrp();
}

// One character and no more, so that what is typed ahead stays the host's. Nothing at the end of input.
std::optional<char> readCharacter()
{
    char c = 0;
    for (;;) {
        const ssize_t got = read(STDIN_FILENO, &c, 1);
        if (got == 1)
            return c;
        if (got == 0 || (errno != EINTR && errno != EAGAIN))
            return std::nullopt;
        if (!waitFor(STDIN_FILENO, POLLIN, std::nullopt))
            return std::nullopt;
    }
}

// Without its end. Nothing at the end of input.
std::optional<std::string> readLine()
{
    std::string line;
    for (;;) {
        const std::optional<char> c = readCharacter();
        if (!c)
            return std::nullopt;
        if (*c == '\n' || *c == '\r')
            return line;
        line.push_back(*c);
    }
}

std::string lineOf(const wchar_t* text)
{
    return *text != L'\0' ? toPrintableUtf8(text) + "\n" : std::string();
}

} // namespace

std::optional<int> askOnTerminal(const Question& question)
{
    static std::mutex oneAtATime;
    if (!hasTerminal())
        return std::nullopt;
    const std::lock_guard<std::mutex> guard(oneAtATime);
    const ButtonSet& buttons = buttonSetOf(question.style);
    writeToStandardError(lineOf(question.caption) + lineOf(question.text));
    for (;;) {
        writeToStandardError(promptOf(buttons));
        const std::optional<std::string> line = readLine();
        if (!line)
            return buttons.cautious;
        if (const std::optional<int> answer = answerOf(buttons, *line))
            return answer;
    }
}

int tellOnStandardError(const Question& question)
{
    const std::string caption = toPrintableUtf8(question.caption);
    const std::string text = toPrintableUtf8(question.text);
    writeToStandardError(caption.empty() ? text + "\n" : caption + ": " + text + "\n");
    return buttonSetOf(question.style).cautious;
}

} // namespace vrplatformbase::internal
