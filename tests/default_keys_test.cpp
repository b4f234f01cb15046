// The keys that the first run writes into the settings tree.
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QSettings>

#include "VrPlatformBase/VrPlatformBase.h"
#include "VrUInfo/FirstRun.h"
#include "VrUInfo/Lookups.h"
#include "VrUInfo/VornaConfig.h"
#include "scarce_memory.h"
#include "small_library.h"
#include "start_words.h"
#include "started_store.h"
#include "unprivileged.h"

using namespace vrtest;

namespace
{

constexpr unsigned int kMissing = 5;
const std::string kCompany = "Software/HALVIK";
const std::string kProduct = kCompany + "/VORNA";
const std::string kVersion = kProduct + "/2026";
const std::string kLanguage = kVersion + "/en-US";
const std::string kProfiles = kLanguage + "/Profiles";
const std::string kFlag = kLanguage + "/AutoMigrate";

/// A text as the settings file holds it.
QString stored(const std::string& text)
{
    return text == "-" ? QString() : QString::fromStdString("5$" + text);
}

class DefaultKeys : public StartedStore
{
protected:
    static void put(const std::string& key, const std::string& text) { putText(wide(key), text); }
    static void putEarlierRelease() { put(kProduct + "/2025/en-US/Settings/Value", "1$1"); }
    /// What the flag is after a first run on this one.
    static std::string flagAfter(const std::string& text)
    {
        put(kFlag, text);
        EXPECT_EQ(CreateConfigReg(), 0U);
        return writtenText(kFlag).toStdString();
    }
    /// What the host does that wants all of a product's keys gone.
    static void removeProduct() { ASSERT_EQ(config().removeItem(VornaConfig::ProductNameRoot, nullptr), 0U); }
};

/// What an action threw; null when it threw nothing.
std::unique_ptr<VrErrorStatus> raisedBy(const std::function<void()>& action)
{
    try {
        action();
    } catch (VrErrorStatus* error) { // NOLINT(misc-throw-by-value-catch-by-reference) it is thrown so
        return std::unique_ptr<VrErrorStatus>(error);
    }
    return nullptr;
}

/// Notes what this process raises.
class Recorder final : public VrCrashRecorder
{
public:
    Recorder() { vornSetCrashRecorder(this); }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    ~Recorder() { vornSetCrashRecorder(nullptr); }
    void recordError(VrErrorStatus* error) override { m_errors.push_back(error); }
    bool wasToldOf(const VrErrorStatus* error) const { return m_errors.size() == 1 && m_errors.front() == error; }

private:
    std::vector<VrErrorStatus*> m_errors;
};

/// Prints what the first run raised: status, message and line.
void printRaised(const Recorder& recorder)
{
    const auto error = raisedBy([] { CreateConfigReg(); });
    if (!error) {
        std::cout << "nothing";
        return;
    }
    std::cout << error->status() << " " << utf8(error->message()) << " " << error->line()
              << (recorder.wasToldOf(error.get()) ? " recorded" : " not recorded");
}

} // namespace

/// The first run of a product whose keys were all removed before; prints its status.
PROBE(firstRunWithoutKeys)
{
    startWith({"-", arguments.at(0), "en-US"});
    vornConfig()->removeItem(VornaConfig::ProductNameRoot, nullptr);
    std::cout << CreateConfigReg();
    return 0;
}

/// The first run of a product after a normal start; prints its status.
PROBE(firstRun)
{
    startWith(arguments);
    std::cout << CreateConfigReg();
    return 0;
}

/// The first run on a flag that is too large to be read.
PROBE(firstRunOnAHugeFlag)
{
    const Recorder recorder;
    start();
    const std::string key = kFlag;
    {
        const HugePattern units(kTooMuch / 2, 0x00780078); // each UTF-16 unit becomes a wide character
        const auto count = static_cast<int>(kTooMuch / 4);
        g_globalSettings->setValue(QString::fromStdString(key),
                                   QString::fromRawData(static_cast<const QChar*>(units.data()), count));
        makeMemoryScarce();
        printRaised(recorder);
        g_globalSettings->remove(QString::fromStdString(key));
    }
    return 0;
}

/// The first run in a process that has no memory for the flag's value.
PROBE(firstRunWithoutMemoryForTheFlag)
{
    const Recorder recorder;
    start();
    setenv("VR_REFUSED_BLOCK", "12", 1);
    printRaised(recorder);
    unsetenv("VR_REFUSED_BLOCK");
    flush();
    return 0;
}

