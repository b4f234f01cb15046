#include <sys/stat.h>

#include <gtest/gtest.h>

#include "installation.h"
#include "settings_words.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

/// Values that no list of theirs has in the settings file's own order.
void fill(const Installation& installation)
{
    installation.store("Demo/Grid/Spacing", "1$-25");
    installation.store("Demo/Grid/Title", "5$a \"b\"");
    installation.store("Demo/Far", "2$9223372036854775807");
    installation.store("Demo/Half", "3$000000000000e03f");
    installation.store("Demo/Bytes", "4$00ff");
    installation.store("Demo", "5$beside");
    installation.store("Demonstration/Other", "1$1");
    installation.store("Alone", "1$7");
}

const std::string kDemo = R"({"format":"vruinfo-settings","version":1,"path":"Demo","values":[
{"path":"","type":"string","value":"beside"},
{"path":"Bytes","type":"binary","value":"00ff"},
{"path":"Far","type":"int64","value":"9223372036854775807"},
{"path":"Grid/Spacing","type":"int32","value":-25},
{"path":"Grid/Title","type":"string","value":"a \"b\""},
{"path":"Half","bits":"3fe0000000000000","type":"double","value":0.5}
]}
)";

TEST(Export, HasAValueInEachLineSortedByPath)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(answerOf(installation.run({"export", "Demo"})), kDemo);
}

TEST(Export, HasTheShapeOfItsSchema)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(installation.object({"export", "Demo"}).value(QStringLiteral("values")).toArray().size(), 6);
    EXPECT_EQ(installation.object({"export"}).value(QStringLiteral("path")).toString(), QStringLiteral("/"));
}

TEST(Export, IsJsonAnyway)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(answerOf(installation.run({"export", "Demo", "--json"})), kDemo);
}

TEST(Export, GivesTheSameBytesAgain)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(answerOf(installation.run({"export"})), answerOf(installation.run({"export", "/"})));
}

TEST(Export, OfTheTopHasValuesOfTheTopLevel)
{
    const Installation installation;
    installation.store("Alone", "1$7");
    EXPECT_EQ(answerOf(installation.run({"export"})), exportOf("/", {R"({"path":"Alone","type":"int32","value":7})"}));
}

TEST(Export, OfASingleValueHasTheEmptyPath)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(answerOf(installation.run({"export", "Alone"})),
              exportOf("Alone", {R"({"path":"","type":"int32","value":7})"}));
}

TEST(Export, OfARootHasItsFullPath)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@settings/a", "1", "--type", "int32"}).exitCode, kDone);
    EXPECT_EQ(answerOf(installation.run({"export", "@settings"})),
              exportOf(kSettings, {R"({"path":"a","type":"int32","value":1})"}));
}

TEST(Export, OfAnAbsentPlaceIsNotFound)
{
    const Installation installation;
    fill(installation);
    expectError(installation.run({"export", "Dem"}), kNotFound, "Dem: there is no such value or item");
    expectError(installation.run({"export", "Demo/grid"}), kNotFound, "there is no such value or item");
}

TEST(Export, WithoutAnySettingsIsNotFound)
{
    const Installation installation;
    expectError(installation.run({"export"}), kNotFound, "/: there is no such value or item");
}

TEST(Export, HasTheUsersOwnValuesOnly)
{
    const Installation installation;
    fill(installation);
    const fs::path defaults = installation.root() / "defaults";
    fs::create_directories(defaults / "HALVIK/VORNA/2026");
    fs::copy_file(installation.settingsFile(), defaults / "HALVIK/VORNA/2026/VORNA.conf");
    installation.store("Demo/Own", "1$1");
    EXPECT_EQ(installation.run({"rm", "Alone"}).exitCode, kDone);
    const Environment machine{{"XDG_CONFIG_DIRS", defaults}};
    expectAnswer(installation.run({"get", "Alone"}, machine), "7");
    expectError(installation.run({"export", "Alone"}, machine), kNotFound, "there is no such");
    EXPECT_EQ(answerOf(installation.run({"export"}, machine)), answerOf(installation.run({"export"})));
}

