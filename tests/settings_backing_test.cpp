// The settings object and its file: which one, whose directory, what becomes of damaged ones.
#include <array>
#include <csignal>
#include <fstream>
#include <limits>

#include <QtCore/QCoreApplication>
#include <QtCore/QSettings>
#include <QtCore/QTimer>

#include <gtest/gtest.h>

#include "start_words.h"
#include "unprivileged.h"

using namespace vrtest;

namespace
{

namespace fs = std::filesystem;

class BackingTest : public testing::Test
{
protected:
    BackingTest() : m_here(Installation::here()), m_config(*vornConfig()) {}

    fs::path file(const std::string& companyProductVersion) const
    {
        const fs::path organisation = m_here.configDir() / companyProductVersion;
        return organisation / (organisation.parent_path().filename().string() + ".conf");
    }
    void writeIni(const std::string& productSection) const
    {
        m_here.write("VORNA.ini", "[Product]\n" + productSection);
    }

    const Installation& m_here;
    VornaConfig& m_config;
};

} // namespace

/// Makes the settings object with the names given ("-" is null) and prints the file's path.
PROBE(make)
{
    const auto name = [](const std::string& text) { return text == "-" ? std::wstring() : wide(text); };
    vornConfig()->initRegObject(name(arguments.at(0)).c_str(), name(arguments.at(1)).c_str());
    std::cout << configPath() << "\n";
    return 0;
}

/// Starts in English and writes one value more; prints the status of both.
PROBE(startAndWrite)
{
    const unsigned int status = startWith({"-", "-", "en-US"});
    VornVariant value;
    value.setString(L"new", VornVariant::kVarString);
    std::cout << status << vornConfig()->setValue(VornaConfig::VersionRoot, L"New", value) << "\n";
    return 0;
}