namespace
{

// What is written where.

TEST_F(DefaultKeys, AreWrittenIntoAFreshTree)
{
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kProduct + "/CurVer"), stored("2026"));
    EXPECT_EQ(writtenText(kVersion + "/CurVer"), stored("en-US"));
    EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored("Default"));
    EXPECT_EQ(writtenText(kFlag), QStringLiteral("1$2"));
}

TEST_F(DefaultKeys, AreTheseAndNoOthers)
{
    const std::vector<std::string> before = keysInStore();
    ASSERT_EQ(CreateConfigReg(), 0U);
    std::vector<std::string> expected = before;
    for (const std::string& key : {kProduct + "/CurVer", kFlag})
        expected.push_back(key);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(keysInStore(), expected);
}

TEST_F(DefaultKeys, ReplaceWhatStandsThere)
{
    for (const std::string& key : {kProduct + "/CurVer", kVersion + "/CurVer", kProfiles + "/Profiles"})
        put(key, "1$77");
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kProduct + "/CurVer"), stored("2026"));
    EXPECT_EQ(writtenText(kVersion + "/CurVer"), stored("en-US"));
    EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored("Default"));
}

TEST_F(DefaultKeys, ASecondRunChangesNothing)
{
    ASSERT_EQ(CreateConfigReg(), 0U);
    flush();
    const std::string file = readFile(Installation::here().settingsFile());
    ASSERT_EQ(CreateConfigReg(), 0U);
    flush();
    EXPECT_EQ(readFile(Installation::here().settingsFile()), file);
}

TEST_F(DefaultKeys, LeaveOtherKeysAlone)
{
    put(kLanguage + "/Other", "5$kept");
    put("Software/Elsewhere/CurVer", "5$kept");
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kLanguage + "/Other"), stored("kept"));
    EXPECT_EQ(writtenText("Software/Elsewhere/CurVer"), stored("kept"));
}

// The company's current product.

TEST_F(DefaultKeys, TheCompanysIsNotWrittenAfterANormalStart)
{
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_TRUE(writtenText(kCompany + "/CurVer").isNull());
}

TEST_F(DefaultKeys, TheCompanysNamesTheProductOfANewTree)
{
    removeProduct();
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kCompany + "/CurVer"), stored("VORNA"));
    EXPECT_EQ(writtenText(kProduct + "/CurVer"), stored("2026"));
    EXPECT_EQ(writtenText(kVersion + "/CurVer"), stored("en-US"));
    EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored("Default"));
    EXPECT_EQ(writtenText(kFlag), QStringLiteral("1$2"));
}

TEST_F(DefaultKeys, TheCompanysIsNotWrittenAgain)
{
    removeProduct();
    ASSERT_EQ(CreateConfigReg(), 0U);
    put(kCompany + "/CurVer", "5$mark");
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kCompany + "/CurVer"), stored("mark"));
}

TEST_F(DefaultKeys, TheCompanysIsNotWrittenWhereOneDeepValueIsLeft)
{
    removeProduct();
    put(kProduct + "/2020/de-DE/Settings/Value", "1$1");
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_TRUE(writtenText(kCompany + "/CurVer").isNull());
}

TEST(DefaultKeysOfAnotherProduct, NameTheNewProductInTheSameTree)
{
    const Installation program;
    program.installLanguage("en-US");
    EXPECT_EQ(program.run("firstRunWithoutKeys", {"VORNA"}).out, "0");
    EXPECT_EQ(textInFile(program.settingsFile(), "Software/HALVIK/CurVer"), stored("VORNA"));
    program.writeSetting("Software/HALVIK/CurProduct", "5$VORNAM");
    EXPECT_EQ(program.run("firstRunWithoutKeys", {"-"}).out, "0");
    EXPECT_EQ(textInFile(program.settingsFile(), "Software/HALVIK/CurVer"), stored("VORNAM"));
    EXPECT_EQ(textInFile(program.settingsFile(), "Software/HALVIK/VORNAM/CurVer"), stored("2026"));
    EXPECT_EQ(textInFile(program.settingsFile(), "Software/HALVIK/VORNA/CurVer"), stored("2026"));
}

TEST(DefaultKeysOfAnotherCompany, StandBelowItsName)
{
    const Installation program;
    program.installLanguage("de-DE");
    EXPECT_EQ(program.run("firstRun", {"Größe", "Drafter", "de-DE", "Mine"}).out, "0");
    const auto written = [file = program.settingsFile("Größe", "Drafter")](const std::string& key) {
        return textInFile(file, "Software/Größe/Drafter" + key);
    };
    EXPECT_EQ(written("/CurVer"), stored("2026"));
    EXPECT_EQ(written("/2026/CurVer"), stored("de-DE"));
    EXPECT_EQ(written("/2026/de-DE/Profiles/Profiles"), stored("Mine"));
    EXPECT_EQ(written("/2026/de-DE/AutoMigrate"), QStringLiteral("1$2"));
}

