// The configuration object's life: before the start, the start step by step, the end.
#include <array>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include <QtCore/QCoreApplication>
#include <QtCore/QSettings>
#include <QtCore/QTimer>
#include <QtGui/QIcon>

#include <gtest/gtest.h>

#include "VrUInfo/Resources.h"
#include "long_path.h"
#include "start_words.h"
#include "unprivileged.h"

using namespace vrtest;

namespace
{

constexpr char kRootGroup[] = "Software/HALVIK/VORNA/2026";

/// Looks at the library when the host's own static objects are made, and again when they go.
class EarlyAndLateHost
{
public:
    EarlyAndLateHost() : m_early(identity() + " " + utf8(vornConfig()->version())) {}
    EarlyAndLateHost(const EarlyAndLateHost&) = delete;
    EarlyAndLateHost& operator=(const EarlyAndLateHost&) = delete;
    ~EarlyAndLateHost()
    {
        if (m_isTelling)
            std::cout << "late " << identity() << " " << (g_globalSettings ? "store" : "no store") << std::endl;
    }
    const std::string& early() const { return m_early; }
    void tellAtTheEnd() { m_isTelling = true; }

private:
    std::string m_early;
    bool m_isTelling = false;
};

EarlyAndLateHost g_host;

int storeValue(const char* name, const wchar_t* text)
{
    VornVariant value;
    value.setString(text, VornVariant::kVarString);
    return static_cast<int>(vornConfig()->setValue(VornaConfig::VersionRoot, wide(name).c_str(), value));
}

QString onDisk(const std::string& name)
{
    return textInFile(Installation::here().settingsFile(), name);
}

bool isLoaded(const char* library)
{
    return readFile("/proc/self/maps").find(library) != std::string::npos;
}

} // namespace

PROBE(nothing)
{
    return 0;
}

PROBE(late)
{
    g_host.tellAtTheEnd();
    return static_cast<int>(startWith(arguments));
}

PROBE(endNormally)
{
    const unsigned int status = startWith({"-", "-", "en-US"});
    storeValue("Kept", L"at the end");
    return static_cast<int>(status);
}

PROBE(endByExit)
{
    const unsigned int status = startWith({"-", "-", "en-US"});
    storeValue("Kept", L"at exit");
    std::exit(static_cast<int>(status)); // NOLINT(concurrency-mt-unsafe) one thread
}

PROBE(endAtOnce)
{
    const unsigned int status = startWith({"-", "-", "en-US"});
    storeValue("Kept", L"nowhere");
    std::_Exit(static_cast<int>(status));
}

/// Ends at once too, after an event loop.
PROBE(endAtOnceAfterEventLoop)
{
    int count = 1;
    std::string name = "host";
    std::array<char*, 2> values{name.data(), nullptr};
    const QCoreApplication application(count, values.data());
    const unsigned int status = startWith({"-", "-", "en-US"});
    storeValue("Kept", L"by the event loop");
    QTimer::singleShot(200, &application, &QCoreApplication::quit);
    QCoreApplication::exec();
    std::_Exit(static_cast<int>(status));
}

/// Starts again and again with the same names; prints each status.
PROBE(startThrice)
{
    for (int i = 0; i < 3; ++i)
        std::cout << startWith(arguments) << " ";
    std::cout << identity() << (rootText(VornaConfig::VersionRoot).empty() ? " not initialised" : " initialised")
              << "\n";
    return 0;
}

/// The check of the language's library, of the language that is not known yet.
PROBE(verify)
{
    std::cout << vornConfig()->verifyResourcePath() << "\n";
    return 0;
}

