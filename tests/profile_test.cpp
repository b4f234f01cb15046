// Resolution of the user's profile.
#include <algorithm>
#include <csignal>

#include <QtCore/QSettings>

#include <gtest/gtest.h>

#include "start_words.h"

using namespace vrtest;

namespace
{

constexpr char kProfilesGroup[] = "Software/HALVIK/VORNA/2026/en-US/Profiles";
constexpr char kCurrentProfile[] = "Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles";
constexpr wchar_t kCanary = L'\u2620';

QString recordedOnDisk()
{
    return textInFile(Installation::here().settingsFile(), kCurrentProfile);
}

/// A buffer for a profile's name, with canaries behind it.
class NameBuffer
{
public:
    wchar_t* data() { return m_room.data(); }
    std::string text() const { return utf8(m_room.substr(0, m_room.find(L'\0'))); }
    bool isUntouched() const { return isUntouchedFrom(0); }
    bool areGuardsWhole() const { return isUntouchedFrom(kVornPathCapacity); }

private:
    bool isUntouchedFrom(std::size_t position) const
    {
        return m_room.find_first_not_of(kCanary, position) == std::wstring::npos;
    }

    std::wstring m_room = std::wstring(kVornPathCapacity + 16, kCanary);
};

std::string profile()
{
    const wchar_t* const name = vornConfig()->profileName();
    return name ? utf8(name) : "(null)";
}

/// Before any start.
class UnstartedProfileTest : public testing::Test
{
protected:
    UnstartedProfileTest() : m_here(Installation::here()), m_config(*vornConfig()) { m_here.installLanguage("en-US"); }

    unsigned int start(const std::string& profileName = "-") const
    {
        return startWith({"-", "-", "en-US", profileName});
    }
    void record(const std::string& text) const { m_here.writeSetting(kCurrentProfile, text); }
    QString recordedNow() const
    {
        flush();
        return recordedOnDisk();
    }

    const Installation& m_here;
    VornaConfig& m_config;
};

/// After a start whose profile was refused, so that there is no profile yet and nothing is recorded that was not.
class ProfileTest : public UnstartedProfileTest
{
protected:
    void startWithoutProfile() const { ASSERT_EQ(start("refused/name"), 8U); }
    /// That this record gives that name, and what is recorded afterwards.
    void expectRead(const char* recorded, const char* expected, const char* after) const
    {
        g_globalSettings->setValue(QString::fromLatin1(kCurrentProfile), QString::fromLatin1(recorded));
        NameBuffer name;
        EXPECT_EQ(m_config.getCurrentProfileNameFromReg(name.data(), nullptr), 0U) << recorded;
        EXPECT_EQ(name.text(), expected) << recorded;
        EXPECT_EQ(recordedNow(), QString::fromLatin1(after)) << recorded;
    }
    void startWithRecorded(const std::string& text) const
    {
        record(text);
        startWithoutProfile();
    }
};

} // namespace

/// Starts without a profile and hands the argument to `initProfileNamePart`; prints status and profile.
PROBE(part)
{
    startWith({"-", "-", "en-US", "refused/name"});
    const unsigned int status = vornConfig()->initProfileNamePart(wide(arguments.at(0)).c_str());
    std::cout << status << " " << profile() << "\n";
    return 0;
}

/// Prints the length of the recorded profile's name.
PROBE(recordedLength)
{
    startWith({"-", "-", "en-US", "refused/name"});
    NameBuffer name;
    const unsigned int status = vornConfig()->getCurrentProfileNameFromReg(name.data(), nullptr);
    std::cout << status << " " << name.text().size() << " " << name.areGuardsWhole() << "\n";
    return 0;
}

