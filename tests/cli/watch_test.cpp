#include <chrono>
#include <csignal>
#include <cstdio>
#include <regex>

#include <QJsonDocument>
#include <QProcess>

#include <fcntl.h>
#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

constexpr int kPatience = 20000; // milliseconds

/// A running `vruinfo watch` with a directory of its own for temporary files.
class Watch
{
public:
    Watch(const Installation& installation, const Arguments& arguments, const Environment& changes = {}) :
        m_installation(installation)
    {
        fs::create_directories(temporary());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const auto& [name, value] : installation.environment(changes))
            value.empty() ? environment.remove(QString::fromStdString(name))
                          : environment.insert(QString::fromStdString(name), QString::fromStdString(value));
        environment.insert(QStringLiteral("TMPDIR"), QString::fromStdString(temporary()));
        m_process.setProcessEnvironment(environment);
        QStringList words(QStringLiteral("watch"));
        for (const std::string& argument : arguments)
            words.append(QString::fromStdString(argument));
        m_process.start(QString::fromStdString(installation.tool()), words);
        EXPECT_TRUE(m_process.waitForStarted(kPatience));
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch()
    {
        m_process.kill();
        m_process.waitForFinished(kPatience);
    }

    /// Changes a value again and again until the change is told: from then on, everything is.
    void waitUntilItWatches(const std::string& item = "Ready")
    {
        readLine(100); // its start takes away a lock on the file, ours included
        for (int i = 0; i < 100; ++i) {
            m_installation.store(item + "/ready", "1$" + std::to_string(i));
            if (readLine(400).find("/ready") != std::string::npos)
                return;
        }
        FAIL() << "it does not watch: " << m_process.readAllStandardError().toStdString();
    }
    /// The next line that does not come from waiting.
    std::string line()
    {
        std::string line = readLine(kPatience);
        while (line.find("/ready") != std::string::npos)
            line = readLine(kPatience);
        return line;
    }
    /// The next line without the time of day, which it has in front.
    std::string change()
    {
        const std::string text = line();
        static const std::regex kForm("^[0-2][0-9]:[0-5][0-9]:[0-5][0-9] [-+~] .*");
        EXPECT_TRUE(std::regex_match(text, kForm)) << text;
        return text.size() > 9 ? text.substr(9) : text;
    }
    void signal(int number) { kill(static_cast<pid_t>(m_process.processId()), number); }
    void expectEnd()
    {
        EXPECT_TRUE(!isRunning() || m_process.waitForFinished(kPatience));
        EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(m_process.exitCode(), kDone);
        expectNoTraces();
    }
    std::string errors() { return m_process.readAllStandardError().toStdString(); }
    bool isRunning()
    {
        m_process.waitForFinished(0);
        return m_process.state() == QProcess::Running;
    }

private:
    fs::path temporary() const { return m_installation.root() / "tmp"; }
    void expectNoTraces() const { EXPECT_TRUE(fs::is_empty(temporary())); }
    std::string readLine(int milliseconds)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        while (!m_process.canReadLine() && std::chrono::steady_clock::now() < end && isRunning())
            m_process.waitForReadyRead(50);
        std::string text = m_process.readLine().toStdString();
        if (!text.empty() && text.back() == '\n')
            text.pop_back();
        return text;
    }

    const Installation& m_installation;
    QProcess m_process;
};

/// Puts each of two files in the place of the other at once.
void exchange(const fs::path& one, const fs::path& other)
{
    ASSERT_EQ(renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE), 0);
}

TEST(Watch, TellsWhatComesChangesAndGoes)
{
    const Installation installation;
    Watch watch(installation, {});
    watch.waitUntilItWatches();
    installation.store("Demo/a", "5$x");
    EXPECT_EQ(watch.change(), "+ Demo/a: string \"x\"");
    EXPECT_EQ(installation.run({"set", "Demo/a", "7", "--type", "int32"}).exitCode, kDone);
    EXPECT_EQ(watch.change(), "~ Demo/a: string \"x\" -> int32 7");
    EXPECT_EQ(installation.run({"rm", "Demo/a"}).exitCode, kDone);
    EXPECT_EQ(watch.change(), "- Demo/a: int32 7");
    EXPECT_EQ(watch.errors(), "");
}

