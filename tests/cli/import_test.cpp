#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "installation.h"
#include "settings_words.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

const std::string kOne = R"({"path":"Sub/one","type":"int32","value":1})";
const std::string kTwo = R"({"path":"two","type":"string","value":"new"})";

/// A tree of which an import of kOne and kTwo at Demo adds, changes and removes a value each.
class Import : public testing::Test
{
protected:
    Import()
    {
        m_installation.store("Demo/two", "5$old");
        m_installation.store("Demo/Sub/gone", "1$3");
        m_installation.store("Demonstration/beside", "1$4");
    }
    std::string file(const std::vector<std::string>& lines = {kOne, kTwo}, const std::string& place = "Demo") const
    {
        return fileWith(m_installation, "import.json", exportOf(place, lines));
    }
    void import(const Arguments& options = {}) const { importFrom(file(), options); }
    void importFrom(const std::string& name, const Arguments& options = {}) const
    {
        Arguments arguments{"import", name};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(m_installation.run(arguments).err, "");
    }
    QString stored(const std::string& key) const { return m_installation.stored(key); }
    /// Refused with these words about the file, and nothing is touched.
    void expectRefusal(const std::string& text, const std::string& words) const
    {
        SCOPED_TRACE(text.substr(0, 200));
        const std::string name = fileWith(m_installation, "import.json", text);
        const Untouched settings(m_installation);
        expectError(m_installation.run({"import", name}), kFailed, name + words);
        settings.expect();
    }
    void expectRefusedValue(const std::string& line, const std::string& words) const
    {
        expectRefusal(exportOf("Demo", {kOne, line}), ":3:1: value 2: " + words);
    }

    Installation m_installation;
};

TEST_F(Import, MakesThePlaceWhatTheExportHas)
{
    import();
    EXPECT_EQ(stored("Demo/Sub/one"), QStringLiteral("1$1"));
    EXPECT_EQ(stored("Demo/two"), QStringLiteral("5$new"));
    EXPECT_TRUE(stored("Demo/Sub/gone").isNull());
    EXPECT_EQ(stored("Demonstration/beside"), QStringLiteral("1$4"));
}

TEST_F(Import, TellsEachChangeAndWhereTheCopyIs)
{
    const ProcessResult result = m_installation.run({"import", file()});
    const auto beside = filesBesideSettings(m_installation);
    ASSERT_EQ(beside.size(), 1U);
    EXPECT_EQ(answerOf(result), "- Demo/Sub/gone: int32 3\n"
                                "+ Demo/Sub/one: int32 1\n"
                                "~ Demo/two: string \"old\" -> string \"new\"\n"
                                "1 added, 1 changed, 1 removed\n"
                                "backup: " +
                                    beside.front().string() + "\n");
}

TEST_F(Import, KeepsACopyOfTheSettingsFileAsItWas)
{
    const std::string before = settingsBytes(m_installation);
    import();
    const auto beside = filesBesideSettings(m_installation);
    ASSERT_EQ(beside.size(), 1U);
    EXPECT_EQ(readFile(beside.front()), before);
}

TEST_F(Import, WithoutASettingsFileMakesOneAndNoCopy)
{
    fs::remove(m_installation.settingsFile());
    const QJsonObject answer = m_installation.object({"import", file()});
    EXPECT_TRUE(answer.value(QStringLiteral("backup")).isNull());
    EXPECT_EQ(answer.value(QStringLiteral("added")).toInt(), 2);
    EXPECT_EQ(stored("Demo/two"), QStringLiteral("5$new"));
    EXPECT_TRUE(filesBesideSettings(m_installation).empty());
}