namespace
{

// ---- Before the start

TEST(UnconfiguredTest, ConfigObjectIsThereAndOne)
{
    ASSERT_NE(vornConfig(), nullptr);
    EXPECT_EQ(vornConfig(), vornConfig());
}

TEST(UnconfiguredTest, NamesFallBack)
{
    const VornaConfig& config = *vornConfig();
    EXPECT_STREQ(config.productName(), L"VORNA");
    EXPECT_STREQ(config.companyName(), L"HALVIK");
    EXPECT_STREQ(config.version(), L"2026");
    EXPECT_STREQ(config.oemProductName(), L"VORNA");
    EXPECT_STREQ(config.oemCompanyName(), L"HALVIK");
    EXPECT_STREQ(config.oemCompanyLtdName(), L"HALVIK CO., LTD.(Eastport)");
}

TEST(UnconfiguredTest, WhatHasNoFallbackIsNullOrUnknown)
{
    const VornaConfig& config = *vornConfig();
    EXPECT_EQ(config.profileName(), nullptr);
    EXPECT_EQ(config.language().id(), -1);
    EXPECT_EQ(config.oemAppIcon(true), nullptr);
    EXPECT_EQ(config.oemAppIcon(false), nullptr);
    EXPECT_EQ(config.oemAppIconPath(), nullptr);
    EXPECT_FALSE(config.isInitialized());
}

TEST(UnconfiguredTest, GlobalsHaveTheirFirstValues)
{
    EXPECT_EQ(g_globalSettings, nullptr);
    EXPECT_EQ(g_strPrefix, QStringLiteral(":/VrCustomRes/VrCustomRes"));
    EXPECT_EQ(gVrUInfoResDllInstance, nullptr);
}

TEST(UnconfiguredTest, RootsAreEmpty)
{
    for (unsigned int root = 0; root <= VornaConfig::UserConfigRoot; ++root)
        EXPECT_EQ(rootText(static_cast<VornaConfig::Path>(root)), "") << root;
}

TEST(UnconfiguredTest, StepsThatNeedEarlierOnesGive7)
{
    VornaConfig& config = *vornConfig();
    EXPECT_EQ(config.buildRootPathFromCompany(), 7U);
    EXPECT_EQ(config.initProductName(L"VORNA"), 7U);
    EXPECT_EQ(config.buildRootPathFromProduct(), 7U);
    EXPECT_EQ(config.initLanguageName(L"en-US"), 7U);
}

TEST(UnconfiguredTest, RefreshesWriteNothing)
{
    EXPECT_EQ(vornConfig()->refreshProductName(), 0U);
    EXPECT_EQ(vornConfig()->refreshLanguageName(), 0U);
}

TEST(UnconfiguredTest, StaticObjectsOfTheHostFindTheLibraryReady)
{
    EXPECT_EQ(g_host.early(), "HALVIK/VORNA/unknown/- 2026");
}

TEST(UnconfiguredTest, StaticObjectsOfTheHostFindTheIdentityAtTheEnd)
{
    const Installation& here = Installation::here();
    here.installLanguage("en-US");
    EXPECT_EQ(here.run("late", {"Acme", "Draw", "en-US", "Work"}).out, "late Acme/Draw/en-US/Work store\n");
}

TEST(UnconfiguredTest, ProcessThatNeverStartsLeavesNoTrace)
{
    const Installation& here = Installation::here();
    const ProcessResult result = here.run("nothing");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_TRUE(std::filesystem::is_empty(here.configDir()));
}

// ---- The start

class StartTest : public testing::Test
{
protected:
    StartTest() : m_here(Installation::here()), m_config(*vornConfig()) {}

    const Installation& m_here;
    VornaConfig& m_config;
};

class EnglishStartTest : public StartTest
{
protected:
    EnglishStartTest() { m_here.installLanguage("en-US"); }
};

TEST_F(EnglishStartTest, ResolvesAllAndGives0)
{
    EXPECT_EQ(startWith({"Acme", "Draw", "en-US", "Work"}), 0U);
    EXPECT_EQ(identity(), "Acme/Draw/en-US/Work");
    EXPECT_STREQ(m_config.version(), L"2026");
    EXPECT_EQ(rootText(VornaConfig::ProductNameRoot), "Software/Acme/Draw");
    EXPECT_EQ(rootText(VornaConfig::VersionRoot), "Software/Acme/Draw/2026");
}

TEST_F(EnglishStartTest, MemberAndFunctionAreTheSame)
{
    EXPECT_EQ(m_config.initial(L"Acme", L"Draw", L"en-US", nullptr), 0U);
    EXPECT_EQ(InitVornConfig(L"Other", L"Other", L"de-DE", L"a/b"), 0U);
    EXPECT_STREQ(m_config.companyName(), L"Acme");
}

TEST_F(EnglishStartTest, IsInitializedIsFalseAfterItToo)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_FALSE(m_config.isInitialized());
}

