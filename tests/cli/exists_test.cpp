#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

void expectPresence(const Installation& installation, const std::string& path, const std::string& words, ExitCode code)
{
    const ProcessResult result = installation.run({"exists", path});
    EXPECT_EQ(result.exitCode, code) << path;
    EXPECT_EQ(result.out, words + "\n") << path;
    EXPECT_EQ(result.err, "") << path;
}

TEST(Exists, TellsValuesFromItemsAndFromBoth)
{
    const Installation installation;
    installation.store("Demo/a", "5$x");
    installation.store("Demo/Both", "5$x");
    installation.store("Demo/Both/b", "5$x");
    expectPresence(installation, "Demo/a", "value", kDone);
    expectPresence(installation, "Demo", "item", kDone);
    expectPresence(installation, "Demo/Both", "value and item", kDone);
    expectPresence(installation, "/", "item", kDone);
}

TEST(Exists, OfWhatIsAbsentIsExitCodeThreeWithoutAnError)
{
    const Installation installation;
    installation.store("Demo/a", "5$x");
    expectPresence(installation, "Demo/b", "absent", kNotFound);
    expectPresence(installation, "Demo/a/b", "absent", kNotFound);
    expectPresence(installation, "Dem", "absent", kNotFound);
    expectPresence(installation, "@settings", "absent", kNotFound);
}

TEST(Exists, OfTheTopIsAbsentInAFreshHome)
{
    const Installation installation;
    expectPresence(installation, "/", "absent", kNotFound);
}

TEST(Exists, TakesRoots)
{
    const Installation installation;
    installation.store(kSettings + "/Grid/Step", "1$1");
    expectPresence(installation, "@settings/Grid", "item", kDone);
    expectPresence(installation, "@settings/Grid/Step", "value", kDone);
}

TEST(Exists, DoesNotSeeWhatTheStartRemembers)
{
    const Installation installation;
    expectPresence(installation, "@version/CurVer", "absent", kNotFound);
    expectPresence(installation, "@profiles", "absent", kNotFound);
}

TEST(Exists, OfAValueThatIsADefaultOfTheMachine)
{
    const Installation installation;
    const fs::path defaults = installation.root() / "xdg/HALVIK/VORNA/2026/VORNA.conf";
    appendToFile(defaults, "[Demo]\na=5$x\n");
    const ProcessResult result =
        installation.run({"exists", "Demo/a"}, {{"XDG_CONFIG_DIRS", installation.root() / "xdg"}});
    EXPECT_EQ(answerOf(result), "value\n");
}

TEST(Exists, AnswersInJsonWithTheSameExitCodes)
{
    const Installation installation;
    installation.store("Demo/a", "5$x");
    EXPECT_EQ(installation.object({"exists", "Demo"}), (QJsonObject{{QStringLiteral("path"), QStringLiteral("Demo")},
                                                                    {QStringLiteral("value"), false},
                                                                    {QStringLiteral("item"), true}}));
    EXPECT_EQ(installation.object({"exists", "None"}, kNotFound),
              (QJsonObject{{QStringLiteral("path"), QStringLiteral("None")},
                           {QStringLiteral("value"), false},
                           {QStringLiteral("item"), false}}));
}

TEST(Exists, OfASettingsFileThatCannotBeReadIsAFailure)
{
    const Installation installation;
    installation.store("Demo/a", "5$x");
    giveEverybodyAccess(installation);
    fs::permissions(installation.settingsFile(), fs::perms::none);
    expectError(installation.runUnprivileged({"exists", "Demo/a"}), kFailed,
                "the settings file " + installation.settingsFile().string() + " cannot be read");
}

} // namespace
