#include <algorithm>
#include <array>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VrUInfo/VrUInfo.h"
#include "installation.h"
#include "long_path.h"
#include "small_library.h"

namespace fs = std::filesystem;
using namespace vrtest;

/// What the library declares a friend for tests: reaches states that its own operations never make.
struct VornaLayout {
    static void setCompanyName(VornaConfig& config, const std::wstring& name)
    {
        delete[] config.m_companyName;
        config.m_companyName = new wchar_t[name.size() + 1];
        std::wmemcpy(config.m_companyName, name.c_str(), name.size() + 1);
    }
};

namespace
{

constexpr wchar_t kCanary = 0x5A5A;

using PathFunction = unsigned int (*)(wchar_t*);

struct NamedFunction {
    const char* name;
    PathFunction function;
};

std::ostream& operator<<(std::ostream& stream, const NamedFunction& instance)
{
    return stream << instance.name;
}

const std::vector<NamedFunction> kRoamingChain = {{"Company", GetUserApplicationDataComanyPath},
                                                  {"Product", GetUserApplicationDataProductPath},
                                                  {"Version", GetUserApplicationDataVersionPath},
                                                  {"Language", GetUserApplicationDataLanguagePath}};

const std::vector<NamedFunction> kLocalChain = {{"LocalCompany", GetUserLocalApplicationDataComanyPath},
                                                {"LocalProduct", GetUserLocalApplicationDataProductPath},
                                                {"LocalVersion", GetUserLocalApplicationDataVersionPath},
                                                {"LocalLanguage", GetUserLocalApplicationDataLanguagePath}};

const std::vector<NamedFunction> kRoamingLeaves = {{"Support", GetUserApplicationDataSupportPath},
                                                   {"Plotters", GetUserApplicationDataPlottersPath},
                                                   {"CrashReport", GetUserApplicationDataCrashReportPath},
                                                   {"Printstyle", GetUserApplicationDataPrintstylePath}};

const std::vector<NamedFunction> kBases = {{"Roaming", GetUserApplicationDataPath},
                                           {"Local", GetUserLocalApplicationDataPath},
                                           {"Profile", GetUserProfileDirectory}};

const std::vector<NamedFunction> kTemplate = {{"Template", GetUserLocalApplicationDataTemplatePath}};

std::vector<NamedFunction> joined(const std::vector<std::vector<NamedFunction>>& lists)
{
    std::vector<NamedFunction> all;
    for (const auto& list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

std::string nameOf(const testing::TestParamInfo<NamedFunction>& instance)
{
    return instance.param.name;
}

/// A caller's buffer with canaries behind the capacity that it promises.
class Buffer
{
public:
    explicit Buffer(std::size_t capacity = kVornPathCapacity) : m_capacity(capacity) { m_text.fill(kCanary); }
    wchar_t* data() { return m_text.data(); }
    std::wstring text() const { return {m_text.data(), wcsnlen(m_text.data(), m_capacity)}; }
    bool isUntouched() const { return isCanaryFrom(0); }
    bool isKeptInside() const { return isCanaryFrom(m_capacity) && wcsnlen(m_text.data(), m_capacity) < m_capacity; }

private:
    bool isCanaryFrom(std::size_t begin) const
    {
        return std::all_of(m_text.begin() + static_cast<std::ptrdiff_t>(begin), m_text.end(),
                           [](wchar_t c) { return c == kCanary; });
    }

    std::size_t m_capacity;
    std::array<wchar_t, 1200> m_text{};
};

/// What a path function answered: its text when the result is that text's length and nothing was written behind the
/// buffer; "0" for a failure.
std::wstring answerOf(PathFunction function, std::size_t capacity = kVornPathCapacity)
{
    Buffer buffer(capacity);
    const unsigned int length = function(buffer.data());
    EXPECT_TRUE(buffer.isKeptInside());
    if (length == 0)
        return L"0";
    EXPECT_EQ(length, buffer.text().size());
    return buffer.text();
}

std::wstring leafAnswerOf(PathFunction function)
{
    return answerOf(function, kVornLeafPathCapacity);
}

/// Whether a path function failed with an empty text in the buffer.
bool leavesAnEmptyText(PathFunction function)
{
    Buffer buffer;
    return function(buffer.data()) == 0 && buffer.text().empty() && buffer.isKeptInside();
}

void setVariable(const char* name, const std::string& value)
{
    setenv(name, value.c_str(), 1);
}

/// The place of the roaming and the local data, by a path of exactly this length that need not exist.
void setDataFolders(std::size_t length)
{
    setVariable("XDG_CONFIG_HOME", absolutePath(length));
    setVariable("XDG_DATA_HOME", absolutePath(length));
}

void startInEnglish(const wchar_t* company = nullptr, const wchar_t* product = nullptr)
{
    Installation::here().installLanguage("en-US");
    ASSERT_EQ(InitVornConfig(company, product, L"en-US", nullptr), 0U);
}

std::wstring inHome(const std::string& name)
{
    return wide((Installation::here().home() / name).string());
}

std::wstring programDirectory()
{
    return wide(Installation::here().programDir().string()) + L"/";
}

// The program directory.

TEST(ProgramPath, IsTheExecutablesDirectoryWithASeparatorAtItsEnd)
{
    Buffer buffer;
    EXPECT_EQ(GetProgramPath(buffer.data(), 1024), programDirectory().size());
    EXPECT_EQ(buffer.text(), programDirectory());
    EXPECT_EQ(answerOf(GetVornProgramPath), programDirectory());
}

TEST(ProgramPath, MustBeShorterThanTheSize)
{
    const auto length = static_cast<unsigned int>(programDirectory().size());
    Buffer refused;
    EXPECT_EQ(GetProgramPath(refused.data(), length), 0U);
    EXPECT_TRUE(refused.isUntouched());
    Buffer given(length + 1);
    EXPECT_EQ(GetProgramPath(given.data(), length + 1), length);
    EXPECT_EQ(given.text(), programDirectory());
    EXPECT_TRUE(given.isKeptInside());
}

TEST(ProgramPath, NeedsABufferAndASize)
{
    Buffer buffer;
    EXPECT_EQ(GetProgramPath(nullptr, 1024), 0U);
    EXPECT_EQ(GetProgramPath(buffer.data(), 0), 0U);
    EXPECT_EQ(GetProgramPath(buffer.data(), 1), 0U);
    EXPECT_TRUE(buffer.isUntouched());
    EXPECT_EQ(GetVornProgramPath(nullptr), 0U);
}

PROBE(programPath)
{
    std::cout << utf8(answerOf(GetVornProgramPath)) << "\n";
    return 0;
}

std::string programPathOf(const Installation& program)
{
    const ProcessResult result = program.run("programPath");
    EXPECT_EQ(result.exitCode, 0);
    return result.out.substr(0, result.out.find('\n'));
}

TEST(ProgramPath, KeepsCharactersOfEveryScript)
{
    const Installation program("Größe 日本 \U0001F600");
    EXPECT_EQ(programPathOf(program), program.programDir().string() + "/");
}

TEST(ProgramPath, DoesNotDependOnTheLocale)
{
    const Installation program("Größe 日本 \U0001F600");
    const ProcessResult result = program.run("programPath", {}, {{"LC_ALL", "C"}});
    EXPECT_EQ(result.out, program.programDir().string() + "/\n");
}

TEST(ProgramPath, IsGivenForTheLongestExecutablePath)
{
    const Installation program(directoryOfLength(1021), "p");
    ASSERT_EQ(program.executable().string().size(), 1022U);
    EXPECT_EQ(programPathOf(program), program.programDir().string() + "/");
}

PROBE(programPathAfterTheProgramMoved)
{
    const std::wstring before = answerOf(GetVornProgramPath);
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
    fs::rename(program, program.string() + "-moved");
    return before != L"0" && answerOf(GetVornProgramPath) == before ? 0 : 1;
}

TEST(ProgramPath, IsNeverAskedForAgain)
{
    const Installation program;
    EXPECT_EQ(program.run("programPathAfterTheProgramMoved").exitCode, 0);
}

// The base folders.

TEST(BaseFolder, IsTheUsersOwnWithASeparatorAtItsEnd)
{
    EXPECT_EQ(answerOf(GetUserApplicationDataPath), inHome(".config/"));
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataPath), inHome(".local/share/"));
    EXPECT_EQ(answerOf(GetUserProfileDirectory), inHome(""));
}

TEST(BaseFolder, FollowsTheUsersVariables)
{
    setVariable("XDG_CONFIG_HOME", "/some/config");
    setVariable("XDG_DATA_HOME", "/some/data");
    setVariable("HOME", "/some/home");
    EXPECT_EQ(answerOf(GetUserApplicationDataPath), L"/some/config/");
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataPath), L"/some/data/");
    EXPECT_EQ(answerOf(GetUserProfileDirectory), L"/some/home/");
}