TEST_F(Import, HasAJsonShape)
{
    const QJsonObject answer = m_installation.object({"import", file()});
    EXPECT_EQ(answer.value(QStringLiteral("path")).toString(), QStringLiteral("Demo"));
    EXPECT_FALSE(answer.value(QStringLiteral("dryRun")).toBool());
    EXPECT_EQ(answer.value(QStringLiteral("added")).toInt(), 1);
    EXPECT_EQ(answer.value(QStringLiteral("changed")).toInt(), 1);
    EXPECT_EQ(answer.value(QStringLiteral("removed")).toInt(), 1);
    const QJsonObject change = answer.value(QStringLiteral("changes")).toArray().last().toObject();
    EXPECT_EQ(change.value(QStringLiteral("path")).toString(), QStringLiteral("Demo/two"));
    EXPECT_EQ(change.value(QStringLiteral("old")).toObject().value(QStringLiteral("value")).toString(),
              QStringLiteral("old"));
    EXPECT_TRUE(fs::exists(answer.value(QStringLiteral("backup")).toString().toStdString()));
}

TEST_F(Import, WithMergeKeepsWhatIsNotInTheExport)
{
    EXPECT_EQ(m_installation.object({"import", file(), "--merge"}).value(QStringLiteral("removed")).toInt(), 0);
    EXPECT_EQ(stored("Demo/Sub/one"), QStringLiteral("1$1"));
    EXPECT_EQ(stored("Demo/two"), QStringLiteral("5$new"));
    EXPECT_EQ(stored("Demo/Sub/gone"), QStringLiteral("1$3"));
}

TEST_F(Import, AsADryRunTellsTheSameAndTouchesNothing)
{
    const Untouched settings(m_installation);
    EXPECT_EQ(answerOf(m_installation.run({"import", file(), "--dry-run"})),
              "- Demo/Sub/gone: int32 3\n"
              "+ Demo/Sub/one: int32 1\n"
              "~ Demo/two: string \"old\" -> string \"new\"\n"
              "1 added, 1 changed, 1 removed; a dry run: nothing was changed\n");
    const QJsonObject answer = m_installation.object({"import", file(), "--dry-run"});
    EXPECT_TRUE(answer.value(QStringLiteral("dryRun")).toBool());
    EXPECT_TRUE(answer.value(QStringLiteral("backup")).isNull());
    settings.expect();
}

TEST_F(Import, OfWhatIsThereTouchesNothing)
{
    import();
    const Untouched settings(m_installation);
    expectAnswer(m_installation.run({"import", file()}), "nothing to change: Demo is as in " + file());
    const QJsonObject answer = m_installation.object({"import", file()});
    EXPECT_TRUE(answer.value(QStringLiteral("changes")).toArray().isEmpty());
    EXPECT_TRUE(answer.value(QStringLiteral("backup")).isNull());
    expectAnswer(m_installation.run({"import", file({kTwo}), "--merge"}),
                 "nothing to change: Demo is as in " + file({kTwo}));
    settings.expect();
}

TEST_F(Import, BringsItToAnotherPlace)
{
    import({"--at", "Else/where"});
    EXPECT_EQ(stored("Else/where/Sub/one"), QStringLiteral("1$1"));
    EXPECT_EQ(stored("Demo/Sub/gone"), QStringLiteral("1$3"));
}

TEST_F(Import, BringsItToARootAndLeavesNoTraceOfTheStart)
{
    import({"--at", "@settings"});
    EXPECT_EQ(stored(kSettings + "/Sub/one"), QStringLiteral("1$1"));
    EXPECT_EQ(settingsBytes(m_installation).find("Cur"), std::string::npos) << settingsBytes(m_installation);
}

TEST_F(Import, BringsItToTheTop)
{
    import({"--at", "/"});
    EXPECT_EQ(stored("Sub/one"), QStringLiteral("1$1"));
    EXPECT_EQ(stored("two"), QStringLiteral("5$new"));
    EXPECT_TRUE(stored("Demo/two").isNull());
    EXPECT_TRUE(stored("Demonstration/beside").isNull());
}

TEST_F(Import, OfAnEmptyExportEmptiesThePlace)
{
    importFrom(file({}));
    EXPECT_TRUE(stored("Demo/two").isNull());
    EXPECT_TRUE(stored("Demo/Sub/gone").isNull());
    EXPECT_EQ(stored("Demonstration/beside"), QStringLiteral("1$4"));
}

