#include <array>
#include <atomic>
#include <exception>

#include "message_box_style.h"
#include "message_box_ways.h"

using vrplatformbase::internal::Question;

namespace
{

namespace internal = vrplatformbase::internal;

using Way = std::optional<int> (*)(const Question&);

constexpr std::array<Way, 3> kWays{internal::askInProcess, internal::askThroughHelper, internal::askOnTerminal};

std::atomic<VrMessageBoxHandler> installedHandler{nullptr};

int ask(const Question& question)
{
    for (const Way way : kWays) {
        if (const std::optional<int> answer = way(question))
            return *answer;
    }
    return internal::tellOnStandardError(question);
}

const wchar_t* textOrEmpty(const wchar_t* text) noexcept
{
    return text != nullptr ? text : L"";
}

} // namespace

int MessageBoxW(HWND hWnd, LPCWSTR lpText, LPCWSTR lpCaption, UINT uType)
{
    if (const VrMessageBoxHandler handler = installedHandler.load(std::memory_order_acquire))
        return handler(hWnd, lpText, lpCaption, uType);
    try {
        return ask({textOrEmpty(lpText), textOrEmpty(lpCaption), uType});
    } catch (const std::exception&) { // no memory left to ask with
        return internal::buttonSetOf(uType).cautious;
    }
}

VrMessageBoxHandler VrSetMessageBoxHandler(VrMessageBoxHandler handler)
{
    return installedHandler.exchange(handler, std::memory_order_acq_rel);
}
