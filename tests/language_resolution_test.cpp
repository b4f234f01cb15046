// Resolution of the user-interface language, its message boxes and its ends of process.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <future>
#include <thread>

#include <QtCore/QSettings>

#include <gtest/gtest.h>

#include "long_path.h"
#include "start_words.h"
#include "unprivileged.h"
#include "virtual_display.h"

using namespace vrtest;

namespace
{

constexpr char kCurVer[] = "Software/HALVIK/VORNA/2026/CurVer";
constexpr char kNotValid[] =
    "The input initial language name is not a valid short language name.The program will exit.";
constexpr char kNoneInstalled[] = "Could't find any installed languages!";
constexpr char kContinueWithEnglish[] = "The input language is not installed, continue with English?";
constexpr unsigned int kErrorBox = 16;
constexpr unsigned int kQuestionBox = 36;

QString recordedOnDisk(const Installation& place = Installation::here())
{
    return textInFile(place.settingsFile(), kCurVer);
}

class LanguageTest : public testing::Test
{
protected:
    LanguageTest() : m_here(Installation::here()), m_config(*vornConfig()) {}

    void install(const std::vector<std::string>& languages) const
    {
        for (const std::string& language : languages)
            m_here.installLanguage(language);
    }
    void record(const std::string& text) const { m_here.writeSetting(kCurVer, text); }
    /// That exactly one box was shown, without an owner: "<style> <caption>: <text>".
    static void expectOneBox(const std::string& text, unsigned int style, const std::string& caption = "VORNA")
    {
        std::string seen;
        for (const Boxes::Box& box : Boxes::shown())
            seen += std::to_string(box.style) + " " + box.caption + ": " + box.text +
                    (box.owner ? " with an owner\n" : "\n");
        EXPECT_EQ(seen, std::to_string(style) + " " + caption + ": " + text + "\n");
    }
    /// That a start with this record aborts with one line, and leaves the settings file.
    void expectAbortOn(const std::string& recorded) const
    {
        record(recorded);
        const std::string before = readFile(m_here.settingsFile());
        const ProcessResult result = m_here.run("start");
        EXPECT_EQ(result.signal, SIGABRT) << recorded;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_EQ(readFile(m_here.settingsFile()), before) << recorded;
    }
    /// Another process: the start and what it says, in one line.
    std::string started(const std::vector<std::string>& names = {}) const
    {
        const ProcessResult result = m_here.run("start", names);
        EXPECT_EQ(result.signal, 0);
        return result.out + result.err;
    }

    const Installation& m_here;
    VornaConfig& m_config;
};

} // namespace

/// Whether the folder of a name counts, and whether its language does.
PROBE(exists)
{
    for (const std::string& name : arguments)
        std::cout << vornConfig()->isLangFolderExist(wide(name).c_str())
                  << vornConfig()->isLanguageExist(wide(name).c_str());
    std::cout << " " << vornConfig()->queryAInstalledLangInOrder() << "\n";
    return 0;
}

