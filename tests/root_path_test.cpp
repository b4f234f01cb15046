// The nine roots of the settings tree, the functions that hand them out, and the current profile's name.
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VrUInfo/RootKeys.h"
#include "VrUInfo/VornaConfig.h"
#include "started_store.h"

using namespace vrtest;

namespace
{

using RootFunction = unsigned int (*)(wchar_t*);

const std::wstring kProduct = L"Software/HALVIK/VORNA";
const std::wstring kVersion = kProduct + L"/2026";
const std::wstring kLanguage = kVersion + L"/en-US";
const std::wstring kProfiles = kLanguage + L"/Profiles";
constexpr unsigned int kFirstUnknownRoot = 9;
constexpr std::size_t kLongestRoot = 1023;
constexpr std::size_t kLongestRootWithConfig = 1014;

const std::map<RootFunction, std::wstring>& rootFunctions()
{
    static const std::map<RootFunction, std::wstring> functions = {
        {GetRegistryProductNameRootKey, kProduct},
        {GetRegistryVersionRootKey, kVersion},
        {GetVornRegistryLanguageRootKey, kLanguage},
        {GetRegistryProfilesRootKey, kProfiles},
        {GetVornRegistryCurrentProfileRootKey, kProfiles + L"/Default"},
        {GetVornRegistryCurrentProfileConfigRootKey, kProfiles + L"/Default/Config"},
    };
    return functions;
}

VornaConfig::Path root(unsigned int number)
{
    return static_cast<VornaConfig::Path>(number);
}

/// Makes the current profile's root exactly that long.
std::wstring adoptProfileForRootOf(std::size_t length)
{
    const std::wstring name = wideOf(length - kProfiles.size() - 1, L'n');
    EXPECT_EQ(vornConfig()->updateProfileName(name.c_str()), 0U);
    return kProfiles + L"/" + name;
}

std::wstring profileName()
{
    const wchar_t* const name = vornConfig()->profileName();
    return name ? name : L"";
}

void recordProfile(const std::string& text)
{
    Installation::here().writeSetting(utf8(kProfiles) + "/Profiles", text);
}

} // namespace

class RootPath : public testing::Test
{
};

TEST_F(RootPath, EachSelectorYieldsItsRoot)
{
    ASSERT_EQ(start(), 0U);
    const std::vector<std::wstring> expected = {kProduct,
                                                kVersion,
                                                kLanguage,
                                                kProfiles,
                                                kProfiles + L"/Default",
                                                kLanguage + L"/Applications",
                                                kLanguage + L"/Recent File List",
                                                kLanguage + L"/Settings",
                                                kLanguage + L"/Settings/UserConfig"};
    for (unsigned int i = 0; i < expected.size(); ++i)
        EXPECT_EQ(rootOf(root(i)), expected[i]) << i;
}

TEST_F(RootPath, SelectorNumbersAreFixed)
{
    EXPECT_EQ(VornaConfig::ProductNameRoot, 0U);
    EXPECT_EQ(VornaConfig::VersionRoot, 1U);
    EXPECT_EQ(VornaConfig::LanguageRoot, 2U);
    EXPECT_EQ(VornaConfig::ProfilesRoot, 3U);
    EXPECT_EQ(VornaConfig::CurrentProfileRoot, 4U);
    EXPECT_EQ(VornaConfig::ApplicationsRoot, 5U);
    EXPECT_EQ(VornaConfig::RecentFileListRoot, 6U);
    EXPECT_EQ(VornaConfig::SettingsRoot, 7U);
    EXPECT_EQ(VornaConfig::UserConfigRoot, 8U);
}

TEST_F(RootPath, NamesOfTheStartStandInTheRoots)
{
    Installation::here().installLanguage("zh-CN");
    ASSERT_EQ(InitVornConfig(L"Acme", L"Widget", L"zh-CN", L"Night"), 0U);
    EXPECT_EQ(rootOf(VornaConfig::ProductNameRoot), L"Software/Acme/Widget");
    EXPECT_EQ(rootOf(VornaConfig::UserConfigRoot), L"Software/Acme/Widget/2026/zh-CN/Settings/UserConfig");
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), L"Software/Acme/Widget/2026/zh-CN/Profiles/Night");
}

