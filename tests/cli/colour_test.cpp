#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

constexpr char kGreen[] = "\033[32m";
constexpr char kEscape = '\033';

/// What a command prints on a terminal of that kind.
std::string onTerminal(const std::string& command, const std::string& terminal = "xterm")
{
    const Installation installation;
    const ProcessResult result =
        installation.runShell("script -qec '" + command + "' /dev/null", {{"TERM", terminal}, {"NO_COLOR", ""}});
    EXPECT_EQ(result.exitCode, kDone) << result.err;
    EXPECT_FALSE(result.out.empty());
    return result.out;
}

void expectPlain(const std::string& answer)
{
    EXPECT_EQ(answer.find(kEscape), std::string::npos) << answer;
}

TEST(Colour, IsThereOnATerminal)
{
    const std::string answer = onTerminal("vruinfo first-run");
    expectContains(answer, std::string(kGreen) + "+ Software/HALVIK/CurProduct: string \"VORNA\"\033[0m");
    expectContains(onTerminal("vruinfo modules"), "\033[1mMODULE");
}

TEST(Colour, IsNotThereElsewhere)
{
    const Installation installation;
    expectPlain(answerOf(installation.run({"first-run"}, {{"TERM", "xterm"}})));
    expectPlain(onTerminal("vruinfo first-run | cat"));
    expectPlain(onTerminal("vruinfo modules | cat"));
}

TEST(Colour, IsNotThereWhenItIsNotWanted)
{
    expectPlain(onTerminal("NO_COLOR=1 vruinfo first-run"));
    expectPlain(onTerminal("NO_COLOR=0 vruinfo first-run"));
}

TEST(Colour, IsThereWhenTheWishIsEmpty)
{
    expectContains(onTerminal("NO_COLOR= vruinfo first-run"), kGreen);
}

TEST(Colour, IsNotThereOnADumbTerminal)
{
    expectPlain(onTerminal("vruinfo first-run", "dumb"));
}

TEST(Colour, IsNeverThereInJson)
{
    expectPlain(onTerminal("vruinfo first-run --json"));
    expectPlain(onTerminal("vruinfo modules --json"));
    expectPlain(onTerminal("vruinfo version --json"));
}

TEST(Colour, IsThereOnATerminalThatErrorsDoNotGoTo)
{
    expectContains(onTerminal("vruinfo first-run 2>/dev/null"), kGreen);
}

} // namespace
