// Resolution of company and product, and the root paths made of them.
#include <csignal>

#include <QtCore/QSettings>

#include <gtest/gtest.h>

#include "start_words.h"

using namespace vrtest;

namespace
{

class NamesTest : public testing::Test
{
protected:
    NamesTest() : m_here(Installation::here()), m_config(*vornConfig()) { m_here.installLanguage("en-US"); }

    void writeIni(const std::string& productSection) const
    {
        m_here.write("VORNA.ini", "[Product]\n" + productSection);
    }
    void recordProduct(const std::string& text) const { m_here.writeSetting("Software/HALVIK/CurProduct", text); }
    /// The product that a start without a product argument resolves, in another process.
    std::string resolvedProduct() const
    {
        const ProcessResult result = m_here.run("product");
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return result.out;
    }

    const Installation& m_here;
    VornaConfig& m_config;
};

std::string productOnDisk(const std::string& company = "HALVIK", const std::string& product = "VORNA")
{
    return textInFile(Installation::here().settingsFile(company, product), "Software/" + company + "/CurProduct")
        .toStdString();
}

} // namespace

/// Starts in English without any other name; prints the product, or the status when that is not 0.
PROBE(product)
{
    const unsigned int status = startWith({"-", "-", "en-US"});
    std::cout << (status == 0 ? utf8(vornConfig()->productName()) : std::to_string(status));
    return 0;
}

namespace
{

// ---- Company

TEST_F(NamesTest, CompanyIsTheDefaultWithoutArgumentAndIniFile)
{
    EXPECT_EQ(m_config.initCompanyName(nullptr), 0U);
    EXPECT_STREQ(m_config.companyName(), L"HALVIK");
}

TEST_F(NamesTest, CompanyRootIsSoftwareAndTheCompany)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_EQ(rootText(VornaConfig::ProductNameRoot), "Software/HALVIK/VORNA");
    EXPECT_EQ(rootText(VornaConfig::VersionRoot), "Software/HALVIK/VORNA/2026");
}

TEST_F(NamesTest, CompanyArgumentWinsOverTheIniFile)
{
    writeIni("CompanyName=FromFile\n");
    EXPECT_EQ(m_config.initCompanyName(L"Acme"), 0U);
    EXPECT_STREQ(m_config.companyName(), L"Acme");
}

TEST_F(NamesTest, CompanyComesFromTheIniFile)
{
    writeIni("CompanyName=FromFile\n");
    EXPECT_EQ(m_config.initCompanyName(L""), 0U);
    EXPECT_STREQ(m_config.companyName(), L"FromFile");
}

TEST_F(NamesTest, EmptyCompanyInTheIniFileGivesTheDefault)
{
    writeIni("CompanyName=\n");
    EXPECT_EQ(m_config.initCompanyName(nullptr), 0U);
    EXPECT_STREQ(m_config.companyName(), L"HALVIK");
}

TEST_F(NamesTest, CompanyArgumentMayHave254Characters)
{
    EXPECT_EQ(m_config.initCompanyName(wideOf(254).c_str()), 0U);
    EXPECT_EQ(m_config.companyName(), wideOf(254));
}

TEST_F(NamesTest, CompanyArgumentOf255CharactersGives7AndSetsNothing)
{
    EXPECT_EQ(m_config.initCompanyName(wideOf(255).c_str()), 7U);
    EXPECT_STREQ(m_config.companyName(), L"HALVIK");
    EXPECT_EQ(m_config.initCompanyName(L"Acme"), 0U) << "still unset";
}

TEST_F(NamesTest, VeryLongCompanyArgumentGives7)
{
    EXPECT_EQ(m_config.initCompanyName(wideOf(1000000).c_str()), 7U);
}

TEST_F(NamesTest, CompanyOf254CharactersStarts)
{
    EXPECT_EQ(startWith({std::string(254, 'c'), std::string(254, 'p'), "en-US"}), 0U);
    EXPECT_EQ(rootText(VornaConfig::VersionRoot),
              "Software/" + std::string(254, 'c') + "/" + std::string(254, 'p') + "/2026");
}

TEST_F(NamesTest, CompanyInTheIniFileIsCutAt253Characters)
{
    writeIni("CompanyName=" + std::string(253, 'x') + "yz\n");
    EXPECT_EQ(m_config.initCompanyName(nullptr), 0U);
    EXPECT_EQ(m_config.companyName(), wideOf(253));
}

TEST_F(NamesTest, CompanySetTwiceGives7)
{
    ASSERT_EQ(m_config.initCompanyName(L"Acme"), 0U);
    EXPECT_EQ(m_config.initCompanyName(L"Other"), 7U);
    EXPECT_EQ(m_config.initCompanyName(nullptr), 7U);
    EXPECT_STREQ(m_config.companyName(), L"Acme");
}

TEST_F(NamesTest, CompanyRootMayBeBuiltAgain)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_EQ(m_config.buildRootPathFromCompany(), 0U);
    EXPECT_EQ(rootText(VornaConfig::ProductNameRoot), "Software/HALVIK");
}

