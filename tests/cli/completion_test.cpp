#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

using Words = std::vector<std::string>;

std::string lines(const Words& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : "\n") + word;
    return text;
}

/// What could stand in the place of the last word.
Words candidates(const Installation& installation, Words typed)
{
    typed.insert(typed.begin(), "vruinfo");
    std::istringstream answer(answerOf(installation.run({"completion", "bash", "--words", lines(typed)})));
    Words found;
    for (std::string line; std::getline(answer, line);)
        found.push_back(line);
    return found;
}

bool has(const Words& words, const std::string& word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

void fill(const Installation& installation)
{
    installation.store(kSettings + "/Grid/Spacing", "1$5");
    installation.store(kSettings + "/Grid/Snap", "1$1");
    installation.store(kSettings + "/Recent File List/First one", "5$a");
    installation.store("Loose", "5$x");
}

TEST(CompletionWords, AreTheCommandsAtFirst)
{
    const Installation installation;
    EXPECT_EQ(candidates(installation, {"g"}), (Words{"get"}));
    const Words all = candidates(installation, {""});
    EXPECT_TRUE(has(all, "identity"));
    EXPECT_TRUE(has(all, "doctor"));
    EXPECT_TRUE(candidates(installation, {"nosuch"}).empty());
}

TEST(CompletionWords, AreTheOptionsOfTheCommandBehindADash)
{
    const Installation installation;
    EXPECT_EQ(candidates(installation, {"get", "--t"}), (Words{"--type"}));
    EXPECT_TRUE(candidates(installation, {"list", "--t"}).empty());
    EXPECT_TRUE(has(candidates(installation, {"list", "-"}), "--language"));
}

TEST(CompletionWords, AreTheValuesOfAnOption)
{
    const Installation installation;
    EXPECT_EQ(candidates(installation, {"set", "x", "1", "--type", ""}),
              (Words{"int32", "int64", "double", "binary", "string"}));
    EXPECT_EQ(candidates(installation, {"get", "--language", "de"}), (Words{"de-DE"}));
    EXPECT_EQ(candidates(installation, {"completion", ""}), (Words{"bash", "zsh"}));
}

TEST(CompletionWords, AreTheCommandAndPathBehindOptionsWithValues)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(candidates(installation, {"--language", "en-US", "ge"}), (Words{"get"}));
    EXPECT_EQ(candidates(installation, {"get", "--type", "int32", "Lo"}), (Words{"Loose"}));
    EXPECT_EQ(candidates(installation, {"get", "--type=int32", "Lo"}), (Words{"Loose"}));
    EXPECT_EQ(candidates(installation, {"export", "-o", "file", "@settings/Gr"}), (Words{"@settings/Grid/"}));
}

TEST(CompletionWords, AreTheRootsAndTheTopLevelForAPath)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(candidates(installation, {"get", "@se"}), (Words{"@settings/"}));
    const Words all = candidates(installation, {"get", ""});
    EXPECT_TRUE(has(all, "@product/"));
    EXPECT_TRUE(has(all, "Software/"));
    EXPECT_TRUE(has(all, "Loose"));
}

TEST(CompletionWords, AreItemsAndValuesBelowAPath)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(candidates(installation, {"get", "@settings/Grid/S"}),
              (Words{"@settings/Grid/Snap", "@settings/Grid/Spacing"}));
    EXPECT_EQ(candidates(installation, {"get", "@settings/Re"}), (Words{"@settings/Recent File List/"}));
    EXPECT_EQ(candidates(installation, {"get", kSettings + "/Gr"}), (Words{kSettings + "/Grid/"}));
}

TEST(CompletionWords, AreItemsOnlyWhereAnItemIsWanted)
{
    const Installation installation;
    fill(installation);
    EXPECT_TRUE(candidates(installation, {"list", "@settings/Grid/S"}).empty());
    EXPECT_EQ(candidates(installation, {"tree", "@settings/G"}), (Words{"@settings/Grid/"}));
}

