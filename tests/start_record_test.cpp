// The record of a start: where each piece of the identity came from, and what was passed over.
#include <algorithm>

#include <QtCore/QSettings>

#include <gtest/gtest.h>

#include "VrUInfo/Diagnostics.h"
#include "start_words.h"
#include "unprivileged.h"

using namespace vrtest;

namespace
{

using Pieces = std::vector<std::string>;

Pieces pieces()
{
    Pieces names;
    for (const VornStartEntry& entry : vornStartRecord())
        names.push_back(utf8(entry.piece));
    return names;
}

const Pieces kWholeStart = {"company", "product",     "version",     "language",
                            "profile", "oem product", "oem company", "oem legal name"};

class StartRecordTest : public testing::Test
{
protected:
    StartRecordTest() : m_here(Installation::here()), m_config(*vornConfig()) { m_here.installLanguage("en-US"); }

    static const VornStartEntry& entry(const std::string& piece)
    {
        static const VornStartEntry kNone{L"", L"no such piece", VornOrigin::Default, L"no such piece", {}};
        for (const VornStartEntry& candidate : vornStartRecord()) {
            if (utf8(candidate.piece) == piece)
                return candidate;
        }
        ADD_FAILURE() << "no piece " << piece;
        return kNone;
    }
    static void expect(const std::string& piece, const std::string& value, VornOrigin origin,
                       const std::string& place = "")
    {
        EXPECT_EQ(utf8(entry(piece).value), value) << piece;
        EXPECT_EQ(entry(piece).origin, origin) << piece;
        EXPECT_EQ(utf8(entry(piece).place), place) << piece;
    }
    /// What was passed over, each as "<place>: <reason>".
    static void expectPassedOver(const std::string& piece, const Pieces& expected)
    {
        Pieces seen;
        for (const std::wstring& text : entry(piece).passedOver)
            seen.push_back(utf8(text));
        EXPECT_EQ(seen, expected) << piece;
    }
    void writeIni(const std::string& text) const { m_here.write("VORNA.ini", text); }
    std::string libraryText(int id) const
    {
        return (m_here.programDir() / "en-US/libVrUInfoRes.so").string() + " string " + std::to_string(id);
    }

    const Installation& m_here;
    VornaConfig& m_config;
};

TEST_F(StartRecordTest, IsEmptyBeforeTheStart)
{
    EXPECT_TRUE(vornStartRecord().empty());
    m_config.initRegObject(nullptr, nullptr);
    m_config.initCompanyName(nullptr);
    m_config.initProductName(nullptr);
    EXPECT_TRUE(vornStartRecord().empty()) << "steps by themselves are no start";
}

TEST_F(StartRecordTest, HoldsEveryPieceInTheOrderOfResolution)
{
    ASSERT_EQ(startWith({"Acme", "Draw", "en-US", "Work"}), 0U);
    EXPECT_EQ(pieces(), kWholeStart);
}

TEST_F(StartRecordTest, HoldsEveryPieceAlsoWithoutArguments)
{
    Boxes::answerWith(IDYES);
    ASSERT_EQ(startWith({}), 0U);
    EXPECT_EQ(pieces(), kWholeStart);
}

TEST_F(StartRecordTest, ArgumentsAreArguments)
{
    ASSERT_EQ(startWith({"Acme", "Draw", "en-us", "Work"}), 0U);
    expect("company", "Acme", VornOrigin::Argument);
    expect("product", "Draw", VornOrigin::Argument);
    expect("language", "en-US", VornOrigin::Argument);
    expect("profile", "Work", VornOrigin::Argument);
}

TEST_F(StartRecordTest, ArgumentsPassNothingOver)
{
    ASSERT_EQ(startWith({"Acme", "Draw", "en-US", "Work"}), 0U);
    for (const char* const piece : {"company", "product", "version", "language", "profile"})
        expectPassedOver(piece, {});
}

TEST_F(StartRecordTest, VersionIsBuiltIn)
{
    writeIni("[Product]\nVersion=2030\n");
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    expect("version", "2026", VornOrigin::Default);
}

TEST_F(StartRecordTest, DefaultsAreDefaultsAndSayWhatWasMissing)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    expect("company", "HALVIK", VornOrigin::Default);
    expectPassedOver("company", {"VORNA.ini [Product] CompanyName: not there, or the file is not readable"});
    expect("product", "VORNA", VornOrigin::Default);
    expectPassedOver("product", {"Software/HALVIK/CurProduct: not there",
                                 "VORNA.ini [Product] ProductName: not there, or the file is not readable"});
}

