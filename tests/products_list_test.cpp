// The user's list of installed products, read from its real file.
#include <array>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QSettings>

#include "VrUInfo/FirstRun.h"
#include "VrUInfo/VornaConfig.h"
#include "long_path.h"
#include "start_words.h"
#include "unprivileged.h"

namespace fs = std::filesystem;
using namespace vrtest;

namespace
{

constexpr int kPatience = 10; // seconds

fs::path directoryOf(const Installation& program)
{
    return program.home() / ".local/share/HALVIK";
}

fs::path fileOf(const Installation& program)
{
    return directoryOf(program) / "VR2D.conf";
}

fs::path lockOf(const Installation& program)
{
    return fileOf(program).string() + ".lock";
}

/// A text of the list on disk; null when it is not there.
QString listed(const Installation& program, const std::string& key)
{
    return textInFile(fileOf(program), key);
}

/// The bytes of a list with one entry.
std::string listWith(const std::string& key, const std::string& name, const std::string& product,
                     const std::string& language, const fs::path& location)
{
    return "[InstalledProducts]\n1=" + key + "\n\n[" + key + "]\nLanguage=" + language +
           "\nLocation=" + location.string() + "\nProduct=" + product + "\nProductName=" + name + "\nVersion=2026\n";
}

/// An application object in its scope, where one is wanted.
class MaybeApplication
{
public:
    explicit MaybeApplication(bool isWanted)
    {
        if (isWanted)
            m_application = std::make_unique<QCoreApplication>(m_count, m_arguments.data());
    }

private:
    int m_count = 1;
    std::array<char, 5> m_name = {'h', 'o', 's', 't', '\0'};
    std::array<char*, 2> m_arguments = {m_name.data(), nullptr};
    std::unique_ptr<QCoreApplication> m_application;
};

int registerHere(const std::vector<std::string>& names, bool hasApplication)
{
    const MaybeApplication application(hasApplication);
    const unsigned int status = startWith(names);
    std::cout << status << " " << CreateProductsConfigReg();
    return 0;
}

} // namespace

/// Starts with the names given and registers; prints both results.
PROBE(registerProduct)
{
    return registerHere(arguments, false);
}

/// The same with an application object.
PROBE(registerInApplication)
{
    return registerHere(arguments, true);
}

/// Registers without a start; prints the result.
PROBE(registerUnstarted)
{
    std::cout << CreateProductsConfigReg();
    return 0;
}

/// Writes one entry into the file given, with an application object if the second argument says so.
PROBE(writeEntry)
{
    const MaybeApplication application(arguments.at(1) == "application");
    QSettings settings(QString::fromStdString(arguments.at(0)), QSettings::NativeFormat);
    wrirteProductInfo(settings, QStringLiteral("K"), QStringLiteral("N"), QStringLiteral("P"), QStringLiteral("L"),
                      QStringLiteral("V"));
    return 0;
}

namespace
{

class ProductsList : public testing::Test
{
protected:
    ProductsList() : m_here(Installation::here())
    {
        fs::create_directories(m_here.home() / ".local/share");
        for (const char* const language : {"en-US", "zh-CN", "zh-TW", "ja-JP"})
            m_here.installLanguage(language);
    }

    /// A new process starts as this product in this language, and registers.
    void registerAs(const std::string& product, const std::string& language, const std::string& company = "-") const
    {
        const ProcessResult result = m_here.run("registerProduct", {company, product, language});
        EXPECT_EQ(result.out, "0 1");
        EXPECT_EQ(result.err, "");
    }
    std::string bytes() const { return readFile(fileOf(m_here)); }
    QString text(const std::string& key) const { return listed(m_here, key); }
    void write(const std::string& list) const { writeFile(fileOf(m_here), list); }
    std::string onlyEntry(const std::string& key, const std::string& name, const std::string& product,
                          const std::string& language) const
    {
        return listWith(key, name, product, language, m_here.programDir());
    }
    /// Registers in a process that may hang, and gives it time.
    ProcessResult registerInTime() const
    {
        Environment environment = m_here.environment();
        environment["VR_PROBE"] = "registerUnstarted";
        return runProcess({m_here.executable()}, environment, {}, kPatience);
    }

