#include <QJsonDocument>
#include <QSettings>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

fs::path listOf(const Installation& installation)
{
    return installation.home() / ".local/share/HALVIK/VR2D.conf";
}

QString inList(const Installation& installation, const char* key)
{
    const QSettings list(QString::fromStdString(listOf(installation)), QSettings::NativeFormat);
    return list.value(QLatin1String(key)).toString();
}

QJsonObject listIn(const QJsonObject& answer)
{
    return answer.value(QStringLiteral("productsList")).toObject();
}

TEST(FirstRun, WritesTheDefaultKeysAndTellsEach)
{
    const Installation installation;
    expectAnswer(installation.run({"first-run"}),
                 "+ Software/HALVIK/CurProduct: string \"VORNA\"\n"
                 "+ Software/HALVIK/VORNA/2026/CurVer: string \"en-US\"\n"
                 "+ Software/HALVIK/VORNA/2026/en-US/AutoMigrate: int32 2\n"
                 "+ Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles: string \"Default\"\n"
                 "+ Software/HALVIK/VORNA/CurVer: string \"2026\"\n" +
                     listOf(installation).string() + ": VORNA_2026_Enu was added");
    EXPECT_EQ(installation.stored("Software/HALVIK/CurProduct"), QStringLiteral("5$VORNA"));
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/CurVer"), QStringLiteral("5$en-US"));
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/en-US/AutoMigrate"), QStringLiteral("1$2"));
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles"), QStringLiteral("5$Default"));
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/CurVer"), QStringLiteral("5$2026"));
}

TEST(FirstRun, EntersTheReleaseIntoTheProductsList)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"first-run"}).exitCode, kDone);
    EXPECT_EQ(inList(installation, "InstalledProducts/1"), QStringLiteral("VORNA_2026_Enu"));
    EXPECT_EQ(inList(installation, "VORNA_2026_Enu/Location").toStdString(), installation.programDir().string());
    EXPECT_EQ(inList(installation, "VORNA_2026_Enu/Language"), QStringLiteral("en-US"));
}

TEST(FirstRun, ASecondTimeHasNothingToWrite)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"first-run"}).exitCode, kDone);
    const std::string settings = readFile(installation.settingsFile());
    const std::string list = readFile(listOf(installation));
    expectAnswer(installation.run({"first-run"}),
                 installation.settingsFile().string() + ": all that a first run writes stands there already\n" +
                     listOf(installation).string() + ": VORNA_2026_Enu stands there already");
    EXPECT_EQ(readFile(installation.settingsFile()), settings);
    EXPECT_EQ(readFile(listOf(installation)), list);
}

TEST(FirstRun, MakesTheToolRememberAnIdentity)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"first-run", "--language", "de-DE", "--profile", "Second"}).exitCode, kDone);
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/CurVer"), QStringLiteral("5$de-DE"));
    const QJsonObject identity = installation.object({"identity"});
    EXPECT_EQ(identity.value(QStringLiteral("language")).toObject().value(QStringLiteral("value")).toString(),
              QStringLiteral("de-DE"));
    EXPECT_EQ(identity.value(QStringLiteral("profile")).toObject().value(QStringLiteral("value")).toString(),
              QStringLiteral("Second"));
}

TEST(FirstRun, TellsWhatItChanges)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"first-run"}).exitCode, kDone);
    const std::string answer = answerOf(installation.run({"first-run", "--language", "de-DE"}));
    expectContains(answer, "~ Software/HALVIK/VORNA/2026/CurVer: string \"en-US\" -> string \"de-DE\"\n");
    expectContains(answer, "VORNA_2026_Enu stands there already\n");
}

