#include <array>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <iostream>
#include <string>
#include <type_traits>
#include <typeinfo>

#include <gtest/gtest.h>

#include "VrUInfo/VrUInfo.h"
#include "installation.h"
#include "long_path.h"

namespace fs = std::filesystem;
using namespace vrtest;

namespace
{

/// What "<directory with separator><short name>/Help/VrHelp.pdf" adds to the directory and the short name.
constexpr std::size_t kHelpLength = 16;

unsigned int start(const wchar_t* product = nullptr, const wchar_t* company = nullptr,
                   const wchar_t* language = L"en-US")
{
    return InitVornConfig(company, product, language, nullptr);
}

unsigned int startInEnglish(const wchar_t* product = nullptr, const wchar_t* company = nullptr)
{
    Installation::here().installLanguage("en-US");
    return start(product, company);
}

const IVornaProduct& product()
{
    return *vornGetProduct();
}

/// The operation in a slot of the product's table of virtual operations, as a module that was compiled long ago calls
/// it: the object's first word points at the table, an operation takes the object as its first argument.
template <typename Result>
Result callSlot(std::size_t slot)
{
    const void* const object = static_cast<const IVornaProduct*>(vornGetProduct());
    void* const* table = nullptr;
    std::memcpy(&table, object, sizeof(void*));
    Result (*operation)(const void*) = nullptr;
    std::memcpy(&operation, &table[slot], sizeof operation);
    return operation(object);
}

std::wstring inProgram(const std::string& name)
{
    return wide((Installation::here().programDir() / name).string());
}

// The object.

TEST(Product, IsOneObjectBehindItsInterface)
{
    static_assert(std::is_base_of_v<IVornaProduct, VornaProduct>);
    static_assert(!std::has_virtual_destructor_v<IVornaProduct>);
    static_assert(!std::has_virtual_destructor_v<VornaProduct>);
    ASSERT_NE(vornGetProduct(), nullptr);
    EXPECT_EQ(vornGetProduct(), vornGetProduct());
}

TEST(Product, HasRunTimeTypeInformation)
{
    const IVornaProduct* const interface = vornGetProduct();
    EXPECT_EQ(typeid(*interface), typeid(VornaProduct));
    EXPECT_NE(typeid(*interface), typeid(IVornaProduct));
    EXPECT_EQ(dynamic_cast<const VornaProduct*>(interface), vornGetProduct());
}

TEST(Product, OperationsStandInTheirSlots)
{
    ASSERT_EQ(startInEnglish(L"VORNAGEO", L"Acme"), 0U);
    EXPECT_STREQ(callSlot<const wchar_t*>(0), L"VORNAGEO");
    EXPECT_STREQ(callSlot<const wchar_t*>(1), L"VORNA");
    EXPECT_STREQ(callSlot<const wchar_t*>(2), L"Acme");
    EXPECT_STREQ(callSlot<const wchar_t*>(3), L"2026");
    EXPECT_EQ(callSlot<const wchar_t*>(4), inProgram("en-US/Help/VrHelp.pdf"));
    EXPECT_EQ(callSlot<const VornaLanguage*>(5), &vornConfig()->language());
    EXPECT_EQ(callSlot<int>(6), 6);
    EXPECT_EQ(callSlot<int>(7), 26);
    EXPECT_EQ(callSlot<int>(8), 0);
    EXPECT_EQ(callSlot<int>(9), 1);
    EXPECT_STREQ(callSlot<const wchar_t*>(10), L"4.6.1");
    EXPECT_EQ(callSlot<const wchar_t*>(11), inProgram("UserDataCache"));
}

// Names, version and language.

TEST(Product, NamesAreTheDefaultsBeforeTheStart)
{
    EXPECT_STREQ(product().productName(), L"VORNA");
    EXPECT_STREQ(product().programName(), L"VORNA");
    EXPECT_STREQ(product().companyName(), L"HALVIK");
    EXPECT_STREQ(product().version(), L"2026");
}

TEST(Product, LanguageIsTheUnresolvedOneBeforeTheStart)
{
    EXPECT_EQ(product().language().id(), -1);
    EXPECT_EQ(&product().language(), &vornConfig()->language());
}

TEST(Product, NamesAndLanguageFollowTheStart)
{
    Installation::here().installLanguage("fr-FR");
    ASSERT_EQ(start(L"Drafter", L"Acme", L"fr-FR"), 0U);
    EXPECT_STREQ(product().productName(), L"Drafter");
    EXPECT_STREQ(product().companyName(), L"Acme");
    EXPECT_STREQ(product().version(), L"2026");
    EXPECT_EQ(product().language().id(), 4);
}

TEST(Product, ProgramNameIsTheSameWhateverTheProduct)
{
    ASSERT_EQ(startInEnglish(L"VORNAGEO"), 0U);
    EXPECT_STREQ(product().programName(), L"VORNA");
    EXPECT_EQ(product().edition(), 6);
}

TEST(Product, ReleaseNumbersAreThoseOfThisRelease)
{
    EXPECT_EQ(product().releaseMajorVer(), 26);
    EXPECT_EQ(product().releaseMinorVer(), 0);
    EXPECT_EQ(product().buildVer(), 1);
    EXPECT_STREQ(product().dotNetFrameworkVersionRequired(), L"4.6.1");
}

// Editions.

struct EditionCase {
    const char* name;
    const char* product;
    int edition;
};

std::ostream& operator<<(std::ostream& stream, const EditionCase& instance)
{
    return stream << instance.product;
}

class ProductEdition : public testing::TestWithParam<EditionCase>
{
};

TEST_P(ProductEdition, IsThatOfTheProductName)
{
    ASSERT_EQ(startInEnglish(wide(GetParam().product).c_str()), 0U);
    EXPECT_EQ(product().edition(), GetParam().edition);
    EXPECT_EQ(product().edition(), GetParam().edition);
}

INSTANTIATE_TEST_SUITE_P(
    All, ProductEdition,
    testing::Values(EditionCase{"Plain", "VORNA", 1}, EditionCase{"M", "VORNAM", 2}, EditionCase{"A", "VORNAA", 3},
                    EditionCase{"Geo", "VORNAGEO", 6}, EditionCase{"PlainInLowerCase", "vorna", 1},
                    EditionCase{"MInMixedCase", "VornaM", 2}, EditionCase{"AInLowerCase", "vornaa", 3},
                    EditionCase{"GeoInMixedCase", "VornaGeo", 6}, EditionCase{"LongerName", "VORNAMM", 4},
                    EditionCase{"ShorterName", "VORN", 4}, EditionCase{"AnyOtherName", "Drafter", 4}),
    [](const auto& instance) { return instance.param.name; });

TEST(ProductEditionBeforeTheStart, IsThatOfTheDefaultProduct)
{
    EXPECT_EQ(product().edition(), 1);
}

TEST(ProductEditionBeforeTheStart, IsComputedAnewAfterIt)
{
    ASSERT_EQ(product().edition(), 1);
    ASSERT_EQ(startInEnglish(L"VORNAM"), 0U);
    EXPECT_EQ(product().edition(), 2);
}

// The help file.

TEST(ProductHelpFile, LiesInTheLanguagesFolderWhetherOrNotItIsThere)
{
    ASSERT_EQ(startInEnglish(), 0U);
    EXPECT_EQ(product().helpFile(), inProgram("en-US/Help/VrHelp.pdf"));
    EXPECT_FALSE(fs::exists(product().helpFile()));
}

TEST(ProductHelpFile, OfTheUnresolvedLanguageLiesInTheUnknownFolder)
{
    EXPECT_EQ(product().helpFile(), inProgram("unknown/Help/VrHelp.pdf"));
}

TEST(ProductHelpFile, IsKeptFromTheFirstSuccessOn)
{
    Installation::here().installLanguage("de-DE");
    ASSERT_EQ(startInEnglish(), 0U);
    const wchar_t* const first = product().helpFile();
    ASSERT_EQ(vornConfig()->initLanguageName(L"de-DE"), 0U);
    EXPECT_EQ(product().helpFile(), first);
    EXPECT_EQ(product().helpFile(), inProgram("en-US/Help/VrHelp.pdf"));
}

PROBE(helpFile)
{
    if (start() != 0)
        return 1;
    std::cout << utf8(product().helpFile()) << "\n";
    return 0;
}

/// The help file of a program whose help file's path has the length.
std::string helpFileOfLength(std::size_t length)
{
    const Installation program(directoryOfLength(length - kHelpLength - 5));
    program.installLanguage("en-US");
    const ProcessResult result = program.run("helpFile");
    EXPECT_EQ(result.exitCode, 0);
    const std::string path = program.programDir() / "en-US/Help/VrHelp.pdf";
    EXPECT_EQ(path.size(), length);
    return result.out == path + "\n" ? "path" : result.out;
}

TEST(ProductHelpFile, HasFiveHundredNineCharactersAtMost)
{
    EXPECT_EQ(helpFileOfLength(509), "path");
}

TEST(ProductHelpFile, IsTheBareNameBeyondFiveHundredNineCharacters)
{
    EXPECT_EQ(helpFileOfLength(510), "VrHelp.pdf\n");
    EXPECT_EQ(helpFileOfLength(800), "VrHelp.pdf\n");
}

PROBE(helpFileBeforeAndAfterTheStart)
{
    std::cout << utf8(product().helpFile()) << "\n" << utf8(product().helpFile()) << "\n";
    if (start() != 0)
        return 1;
    std::cout << utf8(product().helpFile()) << "\n";
    return 0;
}

TEST(ProductHelpFile, IsAskedForAgainWhenItCouldNotBeNamed)
{
    // With "unknown" it has 510 characters, with "en-US" two less.
    const Installation program(directoryOfLength(510 - kHelpLength - 7));
    program.installLanguage("en-US");
    const ProcessResult result = program.run("helpFileBeforeAndAfterTheStart");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out,
              "VrHelp.pdf\nVrHelp.pdf\n" + (program.programDir() / "en-US/Help/VrHelp.pdf").string() + "\n");
}

