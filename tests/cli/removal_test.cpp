#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

void fill(const Installation& installation)
{
    installation.store("Demo/a", "1$1");
    installation.store("Demo/Sub/b", "5$x");
    installation.store("Demo/Sub/Deep/c", "2$2");
    installation.store("Demonstration/d", "1$4");
}

std::vector<std::filesystem::path> backupsOf(const Installation& installation)
{
    std::vector<std::filesystem::path> backups;
    for (const auto& entry : std::filesystem::directory_iterator(installation.settingsFile().parent_path())) {
        if (entry.path().extension() == ".bak")
            backups.push_back(entry.path());
    }
    return backups;
}

/// It told these values, and the one backup that there is.
void expectRemoval(const Installation& installation, const ProcessResult& result, const std::string& lines)
{
    const std::vector<std::filesystem::path> backups = backupsOf(installation);
    ASSERT_EQ(backups.size(), 1U);
    EXPECT_EQ(answerOf(result), lines + "backup: " + backups.front().string() + "\n");
}

TEST(Rm, RemovesAValueAndSaysWhatItWas)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"rm", "Demo/a"}), "Demo/a: int32 1 -> absent");
    EXPECT_TRUE(installation.stored("Demo/a").isNull());
    EXPECT_EQ(installation.stored("Demo/Sub/b"), QStringLiteral("5$x"));
}

TEST(Rm, OfAnItemWithContentWantsRecursive)
{
    const Installation installation;
    fill(installation);
    expectError(installation.run({"rm", "Demo"}), kFailed, "Demo is an item with content; --recursive removes it");
    EXPECT_EQ(installation.stored("Demo/a"), QStringLiteral("1$1"));
    EXPECT_EQ(installation.stored("Demo/Sub/Deep/c"), QStringLiteral("2$2"));
}

TEST(Rm, OfAValueThatHasAnItemOfItsNameWantsRecursive)
{
    const Installation installation;
    fill(installation);
    installation.store("Demo/Sub", "5$beside");
    expectError(installation.run({"rm", "Demo/Sub"}), kFailed, "--recursive");
    EXPECT_EQ(installation.stored("Demo/Sub"), QStringLiteral("5$beside"));
    expectRemoval(installation, installation.run({"rm", "Demo/Sub", "--recursive"}),
                  "Demo/Sub: string \"beside\" -> absent\n"
                  "Demo/Sub/Deep/c: int64 2 -> absent\n"
                  "Demo/Sub/b: string \"x\" -> absent\n");
    EXPECT_TRUE(installation.stored("Demo/Sub").isNull());
    EXPECT_TRUE(installation.stored("Demo/Sub/Deep/c").isNull());
    EXPECT_EQ(installation.stored("Demo/a"), QStringLiteral("1$1"));
}

TEST(Rm, RecursiveRemovesEverythingBelowAndNothingBeside)
{
    const Installation installation;
    fill(installation);
    expectRemoval(installation, installation.run({"rm", "Demo/", "--recursive"}),
                  "Demo/Sub/Deep/c: int64 2 -> absent\n"
                  "Demo/Sub/b: string \"x\" -> absent\n"
                  "Demo/a: int32 1 -> absent\n");
    expectError(installation.run({"list", "Demo"}), kNotFound, "there is no such item");
    EXPECT_EQ(installation.stored("Demonstration/d"), QStringLiteral("1$4"));
}

TEST(Rm, RecursiveRemovesASingleValueToo)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"rm", "Demo/a", "--recursive"}), "Demo/a: int32 1 -> absent");
    EXPECT_EQ(installation.stored("Demo/Sub/b"), QStringLiteral("5$x"));
}

TEST(Rm, RemovesAWholeRoot)
{
    const Installation installation;
    installation.store("Software/HALVIK/CurProduct", "5$Else");
    const std::string product = "--product=VORNA";
    EXPECT_EQ(installation.run({"set", "@settings/a", "x", product}).exitCode, kDone);
    EXPECT_EQ(installation.run({"set", "@userconfig/b", "y", product}).exitCode, kDone);
    EXPECT_EQ(installation.run({"rm", "@settings", "--recursive", product}).exitCode, kDone);
    EXPECT_TRUE(installation.stored(kSettings + "/a").isNull());
    EXPECT_TRUE(installation.stored(kSettings + "/UserConfig/b").isNull());
    EXPECT_EQ(installation.stored("Software/HALVIK/CurProduct"), QStringLiteral("5$Else"));
}

TEST(Rm, OfWhatIsAbsentIsNotFound)
{
    const Installation installation;
    expectError(installation.run({"rm", "@settings/None"}), kNotFound,
                kSettings + "/None: there is no such value or item");
    expectError(installation.run({"rm", "@settings/None", "--recursive"}), kNotFound, "there is no such value or item");
}

TEST(Rm, RemovesAtTheTopLevel)
{
    const Installation installation;
    installation.store("Loose", "5$x");
    expectAnswer(installation.run({"rm", "Loose"}), "Loose: string \"x\" -> absent");
    EXPECT_TRUE(installation.stored("Loose").isNull());
}

TEST(Rm, AnswersInJson)
{
    const Installation installation;
    fill(installation);
    const QJsonObject answer = installation.object({"rm", "Demo/Sub", "--recursive"});
    EXPECT_EQ(answer.value(QStringLiteral("path")).toString(), QStringLiteral("Demo/Sub"));
    const QJsonArray removed = answer.value(QStringLiteral("removed")).toArray();
    ASSERT_EQ(removed.size(), 2);
    EXPECT_EQ(removed.at(1).toObject(), (QJsonObject{{QStringLiteral("path"), QStringLiteral("Demo/Sub/b")},
                                                     {QStringLiteral("type"), QStringLiteral("string")},
                                                     {QStringLiteral("value"), QStringLiteral("x")}}));
}

TEST(Rm, OfASubtreeKeepsACopyOfTheSettingsFileAsItWas)
{
    const Installation installation;
    fill(installation);
    const std::string before = readFile(installation.settingsFile());
    EXPECT_EQ(installation.run({"rm", "Demo", "--recursive"}).exitCode, kDone);
    ASSERT_EQ(backupsOf(installation).size(), 1U);
    EXPECT_EQ(readFile(backupsOf(installation).front()), before);
}

TEST(Rm, OfASingleValueKeepsNoCopy)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(installation.run({"rm", "Demo/a"}).exitCode, kDone);
    EXPECT_TRUE(backupsOf(installation).empty());
}

TEST(Rm, TwiceInASecondKeepsTwoCopies)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(installation.run({"rm", "Demo/Sub", "--recursive"}).exitCode, kDone);
    EXPECT_EQ(installation.run({"rm", "Demonstration", "--recursive"}).exitCode, kDone);
    EXPECT_EQ(backupsOf(installation).size(), 2U);
}

} // namespace