namespace
{

// ---- Without a settings object

/// The statuses of the three ways to hand in a name.
std::vector<unsigned int> statusesOf(const wchar_t* name)
{
    VornaConfig& config = *vornConfig();
    return {config.initProfileName(name), config.initProfileNamePart(name), config.updateProfileName(name)};
}

const std::vector<unsigned int> kAll0 = {0, 0, 0};
const std::vector<unsigned int> kAll5 = {5, 5, 5};

TEST_F(UnstartedProfileTest, NullAndEmptyNamesGive0EverywhereAndDoNothing)
{
    EXPECT_EQ(statusesOf(nullptr), kAll0);
    EXPECT_EQ(statusesOf(L""), kAll0);
    EXPECT_EQ(m_config.profileName(), nullptr);
}

TEST_F(UnstartedProfileTest, NamesGive5WithoutASettingsObject)
{
    EXPECT_EQ(statusesOf(L"Work"), kAll5);
    EXPECT_EQ(m_config.profileName(), nullptr);
}

TEST_F(UnstartedProfileTest, PathGives8AlsoWithoutASettingsObject)
{
    EXPECT_EQ(m_config.initProfileName(L"a/b"), 8U);
}

TEST_F(UnstartedProfileTest, RecordedNameGives5WithoutASettingsObjectAndIsUntouched)
{
    NameBuffer name;
    EXPECT_EQ(m_config.getCurrentProfileNameFromReg(name.data(), nullptr), 5U);
    EXPECT_EQ(m_config.getCurrentProfileNameFromReg(name.data(), L"Some/Group"), 5U);
    EXPECT_TRUE(name.isUntouched());
}

TEST_F(UnstartedProfileTest, RecordedNameGives7AndIsEmptyWithoutAProfilesRoot)
{
    m_config.initRegObject(nullptr, nullptr);
    NameBuffer name;
    EXPECT_EQ(m_config.getCurrentProfileNameFromReg(name.data(), nullptr), 7U);
    EXPECT_EQ(name.text(), "");
    EXPECT_EQ(m_config.getCurrentProfileNameFromReg(name.data(), L""), 7U);
}

// ---- The bare-name test

TEST_F(ProfileTest, PathsGive8AndSetNothing)
{
    startWithoutProfile();
    for (const wchar_t* const path : {L"a/b", L"/b", L"a/", L"./b", L"a/b/c.ARG", L"a\\b", L"../b", L"/"})
        EXPECT_EQ(m_config.initProfileName(path), 8U) << utf8(path);
    EXPECT_EQ(m_config.profileName(), nullptr);
}

TEST_F(ProfileTest, VeryLongPathsGive8)
{
    startWithoutProfile();
    EXPECT_EQ(m_config.initProfileName((wideOf(1023) + L"/b").c_str()), 8U);
    EXPECT_EQ(m_config.initProfileName((wideOf(100000) + L"/b").c_str()), 8U);
}

TEST_F(ProfileTest, VeryLongNamesAndExtensionsAreTaken)
{
    startWithoutProfile();
    for (const std::wstring& name : {wideOf(256), wideOf(1023), L"a." + wideOf(300), wideOf(5000)}) {
        EXPECT_EQ(m_config.initProfileName(name.c_str()), 0U) << name.size();
        EXPECT_EQ(m_config.profileName(), name);
    }
}

TEST_F(ProfileTest, NameOfAProfileFileGives8)
{
    m_here.write("Work.ARG", "");
    EXPECT_EQ(start("Work"), 8U);
    EXPECT_EQ(profile(), "(null)");
}

TEST_F(ProfileTest, ExtensionOfTheProfileFileMayHaveAnyCase)
{
    startWithoutProfile();
    for (const char* const extension : {"ARG", "arg", "Arg", "aRG", "ARg", "aRg", "arG", "ArG"}) {
        const std::string file = std::string("Work.") + extension;
        m_here.write(file, "");
        for (const wchar_t* const name : {L"Work", L"Work.ARG", L"Work.arg", L"Work.aRg"})
            EXPECT_EQ(m_config.initProfileName(name), 8U) << file << " " << utf8(name);
        std::filesystem::remove(m_here.programDir() / file);
    }
}

TEST_F(ProfileTest, NameWithAnotherExtensionIsTakenWhole)
{
    startWithoutProfile();
    m_here.write("Work.ARG", "");
    m_here.write("Other.txt", "");
    m_here.write("Third.txt.ARG", "");
    EXPECT_EQ(m_config.initProfileName(L"Work.txt"), 0U);
    EXPECT_EQ(m_config.initProfileName(L"Other.txt"), 0U);
    EXPECT_EQ(m_config.initProfileName(L"Third.txt"), 8U);
    EXPECT_EQ(m_config.initProfileName(L"Third"), 0U);
}

TEST_F(ProfileTest, ProfileFileElsewhereDoesNotCount)
{
    m_here.write("profiles/Work.ARG", "");
    EXPECT_EQ(start("Work"), 0U);
    EXPECT_EQ(profile(), "Work");
}

TEST_F(ProfileTest, NameWithTheExtensionButWithoutAFileIsTaken)
{
    EXPECT_EQ(start("Work.ARG"), 0U);
    EXPECT_EQ(profile(), "Work.ARG");
}

// ---- Taking and recording a name

TEST_F(ProfileTest, RecordedNameGivenAgainLeavesTheStore)
{
    record("5$Default");
    EXPECT_EQ(start("Default"), 0U);
    EXPECT_EQ(profile(), "Default");
    EXPECT_EQ(recordedNow(), QStringLiteral("5$Default"));
}

TEST_F(ProfileTest, OtherNameReplacesTheRecordedOne)
{
    startWithRecorded("5$Default");
    EXPECT_EQ(m_config.initProfileNamePart(L"Work"), 0U);
    EXPECT_EQ(profile(), "Work");
    EXPECT_EQ(recordedNow(), QStringLiteral("5$Work"));
}

TEST_F(ProfileTest, NameInAnotherCaseIsTakenButNotRecorded)
{
    startWithRecorded("5$DEFAULT");
    EXPECT_EQ(m_config.initProfileNamePart(L"Default"), 0U);
    EXPECT_EQ(profile(), "Default");
    EXPECT_EQ(recordedNow(), QStringLiteral("5$DEFAULT"));
}

TEST_F(ProfileTest, UnmarkedRecordedNameCountsAsMarked)
{
    startWithRecorded("Old");
    EXPECT_EQ(m_config.initProfileNamePart(L"Work"), 0U);
    EXPECT_EQ(recordedNow(), QStringLiteral("5$Work"));
}

TEST_F(ProfileTest, UnmarkedRecordedNameGivenAgainStaysUnmarked)
{
    startWithRecorded("Work");
    EXPECT_EQ(m_config.initProfileNamePart(L"work"), 0U);
    EXPECT_EQ(recordedNow(), QStringLiteral("Work"));
}

TEST_F(ProfileTest, FirstDollarDecidesOnTheMark)
{
    startWithRecorded("$5$Work");
    EXPECT_EQ(m_config.initProfileNamePart(L"$5$Work"), 0U);
    EXPECT_EQ(recordedNow(), QStringLiteral("$5$Work")) << "the whole text is the name";
    EXPECT_EQ(m_config.initProfileNamePart(L"Work"), 0U);
    EXPECT_EQ(recordedNow(), QStringLiteral("5$Work"));
}

TEST_F(ProfileTest, WithoutARecordedNameTheArgumentIsNotRecorded)
{
    startWithoutProfile();
    EXPECT_EQ(m_config.initProfileNamePart(L"Work"), 0U);
    EXPECT_EQ(profile(), "Work");
    EXPECT_TRUE(recordedNow().isNull());
}

TEST_F(ProfileTest, RecordedNameWithAnotherMarkIsLeft)
{
    startWithRecorded("7$Old");
    EXPECT_EQ(m_config.initProfileNamePart(L"Work"), 0U);
    EXPECT_EQ(profile(), "Work");
    EXPECT_EQ(recordedNow(), QStringLiteral("7$Old"));
}

TEST_F(ProfileTest, EmptyRecordedNameIsLeft)
{
    startWithRecorded("5$");
    EXPECT_EQ(m_config.initProfileNamePart(L"Work"), 0U);
    EXPECT_EQ(recordedNow(), QStringLiteral("5$"));
}

TEST_F(ProfileTest, StartWithAProfileIsFoundByTheNextProcess)
{
    ASSERT_EQ(m_here.run("start", {"-", "-", "en-US"}).out, "0 HALVIK/VORNA/en-US/Default\n");
    ASSERT_EQ(m_here.run("start", {"-", "-", "en-US", "Work"}).out, "0 HALVIK/VORNA/en-US/Work\n");
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$Work"));
    EXPECT_EQ(m_here.run("start").out, "0 HALVIK/VORNA/en-US/Work\n");
}

TEST_F(ProfileTest, ProfileOfOneLanguageIsNotThatOfAnother)
{
    m_here.installLanguage("fr-FR");
    record("5$Work");
    EXPECT_EQ(m_here.run("start", {"-", "-", "fr-FR"}).out, "0 HALVIK/VORNA/fr-FR/Default\n");
    EXPECT_EQ(m_here.run("start", {"-", "-", "en-US"}).out, "0 HALVIK/VORNA/en-US/Work\n");
}

TEST_F(ProfileTest, RecordedNameOf1023CharactersIsCompared)
{
    record("5$" + std::string(1023, 'p'));
    EXPECT_EQ(m_here.run("part", {"Work"}).out, "0 Work\n");
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$Work"));
}

TEST_F(ProfileTest, RecordedNameOf1024CharactersEndsTheProcess)
{
    record("5$" + std::string(1024, 'p'));
    const std::string before = readFile(m_here.settingsFile());
    const ProcessResult result = m_here.run("part", {"Work"});
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_EQ(readFile(m_here.settingsFile()), before);
}

TEST_F(ProfileTest, TooLongRecordedNameWithAnotherMarkIsNotRead)
{
    record("7$" + std::string(1024, 'p'));
    EXPECT_EQ(m_here.run("part", {"Work"}).out, "0 Work\n");
}

// ---- A change later

TEST_F(ProfileTest, UpdateChangesProfileAndRecord)
{
    ASSERT_EQ(start(), 0U);
    EXPECT_EQ(m_config.updateProfileName(L"Work"), 0U);
    EXPECT_EQ(profile(), "Work");
    EXPECT_EQ(recordedNow(), QStringLiteral("5$Work"));
    EXPECT_EQ(rootText(VornaConfig::CurrentProfileRoot), std::string(kProfilesGroup) + "/Work");
}

TEST_F(ProfileTest, UpdateMakesNoBareNameTest)
{
    m_here.write("Work.ARG", "");
    ASSERT_EQ(start(), 0U);
    EXPECT_EQ(m_config.updateProfileName(L"Work"), 0U);
    EXPECT_EQ(m_config.updateProfileName(L"a/b"), 0U);
    EXPECT_EQ(profile(), "a/b");
}

TEST_F(ProfileTest, UpdateWithNullOrEmptyLeavesTheProfile)
{
    ASSERT_EQ(start("Work"), 0U);
    EXPECT_EQ(m_config.updateProfileName(nullptr), 0U);
    EXPECT_EQ(m_config.updateProfileName(L""), 0U);
    EXPECT_EQ(profile(), "Work");
}

TEST_F(ProfileTest, UpdateWithoutASettingsObjectGives5AndLeavesTheProfile)
{
    ASSERT_EQ(start("Work"), 0U);
    m_config.uinitRegObject();
    EXPECT_EQ(m_config.updateProfileName(L"Other"), 5U);
    EXPECT_EQ(profile(), "Work");
}

TEST_F(ProfileTest, FormerNamesHandedOutStayReadable)
{
    ASSERT_EQ(start("Work"), 0U);
    const wchar_t* const former = m_config.profileName();
    ASSERT_EQ(m_config.updateProfileName(L"Other"), 0U);
    EXPECT_STREQ(former, L"Work");
}

TEST_F(ProfileTest, ProfileMayBeUpdatedWithItsOwnText)
{
    ASSERT_EQ(start("Work"), 0U);
    EXPECT_EQ(m_config.updateProfileName(m_config.profileName()), 0U);
    EXPECT_EQ(profile(), "Work");
}

// ---- The recorded name

TEST_F(ProfileTest, EmptyGroupYieldsDefaultAndRecordsIt)
{
    startWithoutProfile();
    NameBuffer name;
    EXPECT_EQ(m_config.getCurrentProfileNameFromReg(name.data(), nullptr), 0U);
    EXPECT_EQ(name.text(), "Default");
    EXPECT_EQ(recordedNow(), QStringLiteral("5$Default"));
    EXPECT_EQ(m_config.profileName(), nullptr) << "it only reads";
}

TEST_F(ProfileTest, RecordedNamesAreRead)
{
    startWithoutProfile();
    expectRead("5$Work", "Work", "5$Work");
    expectRead("7$Work", "Work", "7$Work");
    expectRead("x$Work", "Work", "x$Work");
    expectRead("Work", "Work", "Work");
    expectRead("55$Work", "55$Work", "55$Work");
    expectRead("$5$Work", "$5$Work", "$5$Work");
    expectRead("5$A$B", "A$B", "5$A$B");
    expectRead("5$", "Default", "5$Default");
    expectRead("7$", "Default", "5$Default");
    expectRead("", "Default", "5$Default");
}

TEST_F(ProfileTest, EmptyGroupNameMeansTheProfilesRoot)
{
    startWithRecorded("5$Work");
    NameBuffer name;
    EXPECT_EQ(m_config.getCurrentProfileNameFromReg(name.data(), L""), 0U);
    EXPECT_EQ(name.text(), "Work");
}

TEST_F(ProfileTest, OtherGroupsAreReadAndRecordedIn)
{
    startWithRecorded("5$Work");
    NameBuffer name;
    EXPECT_EQ(m_config.getCurrentProfileNameFromReg(name.data(), L"Other/Group"), 0U);
    EXPECT_EQ(name.text(), "Default");
    flush();
    EXPECT_EQ(textInFile(m_here.settingsFile(), "Other/Group/Profiles"), QStringLiteral("5$Default"));
    EXPECT_EQ(recordedOnDisk(), QStringLiteral("5$Work"));
}

TEST_F(ProfileTest, RecordedNameOf1023CharactersIsRead)
{
    record("5$" + std::string(1023, 'p'));
    EXPECT_EQ(m_here.run("recordedLength").out, "0 1023 1\n");
}

TEST_F(ProfileTest, RecordedNameOf1024CharactersEndsTheProcessWhenRead)
{
    record("7$" + std::string(1024, 'p'));
    const ProcessResult result = m_here.run("recordedLength");
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
}

// ---- The current profile's root

TEST_F(ProfileTest, RootOfTheCurrentProfileRecordsAndAdoptsDefault)
{
    startWithoutProfile();
    EXPECT_EQ(rootText(VornaConfig::CurrentProfileRoot), std::string(kProfilesGroup) + "/Default");
    EXPECT_EQ(profile(), "Default");
    EXPECT_EQ(recordedNow(), QStringLiteral("5$Default"));
}

TEST_F(ProfileTest, RootOfTheCurrentProfileAdoptsTheRecordedOne)
{
    startWithRecorded("5$Work");
    EXPECT_EQ(rootText(VornaConfig::CurrentProfileRoot), std::string(kProfilesGroup) + "/Work");
    EXPECT_EQ(profile(), "Work");
}

TEST_F(ProfileTest, RootOfTheCurrentProfileAdoptsNamesLongerThan128Characters)
{
    startWithRecorded("5$" + std::string(500, 'p'));
    EXPECT_EQ(rootText(VornaConfig::CurrentProfileRoot), std::string(kProfilesGroup) + "/" + std::string(500, 'p'));
}

TEST_F(ProfileTest, StartWithoutProfileAdoptsTheRecordedOneWhateverItsMark)
{
    record("7$Work");
    EXPECT_EQ(start(), 0U);
    EXPECT_EQ(profile(), "Work");
    EXPECT_EQ(recordedNow(), QStringLiteral("7$Work"));
}

} // namespace
