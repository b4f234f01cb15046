// Disks without room: a small file system of its own is mounted as the user's home, for one shell and its children.
#include <fstream>

#include <gtest/gtest.h>

#include "installation.h"
#include "settings_words.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

constexpr int kDiskKilobytes = 128;

/// Lines of an export with about so many kilobytes of text.
std::vector<std::string> linesOf(int kilobytes)
{
    std::vector<std::string> lines;
    for (int i = 0; i < kilobytes; ++i)
        lines.push_back(R"({"path":"v)" + std::to_string(i) + R"(","type":"string","value":")" +
                        std::string(1024, 'x') + "\"}");
    return lines;
}

class FullDisk : public testing::Test
{
protected:
    void SetUp() override
    {
        if (vrtest::runProcess(onDisk("true")).exitCode != 0)
            GTEST_SKIP() << "no file system can be mounted: that needs root, or user namespaces";
    }
    /// Runs a shell command with the settings on the small disk, and keeps what is in their directory afterwards.
    ProcessResult runOnDisk(const std::string& command, int settingsKilobytes)
    {
        writeSettings(m_installation, "[Demo]\nold=5$" + std::string(settingsKilobytes * 1024U, 'o') + "\n");
        m_before = settingsBytes(m_installation);
        const fs::path kept = m_installation.root() / "kept";
        const std::string copy = " cp -r '" + directory().string() + "' '" + kept.string() + "'";
        return m_installation.runShell(quotedCommand(
            "mkdir -p '" + directory().string() + "' && cp '" + outside().string() + "' '" +
            m_installation.settingsFile().string() + "' && { " + command + "; code=$?;" + copy + "; exit $code; }"));
    }
    std::string importOf(int kilobytes) const
    {
        return fileWith(m_installation, "import.json", exportOf("Demo", linesOf(kilobytes)));
    }
    void expectOldFileAlone() const
    {
        const fs::path kept = m_installation.root() / "kept";
        EXPECT_EQ(readFile(kept / m_installation.settingsFile().filename()), m_before);
        EXPECT_EQ(std::distance(fs::directory_iterator(kept), fs::directory_iterator()), 1);
    }

    Installation m_installation;

private:
    fs::path directory() const { return m_installation.settingsFile().parent_path(); }
    /// Where the settings file waits until the disk is there.
    fs::path outside() const
    {
        const fs::path file = m_installation.root() / "outside.conf";
        fs::copy_file(m_installation.settingsFile(), file, fs::copy_options::overwrite_existing);
        return file;
    }
    std::vector<std::string> onDisk(const std::string& command) const
    {
        return {"unshare", "-rm", "sh", "-c",
                "mount -t tmpfs -o size=" + std::to_string(kDiskKilobytes) + "k none '" +
                    m_installation.home().string() + "' && " + command};
    }
    std::string quotedCommand(const std::string& command) const
    {
        const std::string script = m_installation.root() / "script";
        std::ofstream(script) << onDisk(command).back();
        return "exec unshare -rm sh '" + script + "'";
    }

    std::string m_before;
};

TEST_F(FullDisk, ThatHasNoRoomForTheNewSettingsLeavesTheOldOnes)
{
    const ProcessResult result = runOnDisk("vruinfo import '" + importOf(200) + "'", 4);
    expectError(result, kFailed, "the settings file " + m_installation.settingsFile().string() + " cannot be written");
    expectContains(result.err, "see that the disk has room");
    expectOldFileAlone();
}

TEST_F(FullDisk, ThatHasNoRoomForTheCopyLeavesTheOldSettings)
{
    const ProcessResult result = runOnDisk("vruinfo import '" + importOf(1) + "'", 100);
    expectError(result, kFailed,
                "no backup of the settings file " + m_installation.settingsFile().string() + " could be made");
    expectContains(result.err, "disk has room");
    expectOldFileAlone();
}

TEST_F(FullDisk, WithRoomEnoughIsNoHindrance)
{
    const ProcessResult result = runOnDisk("vruinfo import '" + importOf(20) + "'", 4);
    expectContains(answerOf(result), "20 added, 0 changed, 1 removed\n");
}

TEST_F(FullDisk, LeavesAFileThatAnExportWouldReplace)
{
    const std::string file = m_installation.home() / "all.json";
    const std::string kept = m_installation.root() / "all.json";
    const ProcessResult result = runOnDisk("echo before >'" + file + "'; vruinfo export -o '" + file +
                                               "'; code=$?; cp '" + file + "' '" + kept + "'; (exit $code)",
                                           100);
    expectError(result, kFailed, file + " cannot be written: ");
    EXPECT_EQ(readFile(kept), "before\n");
    expectOldFileAlone();
}

} // namespace