TEST(BaseFolder, KeepsASeparatorThatItEndsWith)
{
    setVariable("XDG_CONFIG_HOME", "/some/config/");
    setVariable("HOME", "/");
    EXPECT_EQ(answerOf(GetUserApplicationDataPath), L"/some/config/");
    EXPECT_EQ(answerOf(GetUserProfileDirectory), L"/");
}

TEST(BaseFolder, KeepsABackslashThatItEndsWithAndGetsNoSlash)
{
    setVariable("XDG_CONFIG_HOME", "/some/config\\");
    setVariable("XDG_DATA_HOME", "/some/data\\");
    EXPECT_EQ(answerOf(GetUserApplicationDataPath), L"/some/config\\");
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataPath), L"/some/data\\");
    EXPECT_EQ(answerOf(GetUserApplicationDataComanyPath), L"/some/config\\HALVIK/");
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataComanyPath), L"/some/data\\HALVIK/");
}

TEST(BaseFolder, IsNotCreated)
{
    setVariable("XDG_CONFIG_HOME", Installation::here().root() / "no-config");
    setVariable("XDG_DATA_HOME", Installation::here().root() / "no-data");
    ASSERT_NE(answerOf(GetUserApplicationDataLanguagePath), L"0");
    ASSERT_NE(leafAnswerOf(GetUserApplicationDataSupportPath), L"0");
    ASSERT_NE(answerOf(GetUserLocalApplicationDataTemplatePath), L"0");
    EXPECT_FALSE(fs::exists(Installation::here().root() / "no-config"));
    EXPECT_FALSE(fs::exists(Installation::here().root() / "no-data"));
}

