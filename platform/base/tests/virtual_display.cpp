#include "virtual_display.h"

#include <sstream>
#include <thread>

namespace
{

constexpr std::chrono::seconds kPatience(60);
constexpr std::chrono::milliseconds kStep(50);

template <typename Condition>
bool becomesTrue(const Condition& condition)
{
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(kStep);
    }
    return true;
}

std::string firstLine(const std::string& text)
{
    return text.substr(0, text.find('\n'));
}

} // namespace

// The server writes its number when it takes connections. Without -noreset it would begin anew whenever its last client
// leaves.
VirtualDisplay::VirtualDisplay() :
    m_server(std::make_unique<ChildProcess>(std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0",
                                                                     "1024x768x24", "-nolisten", "tcp", "-noreset"},
                                            ChildProcess::Environment{}))
{
    if (m_server->waitForOutput("\n"))
        m_name = ":" + firstLine(m_server->output());
}

std::string VirtualDisplay::tool(std::vector<std::string> arguments) const
{
    arguments.insert(arguments.begin(), "xdotool");
    return outputOf(arguments, {{"DISPLAY", m_name}});
}

std::string VirtualDisplay::visibleWindowOf(const std::string& title) const
{
    return firstLine(tool({"search", "--onlyvisible", "--name", "^" + title + "$"}));
}

std::string VirtualDisplay::windowOf(const std::string& title) const
{
    std::string window;
    static_cast<void>(becomesTrue([&] { return !(window = visibleWindowOf(title)).empty(); }));
    return window;
}

bool VirtualDisplay::isWithoutWindow(const std::string& title) const
{
    return becomesTrue([&] { return visibleWindowOf(title).empty(); });
}

std::string VirtualDisplay::titleOf(const std::string& window) const
{
    return firstLine(tool({"getwindowname", window}));
}

pid_t VirtualDisplay::processOf(const std::string& window) const
{
    const std::string number = firstLine(tool({"getwindowpid", window}));
    return number.empty() ? -1 : static_cast<pid_t>(std::stol(number));
}

void VirtualDisplay::press(const std::string& window, const std::string& key) const
{
    static_cast<void>(tool({"windowfocus", "--sync", window, "key", key}));
}

void VirtualDisplay::click(const std::string& window, int fromRight, int fromBottom) const
{
    int width = 0;
    int height = 0;
    std::istringstream lines(tool({"getwindowgeometry", "--shell", window}));
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("WIDTH=", 0) == 0)
            width = std::stoi(line.substr(6));
        if (line.rfind("HEIGHT=", 0) == 0)
            height = std::stoi(line.substr(7));
    }
    static_cast<void>(tool({"mousemove", "--window", window, std::to_string(width - fromRight),
                            std::to_string(height - fromBottom), "click", "1"}));
}