    const Installation& m_here;
};

// What an entry says.

TEST_F(ProductsList, FirstEntryHoldsLocationNameProductLanguageAndVersion)
{
    registerAs("VORNA", "zh-CN");
    EXPECT_EQ(bytes(), onlyEntry("VORNA_2026_Chs", "VORNA 2026 Chs", "VORNA", "zh-CN"));
}

TEST_F(ProductsList, TextsBehindAByteOrderMarkStayWhatTheyAre)
{
    write("\xEF\xBB\xBF[Other]\nProductName=Gr\xC3\xBCn \\x20ac\n");
    registerAs("VORNA", "en-US");
    EXPECT_EQ(text("VORNA_2026_Enu/Product"), QStringLiteral("VORNA"));
    EXPECT_EQ(text("Other/ProductName"), QString::fromUtf8("Gr\u00fcn \u20ac"));
}

TEST_F(ProductsList, MechanicalEditionIsListedAsMech)
{
    registerAs("VORNAM", "en-US");
    EXPECT_EQ(bytes(), onlyEntry("VORNA_Mech_2026_Enu", "VORNA Mech 2026 Enu", "VORNAM", "en-US"));
}

TEST_F(ProductsList, ArchitectureEditionIsListedAsArch)
{
    registerAs("VORNAA", "zh-CN");
    EXPECT_EQ(bytes(), onlyEntry("VORNA_Arch_2026_Chs", "VORNA Arch 2026 Chs", "VORNAA", "zh-CN"));
}

TEST_F(ProductsList, EditionsAreToldByExactCase)
{
    registerAs("vornam", "en-US");
    EXPECT_EQ(bytes(), onlyEntry("vornam_2026_Enu", "vornam 2026 Enu", "vornam", "en-US"));
}

TEST_F(ProductsList, EditionsAreToldByTheWholeName)
{
    for (const char* const product : {"VORNAMM", "VORNAa", "XVORNAM", "VORNAGEO"}) {
        registerAs(product, "en-US");
        EXPECT_EQ(text(std::string(product) + "_2026_Enu/ProductName"),
                  QString::fromStdString(std::string(product) + " 2026 Enu"));
    }
}

TEST_F(ProductsList, BlanksOfAProductBecomeUnderscoresInTheKeyOnly)
{
    registerAs("My  Own Draw", "en-US");
    EXPECT_EQ(text("InstalledProducts/1"), QStringLiteral("My__Own_Draw_2026_Enu"));
    EXPECT_EQ(text("My__Own_Draw_2026_Enu/ProductName"), QStringLiteral("My  Own Draw 2026 Enu"));
    EXPECT_EQ(text("My__Own_Draw_2026_Enu/Product"), QStringLiteral("My  Own Draw"));
}

TEST_F(ProductsList, NamesBeyondLatinAreKept)
{
    registerAs("Größe 😀", "en-US");
    EXPECT_EQ(text("InstalledProducts/1"), QStringLiteral("Größe_😀_2026_Enu"));
    EXPECT_EQ(text("Größe_😀_2026_Enu/Product"), QStringLiteral("Größe 😀"));
}

TEST_F(ProductsList, EveryLanguageButSimplifiedChineseIsListedAsEnu)
{
    for (const char* const language : {"en-US", "ja-JP", "zh-TW"}) {
        fs::remove(fileOf(m_here));
        registerAs("VORNA", language);
        EXPECT_EQ(bytes(), onlyEntry("VORNA_2026_Enu", "VORNA 2026 Enu", "VORNA", language));
    }
}

TEST_F(ProductsList, ALanguageGivenInAnotherCaseIsListedUnderItsOwnSpelling)
{
    registerAs("VORNA", "ZH-cn");
    EXPECT_EQ(bytes(), onlyEntry("VORNA_2026_Chs", "VORNA 2026 Chs", "VORNA", "zh-CN"));
}

TEST_F(ProductsList, LiesBelowItsOwnCompanyWhoeverStarts)
{
    registerAs("VORNA", "en-US", "Acme");
    EXPECT_EQ(bytes(), onlyEntry("VORNA_2026_Enu", "VORNA 2026 Enu", "VORNA", "en-US"));
    EXPECT_FALSE(fs::exists(m_here.home() / ".local/share/Acme"));
}

TEST_F(ProductsList, LiesInTheHomeWhateverTheDataDirectory)
{
    const std::string elsewhere = m_here.root() / "elsewhere";
    fs::create_directories(elsewhere);
    const ProcessResult result = m_here.run("registerUnstarted", {}, {{"XDG_DATA_HOME", elsewhere}});
    EXPECT_EQ(result.out, "1");
    EXPECT_TRUE(fs::exists(fileOf(m_here)));
    EXPECT_TRUE(fs::is_empty(elsewhere));
}

TEST_F(ProductsList, IsNoPartOfTheSettingsTree)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    const std::vector<std::string> before = keysInFile(m_here.settingsFile());
    const QString settingsFile = g_globalSettings->fileName();
    ASSERT_TRUE(CreateProductsConfigReg());
    flush();
    EXPECT_EQ(g_globalSettings->fileName(), settingsFile);
    for (const std::string& key : keysInFile(m_here.settingsFile()))
        EXPECT_EQ(key.find("InstalledProducts"), std::string::npos) << key;
}