/// Starts, writes a value, and gives an event loop the time to write it back.
PROBE(writeInEventLoop)
{
    const char* const name = "host";
    int count = 1;
    QCoreApplication application(count, const_cast<char**>(&name));
    startWith({"-", "-", "en-US"});
    VornVariant value;
    value.setString(L"new", VornVariant::kVarString);
    vornConfig()->setValue(VornaConfig::VersionRoot, L"New", value);
    QTimer::singleShot(200, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}

namespace
{

// ---- Which file

TEST_F(BackingTest, DefaultsNameTheFile)
{
    m_config.initRegObject(nullptr, nullptr);
    ASSERT_NE(g_globalSettings, nullptr);
    EXPECT_EQ(configPath(), file("HALVIK/VORNA/2026"));
    EXPECT_EQ(configPath(), m_here.settingsFile());
}

TEST_F(BackingTest, ArgumentsAndIniVersionNameTheFile)
{
    writeIni("CompanyName=Other\nProductName=Thing\nVersion=2027\n");
    m_config.initRegObject(L"Acme", L"Draw");
    EXPECT_EQ(configPath(), file("Acme/Draw/2027"));
}

TEST_F(BackingTest, IniFileFillsWhatIsNotGiven)
{
    writeIni("CompanyName=Other\nProductName=Thing\nVersion=2027\n");
    EXPECT_EQ(m_here.run("make", {"-", "Draw"}).out, file("Other/Draw/2027").string() + "\n");
    EXPECT_EQ(m_here.run("make", {"Acme", "-"}).out, file("Acme/Thing/2027").string() + "\n");
}

TEST_F(BackingTest, EmptyArgumentsCountAsNull)
{
    writeIni("CompanyName=Other\nProductName=Thing\n");
    m_config.initRegObject(L"", L"");
    EXPECT_EQ(configPath(), file("Other/Thing/2026"));
}

TEST_F(BackingTest, NullArgumentsReadTheIniFile)
{
    writeIni("CompanyName=Other\nProductName=Thing\n");
    m_config.initRegObject(nullptr, nullptr);
    EXPECT_EQ(configPath(), file("Other/Thing/2026"));
}

TEST_F(BackingTest, EmptyIniTextsGiveTheDefaults)
{
    writeIni("CompanyName=\nProductName=\nVersion=\n");
    m_config.initRegObject(nullptr, nullptr);
    EXPECT_EQ(configPath(), file("HALVIK/VORNA/2026"));
}

TEST_F(BackingTest, IniTextsAreCutAt253Characters)
{
    writeIni("CompanyName=" + std::string(253, 'c') + "x\nProductName=" + std::string(200, 'p') +
             "\nVersion=" + std::string(253, 'v') + "xyz\n");
    m_config.initRegObject(nullptr, nullptr);
    EXPECT_EQ(configPath(), file(std::string(253, 'c') + "/" + std::string(200, 'p') + "/" + std::string(253, 'v')));
}

TEST_F(BackingTest, IniVersionNamesTheFileButNotTheKeys)
{
    m_here.installLanguage("en-US");
    writeIni("Version=2027\n");
    ASSERT_EQ(startWith({"Acme", "Draw", "en-US"}), 0U);
    flush();
    EXPECT_EQ(textInFile(file("Acme/Draw/2027"), "Software/Acme/Draw/2026/CurVer"), QStringLiteral("5$en-US"));
}

TEST_F(BackingTest, SecondCallWithOtherNamesKeepsObjectAndFile)
{
    m_config.initRegObject(L"Acme", L"Draw");
    const QSettings* const first = g_globalSettings;
    m_config.initRegObject(L"Other", L"Thing");
    EXPECT_EQ(g_globalSettings, first);
    EXPECT_EQ(configPath(), file("Acme/Draw/2026"));
}

TEST_F(BackingTest, CallAfterUninitMakesANewObjectWithItsOwnNames)
{
    m_config.initRegObject(L"Acme", L"Draw");
    m_config.uinitRegObject();
    EXPECT_EQ(g_globalSettings, nullptr);
    m_config.initRegObject(L"Other", L"Thing");
    EXPECT_EQ(configPath(), file("Other/Thing/2026"));
}

TEST_F(BackingTest, NothingIsWrittenByMakingIt)
{
    m_config.initRegObject(nullptr, nullptr);
    m_config.uinitRegObject();
    EXPECT_TRUE(fs::is_empty(m_here.configDir()));
}

TEST_F(BackingTest, FileIsNativeFormatOfTheUser)
{
    m_config.initRegObject(L"Acme", L"Draw");
    EXPECT_EQ(g_globalSettings->format(), QSettings::NativeFormat);
    EXPECT_EQ(g_globalSettings->scope(), QSettings::UserScope);
    EXPECT_EQ(g_globalSettings->organizationName(), QStringLiteral("Acme/Draw/2026"));
    EXPECT_EQ(g_globalSettings->applicationName(), QStringLiteral("Draw"));
    EXPECT_EQ(g_globalSettings->parent(), nullptr);
}

TEST_F(BackingTest, ConfigurationDirectoryOfTheEnvironmentIsUsed)
{
    m_here.installLanguage("en-US");
    const fs::path config = m_here.root() / "elsewhere";
    const ProcessResult result = m_here.run("startAndWrite", {}, {{"XDG_CONFIG_HOME", config}});
    EXPECT_EQ(result.out, "00\n");
    EXPECT_EQ(textInFile(config / "HALVIK/VORNA/2026/VORNA.conf", "Software/HALVIK/CurProduct"),
              QStringLiteral("5$VORNA"));
    EXPECT_TRUE(fs::is_empty(m_here.configDir()));
}

// ---- The lock file

TEST_F(BackingTest, LockFileLeftBehindIsRemovedAndTheSettingsFileStays)
{
    m_here.writeSetting("Some/Value", "5$kept");
    const std::string before = readFile(m_here.settingsFile());
    const fs::path lock = m_here.settingsFile().string() + ".lock";
    writeFile(lock, "12345\nhost\nmachine\n");
    m_config.initRegObject(nullptr, nullptr);
    EXPECT_FALSE(fs::exists(lock));
    EXPECT_EQ(readFile(m_here.settingsFile()), before);
}

TEST_F(BackingTest, LockFileIsThatOfTheNamesGiven)
{
    writeIni("Version=2027\n");
    writeFile(file("Acme/Draw/2027").string() + ".lock", "");
    writeFile(file("HALVIK/VORNA/2027").string() + ".lock", "");
    m_config.initRegObject(L"Acme", L"Draw");
    EXPECT_FALSE(fs::exists(file("Acme/Draw/2027").string() + ".lock"));
    EXPECT_TRUE(fs::exists(file("HALVIK/VORNA/2027").string() + ".lock"));
}

TEST_F(BackingTest, LockFileInTheEnvironmentsDirectoryIsRemoved)
{
    for (const std::string& config : {(m_here.root() / "elsewhere").string(), std::string("relative")}) {
        const Environment environment{{"XDG_CONFIG_HOME", config}};
        std::string path = m_here.run("make", {"Acme", "Draw"}, environment, m_here.home()).out;
        path.pop_back();
        const fs::path lock = (m_here.home() / path).string() + ".lock"; // stands alone where the path is absolute
        writeFile(lock, "");
        m_here.run("make", {"Acme", "Draw"}, environment, m_here.home());
        EXPECT_FALSE(fs::exists(lock)) << lock;
    }
}

TEST_F(BackingTest, SecondCallLeavesALockFile)
{
    m_config.initRegObject(nullptr, nullptr);
    const fs::path lock = m_here.settingsFile().string() + ".lock";
    writeFile(lock, "");
    m_config.initRegObject(nullptr, nullptr);
    EXPECT_TRUE(fs::exists(lock));
}

TEST_F(BackingTest, LockThatCannotBeRemovedIsIgnored)
{
    m_here.writeSetting("Some/Value", "5$kept");
    const fs::path inTheWay = m_here.settingsFile().string() + ".lock/file";
    writeFile(inTheWay, "");
    m_config.initRegObject(nullptr, nullptr);
    ASSERT_NE(g_globalSettings, nullptr);
    EXPECT_EQ(g_globalSettings->value(QStringLiteral("Some/Value")).toString(), QStringLiteral("5$kept"));
    EXPECT_TRUE(fs::exists(inTheWay));
}

TEST_F(BackingTest, LockThatCannotBeRemovedDoesNotHoldTheEndOfTheProcessUp)
{
    m_here.installLanguage("en-US");
    m_here.writeSetting("Some/Value", "5$kept");
    const std::string before = readFile(m_here.settingsFile());
    writeFile(m_here.settingsFile().string() + ".lock/file", "");
    const ProcessResult result = m_here.run("startAndWrite");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "00\n");
    EXPECT_EQ(readFile(m_here.settingsFile()), before);
}

TEST_F(BackingTest, LockThatCannotBeRemovedDoesNotHoldAnEventLoopUp)
{
    m_here.installLanguage("en-US");
    writeFile(m_here.settingsFile().string() + ".lock/file", "");
    const ProcessResult result = m_here.run("writeInEventLoop");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_FALSE(fs::exists(m_here.settingsFile()));
}

class HomeNameTest : public BackingTest, public testing::WithParamInterface<std::string>
{
};

INSTANTIATE_TEST_SUITE_P(Locales, HomeNameTest, testing::Values("C", "C.UTF-8", "de_DE.ISO-8859-1"),
                         [](const auto& locale) { return "Locale" + std::to_string(locale.index); });

// What is written back at the end of a process without an event loop lands where it was read from.
TEST_P(HomeNameTest, OutsideAsciiIsTheOneThatIsWrittenTo)
{
    m_here.installLanguage("en-US");
    const fs::path home = m_here.root() / "homes" / "h\xC3\xB6me \xE5\xAE\xB6";
    fs::create_directories(home);
    const Environment environment = {{"HOME", home}, {"LC_ALL", GetParam()}};
    ASSERT_EQ(m_here.run("startAndWrite", {}, environment).out, "00\n");
    EXPECT_TRUE(fs::exists(home / ".config/HALVIK/VORNA/2026/VORNA.conf"));
    EXPECT_EQ(std::distance(fs::directory_iterator(home.parent_path()), fs::directory_iterator()), 1);
}

TEST_F(BackingTest, LockFileLeftBehindDoesNotKeepValuesFromBeingWritten)
{
    m_here.installLanguage("en-US");
    writeFile(m_here.settingsFile().string() + ".lock", "1\nhost\nmachine\n");
    EXPECT_EQ(m_here.run("startAndWrite").out, "00\n");
    EXPECT_EQ(textInFile(m_here.settingsFile(), "Software/HALVIK/VORNA/2026/New"), QStringLiteral("5$new"));
}

// ---- The path told

class ConfigPathTest : public BackingTest
{
protected:
    static constexpr char kCanary = '\x7E';

    bool get(int capacity) { return getConfigPath(capacity, m_buffer.data()); }
    bool isUntouchedFrom(std::size_t position) const
    {
        return m_buffer.find_first_not_of(kCanary, position) == std::string::npos;
    }

    std::string m_buffer = std::string(8192, kCanary);
};

TEST_F(ConfigPathTest, WithoutASettingsObjectThereIsNone)
{
    EXPECT_FALSE(get(8192));
    EXPECT_TRUE(isUntouchedFrom(0));
}

TEST_F(ConfigPathTest, AfterUninitThereIsNone)
{
    m_config.initRegObject(nullptr, nullptr);
    m_config.uinitRegObject();
    EXPECT_FALSE(get(8192));
    EXPECT_TRUE(isUntouchedFrom(0));
}

TEST_F(ConfigPathTest, WithoutABufferItIsFalse)
{
    m_config.initRegObject(nullptr, nullptr);
    EXPECT_FALSE(getConfigPath(8192, nullptr));
}

TEST_F(ConfigPathTest, CapacityUpToTheLengthIsTooSmall)
{
    m_config.initRegObject(nullptr, nullptr);
    const int length = static_cast<int>(m_here.settingsFile().string().size());
    for (const int capacity : {std::numeric_limits<int>::min(), -1, 0, 1, length - 1, length})
        EXPECT_FALSE(get(capacity)) << capacity;
    EXPECT_TRUE(isUntouchedFrom(0));
}

TEST_F(ConfigPathTest, CapacityOneLargerThanTheLengthIsEnough)
{
    m_config.initRegObject(nullptr, nullptr);
    const std::string path = m_here.settingsFile();
    EXPECT_TRUE(get(static_cast<int>(path.size()) + 1));
    EXPECT_EQ(m_buffer.c_str(), path);
    EXPECT_TRUE(isUntouchedFrom(path.size() + 1));
}

TEST_F(ConfigPathTest, LargeCapacityWritesNoMoreThanThePath)
{
    m_config.initRegObject(nullptr, nullptr);
    EXPECT_TRUE(get(std::numeric_limits<int>::max()));
    EXPECT_TRUE(isUntouchedFrom(m_here.settingsFile().string().size() + 1));
}

TEST_F(ConfigPathTest, PathWithOtherLettersIsThatOfTheFile)
{
    m_here.installLanguage("en-US");
    ASSERT_EQ(startWith({"Größe", "図", "en-US"}), 0U);
    const std::string path = configPath();
    EXPECT_FALSE(fs::exists(path));
    flush();
    EXPECT_TRUE(fs::exists(path)) << path;
}

TEST_F(ConfigPathTest, PathWithOtherLettersIsKeptInAUtf8Locale)
{
    const ProcessResult result = m_here.run("make", {"Größe", "図"}, {{"LC_ALL", "C.UTF-8"}});
    EXPECT_EQ(result.out, m_here.settingsFile("Größe", "図").string() + "\n");
}

// ---- Directories and files that cannot be used

class BadPlaceTest : public BackingTest
{
protected:
    BadPlaceTest() { m_here.installLanguage("en-US"); }

    void expectStart(const ProcessResult& result) const
    {
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.out + result.err, "00\n");
    }
    QString newValue() const { return textInFile(m_here.settingsFile(), "Software/HALVIK/VORNA/2026/New"); }
    QString kept() const { return textInFile(m_here.settingsFile(), "Some/Value"); }
};

