// Paths of exact lengths, for tests of limits.
#pragma once

#include <cstddef>
#include <string>

#include "installation.h"

namespace vrtest
{

/// A relative path of exactly `length` characters, made of folder names that the system can hold; no separator at its
/// ends.
inline std::string folders(std::size_t length)
{
    constexpr std::size_t kNameLength = 200;
    std::string path(length, 'd');
    for (std::size_t i = kNameLength; i + 1 < length; i += kNameLength)
        path[i] = '/';
    return path;
}

/// An absolute path of exactly `length` characters that need not exist; no separator at its end.
inline std::string absolutePath(std::size_t length)
{
    return "/" + folders(length - 1);
}

/// The argument that gives an `Installation` a program directory of exactly `length` characters, its trailing
/// separator counted.
inline std::string directoryOfLength(std::size_t length)
{
    const Installation sample;
    constexpr std::size_t kSeparators = 2;
    return folders(length - sample.root().string().size() - kSeparators);
}

/// An installation whose program directory has that many characters, without a separator at its end.
class LongInstallation : public Installation
{
public:
    explicit LongInstallation(std::size_t length) : Installation(directoryOfLength(length + 1)) {}
};

} // namespace vrtest