TEST_F(StartRecordTest, IniFileIsNamedWithSectionAndKey)
{
    writeIni("[Product]\nCompanyName=Acme\nProductName=Draw\nLocaleId=1033\n[LocaleIdLangName]\n1033=en-US\n");
    ASSERT_EQ(startWith({}), 0U);
    expect("company", "Acme", VornOrigin::IniFile, "VORNA.ini [Product] CompanyName");
    expect("product", "Draw", VornOrigin::IniFile, "VORNA.ini [Product] ProductName");
    expect("language", "en-US", VornOrigin::IniFile, "VORNA.ini [LocaleIdLangName] 1033");
    expectPassedOver("company", {});
    expectPassedOver("product", {"Software/Acme/CurProduct: not there"});
    expectPassedOver("language", {"Software/Acme/Draw/2026/CurVer: not there"});
}

TEST_F(StartRecordTest, SettingsAreNamedWithGroupAndValue)
{
    m_here.writeSetting("Software/HALVIK/CurProduct", "5$VORNAM");
    m_here.writeSetting("Software/HALVIK/VORNAM/2026/CurVer", "5$en-US");
    m_here.writeSetting("Software/HALVIK/VORNAM/2026/en-US/Profiles/Profiles", "5$Work");
    ASSERT_EQ(startWith({}), 0U);
    expect("product", "VORNAM", VornOrigin::Settings, "Software/HALVIK/CurProduct");
    expect("language", "en-US", VornOrigin::Settings, "Software/HALVIK/VORNAM/2026/CurVer");
    expect("profile", "Work", VornOrigin::Settings, "Software/HALVIK/VORNAM/2026/en-US/Profiles/Profiles");
    for (const char* const piece : {"product", "language", "profile"})
        expectPassedOver(piece, {});
}

TEST_F(StartRecordTest, SettingsThatCannotBeTakenSayWhy)
{
    m_here.writeSetting("Software/HALVIK/CurProduct", "4$VORNAM");
    m_here.writeSetting("Software/HALVIK/VORNA/2026/CurVer", "5$");
    m_here.writeSetting("Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles", "5$");
    Boxes::answerWith(IDYES);
    ASSERT_EQ(startWith({}), 0U);
    expectPassedOver("product", {"Software/HALVIK/CurProduct: its mark is not 5",
                                 "VORNA.ini [Product] ProductName: not there, or the file is not readable"});
    expectPassedOver("language", {"Software/HALVIK/VORNA/2026/CurVer: it is empty",
                                  "VORNA.ini [Product] LocaleId: not there, or the file is not readable"});
    expectPassedOver("profile", {"Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles: it is empty"});
}

TEST_F(StartRecordTest, ProfileThatIsNotRecordedIsTheDefault)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    expect("profile", "Default", VornOrigin::Default);
    expectPassedOver("profile", {"Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles: not there"});
}

TEST_F(StartRecordTest, AgreedLanguageWasAskedFor)
{
    Boxes::answerWith(IDYES);
    ASSERT_EQ(startWith({"-", "-", "de-DE"}), 0U);
    expect("language", "en-US", VornOrigin::Asked);
    expectPassedOver("language", {"de-DE: its folder is missing, not readable, or holds no *.so"});
}

TEST_F(StartRecordTest, LanguageOfTheIniFileThatIsNotInstalledIsPassedOver)
{
    writeIni("[Product]\nLocaleId=1031\n[LocaleIdLangName]\n1031=de-DE\n");
    Boxes::answerWith(IDYES);
    ASSERT_EQ(startWith({}), 0U);
    expect("language", "en-US", VornOrigin::Asked);
    expectPassedOver("language", {"Software/HALVIK/VORNA/2026/CurVer: not there",
                                  "VORNA.ini [LocaleIdLangName] 1031 = de-DE: its folder is missing, not "
                                  "readable, or holds no *.so"});
}

TEST_F(StartRecordTest, RecordedLanguageThatIsNoneIsPassedOver)
{
    m_here.writeSetting("Software/HALVIK/VORNA/2026/CurVer", "5$xx-XX");
    Boxes::answerWith(IDYES);
    ASSERT_EQ(startWith({}), 0U);
    expectPassedOver("language", {"Software/HALVIK/VORNA/2026/CurVer = xx-XX: not the short name of a language"});
}

TEST_F(StartRecordTest, BrandingNamesLibraryAndText)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    expect("oem product", utf8(m_config.oemProductName()), VornOrigin::ResourceLibrary, libraryText(4092));
    expect("oem company", utf8(m_config.oemCompanyName()), VornOrigin::ResourceLibrary, libraryText(4091));
    expect("oem legal name", utf8(m_config.oemCompanyLtdName()), VornOrigin::ResourceLibrary, libraryText(4095));
}