TEST(Export, ChangesNothing)
{
    const Installation installation;
    fill(installation);
    const Untouched settings(installation);
    EXPECT_EQ(installation.run({"export"}).exitCode, kDone);
    EXPECT_EQ(installation.run({"export", "@product"}).exitCode, kNotFound);
    settings.expect();
}

TEST(Export, TellsTextsThatJsonCannotHoldByTheirUnits)
{
    const Installation installation;
    writeSettings(installation, "[Demo]\n%UD83Dx=5$\\xdc00z\n");
    const QJsonObject value =
        installation.object({"export", "Demo"}).value(QStringLiteral("values")).toArray().first().toObject();
    EXPECT_EQ(value.value(QStringLiteral("pathUnits")).toString(), QStringLiteral("d83d0078"));
    EXPECT_EQ(value.value(QStringLiteral("storedUnits")).toString(), QStringLiteral("00350024dc00007a"));
}

TEST(Export, LeavesOutNamesThatNothingCanReadAndWarns)
{
    const Installation installation;
    writeSettings(installation, "[Demo]\n=1$1\n\\\\x=1$2\na=1$3\n");
    const ProcessResult result = installation.run({"export", "Demo"});
    EXPECT_EQ(result.exitCode, kDone);
    EXPECT_EQ(result.out, exportOf("Demo", {R"({"path":"a","type":"int32","value":3})"}));
    expectContains(result.err, "vruinfo: warning: 2 values are left out");
}

TEST(Export, OfAValueThatItCannotReadWholeFails)
{
    const Installation installation;
    // A colour, whose kind belongs to a library that the tool does not have.
    writeSettings(installation,
                  "[Demo]\na=1$1\ncolour=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff\\xff\\xff\\0\\0\\0\\0\\0\\0)\n");
    const ProcessResult result = installation.run({"export", "Demo"});
    EXPECT_EQ(result.exitCode, kFailed);
    EXPECT_EQ(result.out, "");
    expectContains(result.err, "Demo/colour holds a QColor, which this program cannot read whole");
}

TEST(ExportOutput, IsTheSameInAFile)
{
    const Installation installation;
    fill(installation);
    const std::string file = fileWith(installation, "demo.json", "what stood there before");
    expectAnswer(installation.run({"export", "Demo", "--output", file}), file + ": 6 values of Demo written");
    EXPECT_EQ(readFile(file), kDemo);
}

TEST(ExportOutput, SaysNothingOfTheFileWithJson)
{
    const Installation installation;
    fill(installation);
    const std::string file = installation.root() / "demo.json";
    EXPECT_EQ(answerOf(installation.run({"export", "Demo", "-o", file, "--json"})), "");
    EXPECT_EQ(readFile(file), kDemo);
}

TEST(ExportOutput, NamedMinusIsStandardOutput)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(answerOf(installation.run({"export", "Demo", "-o", "-"})), kDemo);
}

TEST(ExportOutput, ThatCannotBeWrittenNamesTheFile)
{
    const Installation installation;
    fill(installation);
    const std::string file = installation.root() / "nowhere/demo.json";
    expectError(installation.run({"export", "Demo", "-o", file}), kFailed, file + " cannot be written: ");
}

TEST(ExportOutput, ReplacesNothingThatIsNoRegularFile)
{
    const Installation installation;
    fill(installation);
    const fs::path pipe = installation.root() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& name : {pipe.string(), installation.home().string()}) {
        const ProcessResult result = installation.run({"export", "Demo", "-o", name});
        expectError(result, kFailed, name + " cannot be written: it is no regular file");
    }
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST(ExportOutput, IsNotMadeWhereNothingIsExported)
{
    const Installation installation;
    const std::string file = fileWith(installation, "demo.json", "what stood there before");
    EXPECT_EQ(installation.run({"export", "Demo", "-o", file}).exitCode, kNotFound);
    EXPECT_EQ(readFile(file), "what stood there before");
}

TEST(ExportOutput, IsWholeOrFails)
{
    const Installation installation;
    fill(installation);
    expectError(installation.runShell("vruinfo export Demo >/dev/full"), kFailed, "could not be written");
}

} // namespace
