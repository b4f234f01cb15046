#include <array>
#include <cwchar>
#include <filesystem>
#include <iostream>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "VrUInfo/VrUInfo.h"
#include "installation.h"
#include "small_library.h"

namespace fs = std::filesystem;
using namespace vrtest;

namespace
{

constexpr std::uint32_t kNoId = 0xFFFFFFFF;
constexpr DWORD kDetach = 0;

struct Row {
    int id;
    std::uint32_t lcid;
    const wchar_t* shortName;
    const wchar_t* globalName;
    const wchar_t* localName;
};

const std::array<Row, 15> kRows = {{{0, 1029, L"cs-CZ", L"Czech", L"Čeština"},
                                    {1, 1031, L"de-DE", L"German", L"Deutsch"},
                                    {2, 1033, L"en-US", L"English", L"English"},
                                    {3, 3082, L"es-ES", L"Spanish", L"Español"},
                                    {4, 1036, L"fr-FR", L"French", L"Français"},
                                    {5, 1038, L"hu-HU", L"Hungarian", L"Magyar"},
                                    {6, 1040, L"it-IT", L"Italian", L"Italiano"},
                                    {7, 1041, L"ja-JP", L"Japanese", L"日本語"},
                                    {8, 1042, L"ko-KR", L"Korean", L"한국어"},
                                    {9, 1045, L"pl-PL", L"Polish", L"Polski"},
                                    {10, 1046, L"pt-PT", L"Portuguese", L"Português"},
                                    {11, 1049, L"ru-RU", L"Russian", L"Русский"},
                                    {12, 1055, L"tr-TR", L"Turkish", L"Türkçe"},
                                    {13, 2052, L"zh-CN", L"Simplified Chinese", L"简体中文"},
                                    {14, 1028, L"zh-TW", L"Traditional Chinese", L"繁體中文"}}};

std::wstring inUpperCase(std::wstring text)
{
    for (wchar_t& c : text)
        c = c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
    return text;
}

/// Puts the resource library of a language where the unresolved language has its own, under any file name.
fs::path installForUnknown(const std::string& shortName = "en-US", const std::string& fileName = "libVrUInfoRes.so")
{
    const Installation& here = Installation::here();
    here.installLanguage(shortName);
    fs::create_directories(here.programDir() / "unknown");
    fs::path target = here.programDir() / "unknown" / fileName;
    fs::copy_file(here.programDir() / shortName / "libVrUInfoRes.so", target);
    return target;
}

void buildForUnknown(const std::string& english)
{
    buildLibrary(Installation::here().programDir() / "unknown" / "libVrUInfoRes.so", resourceSource({{1003, english}}));
}

/// Takes the library away from this process and from the disk, to the place given.
void takeLibraryAway(const fs::path& library, const fs::path& to)
{
    DllMain(nullptr, kDetach, nullptr);
    fs::rename(library, to);
}

std::wstring textOrNone(const wchar_t* text)
{
    return text ? text : L"(null)";
}

unsigned int start(const wchar_t* language)
{
    return InitVornConfig(nullptr, nullptr, language, nullptr);
}

// The table.

TEST(LanguageTable, ExportedArraysHoldTheFifteenNamesInTheOrderOfTheIds)
{
    static_assert(std::extent_v<decltype(_std_short_languages)> == 15);
    static_assert(std::extent_v<decltype(_std_global_languages)> == 15);
    for (const Row& row : kRows) {
        EXPECT_STREQ(_std_short_languages[row.id], row.shortName) << row.id;
        EXPECT_STREQ(_std_global_languages[row.id], row.globalName) << row.id;
    }
}

class LanguageRow : public testing::TestWithParam<int>
{
protected:
    static const Row& row() { return kRows[static_cast<std::size_t>(GetParam())]; }
};

TEST_P(LanguageRow, GivesItsNamesAndLocaleIdentifierToItsId)
{
    const VornaLanguage language(GetParam());
    EXPECT_EQ(language.id(), row().id);
    EXPECT_STREQ(language.shortName(), row().shortName);
    EXPECT_STREQ(language.globalName(), row().globalName);
    EXPECT_EQ(language.vornLanguage(), row().lcid);
}

TEST_P(LanguageRow, IsFoundByItsShortName)
{
    EXPECT_EQ(VornaLanguage(row().shortName).id(), GetParam());
    EXPECT_EQ(VornaLanguage::shortNameToLangId(row().shortName), static_cast<std::uint32_t>(GetParam()));
    EXPECT_TRUE(VornaLanguage::isValidShortName(row().shortName));
    EXPECT_EQ(GetVornLanguageIdByShortName(row().shortName), row().lcid);
}

TEST_P(LanguageRow, IsFoundByItsShortNameInAnotherCase)
{
    const std::wstring upper = inUpperCase(row().shortName);
    EXPECT_EQ(VornaLanguage(upper.c_str()).id(), GetParam());
    EXPECT_EQ(VornaLanguage::shortNameToLangId(upper.c_str()), static_cast<std::uint32_t>(GetParam()));
    EXPECT_TRUE(VornaLanguage::isValidShortName(upper.c_str()));
    EXPECT_EQ(GetVornLanguageIdByShortName(upper.c_str()), row().lcid);
}

INSTANTIATE_TEST_SUITE_P(OfId, LanguageRow, testing::Range(0, kVornLanguageCount), testing::PrintToStringParamName());

TEST(LanguageTable, PortugueseCarriesTheOtherCountrysLocaleIdentifier)
{
    EXPECT_EQ(VornaLanguage(10).vornLanguage(), 0x416U);
    EXPECT_STREQ(VornaLanguage(10).shortName(), L"pt-PT");
}

TEST(LanguageTable, SpanishCarriesTheModernSortOrdersLocaleIdentifier)
{
    EXPECT_EQ(VornaLanguage(3).vornLanguage(), 0xC0AU);
}

// Construction.

TEST(LanguageObject, IdsOutsideTheTableBecomeMinusOne)
{
    for (const int id : {15, -2, 16, 1000, -1000, 2147483647, -2147483647 - 1})
        EXPECT_EQ(VornaLanguage(id).id(), -1) << id;
}

TEST(LanguageObject, MinusOneStaysAndBothEndsOfTheTableAreIds)
{
    EXPECT_EQ(VornaLanguage(-1).id(), -1);
    EXPECT_EQ(VornaLanguage(0).id(), 0);
    EXPECT_EQ(VornaLanguage(14).id(), 14);
}

TEST(LanguageObject, ShortNameInAnyCaseGivesTheId)
{
    EXPECT_EQ(VornaLanguage(L"EN-us").id(), 2);
    EXPECT_EQ(VornaLanguage(L"en-us").id(), 2);
}

TEST(LanguageObject, NullEmptyAndUnknownShortNamesGiveMinusOne)
{
    EXPECT_EQ(VornaLanguage(static_cast<const wchar_t*>(nullptr)).id(), -1);
    for (const wchar_t* const name :
         {L"", L"en", L"en-USA", L"en_US", L" en-US", L"English", L"unknown", L"\u0131t-IT"})
        EXPECT_EQ(VornaLanguage(name).id(), -1) << utf8(name);
}

TEST(LanguageObject, OverlongShortNameIsUnknown)
{
    EXPECT_EQ(VornaLanguage(wideOf(100000, L'e').c_str()).id(), -1);
}

TEST(LanguageObject, UnknownLanguageHasTheUnknownNamesAndTheEnglishLocaleIdentifier)
{
    const VornaLanguage unknown(-1);
    EXPECT_STREQ(unknown.shortName(), L"unknown");
    EXPECT_STREQ(unknown.globalName(), L"unknown");
    EXPECT_EQ(unknown.vornLanguage(), 1033U);
}

TEST(LanguageObject, EqualityIsThatOfTheIds)
{
    EXPECT_TRUE(VornaLanguage(3) == VornaLanguage(L"es-es"));
    EXPECT_FALSE(VornaLanguage(3) == VornaLanguage(4));
    EXPECT_TRUE(VornaLanguage(-1) == VornaLanguage(99));
    EXPECT_TRUE(VornaLanguage(3) != VornaLanguage(-1));
}

TEST(LanguageObject, CopyAndAssignmentTakeTheId)
{
    const VornaLanguage french(4);
    const VornaLanguage copy(french); // NOLINT(performance-unnecessary-copy-initialization) the copy is the subject
    VornaLanguage target(7);
    EXPECT_EQ(&(target = french), &target);
    EXPECT_EQ(copy.id(), 4);
    EXPECT_EQ(target.id(), 4);
}

// The static look-ups.

TEST(LanguageLookup, ShortNameToLangIdHasAllBitsSetForNullEmptyAndUnknown)
{
    EXPECT_EQ(VornaLanguage::shortNameToLangId(nullptr), kNoId);
    EXPECT_EQ(VornaLanguage::shortNameToLangId(L""), kNoId);
    EXPECT_EQ(VornaLanguage::shortNameToLangId(L"xx-XX"), kNoId);
}

TEST(LanguageLookup, OnlyRowsOfTheTableAreValidShortNames)
{
    EXPECT_TRUE(VornaLanguage::isValidShortName(L"cs-CZ"));
    EXPECT_TRUE(VornaLanguage::isValidShortName(L"ZH-tw"));
    EXPECT_FALSE(VornaLanguage::isValidShortName(nullptr));
    EXPECT_FALSE(VornaLanguage::isValidShortName(L""));
    EXPECT_FALSE(VornaLanguage::isValidShortName(L"english"));
    EXPECT_FALSE(VornaLanguage::isValidShortName(L"unknown"));
}

TEST(LanguageLookup, LocaleIdentifierIsEnglishForUnknownNamesAndZeroForNone)
{
    EXPECT_EQ(GetVornLanguageIdByShortName(L"xx-XX"), 1033U);
    EXPECT_EQ(GetVornLanguageIdByShortName(L"unknown"), 1033U);
    EXPECT_EQ(GetVornLanguageIdByShortName(L""), 0U);
    EXPECT_EQ(GetVornLanguageIdByShortName(nullptr), 0U);
}

// The current language.

TEST(CurrentLanguage, IsUnknownBeforeTheStart)
{
    EXPECT_STREQ(GetCurrentLanguageShortName(), L"unknown");
    EXPECT_STREQ(GetCurrentLanguageGlobalName(), L"unknown");
    EXPECT_EQ(GetCurrentVornLanguageId(), 1033U);
    EXPECT_EQ(GetCurrentLanguageLocalName(), nullptr);
}

TEST(CurrentLanguage, IsTheResolvedOneAfterTheStart)
{
    Installation::here().installLanguage("pt-PT");
    ASSERT_EQ(start(L"pt-PT"), 0U);
    EXPECT_STREQ(GetCurrentLanguageShortName(), L"pt-PT");
    EXPECT_STREQ(GetCurrentLanguageGlobalName(), L"Portuguese");
    EXPECT_STREQ(GetCurrentLanguageLocalName(), L"Português");
    EXPECT_EQ(GetCurrentVornLanguageId(), 0x416U);
}

TEST(CurrentLanguage, FollowsALaterResolution)
{
    Installation::here().installLanguage("en-US");
    Installation::here().installLanguage("ja-JP");
    ASSERT_EQ(start(L"en-US"), 0U);
    static const wchar_t* former = nullptr; // still known at the end of the process
    former = GetCurrentLanguageLocalName();
    ASSERT_EQ(vornConfig()->initLanguageName(L"ja-JP"), 0U);
    EXPECT_STREQ(former, L"English");
    EXPECT_STREQ(GetCurrentLanguageShortName(), L"ja-JP");
    EXPECT_STREQ(GetCurrentLanguageLocalName(), L"日本語");
    EXPECT_EQ(GetCurrentVornLanguageId(), 1041U);
}

// Local names.

TEST(LocalName, EveryLanguageHasItsOwnInTheLibraryOfTheCurrentOne)
{
    Installation::here().installLanguage("fr-FR");
    ASSERT_EQ(start(L"fr-FR"), 0U);
    for (const Row& row : kRows)
        EXPECT_EQ(textOrNone(VornaLanguage(row.id).localName()), row.localName) << row.id;
}

TEST(LocalName, OfTheUnknownLanguageIsTheLibrarysWordForIt)
{
    Installation::here().installLanguage("de-DE");
    ASSERT_EQ(start(L"de-DE"), 0U);
    EXPECT_EQ(textOrNone(VornaLanguage(-1).localName()), L"Unbekannt");
    EXPECT_EQ(textOrNone(VornaLanguage(15).localName()), L"Unbekannt");
}

TEST(LocalName, LoadsTheLibraryOnFirstRequestAndKeepsItsHandle)
{
    const fs::path library = installForUnknown();
    ASSERT_EQ(gVrUInfoResDllInstance, nullptr);
    const VornaLanguage german(1);
    ASSERT_EQ(gVrUInfoResDllInstance, nullptr);
    EXPECT_EQ(textOrNone(german.localName()), L"Deutsch");
    ASSERT_NE(gVrUInfoResDllInstance, nullptr);
    EXPECT_EQ(GetModuleHandleW(library.wstring().c_str()), gVrUInfoResDllInstance);
}

TEST(LocalName, IsCached)
{
    const fs::path library = installForUnknown();
    const VornaLanguage german(1);
    const wchar_t* const first = german.localName();
    takeLibraryAway(library, Installation::here().root() / "away.so");
    EXPECT_EQ(german.localName(), first);
    EXPECT_EQ(textOrNone(german.localName()), L"Deutsch");
}

TEST(LocalName, OfACopyIsLoadedAnewThoughTheSourceHasIt)
{
    const fs::path library = installForUnknown();
    const VornaLanguage source(1);
    ASSERT_EQ(textOrNone(source.localName()), L"Deutsch");
    const VornaLanguage copy(source); // NOLINT(performance-unnecessary-copy-initialization) the copy is the subject
    takeLibraryAway(library, Installation::here().root() / "away.so");
    EXPECT_EQ(copy.localName(), nullptr);
    fs::rename(Installation::here().root() / "away.so", library);
    EXPECT_EQ(textOrNone(copy.localName()), L"Deutsch");
    EXPECT_NE(copy.localName(), source.localName());
}

TEST(LocalName, IsForgottenByAssignmentThoughTheSourceHasIt)
{
    const fs::path library = installForUnknown();
    const VornaLanguage source(1);
    VornaLanguage target(2);
    ASSERT_EQ(textOrNone(source.localName()), L"Deutsch");
    static const wchar_t* former = nullptr; // still known at the end of the process
    former = target.localName();
    target = source;
    takeLibraryAway(library, Installation::here().root() / "away.so");
    EXPECT_EQ(target.localName(), nullptr);
    EXPECT_EQ(textOrNone(former), L"English");
}

TEST(LocalName, HandedOutBeforeAnAssignmentStaysValid)
{
    installForUnknown();
    static const wchar_t* former = nullptr; // still known at the end of the process
    {
        VornaLanguage language(7);
        former = language.localName();
        language = VornaLanguage(8);
        EXPECT_EQ(textOrNone(language.localName()), L"한국어");
        EXPECT_EQ(textOrNone(former), L"日本語");
    }
    EXPECT_EQ(textOrNone(former), L"日本語");
}

TEST(LocalName, HandedOutBeforeAnAssignmentToItselfStaysValid)
{
    installForUnknown();
    static const wchar_t* former = nullptr; // still known at the end of the process
    VornaLanguage language(7);
    former = language.localName();
    const VornaLanguage& itself = language;
    language = itself;
    EXPECT_EQ(textOrNone(language.localName()), L"日本語");
    EXPECT_EQ(textOrNone(former), L"日本語");
}

TEST(LocalName, IsNullWithoutALibraryAndTheNextCallTriesAgain)
{
    const VornaLanguage german(1);
    ASSERT_EQ(german.localName(), nullptr);
    ASSERT_EQ(gVrUInfoResDllInstance, nullptr);
    installForUnknown();
    EXPECT_EQ(textOrNone(german.localName()), L"Deutsch");
}

TEST(LocalName, IsNullWhenTheLibraryIsNone)
{
    Installation::here().write("unknown/libVrUInfoRes.so", "this is no library\n");
    EXPECT_EQ(VornaLanguage(1).localName(), nullptr);
    EXPECT_EQ(gVrUInfoResDllInstance, nullptr);
}

TEST(LocalName, IsNullWhenTheLibraryHasNoSuchText)
{
    buildForUnknown("English");
    EXPECT_EQ(VornaLanguage(1).localName(), nullptr);
    EXPECT_NE(gVrUInfoResDllInstance, nullptr);
    EXPECT_EQ(textOrNone(VornaLanguage(2).localName()), L"English");
}

TEST(LocalName, IsNullWhenTheTextIsEmpty)
{
    buildForUnknown("");
    EXPECT_EQ(VornaLanguage(2).localName(), nullptr);
}

TEST(LocalName, HasSixtyTwoCharactersAtMost)
{
    buildForUnknown(std::string(62, 'n'));
    EXPECT_EQ(textOrNone(VornaLanguage(2).localName()), wideOf(62, L'n'));
}

TEST(LocalName, IsCutBehindSixtyTwoCharacters)
{
    buildForUnknown(std::string(63, 'n'));
    EXPECT_EQ(textOrNone(VornaLanguage(2).localName()), wideOf(62, L'n'));
}

TEST(LocalName, UsesTheLibraryWithTheProductsPrefix)
{
    Installation::here().write("host.ini", "[Product]\nPreStr=Qx\n");
    installForUnknown("de-DE");
    ASSERT_EQ(VornaLanguage(1).localName(), nullptr);
    installForUnknown("fr-FR", "libQxUInfoRes.so");
    EXPECT_EQ(textOrNone(VornaLanguage(-1).localName()), L"Inconnue");
}

TEST(LocalName, UsesTheOrdinaryLibraryWhenThePrefixIsEmpty)
{
    Installation::here().write("host.ini", "[Product]\nPreStr=\n");
    installForUnknown("de-DE");
    EXPECT_EQ(textOrNone(VornaLanguage(-1).localName()), L"Unbekannt");
}

TEST(LocalName, IsNullWithAPrefixThatNoFileNameCanHold)
{
    Installation::here().write("host.ini", "[Product]\nPreStr=" + std::string(1022, 'p') + "\n");
    installForUnknown();
    EXPECT_EQ(VornaLanguage(1).localName(), nullptr);
}

TEST(LocalName, UsesALibraryThatIsLoadedAlreadyWhateverThePrefix)
{
    Installation::here().write("host.ini", "[Product]\nPreStr=Qx\n");
    Installation::here().installLanguage("de-DE");
    ASSERT_EQ(start(L"de-DE"), 0U);
    ASSERT_NE(gVrUInfoResDllInstance, nullptr);
    EXPECT_EQ(textOrNone(VornaLanguage(1).localName()), L"Deutsch");
}

TEST(LocalName, EachOfManyObjectsHasItsOwn)
{
    installForUnknown();
    constexpr int kTimes = 1000;
    for (int i = 0; i < kTimes; ++i) {
        const VornaLanguage language(i % 15);
        ASSERT_EQ(textOrNone(language.localName()), kRows[static_cast<std::size_t>(i % 15)].localName);
    }
}

PROBE(useUnknownLanguage)
{
    const VornaLanguage language(1);
    return language.localName() || GetCurrentLanguageLocalName() ? 1 : 0;
}

TEST(LocalName, NothingIsPrintedWhenItCannotBeHad)
{
    const ProcessResult result = Installation::here().run("useUnknownLanguage");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
}

} // namespace
