// A damaged settings file: what the doctor's repair brings back, what it says, and what it leaves alone.
#include <QMap>
#include <QSettings>

#include "doctor_patient.h"
#include "settings_words.h"

using namespace clitest;

namespace
{

using Values = QMap<QString, QVariant>;
using Lines = std::vector<int>;

const std::string kOpenText = "[S]\na=\"5$open\nb=1$5\n\n[T]\nc=\"5$x;y\"\nd=2$7\n";

/// What the settings library reads from a file.
struct Reading {
    Values values;
    bool isWhole;

    static Reading of(const std::string& bytes)
    {
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("read.conf"));
        appendToFile(file.toStdString(), bytes);
        const QSettings settings(file, QSettings::NativeFormat);
        Reading reading;
        for (const QString& key : settings.allKeys()) {
            const bool canBeRead = !key.split(QLatin1Char('/')).contains(QString());
            if (canBeRead)
                reading.values.insert(key, settings.value(key));
        }
        reading.isWhole = settings.status() == QSettings::NoError;
        return reading;
    }
};

class Repaired : public testing::Test
{
protected:
    /// The damaged files that were set aside.
    std::vector<fs::path> kept() const
    {
        std::vector<fs::path> files;
        for (const fs::path& file : filesBesideSettings(m_patient)) {
            if (file.extension() == ".damaged")
                files.push_back(file);
        }
        return files;
    }
    std::string bytes() const { return readFile(m_patient.settingsFile()); }
    /// What the repair tells scripts.
    QJsonObject repair(int exitCode, Arguments more = {})
    {
        Arguments arguments{"doctor", "--repair"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        m_report = m_patient.object(arguments, exitCode);
        return m_report.value(QStringLiteral("repair")).toObject();
    }
    /// It was done, the file is whole, and the damaged one is kept as it was.
    QJsonObject repairOf(const std::string& damaged, int exitCode)
    {
        m_patient.settings(damaged);
        QJsonObject answer = repair(exitCode);
        EXPECT_TRUE(Reading::of(bytes()).isWhole) << bytes();
        EXPECT_EQ(kept().size(), 1U);
        for (const fs::path& file : kept()) {
            EXPECT_EQ(readFile(file), damaged);
            EXPECT_EQ(answer.value(QStringLiteral("setAside")).toString().toStdString(), file.string());
        }
        return answer;
    }
    static Lines linesIn(const QJsonObject& answer, const char* kind)
    {
        Lines numbers;
        for (const auto& row : answer.value(QLatin1String(kind)).toArray())
            numbers.push_back(row.toObject().value(QStringLiteral("line")).toInt());
        return numbers;
    }
    std::string findingWords(const std::string& id) const
    {
        for (const auto& value : m_report.value(QStringLiteral("findings")).toArray()) {
            if (Patient::textIn(value.toObject(), "id") == id)
                return Patient::textIn(value.toObject(), "thing") + " " + Patient::textIn(value.toObject(), "meaning");
        }
        return {};
    }
    /// It fails, and changes nothing at all.
    void expectRefused(const std::string& words)
    {
        const auto before = treeOf(m_patient.root());
        expectError(m_patient.run({"doctor", "--repair"}), kFailed, words);
        EXPECT_EQ(treeOf(m_patient.root()), before);
    }
    void expectRefusedToNobody(const std::string& words)
    {
        const auto before = treeOf(m_patient.root());
        expectError(m_patient.runUnprivileged({"doctor", "--repair"}), kFailed, words);
        EXPECT_EQ(treeOf(m_patient.root()), before);
    }

    Patient m_patient;
    QJsonObject m_report;
};

// ---- What is not damaged

TEST_F(Repaired, AWholeFileStaysAsItIs)
{
    m_patient.settings("; a comment\n[S]\na=5$x\n\nb=\"5$hand\nmade\"\n");
    const auto before = treeOf(m_patient.root());
    const QJsonObject answer = repair(kDone);
    EXPECT_EQ(treeOf(m_patient.root()), before);
    EXPECT_FALSE(answer.value(QStringLiteral("damaged")).toBool(true));
    EXPECT_TRUE(answer.value(QStringLiteral("setAside")).isNull());
    expectContains(answerOf(m_patient.run({"doctor", "--repair"})), "everything is in order");
}

TEST_F(Repaired, AFileThatIsNotThereIsNotMade)
{
    const auto before = treeOf(m_patient.root());
    EXPECT_FALSE(repair(kDone).value(QStringLiteral("damaged")).toBool(true));
    EXPECT_EQ(treeOf(m_patient.root()), before);
}

TEST_F(Repaired, ATextOfSeveralLinesWithoutSettingsInItIsNotDamaged)
{
    m_patient.settings("[S]\na=\"5$one\ntwo = 2\n[three] and\"\nb=5$one\\\n two\n");
    EXPECT_FALSE(repair(kDone).value(QStringLiteral("damaged")).toBool(true));
    m_patient.look(kDone);
}

// ---- What is brought back, and what is lost

TEST_F(Repaired, LinesThatAreNoSettingsAreLostAndTold)
{
    const QJsonObject answer = repairOf("[S]\na=5$x\nno sign\n;comment\nb=1$2\n\nHALVIK-5$y\n", kWarnings);
    EXPECT_EQ(linesIn(answer, "lost"), (Lines{3, 7}));
    EXPECT_EQ(Patient::textIn(answer.value(QStringLiteral("lost")).toArray().at(1).toObject(), "text"), "HALVIK-5$y");
    expectContains(findingWords("settings.line-lost"), "/VORNA.conf:3 It is no setting");
    EXPECT_EQ(bytes(), "[S]\na=5$x\n\n;comment\nb=1$2\n\n\n");
}

TEST_F(Repaired, SettingsBehindAnOpenTextComeBack)
{
    const QJsonObject answer = repairOf(kOpenText, kDone);
    EXPECT_EQ(linesIn(answer, "closed"), Lines{2});
    EXPECT_EQ(linesIn(answer, "broughtBack"), (Lines{3, 5, 6}));
    EXPECT_EQ(linesIn(answer, "lost"), Lines{});
    EXPECT_EQ(m_patient.stored("S/a"), QStringLiteral("5$open"));
    EXPECT_EQ(m_patient.stored("S/b"), QStringLiteral("1$5"));
    EXPECT_EQ(m_patient.stored("T/c"), QStringLiteral("5$x;y"));
    EXPECT_EQ(m_patient.stored("T/d"), QStringLiteral("2$7"));
}

TEST_F(Repaired, ALineThatWasReadInTheWrongGroupStaysThereToo)
{
    const Reading before = Reading::of(kOpenText);
    EXPECT_EQ(before.values.value(QStringLiteral("S/d")), QStringLiteral("2$7"));
    repairOf(kOpenText, kDone);
    EXPECT_EQ(m_patient.stored("S/d"), QStringLiteral("2$7"));
}

TEST_F(Repaired, ANumberThatWasReadInTheWrongGroupStaysThereAsItIsWritten)
{
    const std::string number = "b=@Variant(\\0\\0\\0\\x2\\0\\0\\0\\x5)\n";
    repairOf("[S]\na=\"5$open\nb=1$5\n[T]\nc=\"5$x;y\"\n" + number, kDone);
    const Values values = Reading::of(bytes()).values;
    EXPECT_EQ(values.value(QStringLiteral("S/b")), QVariant(QStringLiteral("5")));
    EXPECT_EQ(values.value(QStringLiteral("T/b")), QVariant(5));
}

TEST_F(Repaired, AValueThatWasReadInTheWrongGroupStaysThereWhereTheGroupHasSeveralParts)
{
    repairOf("[S/t]\na=\"5$open\nb=1$5\n[U]\nc=\"5$x;y\"\nb=1$6\n", kDone);
    const Values values = Reading::of(bytes()).values;
    EXPECT_EQ(values.value(QStringLiteral("S/t/b")), QVariant(QStringLiteral("1$6")));
    EXPECT_EQ(m_patient.stored("S/t/b"), QStringLiteral("1$6")); // not listed before
    EXPECT_EQ(values.value(QStringLiteral("U/b")), QVariant(QStringLiteral("1$6")));
}

TEST_F(Repaired, ValuesThatWereReadInTheWrongGroupStayThereUnderOneName)
{
    repairOf("[S]\na=\"5$open\nb=1$5\nc=1$5\n[T]\nd=\"5$x;y\"\nb=1$6\nc=1$7\n", kDone);
    EXPECT_NE(bytes().find("\n[S]\nb=1$6\nc=1$7\n"), std::string::npos) << bytes();
}

TEST_F(Repaired, AValueThatWasReadInAGroupNamedGeneralWithAnotherPartStaysThere)
{
    repairOf("[General\\t]\na=\"5$open\nb=1$5\n[U]\nc=\"5$x;y\"\nb=1$6\n", kDone);
    EXPECT_EQ(m_patient.stored("General/t/b"), QStringLiteral("1$6"));
    EXPECT_EQ(m_patient.stored("U/b"), QStringLiteral("1$6"));
}

TEST_F(Repaired, SettingsOfAnyFormBehindAnOpenValueOfAnotherKindComeBack)
{
    const QJsonObject answer = repairOf("[S]\na=@Point(3\" 4)\nb=one, \"two; three\"\nc=1$5\n", kDone);
    EXPECT_EQ(linesIn(answer, "broughtBack"), Lines{3});
    EXPECT_NE(bytes().find("\nb=one, \"two; three\"\nc=1$5\n"), std::string::npos) << bytes();
}

TEST_F(Repaired, SettingsBehindABackslashComeBack)
{
    const QJsonObject answer = repairOf("[S]\na=5$x\\\nb=1$5\n", kDone);
    EXPECT_EQ(linesIn(answer, "closed"), Lines{2});
    EXPECT_EQ(linesIn(answer, "broughtBack"), Lines{3});
    EXPECT_EQ(bytes(), "[S]\na=5$x\nb=1$5\n");
}

TEST_F(Repaired, SettingsBehindAQuoteInAGroupComeBack)
{
    const QJsonObject answer = repairOf("[\"S]\na=5$x\nb=\"5$y\"\n", kDone);
    EXPECT_EQ(linesIn(answer, "closed"), Lines{1});
    EXPECT_EQ(bytes(), "[%22S]\na=5$x\nb=\"5$y\"\n");
}

TEST_F(Repaired, AGroupWithoutABracketKeepsItsName)
{
    const QJsonObject answer = repairOf("[S\na=5$x\n", kDone);
    EXPECT_EQ(linesIn(answer, "closed"), Lines{1});
    EXPECT_EQ(bytes(), "[S]\na=5$x\n");
}

TEST_F(Repaired, AByteOrderMarkGoesAndTextsBehindItStay)
{
    const std::string damaged = "\xEF\xBB\xBF"
                                "a=5$x\n[S]\nb=5$\xC3\xA4\nc=5$\\xe4\n";
    repairOf(damaged, kDone);
    EXPECT_EQ(m_patient.stored("a"), QStringLiteral("5$x"));
    EXPECT_EQ(m_patient.stored("S/b"), QString::fromUtf8("5$\u00e4"));
    EXPECT_EQ(m_patient.stored("S/c"), QString::fromUtf8("5$\u00e4"));
    EXPECT_NE(findingWords("settings.mark"), "");
}

TEST_F(Repaired, EveryValueThatCouldBeReadCanBeRead)
{
    for (const char* const damage : {"x\n", "[y\n", "a=\"5$z\n", "=\"\n", "\"=\n", "q\"=5$1\n", "q=5$\\\n", "\\\n"}) {
        for (const char* const rest : {"", "[T]\nc=5$t\n", "c=\"5$a;b\"\nd=@Point(1 2)\n", "e=1$5, \\x41, \"2\"\n"}) {
            SCOPED_TRACE(std::string(damage) + rest);
            const std::string damaged = std::string("[S]\nb=1$5\n") + damage + rest + "f=2$6\n";
            m_patient.settings(damaged);
            m_patient.run({"doctor", "--repair"});
            const Reading before = Reading::of(damaged);
            const Reading after = Reading::of(bytes());
            EXPECT_TRUE(after.isWhole);
            for (auto value = before.values.cbegin(); value != before.values.cend(); ++value)
                EXPECT_TRUE(after.values.contains(value.key())) << value.key().toStdString();
            EXPECT_EQ(after.values.value(QStringLiteral("S/b")), QStringLiteral("1$5"));
        }
    }
}

TEST_F(Repaired, AColourThatAnotherProgramStoredStays)
{
    const std::string colour = R"(Colour=@Variant(\0\0\0\x43\x1\xff\xff\x12\x12\x34\x34VV\0\0))"
                               "\n";
    repairOf("[Other]\n" + colour + "no sign\n", kWarnings);
    EXPECT_EQ(bytes(), "[Other]\n" + colour + "\n");
}

TEST_F(Repaired, AGroupThatSpansLinesIsWrittenInOne)
{
    const std::string damaged = "[\"S\n;x\"\na=5$x\n";
    const Reading before = Reading::of(damaged);
    repairOf(damaged, kDone);
    EXPECT_EQ(Reading::of(bytes()).values, before.values);
}

TEST_F(Repaired, ATextThatIsStillOpenAtTheEndDoesNotSwallowWhatIsPutBehindIt)
{
    const std::string damaged = "[S\nx=1$1\n[T]\ny=\"5$open\n[T]\ny=\"5$open\nz=2\n";
    const Reading before = Reading::of(damaged);
    repairOf(damaged, kDone);
    EXPECT_EQ(m_patient.stored("T/z"), before.values.value(QStringLiteral("T/z")).toString());
    EXPECT_EQ(m_patient.stored("S/x"), QStringLiteral("1$1"));
}

TEST_F(Repaired, ACarriageReturnBehindABackslashAtTheEndDoesNotSwallowWhatIsPutBehindIt)
{
    // One line, as the settings library has it. For the eye the second begins a setting, so that the first is lost, and
    // its value comes behind the end.
    const std::string damaged = "k\\\r=@v\\\r";
    const Reading before = Reading::of(damaged);
    ASSERT_EQ(before.values.keys(), QStringList{QStringLiteral("k/\r")});
    const QJsonObject answer = repairOf(damaged, kWarnings);
    EXPECT_EQ(linesIn(answer, "lost"), Lines{1});
    EXPECT_EQ(Reading::of(bytes()).values.value(QStringLiteral("k/\r")).toString(), QStringLiteral("@v"));
    EXPECT_FALSE(repair(kDone).value(QStringLiteral("damaged")).toBool(true));
}

TEST_F(Repaired, NamesThatNothingReadsDoNotStopIt)
{
    const QJsonObject answer = repairOf("=5$nameless\n[S]\n/=5$x\na\\\\b=5$y\nno sign\nc=5$z\n", kWarnings);
    EXPECT_EQ(linesIn(answer, "lost"), Lines{5});
    EXPECT_EQ(m_patient.stored("S/c"), QStringLiteral("5$z"));
}

TEST_F(Repaired, AListWithAZeroInATextDoesNotStopIt)
{
    const std::string zero(1, '\0');
    repairOf("[S]\na\\\nb=\"5$q\nc=5$r\n" + zero + "\", 2\nd=5$x\\\ne=1$5\n", kWarnings);
    EXPECT_EQ(m_patient.stored("S/e"), QStringLiteral("1$5"));
}

TEST_F(Repaired, AValueThatAsksForAllTheMemoryGoesAndTheOthersComeBack)
{
    const QJsonObject answer = repairOf("[S]\na=1$5\nb=@Variant(\\0\\0\\0\\v2222)\nc=5$x\n", kWarnings);
    EXPECT_EQ(linesIn(answer, "lost"), Lines{3});
    EXPECT_EQ(bytes(), "[S]\na=1$5\n\nc=5$x\n");
}

TEST_F(Repaired, AnOpenTextThatAsksForAllTheMemoryWhenItIsClosedStaysTheTextThatWasRead)
{
    const QJsonObject answer = repairOf("[S]\nb=\"@Variant(\\0\\0\\0\\v2222)\nc=1$5\n[T]\nd=5$x\n", kWarnings);
    EXPECT_EQ(linesIn(answer, "lost"), Lines{2});
    EXPECT_EQ(linesIn(answer, "broughtBack"), (Lines{3, 4, 5}));
    EXPECT_EQ(bytes(), "[S]\n\nc=1$5\n[T]\nd=5$x\n\n"
                       "[S]\nb=\"@String(@Variant(\\0\\0\\0\\v2222)\\nc=1$5\\n[T]\\nd=5$x\\n)\"\n");
}

TEST_F(Repaired, AByteOrderMarkAloneLeavesAnEmptyFile)
{
    repairOf("\xEF\xBB\xBF", kDone);
    EXPECT_EQ(bytes(), "");
}

// ---- How it is done

TEST_F(Repaired, ADryRunSaysTheSameAndChangesNothing)
{
    m_patient.settings(kOpenText + "nonsense\n");
    const auto before = treeOf(m_patient.root());
    const QJsonObject dry = repair(kWarnings, {"--dry-run"});
    EXPECT_EQ(treeOf(m_patient.root()), before);
    EXPECT_TRUE(dry.value(QStringLiteral("dryRun")).toBool());
    EXPECT_TRUE(dry.value(QStringLiteral("setAside")).isNull());
    EXPECT_NE(findingWords("settings.repairable"), "");
    const QJsonObject real = repair(kWarnings);
    for (const char* const kind : {"closed", "broughtBack", "lost"})
        EXPECT_EQ(dry.value(QLatin1String(kind)), real.value(QLatin1String(kind)));
}

TEST_F(Repaired, ADryRunGoesWithARepair)
{
    expectError(m_patient.run({"doctor", "--dry-run"}), kMisuse, "--dry-run goes with --repair");
}

TEST_F(Repaired, TheTextTellsLinesAndTheDamagedFile)
{
    m_patient.settings("[S]\na=5$x\nno sign\n");
    const ProcessResult result = m_patient.run({"doctor", "--repair"});
    EXPECT_EQ(result.exitCode, kWarnings);
    ASSERT_EQ(kept().size(), 1U);
    expectContains(result.out, "warning  settings.line-lost: " + m_patient.settingsFile().string() + ":3\n");
    expectContains(result.out, kept().front().string());
    expectContains(result.out, "1 warning, 1 note");
}

TEST_F(Repaired, TheDoctorFindsTheDamageBeforeAndNoneAfter)
{
    m_patient.settings(kOpenText);
    m_patient.look(kErrors);
    m_patient.expectFound("settings.open-text", {"error", "/VORNA.conf", "(2)"});
    repair(kDone);
    m_patient.look(kDone);
    m_patient.settings("\xEF\xBB\xBF[S]\na=5$x\n");
    m_patient.look(kErrors);
    m_patient.expectFound("settings.damaged", {"error", "/VORNA.conf", "(1)"});
}

TEST_F(Repaired, NoDamagedFileIsOverwritten)
{
    std::set<std::string> all;
    for (int i = 0; i < 5; ++i) {
        const std::string damaged = "[S]\na=1$" + std::to_string(i) + "\nnonsense\n";
        m_patient.settings(damaged);
        repair(kWarnings);
        all.insert(damaged);
    }
    std::set<std::string> left;
    for (const fs::path& file : kept())
        left.insert(readFile(file));
    EXPECT_EQ(left, all);
}

TEST_F(Repaired, RightsStay)
{
    for (const unsigned int rights : {0600U, 0640U, 0604U}) {
        m_patient.settings("[S]\nnonsense\n");
        fs::permissions(m_patient.settingsFile(), fs::perms(rights));
        repair(kWarnings);
        EXPECT_EQ(fs::status(m_patient.settingsFile()).permissions(), fs::perms(rights));
    }
    for (const fs::path& file : kept())
        EXPECT_EQ(fs::status(file).permissions() & fs::perms::others_write, fs::perms::none);
}

TEST_F(Repaired, NothingElseIsLeftBeside)
{
    repairOf("[S]\nnonsense\n", kWarnings);
    EXPECT_EQ(filesBesideSettings(m_patient), (std::vector<fs::path>{kept().front()}));
}

TEST_F(Repaired, ASymbolicLinkIsFollowed)
{
    const fs::path target = m_patient.root() / "elsewhere.conf";
    appendToFile(target, "[S]\na=5$x\nnonsense\n");
    fs::create_directories(m_patient.settingsFile().parent_path());
    fs::create_symlink(target, m_patient.settingsFile());
    const std::string aside = repair(kWarnings).value(QStringLiteral("setAside")).toString().toStdString();
    EXPECT_EQ(fs::read_symlink(m_patient.settingsFile()), target);
    EXPECT_EQ(readFile(target), "[S]\na=5$x\n\n");
    EXPECT_EQ(aside.rfind(target.string() + ".", 0), 0U) << aside;
    EXPECT_EQ(readFile(aside), "[S]\na=5$x\nnonsense\n");
}

TEST_F(Repaired, WhatIsNoFileIsRefused)
{
    const fs::path file = m_patient.settingsFile();
    fs::create_directories(file);
    expectRefused("is a directory");
    fs::remove(file);
    fs::create_symlink("nowhere", file);
    expectRefused("is a link to nothing");
    fs::remove(file);
    fs::create_symlink(file.filename(), file);
    expectRefused("is a link to nothing");
    fs::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0644), 0);
    expectRefused("is no plain file");
}