TEST_F(StartRecordTest, PartnersBrandingNamesThePartnersLibrary)
{
    const std::string partner = m_here.installPartner("en-US").string();
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    expect("oem product", utf8(m_config.oemProductName()), VornOrigin::ResourceLibrary, partner + " string 4092");
}

TEST_F(StartRecordTest, PartnersLibraryThatCannotBeLoadedIsPassedOver)
{
    m_here.writeSetting("Software/HALVIK/VORNA/2026/en-US/Profiles/Default/CommonSettings/CustomResFile",
                        "5$/no/such/VrCustomRes.so");
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    expect("oem product", utf8(m_config.oemProductName()), VornOrigin::ResourceLibrary, libraryText(4092));
    expectPassedOver("oem product", {"/no/such/VrCustomRes.so: the partner library is recorded but cannot be loaded"});
}

TEST_F(StartRecordTest, PiecesThatWereNotReachedAreMissing)
{
    std::filesystem::remove(m_here.programDir() / "en-US/libVrUInfoRes.so");
    m_here.installEmptyLanguage("en-US");
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 5U);
    EXPECT_EQ(pieces(), (Pieces{"company", "product", "version", "language"}));
}

TEST_F(StartRecordTest, RefusedCompanyLeavesNothing)
{
    ASSERT_EQ(startWith({std::string(255, 'x')}), 7U);
    EXPECT_TRUE(vornStartRecord().empty());
}

TEST_F(StartRecordTest, RefusedProductLeavesTheCompany)
{
    ASSERT_EQ(startWith({"Acme", std::string(255, 'x')}), 7U);
    EXPECT_EQ(pieces(), Pieces{"company"});
}

TEST_F(StartRecordTest, RefusedProfileLeavesTheSteps)
{
    ASSERT_EQ(startWith({"-", "-", "en-US", "a/b"}), 8U);
    EXPECT_EQ(pieces(), (Pieces{"company", "product", "version", "language"}));
}

TEST_F(StartRecordTest, SecondStartThatRunsIsRecordedAnew)
{
    ASSERT_EQ(startWith({std::string(255, 'x')}), 7U);
    ASSERT_EQ(startWith({"Acme", "-", "en-US"}), 0U);
    EXPECT_EQ(pieces(), kWholeStart);
    expect("company", "Acme", VornOrigin::Argument);
}

TEST_F(StartRecordTest, SecondStartOfAnInitialisedObjectLeavesTheRecord)
{
    ASSERT_EQ(startWith({"Acme", "Draw", "en-US", "Work"}), 0U);
    ASSERT_EQ(startWith({"Other"}), 0U);
    EXPECT_EQ(pieces(), kWholeStart);
    expect("company", "Acme", VornOrigin::Argument);
}

TEST_F(StartRecordTest, LaterChangesLeaveTheRecord)
{
    m_here.installLanguage("de-DE");
    ASSERT_EQ(startWith({"Acme", "Draw", "en-US", "Work"}), 0U);
    m_config.updateProfileName(L"Play");
    m_config.initLanguageName(L"de-DE");
    EXPECT_EQ(pieces(), kWholeStart);
    expect("profile", "Work", VornOrigin::Argument);
    expect("language", "en-US", VornOrigin::Argument);
}

TEST_F(StartRecordTest, OriginsHaveFixedNumbers)
{
    EXPECT_EQ(static_cast<int>(VornOrigin::Argument), 0);
    EXPECT_EQ(static_cast<int>(VornOrigin::Settings), 1);
    EXPECT_EQ(static_cast<int>(VornOrigin::IniFile), 2);
    EXPECT_EQ(static_cast<int>(VornOrigin::Default), 3);
    EXPECT_EQ(static_cast<int>(VornOrigin::Asked), 4);
    EXPECT_EQ(static_cast<int>(VornOrigin::ResourceLibrary), 5);
}

} // namespace

/// Starts in English; prints what was passed over for the company.
PROBE(passedOver)
{
    startWith({"-", "-", "en-US"});
    for (const std::wstring& text : vornStartRecord().front().passedOver)
        std::cout << utf8(text) << "\n";
    return 0;
}

namespace
{

TEST_F(StartRecordTest, UnreadableIniFileIsPassedOver)
{
    writeIni("[Product]\nCompanyName=Acme\n");
    setMode(m_here.programDir() / "VORNA.ini", 0);
    EXPECT_EQ(runUnprivileged(m_here, "passedOver").out,
              "VORNA.ini [Product] CompanyName: not there, or the file is not readable\n");
}

} // namespace