TEST(CompletionWords, FollowTheIdentityOptions)
{
    const Installation installation;
    installation.store("Software/HALVIK/VORNA/2026/de-DE/Settings/Nur/a", "1$1");
    EXPECT_TRUE(candidates(installation, {"get", "@settings/N"}).empty());
    EXPECT_EQ(candidates(installation, {"get", "--language", "de-DE", "@settings/N"}), (Words{"@settings/Nur/"}));
}

TEST(CompletionWords, AreNoneWhereAFileIsWanted)
{
    const Installation installation;
    EXPECT_TRUE(candidates(installation, {"import", ""}).empty());
}

TEST(CompletionWords, ChangeNothing)
{
    const Installation installation;
    fill(installation);
    const std::string before = readFile(installation.settingsFile());
    EXPECT_FALSE(candidates(installation, {"get", "@settings/"}).empty());
    EXPECT_EQ(readFile(installation.settingsFile()), before);
}

TEST(Completion, OfAnUnknownShellIsMisuse)
{
    const Installation installation;
    expectError(installation.run({"completion", "fish"}), kMisuse, "there is completion for bash and zsh");
}

/// Types keys into an interactive shell that has read its script, and lets it print the finished command line.
std::string typedInto(const Installation& installation, const std::string& shell, const std::string& keys)
{
    const std::string start = shell == "bash" ? "spawn bash --norc --noprofile -i" : "spawn zsh -f -i";
    const std::string read = shell == "bash"
                                 ? "source <(vruinfo completion bash)"
                                 : "autoload -U compinit && compinit -u -D && eval \\\"\\$(vruinfo completion zsh)\\\"";
    const std::string script =
        "set timeout 20\n" + start +
        "\nsend \"PS1='ready> '; printf 'line:%s\\\\n' ok\\r\"\nexpect \"line:ok\"\nsend \"" + read +
        "; printf 'line:%s\\\\n' read\\r\"\nexpect \"line:read\"\n" +
        R"(send "vruinfo() { shift; printf 'line:<%s>\\n' \"\$*\"; }; printf 'line:%s\\n' told\r")"
        "\n" +
        "expect \"line:told\"\n" + keys + "\nexpect -re {line:<([^\\r\\n]*)>\\r}\n" +
        "puts \"\\nRESULT $expect_out(1,string)\"\n";
    installation.write("keys.exp", script);
    const ProcessResult result =
        installation.runShell("TERM=xterm expect -f '" + (installation.programDir() / "keys.exp").string() + "'");
    const std::size_t at = result.out.rfind("RESULT ");
    EXPECT_NE(at, std::string::npos) << result.out << result.err;
    return at == std::string::npos ? std::string() : result.out.substr(at + 7, result.out.find('\n', at) - at - 7);
}

/// The shell looks for the program itself while it completes: as a command, not as the function that prints the line.
std::string completedLine(const Installation& installation, const std::string& shell, const std::string& typed)
{
    return typedInto(installation, shell, "send \"" + typed + "\\t\"\nsleep 1\nsend \"\\r\"");
}

TEST(CompletionInBash, FinishesAPathWithARoot)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(completedLine(installation, "bash", "vruinfo get @settings/Grid/Sp"), "@settings/Grid/Spacing");
}

TEST(CompletionInBash, FinishesANameWithBlanks)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(completedLine(installation, "bash", "vruinfo list @settings/Rec"), "@settings/Recent File List/");
}

TEST(CompletionInZsh, FinishesAPathWithARoot)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(completedLine(installation, "zsh", "vruinfo get @settings/Grid/Sp"), "@settings/Grid/Spacing");
}

TEST(CompletionInZsh, FinishesANameWithBlanks)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(completedLine(installation, "zsh", "vruinfo list @settings/Rec"), "@settings/Recent File List/");
}

TEST(CompletionInBash, FinishesAValueBehindAnEqualsSign)
{
    const Installation installation;
    EXPECT_EQ(completedLine(installation, "bash", "vruinfo identity --language=de"), "--language=de-DE");
}

TEST(CompletionInBash, ContinuesANameWithBlanksThatWasBegun)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(completedLine(installation, "bash", R"(vruinfo list @settings/Recent\\ Fi)"),
              "@settings/Recent File List/");
}

} // namespace
