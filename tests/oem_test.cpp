#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <QtGui/QGuiApplication>
#include <QtGui/QIcon>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QPixmap>

#include <gtest/gtest.h>

#include "VrUInfo/VrUInfo.h"
#include "installation.h"
#include "small_library.h"

namespace fs = std::filesystem;
using namespace vrtest;

namespace
{

constexpr char kPartnerValue[] = "Software/HALVIK/VORNA/2026/en-US/Profiles/Default/CommonSettings/CustomResFile";
constexpr wchar_t kLanguageIcon[] = L":/VrUInfoRes/VrUInfoRes/IDI_VORNA_OEM_APPLICATION_EXE";
constexpr wchar_t kPartnerIcon[] = L":/VrCustomRes/VrCustomRes/IDI_VORNA_OEM_APPLICATION_EXE";
constexpr int kSide = 32;

QString languagePrefix()
{
    return QStringLiteral(":/VrUInfoRes/VrUInfoRes");
}

QString partnerPrefix()
{
    return QStringLiteral(":/VrCustomRes/VrCustomRes");
}

unsigned int start()
{
    return InitVornConfig(nullptr, nullptr, L"en-US", nullptr);
}

void startInEnglish()
{
    Installation::here().installLanguage("en-US");
    ASSERT_EQ(start(), 0U);
}

/// A start with the sample partner's library beside the language's.
void startWithPartner()
{
    Installation::here().installPartner("en-US");
    startInEnglish();
}

/// A start with a partner's library that holds these texts and no icon.
void startWithPartnerTexts(const std::map<unsigned int, std::string>& texts)
{
    buildLibrary(Installation::here().programDir() / "en-US/VrCustomRes.so", resourceSource(texts));
    startInEnglish();
    ASSERT_EQ(g_strPrefix, partnerPrefix());
}

void expectNamesOfTheProduct()
{
    EXPECT_STREQ(GetOemProductName(), L"VORNA");
    EXPECT_STREQ(GetOemCompanyName(), L"HALVIK");
    EXPECT_STREQ(GetOemCompanyLtdName(), L"HALVIK CO., LTD.(Eastport)");
}

void expectNamesOfThePartner()
{
    EXPECT_STREQ(GetOemProductName(), L"Kestrel Draft");
    EXPECT_STREQ(GetOemCompanyName(), L"Northmoor");
    EXPECT_STREQ(GetOemCompanyLtdName(), L"Northmoor Engineering Ltd.");
}

void expectNoIcons()
{
    EXPECT_EQ(GetOemAppIcon(true), nullptr);
    EXPECT_EQ(GetOemAppIcon(false), nullptr);
}

HMODULE languageLibrary()
{
    return GetModuleHandleW((Installation::here().programDir() / "en-US/libVrUInfoRes.so").wstring().c_str());
}

HMODULE moduleOf(const fs::path& library)
{
    return GetModuleHandleW(library.wstring().c_str());
}

void recordPartner(const fs::path& library)
{
    Installation::here().writeSetting(kPartnerValue, "5$" + library.string());
}

void recordPartnerNow(const fs::path& library)
{
    VornVariant value;
    value.setString(library.wstring().c_str(), VornVariant::kVarString);
    ASSERT_EQ(vornConfig()->setValue(VornaConfig::CurrentProfileRoot, L"CommonSettings/CustomResFile", value), 0U);
}

// Before the start.

TEST(BrandingBeforeTheStart, HasTheFallbackNamesAndNoIcons)
{
    expectNamesOfTheProduct();
    expectNoIcons();
    EXPECT_EQ(GetOemAppIconPath(), nullptr);
}

TEST(BrandingBeforeTheStart, ThePrefixIsThePartners)
{
    EXPECT_EQ(g_strPrefix, partnerPrefix());
    EXPECT_TRUE(vornConfig()->isNeedCheckOemPath());
}

TEST(BrandingBeforeTheStart, HasNoTextsWithoutALibrary)
{
    std::wstring text = L"as it was";
    EXPECT_FALSE(getOemResourceString(4092, text));
    EXPECT_EQ(text, L"as it was");
    EXPECT_EQ(g_strPrefix, languagePrefix());
}

TEST(BrandingBeforeTheStart, HasNoHandleWithoutALibrary)
{
    EXPECT_EQ(GetOemResourceDllHandle(), nullptr);
    EXPECT_EQ(g_strPrefix, languagePrefix());
}

TEST(BrandingBeforeTheStart, ATextOfThePartnerCanBeHad)
{
    Installation::here().write("VORNA.ini", "[LocaleIdLangName]\n2052=zh-CN\n");
    Installation::here().installPartner("zh-CN");
    std::wstring text;
    EXPECT_TRUE(getOemResourceString(5001, text));
    EXPECT_EQ(text, L"Welcome to Kestrel Draft");
    EXPECT_STREQ(GetOemProductName(), L"VORNA");
}

TEST(BrandingBeforeTheStart, AChoiceMadeKeepsTheStartFromLoadingNames)
{
    Installation::here().write("VORNA.ini", "[LocaleIdLangName]\n2052=zh-CN\n");
    Installation::here().installPartner("zh-CN");
    std::wstring text;
    ASSERT_TRUE(getOemResourceString(5001, text));
    startInEnglish();
    expectNamesOfTheProduct();
    expectNoIcons();
    EXPECT_EQ(GetOemAppIconPath(), nullptr);
}

TEST(BrandingBeforeTheStart, AskingForTheHandleDoesNotKeepTheStartFromLoadingNames)
{
    ASSERT_EQ(GetOemResourceDllHandle(), nullptr);
    startWithPartner();
    expectNamesOfThePartner();
}

// The language's own library.

TEST(Branding, WithoutAPartnerComesFromTheLanguagesLibrary)
{
    startInEnglish();
    EXPECT_EQ(g_strPrefix, languagePrefix());
    EXPECT_FALSE(vornConfig()->isNeedCheckOemPath());
    auto* const handle = GetOemResourceDllHandle();
    EXPECT_NE(handle, nullptr);
    EXPECT_EQ(handle, languageLibrary());
    EXPECT_EQ(gVrUInfoResDllInstance, languageLibrary());
    expectNamesOfTheProduct();
    EXPECT_STREQ(GetOemAppIconPath(), kLanguageIcon);
}

TEST(Branding, TakesTheNamesThatTheLanguagesLibraryHas)
{
    Installation::here().installLanguage("en-US");
    buildLibrary(Installation::here().programDir() / "en-US/libVrUInfoRes.so",
                 resourceSource({{4091, "Company"}, {4092, "Product"}, {4095, "Legal name"}}));
    ASSERT_EQ(start(), 0U);
    EXPECT_STREQ(GetOemProductName(), L"Product");
    EXPECT_STREQ(GetOemCompanyName(), L"Company");
    EXPECT_STREQ(GetOemCompanyLtdName(), L"Legal name");
    EXPECT_STREQ(vornConfig()->oemProductName(), L"Product");
    EXPECT_STREQ(vornConfig()->oemCompanyName(), L"Company");
    EXPECT_STREQ(vornConfig()->oemCompanyLtdName(), L"Legal name");
}

TEST(Branding, NamesOfTheIdentityAreNotThoseOfTheBrand)
{
    startWithPartner();
    EXPECT_STREQ(vornConfig()->productName(), L"VORNA");
    EXPECT_STREQ(vornConfig()->companyName(), L"HALVIK");
    expectNamesOfThePartner();
}

TEST(Branding, WithoutAPartnerGivesNoTextForAnyId)
{
    startInEnglish();
    std::wstring text = L"as it was";
    for (const unsigned int id : {0U, 1U, 1001U, 1103U, 4091U, 4092U, 4095U, 5001U, 65535U, 4294967295U})
        EXPECT_FALSE(getOemResourceString(id, text)) << id;
    EXPECT_EQ(text, L"as it was");
}

TEST(Branding, KeepsItsFallbacksWhenTheLanguagesLibraryIsNone)
{
    Installation::here().installEmptyLanguage("en-US");
    Installation::here().write("en-US/libVrUInfoRes.so", "this is no library\n");
    ASSERT_EQ(start(), 0U);
    expectNamesOfTheProduct();
    expectNoIcons();
    EXPECT_EQ(GetOemAppIconPath(), nullptr);
    EXPECT_EQ(gVrUInfoResDllInstance, nullptr);
    EXPECT_EQ(GetOemResourceDllHandle(), nullptr);
    EXPECT_EQ(g_strPrefix, languagePrefix());
}

TEST(Branding, IsTriedAgainWhenNoLibraryCouldBeLoaded)
{
    Installation::here().installEmptyLanguage("en-US");
    Installation::here().write("en-US/libVrUInfoRes.so", "this is no library\n");
    ASSERT_EQ(start(), 0U);
    fs::remove(Installation::here().programDir() / "en-US/libVrUInfoRes.so");
    Installation::here().installLanguage("en-US");
    EXPECT_EQ(vornConfig()->initOemResource(), 1U);
    EXPECT_STREQ(GetOemAppIconPath(), kLanguageIcon);
    EXPECT_NE(GetOemAppIcon(true), nullptr);
}

TEST(Branding, IsLoadedOnce)
{
    startInEnglish();
    const wchar_t* const name = GetOemProductName();
    const QIcon* const icon = GetOemAppIcon(true);
    Installation::here().installPartner("en-US");
    EXPECT_EQ(vornConfig()->initOemResource(), 1U);
    EXPECT_EQ(GetOemProductName(), name);
    EXPECT_EQ(GetOemAppIcon(true), icon);
    EXPECT_EQ(g_strPrefix, languagePrefix());
}

// The partner's library.

TEST(PartnerBranding, ComesFromTheLibraryBesideTheLanguages)
{
    startWithPartner();
    EXPECT_EQ(g_strPrefix, partnerPrefix());
    EXPECT_TRUE(vornConfig()->isNeedCheckOemPath());
    EXPECT_EQ(GetOemResourceDllHandle(), moduleOf(Installation::here().programDir() / "en-US/VrCustomRes.so"));
    EXPECT_NE(GetOemResourceDllHandle(), nullptr);
    expectNamesOfThePartner();
    EXPECT_STREQ(GetOemAppIconPath(), kPartnerIcon);
    EXPECT_STREQ(vornConfig()->oemAppIconPath(), kPartnerIcon);
    EXPECT_EQ(gVrUInfoResDllInstance, nullptr);
}

TEST(PartnerBranding, ComesFromTheRecordedLibrary)
{
    const fs::path recorded = Installation::here().installPartner("brand");
    recordPartner(recorded);
    startInEnglish();
    expectNamesOfThePartner();
    EXPECT_EQ(GetOemResourceDllHandle(), moduleOf(recorded));
}

TEST(PartnerBranding, ComesFromALibraryThatIsLoadedAlreadyUnderItsRecordedName)
{
    const fs::path library = Installation::here().installPartner("brand");
    auto* const loaded = LoadLibraryW(library.wstring().c_str());
    ASSERT_NE(loaded, nullptr);
    recordPartner("VrCustomRes.so");
    startInEnglish();
    EXPECT_EQ(GetOemResourceDllHandle(), loaded);
    expectNamesOfThePartner();
}

TEST(PartnerBranding, GivesWayToTheLanguagesLibraryWhenTheRecordedOneIsMissing)
{
    const fs::path missing = Installation::here().programDir() / "nowhere/VrCustomRes.so";
    Installation::here().installPartner("en-US");
    recordPartner(missing);
    startInEnglish();
    EXPECT_EQ(g_strPrefix, languagePrefix());
    EXPECT_EQ(GetOemResourceDllHandle(), languageLibrary());
    expectNamesOfTheProduct();
    EXPECT_STREQ(GetOemAppIconPath(), kLanguageIcon);
    flush();
    EXPECT_EQ(textInFile(Installation::here().settingsFile(), kPartnerValue).toStdString(), "5$" + missing.string());
}

TEST(PartnerBranding, GivesWayToTheLanguagesLibraryWhenTheRecordedOneIsNoLibrary)
{
    Installation::here().write("brand/VrCustomRes.so", "this is no library\n");
    recordPartner(Installation::here().programDir() / "brand/VrCustomRes.so");
    startInEnglish();
    EXPECT_EQ(g_strPrefix, languagePrefix());
    expectNamesOfTheProduct();
}

TEST(PartnerBranding, GivesWayToTheLanguagesLibraryWhenTheOneBesideItIsNoLibrary)
{
    Installation::here().write("en-US/VrCustomRes.so", "this is no library\n");
    startInEnglish();
    EXPECT_EQ(g_strPrefix, languagePrefix());
    expectNamesOfTheProduct();
}

TEST(PartnerBranding, GivesWayToTheLanguagesLibraryWhenTheRecordIsOfAnotherKind)
{
    Installation::here().installPartner("en-US");
    Installation::here().writeSetting(kPartnerValue, "1$42");
    startInEnglish();
    EXPECT_EQ(g_strPrefix, languagePrefix());
    expectNamesOfTheProduct();
}

TEST(PartnerBranding, KeepsTheFallbackForANameThatTheLibraryDoesNotHave)
{
    startWithPartnerTexts({{4092, "Drafter"}});
    EXPECT_STREQ(GetOemProductName(), L"Drafter");
    EXPECT_STREQ(GetOemCompanyName(), L"HALVIK");
    EXPECT_STREQ(GetOemCompanyLtdName(), L"HALVIK CO., LTD.(Eastport)");
}

TEST(PartnerBranding, KeepsTheFallbackForANameThatIsEmpty)
{
    startWithPartnerTexts({{4091, ""}, {4092, "Drafter"}, {4095, ""}});
    EXPECT_STREQ(GetOemProductName(), L"Drafter");
    EXPECT_STREQ(GetOemCompanyName(), L"HALVIK");
    EXPECT_STREQ(GetOemCompanyLtdName(), L"HALVIK CO., LTD.(Eastport)");
}

TEST(PartnerBranding, NamesHaveOneThousandTwentyTwoCharactersAtMost)
{
    startWithPartnerTexts(
        {{4091, std::string(1022, 'c')}, {4092, std::string(1023, 'p')}, {4095, std::string(5000, 'l')}});
    EXPECT_EQ(GetOemCompanyName(), wideOf(1022, L'c'));
    EXPECT_EQ(GetOemProductName(), wideOf(1022, L'p'));
    EXPECT_EQ(GetOemCompanyLtdName(), wideOf(1022, L'l'));
}

// The partner's texts.

TEST(PartnerText, IsGivenById)
{
    startWithPartner();
    std::wstring text;
    EXPECT_TRUE(getOemResourceString(5001, text));
    EXPECT_EQ(text, L"Welcome to Kestrel Draft");
    EXPECT_TRUE(vornConfig()->getOemResourceString(5002, text));
    EXPECT_EQ(text, L"Drawing support: weekdays, 9\u201317 h");
    EXPECT_TRUE(getOemResourceString(4092, text));
    EXPECT_EQ(text, L"Kestrel Draft");
}

TEST(PartnerText, ReplacesALongerOne)
{
    startWithPartner();
    std::wstring text = wideOf(3000);
    EXPECT_TRUE(getOemResourceString(5001, text));
    EXPECT_EQ(text, L"Welcome to Kestrel Draft");
}

TEST(PartnerText, ThatIsNotThereEmptiesTheCallersText)
{
    startWithPartner();
    std::wstring text = L"as it was";
    EXPECT_FALSE(getOemResourceString(4999, text));
    EXPECT_EQ(text, L"");
    EXPECT_FALSE(getOemResourceString(0, text));
    EXPECT_FALSE(getOemResourceString(4294967295U, text));
}

TEST(PartnerText, HasOneThousandTwentyThreeCharactersAtMost)
{
    startWithPartnerTexts({{1, std::string(1023, 'a')}, {2, std::string(1024, 'b')}, {3, std::string(5000, 'c')}});
    std::wstring text;
    EXPECT_TRUE(getOemResourceString(1, text));
    EXPECT_EQ(text, wideOf(1023, L'a'));
    EXPECT_TRUE(getOemResourceString(2, text));
    EXPECT_EQ(text, wideOf(1023, L'b'));
    EXPECT_TRUE(getOemResourceString(3, text));
    EXPECT_EQ(text, wideOf(1023, L'c'));
}

TEST(PartnerText, IsNotGivenWhileTheLanguagesLibraryIsInUse)
{
    startWithPartner();
    recordPartnerNow("/nowhere/VrCustomRes.so");
    ASSERT_NE(GetOemResourceDllHandle(), nullptr);
    ASSERT_EQ(g_strPrefix, languagePrefix());
    std::wstring text = L"as it was";
    EXPECT_FALSE(getOemResourceString(5001, text));
    EXPECT_EQ(text, L"as it was");
}

// The choice, made again.

TEST(BrandingChoice, MadeAgainFindsAPartnerThatCameLater)
{
    startInEnglish();
    const fs::path partner = Installation::here().installPartner("en-US");
    auto* const handle = GetOemResourceDllHandle();
    EXPECT_NE(handle, nullptr);
    EXPECT_EQ(handle, moduleOf(partner));
    EXPECT_EQ(g_strPrefix, partnerPrefix());
    EXPECT_TRUE(vornConfig()->isNeedCheckOemPath());
    expectNamesOfTheProduct();
}

TEST(BrandingChoice, MadeAgainFallsBackWhenThePartnerIsRecordedElsewhere)
{
    startWithPartner();
    recordPartnerNow("/nowhere/VrCustomRes.so");
    auto* const handle = GetOemResourceDllHandle();
    EXPECT_NE(handle, nullptr);
    EXPECT_EQ(handle, languageLibrary());
    EXPECT_EQ(g_strPrefix, languagePrefix());
    EXPECT_FALSE(vornConfig()->isNeedCheckOemPath());
    expectNamesOfThePartner();
}

TEST(BrandingChoice, MadeAgainResetsAPrefixThatWasChanged)
{
    startInEnglish();
    g_strPrefix = QStringLiteral(":/elsewhere");
    EXPECT_EQ(VornaConfig::oemResourceDllHandle(), languageLibrary());
    EXPECT_EQ(g_strPrefix, languagePrefix());
}

TEST(BrandingChoice, IsSeenInThePrefixWithRegardToCase)
{
    for (const char* const prefix : {":/VrCustomRes/VrCustomRes", "VrCustomRes", "xVrCustomResx"}) {
        g_strPrefix = QString::fromLatin1(prefix);
        EXPECT_TRUE(vornConfig()->isNeedCheckOemPath()) << prefix;
    }
    for (const char* const prefix : {":/VrUInfoRes/VrUInfoRes", ":/vrcustomres/VRCUSTOMRES", ""}) {
        g_strPrefix = QString::fromLatin1(prefix);
        EXPECT_FALSE(vornConfig()->isNeedCheckOemPath()) << prefix;
    }
}

// Icons.

TEST(BrandIcon, BothSizesStandForTheLanguagesPicture)
{
    startInEnglish();
    ASSERT_NE(GetOemAppIcon(true), nullptr);
    ASSERT_NE(GetOemAppIcon(false), nullptr);
    EXPECT_NE(GetOemAppIcon(true), GetOemAppIcon(false));
    EXPECT_EQ(vornConfig()->oemAppIcon(true), GetOemAppIcon(true));
    EXPECT_EQ(vornConfig()->oemAppIcon(false), GetOemAppIcon(false));
    EXPECT_FALSE(GetOemAppIcon(true)->isNull());
    EXPECT_EQ(GetOemAppIcon(true)->availableSizes(), QList<QSize>{QSize(256, 256)});
}

TEST(BrandIcon, IsNullWhenThePartnerHasNone)
{
    startWithPartnerTexts({{4092, "Drafter"}});
    expectNoIcons();
    EXPECT_STREQ(GetOemAppIconPath(), kPartnerIcon);
}

TEST(BrandIcon, IsDeletedWithTheSettingsObject)
{
    startInEnglish();
    vornConfig()->uinitRegObject();
    expectNoIcons();
    EXPECT_STREQ(GetOemAppIconPath(), kLanguageIcon);
}

TEST(BrandIcon, PathReusesItsBufferWhereTheNewOneFits)
{
    startWithPartner();
    const wchar_t* const buffer = GetOemAppIconPath();
    vornConfig()->loadOemIcons();
    EXPECT_EQ(GetOemAppIconPath(), buffer);
    g_strPrefix = languagePrefix();
    vornConfig()->loadOemIcons();
    EXPECT_EQ(GetOemAppIconPath(), buffer);
    EXPECT_STREQ(buffer, kLanguageIcon);
}

TEST(BrandIcon, PathGetsANewBufferWhereTheNewOneDoesNotFit)
{
    startInEnglish();
    const std::wstring prefix = wideOf(5000);
    g_strPrefix = QString::fromStdWString(prefix);
    vornConfig()->loadOemIcons();
    EXPECT_EQ(GetOemAppIconPath(), prefix + L"/IDI_VORNA_OEM_APPLICATION_EXE");
    expectNoIcons();
    g_strPrefix = languagePrefix();
    vornConfig()->loadOemIcons();
    EXPECT_STREQ(GetOemAppIconPath(), kLanguageIcon);
    EXPECT_NE(GetOemAppIcon(true), nullptr);
}

TEST(BrandIcon, FollowsThePrefixWhenLoadedAgain)
{
    startInEnglish();
    g_strPrefix = partnerPrefix();
    vornConfig()->loadOemIcons();
    expectNoIcons();
    ASSERT_NE(LoadLibraryW(Installation::here().installPartner("brand").wstring().c_str()), nullptr);
    vornConfig()->loadOemIcons();
    EXPECT_NE(GetOemAppIcon(true), nullptr);
    EXPECT_NE(GetOemAppIcon(false), nullptr);
}

TEST(LoadIcon, GivesNullForWhatIsNotThere)
{
    startInEnglish();
    EXPECT_EQ(loadIcon(QStringLiteral(":/nowhere/icon"), 16, 16), nullptr);
    EXPECT_EQ(loadIcon(QStringLiteral("/nowhere/icon.png"), 16, 16), nullptr);
    EXPECT_EQ(loadIcon(QString(), 16, 16), nullptr);
}

TEST(LoadIcon, TakesSizesWithoutUsingThem)
{
    startInEnglish();
    const QString path = QString::fromWCharArray(kLanguageIcon);
    for (const int size : {-1, 0, 16, 1000000}) {
        const std::unique_ptr<QIcon> icon(loadIcon(path, size, size));
        ASSERT_NE(icon, nullptr) << size;
        EXPECT_EQ(icon->availableSizes(), QList<QSize>{QSize(256, 256)}) << size;
    }
}

TEST(LoadIcon, MakesANewIconEachTime)
{
    startInEnglish();
    const QString path = QString::fromWCharArray(kLanguageIcon);
    const std::unique_ptr<QIcon> one(loadIcon(path, 16, 16));
    const std::unique_ptr<QIcon> other(loadIcon(path, 16, 16));
    EXPECT_NE(one, other);
}

// Icons that are made without an application object and painted with one.

QImage painted(const QIcon& icon)
{
    QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    icon.paint(&painter, QRect(0, 0, kSide, kSide));
    return image;
}

int inkIn(const QImage& image)
{
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ink += qAlpha(image.pixel(x, y)) != 0 ? 1 : 0;
    }
    return ink;
}

