#pragma once

#include <cstdint>

// What this library and its helper program say to each other over the socket that the helper finds open when it starts.
// The library sends a header and the two texts behind it; the helper sends kDialogShown when its dialog is up, then
// one byte with the answer. Either end takes the other's going away as the end of the talk.

namespace vrplatformbase::internal
{

inline constexpr int kHelperSocket = 3; ///< descriptor number in the helper

/// Both ends are of one build and on one machine, so that it travels as it is in memory.
struct QuestionHeader {
    std::uint32_t style;
    std::uint32_t textBytes;
    std::uint32_t captionBytes;
};

inline constexpr char kDialogShown = 'S';

} // namespace vrplatformbase::internal
