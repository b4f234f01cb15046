#include <algorithm>
#include <map>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "installation.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

/// Every command but those that change something; an export of "Demo" lies at "%1".
const std::vector<Arguments> kLooks = {
    {"identity"},
    {"paths"},
    {"languages"},
    {"get", "Demo/a"},
    {"get", "@settings/a"},
    {"list", "@product"},
    {"tree", "@product"},
    {"tree", "/"},
    {"exists", "@settings"},
    {"find", "a"},
    {"find", "a", "@settings"},
    {"export", "/"},
    {"export", "@settings"},
    {"import", "%1", "--dry-run"},
    {"import", "%1", "--dry-run", "--at", "@settings"},
    {"diff", "%1"},
    {"diff", "%1", "--at", "@settings"},
    {"watch", "--for", "0.3"},
    {"watch", "@settings", "--for", "0.3"},
    {"doctor"},
    {"products"},
    {"modules"},
    {"modules", "VrPlot"},
    {"version"},
    {"completion", "bash"},
    {"completion", "zsh"},
    {"help"},
    {"help", "set"},
};

const Arguments kChanging = {"set", "rm", "import", "first-run"};

/// What a file is: its inode, the time of its last change, its bytes.
struct State {
    ino_t inode;
    std::pair<time_t, long> time;
    std::string bytes;

    bool operator==(const State& other) const
    {
        return inode == other.inode && time == other.time && bytes == other.bytes;
    }
};
using Tree = std::map<std::string, State>;

Tree treeOf(const fs::path& directory)
{
    Tree tree;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        struct stat status = {};
        lstat(entry.path().c_str(), &status);
        const std::string bytes = entry.is_regular_file() ? readFile(entry.path()) : std::string();
        tree[entry.path()] = {status.st_ino, {status.st_mtim.tv_sec, status.st_mtim.tv_nsec}, bytes};
    }
    return tree;
}

std::string joined(const Arguments& arguments)
{
    std::string line = "vruinfo";
    for (const std::string& argument : arguments)
        line += " '" + argument + "'";
    return line;
}

bool isFailure(const ProcessResult& result)
{
    return result.exitCode != kDone && result.exitCode != kNotFound && result.exitCode != kWarnings &&
           result.exitCode != kErrors;
}

/// An installation in which a look can meet everything, and a start would ask: the language that it remembers is not
/// installed any more.
class Looks : public testing::TestWithParam<Arguments>
{
protected:
    Looks()
    {
        m_installation.store("Demo/a", "5$x");
        m_installation.store(kSettings + "/a", "5$x");
        const ProcessResult exported = m_installation.run({"export", "Demo"});
        appendToFile(exportFile(), exported.out);
        m_installation.store("Software/HALVIK/CurProduct", "5$VORNA");
        m_installation.store("Software/HALVIK/VORNA/2026/CurVer", "5$fr-FR");
        m_installation.store("Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles", "5$Second");
        appendToFile(m_installation.home() / ".local/share/HALVIK/VR2D.conf", "[InstalledProducts]\n1=Lost\n");
        // It may be that of a program at work, which needs it.
        appendToFile(m_installation.settingsFile().string() + ".lock", "1\nhost\nmachine\n");
    }
    fs::path exportFile() const { return m_installation.root() / "export.json"; }
    Arguments arguments() const
    {
        Arguments all = GetParam();
        std::replace(all.begin(), all.end(), std::string("%1"), exportFile().string());
        return all;
    }
    /// Whether the command is one that cannot do without a start.
    bool makesAStart() const
    {
        const Arguments all = arguments();
        const bool hasRoot =
            std::any_of(all.begin(), all.end(), [](const std::string& word) { return word[0] == '@'; });
        const Arguments starting = {"identity", "paths", "languages", "modules"};
        return hasRoot || std::find(starting.begin(), starting.end(), all.front()) != starting.end();
    }

    Installation m_installation;
};

TEST_P(Looks, ChangeNothingInAStateInWhichAStartWouldAsk)
{
    const Tree before = treeOf(m_installation.root());
    const ProcessResult result = m_installation.run(arguments());
    EXPECT_FALSE(isFailure(result)) << result.exitCode << result.err;
    EXPECT_TRUE(treeOf(m_installation.root()) == before);
    if (makesAStart())
        expectContains(result.err, "vruinfo: the start says: The input language is not installed, continue with ");
}

TEST_P(Looks, MakeNothingInAFreshHome)
{
    const Installation fresh;
    const ProcessResult result = fresh.run(arguments());
    EXPECT_FALSE(isFailure(result)) << result.exitCode << result.err;
    EXPECT_TRUE(fs::is_empty(fresh.home()));
}

TEST_P(Looks, DoNotAskWhenThereIsADisplay)
{
    const ProcessResult result = m_installation.run(arguments(), {{"DISPLAY", ":77"}});
    const ProcessResult without = m_installation.run(arguments());
    EXPECT_EQ(result.exitCode, without.exitCode);
    EXPECT_EQ(result.err, without.err);
}

TEST_P(Looks, DoNotAskOnATerminal)
{
    const ProcessResult result = m_installation.runShell("script -qec \"" + joined(arguments()) + "\" /dev/null");
    EXPECT_EQ(result.exitCode, m_installation.run(arguments()).exitCode) << result.out;
}

TEST_P(Looks, DoNotReadStandardInput)
{
    const std::string line = joined(arguments());
    const ProcessResult result = m_installation.runShell("echo kept | { " + line + " >/dev/null 2>&1; cat; }");
    EXPECT_EQ(result.out, "kept\n");
}

TEST_P(Looks, NeedNoStandardInput)
{
    const ProcessResult with = m_installation.runShell(joined(arguments()));
    const ProcessResult without = m_installation.runShell(joined(arguments()) + " <&-");
    EXPECT_EQ(without.exitCode, with.exitCode);
    EXPECT_EQ(without.out, with.out);
    EXPECT_EQ(without.err, with.err);
}

INSTANTIATE_TEST_SUITE_P(Commands, Looks, testing::ValuesIn(kLooks));

TEST(Looking, IsWhatEveryCommandIsButFour)
{
    const Installation installation;
    std::istringstream lines(answerOf(installation.run({"--help"})));
    std::string line;
    while (line != "Commands:" && std::getline(lines, line)) {
    }
    int count = 0;
    for (; std::getline(lines, line) && !line.empty(); ++count) {
        const std::string name = line.substr(2, line.find(' ', 2) - 2);
        const bool isLook =
            std::any_of(kLooks.begin(), kLooks.end(), [&name](const Arguments& look) { return look.front() == name; });
        EXPECT_TRUE(isLook || std::find(kChanging.begin(), kChanging.end(), name) != kChanging.end()) << name;
    }
    EXPECT_GE(count, 21);
}

TEST(Changing, InAStateInWhichAStartWouldAskIsRefused)
{
    const Installation installation;
    installation.store("Software/HALVIK/VORNA/2026/CurVer", "5$fr-FR");
    const Tree before = treeOf(installation.root());
    for (const Arguments& arguments :
         {Arguments{"set", "@settings/a", "x"}, Arguments{"rm", "@version"}, Arguments{"first-run"}})
        expectError(installation.run(arguments, {{"DISPLAY", ":77"}}), kFailed,
                    "the start says: The input language is not installed");
    EXPECT_TRUE(treeOf(installation.root()) == before);
}

} // namespace