bool isWellPainted(const QIcon& icon, const QIcon& expected)
{
    const QImage image = painted(icon);
    const bool isSame = image == painted(expected);
    std::cout << (inkIn(image) > kSide ? "ink" : "blank") << (isSame ? " same\n" : " different\n");
    return isSame;
}

class Application
{
public:
    Application() : m_application(m_count, m_arguments) {}

private:
    int m_count = 1;
    char m_name[5] = "host";
    char* m_arguments[2] = {m_name, nullptr};
    QGuiApplication m_application;
};

/// Makes every kind of icon first, then the application, and paints them.
PROBE(paintIcons)
{
    if (start() != 0 || !GetOemAppIcon(true) || !GetOemAppIcon(false))
        return 1;
    const QString path = QString::fromWCharArray(GetOemAppIconPath());
    const QIcon copy = *GetOemAppIcon(true);
    const std::unique_ptr<QIcon> own(loadIcon(path, 16, 16));
    const Application application;
    const QIcon direct(path);
    const bool isRight = isWellPainted(*GetOemAppIcon(true), direct) && isWellPainted(*GetOemAppIcon(false), direct) &&
                         isWellPainted(copy, direct) && isWellPainted(*own, direct);
    const QImage pixmap = GetOemAppIcon(false)->pixmap(16, 16).toImage();
    std::cout << pixmap.width() << " " << (inkIn(pixmap) > 16 ? "ink" : "blank") << "\n";
    return isRight && pixmap == direct.pixmap(16, 16).toImage() ? 0 : 2;
}