TEST_F(EnglishStartTest, SaysNothing)
{
    const ProcessResult result = m_here.run("start", {"-", "-", "en-US"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "0 HALVIK/VORNA/en-US/Default\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(EnglishStartTest, SaysNothingOnAnEmptySettingsFileEither)
{
    writeFile(m_here.settingsFile(), "");
    EXPECT_EQ(m_here.run("start", {"-", "-", "en-US"}).err, "");
}

TEST_F(EnglishStartTest, EmptyArgumentsCountAsNull)
{
    EXPECT_EQ(InitVornConfig(L"", L"", L"en-US", L""), 0U);
    EXPECT_EQ(identity(), "HALVIK/VORNA/en-US/Default");
}

TEST_F(EnglishStartTest, SecondStartGives0AndChangesNothing)
{
    ASSERT_EQ(startWith({"Acme", "Draw", "en-US", "Work"}), 0U);
    EXPECT_EQ(startWith({"Other", "Thing", "de-DE", "Play"}), 0U);
    EXPECT_EQ(identity(), "Acme/Draw/en-US/Work");
}

TEST_F(EnglishStartTest, SecondStartDoesNotTouchItsArguments)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    const auto* const unreadable = reinterpret_cast<const wchar_t*>(std::uintptr_t{4});
    EXPECT_EQ(m_config.initial(unreadable, unreadable, unreadable, unreadable), 0U);
}

TEST_F(EnglishStartTest, BrandingComesFromTheLanguageLibrary)
{
    ASSERT_EQ(startWith({"Acme", "Draw", "en-US"}), 0U);
    EXPECT_STREQ(m_config.oemAppIconPath(), L":/VrUInfoRes/VrUInfoRes/IDI_VORNA_OEM_APPLICATION_EXE");
    EXPECT_NE(m_config.oemAppIcon(true), nullptr);
    EXPECT_NE(m_config.oemAppIcon(false), nullptr);
    EXPECT_NE(m_config.oemAppIcon(true), m_config.oemAppIcon(false));
    EXPECT_NE(gVrUInfoResDllInstance, nullptr);
}

TEST_F(EnglishStartTest, WithoutProfileArgumentTheBrandingStepMakesItDefault)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_STREQ(m_config.profileName(), L"Default");
    flush();
    EXPECT_EQ(onDisk(std::string(kRootGroup) + "/en-US/Profiles/Profiles"), QStringLiteral("5$Default"));
}

TEST_F(EnglishStartTest, NextProcessFindsTheIdentity)
{
    m_here.installLanguage("fr-FR");
    EXPECT_EQ(m_here.run("start", {"-", "-", "fr-FR"}).out, "0 HALVIK/VORNA/fr-FR/Default\n");
    EXPECT_EQ(m_here.run("start").out, "0 HALVIK/VORNA/fr-FR/Default\n");
}

// ---- A start that fails

TEST_F(StartTest, MissingLanguageLibraryGives5)
{
    m_here.installEmptyLanguage("en-US");
    EXPECT_EQ(startWith({"-", "-", "en-US"}), 5U);
    EXPECT_EQ(rootText(VornaConfig::VersionRoot), "");
}

TEST_F(StartTest, AfterAMissingLanguageLibraryEachStartGives7)
{
    m_here.installEmptyLanguage("en-US");
    EXPECT_EQ(m_here.run("startThrice", {"-", "-", "en-US"}).out, "5 7 7 HALVIK/VORNA/en-US/- not initialised\n");
}

TEST_F(StartTest, AfterAMissingLanguageLibraryItDoesNotHelpToInstallIt)
{
    m_here.installEmptyLanguage("en-US");
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 5U);
    m_here.installLanguage("en-US");
    EXPECT_EQ(startWith({"-", "-", "en-US"}), 7U);
}

TEST_F(StartTest, FailureLeavesWhatEarlierStepsSet)
{
    m_here.installEmptyLanguage("en-US");
    ASSERT_EQ(startWith({"-", "-", "en-US", "Work"}), 5U);
    EXPECT_EQ(identity(), "HALVIK/VORNA/en-US/-");
    flush();
    EXPECT_EQ(onDisk("Software/HALVIK/CurProduct"), QStringLiteral("5$VORNA"));
    EXPECT_EQ(onDisk(std::string(kRootGroup) + "/CurVer"), QStringLiteral("5$en-US"));
    EXPECT_EQ(m_config.oemAppIconPath(), nullptr);
}