TEST_F(Repaired, WhatMayNotBeReadOrWrittenIsRefused)
{
    m_patient.settings("[S]\nnonsense\n");
    m_patient.giveToNobody();
    fs::permissions(m_patient.settingsFile(), fs::perms(0444));
    expectRefusedToNobody("cannot be written, nothing was changed");
    fs::permissions(m_patient.settingsFile(), fs::perms::none);
    expectRefusedToNobody("cannot be read by this user");
    fs::permissions(m_patient.settingsFile(), fs::perms(0644));
    fs::permissions(m_patient.settingsFile().parent_path(), fs::perms(0555));
    expectRefusedToNobody("cannot be written, nothing was changed");
    fs::permissions(m_patient.settingsFile().parent_path(), fs::perms(0755));
}

TEST_F(Repaired, WithoutRoomNothingIsChanged)
{
    m_patient.settings("[S]\na=5$" + std::string(4000, 'x') + "\nnonsense\n");
    const auto before = treeOf(m_patient.root());
    const ProcessResult result = m_patient.runShell("trap '' XFSZ; ulimit -f 1; vruinfo doctor --repair");
    expectError(result, kFailed, "nothing was changed");
    EXPECT_EQ(treeOf(m_patient.root()), before);
}

TEST_F(Repaired, ALivingProgramsLockIsHonoured)
{
    m_patient.settings("[S]\nnonsense\n");
    char host[256] = "";
    gethostname(host, sizeof host - 1);
    const std::string own = fs::read_symlink("/proc/self/exe").filename();
    appendToFile(m_patient.lock(), std::to_string(getpid()) + "\n" + own + "\n" + host + "\n\n\n");
    expectRefused("another program holds the lock file");
}