TEST_F(NamesTest, NamesBeyondTheBmpAreKept)
{
    EXPECT_EQ(startWith({"Größe 図", "Draw \U0001F600", "en-US"}), 0U);
    EXPECT_EQ(identity(), "Größe 図/Draw \U0001F600/en-US/Default");
}

// ---- Product

TEST_F(NamesTest, ProductIsTheDefaultWithoutAnySource)
{
    EXPECT_EQ(resolvedProduct(), "VORNA");
}

TEST_F(NamesTest, ProductArgumentWinsOverAllElse)
{
    recordProduct("5$Recorded");
    writeIni("ProductName=FromFile\n");
    EXPECT_EQ(m_here.run("start", {"-", "Draw", "en-US"}).out, "0 HALVIK/Draw/en-US/Default\n");
}

TEST_F(NamesTest, RecordedProductWinsOverTheIniFile)
{
    // The settings file is the one that the INI file names.
    writeIni("ProductName=FromFile\n");
    QSettings(QString::fromStdString(m_here.settingsFile("HALVIK", "FromFile")), QSettings::NativeFormat)
        .setValue(QStringLiteral("Software/HALVIK/CurProduct"), QStringLiteral("5$Recorded"));
    EXPECT_EQ(resolvedProduct(), "Recorded");
}

TEST_F(NamesTest, ProductComesFromTheIniFile)
{
    writeIni("ProductName=FromFile\n");
    EXPECT_EQ(resolvedProduct(), "FromFile");
}

TEST_F(NamesTest, EmptyProductInTheIniFileGivesTheDefault)
{
    writeIni("ProductName=\n");
    EXPECT_EQ(resolvedProduct(), "VORNA");
}

TEST_F(NamesTest, ProductInTheIniFileIsCutAt253Characters)
{
    writeIni("ProductName=" + std::string(253, 'x') + "yz\n");
    EXPECT_EQ(resolvedProduct(), std::string(253, 'x'));
}

TEST_F(NamesTest, RecordedProductFollowsItsMark)
{
    struct Row {
        const char* recorded;
        const char* product;
    };
    for (const Row& row :
         {Row{"5$VORNAM", "VORNAM"}, Row{"4$VORNAM", "VORNA"}, Row{"VORNAM", "VORNAM"}, Row{"x$VORNAM", "VORNA"},
          Row{"5$", "VORNA"}, Row{"", "VORNA"}, Row{"$", "$"}, Row{"5$A$B", "A$B"}, Row{"55$A", "55$A"},
          Row{"$5$A", "$5$A"}, Row{"$$A", "$$A"}, Row{"5", "5"}, Row{"5$5$A", "5$A"}, Row{"5$ A b ", " A b "}}) {
        recordProduct(row.recorded);
        EXPECT_EQ(resolvedProduct(), row.product) << row.recorded;
    }
}

TEST_F(NamesTest, IgnoredRecordedProductGivesWayToTheIniFile)
{
    writeIni("ProductName=FromFile\n");
    QSettings(QString::fromStdString(m_here.settingsFile("HALVIK", "FromFile")), QSettings::NativeFormat)
        .setValue(QStringLiteral("Software/HALVIK/CurProduct"), QStringLiteral("4$Recorded"));
    EXPECT_EQ(resolvedProduct(), "FromFile");
}

TEST_F(NamesTest, RecordedProductMayHave255Characters)
{
    recordProduct("5$" + std::string(255, 'p'));
    EXPECT_EQ(resolvedProduct(), std::string(255, 'p'));
}

TEST_F(NamesTest, RecordedProductOf256CharactersEndsTheProcess)
{
    recordProduct("5$" + std::string(256, 'p'));
    const std::string before = readFile(m_here.settingsFile());
    const ProcessResult result = m_here.run("product");
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_EQ(result.err.back(), '\n');
    EXPECT_EQ(readFile(m_here.settingsFile()), before);
}

TEST_F(NamesTest, UnmarkedRecordedProductHasTheSameLimit)
{
    recordProduct(std::string(255, 'p'));
    EXPECT_EQ(resolvedProduct(), std::string(255, 'p'));
    recordProduct(std::string(256, 'p'));
    EXPECT_EQ(m_here.run("product").signal, SIGABRT);
}

TEST_F(NamesTest, TooLongRecordedProductWithAnotherMarkIsIgnored)
{
    recordProduct("4$" + std::string(256, 'p'));
    EXPECT_EQ(resolvedProduct(), "VORNA");
}

TEST_F(NamesTest, ProductArgumentMayHave254Characters)
{
    ASSERT_EQ(m_config.initCompanyName(nullptr), 0U);
    EXPECT_EQ(m_config.initProductName(wideOf(254).c_str()), 0U);
    EXPECT_EQ(m_config.productName(), wideOf(254));
}

TEST_F(NamesTest, ProductArgumentOf255CharactersGives7AndSetsNothing)
{
    ASSERT_EQ(m_config.initCompanyName(L"Acme"), 0U);
    EXPECT_EQ(m_config.initProductName(wideOf(255).c_str()), 7U);
    EXPECT_STREQ(m_config.productName(), L"VORNA");
    EXPECT_STREQ(m_config.companyName(), L"Acme");
    EXPECT_EQ(m_config.initProductName(L"Draw"), 0U) << "still unset";
}

