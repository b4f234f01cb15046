// Words of the tests that write much of the settings tree at once.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <QSettings>

#include <gtest/gtest.h>

#include "installation.h"

namespace clitest
{

inline std::string settingsBytes(const Installation& installation)
{
    return readFile(installation.settingsFile());
}

/// The settings file with just these bytes.
inline void writeSettings(const Installation& installation, const std::string& bytes)
{
    std::filesystem::create_directories(installation.settingsFile().parent_path());
    std::ofstream(installation.settingsFile(), std::ios::binary) << bytes;
}

/// A file in the installation's root directory. \return its path
inline std::string fileWith(const Installation& installation, const std::string& name, const std::string& bytes)
{
    const std::filesystem::path file = installation.root() / name;
    std::ofstream(file, std::ios::binary) << bytes;
    return file;
}

/// An export of a place with these lines between the first one and the last.
inline std::string exportOf(const std::string& place, const std::vector<std::string>& lines)
{
    std::string text = R"({"format":"vruinfo-settings","version":1,"path":")" + place + "\",\"values\":[\n";
    for (std::size_t i = 0; i < lines.size(); ++i)
        text += lines[i] + (i + 1 < lines.size() ? ",\n" : "\n");
    return text + "]}\n";
}

/// The files in the settings directory, but the settings file itself.
inline std::vector<std::filesystem::path> filesBesideSettings(const Installation& installation)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(installation.settingsFile().parent_path())) {
        if (entry.path() != installation.settingsFile())
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// Tells afterwards whether anything about the settings file, or in its directory, has changed.
class Untouched
{
public:
    explicit Untouched(const Installation& installation) :
        m_installation(installation), m_bytes(settingsBytes(installation)), m_time(time()),
        m_others(filesBesideSettings(installation))
    {
    }
    void expect() const
    {
        EXPECT_EQ(settingsBytes(m_installation), m_bytes);
        EXPECT_EQ(time(), m_time);
        EXPECT_EQ(filesBesideSettings(m_installation), m_others);
    }

private:
    std::filesystem::file_time_type time() const
    {
        return std::filesystem::last_write_time(m_installation.settingsFile());
    }

    const Installation& m_installation;
    std::string m_bytes;
    std::filesystem::file_time_type m_time;
    std::vector<std::filesystem::path> m_others;
};

} // namespace clitest
