#include <gtest/gtest.h>

#include "installation.h"
#include "settings_words.h"

using namespace clitest;

namespace
{

const std::string kOne = R"({"path":"Sub/one","type":"int32","value":1})";
const std::string kTwo = R"({"path":"two","type":"string","value":"old"})";
const std::string kNewTwo = R"({"path":"two","type":"string","value":"new"})";
const std::string kThree = R"({"path":"three","type":"int64","value":"3"})";

/// What turns kOne and kTwo into kThree and kNewTwo, below Demo.
const std::string kChanges = "- Demo/Sub/one: int32 1\n"
                             "+ Demo/three: int64 3\n"
                             "~ Demo/two: string \"old\" -> string \"new\"\n";

class Diff : public testing::Test
{
protected:
    std::string before(const std::string& place = "Demo") const
    {
        return fileWith(m_installation, "before.json", exportOf(place, {kOne, kTwo}));
    }
    std::string after(const std::string& place = "Demo") const
    {
        return fileWith(m_installation, "after.json", exportOf(place, {kThree, kNewTwo}));
    }
    void setAfter(const std::string& place) const
    {
        m_installation.store(place + "/three", "2$3");
        m_installation.store(place + "/two", "5$new");
    }

    Installation m_installation;
};

TEST_F(Diff, OfTwoExportsTellsWhatTurnsOneIntoTheOther)
{
    EXPECT_EQ(answerOf(m_installation.run({"diff", before(), after()})), kChanges);
}

TEST_F(Diff, OfAnExportTellsWhatTurnsItIntoTheSettings)
{
    setAfter("Demo");
    EXPECT_EQ(answerOf(m_installation.run({"diff", before()})), kChanges);
}

TEST_F(Diff, OfTheSameTellsNothing)
{
    setAfter("Demo");
    EXPECT_EQ(answerOf(m_installation.run({"diff", after()})), "");
    EXPECT_EQ(answerOf(m_installation.run({"diff", after(), after()})), "");
}

TEST_F(Diff, ComparesWithAnotherPlace)
{
    setAfter("Elsewhere/Below");
    EXPECT_EQ(answerOf(m_installation.run({"diff", after(), "--at", "Elsewhere/Below"})), "");
    EXPECT_EQ(answerOf(m_installation.run({"diff", after(), "--at", "Elsewhere"})),
              "+ Elsewhere/Below/three: int64 3\n"
              "+ Elsewhere/Below/two: string \"new\"\n"
              "- Elsewhere/three: int64 3\n"
              "- Elsewhere/two: string \"new\"\n");
}

TEST_F(Diff, ComparesWithARoot)
{
    EXPECT_EQ(m_installation.run({"set", "@settings/three", "3", "--type", "int64"}).exitCode, kDone);
    EXPECT_EQ(answerOf(m_installation.run({"diff", after(), "--at", "@settings"})),
              "- " + kSettings + "/two: string \"new\"\n");
}

TEST_F(Diff, OfExportsOfDifferentPlacesComparesWhatLiesBelow)
{
    EXPECT_EQ(answerOf(m_installation.run({"diff", before("Here"), after("Demo")})), kChanges);
    EXPECT_EQ(answerOf(m_installation.run({"diff", after("Here"), after("Demo")})), "");
}

TEST_F(Diff, WithAPlaceThatIsNotThereTellsThatEverythingGoes)
{
    EXPECT_EQ(answerOf(m_installation.run({"diff", after()})), "- Demo/three: int64 3\n- Demo/two: string \"new\"\n");
}

TEST_F(Diff, TakesTheUsersOwnValuesOnly)
{
    const std::filesystem::path defaults = m_installation.root() / "defaults/HALVIK/VORNA/2026";
    std::filesystem::create_directories(defaults);
    setAfter("Demo");
    std::filesystem::rename(m_installation.settingsFile(), defaults / "VORNA.conf");
    const Environment machine{{"XDG_CONFIG_DIRS", m_installation.root() / "defaults"}};
    expectAnswer(m_installation.run({"get", "Demo/two"}, machine), "new");
    EXPECT_EQ(answerOf(m_installation.run({"diff", after()}, machine)),
              "- Demo/three: int64 3\n- Demo/two: string \"new\"\n");
}

TEST_F(Diff, ReadsStandardInputOnEitherSide)
{
    const std::string a = before();
    const std::string b = after();
    EXPECT_EQ(answerOf(m_installation.runShell("vruinfo diff - '" + b + "' <'" + a + "'")), kChanges);
    EXPECT_EQ(answerOf(m_installation.runShell("vruinfo diff '" + a + "' - <'" + b + "'")), kChanges);
    setAfter("Demo");
    EXPECT_EQ(answerOf(m_installation.runShell("vruinfo diff - <'" + a + "'")), kChanges);
}

TEST_F(Diff, EndsWithThreeForADifferenceWhenAskedTo)
{
    const ProcessResult result = m_installation.run({"diff", before(), after(), "--exit-code"});
    EXPECT_EQ(result.exitCode, kNotFound);
    EXPECT_EQ(result.out, kChanges);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(answerOf(m_installation.run({"diff", after(), after(), "--exit-code"})), "");
}

TEST_F(Diff, TellsBitsThatTextDoesNotShow)
{
    const std::string zero = R"({"path":"d","bits":"0000000000000000","type":"double","value":0})";
    const std::string minusZero = R"({"path":"d","bits":"8000000000000000","type":"double","value":0})";
    const std::string a = fileWith(m_installation, "a.json", exportOf("Demo", {zero}));
    const std::string b = fileWith(m_installation, "b.json", exportOf("Demo", {minusZero}));
    EXPECT_EQ(answerOf(m_installation.run({"diff", a, b})), "~ Demo/d: double 0 -> double -0\n");
}

TEST_F(Diff, TellsKindsThatConvertToEachOther)
{
    writeSettings(m_installation, "[Demo]\nbytes=@ByteArray(5$x)\n");
    const std::string text =
        fileWith(m_installation, "a.json", exportOf("Demo", {R"({"path":"bytes","type":"string","value":"x"})"}));
    const ProcessResult result = m_installation.run({"diff", text, "--exit-code"});
    EXPECT_EQ(result.exitCode, kNotFound);
    expectContains(result.out, "~ Demo/bytes: string \"x\" -> ");
}

TEST_F(Diff, HasAJsonShape)
{
    setAfter("Demo");
    const QJsonObject live = m_installation.object({"diff", before()});
    EXPECT_EQ(live.value(QStringLiteral("changes")).toArray().size(), 3);
    EXPECT_TRUE(live.value(QStringLiteral("b")).toObject().value(QStringLiteral("file")).isNull());
    const QJsonObject change = live.value(QStringLiteral("changes")).toArray().first().toObject();
    EXPECT_EQ(change.value(QStringLiteral("path")).toString(), QStringLiteral("Demo/Sub/one"));
    EXPECT_TRUE(change.value(QStringLiteral("new")).isNull());
    EXPECT_EQ(change.value(QStringLiteral("old")).toObject().value(QStringLiteral("value")).toInt(), 1);

    const std::string a = before();
    const QJsonObject files = m_installation.object({"diff", a, after("Other"), "--exit-code"}, kNotFound);
    const QJsonObject sideA = files.value(QStringLiteral("a")).toObject();
    EXPECT_EQ(sideA.value(QStringLiteral("file")).toString().toStdString(), a);
    EXPECT_EQ(sideA.value(QStringLiteral("path")).toString(), QStringLiteral("Demo"));
    EXPECT_EQ(files.value(QStringLiteral("b")).toObject().value(QStringLiteral("path")).toString(),
              QStringLiteral("Other"));
    EXPECT_TRUE(m_installation.object({"diff", after()}).value(QStringLiteral("changes")).toArray().isEmpty());
}

TEST_F(Diff, ChangesNothing)
{
    setAfter("Demo");
    const Untouched settings(m_installation);
    EXPECT_EQ(m_installation.run({"diff", before()}).exitCode, kDone);
    EXPECT_EQ(m_installation.run({"diff", before(), "--at", "@settings"}).exitCode, kDone);
    settings.expect();
}

TEST_F(Diff, RefusesWhatCannotBeMeant)
{
    expectError(m_installation.run({"diff", before(), after(), "--at", "Demo"}), kMisuse, "two files are compared");
    expectError(m_installation.run({"diff", "-", "-"}), kMisuse, "standard input cannot be both A and B");
}

TEST_F(Diff, NamesTheFileThatIsNoExport)
{
    const std::string broken = fileWith(m_installation, "broken.json", "{\n  \"format\" 1}");
    expectError(m_installation.run({"diff", broken, after()}), kFailed, broken + ":2:12: this is no JSON");
    expectError(m_installation.run({"diff", after(), broken}), kFailed, broken + ":2:12: this is no JSON");
    const std::string nowhere = m_installation.root() / "nowhere.json";
    expectError(m_installation.run({"diff", after(), nowhere}), kFailed,
                nowhere + " cannot be read: No such file or directory");
}

TEST_F(Diff, OfSettingsThatCannotBeReadFails)
{
    setAfter("Demo");
    giveEverybodyAccess(m_installation);
    const std::string file = after();
    std::filesystem::permissions(m_installation.settingsFile(), std::filesystem::perms::none);
    expectError(m_installation.runUnprivileged({"diff", file}), kFailed,
                "the settings file " + m_installation.settingsFile().string() + " cannot be read");
}

} // namespace