TEST(BaseFolder, CountsCharactersOfEveryScriptOnce)
{
    const std::string folder = "/tmp/Größe 日本 \U0001F600";
    setVariable("XDG_CONFIG_HOME", folder);
    EXPECT_EQ(answerOf(GetUserApplicationDataPath), wide(folder) + L"/");
    EXPECT_EQ(answerOf(GetUserApplicationDataPath).size(), 16U);
}

PROBE(roamingPath)
{
    std::cout << utf8(answerOf(GetUserApplicationDataPath)) << "\n";
    return 0;
}

TEST(BaseFolder, DoesNotDependOnTheLocale)
{
    const std::string folder = "/tmp/Größe 日本 \U0001F600";
    const Environment variables = {{"XDG_CONFIG_HOME", folder}, {"LC_ALL", "C"}};
    EXPECT_EQ(Installation().run("roamingPath", {}, variables).out, folder + "/\n");
}

TEST(BaseFolder, IsEmptyForAFolderThatDoesNotFit)
{
    setDataFolders(1024);
    setVariable("HOME", absolutePath(1024));
    for (const NamedFunction& base : kBases)
        EXPECT_TRUE(leavesAnEmptyText(base.function)) << base.name;
}

TEST(BaseFolder, FillsTheBufferToItsLastCharacter)
{
    setDataFolders(1022);
    EXPECT_EQ(answerOf(GetUserApplicationDataPath), wide(absolutePath(1022)) + L"/");
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataPath), wide(absolutePath(1022)) + L"/");
}

TEST(BaseFolder, FailsWhereTheSeparatorDoesNotFit)
{
    setDataFolders(1023);
    EXPECT_EQ(answerOf(GetUserApplicationDataPath), L"0");
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataPath), L"0");
}