TEST_F(Import, ThatRemovesAValueKeepsTheItemOfItsName)
{
    m_installation.store("Demo/Sub", "5$goes");
    m_installation.store("Demo/Sub/one", "1$1");
    m_installation.store("Demo", "5$goes too");
    importFrom(file({kOne}));
    EXPECT_TRUE(stored("Demo").isNull());
    EXPECT_TRUE(stored("Demo/Sub").isNull());
    EXPECT_TRUE(stored("Demo/two").isNull());
    EXPECT_EQ(stored("Demo/Sub/one"), QStringLiteral("1$1"));
}

TEST_F(Import, ThatRemovesAnItemKeepsTheValueOfItsName)
{
    importFrom(file({R"({"path":"","type":"int32","value":1})", R"({"path":"Sub","type":"int32","value":2})"}));
    EXPECT_EQ(stored("Demo"), QStringLiteral("1$1"));
    EXPECT_EQ(stored("Demo/Sub"), QStringLiteral("1$2"));
    EXPECT_TRUE(stored("Demo/Sub/gone").isNull());
}

TEST_F(Import, ThatRemovesValuesAlongAChainOfItemsKeepsThoseBetween)
{
    QString key = QStringLiteral("Chain");
    std::vector<std::string> kept;
    for (int depth = 0; depth < 400; ++depth) {
        m_installation.store(key.toStdString(), "1$1");
        if (depth % 3 == 1)
            kept.push_back(R"({"path":")" + key.toStdString().substr(6) + R"(","type":"int32","value":1})");
        key += QStringLiteral("/c");
    }
    const std::string name = file(kept, "Chain");
    const QJsonObject answer = m_installation.object({"import", name});
    EXPECT_EQ(answer.value(QStringLiteral("removed")).toInt(), 400 - static_cast<int>(kept.size()));
    EXPECT_EQ(answer.value(QStringLiteral("added")).toInt(), 0);
    EXPECT_EQ(answerOf(m_installation.run({"export", "Chain"})), readFile(name));
}

TEST_F(Import, TellsAValueThatIsNone)
{
    writeSettings(m_installation, "[Demo]\nnone=@Invalid()\n");
    expectContains(answerOf(m_installation.run({"import", file({kTwo})})),
                   "- Demo/none: string \"\" (stored as nothing)\n");
}

TEST_F(Import, ReplacesAValueOfAnotherKindWithTheSameText)
{
    writeSettings(m_installation, "[Demo]\nbytes=@ByteArray(5$x)\n");
    importFrom(file({R"({"path":"bytes","type":"string","value":"x"})"}));
    EXPECT_EQ(settingsBytes(m_installation), "[Demo]\nbytes=5$x\n");
}

TEST_F(Import, ReadsStandardInputAndPipes)
{
    const std::string name = file();
    EXPECT_EQ(m_installation.runShell("vruinfo import - <'" + name + "'").exitCode, kDone);
    EXPECT_EQ(stored("Demo/two"), QStringLiteral("5$new"));
    const std::string all = m_installation.root() / "all.json";
    EXPECT_EQ(m_installation.runShell("cat '" + name + "' | vruinfo import - --at Piped").exitCode, kDone);
    EXPECT_EQ(stored("Piped/two"), QStringLiteral("5$new"));
    const fs::path pipe = m_installation.root() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string command = "cat '" + name + "' >'" + pipe.string() + "' & vruinfo import '" + pipe.string() + "'";
    EXPECT_EQ(m_installation.runShell(command + " --at Named").exitCode, kDone);
    EXPECT_EQ(stored("Named/two"), QStringLiteral("5$new"));
}

TEST_F(Import, NamesStandardInputInMessages)
{
    expectError(m_installation.runShell("echo '{' | vruinfo import -"), kFailed, "standard input:1:2: this is no JSON");
    expectError(m_installation.run({"import", "-"}), kFailed, "standard input is empty");
}