TEST(FirstRun, AnswersInJson)
{
    const Installation installation;
    const QJsonObject first = installation.object({"first-run", "--product", "VORNAM"});
    EXPECT_EQ(first.value(QStringLiteral("status")).toInt(-1), 0);
    const QJsonArray changes = first.value(QStringLiteral("changes")).toArray();
    ASSERT_EQ(changes.size(), 5);
    EXPECT_EQ(changes.at(0).toObject(),
              (QJsonObject{{QStringLiteral("path"), QStringLiteral("Software/HALVIK/CurProduct")},
                           {QStringLiteral("old"), QJsonValue()},
                           {QStringLiteral("new"), QJsonObject{{QStringLiteral("type"), QStringLiteral("string")},
                                                               {QStringLiteral("value"), QStringLiteral("VORNAM")}}}}));
    EXPECT_EQ(listIn(first), (QJsonObject{{QStringLiteral("file"), QString::fromStdString(listOf(installation))},
                                          {QStringLiteral("entry"), QStringLiteral("VORNA_Mech_2026_Enu")},
                                          {QStringLiteral("added"), true},
                                          {QStringLiteral("ok"), true}}));
    const QJsonObject second = installation.object({"first-run", "--product", "VORNAM"});
    EXPECT_TRUE(second.value(QStringLiteral("changes")).toArray().isEmpty());
    EXPECT_EQ(listIn(second).value(QStringLiteral("added")), QJsonValue(false));
    EXPECT_EQ(listIn(second).value(QStringLiteral("ok")), QJsonValue(true));
}

TEST(FirstRun, WithoutADirectoryForTheListFailsAndDoesTheRest)
{
    const Installation installation;
    appendToFile(installation.home() / ".local", "a file in the way");
    const ProcessResult result = installation.run({"first-run", "--json"});
    EXPECT_EQ(result.exitCode, kFailed);
    EXPECT_EQ(result.err, "vruinfo: the directory of the products list, " +
                              (installation.home() / ".local/share/HALVIK").string() + ", cannot be made; make " +
                              (installation.home() / ".local/share").string() +
                              " a directory that this user may write in\n");
    expectShape("first-run", result.out);
    const QJsonObject answer = QJsonDocument::fromJson(QByteArray::fromStdString(result.out)).object();
    EXPECT_EQ(answer.value(QStringLiteral("changes")).toArray().size(), 5);
    EXPECT_EQ(listIn(answer).value(QStringLiteral("ok")), QJsonValue(false));
    EXPECT_EQ(listIn(answer).value(QStringLiteral("added")), QJsonValue(false));
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/CurVer"), QStringLiteral("5$en-US"));
}

TEST(FirstRun, WithAListThatCannotBeWrittenFails)
{
    const Installation installation;
    fs::create_directories(listOf(installation)); // a directory in the way
    const ProcessResult result = installation.run({"first-run"});
    EXPECT_EQ(result.exitCode, kFailed);
    EXPECT_EQ(result.err, "vruinfo: the products list " + listOf(installation).string() +
                              " could not be written; make the file and its directory writable for this user and see "
                              "that the disk has room\n");
    EXPECT_EQ(result.out.find("was added"), std::string::npos) << result.out;
}

TEST(FirstRun, WithSettingsThatCannotBeWrittenDoesNothing)
{
    const Installation installation;
    giveEverybodyAccess(installation);
    fs::permissions(installation.home(), fs::perms(0555));
    expectError(installation.runUnprivileged({"first-run"}), kFailed,
                "the settings file " + installation.settingsFile().string() + " cannot be written");
    EXPECT_TRUE(fs::is_empty(installation.home()));
}

TEST(FirstRun, ThatCannotStartWritesNothing)
{
    const Installation installation;
    installation.write("fr-FR/other.so", "no resource library");
    expectError(installation.run({"first-run", "--language", "fr-FR"}), kFailed, "the start failed with status 5");
    EXPECT_TRUE(fs::is_empty(installation.home()));
}

TEST(FirstRun, DoesNotGoOnInAnotherLanguage)
{
    const Installation installation;
    installation.store("Software/HALVIK/VORNA/2026/CurVer", "5$fr-FR");
    const std::string before = readFile(installation.settingsFile());
    expectError(installation.run({"first-run"}), kFailed, "the start says: The input language is not installed");
    EXPECT_EQ(readFile(installation.settingsFile()), before);
    EXPECT_FALSE(fs::exists(listOf(installation)));
}

TEST(FirstRun, LeavesNoTemporaryFiles)
{
    const Installation installation;
    const fs::path temporary = installation.root() / "tmp";
    fs::create_directory(temporary);
    EXPECT_EQ(installation.run({"first-run"}, {{"TMPDIR", temporary}}).exitCode, kDone);
    EXPECT_TRUE(fs::is_empty(temporary));
}

} // namespace