TEST(BaseFolder, OfTheProfileHasOneThousandTwentyOneCharactersAtMost)
{
    setVariable("HOME", absolutePath(1021));
    EXPECT_EQ(answerOf(GetUserProfileDirectory), wide(absolutePath(1021)) + L"/");
    setVariable("HOME", absolutePath(1022));
    EXPECT_EQ(answerOf(GetUserProfileDirectory), L"0");
}

// The chains.

TEST(FolderChain, NamesTheDefaultIdentityBeforeTheStart)
{
    EXPECT_EQ(answerOf(GetUserApplicationDataLanguagePath), inHome(".config/HALVIK/VORNA/2026/unknown/"));
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataLanguagePath), inHome(".local/share/HALVIK/VORNA/2026/unknown/"));
}

TEST(FolderChain, HasOneMoreComponentAtEachLevel)
{
    startInEnglish();
    EXPECT_EQ(answerOf(GetUserApplicationDataComanyPath), inHome(".config/HALVIK/"));
    EXPECT_EQ(answerOf(GetUserApplicationDataProductPath), inHome(".config/HALVIK/VORNA/"));
    EXPECT_EQ(answerOf(GetUserApplicationDataVersionPath), inHome(".config/HALVIK/VORNA/2026/"));
    EXPECT_EQ(answerOf(GetUserApplicationDataLanguagePath), inHome(".config/HALVIK/VORNA/2026/en-US/"));
}

TEST(FolderChain, OfTheLocalDataHasTheSameComponents)
{
    startInEnglish();
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataComanyPath), inHome(".local/share/HALVIK/"));
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataProductPath), inHome(".local/share/HALVIK/VORNA/"));
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataVersionPath), inHome(".local/share/HALVIK/VORNA/2026/"));
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataLanguagePath), inHome(".local/share/HALVIK/VORNA/2026/en-US/"));
}

TEST(FolderChain, NamesTheResolvedIdentity)
{
    startInEnglish(L"Größe \U0001F600", L"Drafter");
    EXPECT_EQ(answerOf(GetUserApplicationDataVersionPath), inHome(".config/Größe \U0001F600/Drafter/2026/"));
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataVersionPath), inHome(".local/share/Größe \U0001F600/Drafter/2026/"));
}

TEST(FolderChain, FollowsALaterChangeOfTheLanguage)
{
    Installation::here().installLanguage("ja-JP");
    startInEnglish();
    ASSERT_EQ(vornConfig()->initLanguageName(L"ja-JP"), 0U);
    EXPECT_EQ(answerOf(GetUserApplicationDataLanguagePath), inHome(".config/HALVIK/VORNA/2026/ja-JP/"));
    EXPECT_EQ(leafAnswerOf(GetUserApplicationDataSupportPath), inHome(".config/HALVIK/VORNA/2026/ja-JP/Support/"));
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataTemplatePath),
              inHome(".local/share/HALVIK/VORNA/2026/ja-JP//Template"));
}

/// Limits of a level: the longest path that it may begin its component behind (separator counted) is 1020 characters
/// less that component.
struct Level {
    const char* name;
    PathFunction roaming;
    PathFunction local;
    const wchar_t* components;
    std::size_t longestBase; ///< the longest base folder, its separator not counted
};

std::ostream& operator<<(std::ostream& stream, const Level& level)
{
    return stream << level.name;
}

class ChainLimit : public testing::TestWithParam<Level>
{
};

TEST_P(ChainLimit, IsReachedByAPathOfOneThousandTwentyOneCharacters)
{
    startInEnglish();
    const std::size_t length = GetParam().longestBase;
    setDataFolders(length);
    const std::wstring expected = wide(absolutePath(length)) + GetParam().components;
    ASSERT_EQ(expected.size(), 1021U);
    EXPECT_EQ(answerOf(GetParam().roaming), expected);
    EXPECT_EQ(answerOf(GetParam().local), expected);
}

TEST_P(ChainLimit, IsPassedByOneCharacterMore)
{
    startInEnglish();
    setDataFolders(GetParam().longestBase + 1);
    EXPECT_EQ(answerOf(GetParam().roaming), L"0");
    EXPECT_EQ(answerOf(GetParam().local), L"0");
}