TEST(Watch, TellsNothingWhenTheFileIsWrittenWithTheSameValues)
{
    const Installation installation;
    installation.store("Demo/a", "5$x");
    Watch watch(installation, {});
    watch.waitUntilItWatches();
    fs::last_write_time(installation.settingsFile(), fs::file_time_type::clock::now());
    installation.store("Demo/b", "5$y");
    EXPECT_EQ(watch.change(), "+ Demo/b: string \"y\"");
}

TEST(Watch, LooksBelowThePathOnly)
{
    const Installation installation;
    Watch watch(installation, {"@settings"});
    watch.waitUntilItWatches(kSettings);
    installation.store("Demo/a", "5$x");
    installation.store(kSettings + "/Grid/Step", "1$2");
    EXPECT_EQ(watch.change(), "+ " + kSettings + "/Grid/Step: int32 2");
}

TEST(Watch, TellsInJsonAnObjectALine)
{
    const Installation installation;
    Watch watch(installation, {"--json"}, {{"TZ", "HERE-05:30"}}); // which is east of Greenwich
    watch.waitUntilItWatches();
    installation.store("Demo/a", "5$x");
    const std::string line = watch.line();
    expectShape("watch", line);
    QJsonObject change = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
    EXPECT_TRUE(change.take(QStringLiteral("time")).toString().endsWith(QStringLiteral("+05:30"))) << line;
    EXPECT_EQ(change,
              (QJsonObject{{QStringLiteral("path"), QStringLiteral("Demo/a")},
                           {QStringLiteral("old"), QJsonValue()},
                           {QStringLiteral("new"), QJsonObject{{QStringLiteral("type"), QStringLiteral("string")},
                                                               {QStringLiteral("value"), QStringLiteral("x")}}}}));
}

TEST(Watch, TakesAFileThatGoesAndComesForAChangeOfAllItsValues)
{
    const Installation installation;
    installation.store("Demo/a", "5$x");
    Watch watch(installation, {"Demo"});
    watch.waitUntilItWatches("Demo");
    fs::rename(installation.settingsFile(), installation.root() / "away.conf");
    EXPECT_EQ(watch.change(), "- Demo/a: string \"x\"");
    fs::rename(installation.root() / "away.conf", installation.settingsFile());
    EXPECT_EQ(watch.change(), "+ Demo/a: string \"x\"");
    EXPECT_EQ(watch.errors(), "");
}

TEST(Watch, WaitsForAFileThatIsNotThereYetAndMakesNone)
{
    const Installation installation;
    {
        Watch watch(installation, {"--for", "0.5"});
        watch.expectEnd();
        EXPECT_TRUE(fs::is_empty(installation.home()));
    }
    Watch watch(installation, {});
    watch.waitUntilItWatches();
}

TEST(Watch, TellsOfDamageOnceAndGoesOn)
{
    const Installation installation;
    Watch watch(installation, {});
    watch.waitUntilItWatches();
    const std::string good = readFile(installation.settingsFile());
    appendToFile(installation.settingsFile(), "\n[Demo]\nno setting\na=5$x\n");
    EXPECT_EQ(watch.change(), "+ Demo/a: string \"x\"");
    appendToFile(installation.settingsFile(), "b=5$y\n");
    EXPECT_EQ(watch.change(), "+ Demo/b: string \"y\"");
    EXPECT_EQ(watch.errors(), "vruinfo: the settings file " + installation.settingsFile().string() +
                                  " has lines that are no settings; watching goes on with the others\n");
}

TEST(Watch, LeavesThingsAsTheyWereWhileTheFileCannotBeRead)
{
    const Installation installation;
    installation.store("Demo/a", "5$x");
    Watch watch(installation, {});
    watch.waitUntilItWatches();
    const fs::path directory = installation.root() / "directory";
    fs::create_directory(directory);
    exchange(installation.settingsFile(), directory);
    std::string errors;
    for (int i = 0; i < 100 && errors.empty(); ++i) {
        EXPECT_EQ(installation.run({"version"}).exitCode, kDone); // time goes by
        watch.isRunning();
        errors = watch.errors();
    }
    EXPECT_EQ(errors, "vruinfo: the settings file " + installation.settingsFile().string() +
                          " cannot be read, or not be copied to " + (installation.root() / "tmp").string() +
                          "; watching goes on\n");
    exchange(installation.settingsFile(), directory);
    installation.store("Demo/b", "5$y");
    EXPECT_EQ(watch.change(), "+ Demo/b: string \"y\"");
    EXPECT_EQ(watch.errors(), "");
}