/// The same in an application that was there before the start.
PROBE(paintIconsOfALateStart)
{
    const Application application;
    if (start() != 0 || !GetOemAppIcon(true))
        return 1;
    return isWellPainted(*GetOemAppIcon(true), QIcon(QString::fromWCharArray(GetOemAppIconPath()))) ? 0 : 2;
}

PROBE(paintWhatIsNoPicture)
{
    const QString path = QString::fromStdString(arguments.at(0));
    const std::unique_ptr<QIcon> icon(loadIcon(path, 16, 16));
    const Application application;
    if (!icon)
        return 1;
    isWellPainted(*icon, QIcon(path));
    return icon->pixmap(16, 16).isNull() ? 0 : 2;
}

PROBE(endWithUnpaintedIcons)
{
    const bool hasIcons = start() == 0 && GetOemAppIcon(true) && !GetOemAppIcon(true)->isNull();
    const QIcon copy = hasIcons ? *GetOemAppIcon(true) : QIcon();
    return hasIcons && copy.actualSize(QSize(16, 16)) == QSize(16, 16) ? 0 : 1;
}

/// Runs a probe that paints. Qt spreads that over threads of its own with locks that a thread sanitizer does not see,
/// so nothing is told of Qt's part of such a process.
ProcessResult runWithScreen(const Installation& program, const std::string& probe,
                            const std::vector<std::string>& arguments = {})
{
    const fs::path suppressions = program.root() / "tsan.supp";
    std::ofstream(suppressions) << "race:libQt5Core.so\nrace:libQt5Gui.so\n";
    return program.run(probe, arguments,
                       {{"QT_QPA_PLATFORM", "minimal"},
                        {"XDG_RUNTIME_DIR", program.root()},
                        {"TSAN_OPTIONS", "suppressions=" + suppressions.string()}});
}