TEST_F(EnglishStartTest, UnreadableLanguageLibraryGives5)
{
    setMode(m_here.programDir() / "en-US" / "libVrUInfoRes.so", 0);
    EXPECT_EQ(runUnprivileged(m_here, "start", {"-", "-", "en-US"}).out, "5 HALVIK/VORNA/en-US/-\n");
}

TEST_F(EnglishStartTest, ReadableLibraryThatIsNoResourceLibraryIsNoFailure)
{
    m_here.write("en-US/libVrUInfoRes.so", "this is no library\n");
    EXPECT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_STREQ(m_config.oemProductName(), L"VORNA");
    EXPECT_EQ(m_config.oemAppIconPath(), nullptr);
}

TEST_F(EnglishStartTest, RefusedCompanyGives7AndMayBeTriedAgain)
{
    EXPECT_EQ(startWith({std::string(255, 'x'), "-", "en-US"}), 7U);
    EXPECT_EQ(startWith({"Acme", "-", "en-US"}), 0U);
    EXPECT_EQ(identity(), "Acme/VORNA/en-US/Default");
}

TEST_F(EnglishStartTest, SettingsObjectOfARefusedCompanyStays)
{
    const std::string refused(255, 'x');
    ASSERT_EQ(startWith({refused, "-", "en-US"}), 7U);
    ASSERT_EQ(startWith({"Acme", "-", "en-US"}), 0U);
    EXPECT_EQ(configPath(), m_here.settingsFile(refused));
}

TEST_F(EnglishStartTest, RefusedProductGives7ForGood)
{
    EXPECT_EQ(startWith({"-", std::string(255, 'x'), "en-US"}), 7U);
    EXPECT_EQ(startWith({"-", "-", "en-US"}), 7U);
    EXPECT_EQ(rootText(VornaConfig::ProductNameRoot), "");
}

TEST_F(EnglishStartTest, CompanySetBeforehandGives7)
{
    ASSERT_EQ(m_config.initCompanyName(L"Acme"), 0U);
    EXPECT_EQ(startWith({"Acme", "-", "en-US"}), 7U);
}

// ---- A profile step that fails

TEST_F(EnglishStartTest, ProfileThatIsAPathGives8AndIsInitialisedAllTheSame)
{
    EXPECT_EQ(startWith({"-", "-", "en-US", "a/b"}), 8U);
    EXPECT_EQ(rootText(VornaConfig::VersionRoot), kRootGroup);
    EXPECT_EQ(m_config.profileName(), nullptr);
}

TEST_F(EnglishStartTest, AfterAFailedProfileThereIsNoBranding)
{
    ASSERT_EQ(startWith({"-", "-", "en-US", "a/b"}), 8U);
    EXPECT_EQ(m_config.oemAppIconPath(), nullptr);
    EXPECT_EQ(m_config.oemAppIcon(true), nullptr);
    EXPECT_EQ(gVrUInfoResDllInstance, nullptr);
    EXPECT_EQ(g_strPrefix, QStringLiteral(":/VrCustomRes/VrCustomRes"));
}

TEST_F(EnglishStartTest, AfterAFailedProfileTheNextStartGives0AndDoesNothing)
{
    ASSERT_EQ(startWith({"-", "-", "en-US", "a/b"}), 8U);
    EXPECT_EQ(startWith({"-", "-", "en-US", "Work"}), 0U);
    EXPECT_EQ(m_config.profileName(), nullptr);
    EXPECT_EQ(m_config.oemAppIconPath(), nullptr);
}

/// Agrees to go on, but takes the settings object away while the box is open.
int agreeWithoutStore(HWND, const wchar_t*, const wchar_t*, unsigned int)
{
    vornConfig()->uinitRegObject();
    return IDYES;
}

TEST_F(EnglishStartTest, ProfileWithoutSettingsObjectGives5AndIsInitialisedAllTheSame)
{
    VrSetMessageBoxHandler(agreeWithoutStore);
    EXPECT_EQ(startWith({"-", "-", "de-DE", "Work"}), 5U);
    EXPECT_EQ(rootText(VornaConfig::VersionRoot), kRootGroup);
    EXPECT_EQ(m_config.profileName(), nullptr);
    EXPECT_EQ(m_config.oemAppIconPath(), nullptr);
    EXPECT_EQ(startWith({"-", "-", "en-US", "Work"}), 0U);
}