TEST(Watch, LeavesThingsAsTheyWereWhileAValueAsksForAllTheMemory)
{
    const Installation installation;
    installation.store("Demo/a", "5$x");
    Watch watch(installation, {});
    watch.waitUntilItWatches();
    const auto whole = fs::file_size(installation.settingsFile());
    appendToFile(installation.settingsFile(), "\n[Foreign]\nList=@Variant(\\0\\0\\0\\v2222)\n");
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(installation.run({"version"}).exitCode, kDone); // time goes by
    fs::resize_file(installation.settingsFile(), whole);
    appendToFile(installation.settingsFile(), "\n[Demo]\nb=5$y\n");
    EXPECT_EQ(watch.change(), "+ Demo/b: string \"y\"");
}

TEST(Watch, EndsOnInterruptAndOnTermination)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const Installation installation;
        Watch watch(installation, {});
        watch.waitUntilItWatches();
        watch.signal(number);
        watch.expectEnd();
    }
}

TEST(Watch, EndsAfterItsTimeAndNotBefore)
{
    const Installation installation;
    const auto begin = std::chrono::steady_clock::now();
    Watch watch(installation, {"--for", "0.75"});
    watch.expectEnd();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(750));
}

TEST(Watch, EndsAfterThatManyChanges)
{
    const Installation installation;
    Watch watch(installation, {"Demo", "--count", "3", "--json"});
    for (int round = 0; round < 100 && watch.isRunning(); ++round) {
        std::string text = "[Demo]\n";
        for (int i = 0; i < 5; ++i)
            text += "v" + std::to_string(i) + "=1$" + std::to_string(round) + "\n";
        const fs::path next = installation.root() / "next.conf";
        appendToFile(next, text);
        fs::create_directories(installation.settingsFile().parent_path());
        fs::rename(next, installation.settingsFile());
        EXPECT_EQ(installation.run({"version"}).exitCode, kDone); // time goes by
    }
    watch.expectEnd();
    for (const char* const name : {"v0", "v1", "v2"})
        expectContains(watch.line(), std::string("\"path\":\"Demo/") + name + "\"");
    EXPECT_EQ(watch.line(), "");
}

TEST(Watch, EndsAsOtherCommandsDoWhenNobodyReadsAnyMore)
{
    const Installation installation;
    const fs::path temporary = installation.root() / "tmp";
    fs::create_directory(temporary);
    const ProcessResult result =
        installation.runShell("{ vruinfo watch --for 20; echo $? >&2; } | sleep 0.3", {{"TMPDIR", temporary}});
    EXPECT_EQ(result.err, std::to_string(128 + SIGPIPE) + "\n");
    EXPECT_TRUE(fs::is_empty(temporary));
}

TEST(Watch, TellsALastTimeWhatHappenedUntilTheEnd)
{
    const Installation installation;
    Watch watch(installation, {});
    watch.waitUntilItWatches();
    watch.signal(SIGSTOP);
    installation.store("Demo/a", "5$x");
    watch.signal(SIGTERM);
    watch.signal(SIGCONT);
    EXPECT_EQ(watch.change(), "+ Demo/a: string \"x\"");
    watch.expectEnd();
}

TEST(Watch, WithAWrongLimitIsMisuse)
{
    const Installation installation;
    for (const char* const text : {"x", "", "nan", "inf", "1e300"})
        expectError(installation.run({"watch", std::string("--for=") + text}), kMisuse,
                    std::string("'") + text + "' after --for is not a number of seconds");
    for (const char* const text : {"x", "", "0", "1.5", "-3", "99999999999"})
        expectError(installation.run({"watch", std::string("--count=") + text}), kMisuse,
                    std::string("'") + text + "' after --count is not a whole number from 1");
    expectError(installation.run({"watch", "--for=-1"}), kMisuse, "'-1' after --for is not a number of seconds");
}

} // namespace