TEST_F(ProductsList, IsWrittenByTheOperationOfTheObjectToo)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    EXPECT_TRUE(vornConfig()->createProductsConfigReg());
    EXPECT_EQ(bytes(), onlyEntry("VORNA_2026_Enu", "VORNA 2026 Enu", "VORNA", "en-US"));
}

TEST_F(ProductsList, IsWrittenWhenTheCallReturns)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    ASSERT_TRUE(CreateProductsConfigReg());
    EXPECT_EQ(bytes(), onlyEntry("VORNA_2026_Enu", "VORNA 2026 Enu", "VORNA", "en-US"));
    EXPECT_FALSE(fs::exists(lockOf(m_here)));
}

TEST_F(ProductsList, BeforeTheStartTheUnknownLanguageIsListed)
{
    EXPECT_EQ(m_here.run("registerUnstarted").out, "1");
    EXPECT_EQ(bytes(), onlyEntry("VORNA_2026_Enu", "VORNA 2026 Enu", "VORNA", "unknown"));
}

// The location.

TEST_F(ProductsList, LocationIsTheProgramDirectoryWithAndWithoutAnApplication)
{
    for (const char* const probe : {"registerProduct", "registerInApplication"}) {
        fs::remove(fileOf(m_here));
        const ProcessResult result = m_here.run(probe, {"-", "-", "en-US"}, {}, "/");
        EXPECT_EQ(result.out, "0 1");
        EXPECT_EQ(result.err, "") << probe;
        EXPECT_EQ(bytes(), onlyEntry("VORNA_2026_Enu", "VORNA 2026 Enu", "VORNA", "en-US")) << probe;
    }
}

TEST_F(ProductsList, LocationIsNoLinkToTheProgram)
{
    fs::create_directories(m_here.root() / "bin");
    fs::create_symlink(m_here.executable(), m_here.root() / "bin/link");
    for (const char* const probe : {"registerProduct", "registerInApplication"}) {
        fs::remove(fileOf(m_here));
        Environment environment = m_here.environment();
        environment["VR_PROBE"] = probe;
        EXPECT_EQ(runProcess({m_here.root() / "bin/link", "-", "-", "en-US"}, environment).out, "0 1");
        EXPECT_EQ(text("VORNA_2026_Enu/Location").toStdString(), m_here.programDir().string());
    }
}

TEST(ProductsListLocation, KeepsNamesBeyondLatin)
{
    const Installation program("Größe 😀/bin dir");
    fs::create_directories(program.home() / ".local/share");
    EXPECT_EQ(program.run("registerUnstarted").out, "1");
    EXPECT_EQ(listed(program, "VORNA_2026_Enu/Location").toStdString(), program.programDir().string());
}

TEST(ProductsListLocation, MayBeThatOfAnExecutableWithAPathOfOneThousandTwentyTwoCharacters)
{
    const LongInstallation program(1017);
    ASSERT_EQ(program.executable().string().size(), 1022U);
    fs::create_directories(program.home() / ".local/share");
    EXPECT_EQ(program.run("registerUnstarted").out, "1");
    EXPECT_EQ(listed(program, "VORNA_2026_Enu/Location").toStdString(), program.programDir().string());
}

// A release that is listed already.

TEST_F(ProductsList, ASecondCallLeavesTheFileAlone)
{
    registerAs("VORNA", "en-US");
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(48);
    fs::last_write_time(fileOf(m_here), longAgo);
    const std::string before = bytes();
    registerAs("VORNA", "en-US");
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(fs::last_write_time(fileOf(m_here)), longAgo);
}

TEST_F(ProductsList, ASecondCallOfTheSameProcessLeavesTheFileAlone)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    ASSERT_TRUE(CreateProductsConfigReg());
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(48);
    fs::last_write_time(fileOf(m_here), longAgo);
    EXPECT_TRUE(CreateProductsConfigReg());
    EXPECT_EQ(fs::last_write_time(fileOf(m_here)), longAgo);
}