TEST_F(BadPlaceTest, MissingConfigurationDirectoryIsMade)
{
    fs::remove_all(m_here.configDir());
    expectStart(m_here.run("startAndWrite"));
    EXPECT_EQ(newValue(), QStringLiteral("5$new"));
}

TEST_F(BadPlaceTest, MissingHomeIsMade)
{
    fs::remove_all(m_here.home());
    expectStart(m_here.run("startAndWrite"));
    EXPECT_EQ(newValue(), QStringLiteral("5$new"));
}

TEST_F(BadPlaceTest, ReadOnlyConfigurationDirectoryLosesTheNewOnly)
{
    m_here.writeSetting("Some/Value", "5$kept");
    setMode(m_here.settingsFile(), 0444);
    setMode(m_here.settingsFile().parent_path(), 0555);
    const std::string before = readFile(m_here.settingsFile());
    expectStart(runUnprivileged(m_here, "startAndWrite"));
    EXPECT_EQ(readFile(m_here.settingsFile()), before);
}

TEST_F(BadPlaceTest, ReadOnlyConfigurationDirectoryWithAWritableFileLosesTheNewOnly)
{
    m_here.writeSetting("Some/Value", "5$kept");
    setMode(m_here.settingsFile().parent_path(), 0555);
    expectStart(runUnprivileged(m_here, "startAndWrite"));
    EXPECT_EQ(kept(), QStringLiteral("5$kept"));
}

