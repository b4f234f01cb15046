// What the program, its build and its release are called.
#include <array>
#include <filesystem>
#include <functional>
#include <iostream>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "VrUInfo/Naming.h"
#include "VrUInfo/VornaConfig.h"
#include "VrUInfo/VornaProduct.h"
#include "long_path.h"
#include "started_store.h"

using namespace vrtest;

namespace
{

constexpr int kThreads = 8;
/// What the build was given as its identifier.
const std::string kGivenIdentifier = readFile(VR_IDENTIFIER_FILE);
const std::wstring kIdentifier = wide(kGivenIdentifier);

using Printer = int (*)(wchar_t*, unsigned int, bool);

/// What a print function returned and left in a buffer of exactly `size` characters.
struct Printed {
    int result;
    std::wstring text;
};

bool operator==(const Printed& one, const Printed& other)
{
    return one.result == other.result && one.text == other.text;
}

std::ostream& operator<<(std::ostream& stream, const Printed& printed)
{
    return stream << printed.result << " '" << utf8(printed.text) << "'";
}

Printed printed(Printer print, std::size_t size, bool withTag)
{
    GuardedBuffer buffer(size);
    const int result = print(buffer.data(), static_cast<unsigned int>(size), withTag);
    EXPECT_TRUE(buffer.isWhole());
    return {result, result < 0 ? std::wstring() : buffer.text()};
}

Printed whole(const std::wstring& text)
{
    return {static_cast<int>(text.size()), text};
}

std::wstring tagged(const std::wstring& identifier)
{
    return L"VERNUM = \"" + identifier + L"\"";
}

using NameFunction = unsigned int (*)(wchar_t*);

/// What a name function wrote; "-" where it returned 0.
std::wstring nameGiven(NameFunction function)
{
    GuardedBuffer buffer(kCapacity);
    const unsigned int length = function(buffer.data());
    EXPECT_TRUE(buffer.isWhole());
    if (length == 0)
        return L"-";
    EXPECT_EQ(buffer.text().size(), length);
    return buffer.text();
}

std::wstring programName()
{
    return nameGiven(GetVornProgramName);
}

std::wstring preName()
{
    return nameGiven(GetVornProductPreName);
}

/// What all of eight threads that ask at once are told.
std::set<std::wstring> toldToThreads(const std::function<std::wstring()>& ask)
{
    std::array<std::wstring, kThreads> told;
    std::vector<std::thread> threads;
    threads.reserve(told.size());
    for (std::wstring& answer : told)
        threads.emplace_back([&answer, &ask] { answer = ask(); });
    for (std::thread& thread : threads)
        thread.join();
    return {told.begin(), told.end()};
}

} // namespace

/// Prints the program's name, "-" where there is none.
PROBE(printProgramName)
{
    std::cout << utf8(programName());
    return 0;
}

/// Prints the pre-name, "-" where there is none.
PROBE(printPreName)
{
    std::cout << utf8(preName());
    return 0;
}

/// Whether there is no pre-name, and the buffer says so.
PROBE(failEmpty)
{
    GuardedBuffer buffer(kCapacity);
    return GetVornProductPreName(buffer.data()) == 0 && buffer.text().empty() && buffer.isWhole() ? 0 : 1;
}

PROBE(printPrefix)
{
    std::cout << utf8(GetVornArchitectrueCommandNamePrefix());
    return 0;
}