INSTANTIATE_TEST_SUITE_P(All, ChainLimit,
                         testing::Values(Level{"Company", GetUserApplicationDataComanyPath,
                                               GetUserLocalApplicationDataComanyPath, L"/HALVIK/", 1013},
                                         Level{"Product", GetUserApplicationDataProductPath,
                                               GetUserLocalApplicationDataProductPath, L"/HALVIK/VORNA/", 1007},
                                         Level{"Version", GetUserApplicationDataVersionPath,
                                               GetUserLocalApplicationDataVersionPath, L"/HALVIK/VORNA/2026/", 1002},
                                         Level{"Language", GetUserApplicationDataLanguagePath,
                                               GetUserLocalApplicationDataLanguagePath, L"/HALVIK/VORNA/2026/en-US/",
                                               996}),
                         [](const auto& instance) { return instance.param.name; });

// The leaves.

TEST(LeafFolder, StandsBelowTheLanguageFolder)
{
    startInEnglish();
    const std::wstring language = inHome(".config/HALVIK/VORNA/2026/en-US/");
    EXPECT_EQ(leafAnswerOf(GetUserApplicationDataSupportPath), language + L"Support/");
    EXPECT_EQ(leafAnswerOf(GetUserApplicationDataPlottersPath), language + L"Plotters/");
    EXPECT_EQ(leafAnswerOf(GetUserApplicationDataCrashReportPath), language + L"CrashReport/");
    EXPECT_EQ(leafAnswerOf(GetUserApplicationDataPrintstylePath), language + L"Printstyle/");
}

TEST(LeafFolder, OfTheTemplatesHasTwoSeparatorsBeforeItAndNoneBehind)
{
    startInEnglish();
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataTemplatePath),
              inHome(".local/share/HALVIK/VORNA/2026/en-US//Template"));
}

/// The base folder that makes the language folder as long as that.
void setLanguageFolderLength(std::size_t length)
{
    constexpr std::size_t kComponents = 25; // "/HALVIK/VORNA/2026/en-US/"
    setDataFolders(length - kComponents);
    ASSERT_EQ(answerOf(GetUserApplicationDataLanguagePath).size(), length);
    ASSERT_EQ(answerOf(GetUserLocalApplicationDataLanguagePath).size(), length);
}

class RoamingLeaf : public testing::TestWithParam<NamedFunction>
{
};

TEST_P(RoamingLeaf, IsGivenBelowALanguageFolderOfOneThousandTwelveAndOneThousandThirteenCharacters)
{
    startInEnglish();
    for (const std::size_t length : {std::size_t{1012}, std::size_t{1013}}) {
        setLanguageFolderLength(length);
        const std::wstring leaf = wide(GetParam().name) + L"/";
        EXPECT_EQ(leafAnswerOf(GetParam().function), answerOf(GetUserApplicationDataLanguagePath) + leaf);
    }
}

TEST_P(RoamingLeaf, FailsBelowALanguageFolderOfOneThousandFourteenCharacters)
{
    startInEnglish();
    setLanguageFolderLength(1014);
    EXPECT_EQ(leafAnswerOf(GetParam().function), L"0");
}

INSTANTIATE_TEST_SUITE_P(All, RoamingLeaf, testing::ValuesIn(kRoamingLeaves), nameOf);

TEST(LeafFolder, LongestFillsTheCapacityThatCallersAreTold)
{
    startInEnglish();
    setLanguageFolderLength(1013);
    EXPECT_EQ(leafAnswerOf(GetUserApplicationDataCrashReportPath).size() + 1, kVornLeafPathCapacity);
}

TEST(LeafFolder, OfTheTemplatesNeedsALanguageFolderOfOneThousandTwelveCharactersAtMost)
{
    startInEnglish();
    setLanguageFolderLength(1012);
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataTemplatePath),
              answerOf(GetUserLocalApplicationDataLanguagePath) + L"/Template");
    setLanguageFolderLength(1013);
    EXPECT_EQ(answerOf(GetUserLocalApplicationDataTemplatePath), L"0");
}