TEST_F(RootPath, LongestNamesOfAStartFit)
{
    Installation::here().installLanguage("en-US");
    const std::wstring company = wideOf(254, L'c');
    const std::wstring product = wideOf(254, L'p');
    // A file name of 254 characters and its ending is more than the file system takes, which no root cares for.
    InitVornConfig(company.c_str(), product.c_str(), L"en-US", nullptr);
    const std::wstring base = L"Software/" + company + L"/" + product;
    EXPECT_EQ(rootOf(VornaConfig::ProductNameRoot), base);
    EXPECT_EQ(rootOf(VornaConfig::UserConfigRoot), base + L"/2026/en-US/Settings/UserConfig");
}

TEST_F(RootPath, CharactersBeyondTheBmpStandInTheRoots)
{
    Installation::here().installLanguage("en-US");
    ASSERT_EQ(InitVornConfig(L"\U0001F600", L"\u00FC", L"en-US", nullptr), 0U);
    EXPECT_EQ(rootOf(VornaConfig::VersionRoot), L"Software/\U0001F600/\u00FC/2026");
}

TEST_F(RootPath, BeforeInitialisationEveryRootIsEmpty)
{
    for (unsigned int i = 0; i <= kFirstUnknownRoot; ++i)
        EXPECT_EQ(rootOf(root(i)), L"") << i;
}

TEST_F(RootPath, BeforeInitialisationEveryRootFunctionYieldsAnEmptyText)
{
    for (const auto& function : rootFunctions()) {
        GuardedBuffer buffer(kCapacity);
        EXPECT_EQ(function.first(buffer.data()), 0U) << utf8(function.second);
        EXPECT_EQ(buffer.text(), L"");
        EXPECT_TRUE(buffer.isUntouchedFrom(1));
    }
}

TEST_F(RootPath, ResolvedNamesAloneAreNoInitialisation)
{
    ASSERT_EQ(vornConfig()->initCompanyName(nullptr), 0U);
    ASSERT_EQ(vornConfig()->initProductName(nullptr), 0U);
    EXPECT_EQ(rootOf(VornaConfig::ProductNameRoot), L"");
}

TEST_F(RootPath, UnknownSelectorYieldsAnEmptyText)
{
    ASSERT_EQ(start(), 0U);
    for (const unsigned int number : {kFirstUnknownRoot, 10U, 255U, 0x7FFFFFFFU, 0xFFFFFFFFU})
        EXPECT_EQ(rootOf(root(number)), L"") << number;
}

TEST_F(RootPath, EachRootFunctionReturnsTheLengthWritten)
{
    ASSERT_EQ(start(), 0U);
    for (const auto& [function, expected] : rootFunctions()) {
        GuardedBuffer buffer(kCapacity);
        EXPECT_EQ(function(buffer.data()), expected.size()) << utf8(expected);
        EXPECT_EQ(buffer.text(), expected);
        EXPECT_TRUE(buffer.isUntouchedFrom(expected.size() + 1));
    }
}

TEST_F(RootPath, NoBufferGivesNothing)
{
    ASSERT_EQ(start(), 0U);
    vornConfig()->getRegRootPath(VornaConfig::ProductNameRoot, nullptr);
    for (const auto& function : rootFunctions())
        EXPECT_EQ(function.first(nullptr), 0U);
}

TEST_F(RootPath, RootOfTheCurrentProfileFillsTheWholeBuffer)
{
    ASSERT_EQ(start(), 0U);
    const std::wstring expected = adoptProfileForRootOf(kLongestRoot);
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), expected);
    GuardedBuffer buffer(kCapacity);
    EXPECT_EQ(GetVornRegistryCurrentProfileRootKey(buffer.data()), kLongestRoot);
    EXPECT_TRUE(buffer.isWhole());
}

TEST_F(RootPath, RootOfTheCurrentProfileThatPassesTheBufferIsEmpty)
{
    ASSERT_EQ(start(), 0U);
    adoptProfileForRootOf(kLongestRoot + 1);
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), L"");
    GuardedBuffer buffer(kCapacity);
    EXPECT_EQ(GetVornRegistryCurrentProfileRootKey(buffer.data()), 0U);
    EXPECT_TRUE(buffer.isWhole());
}

class ConfigRoot : public testing::Test
{
};

TEST_F(ConfigRoot, FollowsAProfileRootOf1014Characters)
{
    ASSERT_EQ(start(), 0U);
    const std::wstring profile = adoptProfileForRootOf(kLongestRootWithConfig);
    GuardedBuffer buffer(kCapacity);
    EXPECT_EQ(GetVornRegistryCurrentProfileConfigRootKey(buffer.data()), 1021U);
    EXPECT_EQ(buffer.text(), profile + L"/Config");
    EXPECT_TRUE(buffer.isUntouchedFrom(1022));
}