TEST_F(ProductsList, AListedReleaseKeepsItsFormerLocation)
{
    const std::string former = listWith("VORNA_2026_Enu", "Former", "VORNA", "de-DE", "/opt/former");
    write(former);
    registerAs("VORNA", "en-US");
    EXPECT_EQ(bytes(), former);
}

TEST_F(ProductsList, AListedNameIsEnoughWithoutAnEntry)
{
    write("[InstalledProducts]\n7=VORNA_2026_Enu\n");
    registerAs("VORNA", "en-US");
    EXPECT_EQ(bytes(), "[InstalledProducts]\n7=VORNA_2026_Enu\n");
}

TEST_F(ProductsList, AListedNameUnderAnyKeyIsEnough)
{
    write("[InstalledProducts]\n1=Other\nlast=VORNA_2026_Enu\n");
    registerAs("VORNA", "en-US");
    EXPECT_EQ(bytes(), "[InstalledProducts]\n1=Other\nlast=VORNA_2026_Enu\n");
}

TEST_F(ProductsList, AnEntryWithoutAListedNameIsNotEnough)
{
    write("[VORNA_2026_Enu]\nLocation=/opt/former\n");
    registerAs("VORNA", "en-US");
    EXPECT_EQ(text("InstalledProducts/1"), QStringLiteral("VORNA_2026_Enu"));
    EXPECT_EQ(text("VORNA_2026_Enu/Location").toStdString(), m_here.programDir().string());
}

TEST_F(ProductsList, ListedNamesAreComparedInExactCase)
{
    write("[InstalledProducts]\n1=vorna_2026_enu\n");
    registerAs("VORNA", "en-US");
    EXPECT_EQ(text("InstalledProducts/1"), QStringLiteral("vorna_2026_enu"));
    EXPECT_EQ(text("InstalledProducts/2"), QStringLiteral("VORNA_2026_Enu"));
}

TEST_F(ProductsList, NamesBelowAnotherGroupDoNotCount)
{
    write("[InstalledProducts]\nOld\\1=VORNA_2026_Enu\n\n[Other]\n1=VORNA_2026_Enu\n");
    registerAs("VORNA", "en-US");
    EXPECT_EQ(text("InstalledProducts/1"), QStringLiteral("VORNA_2026_Enu"));
}

// Numbers.

TEST_F(ProductsList, ReleasesAreNumberedAsTheyCome)
{
    registerAs("VORNA", "zh-CN");
    registerAs("VORNA", "en-US");
    registerAs("VORNAM", "en-US");
    EXPECT_EQ(text("InstalledProducts/1"), QStringLiteral("VORNA_2026_Chs"));
    EXPECT_EQ(text("InstalledProducts/2"), QStringLiteral("VORNA_2026_Enu"));
    EXPECT_EQ(text("InstalledProducts/3"), QStringLiteral("VORNA_Mech_2026_Enu"));
    EXPECT_EQ(keysInFile(fileOf(m_here)).size(), 3U + 3U * 5U);
    EXPECT_EQ(text("VORNA_2026_Chs/Language"), QStringLiteral("zh-CN"));
}

TEST_F(ProductsList, ANumberIsTheCountPlusOneEvenWhereThatOverwrites)
{
    write("[InstalledProducts]\n1=A\n3=C\n\n[A]\nProduct=A\n\n[C]\nProduct=C\n");
    registerAs("VORNA", "en-US");
    EXPECT_EQ(text("InstalledProducts/1"), QStringLiteral("A"));
    EXPECT_EQ(text("InstalledProducts/3"), QStringLiteral("VORNA_2026_Enu"));
    EXPECT_TRUE(text("InstalledProducts/2").isNull());
    EXPECT_EQ(text("C/Product"), QStringLiteral("C"));
}

TEST_F(ProductsList, NumbersAreDecimal)
{
    std::string list = "[InstalledProducts]\n";
    for (int i = 1; i <= 12; ++i)
        list += std::to_string(i) + "=Other" + std::to_string(i) + "\n";
    write(list);
    registerAs("VORNA", "en-US");
    EXPECT_EQ(text("InstalledProducts/13"), QStringLiteral("VORNA_2026_Enu"));
}

TEST_F(ProductsList, WhatElseStandsInTheFileStays)
{
    write("[General]\nOther=kept\n\n[Group]\nSub\\Key=kept, too\n");
    registerAs("VORNA", "en-US");
    EXPECT_EQ(text("Other"), QStringLiteral("kept"));
    EXPECT_EQ(keysInFile(fileOf(m_here)).size(), 2U + 6U);
}

