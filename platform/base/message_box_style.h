#pragma once

#include <array>
#include <cstddef>

#include "VrPlatformBase/VrPlatformBase.h"

namespace vrplatformbase::internal
{

/// The buttons of one style, in their order, and the answer that is taken when nobody chooses.
struct ButtonSet {
    unsigned int style;
    std::size_t count;
    std::array<int, 3> answers; ///< the first `count` of them
    int cautious;
};

/// The one table of styles. The first row also serves styles that are not in it.
inline constexpr std::array<ButtonSet, 5> kButtonSets{{
    {MB_OK, 1, {IDOK}, IDOK},
    {MB_OKCANCEL, 2, {IDOK, IDCANCEL}, IDCANCEL},
    {MB_YESNOCANCEL, 3, {IDYES, IDNO, IDCANCEL}, IDCANCEL},
    {MB_YESNO, 2, {IDYES, IDNO}, IDNO},
    {MB_RETRYCANCEL, 2, {IDRETRY, IDCANCEL}, IDCANCEL},
}};

inline constexpr unsigned int kButtonMask = 0x0F;
inline constexpr unsigned int kIconMask = 0xF0;

[[nodiscard]] constexpr const ButtonSet& buttonSetOf(unsigned int style) noexcept
{
    for (const ButtonSet& set : kButtonSets) {
        if (set.style == (style & kButtonMask))
            return set;
    }
    return kButtonSets[0];
}

[[nodiscard]] constexpr bool offers(const ButtonSet& set, int answer) noexcept
{
    for (std::size_t i = 0; i < set.count; ++i) {
        if (set.answers[i] == answer)
            return true;
    }
    return false;
}

[[nodiscard]] constexpr const char* wordOf(int answer) noexcept
{
    switch (answer) {
    case IDCANCEL:
        return "Cancel";
    case IDRETRY:
        return "Retry";
    case IDYES:
        return "Yes";
    case IDNO:
        return "No";
    default:
        return "OK";
    }
}

} // namespace vrplatformbase::internal