// The current language.

TEST_F(DefaultKeys, TheLanguageIsTheCurrentOne)
{
    Installation::here().installLanguage("ja-JP");
    ASSERT_EQ(config().initLanguageName(L"ja-JP"), 0U);
    put(kVersion + "/CurVer", "5$en-US");
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kVersion + "/CurVer"), stored("ja-JP"));
    EXPECT_EQ(writtenText(kVersion + "/ja-JP/AutoMigrate"), QStringLiteral("1$2"));
    EXPECT_TRUE(writtenText(kFlag).isNull());
}

// The current profile.

TEST_F(DefaultKeys, TheProfileIsTheOneOfTheProcess)
{
    for (const std::wstring& name : {std::wstring(L"Größe 😀"), wideOf(1022), wideOf(1023)}) {
        ASSERT_EQ(config().updateProfileName(name.c_str()), 0U);
        put(kProfiles + "/Profiles", "5$mark");
        ASSERT_EQ(CreateConfigReg(), 0U);
        EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored(utf8(name)));
    }
}

TEST_F(DefaultKeys, AProfileTooLongForTheNameFunctionIsTakenFromTheConfiguration)
{
    ASSERT_EQ(config().updateProfileName(wideOf(1024).c_str()), 0U);
    put(kProfiles + "/Profiles", "5$mark");
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored(std::string(1024, 'x')));
}

TEST(DefaultProfile, IsTheOneGivenAtTheStart)
{
    ASSERT_EQ(start(L"Mine"), 0U);
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored("Mine"));
}

TEST(DefaultProfile, IsTheOneRecordedInTheTree)
{
    Installation::here().writeSetting(kProfiles + "/Profiles", "5$Recorded");
    ASSERT_EQ(start(), 0U);
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored("Recorded"));
}

TEST(DefaultProfile, IsDefaultWhereNoneIsKnown)
{
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    ASSERT_EQ(vornConfig()->profileName(), nullptr);
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored("Default"));
}

TEST(DefaultProfile, ReplacesARecordedOneThatTheStartDidNotTake)
{
    Installation::here().writeSetting(kProfiles + "/Profiles", "5$Recorded");
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored("Default"));
}

// The migration flag.

TEST_F(DefaultKeys, AMissingFlagIsTwoWithoutAnEarlierRelease)
{
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kFlag), QStringLiteral("1$2"));
    EXPECT_FALSE(GetIsNeedStartMigrator());
}

TEST_F(DefaultKeys, AMissingFlagIsOneWithAnEarlierReleaseOfTheLanguage)
{
    putEarlierRelease();
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kFlag), QStringLiteral("1$1"));
    EXPECT_TRUE(GetIsNeedStartMigrator());
}

TEST_F(DefaultKeys, AnEarlierReleaseOfAnotherLanguageIsNone)
{
    put(kProduct + "/2025/de-DE/Settings/Value", "1$1");
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kFlag), QStringLiteral("1$2"));
}

TEST_F(DefaultKeys, ALaterReleaseIsNoEarlierOne)
{
    put(kProduct + "/2027/en-US/Settings/Value", "1$1");
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kFlag), QStringLiteral("1$2"));
}

TEST_F(DefaultKeys, AFlagOfOneBecomesTwoWithoutAnEarlierRelease)
{
    EXPECT_EQ(flagAfter("1$1"), "1$2");
}

TEST_F(DefaultKeys, AFlagOfOneStaysWithAnEarlierRelease)
{
    putEarlierRelease();
    EXPECT_EQ(flagAfter("1$1"), "1$1");
}

TEST_F(DefaultKeys, AFlagOfOneBecomesTwoWhenTheEarlierReleaseIsGone)
{
    putEarlierRelease();
    ASSERT_EQ(CreateConfigReg(), 0U);
    ASSERT_EQ(config().removeItem(VornaConfig::ProductNameRoot, L"2025"), 0U);
    ASSERT_EQ(CreateConfigReg(), 0U);
    EXPECT_EQ(writtenText(kFlag), QStringLiteral("1$2"));
}

TEST_F(DefaultKeys, AFlagOfTwoNeverMovesBack)
{
    EXPECT_EQ(flagAfter("1$2"), "1$2");
    putEarlierRelease();
    EXPECT_EQ(flagAfter("1$2"), "1$2");
}

