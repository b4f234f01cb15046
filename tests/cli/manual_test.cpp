#include <sstream>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

/// The commands that the general help lists.
std::vector<std::string> commands(const Installation& installation)
{
    const std::string help = answerOf(installation.run({"--help"}));
    const std::size_t begin = help.find("Commands:\n") + 10;
    std::istringstream rows(help.substr(begin, help.find("\n\n", begin) - begin));
    std::vector<std::string> names;
    for (std::string name, rest; rows >> name && std::getline(rows, rest);)
        names.push_back(name);
    return names;
}

TEST(ManualPage, IsRightInTheLanguageOfManPages)
{
    const Installation installation;
    installation.write("vruinfo.1", answerOf(installation.run({"help", "--man"})));
    const ProcessResult lint =
        vrtest::runProcess({"mandoc", "-T", "lint", "-W", "warning", installation.programDir() / "vruinfo.1"});
    EXPECT_EQ(lint.exitCode, 0) << lint.out << lint.err;
}

TEST(ManualPage, HasEveryCommandWithItsOptionsAndExamples)
{
    const Installation installation;
    const std::string page = installation.runShell("vruinfo help --man | mandoc -T ascii -O width=300 | col -b").out;
    const std::vector<std::string> all = commands(installation);
    EXPECT_GE(all.size(), 20U);
    for (const std::string& command : all) {
        const std::string help = answerOf(installation.run({command, "--help"}));
        const std::string usage = help.substr(7, help.find('\n') - 7); // behind "Usage: "
        expectContains(page, usage);
        const std::size_t example = help.find("Examples:\n") + 12;
        expectContains(page, help.substr(example, help.find('\n', example) - example));
    }
}

TEST(ManualPage, HasTheExitCodesAndTheRoots)
{
    const Installation installation;
    const std::string page = installation.runShell("vruinfo help --man | mandoc -T ascii -O width=300 | col -b").out;
    for (const char* const words : {"EXIT STATUS", "3  not found", "@userconfig", "NO_COLOR", "VR2D.conf"})
        expectContains(page, words);
}

} // namespace
