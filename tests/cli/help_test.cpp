#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

const Arguments kCommands = {"identity", "paths",     "languages", "get",     "set",     "list",       "tree",
                             "rm",       "exists",    "find",      "export",  "import",  "diff",       "watch",
                             "doctor",   "first-run", "products",  "modules", "version", "completion", "help"};

/// The lines behind "Examples:".
Arguments examplesIn(const std::string& help)
{
    std::istringstream lines(help.substr(help.find("\nExamples:\n") + 11));
    Arguments examples;
    for (std::string line; std::getline(lines, line) && !line.empty();)
        examples.push_back(line);
    return examples;
}

void expectSame(const Installation& installation, const std::vector<Arguments>& calls)
{
    const std::string first = answerOf(installation.run(calls.front()));
    for (const Arguments& call : calls)
        EXPECT_EQ(answerOf(installation.run(call)), first);
}

TEST(Help, NamesEachCommandEachRootAndEachExitCode)
{
    const Installation installation;
    const std::string help = answerOf(installation.run({"--help"}));
    for (const std::string& command : kCommands)
        expectContains(help, "\n  " + command + " ");
    for (const char* const root : {"@product ", "@version ", "@language ", "@profiles ", "@profile ", "@applications ",
                                   "@recent ", "@settings ", "@userconfig "})
        expectContains(help, std::string("\n    ") + root);
    for (const char* const code :
         {"\n  0  done\n", "\n  1  failed\n", "\n  2  wrong command line", "\n  3  not found\n"})
        expectContains(help, code);
}

TEST(Help, IsTheSameHoweverItIsAskedFor)
{
    const Installation installation;
    expectSame(installation, {{"--help"}, {"-h"}, {"help"}});
    for (const std::string& command : kCommands)
        expectSame(installation, {{"help", command}, {command, "--help"}, {"--help", command}});
}

TEST(Help, OfACommandHasItsUsageAndOptions)
{
    const Installation installation;
    for (const std::string& command : kCommands) {
        const std::string help = answerOf(installation.run({"help", command}));
        EXPECT_EQ(help.rfind("Usage: vruinfo " + command, 0), 0U) << help;
        expectContains(help, "\n  --json");
    }
    expectContains(answerOf(installation.run({"help", "set"})), "\n  --type TYPE");
    expectContains(answerOf(installation.run({"help", "rm"})), "\n  --recursive");
}

class HelpOf : public testing::TestWithParam<std::string>
{
};

TEST_P(HelpOf, HasExamplesThatAreRightCommandLines)
{
    const Installation installation;
    const Arguments examples = examplesIn(answerOf(installation.run({"help", GetParam()})));
    EXPECT_FALSE(examples.empty());
    installation.store(kSettings + "/Grid/Snap", "1$1");
    // Files that examples read are there; what they write lands beside them.
    for (const char* const file : {"settings.json", "before.json", "after.json"})
        installation.write(file, answerOf(installation.run({"export", "/"})));
    for (const std::string& example : examples) {
        const ProcessResult result =
            installation.runShell("cd '" + installation.programDir().string() + "' && " + example);
        EXPECT_TRUE(result.exitCode == kDone || result.exitCode == kNotFound || result.exitCode == kWarnings)
            << example << result.err;
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, HelpOf, testing::ValuesIn(kCommands), [](const auto& row) {
    std::string name = row.param;
    name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
    return name;
});

TEST(Help, ExamplesOfSettingAreReadBackByThoseOfGetting)
{
    const Installation installation;
    EXPECT_EQ(installation.runShell("vruinfo set @settings/Grid/Visible 1 --type int32").exitCode, kDone);
    expectAnswer(installation.runShell("vruinfo get @settings/Grid/Visible"), "1");
}

TEST(Help, StartsNothing)
{
    const Installation installation;
    for (const Arguments& arguments :
         {Arguments{"--help"}, Arguments{"help", "get"}, Arguments{"get", "--help"}, Arguments{"--version"}})
        EXPECT_NE(answerOf(installation.run(arguments)), "");
    EXPECT_FALSE(std::filesystem::exists(installation.settingsFile()));
}

TEST(Version, IsOneLineWithTheRelease)
{
    const Installation installation;
    const std::string line = std::string("vruinfo ") + TOOL_VERSION + ", release 2026";
    expectAnswer(installation.run({"--version"}), line);
    expectAnswer(installation.run({"get", "--version"}), line);
}

TEST(Help, OfAnUnwritableOutputFails)
{
    const Installation installation;
    const ProcessResult result = installation.runShell("vruinfo --help >/dev/full");
    expectError(result, kFailed, "could not be written");
}

} // namespace
