// Program directories of an exact length.
#pragma once

#include <algorithm>
#include <string>

#include "installation.h"

namespace vrtest
{

/// The directory argument of an `Installation` made by this process, for a program directory of `length`
/// characters (without a separator at its end). Its components are as long as file systems allow.
inline std::string directoryForLength(std::size_t length)
{
    constexpr std::size_t kLongestName = 255;
    constexpr std::size_t kStage = sizeof "/stage-XXXXXX/" - 1;
    std::size_t rest = length - Installation::here().programDir().string().size() - kStage;
    std::string directory;
    while (rest > kLongestName) {
        // What is left behind the separator must not be empty.
        const std::size_t part = std::min(kLongestName, rest - 2);
        directory += std::string(part, 'd') + "/";
        rest -= part + 1;
    }
    return directory + std::string(rest, 'd');
}

/// An installation whose program directory has that many characters.
class LongInstallation : public Installation
{
public:
    explicit LongInstallation(std::size_t length) : Installation(directoryForLength(length)) {}
};

} // namespace vrtest
