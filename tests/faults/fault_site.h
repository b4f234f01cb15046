/// \file fault_site.h
/// A user with settings and a products list, whom a fault of the system is done to. What the host's calls give, what
/// is on disk afterwards and what the tool says is put into words, and compared with the row that docs/faults.md has
/// for the running test.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "installation.h"
#include "process.h"

namespace faults
{

namespace fs = std::filesystem;
using vrtest::Environment;
using vrtest::ProcessResult;
using Words = std::vector<std::string>;

class Site
{
public:
    /// `listsRelease`: whether the release that runs is in the products list already.
    explicit Site(bool listsRelease);
    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;
    ~Site() = default;

    [[nodiscard]] fs::path home() const { return m_here.home(); }
    [[nodiscard]] fs::path program() const { return m_here.programDir(); }
    [[nodiscard]] fs::path settings() const { return m_here.settingsFile(); }
    [[nodiscard]] fs::path list() const { return home() / ".local/share/HALVIK/VR2D.conf"; }
    /// A place of the user's outside the home.
    [[nodiscard]] fs::path elsewhere() const { return m_here.root() / "elsewhere"; }

    /// What stands where the user's files are from now on. The home is the unprivileged user's again.
    void writeFiles() const;
    /// Everything in the home, and elsewhere, is the unprivileged user's.
    void giveToUser() const;

    /// All processes are that user's. They run with these changes of the environment, behind this command.
    Environment environment;
    Words before;

    /// A host that takes these steps, in a process of its own. "start", "read", "write" and "list" are the library's
    /// calls; "direct read" and "direct write" those of the settings library on the same file; "no descriptors" and
    /// "descriptors again" take away and give back what files are opened with; any other step is a shell command.
    [[nodiscard]] ProcessResult host(const Words& steps) const;
    [[nodiscard]] ProcessResult tool(const Words& arguments) const;

private:
    [[nodiscard]] ProcessResult run(const Words& command, const Environment& changes) const;

    const vrtest::Installation& m_here;
    const bool m_listsRelease;
};

/// The steps of a host that has nothing to do with the products list.
extern const Words kReadAndWrite;

/// Runs the host of the fault with these steps, then the tool, and compares with the row of the running test.
void expectSettingsRow(const Site& site, const Words& steps = kReadAndWrite);
/// The same for the products list.
void expectListRow(const Site& site, const Words& steps = {"start", "list"});

/// The calling test's own view of the file systems, in which it may mount; false when this user may not.
bool mayMount();
/// Mounts a file system in memory, in which `roomForFiles` bytes are; the user's.
void mountSmall(const fs::path& directory, std::size_t bytes);
/// Fills the file system that a directory is in to its last byte.
void fill(const fs::path& directory);
void makeReadOnly(const fs::path& mountPoint);
void makePipe(const fs::path& path);
void writeText(const fs::path& path, const std::string& text);

} // namespace faults