// Arguments and missing names, for each function that fills a buffer.

class BufferFunction : public testing::TestWithParam<NamedFunction>
{
};

TEST_P(BufferFunction, GivesZeroWithoutABuffer)
{
    EXPECT_EQ(GetParam().function(nullptr), 0U);
    startInEnglish();
    EXPECT_EQ(GetParam().function(nullptr), 0U);
}

INSTANTIATE_TEST_SUITE_P(All, BufferFunction,
                         testing::ValuesIn(joined({kBases,
                                                   kRoamingChain,
                                                   kLocalChain,
                                                   kRoamingLeaves,
                                                   kTemplate,
                                                   {{"ProgramPath", GetVornProgramPath},
                                                    {"CacheLanguage", GetVornUserDataCacheLanPath}}})),
                         nameOf);

class CompanyBoundFunction : public testing::TestWithParam<NamedFunction>
{
};

TEST_P(CompanyBoundFunction, GivesZeroForAnEmptyCompanyName)
{
    startInEnglish();
    ASSERT_NE(leafAnswerOf(GetParam().function), L"0");
    VornaLayout::setCompanyName(*vornConfig(), L"");
    Buffer buffer(kVornLeafPathCapacity);
    buffer.data()[0] = L'\0';
    EXPECT_EQ(GetParam().function(buffer.data()), 0U);
    EXPECT_TRUE(buffer.isKeptInside());
}

TEST_P(CompanyBoundFunction, LeavesATextInTheBufferForAnEmptyCompanyName)
{
    startInEnglish();
    VornaLayout::setCompanyName(*vornConfig(), L"");
    EXPECT_EQ(leafAnswerOf(GetParam().function), L"0");
}

TEST_P(CompanyBoundFunction, GivesZeroWhenTheBaseFolderDoesNotFit)
{
    startInEnglish();
    setDataFolders(1024);
    EXPECT_EQ(leafAnswerOf(GetParam().function), L"0");
}

INSTANTIATE_TEST_SUITE_P(All, CompanyBoundFunction,
                         testing::ValuesIn(joined({kRoamingChain, kLocalChain, kRoamingLeaves, kTemplate})), nameOf);

// The cache folder.

TEST(CacheFolder, IsThatOfTheProductObject)
{
    EXPECT_EQ(GetVornUserDataCachePath(), vornGetProduct()->userDataCacheDir());
    EXPECT_EQ(GetVornUserDataCachePath(), programDirectory() + L"UserDataCache");
}

TEST(CacheFolder, OfTheLanguageHasNoSeparatorAtItsEnd)
{
    EXPECT_EQ(answerOf(GetVornUserDataCacheLanPath), programDirectory() + L"UserDataCache/unknown");
    startInEnglish();
    EXPECT_EQ(answerOf(GetVornUserDataCacheLanPath), programDirectory() + L"UserDataCache/en-US");
}

PROBE(cacheLanguage)
{
    // Here the path of the resource library does not fit any more; the language is resolved all the same.
    if (InitVornConfig(nullptr, nullptr, L"en-US", nullptr) != 7)
        return 1;
    std::cout << utf8(answerOf(GetVornUserDataCacheLanPath)) << "\n";
    return 0;
}

/// The cache folder of English where the cache folder's path has the length; "path" when it is the right one.
std::string cacheLanguageWithCacheOf(std::size_t length)
{
    const Installation program(directoryOfLength(length - 13), "p");
    program.installLanguage("en-US");
    const ProcessResult result = program.run("cacheLanguage");
    EXPECT_EQ(result.exitCode, 0);
    const std::string cache = program.programDir() / "UserDataCache";
    EXPECT_EQ(cache.size(), length);
    return result.out == cache + "/en-US\n" ? "path" : result.out;
}

TEST(CacheFolder, OfTheLanguageTakesACacheFolderAndShortNameOfOneThousandTwentyCharacters)
{
    EXPECT_EQ(cacheLanguageWithCacheOf(1015), "path");
}

TEST(CacheFolder, OfTheLanguageFailsForACacheFolderAndShortNameOfOneThousandTwentyOneCharacters)
{
    EXPECT_EQ(cacheLanguageWithCacheOf(1016), "0\n");
}

