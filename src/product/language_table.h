// The fixed table of user-interface languages. The order of the rows is the order of the ids; both stand in
// settings.
#pragma once

#include <array>
#include <cstdint>

#include "VrUInfo/VornaLanguage.h"

namespace vruinfo::internal
{

inline constexpr int kUnknownLanguageId = -1;
inline constexpr std::uint32_t kFallbackLcid = 1033;
inline constexpr unsigned int kUnknownLanguageText = 1103;

/// Portuguese carries the LCID of another country's, Spanish that of the modern sort order; both on purpose.
inline constexpr std::array<std::uint32_t, kVornLanguageCount> kLcids = {
    0x405, 0x407, 0x409, 0xC0A, 0x40C, 0x40E, 0x410, 0x411, 0x412, 0x415, 0x416, 0x419, 0x41F, 0x804, 0x404};

/// Ids of the languages' own names in the resource libraries.
inline constexpr std::array<std::uint32_t, kVornLanguageCount> kLocalNameTexts = {
    1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 1011, 1012, 1013, 1014, 1015};

[[nodiscard]] constexpr bool isLanguageId(int id)
{
    return id >= 0 && id < kVornLanguageCount;
}

} // namespace vruinfo::internal