namespace
{

// The build identifier.

TEST(BuildIdentifier, HasReleaseDateNumberRevisionSystemAndProcessor)
{
    const std::regex form(R"(\d+\.\d\d_\d{4}\.\d\d\.\d\d\(#\d+-[0-9a-f]{11}\)_[A-Za-z0-9]+_\w+)");
    EXPECT_TRUE(std::regex_match(kGivenIdentifier, form)) << kGivenIdentifier;
}

TEST(BuildIdentifier, IsPrintedExactlyWithoutTag)
{
    EXPECT_EQ(printed(GetVerNum, 200, false), whole(kIdentifier));
}

TEST(BuildIdentifier, IsPrintedInQuotesBehindVernumWithTag)
{
    EXPECT_EQ(printed(GetVerNum, 200, true), whole(L"VERNUM = \"" + kIdentifier + L"\""));
}

TEST(BuildIdentifier, FitsItsLengthAndATerminator)
{
    EXPECT_EQ(printed(GetVerNum, kIdentifier.size() + 1, false), whole(kIdentifier));
    EXPECT_EQ(printed(GetVerNum, tagged(kIdentifier).size() + 1, true), whole(tagged(kIdentifier)));
}

TEST(BuildIdentifier, DoesNotFitItsBareLength)
{
    EXPECT_EQ(printed(GetVerNum, kIdentifier.size(), false).result, -1);
    EXPECT_EQ(printed(GetVerNum, tagged(kIdentifier).size(), true).result, -1);
}

TEST(BuildIdentifier, DoesNotFitOneCharacter)
{
    EXPECT_EQ(printed(GetVerNum, 1, false).result, -1);
    EXPECT_EQ(printed(GetVerNum, 1, true).result, -1);
}

TEST(BuildIdentifier, WritesNothingIntoASizeOfZero)
{
    for (const Printer print : {GetVerNum, GetResVerNum}) {
        for (const bool withTag : {false, true}) {
            GuardedBuffer buffer(0);
            EXPECT_EQ(print(buffer.data(), 0, withTag), -1);
            EXPECT_TRUE(buffer.isWhole());
        }
    }
}

TEST(BuildIdentifier, GivesZeroForANullBuffer)
{
    for (const Printer print : {GetVerNum, GetResVerNum}) {
        for (const unsigned int size : {0U, 1U, 200U}) {
            EXPECT_EQ(print(nullptr, size, false), 0);
            EXPECT_EQ(print(nullptr, size, true), 0);
        }
    }
}

TEST(ResourceIdentifier, IsEmptyWithoutTag)
{
    EXPECT_EQ(printed(GetResVerNum, 200, false), whole(L""));
    EXPECT_EQ(printed(GetResVerNum, 1, false), whole(L""));
}

TEST(ResourceIdentifier, IsVernumAndTwoQuotesWithTag)
{
    EXPECT_EQ(printed(GetResVerNum, 200, true), whole(L"VERNUM = \"\""));
}

TEST(ResourceIdentifier, FitsItsLengthAndATerminatorOnly)
{
    constexpr std::size_t kLength = 11;
    EXPECT_EQ(printed(GetResVerNum, kLength + 1, true), whole(L"VERNUM = \"\""));
    EXPECT_EQ(printed(GetResVerNum, kLength, true).result, -1);
}

// Version and product.

TEST(ProgramVersion, IsTheProductObjects)
{
    EXPECT_STREQ(GetVornProgramVersionString(), vornGetProduct()->version());
    EXPECT_STREQ(GetVornProgramVersionString(), L"2026");
}

TEST(ServicePackageVersion, IsAnEmptyText)
{
    ASSERT_NE(GetServicePackageVersionString(), nullptr);
    EXPECT_STREQ(GetServicePackageVersionString(), L"");
}

TEST(ReleaseNumbers, AreTheProductObjects)
{
    EXPECT_EQ(GetVornReleaseMajorVer(), vornGetProduct()->releaseMajorVer());
    EXPECT_EQ(GetVornReleaseMajorVer(), 26);
    EXPECT_EQ(GetVornReleaseMinorVer(), vornGetProduct()->releaseMinorVer());
    EXPECT_EQ(GetVornReleaseMinorVer(), 0);
}

TEST(CurrentProduct, IsTheDefaultUntilResolved)
{
    EXPECT_STREQ(GetCurrentProductName(), L"VORNA");
}

TEST(CurrentProduct, IsTheConfigurationsOnceResolved)
{
    Installation::here().installLanguage("en-US");
    ASSERT_EQ(InitVornConfig(nullptr, L"Größe", L"en-US", nullptr), 0U);
    EXPECT_STREQ(GetCurrentProductName(), L"Größe");
    EXPECT_EQ(GetCurrentProductName(), vornConfig()->productName());
}

// The program's name.

struct NamedProgram {
    const char* test;
    const char* directory;
    const char* executable;
    const char* name;
};

std::ostream& operator<<(std::ostream& stream, const NamedProgram& program)
{
    return stream << program.directory << "/" << program.executable;
}

class ProgramName : public testing::TestWithParam<NamedProgram>
{
};

TEST_P(ProgramName, IsTheExecutablesBaseName)
{
    const Installation program(GetParam().directory, GetParam().executable);
    EXPECT_EQ(program.run("printProgramName").out, GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramName,
                         testing::Values(NamedProgram{"Plain", "program", "plain", "plain"},
                                         NamedProgram{"WithoutExtension", "program", "host.bin", "host"},
                                         NamedProgram{"CutAtTheLastDotOnly", "program", "a.b.c", "a.b"},
                                         NamedProgram{"NothingIsLeftOfAHiddenOne", "program", ".hidden", "-"},
                                         NamedProgram{"HiddenWithExtension", "program", ".hidden.bin", ".hidden"},
                                         NamedProgram{"ADotAtTheEnd", "program", "host.", "host"},
                                         NamedProgram{"ADotOfTheDirectoryDoesNotCount", "pro.gram", "host", "host"},
                                         NamedProgram{"ABackslashIsNoSeparator", "program", "a\\b", "a\\b"},
                                         NamedProgram{"LengthsCountCharacters", "program", "größe😀.x", "größe😀"}),
                         [](const auto& instance) { return instance.param.test; });

TEST(ProgramNameOfThisProgram, IsThatOfItsFile)
{
    EXPECT_EQ(programName(), Installation::here().executable().stem().wstring());
}

TEST(ProgramNameOfThisProgram, IsNotGivenForANullBuffer)
{
    EXPECT_EQ(GetVornProgramName(nullptr), 0U);
}

TEST(ProgramNameLimit, IsAPathOfOneThousandTwentyThreeCharacters)
{
    const LongInstallation program(1018);
    ASSERT_EQ(program.executable().string().size(), 1023U);
    EXPECT_EQ(program.run("printProgramName").out, "host");
}

TEST(ProgramNameLimit, IsPassedByOneCharacterMore)
{
    const LongInstallation program(1019);
    ASSERT_EQ(program.executable().string().size(), 1024U);
    EXPECT_EQ(program.run("printProgramName").out, "-");
}

TEST(ProgramNameLimit, LongNamesAreGivenWhole)
{
    const std::string name(251, 'n');
    const Installation program("program", name + ".bin");
    EXPECT_EQ(program.run("printProgramName").out, name);
}

// The pre-name.

class PreName : public testing::Test
{
protected:
    /// The INI file of this program.
    static void writeIni(const std::string& text)
    {
        const Installation& here = Installation::here();
        here.write(here.executable().stem().string() + ".ini", text);
    }
    static void writePreName(const std::string& text) { writeIni("[Product]\nPreStr=" + text + "\n"); }
};

TEST_F(PreName, IsReadFromTheIniFileNamedAfterTheExecutable)
{
    writePreName("Dr");
    EXPECT_EQ(preName(), L"Dr");
}

TEST_F(PreName, IsReadBesideTheExecutableOnly)
{
    const Installation program("program", "a.b.c");
    program.write("a.ini", "[Product]\nPreStr=No\n");
    program.write("a.b.c.ini", "[Product]\nPreStr=No\n");
    program.write("VORNA.ini", "[Product]\nPreStr=No\n");
    EXPECT_EQ(program.run("printPreName").out, "-");
    program.write("a.b.ini", "[Product]\nPreStr=Yes\n");
    EXPECT_EQ(program.run("printPreName", {}, {}, "/").out, "Yes");
}

TEST_F(PreName, FailsForAnExecutableWithoutABaseName)
{
    const Installation program("program", ".hidden");
    program.write(".ini", "[Product]\nPreStr=No\n");
    EXPECT_EQ(program.run("printPreName").out, "-");
}

TEST_F(PreName, FailsWithAnEmptyTextWithoutFileSectionOrKey)
{
    const Installation program;
    EXPECT_EQ(program.run("failEmpty").exitCode, 0);
    for (const char* const text : {"", "[Product]\n", "[Product]\nPreStr=\n", "[Other]\nPreStr=No\n", "PreStr=No\n"}) {
        program.write("host.ini", text);
        EXPECT_EQ(program.run("failEmpty").exitCode, 0) << text;
    }
}

TEST_F(PreName, IsReadOncePerProcess)
{
    writePreName("First");
    ASSERT_EQ(preName(), L"First");
    writePreName("Second");
    EXPECT_EQ(preName(), L"First");
    std::filesystem::remove(Installation::here().executable().string() + ".ini");
    EXPECT_EQ(preName(), L"First");
}

TEST_F(PreName, AnEmptyOneIsKeptToo)
{
    writePreName("");
    ASSERT_EQ(preName(), L"-");
    writePreName("Late");
    EXPECT_EQ(preName(), L"-");
}

TEST_F(PreName, IsCountedInCharacters)
{
    writePreName("Größe😀");
    EXPECT_EQ(preName(), L"Größe😀");
}

TEST_F(PreName, MayHaveOneThousandTwentyTwoCharacters)
{
    writePreName(std::string(1022, 'p'));
    EXPECT_EQ(preName(), wideOf(1022, L'p'));
}

TEST_F(PreName, MayHaveOneThousandTwentyThreeCharacters)
{
    writePreName(std::string(1023, 'p'));
    EXPECT_EQ(preName(), wideOf(1023, L'p'));
}

TEST_F(PreName, IsCutBehindOneThousandTwentyThreeCharacters)
{
    writePreName(std::string(1023, 'p') + "x");
    EXPECT_EQ(preName(), wideOf(1023, L'p'));
}

TEST_F(PreName, FailsForANullBuffer)
{
    writePreName("Dr");
    EXPECT_EQ(GetVornProductPreName(nullptr), 0U);
    EXPECT_EQ(preName(), L"Dr");
}

TEST_F(PreName, IsTheSameForThreadsThatAskAtOnce)
{
    writePreName("Dr");
    EXPECT_EQ(toldToThreads(preName), std::set<std::wstring>{L"Dr"});
}

// The prefix of command names.

class CommandPrefix : public testing::Test
{
protected:
    static void writeIni(const std::string& text) { Installation::here().write("product.ini", text); }
    static void writeNumbers(const std::string& major, const std::string& product)
    {
        writeIni("[Product]\nMajorVer=" + major + "\nProductId=" + product + "\n");
    }
    /// The prefix of a new process where the INI file reads so.
    static std::string prefixOf(const std::string& major, const std::string& product)
    {
        writeNumbers(major, product);
        return Installation::here().run("printPrefix").out;
    }
    static std::wstring prefix() { return GetVornArchitectrueCommandNamePrefix(); }
};

TEST_F(CommandPrefix, IsMadeOfMajorVersionAndProductId)
{
    writeNumbers("26", "1");
    EXPECT_EQ(prefix(), L"S261_");
}

TEST_F(CommandPrefix, IsEmptyAndNotNullWithoutTheFile)
{
    ASSERT_NE(GetVornArchitectrueCommandNamePrefix(), nullptr);
    EXPECT_EQ(prefix(), L"");
}

TEST_F(CommandPrefix, IsReadFromProductIniOnly)
{
    Installation::here().write("VORNA.ini", "[Product]\nMajorVer=26\nProductId=1\n");
    EXPECT_EQ(prefix(), L"");
}

TEST_F(CommandPrefix, StaysEmptyUntilBothKeysCanBeRead)
{
    EXPECT_EQ(prefix(), L"");
    writeIni("[Product]\nMajorVer=26\n");
    EXPECT_EQ(prefix(), L"");
    writeIni("[Product]\nProductId=1\n");
    EXPECT_EQ(prefix(), L"");
    writeIni("[Other]\nMajorVer=26\nProductId=1\n");
    EXPECT_EQ(prefix(), L"");
    writeNumbers("26", "1");
    EXPECT_EQ(prefix(), L"S261_");
}

TEST_F(CommandPrefix, IsKeptForTheLifeOfTheProcess)
{
    writeNumbers("26", "1");
    const wchar_t* const first = GetVornArchitectrueCommandNamePrefix();
    writeNumbers("27", "2");
    EXPECT_EQ(GetVornArchitectrueCommandNamePrefix(), first);
    EXPECT_STREQ(first, L"S261_");
    std::filesystem::remove(Installation::here().programDir() / "product.ini");
    EXPECT_EQ(GetVornArchitectrueCommandNamePrefix(), first);
    EXPECT_STREQ(first, L"S261_");
}

TEST_F(CommandPrefix, TakesTextForZero)
{
    EXPECT_EQ(prefixOf("abc", "1"), "S01_");
    EXPECT_EQ(prefixOf("26", "abc"), "S260_");
    EXPECT_EQ(prefixOf("0", "0"), "S00_");
}

TEST_F(CommandPrefix, IsEmptyForANegativeNumber)
{
    EXPECT_EQ(prefixOf("-1", "1"), "");
    EXPECT_EQ(prefixOf("26", "-1"), "");
}

TEST_F(CommandPrefix, HasRoomForTheLargestNumbers)
{
    EXPECT_EQ(prefixOf("2147483647", "2147483647"), "S21474836472147483647_");
}

TEST_F(CommandPrefix, FollowsTheInstallationAfterAStart)
{
    ASSERT_EQ(start(), 0U);
    writeNumbers("26", "3");
    EXPECT_EQ(prefix(), L"S263_");
}

TEST_F(CommandPrefix, IsTheSameForThreadsThatAskAtOnce)
{
    writeNumbers("26", "1");
    EXPECT_EQ(toldToThreads([] { return prefix(); }), std::set<std::wstring>{L"S261_"});
}

TEST_F(CommandPrefix, IsWholeForThreadsThatAskWhileTheFileAppears)
{
    const auto askUntilThere = [] {
        std::wstring seen;
        while (seen.empty())
            seen = prefix();
        return seen;
    };
    std::thread writer([] {
        const std::filesystem::path& program = Installation::here().programDir();
        Installation::here().write("written.ini", "[Product]\nMajorVer=26\nProductId=1\n");
        std::filesystem::rename(program / "written.ini", program / "product.ini");
    });
    EXPECT_EQ(toldToThreads(askUntilThere), std::set<std::wstring>{L"S261_"});
    writer.join();
}

} // namespace