TEST_F(ConfigRoot, LeavesAProfileRootOf1015CharactersInTheBuffer)
{
    ASSERT_EQ(start(), 0U);
    const std::wstring profile = adoptProfileForRootOf(kLongestRootWithConfig + 1);
    GuardedBuffer buffer(kCapacity);
    EXPECT_EQ(GetVornRegistryCurrentProfileConfigRootKey(buffer.data()), 0U);
    EXPECT_EQ(buffer.text(), profile);
    EXPECT_TRUE(buffer.isUntouchedFrom(1016));
}

TEST_F(ConfigRoot, IsEmptyWithoutAProfileRoot)
{
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    vornConfig()->uinitRegObject();
    GuardedBuffer buffer(kCapacity);
    EXPECT_EQ(GetVornRegistryCurrentProfileConfigRootKey(buffer.data()), 0U);
    EXPECT_EQ(buffer.text(), L"");
}

class ProfileAdoption : public testing::Test
{
};

TEST_F(ProfileAdoption, DefaultIsRecordedAndAdoptedWhereNoneStands)
{
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    ASSERT_EQ(vornConfig()->profileName(), nullptr);
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), kProfiles + L"/Default");
    EXPECT_EQ(profileName(), L"Default");
    EXPECT_EQ(writtenText(kProfiles + L"/Profiles"), QStringLiteral("5$Default"));
}

TEST_F(ProfileAdoption, StartWithoutAProfileArgumentHasAdoptedDefault)
{
    ASSERT_EQ(start(), 0U);
    EXPECT_EQ(profileName(), L"Default");
}

TEST_F(ProfileAdoption, RecordedProfileIsAdoptedByTheFirstRequest)
{
    recordProfile("5$Night");
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    ASSERT_EQ(vornConfig()->profileName(), nullptr);
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), kProfiles + L"/Night");
    EXPECT_EQ(profileName(), L"Night");
}

TEST_F(ProfileAdoption, OtherRootsAdoptNothing)
{
    recordProfile("5$Night");
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    for (const unsigned int number : {0U, 1U, 2U, 3U, 5U, 6U, 7U, 8U})
        rootOf(root(number));
    EXPECT_EQ(vornConfig()->profileName(), nullptr);
}

TEST_F(ProfileAdoption, AdoptedProfileStaysWhenTheRecordChanges)
{
    recordProfile("5$Night");
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    rootOf(VornaConfig::CurrentProfileRoot);
    putText(kProfiles + L"/Profiles", "5$Day");
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), kProfiles + L"/Night");
}

TEST_F(ProfileAdoption, MarkOfTheRecordIsNotLookedAt)
{
    recordProfile("7$Night");
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), kProfiles + L"/Night");
}

TEST_F(ProfileAdoption, FirstDollarOfTheRecordDecides)
{
    recordProfile("$5$Night");
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), kProfiles + L"/$5$Night");
}

TEST_F(ProfileAdoption, EmptyRecordCountsAsNone)
{
    recordProfile("5$");
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), kProfiles + L"/Default");
    EXPECT_EQ(writtenText(kProfiles + L"/Profiles"), QStringLiteral("5$Default"));
}

TEST_F(ProfileAdoption, RootIsEmptyAndNotItsParentWithoutASettingsObject)
{
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    vornConfig()->uinitRegObject();
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), L"");
    EXPECT_EQ(rootOf(VornaConfig::ProfilesRoot), kProfiles);
}

TEST_F(ProfileAdoption, KnownProfileNeedsNoSettingsObject)
{
    ASSERT_EQ(start(), 0U);
    vornConfig()->uinitRegObject();
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), kProfiles + L"/Default");
}

TEST_F(ProfileAdoption, RecordedNameMayBeLongerThan128Characters)
{
    for (const std::size_t length : {127U, 128U, 129U, 900U}) {
        Installation other;
        other.installLanguage("en-US");
        other.writeSetting(utf8(kProfiles) + "/Profiles", "5$" + std::string(length, 'n'));
        const ProcessResult result = other.run("PrintProfileRoot");
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, utf8(kProfiles) + "/" + std::string(length, 'n')) << length;
    }
}

PROBE(PrintProfileRoot)
{
    if (InitVornConfig(nullptr, nullptr, L"en-US", L"no/profile") != kStartedWithoutProfile)
        return 1;
    std::fputs(utf8(rootOf(VornaConfig::CurrentProfileRoot)).c_str(), stdout);
    return 0;
}