TEST_F(NamesTest, ProductSetTwiceGives7)
{
    ASSERT_EQ(m_config.initCompanyName(nullptr), 0U);
    ASSERT_EQ(m_config.initProductName(L"Draw"), 0U);
    EXPECT_EQ(m_config.initProductName(L"Other"), 7U);
    EXPECT_STREQ(m_config.productName(), L"Draw");
}

TEST_F(NamesTest, ProductWithoutACompanyRootGives7)
{
    EXPECT_EQ(m_config.initProductName(L"Draw"), 7U);
}

TEST_F(NamesTest, ProductIsResolvedWithoutASettingsObjectToo)
{
    ASSERT_EQ(m_config.initCompanyName(nullptr), 0U);
    EXPECT_EQ(m_config.initProductName(nullptr), 0U);
    EXPECT_STREQ(m_config.productName(), L"VORNA");
    EXPECT_EQ(g_globalSettings, nullptr);
}

TEST_F(NamesTest, VersionIsAlways2026)
{
    writeIni("Version=2031\n");
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_STREQ(m_config.version(), L"2026");
    EXPECT_EQ(rootText(VornaConfig::VersionRoot), "Software/HALVIK/VORNA/2026");
}

// ---- Recording

TEST_F(NamesTest, ProductIsRecordedAlsoWhenItWasGiven)
{
    ASSERT_EQ(startWith({"Acme", "Draw", "en-US"}), 0U);
    flush();
    EXPECT_EQ(productOnDisk("Acme", "Draw"), "5$Draw");
}

TEST_F(NamesTest, UnmarkedRecordedProductIsRecordedWithTheMark)
{
    recordProduct("VORNAM");
    EXPECT_EQ(resolvedProduct(), "VORNAM");
    EXPECT_EQ(productOnDisk(), "5$VORNAM");
}

TEST_F(NamesTest, IgnoredRecordedProductIsReplaced)
{
    recordProduct("4$VORNAM");
    EXPECT_EQ(resolvedProduct(), "VORNA");
    EXPECT_EQ(productOnDisk(), "5$VORNA");
}

TEST_F(NamesTest, RefreshGives1AndRecords)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_EQ(m_config.refreshProductName(), 1U);
    m_config.uinitRegObject();
    EXPECT_EQ(m_config.refreshProductName(), 0U);
}

TEST_F(NamesTest, ProductIsRecordedInTheCompanysGroupOnly)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    flush();
    EXPECT_EQ(keysInFile(m_here.settingsFile()),
              (std::vector<std::string>{"Software/HALVIK/CurProduct", "Software/HALVIK/VORNA/2026/CurVer",
                                        "Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles"}));
}

// ---- The product's root

// The root grows by the product with each call, from "Software/" and the company on. Seventeen components of 58
// characters and "/2026" make exactly 1023 characters behind a company of 6.
class LongRootTest : public NamesTest
{
protected:
    static constexpr int kCalls = 17;

    void startWithCompany(const wchar_t* company)
    {
        ASSERT_EQ(m_config.initCompanyName(company), 0U);
        ASSERT_EQ(m_config.initProductName(wideOf(58, L'p').c_str()), 0U);
    }
    unsigned int statusOfLastCall()
    {
        for (int call = 2; call < kCalls; ++call)
            EXPECT_EQ(m_config.buildRootPathFromProduct(), 0U) << call;
        return m_config.buildRootPathFromProduct();
    }
};

TEST_F(LongRootTest, RootOf1023CharactersIsBuilt)
{
    startWithCompany(L"123456");
    EXPECT_EQ(statusOfLastCall(), 0U);
    EXPECT_EQ(m_config.buildRootPathFromProduct(), 7U);
}

TEST_F(LongRootTest, RootOf1024CharactersGives7)
{
    startWithCompany(L"1234567");
    EXPECT_EQ(statusOfLastCall(), 7U);
}

// ---- Whether it is the maker's own product

TEST_F(NamesTest, DefaultsCountAsTheMakersProduct)
{
    EXPECT_TRUE(m_config.isInitVORNAProduct());
}

TEST_F(NamesTest, MakersProductIsRecognisedInAnyCase)
{
    ASSERT_EQ(startWith({"halvik", "vorna", "en-US"}), 0U);
    EXPECT_TRUE(m_config.isInitVORNAProduct());
}

TEST_F(NamesTest, OtherCompanyIsNotTheMakers)
{
    ASSERT_EQ(startWith({"Acme", "VORNA", "en-US"}), 0U);
    EXPECT_FALSE(m_config.isInitVORNAProduct());
}

TEST_F(NamesTest, OtherProductIsNotTheMakers)
{
    ASSERT_EQ(startWith({"HALVIK", "VORNAM", "en-US"}), 0U);
    EXPECT_FALSE(m_config.isInitVORNAProduct());
}

} // namespace