TEST_F(EnglishStartTest, StartWithoutSettingsObjectAndProfileGives0)
{
    VrSetMessageBoxHandler(agreeWithoutStore);
    EXPECT_EQ(startWith({"-", "-", "de-DE"}), 0U);
    EXPECT_EQ(rootText(VornaConfig::CurrentProfileRoot), "");
    EXPECT_STREQ(m_config.oemAppIconPath(), L":/VrUInfoRes/VrUInfoRes/IDI_VORNA_OEM_APPLICATION_EXE");
}

TEST_F(EnglishStartTest, BrandingStepAlwaysGives1AndLoadsOnce)
{
    ASSERT_EQ(startWith({"-", "-", "en-US", "a/b"}), 8U);
    EXPECT_EQ(m_config.initOemResource(), 1U);
    const QIcon* const icon = m_config.oemAppIcon(true);
    EXPECT_NE(icon, nullptr);
    EXPECT_EQ(m_config.initOemResource(), 1U);
    EXPECT_EQ(m_config.oemAppIcon(true), icon);
}

TEST_F(EnglishStartTest, LoadsNothingForPicturesUntilAnIconIsAskedFor)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_FALSE(isLoaded("libQt5Gui"));
    EXPECT_FALSE(isLoaded("libVrUInfoIcons"));
    EXPECT_NE(m_config.oemAppIcon(true), nullptr);
    EXPECT_TRUE(isLoaded("libVrUInfoIcons"));
    EXPECT_TRUE(isLoaded("libQt5Gui"));
}

TEST_F(EnglishStartTest, IconsAskedForByManyThreadsAreMadeOnce)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    std::array<QIcon*, 8> seen{};
    std::vector<std::thread> threads;
    for (QIcon*& icon : seen)
        threads.emplace_back([this, &icon] { icon = m_config.oemAppIcon(false); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_NE(seen[0], nullptr);
    EXPECT_EQ(std::set<QIcon*>(seen.begin(), seen.end()).size(), 1U);
}

// ---- The check of the language's library

TEST_F(StartTest, VerifyGives0ForAReadableLibrary)
{
    m_here.write("unknown/libVrUInfoRes.so", "anything");
    EXPECT_EQ(m_config.verifyResourcePath(), 0U);
}

TEST_F(StartTest, VerifyGives5ForAMissingLibrary)
{
    m_here.write("unknown/libOther.so", "anything");
    EXPECT_EQ(m_config.verifyResourcePath(), 5U);
}

TEST_F(StartTest, VerifyGives5ForAnUnreadableLibrary)
{
    m_here.write("unknown/libVrUInfoRes.so", "anything");
    setMode(m_here.programDir() / "unknown/libVrUInfoRes.so", 0);
    EXPECT_EQ(runUnprivileged(m_here, "verify").out, "5\n");
}

// "/unknown/libVrUInfoRes.so" has 25 characters; the whole path may have 1023.
TEST_F(StartTest, VerifyLooksForAPathOf1023Characters)
{
    const LongInstallation place(998);
    EXPECT_EQ(place.run("verify").out, "5\n");
    place.write("unknown/libVrUInfoRes.so", "anything");
    EXPECT_EQ(place.run("verify").out, "0\n");
}

TEST_F(StartTest, VerifyGives7ForAPathOf1024Characters)
{
    const LongInstallation place(999);
    place.write("unknown/libVrUInfoRes.so", "anything");
    EXPECT_EQ(place.run("verify").out, "7\n");
}

TEST_F(StartTest, VerifyGives7WithoutALanguageDirectory)
{
    const LongInstallation place(1013);
    EXPECT_EQ(place.run("verify").out, "7\n");
}

// ---- The end

TEST_F(EnglishStartTest, NormalEndWritesBackWithoutAnEventLoop)
{
    EXPECT_EQ(m_here.run("endNormally").exitCode, 0);
    EXPECT_EQ(onDisk(std::string(kRootGroup) + "/Kept"), QStringLiteral("5$at the end"));
    EXPECT_EQ(onDisk("Software/HALVIK/CurProduct"), QStringLiteral("5$VORNA"));
}

TEST_F(EnglishStartTest, ExitWritesBackToo)
{
    EXPECT_EQ(m_here.run("endByExit").exitCode, 0);
    EXPECT_EQ(onDisk(std::string(kRootGroup) + "/Kept"), QStringLiteral("5$at exit"));
}

TEST_F(EnglishStartTest, EventLoopWritesBack)
{
    EXPECT_EQ(m_here.run("endAtOnceAfterEventLoop").exitCode, 0);
    EXPECT_EQ(onDisk(std::string(kRootGroup) + "/Kept"), QStringLiteral("5$by the event loop"));
}

TEST_F(EnglishStartTest, EndAtOnceWritesNothing)
{
    EXPECT_EQ(m_here.run("endAtOnce").exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(m_here.settingsFile()));
}

TEST_F(EnglishStartTest, UninitWritesBackAndDeletesStoreAndIcons)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    ASSERT_EQ(storeValue("Kept", L"by uninit"), 0);
    m_config.uinitRegObject();
    EXPECT_EQ(g_globalSettings, nullptr);
    EXPECT_EQ(m_config.oemAppIcon(true), nullptr);
    EXPECT_EQ(m_config.oemAppIcon(false), nullptr);
    EXPECT_EQ(onDisk(std::string(kRootGroup) + "/Kept"), QStringLiteral("5$by uninit"));
}

