#include <QSettings>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

QStringList keysIn(const Installation& installation)
{
    const QSettings settings(QString::fromStdString(installation.settingsFile()), QSettings::NativeFormat);
    return settings.allKeys();
}

const std::string kGerman = "Software/HALVIK/VORNA/2026/de-DE";

TEST(PutBack, LeavesNothingOfTheStartBesideTheValueThatIsSet)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@settings/x", "1", "--language", "de-DE"}).exitCode, kDone);
    EXPECT_EQ(keysIn(installation), QStringList(QString::fromStdString(kGerman + "/Settings/x")));
    EXPECT_EQ(installation.stored(kGerman + "/Settings/x"), QStringLiteral("5$1"));
}

TEST(PutBack, LeavesNothingOfTheStartBesideAProfilesValue)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@profile/Title", "x", "--profile", "Second"}).exitCode, kDone);
    EXPECT_EQ(keysIn(installation),
              QStringList(QStringLiteral("Software/HALVIK/VORNA/2026/en-US/Profiles/Second/Title")));
}

TEST(PutBack, KeepsTheRememberedIdentity)
{
    const Installation installation;
    installation.store("Software/HALVIK/CurProduct", "5$VORNA");
    installation.store("Software/HALVIK/VORNA/2026/CurVer", "5$en-US");
    installation.store(kGerman + "/Profiles/Profiles", "5$Mine");
    EXPECT_EQ(installation.run({"set", "@profile/x", "1", "--language", "de-DE", "--profile", "Second"}).exitCode,
              kDone);
    EXPECT_EQ(installation.stored("Software/HALVIK/CurProduct"), QStringLiteral("5$VORNA"));
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/CurVer"), QStringLiteral("5$en-US"));
    EXPECT_EQ(installation.stored(kGerman + "/Profiles/Profiles"), QStringLiteral("5$Mine"));
    EXPECT_EQ(installation.stored(kGerman + "/Profiles/Second/x"), QStringLiteral("5$1"));
    EXPECT_EQ(keysIn(installation).size(), 4);
}

TEST(PutBack, KeepsTheItemThatHasTheNameOfAValueWhichTheStartWrites)
{
    const Installation installation;
    const std::string item = "Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles/";
    installation.store(item + "Title", "5$mine");
    installation.store(item + "Deep/er", "1$3");
    EXPECT_EQ(installation.run({"set", "@settings/x", "1"}).exitCode, kDone);
    EXPECT_EQ(installation.stored(item + "Title"), QStringLiteral("5$mine"));
    EXPECT_EQ(installation.stored(item + "Deep/er"), QStringLiteral("1$3"));
    EXPECT_EQ(keysIn(installation).size(), 3);
}

TEST(PutBack, KeepsAColourThatAnotherProgramStored)
{
    const Installation installation;
    const std::string colour = "Colour=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff\\x12\\x12\\x34\\x34VV\\0\\0)\n";
    appendToFile(installation.settingsFile(), "[Other]\n" + colour);
    EXPECT_EQ(installation.run({"set", "@settings/x", "1"}).exitCode, kDone);
    expectContains(readFile(installation.settingsFile()), colour);
}

TEST(PutBack, KeepsTheTextOfTheRememberedLanguageToTheLetter)
{
    const Installation installation;
    for (const char* const text : {"5$en-US", "5$EN-us", "plain", "1$7"}) {
        installation.store("Software/HALVIK/VORNA/2026/CurVer", text);
        EXPECT_EQ(installation.run({"set", "@settings/x", text, "--language", "de-DE"}).exitCode, kDone);
        EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/CurVer"), QLatin1String(text));
    }
}

TEST(PutBack, DoesNotTakeBackWhatIsSetItself)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@version/CurVer", "de-DE"}).exitCode, kDone);
    EXPECT_EQ(keysIn(installation), QStringList(QStringLiteral("Software/HALVIK/VORNA/2026/CurVer")));
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/CurVer"), QStringLiteral("5$de-DE"));
    EXPECT_EQ(installation.run({"set", "@profiles/Profiles", "Second", "--language", "en-US"}).exitCode, kDone);
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles"), QStringLiteral("5$Second"));
}

TEST(PutBack, DoesNotMakeRemovingFindWhatTheStartRemembers)
{
    const Installation installation;
    installation.store("Demo/a", "5$x");
    expectError(installation.run({"rm", "@version", "--recursive"}), kNotFound, "there is no such value or item");
    expectError(installation.run({"get", "@version/CurVer"}), kNotFound, "there is no such value");
    EXPECT_EQ(keysIn(installation), QStringList(QStringLiteral("Demo/a")));
}

} // namespace