PROBE(cacheLanguageBeforeTheStart)
{
    return leavesAnEmptyText(GetVornUserDataCacheLanPath) ? 0 : 1;
}

TEST(CacheFolder, OfTheLanguageIsEmptyForACacheFolderOverItsLimit)
{
    EXPECT_EQ(Installation(directoryOfLength(1010), "p").run("cacheLanguageBeforeTheStart").exitCode, 0);
    EXPECT_EQ(Installation(directoryOfLength(1011), "p").run("cacheLanguageBeforeTheStart").exitCode, 0);
}

TEST(CacheFolder, OfTheLanguageIsEmptyWhereTheCacheFolderIsNotKnown)
{
    EXPECT_EQ(Installation(directoryOfLength(2000)).run("cacheLanguageBeforeTheStart").exitCode, 0);
}

// The working directory at load.

PROBE(whereAmI)
{
    std::cout << fs::current_path().string() << "\n";
    return 0;
}

/// Where a process finds itself that starts in the directory, which is made.
std::string whereAfterLoad(const Installation& program, const fs::path& start, const Environment& variables = {})
{
    fs::create_directories(start);
    const ProcessResult result = program.run("whereAmI", {}, variables, start);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.err, "");
    return result.out.substr(0, result.out.find('\n'));
}

TEST(WorkingDirectory, MovesFromTheCacheFolderToTheDocumentsFolderWhichIsMade)
{
    const Installation program;
    ASSERT_FALSE(fs::exists(program.home() / "Documents"));
    EXPECT_EQ(whereAfterLoad(program, program.programDir() / "UserDataCache"), program.home() / "Documents");
    EXPECT_TRUE(fs::is_directory(program.home() / "Documents"));
}

TEST(WorkingDirectory, ComparesTheCacheFolderWithoutRegardToCase)
{
    const Installation program;
    EXPECT_EQ(whereAfterLoad(program, program.programDir() / "userdataCACHE"), program.home() / "Documents");
}

TEST(WorkingDirectory, MovesToTheDocumentsFolderThatTheUserNamed)
{
    const Installation program;
    std::ofstream(program.configDir() / "user-dirs.dirs") << "XDG_DOCUMENTS_DIR=\"$HOME/My Papers/here\"\n";
    EXPECT_EQ(whereAfterLoad(program, program.programDir() / "UserDataCache"), program.home() / "My Papers/here");
}

TEST(WorkingDirectory, MovesToADocumentsFolderThatIsThereAlready)
{
    const Installation program;
    fs::create_directories(program.home() / "Documents/kept");
    EXPECT_EQ(whereAfterLoad(program, program.programDir() / "UserDataCache"), program.home() / "Documents");
    EXPECT_TRUE(fs::exists(program.home() / "Documents/kept"));
}

TEST(WorkingDirectory, StaysEverywhereElse)
{
    const Installation program;
    for (const char* const folder : {"program", "program/UserDataCache/en-US", "program/UserDataCache2",
                                     "program/UserData", "elsewhere/UserDataCache", "home"}) {
        const fs::path start = program.root() / folder;
        EXPECT_EQ(whereAfterLoad(program, start), start);
    }
    EXPECT_EQ(whereAfterLoad(program, "/"), "/");
    EXPECT_FALSE(fs::exists(program.home() / "Documents"));
}

TEST(WorkingDirectory, StaysWhenTheDocumentsFolderCannotBeMade)
{
    const Installation program;
    std::ofstream(program.home() / "Documents") << "a file in its way\n";
    const fs::path cache = program.programDir() / "UserDataCache";
    EXPECT_EQ(whereAfterLoad(program, cache), cache);
}

TEST(WorkingDirectory, StaysWhenTheDocumentsFolderDoesNotFit)
{
    const Installation program;
    const fs::path cache = program.programDir() / "UserDataCache";
    EXPECT_EQ(whereAfterLoad(program, cache, {{"HOME", "/" + folders(1020)}}), cache);
}

