/// \file installation.h
/// A real installation with the tool as its executable, and a user's home of its own; gone with the object.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QTemporaryDir>

#include "process.h"

namespace clitest
{

using Arguments = std::vector<std::string>;
using vrtest::Environment;
using vrtest::ProcessResult;

class Installation
{
public:
    /// English and German are installed, and VORNA.ini names English.
    Installation();
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;
    ~Installation();

    std::filesystem::path root() const;
    std::filesystem::path programDir() const { return root() / "program"; }
    std::filesystem::path tool() const { return programDir() / "vruinfo"; }
    std::filesystem::path home() const { return root() / "home"; }
    std::filesystem::path settingsFile() const; ///< Of company HALVIK, product VORNA.

    void installLanguage(const std::string& shortName) const;            ///< With its real library.
    void write(const std::string& name, const std::string& bytes) const; ///< A file in the program directory.

    ProcessResult run(const Arguments& arguments, const Environment& changes = {}) const;
    /// Runs it as a user whom file permissions hold: as nobody when this process is root's.
    ProcessResult runUnprivileged(const Arguments& arguments) const;
    /// Runs a shell command in which `vruinfo` is this installation's.
    ProcessResult runShell(const std::string& command, const Environment& changes = {}) const;
    /// The answer with --json; a failed test when the exit code is another one, something is on standard error, or the
    /// answer has not the shape that the command's schema tells.
    QJsonObject object(Arguments arguments, int exitCode = 0) const;
    QJsonArray array(Arguments arguments, int exitCode = 0) const;

    /// What stands in the settings file, read with a plain settings object; null when it is not there.
    QString stored(const std::string& key) const;
    void store(const std::string& key, const std::string& text) const; ///< Writes such a text.

    /// What `run` runs with.
    Environment environment(const Environment& changes = {}) const;

private:
    QByteArray json(Arguments arguments, int exitCode) const;

    QTemporaryDir m_root;
};

void giveEverybodyAccess(const Installation& installation);

/// A file's bytes; empty when there is none.
std::string readFile(const std::filesystem::path& file);
void appendToFile(const std::filesystem::path& file, const std::string& bytes);

/// Where the tool's paths with @settings lead, in English.
inline const std::string kSettings = "Software/HALVIK/VORNA/2026/en-US/Settings";

enum ExitCode { kDone = 0, kFailed = 1, kMisuse = 2, kNotFound = 3, kWarnings = 4, kErrors = 5 };

/// One JSON text has the shape that the command's schema tells.
void expectShape(const std::string& command, const std::string& json);

void expectContains(const std::string& text, const std::string& words);
/// It was done without an error. \return the answer
std::string answerOf(const ProcessResult& result);
/// The whole answer, without the end of its last line, and no error.
void expectAnswer(const ProcessResult& result, const std::string& line);
/// An error with these words, and no answer.
void expectError(const ProcessResult& result, ExitCode code, const std::string& words);

} // namespace clitest
