#include <cstdlib>
#include <string>

#include "companion_file.h"
#include "helper_process.h"
#include "helper_protocol.h"
#include "message_box_style.h"
#include "message_box_ways.h"
#include "visible_platform.h"
#include "wide_text.h"

namespace vrplatformbase::internal
{

namespace
{

// A display that does not answer must not keep the host from going on; a slow machine must get its dialog.
constexpr std::chrono::seconds kTimeToShow(10);

std::string environmentText(const char* name)
{
    const char* text = std::getenv(name);
    return text != nullptr ? text : "";
}

bool hasDisplay()
{
    if (environmentText("DISPLAY").empty() && environmentText("WAYLAND_DISPLAY").empty())
        return false;
    return isVisiblePlatform(environmentText("QT_QPA_PLATFORM"));
}

std::string messageOf(const Question& question)
{
    const std::string text = toUtf8(question.text);
    const std::string caption = toUtf8(question.caption);
    const QuestionHeader header{question.style, static_cast<std::uint32_t>(text.size()),
                                static_cast<std::uint32_t>(caption.size())};
    return std::string(reinterpret_cast<const char*>(&header), sizeof header) + text + caption;
}

std::optional<char> receiveByte(int socket, const Deadline& deadline)
{
    char byte = 0;
    if (!receiveAll(socket, &byte, 1, deadline))
        return std::nullopt;
    return byte;
}

} // namespace

std::optional<int> askThroughHelper(const Question& question)
{
    if (!hasDisplay())
        return std::nullopt;
    const std::optional<std::string> program = findCompanion("VrMessageBox");
    if (!program)
        return std::nullopt;
    const HelperProcess helper(*program);
    const Deadline deadline = after(kTimeToShow);
    if (!helper.isStarted() || !sendAll(helper.socket(), messageOf(question), deadline))
        return std::nullopt;
    if (receiveByte(helper.socket(), deadline) != kDialogShown)
        return std::nullopt;
    const std::optional<char> answer = receiveByte(helper.socket(), std::nullopt);
    return answer && offers(buttonSetOf(question.style), *answer) ? std::optional<int>(*answer) : std::nullopt;
}

} // namespace vrplatformbase::internal