// The directory.

TEST_F(ProductsList, MakesItsOwnDirectoryOnly)
{
    ASSERT_FALSE(fs::exists(directoryOf(m_here)));
    EXPECT_EQ(m_here.run("registerUnstarted").out, "1");
    EXPECT_TRUE(fs::is_directory(directoryOf(m_here)));
    EXPECT_TRUE(fs::exists(fileOf(m_here)));
}

TEST_F(ProductsList, FailsAndMakesNothingWithoutTheShareDirectory)
{
    fs::remove(m_here.home() / ".local/share");
    EXPECT_EQ(m_here.run("registerUnstarted").out, "0");
    EXPECT_TRUE(fs::is_empty(m_here.home() / ".local"));
    fs::remove(m_here.home() / ".local");
    EXPECT_EQ(m_here.run("registerUnstarted").out, "0");
    EXPECT_FALSE(fs::exists(m_here.home() / ".local"));
}

TEST_F(ProductsList, FailsWhereAFileIsInTheDirectorysPlace)
{
    writeFile(directoryOf(m_here), "no directory\n");
    EXPECT_EQ(m_here.run("registerUnstarted").out, "0");
    EXPECT_EQ(readFile(directoryOf(m_here)), "no directory\n");
}

TEST_F(ProductsList, FailsWhereTheDirectoryMayNotBeMade)
{
    setMode(m_here.home() / ".local/share", 0555);
    EXPECT_EQ(runUnprivileged(m_here, "registerUnstarted").out, "0");
    EXPECT_FALSE(fs::exists(directoryOf(m_here)));
}

TEST_F(ProductsList, SaysTrueWhereTheFileCannotBeWritten)
{
    write("[InstalledProducts]\n1=A\n");
    setMode(fileOf(m_here), 0444);
    setMode(directoryOf(m_here), 0555);
    const ProcessResult result = runUnprivileged(m_here, "registerUnstarted");
    EXPECT_EQ(result.out, "1");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(bytes(), "[InstalledProducts]\n1=A\n");
}

TEST_F(ProductsList, SaysTrueWhereNoFileCanBeMade)
{
    fs::create_directories(directoryOf(m_here));
    setMode(directoryOf(m_here), 0555);
    EXPECT_EQ(runUnprivileged(m_here, "registerUnstarted").out, "1");
    EXPECT_FALSE(fs::exists(fileOf(m_here)));
}

TEST_F(ProductsList, SaysTrueWhereAValueAsksForAllTheMemoryAndLeavesTheList)
{
    const std::string list = "[InstalledProducts]\n1=@Variant(\\0\\0\\0\\v2222)\n";
    write(list);
    EXPECT_EQ(registerInTime().out, "1");
    EXPECT_EQ(bytes(), list);
}

// The lock file.

TEST_F(ProductsList, ALockFileIsRemoved)
{
    writeFile(lockOf(m_here), "1\nhost\nmachine\n");
    const ProcessResult result = registerInTime();
    EXPECT_EQ(result.out, "1");
    EXPECT_FALSE(fs::exists(lockOf(m_here)));
    EXPECT_EQ(text("InstalledProducts/1"), QStringLiteral("VORNA_2026_Enu"));
}

TEST_F(ProductsList, ALockFileIsRemovedWhereTheReleaseIsListed)
{
    write("[InstalledProducts]\n1=VORNA_2026_Enu\n");
    writeFile(lockOf(m_here), "");
    EXPECT_EQ(registerInTime().out, "1");
    EXPECT_FALSE(fs::exists(lockOf(m_here)));
}

TEST_F(ProductsList, ALockFileThatCannotBeRemovedGetsItsOddPermissionsFirst)
{
    write("[InstalledProducts]\n1=VORNA_2026_Enu\n");
    writeFile(lockOf(m_here), "");
    setMode(directoryOf(m_here), 0555);
    EXPECT_EQ(runUnprivileged(m_here, "registerUnstarted").out, "1");
    ASSERT_TRUE(fs::exists(lockOf(m_here)));
    EXPECT_EQ(fs::status(lockOf(m_here)).permissions(), fs::perms(0006));
}

TEST_F(ProductsList, SaysTrueWhereALockCannotBeRemoved)
{
    fs::create_directories(lockOf(m_here) / "full");
    const ProcessResult result = registerInTime();
    EXPECT_EQ(result.signal, 0) << "no answer in " << kPatience << " seconds";
    EXPECT_EQ(result.out, "1");
    EXPECT_TRUE(fs::exists(lockOf(m_here)));
}