TEST(WorkingDirectory, StaysWhenTheSystemNamesTheCacheFolderWithASeparatorAtItsEnd)
{
    const Installation program;
    const fs::path library = program.root() / "libSeparator.so";
    buildLibrary(library, "#include <cstring>\n#include <cstdlib>\n#include <sys/syscall.h>\n#include <unistd.h>\n"
                          "extern \"C\" char* getcwd(char* buffer, size_t size) noexcept {\n"
                          "    if (!buffer) { buffer = static_cast<char*>(malloc(4096)); size = 4096; }\n"
                          "    if (syscall(SYS_getcwd, buffer, size - 1) < 0) return nullptr;\n"
                          "    return strcat(buffer, \"/\");\n"
                          "}\n");
    const fs::path cache = program.programDir() / "UserDataCache";
    EXPECT_EQ(whereAfterLoad(program, cache, preloading(library)), cache.string() + "/");
    EXPECT_FALSE(fs::exists(program.home() / "Documents"));
}

TEST(WorkingDirectory, MovesFromTheLongestCacheFolderThatFits)
{
    const Installation program(directoryOfLength(1010));
    const fs::path cache = program.programDir() / "UserDataCache";
    ASSERT_EQ(cache.string().size(), 1023U);
    EXPECT_EQ(whereAfterLoad(program, cache), program.home() / "Documents");
}

TEST(WorkingDirectory, StaysWhenTheCacheFolderIsTooLong)
{
    const Installation program(directoryOfLength(1011));
    const fs::path cache = program.programDir() / "UserDataCache";
    EXPECT_EQ(whereAfterLoad(program, cache), cache);
}

class LongProgram : public testing::TestWithParam<std::size_t>
{
};

TEST_P(LongProgram, LoadsWithoutDoingAnything)
{
    const Installation program(directoryOfLength(GetParam()));
    EXPECT_EQ(whereAfterLoad(program, program.programDir()), program.programDir());
    EXPECT_EQ(whereAfterLoad(program, program.programDir() / "UserDataCache"), program.programDir() / "UserDataCache");
    EXPECT_EQ(whereAfterLoad(program, "/"), "/");
}

INSTANTIATE_TEST_SUITE_P(OfLength, LongProgram, testing::Values(1017, 1018, 1019, 1020, 1023, 1024, 1025, 2000, 3500),
                         testing::PrintToStringParamName());

PROBE(startFromALongPlace)
{
    std::cout << InitVornConfig(nullptr, nullptr, L"en-US", nullptr) << "\n";
    return 0;
}

TEST(LongProgramStart, EndsWithAMessageWhereNoLanguageCanBeFound)
{
    const Installation program(directoryOfLength(1100));
    program.installLanguage("en-US");
    const ProcessResult result = program.run("startFromALongPlace");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("Could't find any installed languages!"), std::string::npos) << result.err;
}

// The same rule, asked for by the host.

TEST(SetWorkingDirectory, MovesFromTheCacheFolderToTheDocumentsFolder)
{
    const Installation& here = Installation::here();
    fs::create_directories(here.programDir() / "UserDataCache");
    fs::current_path(here.programDir() / "UserDataCache");
    VornProdUtil::SetWorkingDirectory();
    EXPECT_EQ(fs::current_path(), here.home() / "Documents");
}

TEST(SetWorkingDirectory, ChangesNothingElsewhere)
{
    const Installation& here = Installation::here();
    for (const fs::path& place : {here.programDir(), here.home(), fs::path("/")}) {
        fs::current_path(place);
        VornProdUtil::SetWorkingDirectory();
        EXPECT_EQ(fs::current_path(), place);
    }
}

TEST(SetWorkingDirectory, ChangesNothingInADirectoryThatIsGone)
{
    const Installation& here = Installation::here();
    fs::create_directories(here.programDir() / "UserDataCache");
    fs::current_path(here.programDir() / "UserDataCache");
    fs::remove(here.programDir() / "UserDataCache");
    VornProdUtil::SetWorkingDirectory();
    std::error_code error;
    EXPECT_EQ(fs::current_path(error), fs::path());
    EXPECT_TRUE(error);
    EXPECT_FALSE(fs::exists(here.home() / "Documents"));
}

} // namespace
