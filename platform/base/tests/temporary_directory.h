#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

/// A fresh directory that goes with the object.
class TemporaryDirectory final
{
public:
    TemporaryDirectory() : m_path((std::filesystem::temp_directory_path() / "vrplatformbase_XXXXXX").string())
    {
        if (mkdtemp(m_path.data()) == nullptr)
            throw std::runtime_error("no temporary directory");
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }

private:
    std::string m_path;
};