TEST_F(Repaired, ALockThatADeadProgramLeftIsNotWaitedFor)
{
    m_patient.settings("[S]\nnonsense\n");
    char host[256] = "";
    gethostname(host, sizeof host - 1);
    appendToFile(m_patient.lock(), std::string("999999999\nVorna\n") + host + "\n\n\n");
    repair(kWarnings);
    EXPECT_FALSE(fs::exists(m_patient.lock()));
}

TEST_F(Repaired, KilledAtAnyMomentLeavesTheOldOrTheNewFile)
{
    std::string damaged = "[S]\na=\"5$open\n";
    for (int i = 0; i < 3000; ++i)
        damaged += "Value" + std::to_string(i) + "=5$" + std::string(20, 'x') + "\n";
    repairOf(damaged, kDone);
    const std::string whole = bytes();
    fs::remove(kept().front());
    int renewed = 0;
    int stayed = 0;
    for (int milliseconds = 2; milliseconds <= 120; milliseconds += 4) {
        m_patient.settings(damaged);
        char wait[16] = "";
        std::snprintf(wait, sizeof wait, "0.%03d", milliseconds);
        m_patient.runShell(std::string("timeout -s KILL ") + wait + " vruinfo doctor --repair >/dev/null 2>&1");
        const std::string left = bytes();
        ASSERT_TRUE(left == damaged || left == whole) << "killed after " << milliseconds << " ms: " << left.size();
        (left == whole ? renewed : stayed) += 1;
        for (const fs::path& file : kept()) {
            EXPECT_EQ(readFile(file), damaged);
            fs::remove(file);
        }
    }
    EXPECT_GT(stayed, 0);
    m_patient.settings(damaged);
    repair(kDone); // what a killed one left does not stop the next
    EXPECT_EQ(bytes(), whole);
    std::cout << renewed << " times the new file was left, " << stayed << " times the old one\n";
}

} // namespace