namespace
{

// ---- What is installed

class FolderTest : public LanguageTest
{
protected:
    bool folderCounts(const std::string& name) const { return m_config.isLangFolderExist(wide(name).c_str()); }
};

TEST_F(FolderTest, FolderWithALibraryCounts)
{
    install({"en-US"});
    EXPECT_TRUE(folderCounts("en-US"));
    EXPECT_TRUE(m_config.isLanguageExist(L"en-US"));
}

TEST_F(FolderTest, NullAndEmptyNamesDoNotCount)
{
    m_here.write("libNothing.so", "");
    EXPECT_FALSE(m_config.isLangFolderExist(nullptr));
    EXPECT_FALSE(m_config.isLangFolderExist(L""));
    EXPECT_FALSE(m_config.isLanguageExist(nullptr));
    EXPECT_FALSE(m_config.isLanguageExist(L""));
}

TEST_F(FolderTest, MissingFolderDoesNotCount)
{
    EXPECT_FALSE(folderCounts("en-US"));
}

TEST_F(FolderTest, FolderWithoutALibraryDoesNotCount)
{
    std::filesystem::create_directory(m_here.programDir() / "en-US");
    EXPECT_FALSE(folderCounts("en-US"));
    m_here.write("en-US/readme.txt", "");
    m_here.write("en-US/libOld.so.1", "");
    m_here.write("en-US/libso", "");
    m_here.write("en-US/deeper/libDeep.so", "");
    EXPECT_FALSE(folderCounts("en-US"));
}

TEST_F(FolderTest, AnyNameThatMatchesCounts)
{
    m_here.write("en-US/x.so", "");
    EXPECT_TRUE(folderCounts("en-US"));
    std::filesystem::create_directories(m_here.programDir() / "de-DE" / "folder.so");
    EXPECT_TRUE(folderCounts("de-DE"));
}

TEST_F(FolderTest, FileInItsPlaceDoesNotCount)
{
    m_here.write("en-US", "a file");
    EXPECT_FALSE(folderCounts("en-US"));
}

TEST_F(FolderTest, NameThatEndsInASeparatorDoesNotCount)
{
    install({"en-US"});
    EXPECT_FALSE(folderCounts("en-US/"));
}

TEST_F(FolderTest, UnreadableFolderDoesNotCount)
{
    install({"en-US"});
    ASSERT_EQ(runUnprivileged(m_here, "exists", {"en-US"}).out, "11 2\n");
    setMode(m_here.programDir() / "en-US", 0);
    EXPECT_EQ(runUnprivileged(m_here, "exists", {"en-US"}).out, "00 -1\n");
}

TEST_F(FolderTest, OverlongNamesDoNotCount)
{
    for (const std::size_t length : {255U, 256U, 1000U, 1023U, 1024U, 100000U})
        EXPECT_FALSE(m_config.isLangFolderExist(wideOf(length).c_str())) << length;
}

// The folder's path may have 1016 characters; "/en-US" has 6.
TEST_F(FolderTest, FolderPathOf1016CharactersCounts)
{
    const LongInstallation place(1010);
    place.installEmptyLanguage("en-US");
    EXPECT_EQ(place.run("exists", {"en-US"}).out, "11 2\n");
}

TEST_F(FolderTest, FolderPathOf1017CharactersDoesNotCount)
{
    const LongInstallation place(1011);
    place.installEmptyLanguage("en-US");
    EXPECT_EQ(place.run("exists", {"en-US"}).out, "00 -1\n");
}

TEST_F(FolderTest, StartInATooLongProgramDirectoryEndsForWantOfLanguages)
{
    const LongInstallation place(1011);
    place.installEmptyLanguage("en-US");
    const ProcessResult result = place.run("start", {"-", "-", "en-US"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, std::string("VORNA: ") + kNoneInstalled + "\n");
}

TEST_F(FolderTest, VersionAndMatchAlwaysHold)
{
    EXPECT_TRUE(m_config.isLangVerExist(L"en-US"));
    EXPECT_TRUE(m_config.isLangVerExist(nullptr));
    EXPECT_TRUE(m_config.isLangMatch(L"no language"));
    EXPECT_TRUE(m_config.isLangMatch(nullptr));
}

TEST_F(FolderTest, MakersProductTakesLanguagesOfTheTableOnly)
{
    m_here.installEmptyLanguage("xx-XX");
    EXPECT_TRUE(folderCounts("xx-XX"));
    EXPECT_FALSE(m_config.isLanguageExist(L"xx-XX"));
}

TEST_F(FolderTest, OtherProductsTakeAnyFolder)
{
    m_here.installEmptyLanguage("xx-XX");
    ASSERT_EQ(m_config.initCompanyName(L"Acme"), 0U);
    EXPECT_TRUE(m_config.isLanguageExist(L"xx-XX"));
    EXPECT_FALSE(m_config.isLanguageExist(L"yy-YY"));
}

class InstalledOrderTest : public LanguageTest
{
protected:
    void expectEachAloneIsFound() const
    {
        for (int id = 0; id < kVornLanguageCount; ++id) {
            const std::string name = utf8(_std_short_languages[id]);
            m_here.installEmptyLanguage(name);
            EXPECT_EQ(m_config.queryAInstalledLangInOrder(), id);
            std::filesystem::remove_all(m_here.programDir() / name);
        }
    }
    void expectEnglishThenTheLowestId() const
    {
        for (int id = kVornLanguageCount - 1; id >= 0; --id) {
            m_here.installEmptyLanguage(utf8(_std_short_languages[id]));
            EXPECT_EQ(m_config.queryAInstalledLangInOrder(), id < 2 ? 2 : id);
        }
        std::filesystem::remove_all(m_here.programDir() / "en-US");
        EXPECT_EQ(m_config.queryAInstalledLangInOrder(), 0);
    }
};

TEST_F(InstalledOrderTest, NoneGivesMinus1)
{
    EXPECT_EQ(m_config.queryAInstalledLangInOrder(), -1);
}

TEST_F(InstalledOrderTest, EachLanguageAloneIsFound)
{
    expectEachAloneIsFound();
}

TEST_F(InstalledOrderTest, EnglishComesFirstThenTheLowestId)
{
    expectEnglishThenTheLowestId();
}

TEST_F(InstalledOrderTest, OtherProductsHaveTheSameOrder)
{
    ASSERT_EQ(m_config.initCompanyName(L"Acme"), 0U);
    expectEachAloneIsFound();
    expectEnglishThenTheLowestId();
}

TEST_F(InstalledOrderTest, FoldersOutsideTheTableAreNotOffered)
{
    ASSERT_EQ(m_config.initCompanyName(L"Acme"), 0U);
    m_here.installEmptyLanguage("xx-XX");
    EXPECT_EQ(m_config.queryAInstalledLangInOrder(), -1);
}

// ---- By argument

TEST_F(LanguageTest, InstalledArgumentIsTakenWithoutABoxAndRecorded)
{
    install({"en-US"});
    Boxes::answerWith(IDNO);
    EXPECT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_EQ(m_config.language().id(), 2);
    EXPECT_TRUE(Boxes::shown().empty());
    flush();
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$en-US"));
}

TEST_F(LanguageTest, ArgumentInAnotherCaseIsTheSameLanguage)
{
    install({"en-US"});
    for (const char* const name : {"EN-US", "en-us", "En-uS"}) {
        EXPECT_EQ(started({"-", "-", name}), "0 HALVIK/VORNA/en-US/Default\n") << name;
        EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$en-US")) << name;
    }
}

TEST_F(LanguageTest, EachOfTheFifteenLanguagesStarts)
{
    for (const wchar_t* const wideName : _std_short_languages) {
        const std::string name = utf8(wideName);
        install({name});
        EXPECT_EQ(started({"-", "-", name}), "0 HALVIK/VORNA/" + name + "/Default\n");
        EXPECT_EQ(recordedOnDisk().toStdString(), "5$" + name);
    }
}

TEST_F(LanguageTest, ArgumentWinsOverRecordAndIniFile)
{
    install({"en-US", "fr-FR", "de-DE"});
    record("5$fr-FR");
    m_here.write("VORNA.ini", "[Product]\nLocaleId=1036\n[LocaleIdLangName]\n1036=fr-FR\n");
    EXPECT_EQ(started({"-", "-", "de-DE"}), "0 HALVIK/VORNA/de-DE/Default\n");
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$de-DE"));
}

TEST_F(LanguageTest, ArgumentThatIsNotInstalledLeadsToTheQuestion)
{
    install({"en-US"});
    Boxes::answerWith(IDYES);
    EXPECT_EQ(startWith({"-", "-", "de-DE"}), 0U);
    EXPECT_EQ(m_config.language().id(), 2);
    expectOneBox(kContinueWithEnglish, kQuestionBox);
    flush();
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$en-US"));
}

TEST_F(LanguageTest, ArgumentThatIsNotInstalledPassesOverTheRecord)
{
    install({"en-US", "fr-FR"});
    record("5$fr-FR");
    Boxes::answerWith(IDYES);
    EXPECT_EQ(startWith({"-", "-", "de-DE"}), 0U);
    EXPECT_EQ(m_config.language().id(), 2);
}

TEST_F(LanguageTest, FolderWithoutALibraryIsNotInstalled)
{
    install({"en-US"});
    m_here.write("de-DE/readme.txt", "");
    Boxes::answerWith(IDYES);
    EXPECT_EQ(startWith({"-", "-", "de-DE"}), 0U);
    expectOneBox(kContinueWithEnglish, kQuestionBox);
}

TEST_F(LanguageTest, QuestionNamesTheLanguageFoundAndTheProduct)
{
    install({"zh-TW"});
    Boxes::answerWith(IDYES);
    EXPECT_EQ(startWith({"Acme", "Draw", "de-DE"}), 0U);
    expectOneBox("The input language is not installed, continue with Traditional Chinese?", kQuestionBox, "Draw");
    EXPECT_EQ(m_config.language().id(), 14);
}

// ---- By record

TEST_F(LanguageTest, RecordedLanguageIsTakenWithoutABox)
{
    install({"en-US", "fr-FR"});
    record("5$fr-FR");
    EXPECT_EQ(started(), "0 HALVIK/VORNA/fr-FR/Default\n");
    EXPECT_EQ(started({"-", "-", ""}), "0 HALVIK/VORNA/fr-FR/Default\n") << "empty is as null";
}

TEST_F(LanguageTest, RecordedLanguageFollowsItsMark)
{
    struct Row {
        const char* recorded;
        const char* language; // the INI file says German
    };
    install({"en-US", "fr-FR", "de-DE"});
    m_here.write("VORNA.ini", "[Product]\nLocaleId=1031\n[LocaleIdLangName]\n1031=de-DE\n");
    for (const Row& row : {Row{"5$fr-FR", "fr-FR"}, Row{"fr-FR", "fr-FR"}, Row{"5$FR-fr", "fr-FR"},
                           Row{"4$fr-FR", "de-DE"}, Row{"x$fr-FR", "de-DE"}, Row{"5$", "de-DE"}, Row{"", "de-DE"}}) {
        record(row.recorded);
        EXPECT_EQ(started(), std::string("0 HALVIK/VORNA/") + row.language + "/Default\n") << row.recorded;
        EXPECT_EQ(recordedOnDisk().toStdString(), std::string("5$") + row.language) << row.recorded;
    }
}

TEST_F(LanguageTest, RecordedLanguageThatCannotBeUsedLeadsToTheQuestionAndNotToTheIniFile)
{
    install({"en-US", "de-DE"});
    m_here.write("VORNA.ini", "[Product]\nLocaleId=1031\n[LocaleIdLangName]\n1031=de-DE\n");
    for (const char* const recorded : {"5$fr-FR", "5$1234567", "$5$x", "5$a$b", "55$x", "x", "5$ en-US"}) {
        record(recorded);
        const ProcessResult result = m_here.run("start", {"-", "-", "-", "-", "6"});
        EXPECT_EQ(result.out, std::string("box 36 VORNA: ") + kContinueWithEnglish + "\n0 HALVIK/VORNA/en-US/Default\n")
            << recorded;
    }
}

TEST_F(LanguageTest, RecordOf7CharactersIsRead)
{
    install({"en-US"});
    record("5$1234567");
    EXPECT_EQ(m_here.run("start").exitCode, 1);
    record("1234567");
    EXPECT_EQ(m_here.run("start").exitCode, 1);
}

TEST_F(LanguageTest, RecordOf8CharactersEndsTheProcess)
{
    install({"en-US"});
    expectAbortOn("5$12345678");
    expectAbortOn("12345678");
}

TEST_F(LanguageTest, TooLongRecordWithAnotherMarkIsIgnored)
{
    install({"en-US"});
    record("4$12345678");
    EXPECT_EQ(started({"-", "-", "-", "-", "6"}),
              std::string("box 36 VORNA: ") + kContinueWithEnglish + "\n0 HALVIK/VORNA/en-US/Default\n");
}

TEST_F(LanguageTest, TooLongRecordDoesNotHarmAnArgument)
{
    install({"en-US"});
    record("5$12345678");
    EXPECT_EQ(started({"-", "-", "en-US"}), "0 HALVIK/VORNA/en-US/Default\n");
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$en-US"));
}

// ---- By INI file

TEST_F(LanguageTest, IniFileIsTakenWithoutABox)
{
    install({"en-US", "ja-JP"});
    m_here.write("VORNA.ini", "[Product]\nLocaleId=1041\n[LocaleIdLangName]\n1041=ja-JP\n2052=zh-CN\n");
    EXPECT_EQ(started(), "0 HALVIK/VORNA/ja-JP/Default\n");
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$ja-JP"));
}

TEST_F(LanguageTest, IniFileThatCannotBeUsedLeadsToTheQuestion)
{
    install({"en-US"});
    for (const char* const ini :
         {"", "[Product]\nLocaleId=\n", "[Product]\nLocaleId=1041\n", "[LocaleIdLangName]\n1041=en-US\n",
          "[Product]\nLocaleId=1041\n[LocaleIdLangName]\n1041=\n",
          "[Product]\nLocaleId=1041\n[LocaleIdLangName]\n1041=ja-JP\n",
          "[Product]\nLocaleId=1041\n[LocaleIdLangName]\n1041=English\n"}) {
        std::filesystem::remove_all(m_here.configDir() / "HALVIK");
        m_here.write("VORNA.ini", ini);
        EXPECT_EQ(started({"-", "-", "-", "-", "6"}),
                  std::string("box 36 VORNA: ") + kContinueWithEnglish + "\n0 HALVIK/VORNA/en-US/Default\n")
            << ini;
    }
}

TEST_F(LanguageTest, IniTextsHaveRoomFor5Characters)
{
    install({"en-US", "ja-JP"});
    m_here.write("VORNA.ini", "[Product]\nLocaleId=1234567\n[LocaleIdLangName]\n12345=ja-JPxx\n1234567=en-US\n");
    EXPECT_EQ(started(), "0 HALVIK/VORNA/ja-JP/Default\n");
}

TEST_F(LanguageTest, WithoutAnySourceTheQuestionIsAsked)
{
    install({"en-US"});
    Boxes::answerWith(IDYES);
    EXPECT_EQ(startWith({}), 0U);
    expectOneBox(kContinueWithEnglish, kQuestionBox);
}

TEST_F(LanguageTest, AnswerIsRememberedByTheNextProcess)
{
    install({"en-US"});
    EXPECT_EQ(m_here.run("start", {"-", "-", "-", "-", "6"}).exitCode, 0);
    EXPECT_EQ(started(), "0 HALVIK/VORNA/en-US/Default\n");
}

// ---- Called again

TEST_F(LanguageTest, CalledAgainWithAnArgumentThatIsNotInstalledKeepsTheLanguage)
{
    install({"en-US"});
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    Boxes::answerWith(IDNO);
    EXPECT_EQ(m_config.initLanguageName(L"de-DE"), 0U);
    EXPECT_EQ(m_config.language().id(), 2);
    EXPECT_TRUE(Boxes::shown().empty());
}

TEST_F(LanguageTest, CalledAgainWithAnInstalledArgumentChangesLanguageAndRecord)
{
    install({"en-US", "de-DE"});
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_EQ(m_config.initLanguageName(L"de-DE"), 0U);
    EXPECT_EQ(m_config.language().id(), 1);
    flush();
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$de-DE"));
}

TEST_F(LanguageTest, CalledAgainWithoutAnySourceGivesTheIniReadersStatusWithoutAQuestion)
{
    install({"en-US"});
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    Boxes::answerWith(IDNO);
    g_globalSettings->remove(QString::fromLatin1(kCurVer));
    EXPECT_EQ(m_config.initLanguageName(nullptr), 1U);
    EXPECT_EQ(m_config.language().id(), 2);
    EXPECT_TRUE(Boxes::shown().empty());
    flush();
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$en-US")) << "recorded again";
}

TEST_F(LanguageTest, RefreshGives1AndRecords)
{
    install({"en-US"});
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    g_globalSettings->remove(QString::fromLatin1(kCurVer));
    EXPECT_EQ(m_config.refreshLanguageName(), 1U);
    flush();
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$en-US"));
}

TEST_F(LanguageTest, RefreshGives0WithoutASettingsObjectOrALanguage)
{
    install({"en-US"});
    m_config.initRegObject(nullptr, nullptr);
    ASSERT_EQ(m_config.initCompanyName(nullptr), 0U);
    ASSERT_EQ(m_config.initProductName(nullptr), 0U);
    EXPECT_EQ(m_config.refreshLanguageName(), 0U) << "no language";
    ASSERT_EQ(m_config.initLanguageName(L"en-US"), 0U);
    EXPECT_EQ(m_config.refreshLanguageName(), 1U);
    m_config.uinitRegObject();
    EXPECT_EQ(m_config.refreshLanguageName(), 0U) << "no settings object";
}

TEST_F(LanguageTest, LanguageIsResolvedWithoutASettingsObjectToo)
{
    install({"en-US", "ja-JP"});
    m_here.write("VORNA.ini", "[Product]\nLocaleId=1041\n[LocaleIdLangName]\n1041=ja-JP\n");
    ASSERT_EQ(m_config.initCompanyName(nullptr), 0U);
    ASSERT_EQ(m_config.initProductName(nullptr), 0U);
    EXPECT_EQ(m_config.initLanguageName(nullptr), 0U);
    EXPECT_EQ(m_config.language().id(), 7);
}

// ---- Ends of process, seen from outside

/// A start that ends the process; the settings file, which holds a value and no product, must stay as it is.
class EndTest : public LanguageTest
{
protected:
    EndTest() { m_here.writeSetting("Some/Value", "5$kept"); }

    ProcessResult ended(const std::vector<std::string>& names, const Environment& environment = {}) const
    {
        const std::string before = readFile(m_here.settingsFile());
        const auto time = std::filesystem::last_write_time(m_here.settingsFile());
        ProcessResult result = m_here.run("start", names, environment);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(readFile(m_here.settingsFile()), before);
        EXPECT_EQ(std::filesystem::last_write_time(m_here.settingsFile()), time);
        return result;
    }
    static std::string box(unsigned int style, const std::string& text, const std::string& caption = "VORNA")
    {
        return "box " + std::to_string(style) + " " + caption + ": " + text + "\n";
    }
};

TEST_F(EndTest, ArgumentThatIsNoShortNameEndsTheProcess)
{
    install({"en-US"});
    for (const std::string& name : {std::string("english"), std::string("English"), std::string("en"),
                                    std::string("en-USx"), std::string(" en-US"), std::string("en_US"),
                                    std::string("unknown"), std::string("1033"), std::string(5000, 'x')}) {
        for (const char* const answer : {"1", "6", "0"})
            EXPECT_EQ(ended({"-", "-", name, "-", answer}).out, box(kErrorBox, kNotValid)) << name;
    }
}

TEST_F(EndTest, ArgumentThatIsNoShortNameEndsOtherProductsToo)
{
    m_here.installEmptyLanguage("xx-XX");
    const ProcessResult result = m_here.run("start", {"Acme", "Draw", "xx-XX", "-", "1"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, box(kErrorBox, kNotValid, "Draw"));
    EXPECT_FALSE(std::filesystem::exists(m_here.settingsFile("Acme", "Draw")));
}

TEST_F(EndTest, NoInstalledLanguageEndsTheProcess)
{
    for (const char* const language : {"-", "en-US", "de-DE"})
        EXPECT_EQ(ended({"-", "-", language, "-", "6"}).out, box(kErrorBox, kNoneInstalled)) << language;
}

TEST_F(EndTest, NoInstalledLanguageButARecordEndsTheProcess)
{
    record("5$fr-FR");
    EXPECT_EQ(ended({"-", "-", "-", "-", "6"}).out, box(kErrorBox, kNoneInstalled));
}

TEST_F(EndTest, AnyAnswerButYesEndsTheProcess)
{
    install({"en-US"});
    for (const char* const answer : {"7", "2", "1", "4", "0", "-1", "5", "8", "36"})
        EXPECT_EQ(ended({"-", "-", "de-DE", "-", answer}).out, box(kQuestionBox, kContinueWithEnglish)) << answer;
}

TEST_F(EndTest, ProcessThatEndsMakesNoSettingsFile)
{
    std::filesystem::remove_all(m_here.configDir() / "HALVIK");
    EXPECT_EQ(m_here.run("start", {"-", "-", "english"}).exitCode, 1);
    install({"en-US"});
    EXPECT_EQ(m_here.run("start", {"-", "-", "de-DE"}).exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(m_here.settingsFile()));
}

// ---- Without display and terminal

TEST_F(EndTest, WithoutAnyoneToAskTheErrorGoesToStandardError)
{
    const ProcessResult result = ended({"-", "-", "english"});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, std::string("VORNA: ") + kNotValid + "\n");
}

TEST_F(EndTest, WithoutAnyoneToAskTheQuestionIsAnsweredCautiously)
{
    install({"en-US"});
    const ProcessResult result = ended({"-", "-", "de-DE"});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, std::string("VORNA: ") + kContinueWithEnglish + "\n");
}

TEST_F(EndTest, WithoutAnyoneToAskAndNoLanguageTheErrorGoesToStandardError)
{
    EXPECT_EQ(ended({}).err, std::string("VORNA: ") + kNoneInstalled + "\n");
}

// ---- As a real dialog

class DialogTest : public EndTest
{
protected:
    /// Starts on the display and answers the dialog of that title with a key.
    ProcessResult startedAndAnswered(const std::vector<std::string>& names, const std::string& title,
                                     const std::string& key) const
    {
        auto start = std::async(std::launch::async, [&] {
            return m_here.run("start", names, {{"DISPLAY", m_display.name()}});
        });
        EXPECT_TRUE(m_display.press(title, key));
        return start.get();
    }