TEST_F(DefaultKeys, EveryOtherFlagStays)
{
    for (const char* const text : {"1$0", "1$3", "1$-1", "5$1", "1", "2$1", "4$01000000", "4$", "6$1"})
        EXPECT_EQ(flagAfter(text), text);
    putEarlierRelease();
    for (const char* const text : {"1$0", "1$3", "5$1", "2$1"})
        EXPECT_EQ(flagAfter(text), text);
}

// Failures.

TEST(DefaultKeysBeforeTheStart, AreRefused)
{
    EXPECT_EQ(CreateConfigReg(), kMissing);
    EXPECT_FALSE(std::filesystem::exists(Installation::here().settingsFile()));
}

TEST(DefaultKeysBeforeTheStart, NameTheProductUnderTheCompanyAllTheSame)
{
    vornConfig()->initRegObject(nullptr, nullptr);
    EXPECT_EQ(CreateConfigReg(), kMissing);
    EXPECT_EQ(keysInStore(), std::vector<std::string>{kCompany + "/CurVer"});
    EXPECT_EQ(writtenText(kCompany + "/CurVer"), stored("VORNA"));
}

TEST_F(DefaultKeys, AreRefusedWithoutASettingsObject)
{
    flush();
    const std::string file = readFile(Installation::here().settingsFile());
    closeStore();
    EXPECT_EQ(CreateConfigReg(), kMissing);
    EXPECT_EQ(readFile(Installation::here().settingsFile()), file);
}

TEST(DefaultKeysOnDisk, AFileThatCannotBeWrittenIsNotNoticed)
{
    const Installation program;
    program.installLanguage("en-US");
    ASSERT_EQ(program.run("firstRun", {"-", "-", "en-US"}).out, "0");
    program.writeSetting(kFlag, "1$1");
    setMode(program.settingsFile(), 0444);
    setMode(program.settingsFile().parent_path(), 0555);
    const std::string before = readFile(program.settingsFile());
    const ProcessResult result = runUnprivileged(program, "firstRun", {"-", "-", "en-US"});
    EXPECT_EQ(result.out, "0");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(readFile(program.settingsFile()), before);
}

TEST(DefaultKeysMemory, AFlagTooLargeToBeReadRaisesStatus6)
{
    const Installation program;
    program.installLanguage("en-US");
    const ProcessResult result = program.run("firstRunOnAHugeFlag", {}, scarceEnvironment());
    EXPECT_EQ(result.out, "6 \"\" 0 recorded") << result.err;
}

// A library in front of the allocator would take the place of a sanitizer's own.
TEST(DefaultKeysMemory, WithoutRoomForTheFlagStatus6IsRaisedAndNoFlagWritten)
{
    if (kHasSanitizerAllocator)
        GTEST_SKIP() << "the sanitizer has the allocator's place";
    const Installation program;
    program.installLanguage("en-US");
    const std::filesystem::path library = program.root() / "libRefusing.so";
    buildLibrary(library,
                 "#include <cstdlib>\n"
                 "extern \"C\" void* __libc_malloc(size_t);\n"
                 "extern \"C\" void* malloc(size_t size) noexcept {\n"
                 "    const char* refused = size < 100 ? getenv(\"VR_REFUSED_BLOCK\") : nullptr;\n"
                 "    return refused && size == strtoul(refused, nullptr, 10) ? nullptr : __libc_malloc(size);\n"
                 "}\n");
    const ProcessResult result = program.run("firstRunWithoutMemoryForTheFlag", {}, preloading(library));
    EXPECT_EQ(result.out, "6 \"\" 0 recorded") << result.err;
    EXPECT_EQ(textInFile(program.settingsFile(), kProfiles + "/Profiles"), stored("Default"));
    EXPECT_EQ(textInFile(program.settingsFile(), kProduct + "/CurVer"), stored("2026"));
    EXPECT_TRUE(textInFile(program.settingsFile(), kFlag).isNull());
}

// Threads.

TEST_F(DefaultKeys, AreWholeWhenThreadsWriteThemAtOnce)
{
    removeProduct();
    constexpr int kThreads = 8;
    std::vector<unsigned int> results(kThreads, 77);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (unsigned int& result : results)
        threads.emplace_back([&result] { result = CreateConfigReg(); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(results, std::vector<unsigned int>(kThreads, 0));
    EXPECT_EQ(writtenText(kProduct + "/CurVer"), stored("2026"));
    EXPECT_EQ(writtenText(kVersion + "/CurVer"), stored("en-US"));
    EXPECT_EQ(writtenText(kProfiles + "/Profiles"), stored("Default"));
    EXPECT_EQ(writtenText(kFlag), QStringLiteral("1$2"));
}

} // namespace