TEST_F(BadPlaceTest, ReadOnlyHomeWithoutAConfigurationDirectoryIsNoFailure)
{
    fs::remove_all(m_here.configDir());
    setMode(m_here.home(), 0555);
    expectStart(runUnprivileged(m_here, "startAndWrite"));
    EXPECT_TRUE(fs::is_empty(m_here.home()));
}

TEST_F(BadPlaceTest, ReadOnlySettingsFileIsReadAndKept)
{
    m_here.writeSetting("Some/Value", "5$kept");
    m_here.writeSetting("Software/HALVIK/CurProduct", "5$VORNAM");
    setMode(m_here.settingsFile(), 0444);
    EXPECT_EQ(runUnprivileged(m_here, "start", {"-", "-", "en-US"}).out, "0 HALVIK/VORNAM/en-US/Default\n");
    EXPECT_EQ(kept(), QStringLiteral("5$kept"));
}

TEST_F(BadPlaceTest, UnreadableSettingsFileIsLeftAsItIs)
{
    m_here.writeSetting("Some/Value", "5$kept");
    const std::string before = readFile(m_here.settingsFile());
    setMode(m_here.settingsFile(), 0);
    expectStart(runUnprivileged(m_here, "startAndWrite"));
    setMode(m_here.settingsFile(), 0644);
    EXPECT_EQ(readFile(m_here.settingsFile()), before);
}