    const VirtualDisplay m_display;
};

TEST_F(DialogTest, YesContinues)
{
    install({"en-US"});
    const ProcessResult result = startedAndAnswered({"-", "-", "de-DE"}, "VORNA", "alt+y");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "0 HALVIK/VORNA/en-US/Default\n");
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$en-US"));
}

TEST_F(DialogTest, NoEndsTheProcess)
{
    install({"en-US"});
    const std::string before = readFile(m_here.settingsFile());
    const ProcessResult result = startedAndAnswered({"-", "-", "de-DE"}, "VORNA", "alt+n");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(readFile(m_here.settingsFile()), before);
}

TEST_F(DialogTest, EscapeEndsTheProcess)
{
    install({"en-US"});
    EXPECT_EQ(startedAndAnswered({"-", "-", "de-DE"}, "VORNA", "Escape").exitCode, 1);
}

TEST_F(DialogTest, TitleIsTheProductsName)
{
    install({"en-US"});
    const ProcessResult result = startedAndAnswered({"Acme", "Draw", "de-DE"}, "Draw", "alt+y");
    EXPECT_EQ(result.out, "0 Acme/Draw/en-US/Default\n");
}

TEST_F(DialogTest, ErrorEndsTheProcessWhenItIsConfirmed)
{
    const ProcessResult result = startedAndAnswered({"-", "-", "english"}, "VORNA", "Return");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out + result.err, "");
}