TEST_F(ProfileAdoption, RecordedNameThatDoesNotFitTheRootGivesAnEmptyOne)
{
    recordProfile("5$" + std::string(1023, 'n'));
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    EXPECT_EQ(rootOf(VornaConfig::CurrentProfileRoot), L"");
}

TEST_F(ProfileAdoption, RecordedNameOf1024CharactersEndsTheProcess)
{
    Installation other;
    other.installLanguage("en-US");
    other.writeSetting(utf8(kProfiles) + "/Profiles", "5$" + std::string(1024, 'n'));
    const ProcessResult result = other.run("PrintProfileRoot");
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
}

class CurrentProfileName : public testing::Test
{
protected:
    static constexpr unsigned int kNeeded = 6; // "Night" and its terminator

    static void startAsNight() { ASSERT_EQ(start(L"Night"), 0U); }
    /// Asks with a buffer of that capacity; what `length` is then.
    static unsigned int lengthAfter(unsigned int capacity, unsigned int expectedResult)
    {
        GuardedBuffer buffer(capacity);
        unsigned int length = capacity;
        EXPECT_EQ(GetCurrentProfileName(buffer.data(), length), expectedResult) << capacity;
        EXPECT_TRUE(buffer.isUntouchedFrom(expectedResult == 0 ? 0 : kNeeded)) << capacity;
        EXPECT_TRUE(expectedResult == 0 || buffer.text() == L"Night");
        return length;
    }
};

TEST_F(CurrentProfileName, NullBufferAsksForTheSize)
{
    startAsNight();
    for (unsigned int length : {0U, 5U, 6U, 1024U}) {
        EXPECT_EQ(GetCurrentProfileName(nullptr, length), 0U);
        EXPECT_EQ(length, kNeeded);
    }
}

TEST_F(CurrentProfileName, LengthOneTooSmallGivesTheSizeNeeded)
{
    startAsNight();
    for (const unsigned int capacity : {0U, 1U, kNeeded - 1})
        EXPECT_EQ(lengthAfter(capacity, 0), kNeeded);
}

TEST_F(CurrentProfileName, ExactLengthCopiesAndStaysAsItIs)
{
    startAsNight();
    EXPECT_EQ(lengthAfter(kNeeded, kNeeded - 1), kNeeded);
}

TEST_F(CurrentProfileName, GreaterLengthStaysAsItIs)
{
    startAsNight();
    EXPECT_EQ(lengthAfter(kNeeded + 1, kNeeded - 1), kNeeded + 1);
    EXPECT_EQ(lengthAfter(1024, kNeeded - 1), 1024U);
}

TEST_F(CurrentProfileName, NoProfileAndNoUnnamedValueGiveLengthZero)
{
    recordProfile("5$Night"); // under its name, not unnamed
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    GuardedBuffer buffer(kCapacity);
    unsigned int length = kCapacity;
    EXPECT_EQ(GetCurrentProfileName(buffer.data(), length), 0U);
    EXPECT_EQ(length, 0U);
    EXPECT_TRUE(buffer.isUntouchedFrom(0));
    EXPECT_EQ(vornConfig()->profileName(), nullptr);
}

TEST_F(CurrentProfileName, BeforeInitialisationLengthIsZero)
{
    unsigned int length = 7;
    EXPECT_EQ(GetCurrentProfileName(nullptr, length), 0U);
    EXPECT_EQ(length, 0U);
}

TEST_F(CurrentProfileName, WithoutASettingsObjectLengthIsZero)
{
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    vornConfig()->uinitRegObject();
    unsigned int length = 7;
    EXPECT_EQ(GetCurrentProfileName(nullptr, length), 0U);
    EXPECT_EQ(length, 0U);
}

TEST_F(CurrentProfileName, AdoptedNameIsGiven)
{
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    rootOf(VornaConfig::CurrentProfileRoot);
    std::array<wchar_t, 8> name{};
    unsigned int length = name.size();
    EXPECT_EQ(GetCurrentProfileName(name.data(), length), 7U);
    EXPECT_STREQ(name.data(), L"Default");
}

TEST_F(CurrentProfileName, NameOfAThousandCharactersIsGivenWhole)
{
    ASSERT_EQ(start(), 0U);
    const std::wstring name = wideOf(1000, L'n');
    ASSERT_EQ(vornConfig()->updateProfileName(name.c_str()), 0U);
    GuardedBuffer buffer(1001);
    unsigned int length = 1001;
    EXPECT_EQ(GetCurrentProfileName(buffer.data(), length), 1000U);
    EXPECT_EQ(buffer.text(), name);
    EXPECT_TRUE(buffer.isWhole());
}
