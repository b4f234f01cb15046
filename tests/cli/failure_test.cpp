#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

/// An installation with a value, whose settings nobody may write any more.
class ReadOnlySettings : public testing::Test
{
protected:
    ReadOnlySettings()
    {
        EXPECT_EQ(m_installation.run({"set", "@settings/V", "1", "--type", "int32"}).exitCode, kDone);
        giveEverybodyAccess(m_installation);
        m_before = readFile(m_installation.settingsFile());
        fs::permissions(m_installation.settingsFile(), fs::perms(0444));
        fs::permissions(m_installation.settingsFile().parent_path(), fs::perms(0555));
    }
    void expectRefusal(const Arguments& arguments)
    {
        const ProcessResult result = m_installation.runUnprivileged(arguments);
        expectError(result, kFailed,
                    "the settings file " + m_installation.settingsFile().string() + " cannot be written");
        EXPECT_NE(result.err.find("make the file and its directory writable"), std::string::npos) << result.err;
        EXPECT_EQ(readFile(m_installation.settingsFile()), m_before);
    }

    Installation m_installation;
    std::string m_before;
};

TEST_F(ReadOnlySettings, CannotBeSet)
{
    expectRefusal({"set", "@settings/V", "2", "--type", "int32"});
    expectRefusal({"set", "@settings/New", "2"});
}

TEST_F(ReadOnlySettings, CannotBeRemoved)
{
    expectRefusal({"rm", "@settings/V"});
}

TEST_F(ReadOnlySettings, WithoutRoomForACopyLoseNoSubtree)
{
    const ProcessResult result = m_installation.runUnprivileged({"rm", "@settings", "--recursive"});
    expectError(result, kFailed,
                "no backup of the settings file " + m_installation.settingsFile().string() + " could be made");
    EXPECT_EQ(readFile(m_installation.settingsFile()), m_before);
}

TEST_F(ReadOnlySettings, CanBeRead)
{
    expectAnswer(m_installation.runUnprivileged({"get", "@settings/V"}), "1");
    EXPECT_EQ(m_installation.runUnprivileged({"identity"}).exitCode, kDone);
    EXPECT_EQ(readFile(m_installation.settingsFile()), m_before);
}

TEST_F(ReadOnlySettings, ThatCannotEvenBeReadAreNoAbsentValues)
{
    fs::permissions(m_installation.settingsFile(), fs::perms::none);
    const std::string words = "the settings file " + m_installation.settingsFile().string() + " cannot be read";
    expectError(m_installation.runUnprivileged({"get", "@settings/V"}), kFailed, words);
    expectError(m_installation.runUnprivileged({"list", "@settings"}), kFailed, words);
    fs::permissions(m_installation.settingsFile(), fs::perms(0444));
}

TEST(SettingsFile, WithAValueThatAsksForAllTheMemoryIsToldToBeLeftAlone)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@settings/V", "1"}).exitCode, kDone);
    appendToFile(installation.settingsFile(), "\n[Foreign]\nList=@Variant(\\0\\0\\0\\v2222)\n");
    const std::string before = readFile(installation.settingsFile());
    const std::string words = "the settings file " + installation.settingsFile().string() + " is left alone";
    expectAnswer(installation.run({"get", "@settings/V"}), "1"); // of another group
    expectError(installation.run({"get", "Foreign/List"}), kFailed, "a damaged value");
    expectError(installation.run({"set", "@settings/V", "2"}), kFailed, words);
    expectError(installation.run({"tree", "/"}), kFailed, "a damaged value");
    EXPECT_EQ(installation.run({"identity"}).exitCode, kDone);
    EXPECT_EQ(readFile(installation.settingsFile()), before);
}

TEST(SettingsFile, WithLinesThatAreNoSettingsIsWarnedAbout)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "Loose", "1"}).exitCode, kDone);
    appendToFile(installation.settingsFile(), "\nthis is no setting\n");
    const ProcessResult result = installation.run({"set", "Loose", "2"});
    EXPECT_EQ(result.exitCode, kDone);
    EXPECT_EQ(result.out, "Loose: string \"1\" -> string \"2\"\n");
    EXPECT_NE(result.err.find("warning: the settings file " + installation.settingsFile().string()), std::string::npos)
        << result.err;
    EXPECT_EQ(installation.stored("Loose"), QStringLiteral("5$2"));
    EXPECT_EQ(installation.run({"set", "Loose", "3"}).err, "");
}

TEST(Start, WithoutTheLanguageLibraryFailsWithStatusFive)
{
    const Installation installation;
    installation.write("fr-FR/other.so", "no resource library");
    expectError(installation.run({"identity", "--language", "fr-FR"}), kFailed,
                "status 5: libVrUInfoRes.so of the language fr-FR is missing");
}

TEST(Start, WithANameOfTwoHundredAndFiftyFourCharactersWorks)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"identity", "--product", std::string(250, 'p') + ".abc"}).exitCode, kDone);
}

TEST(Start, WithALongerNameFailsWithStatusSeven)
{
    const Installation installation;
    const std::string name(255, 'p');
    expectError(installation.run({"identity", "--company", name}), kFailed, "status 7: a name is refused");
    expectError(installation.run({"get", "@settings/a", "--product", name}), kFailed, "status 7: a name is refused");
}

TEST(Start, WithAProfileThatIsAPathFailsWithStatusEight)
{
    const Installation installation;
    expectError(installation.run({"identity", "--profile", "a/b"}), kFailed,
                "status 8: the profile is not a bare name");
}

TEST(Start, WithAProfileThatIsAFileFailsWithStatusEight)
{
    const Installation installation;
    installation.write("Mine.arg", "a profile");
    expectError(installation.run({"identity", "--profile", "Mine"}), kFailed,
                "status 8: the profile is not a bare name");
}

TEST(Start, WithAnUnknownLanguageEndsWithTheLibrarysMessage)
{
    const Installation installation;
    const ProcessResult result = installation.run({"identity", "--language", "xx-YY"});
    EXPECT_EQ(result.exitCode, kFailed);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("not a valid short language name"), std::string::npos) << result.err;
}

TEST(Start, WithoutAnyLanguageEndsWithTheLibrarysMessage)
{
    const Installation installation;
    fs::remove_all(installation.programDir() / "en-US");
    fs::remove_all(installation.programDir() / "de-DE");
    const ProcessResult result = installation.run({"identity"});
    EXPECT_EQ(result.exitCode, kFailed);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err, "");
}

TEST(Start, WithEmptyNamesIsAStartWithoutThem)
{
    const Installation installation;
    const QJsonObject identity =
        installation.object({"identity", "--company=", "--product=", "--language=", "--profile="});
    EXPECT_EQ(identity.value(QStringLiteral("company")).toObject().value(QStringLiteral("origin")).toString(),
              QStringLiteral("default"));
}

} // namespace
