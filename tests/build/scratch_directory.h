// A directory of a test's own.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

#include <cstdlib>

namespace vrtest
{

/// Gone with the object.
class ScratchDirectory
{
public:
    ScratchDirectory()
    {
        std::string pattern = std::filesystem::temp_directory_path() / "build-XXXXXX";
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("cannot make " + pattern);
        m_path = pattern;
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::string file(const std::string& name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

inline std::string bytesOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

} // namespace vrtest