// The folder for cached user data.

TEST(ProductCacheFolder, LiesBesideTheExecutableWithoutASeparatorAtItsEnd)
{
    EXPECT_EQ(product().userDataCacheDir(), inProgram("UserDataCache"));
    EXPECT_FALSE(fs::exists(product().userDataCacheDir()));
}

PROBE(cacheFolder)
{
    std::cout << utf8(product().userDataCacheDir()) << "\n";
    return 0;
}

PROBE(cacheFolderAfterTheProgramMoved)
{
    const std::wstring before = product().userDataCacheDir();
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
    fs::rename(program, program.string() + "-moved");
    return product().userDataCacheDir() == before ? 0 : 1;
}

std::string cacheFolderIn(const Installation& program)
{
    const ProcessResult result = program.run("cacheFolder");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return result.out.substr(0, result.out.find('\n'));
}

TEST(ProductCacheFolder, IsKeptFromTheFirstSuccessOn)
{
    const Installation program;
    EXPECT_EQ(program.run("cacheFolderAfterTheProgramMoved").exitCode, 0);
}

TEST(ProductCacheFolder, KeepsCharactersOfEveryScript)
{
    const Installation program("Größe 日本 \U0001F600");
    EXPECT_EQ(cacheFolderIn(program), program.programDir() / "UserDataCache");
}

TEST(ProductCacheFolder, FillsItsBufferToTheLastCharacter)
{
    const Installation program(directoryOfLength(1010));
    const std::string expected = program.programDir() / "UserDataCache";
    ASSERT_EQ(expected.size(), 1023U);
    EXPECT_EQ(cacheFolderIn(program), expected);
}

TEST(ProductCacheFolder, IsEmptyWhenItDoesNotFit)
{
    EXPECT_EQ(cacheFolderIn(Installation(directoryOfLength(1011))), "");
}

TEST(ProductCacheFolder, IsEmptyWhenTheExecutablesPathIsTooLong)
{
    EXPECT_EQ(cacheFolderIn(Installation(directoryOfLength(1000), "host" + std::string(19, 'x'))), "");
    EXPECT_EQ(cacheFolderIn(Installation(directoryOfLength(2000))), "");
}

TEST(ProductCacheFolder, IsGivenForTheLongestExecutablePath)
{
    const Installation program(directoryOfLength(1000), "host" + std::string(18, 'x'));
    ASSERT_EQ(program.executable().string().size(), 1022U);
    EXPECT_EQ(cacheFolderIn(program), program.programDir() / "UserDataCache");
}

} // namespace