// The parts.

class ProductsListPart : public testing::Test
{
protected:
    ProductsListPart() : m_file(Installation::here().root() / "parts.conf") {}
    QString path() const { return QString::fromStdString(m_file); }

    const fs::path m_file;
};

TEST_F(ProductsListPart, SetValueWritesOneKeyOfAGroupAndLeavesTheGroup)
{
    {
        QSettings settings(path(), QSettings::NativeFormat);
        settings.beginGroup(QStringLiteral("Outer"));
        setValue(settings, QStringLiteral("Group"), QStringLiteral("Key"), QStringLiteral("1$ a text"));
        EXPECT_EQ(settings.group(), QStringLiteral("Outer"));
    }
    EXPECT_EQ(readFile(m_file), "[Outer]\nGroup\\Key=1$ a text\n");
}

TEST_F(ProductsListPart, SetValueReplacesAndKeepsAnEmptyText)
{
    {
        QSettings settings(path(), QSettings::NativeFormat);
        setValue(settings, QStringLiteral("Group"), QStringLiteral("Key"), QStringLiteral("first"));
        setValue(settings, QStringLiteral("Group"), QStringLiteral("Key"), QStringLiteral(""));
    }
    EXPECT_EQ(readFile(m_file), "[Group]\nKey=\n");
}

TEST_F(ProductsListPart, SetValueStoresAString)
{
    QSettings settings(path(), QSettings::NativeFormat);
    setValue(settings, QStringLiteral("Group"), QStringLiteral("Key"), QStringLiteral("26"));
    EXPECT_EQ(settings.value(QStringLiteral("Group/Key")).userType(), static_cast<int>(QMetaType::QString));
}

TEST_F(ProductsListPart, ProductNameIsTheTextOrTheDefault)
{
    QString code = QStringLiteral("former");
    for (const wchar_t* const name : {static_cast<const wchar_t*>(nullptr), L""}) {
        getProductName(name, code);
        EXPECT_EQ(code, QStringLiteral("VORNA"));
        code = QStringLiteral("former");
    }
    getProductName(L"Größe 😀", code);
    EXPECT_EQ(code, QStringLiteral("Größe 😀"));
    getProductName(L" ", code);
    EXPECT_EQ(code, QStringLiteral(" "));
}

TEST_F(ProductsListPart, LanguageNameIsTheTextOrTheDefault)
{
    QString language = QStringLiteral("former");
    for (const wchar_t* const name : {static_cast<const wchar_t*>(nullptr), L""}) {
        getLangName(name, language);
        EXPECT_EQ(language, QStringLiteral("zh-CN"));
        language = QStringLiteral("former");
    }
    getLangName(L"zh-TW", language);
    EXPECT_EQ(language, QStringLiteral("zh-TW"));
    getLangName(L"x", language);
    EXPECT_EQ(language, QStringLiteral("x"));
}

TEST_F(ProductsListPart, ProductInfoWritesFiveKeysWithAndWithoutAnApplication)
{
    const Installation& here = Installation::here();
    const std::string expected =
        "[K]\nLanguage=L\nLocation=" + here.programDir().string() + "\nProduct=P\nProductName=N\nVersion=V\n";
    for (const char* const kind : {"application", "none"}) {
        fs::remove(m_file);
        const ProcessResult result = here.run("writeEntry", {m_file, kind}, {}, "/");
        EXPECT_EQ(result.err, "") << kind;
        EXPECT_EQ(readFile(m_file), expected) << kind;
    }
}

// Processes at once.

TEST_F(ProductsList, IsNeverHalfWrittenWhenProcessesRegisterAtOnce)
{
    const std::vector<std::string> products = {"VORNA", "VORNAM", "VORNAA", "Drafter"};
    std::vector<std::string> results(products.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < products.size(); ++i) {
        threads.emplace_back([this, &products, &results, i] {
            results[i] = m_here.run("registerProduct", {"-", products[i], "en-US"}).out;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(results, std::vector<std::string>(products.size(), "0 1"));
    ASSERT_FALSE(text("InstalledProducts/1").isNull());
    for (int number = 1; !text("InstalledProducts/" + std::to_string(number)).isNull(); ++number) {
        const std::string entry = text("InstalledProducts/" + std::to_string(number)).toStdString();
        for (const char* const key : {"Location", "ProductName", "Product", "Language", "Version"})
            EXPECT_FALSE(text(entry + "/" + key).isNull()) << entry << "/" << key;
    }
}

} // namespace