TEST_F(DialogTest, NoInstalledLanguageEndsTheProcessWhenItIsConfirmed)
{
    const ProcessResult result = startedAndAnswered({}, "VORNA", "Return");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out + result.err, "");
}

// ---- The store lock

std::atomic<bool> g_isStoreFree{false};
std::thread g_worker;
bool g_wasFreeInBox = true;

/// While the box is open, another thread tries to write to the store.
int answerWhileAnotherThreadWaits(HWND, const wchar_t*, const wchar_t*, unsigned int)
{
    g_worker = std::thread([] {
        vornConfig()->refreshProductName();
        g_isStoreFree = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    g_wasFreeInBox = g_isStoreFree;
    return IDYES;
}

TEST_F(LanguageTest, StoreIsLockedWhileTheBoxIsOpen)
{
    install({"en-US"});
    VrSetMessageBoxHandler(answerWhileAnotherThreadWaits);
    EXPECT_EQ(startWith({"-", "-", "de-DE"}), 0U);
    g_worker.join();
    EXPECT_FALSE(g_wasFreeInBox);
    EXPECT_TRUE(g_isStoreFree);
}

// ---- Earlier releases in the store

class EarlierReleaseTest : public LanguageTest
{
protected:
    void SetUp() override
    {
        install({"en-US"});
        ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    }
    static void addValue(const char* item)
    {
        const QString key = QStringLiteral("Software/HALVIK/VORNA/") + QString::fromLatin1(item);
        g_globalSettings->setValue(key + QStringLiteral("/Value"), QStringLiteral("5$x"));
    }
};

TEST_F(EarlierReleaseTest, CurrentReleaseIsNotAnEarlierOne)
{
    addValue("2026/en-US/Settings");
    EXPECT_FALSE(m_config.isSameLanVersionExist());
}

TEST_F(EarlierReleaseTest, EarlierReleaseWithTheLanguageIsFound)
{
    addValue("2025/en-US/Settings");
    EXPECT_TRUE(m_config.isSameLanVersionExist());
}

TEST_F(EarlierReleaseTest, ItsLanguageIsComparedInAnyCase)
{
    addValue("2025/EN-us");
    EXPECT_TRUE(m_config.isSameLanVersionExist());
}

TEST_F(EarlierReleaseTest, EarlierReleaseWithOtherLanguagesIsNone)
{
    addValue("2025/de-DE/Settings");
    addValue("2025/en-USx/Settings");
    addValue("2024/fr-FR/en-US");
    EXPECT_FALSE(m_config.isSameLanVersionExist());
}

TEST_F(EarlierReleaseTest, LaterReleaseIsNone)
{
    addValue("2027/en-US/Settings");
    EXPECT_FALSE(m_config.isSameLanVersionExist());
}

TEST_F(EarlierReleaseTest, OneOfManyIsEnough)
{
    addValue("2023/de-DE");
    addValue("2024/fr-FR");
    addValue("2025/de-DE");
    addValue("2025/en-US");
    addValue("2027/en-US");
    EXPECT_TRUE(m_config.isSameLanVersionExist());
}

TEST_F(EarlierReleaseTest, ReleaseThatIsNoNumberCountsAs0)
{
    addValue("Trial/en-US/Settings");
    EXPECT_TRUE(m_config.isSameLanVersionExist());
}

TEST_F(EarlierReleaseTest, ValueOfTheLanguagesNameIsNoItem)
{
    g_globalSettings->setValue(QStringLiteral("Software/HALVIK/VORNA/2025/en-US"), QStringLiteral("5$x"));
    EXPECT_FALSE(m_config.isSameLanVersionExist());
}

TEST_F(LanguageTest, NoEarlierReleaseBeforeTheStart)
{
    EXPECT_FALSE(m_config.isSameLanVersionExist());
}

} // namespace