TEST_F(EnglishStartTest, UninitLeavesTheIdentityAndMayBeRepeated)
{
    ASSERT_EQ(startWith({"Acme", "Draw", "en-US", "Work"}), 0U);
    m_config.uinitRegObject();
    m_config.uinitRegObject();
    EXPECT_EQ(identity(), "Acme/Draw/en-US/Work");
    EXPECT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_EQ(g_globalSettings, nullptr);
}

TEST_F(EnglishStartTest, StoreMadeAgainAfterUninitServesTheIdentity)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    ASSERT_EQ(storeValue("Kept", L"before"), 0);
    m_config.uinitRegObject();
    EXPECT_EQ(storeValue("Kept", L"between"), 5);
    m_config.initRegObject(nullptr, nullptr);
    VornVariant value;
    EXPECT_EQ(m_config.getValue(VornaConfig::VersionRoot, L"Kept", value), 0U);
    EXPECT_EQ(storeValue("Later", L"after"), 0);
    flush();
    EXPECT_EQ(onDisk(std::string(kRootGroup) + "/Kept"), QStringLiteral("5$before"));
    EXPECT_EQ(onDisk(std::string(kRootGroup) + "/Later"), QStringLiteral("5$after"));
}

TEST_F(StartTest, UninitBeforeAnyStartDoesNothing)
{
    m_config.uinitRegObject();
    EXPECT_EQ(g_globalSettings, nullptr);
}

// ---- The exception of host programs

TEST(ConfigExceptionTest, CarriesMessagePlaceAndFlag)
{
    const VornaConfigException ends(L"cannot go on", true, L"host.cpp", 12);
    EXPECT_STREQ(ends.description(), L"cannot go on");
    EXPECT_STREQ(ends.file(), L"host.cpp");
    EXPECT_EQ(ends.line(), 12);
    EXPECT_TRUE(ends.isExitProcess());
    EXPECT_FALSE(VornaConfigException(L"", false, L"", 0).isExitProcess());
}

/// The text of what is thrown, caught as the base of all; empty when it is not thrown whole.
std::wstring caughtText(const VornaConfigException& thrown)
{
    try {
        throw thrown; // NOLINT(misc-throw-by-value-catch-by-reference) a copy is thrown
    } catch (const VrException& error) {
        const auto* const whole = dynamic_cast<const VornaConfigException*>(&error);
        return whole && whole->isExitProcess() ? error.description() : L"";
    }
}

TEST(ConfigExceptionTest, IsCaughtAsItsBases)
{
    EXPECT_EQ(caughtText(VornaConfigException(L"cannot go on", true, L"host.cpp", 12)), L"cannot go on");
}

TEST(ConfigExceptionTest, IsDeletedThroughItsBase)
{
    const std::unique_ptr<VrException> error = std::make_unique<VornaConfigException>(L"m", false, L"f", 1);
    EXPECT_STREQ(error->description(), L"m");
}

} // namespace
