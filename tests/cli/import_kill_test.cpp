// An import that is killed at any moment leaves the old or the new settings file, and does not stop the next one.
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <random>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include <QSettings>

#include "installation.h"
#include "settings_words.h"

using namespace clitest;

namespace
{

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::microseconds;

constexpr int kRounds = 40; ///< Without VR_KILL_ROUNDS.
constexpr int kValues = 5000;

unsigned int numberFrom(const char* variable, unsigned int otherwise)
{
    const char* const text = std::getenv(variable);
    return text ? static_cast<unsigned int>(std::strtoul(text, nullptr, 10)) : otherwise;
}

/// A tree of its own: most names are in every one, some in this one alone.
void fill(const Installation& installation, const QString& word)
{
    QSettings settings(QString::fromStdString(installation.settingsFile()), QSettings::NativeFormat);
    settings.clear();
    for (int i = 0; i < kValues; ++i) {
        const QString owner = i % 10 == 0 ? word : QStringLiteral("Every");
        settings.setValue(QStringLiteral("%1/Group%2/Value%3").arg(owner).arg(i % 17).arg(i),
                          QStringLiteral("5$%1 %2").arg(word).arg(i));
    }
}

/// The tool, importing. It is this process's child.
class RunningImport
{
public:
    RunningImport(const Installation& installation, const std::string& file)
    {
        const std::string tool = installation.tool();
        std::string home = "HOME=" + installation.home().string();
        std::string name = tool;
        std::string command = "import";
        std::string argument = file;
        std::string option = "--json";
        std::array<char*, 5> arguments = {name.data(), command.data(), argument.data(), option.data(), nullptr};
        std::array<char*, 2> environment = {home.data(), nullptr};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        EXPECT_EQ(posix_spawn(&m_process, tool.c_str(), &actions, nullptr, arguments.data(), environment.data()), 0);
        posix_spawn_file_actions_destroy(&actions);
    }
    /// \return whether it still ran
    bool kill()
    {
        ::kill(m_process, SIGKILL);
        return !finish();
    }
    /// \return whether it was done
    bool finish()
    {
        int status = 0;
        waitpid(m_process, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == kDone;
    }

private:
    pid_t m_process = 0;
};

class KilledImport : public testing::Test
{
protected:
    KilledImport()
    {
        fill(m_installation, QStringLiteral("New"));
        m_new = settingsBytes(m_installation);
        m_file = (m_installation.root() / "new.json").string();
        EXPECT_EQ(m_installation.run({"export", "-o", m_file}).exitCode, kDone);
        fill(m_installation, QStringLiteral("Old"));
        m_old = settingsBytes(m_installation);
    }
    /// The shortest of some: a longer one would have many imports end before they are killed.
    Microseconds usualTime()
    {
        Microseconds shortest = Microseconds::max();
        for (int i = 0; i < 3; ++i) {
            restore();
            const auto begin = Clock::now();
            EXPECT_TRUE(RunningImport(m_installation, m_file).finish());
            shortest = std::min(shortest, std::chrono::duration_cast<Microseconds>(Clock::now() - begin));
            EXPECT_EQ(settingsBytes(m_installation), m_new);
        }
        return shortest;
    }
    void restore() const
    {
        writeSettings(m_installation, m_old);
        for (const std::filesystem::path& file : filesBesideSettings(m_installation)) {
            if (file.extension() == ".bak")
                std::filesystem::remove(file);
        }
    }
    /// \return whether it was killed before its end
    bool killAfter(Microseconds delay)
    {
        RunningImport import(m_installation, m_file);
        std::this_thread::sleep_for(delay);
        return import.kill();
    }

    Installation m_installation;
    std::string m_file;
    std::string m_old;
    std::string m_new;
};

TEST_F(KilledImport, LeavesTheOldOrTheNewTree)
{
    const unsigned int seed = numberFrom("VR_KILL_SEED", std::random_device()());
    const auto rounds = static_cast<int>(numberFrom("VR_KILL_ROUNDS", kRounds));
    std::cout << "VR_KILL_SEED=" << seed << " VR_KILL_ROUNDS=" << rounds << '\n';
    std::mt19937 random(seed);
    std::uniform_int_distribution<Microseconds::rep> moment(0, usualTime().count());
    int killed = 0;
    int renewed = 0;
    for (int round = 0; round < rounds; ++round) {
        restore();
        const Microseconds delay(moment(random));
        killed += killAfter(delay) ? 1 : 0;
        const std::string left = settingsBytes(m_installation);
        renewed += left == m_new ? 1 : 0;
        ASSERT_TRUE(left == m_old || left == m_new)
            << "killed after " << delay.count() << " us: " << left.size() << " bytes, not " << m_old.size()
            << " as before or " << m_new.size() << " as after";
    }
    std::cout << killed << " of " << rounds << " imports were killed; " << renewed << " times the new tree was left\n";
    EXPECT_GT(killed, 0);
}

TEST_F(KilledImport, DoesNotStopTheNextOne)
{
    const Microseconds usual = usualTime();
    for (int part = 1; part <= 8; ++part) {
        restore();
        killAfter(usual * part / 8);
    }
    restore();
    // What a process leaves that is killed while it writes.
    fileWith(m_installation, "lock", "");
    std::filesystem::rename(m_installation.root() / "lock", m_installation.settingsFile().string() + ".lock");
    const auto begin = Clock::now();
    EXPECT_EQ(m_installation.object({"import", m_file}).value(QStringLiteral("added")).toInt(), kValues / 10);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(20));
    EXPECT_EQ(settingsBytes(m_installation), m_new);
    EXPECT_FALSE(std::filesystem::exists(m_installation.settingsFile().string() + ".lock"));
    EXPECT_EQ(answerOf(m_installation.run({"diff", m_file, "--exit-code"})), "");
}

} // namespace