TEST_F(BadPlaceTest, DirectoryInTheFilesPlaceIsLeft)
{
    const fs::path inside = m_here.settingsFile() / "inside";
    writeFile(inside, "kept");
    expectStart(m_here.run("startAndWrite"));
    EXPECT_EQ(readFile(inside), "kept");
}

TEST_F(BadPlaceTest, FileInTheConfigurationDirectorysPlaceIsLeft)
{
    fs::remove_all(m_here.configDir());
    writeFile(m_here.configDir(), "kept");
    expectStart(m_here.run("startAndWrite"));
    EXPECT_EQ(readFile(m_here.configDir()), "kept");
}

TEST_F(BadPlaceTest, FileInAFoldersPlaceIsLeft)
{
    writeFile(m_here.configDir() / "HALVIK" / "VORNA", "kept");
    expectStart(m_here.run("startAndWrite"));
    EXPECT_EQ(readFile(m_here.configDir() / "HALVIK" / "VORNA"), "kept");
}

TEST_F(BadPlaceTest, NameTooLongForAFileLosesTheNewOnly)
{
    // The product's file needs five characters more than a file name may have.
    const ProcessResult result = m_here.run("start", {"-", std::string(254, 'p'), "en-US"});
    EXPECT_EQ(result.out, "0 HALVIK/" + std::string(254, 'p') + "/en-US/Default\n");
    EXPECT_EQ(result.err, "");
}

// ---- Damaged settings files

class DamagedFileTest : public BadPlaceTest
{
protected:
    void damage(const std::string& bytes) const { writeFile(m_here.settingsFile(), bytes); }
    void expectStartAndNewValue() const
    {
        expectStart(m_here.run("startAndWrite"));
        EXPECT_EQ(newValue(), QStringLiteral("5$new"));
        EXPECT_EQ(textInFile(m_here.settingsFile(), "Software/HALVIK/CurProduct"), QStringLiteral("5$VORNA"));
    }
};

TEST_F(DamagedFileTest, EmptyFileIsAFreshStart)
{
    damage("");
    expectStartAndNewValue();
}

TEST_F(DamagedFileTest, BinaryFileIsAFreshStart)
{
    std::string bytes;
    for (int i = 0; i < 100000; ++i)
        bytes += static_cast<char>((i * 7919 + i / 256) & 0xFF);
    damage(bytes);
    expectStartAndNewValue();
}

TEST_F(DamagedFileTest, FileOfZeroesIsAFreshStart)
{
    damage(std::string(4096, '\0'));
    expectStartAndNewValue();
}

TEST_F(DamagedFileTest, ValuesAroundDamagedLinesAreKept)
{
    damage("[Some]\nValue=5$kept\n\xFF\xFE\x01 no line at all\n[[[\nAfter=5$x\n=\n%%%=%zz\n[Later]\nValue=5$too\n");
    expectStartAndNewValue();
    EXPECT_EQ(kept(), QStringLiteral("5$kept"));
    EXPECT_EQ(textInFile(m_here.settingsFile(), "Later/Value"), QStringLiteral("5$too"));
}