TEST(IconPainting, OfTheLanguagesIconWorksInAnApplicationMadeLater)
{
    const Installation program;
    program.installLanguage("en-US");
    const ProcessResult result = runWithScreen(program, "paintIcons");
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "ink same\nink same\nink same\nink same\n16 ink\n");
}

TEST(IconPainting, OfThePartnersIconWorksInAnApplicationMadeLater)
{
    const Installation program;
    program.installLanguage("en-US");
    program.installPartner("en-US");
    const ProcessResult result = runWithScreen(program, "paintIcons");
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "ink same\nink same\nink same\nink same\n16 ink\n");
}

TEST(IconPainting, WorksInAnApplicationMadeBefore)
{
    const Installation program;
    program.installLanguage("en-US");
    const ProcessResult result = runWithScreen(program, "paintIconsOfALateStart");
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "ink same\n");
}

TEST(IconPainting, OfAFileThatIsNoPictureLeavesNothing)
{
    const Installation program;
    program.write("text.png", "this is no picture\n");
    const ProcessResult result = runWithScreen(program, "paintWhatIsNoPicture", {program.programDir() / "text.png"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "blank same\n");
}

TEST(IconPainting, IsNotNeededForAGoodEnd)
{
    const Installation program;
    program.installLanguage("en-US");
    const ProcessResult result = program.run("endWithUnpaintedIcons");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.err, "");
}

} // namespace
