// A real installation: a program directory with this test program as its executable, and a home of its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <QtCore/QString>

#include "process.h"

class QSettings;

namespace vrtest
{

/// UTF-8 to wide text.
std::wstring wide(const std::string& utf8);
/// A wide text of `length` characters `c`.
std::wstring wideOf(std::size_t length, wchar_t c = L'x');
/// Wide text to UTF-8.
std::string utf8(const std::wstring& text);

/// Whether root alone can enter the tree, in root's home say. Installations are elsewhere then, with a copy of what was
/// built in LD_LIBRARY_PATH, so that an unprivileged user's processes run.
bool isBuildClosed();

class Installation
{
public:
    /// The installation that this process runs in: each test case has a fresh one.
    static Installation& here();
    /// Another one, for processes of its own; gone with the object. `directory` is the path of the program
    /// directory below the installation's own folder, `executable` the executable's name.
    explicit Installation(const std::string& directory = "program", const std::string& executable = "host");
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;
    ~Installation();

    const std::filesystem::path& root() const { return m_root; } ///< Holds everything of this installation.
    const std::filesystem::path& programDir() const { return m_program; }
    std::filesystem::path home() const { return m_root / "home"; }
    std::filesystem::path configDir() const { return home() / ".config"; } ///< Of the user; XDG variables are not set.
    std::filesystem::path executable() const { return m_program / m_executable; }
    /// The settings file of an identity.
    std::filesystem::path settingsFile(const std::string& company = "HALVIK", const std::string& product = "VORNA",
                                       const std::string& version = "2026") const;

    /// Writes a file in the program directory; directories on the way are made.
    void write(const std::string& name, const std::string& bytes) const;
    /// Puts the real resource library of a language into its folder.
    void installLanguage(const std::string& shortName) const;
    /// A folder that counts as an installed language, but whose library is not a resource library.
    void installEmptyLanguage(const std::string& folder) const;
    /// Puts the sample partner library into a folder of the program directory; its full path.
    std::filesystem::path installPartner(const std::string& folder) const;
    /// Puts lines into the settings file of the default identity before a start: each "group/key" gets the
    /// text.
    void writeSetting(const std::string& key, const std::string& text) const;

    /// Runs a probe (see PROBE) in a new process of this installation.
    ProcessResult run(const std::string& probe, const std::vector<std::string>& arguments = {},
                      const Environment& environment = {}, const std::string& workingDirectory = {}) const;
    /// The environment that makes a process one of this installation.
    Environment environment() const;

private:
    struct Adopt {
    };
    Installation(Adopt, std::filesystem::path root, std::filesystem::path executable);

    std::filesystem::path m_root;
    std::filesystem::path m_program;
    std::string m_executable;
    bool m_isOwned;
};

/// A file's bytes; empty when there is none.
std::string readFile(const std::filesystem::path& file);
/// The text of a key in a settings file, read with a plain settings object; null when it is not there.
QString textInFile(const std::filesystem::path& settingsFile, const std::string& key);
/// All keys in it, sorted.
std::vector<std::string> keysInFile(const std::filesystem::path& settingsFile);
/// Writes what the library still holds in memory to its settings file.
void flush();

using ProbeFunction = int (*)(const std::vector<std::string>& arguments);
struct ProbeRegistration {
    ProbeRegistration(const char* name, ProbeFunction function);
};

/// A function of a test program that is run in a process of its own, where the library is freshly loaded. Its
/// result is the exit code; it prints what the test wants to see.
#define PROBE(name)                                                                          \
    static int probe_##name(const std::vector<std::string>& arguments);                      \
    static const ::vrtest::ProbeRegistration probe_registration_##name(#name, probe_##name); \
    static int probe_##name([[maybe_unused]] const std::vector<std::string>& arguments)

} // namespace vrtest