TEST_F(DamagedFileTest, ValuesBeforeACutAreKept)
{
    damage("[Some]\nValue=5$kept\n\n[Software]\nHALVIK\\VORNA\\2026\\CurVer=\"5$en");
    expectStartAndNewValue();
    EXPECT_EQ(kept(), QStringLiteral("5$kept"));
}

TEST_F(DamagedFileTest, ValuesOfOtherKindsDoNotCount)
{
    damage("[Software]\nHALVIK\\CurProduct=a, b, c\nHALVIK\\VORNA\\2026\\CurVer=@Invalid()\n"
           "HALVIK\\VORNA\\2026\\en-US\\Profiles\\Profiles=@ByteArray()\n");
    EXPECT_EQ(m_here.run("start", {"-", "-", "en-US"}).out, "0 HALVIK/VORNA/en-US/Default\n");
}

TEST_F(DamagedFileTest, EveryCutOfARealFileStarts)
{
    ASSERT_EQ(m_here.run("startAndWrite").out, "00\n");
    const std::string whole = readFile(m_here.settingsFile());
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        damage(whole.substr(0, length));
        const ProcessResult result = m_here.run("start", {"-", "VORNA", "en-US", "Work"});
        EXPECT_EQ(result.out, "0 HALVIK/VORNA/en-US/Work\n") << length;
    }
}

TEST_F(DamagedFileTest, SettingsThatTheLibraryDoesNotKnowAreKept)
{
    damage("[General]\nTop=1\n\n[Some]\nValue=5$kept\nDeep\\Er\\Value=@ByteArray(x)\n\n[Other%20Name]\nList=a, b\n");
    const std::vector<std::string> before = keysInFile(m_here.settingsFile());
    expectStartAndNewValue();
    const std::vector<std::string> after = keysInFile(m_here.settingsFile());
    EXPECT_TRUE(std::includes(after.begin(), after.end(), before.begin(), before.end()));
    EXPECT_EQ(after.size(), before.size() + 4);
}

// ---- More than one process

TEST_F(BadPlaceTest, SecondProcessReadsWhatTheFirstWrote)
{
    ASSERT_EQ(m_here.run("startAndWrite").out, "00\n");
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    VornVariant value;
    EXPECT_EQ(m_config.getValue(VornaConfig::VersionRoot, L"New", value), 0U);
    const VornVariant::VarType type = value.type;
    EXPECT_EQ(type, VornVariant::kVarString);
}

TEST_F(BadPlaceTest, ValuesOfTwoProcessesAreMerged)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    VornVariant value;
    value.setString(L"ours", VornVariant::kVarString);
    ASSERT_EQ(m_config.setValue(VornaConfig::VersionRoot, L"Ours", value), 0U);
    ASSERT_EQ(m_here.run("startAndWrite").out, "00\n");
    flush();
    EXPECT_EQ(newValue(), QStringLiteral("5$new"));
    EXPECT_EQ(textInFile(m_here.settingsFile(), "Software/HALVIK/VORNA/2026/Ours"), QStringLiteral("5$ours"));
}

TEST_F(BadPlaceTest, StartThatChangesNothingLeavesTheFilesBytes)
{
    ASSERT_EQ(m_here.run("start", {"-", "-", "en-US"}).exitCode, 0);
    const std::string bytes = readFile(m_here.settingsFile());
    ASSERT_EQ(m_here.run("start", {"-", "-", "en-US"}).exitCode, 0);
    EXPECT_EQ(readFile(m_here.settingsFile()), bytes);
}

// ---- What others stored

TEST_F(BackingTest, AColourThatAnotherProgramStoredIsWrittenBackAsItWas)
{
    m_here.installLanguage("en-US");
    const std::string colour = R"(Colour=@Variant(\0\0\0\x43\x1\xff\xff\x12\x12\x34\x34VV\0\0))"
                               "\n";
    fs::create_directories(m_here.settingsFile().parent_path());
    std::ofstream(m_here.settingsFile()) << "[Other]\n" << colour;
    EXPECT_EQ(m_here.run("startAndWrite").out, "00\n");
    EXPECT_NE(readFile(m_here.settingsFile()).find(colour), std::string::npos) << readFile(m_here.settingsFile());
    EXPECT_EQ(textInFile(m_here.settingsFile(), "Software/HALVIK/VORNA/2026/New"), QStringLiteral("5$new"));
}