TEST_F(Import, TakesValuesWrittenByHand)
{
    importFrom(fileWith(m_installation, "hand.json",
                        "\xEF\xBB\xBF"
                        R"(
        { "values": [ {"value": 2.5, "type": "double", "path": "d"}, {"path": "i", "type": "int32", "value": "7"},
                      {"path": "b", "type": "binary", "value": "00FF"}, {"path": "l", "type": "int64", "value": "-1"} ],
          "path": "Demo", "version": 1, "format": "vruinfo-settings" })"));
    EXPECT_EQ(stored("Demo/d"), QStringLiteral("3$0000000000000440"));
    EXPECT_EQ(stored("Demo/i"), QStringLiteral("1$7"));
    EXPECT_EQ(stored("Demo/b"), QStringLiteral("4$00ff"));
    EXPECT_EQ(stored("Demo/l"), QStringLiteral("2$-1"));
}

TEST_F(Import, ShowsItsProgressOnATerminalOnly)
{
    const std::string name = file();
    EXPECT_EQ(m_installation.run({"import", name}).err, "");
    const ProcessResult onTerminal =
        m_installation.runShell("script -qec \"vruinfo import '" + name + "' --at Other\" /dev/null");
    expectContains(onTerminal.out, "\r\033[Kreading " + name);
    expectContains(onTerminal.out, "\r\033[Kimporting 0 of 2");
}

TEST_F(Import, RefusesWhatIsNoJson)
{
    expectRefusal("{\n  \"format\": \"vruinfo-settings\",\n  \"version\" 1}", ":3:13: this is no JSON: ");
    expectRefusal("{\"a\": nan}", ":1:7: this is no JSON: ");
    expectRefusal("{\"\xC3\xA4\xC3\xA4\": x}", ":1:8: this is no JSON: ");
    expectRefusal("{} {}", ":1:4: this is no JSON: garbage at the end");
    expectRefusal("{\"a\": 1e999}", ":1:7: this is no JSON: illegal number");
    expectRefusal("{\"format\": \"", ":1:13: this is no JSON: ");
    expectRefusal(" \n ", ":2:1: this is no JSON: ");
    expectRefusal(std::string(100, '\0'), ":1:1: this is no JSON: ");
}

TEST_F(Import, RefusesWhatIsNotUtf8)
{
    expectRefusal(exportOf("Demo", {"{\"path\":\"a\",\"type\":\"string\",\"value\":\"a\xE9\"}"}),
                  ":2:39: this is no JSON: invalid UTF8");
    expectRefusal(std::string("\xFF\xFE{\0}\0", 6), ":1:1: this is no JSON: ");
}

TEST_F(Import, RefusesDeepNesting)
{
    const std::string brackets(100000, '[');
    expectRefusal("{\"values\":" + brackets, ":1:1034: this is no JSON: too deeply nested");
    expectRefusedValue(R"({"path":"a","type":"string","value":[[[]]]})", "\"a\": \"value\" is missing");
}

TEST_F(Import, RefusesAnEmptyFile)
{
    expectRefusal("", " is empty");
}

TEST_F(Import, RefusesJsonThatIsNoExport)
{
    expectRefusal("[]", ":1:1: this is no export: a JSON object is wanted");
    expectRefusal("{}", ":1:1: this is no export: \"format\" must be \"vruinfo-settings\"");
    expectRefusal("{\n \"format\": \"other\"}", ":2:12: this is no export: \"format\" must be");
    expectRefusal("{\n \"format\": 7}", ":2:12: this is no export: \"format\" must be");
}

TEST_F(Import, RefusesAnotherVersion)
{
    for (const char* const version : {"2", "0", "1.5", "\"1\"", "null"})
        expectRefusal("{\"format\":\"vruinfo-settings\",\n\"version\":" + std::string(version) +
                          ",\"path\":\"Demo\",\"values\":[]}",
                      ":2:11: this version of exports is unknown: \"version\" must be 1");
}

TEST_F(Import, RefusesAHeadThatIsWrong)
{
    const std::string head = "{\"format\":\"vruinfo-settings\",\"version\":1";
    expectRefusal(head + "}", ":1:1: \"path\" must be a text");
    expectRefusal(head + ",\n\"path\":1}", ":2:8: \"path\" must be a text");
    expectRefusal(head + ",\n\"path\":\"\",\"values\":[]}", ":2:8: the path \"\" has an empty part");
    expectRefusal(head + ",\n\"path\":\"a//b\",\"values\":[]}", ":2:8: the path \"a//b\" has an empty part");
    expectRefusal(head + ",\n\"path\":\"/a\",\"values\":[]}", ":2:8: the path \"/a\" has an empty part");
    expectRefusal(head + ",\n\"path\":\"@settings\",\"values\":[]}", ":2:8: \"@settings\" is no full path");
    expectRefusal(head + ",\"path\":\"a\"}", ":1:1: \"values\" must be an array");
    expectRefusal(head + ",\"path\":\"a\",\n\"values\":{}}", ":2:10: \"values\" must be an array");
    expectRefusal(head + ",\"path\":\"a\",\n\"vaules\":[]}", ":2:10: \"vaules\" is no part of an export");
}

TEST_F(Import, FindsTheWrongValueWhateverStandsBefore)
{
    expectRefusal("{\"format\":\"vruinfo-settings\",\"version\":1,\"path\":\"D\", \"val\\u0075es\" : [ \n"
                  "{\"path\":\"a]},\\\"\",\"type\":\"int32\",\"value\":1} , \n\n  7 ] }",
                  ":4:3: value 2: an object with a \"path\" is wanted");
}

TEST_F(Import, RefusesAValueWithAWrongType)
{
    expectRefusedValue(R"({"path":"a","type":"int16","value":1})", "\"a\": unknown type 'int16'");
    expectRefusedValue(R"({"path":"a","type":"unknown","value":""})", "\"a\": unknown type 'unknown'");
    expectRefusedValue(R"({"path":"a","value":1})", "\"a\": unknown type ''");
}

TEST_F(Import, RefusesAValueThatItsTypeDoesNotHave)
{
    expectRefusedValue(R"({"path":"a","type":"int32"})", "\"a\": \"value\" is missing");
    expectRefusedValue(R"({"path":"a","type":"int32","value":2147483648})", "\"a\": \"2147483648\" is outside");
    expectRefusedValue(R"({"path":"a","type":"int32","value":1.5})", "\"a\": \"1.5\" is no whole number");
    expectRefusedValue(R"({"path":"a","type":"int32","value":true})", "\"a\": \"value\" is missing");
    expectRefusedValue(R"({"path":"a","type":"int64","value":1})", "\"a\": \"value\" is missing");
    expectRefusedValue(R"({"path":"a","type":"int64","value":"9223372036854775808"})", "\"a\": \"92233720368");
    expectRefusedValue(R"({"path":"a","type":"double","value":"x"})", "\"a\": \"x\" is no number");
    expectRefusedValue(R"({"path":"a","type":"binary","value":"0"})", "\"a\": \"0\" is no binary value");
    expectRefusedValue(R"({"path":"a","type":"string","value":1})", "\"a\": \"value\" is missing");
    expectRefusedValue(R"({"path":"a","type":"double","value":1,"bits":"3ff"})", "\"a\": \"bits\" is not 16");
    expectRefusedValue(R"({"path":"a","type":"string","value":"","storedVariant":"AAAA"})", "\"a\": \"storedVariant\"");
    expectRefusedValue(R"({"path":"a","type":"unknown","value":"","stored":[1]})", "\"a\": \"stored\" is a list");
    expectRefusedValue(R"({"path":"a","type":"unknown","value":"","stored":7})", "\"a\": \"stored\" is no text");
}

TEST_F(Import, RefusesAValueThatTellsTwoThings)
{
    expectRefusedValue(R"({"path":"a","type":"double","value":1,"bits":"4000000000000000"})",
                       "\"a\": \"value\" tells another value than the keys beside it");
    expectRefusedValue(R"({"path":"a","type":"int32","value":1,"stored":"1$01x"})", "\"a\": \"value\" tells another");
    expectRefusedValue(R"({"path":"a","type":"int32","value":1,"comment":"x"})", "\"a\": \"comment\" is no part");
}

TEST_F(Import, RefusesAValueWithoutAProperPath)
{
    expectRefusedValue(R"({"type":"int32","value":1})", "an object with a \"path\" is wanted");
    expectRefusedValue("[]", "an object with a \"path\" is wanted");
    expectRefusedValue(R"({"path":"a","pathUnits":"006","type":"int32","value":1})", "an object with a \"path\"");
    for (const char* const path : {"/", "/a", "a/", "a//b"})
        expectRefusedValue(R"({"path":")" + std::string(path) + R"(","type":"int32","value":1})",
                           "\"" + std::string(path) + "\": the path has an empty part");
    expectRefusal(exportOf("/", {R"({"path":"","type":"int32","value":1})"}),
                  ":2:1: value 1: \"\": the path is empty, but no value stands at the top");
}

TEST_F(Import, RefusesAPathThatIsThereTwice)
{
    expectRefusedValue(kOne, "\"Sub/one\" is there twice");
}

TEST_F(Import, RefusesAGroupThatTheSettingsFileWouldNameOtherwise)
{
    const std::string words = "the settings file would name the group \"General\"";
    expectRefusal(exportOf("/", {R"({"path":"general/a","type":"int32","value":1})"}),
                  ":2:1: value 1: \"general/a\": " + words);
    expectRefusal(exportOf("GENERAL", {R"({"path":"a","type":"int32","value":1})"}), ":2:1: value 1: \"a\": " + words);
    importFrom(
        file({R"({"path":"General/a","type":"int32","value":1})", R"({"path":"general","type":"int32","value":2})",
              R"({"path":"Sub/general/a","type":"int32","value":3})"},
             "/"));
    EXPECT_EQ(stored("General/a"), QStringLiteral("1$1"));
    EXPECT_EQ(stored("general"), QStringLiteral("1$2"));
    EXPECT_EQ(stored("Sub/general/a"), QStringLiteral("1$3"));
}

TEST_F(Import, TakesPathsUpToTheLongestAndNoLonger)
{
    const auto line = [](std::size_t length) {
        return R"({"path":")" + std::string(length, 'n') + R"(","type":"int32","value":1})";
    };
    constexpr std::size_t kLongestBelowDemo = 1021 - 5;
    expectRefusal(exportOf("Demo", {line(kLongestBelowDemo + 1)}), ":2:1: value 1: ");
    expectError(m_installation.run({"import", m_installation.root() / "import.json"}), kFailed,
                "the path is longer than 1021 characters");
    importFrom(file({line(kLongestBelowDemo)}));
    const std::string longest = "Demo/" + std::string(kLongestBelowDemo, 'n');
    expectAnswer(m_installation.run({"get", longest}), "1");
}

TEST_F(Import, CountsThePathOfThePlaceThatItIsBroughtTo)
{
    const std::string place(1000, 'p');
    const std::string name = file({R"({"path":"12345678901234567890","type":"int32","value":1})"});
    EXPECT_EQ(m_installation.run({"import", name, "--at", place}).exitCode, kDone);
    expectError(m_installation.run({"import", name, "--at", place + "p"}), kFailed, "longer than 1021 characters");
    expectError(m_installation.run({"import", name, "--at", std::string(1022, 'p')}), kMisuse, "longer than 1021");
}

TEST_F(Import, RefusesAValueThatTheSettingsFileCannotHold)
{
    // A list of one text would come back as the text.
    expectRefusedValue(R"({"path":"a","type":"unknown","value":"","stored":["x"]})", "\"a\": ");
    expectRefusedValue(R"({"path":"a","stored":["x"]})", "\"a\": the settings file cannot hold this value");
    expectRefusedValue(R"({"path":"a","stored":[]})", "\"a\": the settings file cannot hold this value");
}

TEST_F(Import, NamesAFileThatCannotBeRead)
{
    const std::string root = m_installation.root();
    fs::create_symlink("loop", root + "/loop");
    const std::vector<std::pair<std::string, std::string>> rows = {
        {root + "/nowhere", "No such file or directory"},
        {root, "directory"},
        {root + "/loop", "Too many levels of symbolic links"},
        {root + "/loop/x", "Too many levels"}};
    const Untouched settings(m_installation);
    for (const auto& [name, why] : rows) {
        const ProcessResult result = m_installation.run({"import", name});
        expectError(result, kFailed, name + " cannot be read: ");
        expectContains(result.err, why);
    }
    settings.expect();
    fs::remove(root + "/loop");
}

TEST_F(Import, NamesAFileThatIsClosedToTheUser)
{
    giveEverybodyAccess(m_installation);
    const std::string name = file();
    fs::permissions(name, fs::perms::none);
    const Untouched settings(m_installation);
    expectError(m_installation.runUnprivileged({"import", name}), kFailed, name + " cannot be read: Permission denied");
    settings.expect();
}

TEST_F(Import, StopsReadingAnEndlessFileAtTheLimit)
{
    const Untouched settings(m_installation);
    expectError(m_installation.run({"import", "/dev/zero"}), kFailed, "/dev/zero is larger than 1073741824 bytes");
    settings.expect();
}

TEST_F(Import, DoesNotReadAFileThatIsTooLargeAtAll)
{
    const std::string name = file();
    fs::resize_file(name, (std::uintmax_t{1} << 40U));
    const Untouched settings(m_installation);
    expectError(m_installation.run({"import", name}), kFailed, name + " is larger than 1073741824 bytes");
    settings.expect();
}

const std::string kColour = "[Zoo]\ncolour=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff\\xff\\xff\\0\\0\\0\\0\\0\\0)\n";

TEST_F(Import, KeepsAColourThatAnotherProgramStored)
{
    appendToFile(m_installation.settingsFile(), kColour);
    answerOf(m_installation.run({"import", file()}));
    expectContains(settingsBytes(m_installation), kColour);
}

TEST_F(Import, DoesNotLoseValuesThatItCannotReadWhole)
{
    appendToFile(m_installation.settingsFile(), kColour);
    giveEverybodyAccess(m_installation); // the libraries move to where this one is looked for first
    m_installation.write("libVrUInfoIcons.so", "no library that knows colours\n");
    const Untouched settings(m_installation);
    for (const Arguments& arguments : {Arguments{"import", file()}, Arguments{"set", "Demo/x", "1"}}) {
        const ProcessResult result = m_installation.run(arguments);
        EXPECT_EQ(result.exitCode, kFailed);
        EXPECT_EQ(result.out, "");
        expectContains(result.err, "Zoo/colour in the settings file " + m_installation.settingsFile().string() +
                                       " holds a QColor, which would be lost");
    }
    settings.expect();
}

TEST_F(Import, LeavesSettingsThatCannotBeWritten)
{
    const std::string name = file();
    giveEverybodyAccess(m_installation);
    fs::permissions(m_installation.settingsFile().parent_path(), fs::perms(0555));
    const Untouched settings(m_installation);
    expectError(m_installation.runUnprivileged({"import", name}), kFailed,
                "no backup of the settings file " + m_installation.settingsFile().string() + " could be made");
    settings.expect();
}

TEST_F(Import, LeavesSettingsWithoutAUselessCopyWhenTheyCannotBeReplaced)
{
    const std::string name = file();
    giveEverybodyAccess(m_installation);
    fs::permissions(m_installation.settingsFile(), fs::perms(0444));
    fs::permissions(m_installation.settingsFile().parent_path(), fs::perms(0777));
    const Untouched settings(m_installation);
    expectError(m_installation.runUnprivileged({"import", name}), kFailed,
                "the settings file " + m_installation.settingsFile().string() + " cannot be written");
    settings.expect();
}

TEST_F(Import, OverSettingsThatCannotBeReadFails)
{
    const std::string name = file();
    giveEverybodyAccess(m_installation);
    fs::permissions(m_installation.settingsFile(), fs::perms::none);
    expectError(m_installation.runUnprivileged({"import", name}), kFailed,
                "the settings file " + m_installation.settingsFile().string() + " cannot be read");
}

} // namespace