TEST_F(BackingTest, AColourIsFoundWhereverItStandsInTheFile)
{
    m_here.installLanguage("en-US");
    const std::string colour = R"(Colour=@Variant(\0\0\0\x43\x1\xff\xff\x12\x12\x34\x34VV\0\0))"
                               "\n";
    const std::string before = "[Other]\nA=";
    // The file is looked through in pieces of 65536 bytes; the mark stands before, across and behind the end of one.
    for (const std::size_t mark : {100U, 65526U, 65527U, 65528U, 65529U, 65532U, 65535U, 65536U, 131056U, 131060U}) {
        const std::string filling(mark - before.size() - std::string("\nColour=").size(), 'x');
        writeFile(m_here.settingsFile(), before + filling + "\n" + colour);
        EXPECT_EQ(m_here.run("startAndWrite").out, "00\n");
        EXPECT_NE(readFile(m_here.settingsFile()).find(colour), std::string::npos) << mark;
    }
}

TEST_F(BackingTest, APictureThatAnotherProgramStoredEndsNoStartAndStays)
{
    m_here.installLanguage("en-US");
    const std::string bytes = "[Other]\nColour=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff\\x12\\x12\\x34\\x34VV\\0\\0)\n"
                              "Picture=@Variant(\\0\\0\\0\\x41\\0\\0\\0\\x1\\x89PNG)\n\n"
                              "[Software]\nHALVIK\\VORNA\\2026\\CurVer=5$en-US\n";
    writeFile(m_here.settingsFile(), bytes);
    const ProcessResult result = m_here.run("startAndWrite");
    EXPECT_EQ(result.out, "00\n") << result.signal << result.err;
    EXPECT_EQ(readFile(m_here.settingsFile()), bytes);
}

TEST_F(BackingTest, AValueThatAsksForAllTheMemoryEndsNoStartAndStays)
{
    m_here.installLanguage("en-US");
    for (const char* const type : {"\\v", "\\t"}) { // lists of texts, of values
        const std::string bytes = std::string("[Software]\nHALVIK\\VORNA\\2026\\Other=@Variant(\\0\\0\\0") + type +
                                  "2222)\nHALVIK\\VORNA\\2026\\CurVer=5$en-US\n";
        writeFile(m_here.settingsFile(), bytes);
        const ProcessResult result = m_here.run("startAndWrite");
        EXPECT_EQ(result.out, "00\n") << result.signal << result.err;
        EXPECT_EQ(readFile(m_here.settingsFile()), bytes);
    }
}

// ---- How texts are encoded

class MarkedFileTest : public BackingTest
{
protected:
    MarkedFileTest() { m_here.installLanguage("en-US"); }

    static constexpr char kMark[] = "\xEF\xBB\xBF";
    /// A start that writes leaves the texts as another process reads them.
    void expectTextsStay(const Environment& environment = {}) const
    {
        EXPECT_EQ(m_here.run("startAndWrite", {}, environment).out, "00\n");
        const fs::path file = m_here.settingsFile();
        EXPECT_EQ(textInFile(file, "Software/HALVIK/VORNA/2026/New"), QStringLiteral("5$new"));
        EXPECT_EQ(textInFile(file, "Mine/Euro"), QString::fromUtf8("5$\u00e4\u20ac"));
        EXPECT_EQ(textInFile(file, "Mine/Smile"), QString::fromUtf8("5$\U0001F600"));
    }
};

TEST_F(MarkedFileTest, TextsOfAFileWithAByteOrderMarkStayWhatTheyAre)
{
    writeFile(m_here.settingsFile(), std::string(kMark) + "[Mine]\nEuro=5$\\xe4\\x20ac\nSmile=5$\U0001F600\n");
    expectTextsStay();
}

TEST_F(MarkedFileTest, TextsOfTheUserStayBesideDefaultsWithAByteOrderMark)
{
    writeFile(m_here.settingsFile(), "[Mine]\nEuro=5$\\xe4\\x20ac\nSmile=5$\\xd83d\\xde00\n");
    writeFile(m_here.root() / "shared/HALVIK/VORNA/2026/VORNA.conf", std::string(kMark) + "[Shared]\na=5$x\n");
    expectTextsStay({{"XDG_CONFIG_DIRS", m_here.root() / "shared"}});
}

} // namespace
