#include <algorithm>
#include <array>
#include <cwchar>
#include <filesystem>
#include <iostream>
#include <string>

#include <dlfcn.h>

#include <gtest/gtest.h>

#include "VrUInfo/VrUInfo.h"
#include "installation.h"
#include "long_path.h"
#include "small_library.h"

namespace fs = std::filesystem;
using namespace vrtest;

namespace
{

constexpr wchar_t kCanary = 0x5A5A;
constexpr char kPartnerValue[] = "Software/HALVIK/VORNA/2026/en-US/Profiles/Default/CommonSettings/CustomResFile";
constexpr DWORD kAttach = 1;
constexpr DWORD kDetach = 0;

/// A caller's buffer with canaries behind the capacity that it promises.
class Buffer
{
public:
    explicit Buffer(std::size_t capacity = kVornPathCapacity) : m_capacity(capacity) { m_text.fill(kCanary); }
    wchar_t* data() { return m_text.data(); }
    unsigned int size() const { return static_cast<unsigned int>(m_capacity); }
    std::wstring text() const { return {m_text.data(), wcsnlen(m_text.data(), m_capacity)}; }
    bool isUntouched() const { return isCanaryFrom(0); }
    bool isKeptInside() const { return isCanaryFrom(m_capacity); }

private:
    bool isCanaryFrom(std::size_t begin) const
    {
        return std::all_of(m_text.begin() + static_cast<std::ptrdiff_t>(begin), m_text.end(),
                           [](wchar_t c) { return c == kCanary; });
    }

    std::size_t m_capacity;
    std::array<wchar_t, 1200> m_text{};
};

/// What a function that takes a buffer and its size answered; "0" for a failure.
template <typename Function>
std::wstring answerOf(Function function, std::size_t capacity = kVornPathCapacity)
{
    Buffer buffer(capacity);
    const auto length = function(buffer.data(), buffer.size());
    EXPECT_TRUE(buffer.isKeptInside());
    if (length == 0)
        return L"0";
    EXPECT_EQ(static_cast<std::size_t>(length), buffer.text().size());
    return buffer.text();
}

std::wstring languageDirectory(std::size_t capacity = kVornPathCapacity)
{
    return answerOf([](wchar_t* path, unsigned int size) { return GetResourceDllPath(path, size); }, capacity);
}

std::wstring namedDirectory(const wchar_t* name, std::size_t capacity = kVornPathCapacity)
{
    return answerOf([name](wchar_t* path, unsigned int size) { return GetResourceDllPath(name, path, size); },
                    capacity);
}

std::wstring localDirectory(std::size_t capacity = kVornPathCapacity)
{
    return answerOf(GetResourceDllPathLocal, capacity);
}

std::wstring tlbDirectory(std::size_t capacity = kVornPathCapacity)
{
    return answerOf(GetResourceTlbPath, capacity);
}

std::wstring helpFile(int size)
{
    return answerOf([size](wchar_t* path, unsigned int) { return GetHelpFilePath(path, size); });
}

/// The partner's library by the library's own answer; "0" for a failure, which leaves an empty text.
std::wstring partnerFile()
{
    Buffer buffer;
    const unsigned int length = GetCustomResFileName(buffer.data());
    EXPECT_TRUE(buffer.isKeptInside());
    EXPECT_EQ(length, buffer.text().size());
    return length == 0 ? L"0" : buffer.text();
}

std::wstring inProgram(const std::string& name)
{
    return wide((Installation::here().programDir() / name).string());
}

std::size_t programLength()
{
    return wide(Installation::here().programDir().string()).size();
}

unsigned int start(const wchar_t* profile = nullptr)
{
    return InitVornConfig(nullptr, nullptr, L"en-US", profile);
}

void startInEnglish(const wchar_t* profile = nullptr)
{
    Installation::here().installLanguage("en-US");
    ASSERT_EQ(start(profile), 0U);
}

/// Lets the library look for a partner's library though the last choice was the language's.
void lookForPartnerAgain()
{
    g_strPrefix = QStringLiteral(":/VrCustomRes/VrCustomRes");
}

void writeIni(const std::string& text)
{
    Installation::here().write("VORNA.ini", text);
}

QString recordedPartner()
{
    flush();
    return textInFile(Installation::here().settingsFile(), kPartnerValue);
}

QString recordOf(const fs::path& path)
{
    return QString::fromStdString("5$" + path.string());
}

bool isLoaded(const fs::path& library)
{
    return GetModuleHandleW(library.wstring().c_str()) != nullptr;
}

/// A library of the C++ system that the loader finds by its bare name, wherever it is.
constexpr wchar_t kSystemLibrary[] = L"libstdc++.so.6";

// Directories.

TEST(ResourceDirectory, IsTheProgramDirectoryAndTheShortName)
{
    EXPECT_EQ(languageDirectory(), inProgram("unknown"));
    startInEnglish();
    EXPECT_EQ(languageDirectory(), inProgram("en-US"));
}

TEST(ResourceDirectory, FollowsALaterChangeOfTheLanguage)
{
    Installation::here().installLanguage("tr-TR");
    startInEnglish();
    ASSERT_EQ(vornConfig()->initLanguageName(L"tr-TR"), 0U);
    EXPECT_EQ(languageDirectory(), inProgram("tr-TR"));
    EXPECT_EQ(localDirectory(), inProgram("tr-TR"));
}

TEST(ResourceDirectory, OfANameNeedNotExist)
{
    EXPECT_EQ(namedDirectory(L"Some Place"), inProgram("Some Place"));
    EXPECT_EQ(namedDirectory(L"a/b"), inProgram("a/b"));
    EXPECT_FALSE(fs::exists(Installation::here().programDir() / "Some Place"));
}

TEST(ResourceDirectory, OfTheTypeLibrariesIsCommon)
{
    EXPECT_EQ(tlbDirectory(), inProgram("CommonBin/lib"));
}

TEST(ResourceDirectory, NeedsABufferASizeAndAName)
{
    Buffer buffer;
    EXPECT_EQ(GetResourceDllPath(nullptr, 1024), 0U);
    EXPECT_EQ(GetResourceDllPath(buffer.data(), 0), 0U);
    EXPECT_EQ(GetResourceDllPath(L"x", nullptr, 1024), 0U);
    EXPECT_EQ(GetResourceDllPath(L"x", buffer.data(), 0), 0U);
    EXPECT_EQ(GetResourceDllPath(nullptr, buffer.data(), 1024), 0U);
    EXPECT_EQ(GetResourceDllPath(L"", buffer.data(), 1024), 0U);
    EXPECT_EQ(GetResourceDllPathLocal(nullptr, 1024), 0U);
    EXPECT_EQ(GetResourceDllPathLocal(buffer.data(), 0), 0U);
    EXPECT_EQ(GetResourceTlbPath(nullptr, 1024), 0U);
    EXPECT_EQ(GetResourceTlbPath(buffer.data(), 0), 0U);
    EXPECT_TRUE(buffer.isUntouched());
}

TEST(ResourceDirectory, FailsAtASizeOfItsTwoPartsAndThree)
{
    startInEnglish();
    const std::size_t language = programLength() + 5;
    EXPECT_EQ(languageDirectory(language + 3), L"0");
    EXPECT_EQ(localDirectory(language + 3), L"0");
    EXPECT_EQ(namedDirectory(L"somewhere", programLength() + 9 + 3), L"0");
    EXPECT_EQ(tlbDirectory(programLength() + 13 + 3), L"0");
}

TEST(ResourceDirectory, SucceedsAtASizeOfItsTwoPartsAndFour)
{
    startInEnglish();
    const std::size_t language = programLength() + 5;
    EXPECT_EQ(languageDirectory(language + 4), inProgram("en-US"));
    EXPECT_EQ(localDirectory(language + 4), inProgram("en-US"));
    EXPECT_EQ(namedDirectory(L"somewhere", programLength() + 9 + 4), inProgram("somewhere"));
    EXPECT_EQ(tlbDirectory(programLength() + 13 + 4), inProgram("CommonBin/lib"));
}

TEST(ResourceDirectory, FailsAtEverySmallSizeWithoutWritingBehindTheBuffer)
{
    for (std::size_t size = 1; size < programLength() + 4; ++size) {
        EXPECT_EQ(languageDirectory(size), L"0") << size;
        EXPECT_EQ(tlbDirectory(size), L"0") << size;
    }
}

PROBE(shortDirectory)
{
    // Room enough for the directory and the name, but the executable's own path has to fit first.
    const std::size_t length = fs::read_symlink("/proc/self/exe").string().size();
    Buffer small(length);
    Buffer large(length + 1);
    return GetResourceDllPath(L"x", small.data(), small.size()) == 0 && small.isKeptInside() &&
                   GetResourceDllPath(L"x", large.data(), large.size()) != 0 && large.isKeptInside()
               ? 0
               : 1;
}

TEST(ResourceDirectory, NeedsRoomForTheExecutablesPath)
{
    EXPECT_EQ(Installation("program", "a-host-with-a-long-name").run("shortDirectory").exitCode, 0);
}

PROBE(directoryAtFullSize)
{
    std::cout << utf8(namedDirectory(wide(std::string(std::stoul(arguments.at(0)), 'n')).c_str(), 1023)) << "\n";
    return 0;
}

TEST(ResourceDirectory, FillsALongPath)
{
    const Installation program(directoryOfLength(1001), "p");
    const std::string directory = program.programDir();
    EXPECT_EQ(program.run("directoryAtFullSize", {"19"}).out, directory + "/" + std::string(19, 'n') + "\n");
    EXPECT_EQ(program.run("directoryAtFullSize", {"20"}).out, "0\n");
}

TEST(ResourceDirectory, FailsWhenTheExecutablesPathIsTooLong)
{
    EXPECT_EQ(Installation(directoryOfLength(2000)).run("directoryAtFullSize", {"1"}).out, "0\n");
}

PROBE(directoryAfterTheProgramMoved)
{
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
    const std::wstring before = languageDirectory();
    fs::rename(program, program.string() + "-moved");
    const std::wstring after = languageDirectory();
    return before == wide(program.string() + "/unknown") && after == wide(program.string() + "-moved/unknown") ? 0 : 1;
}

TEST(ResourceDirectory, IsAskedForAtEachCall)
{
    const Installation program;
    EXPECT_EQ(program.run("directoryAfterTheProgramMoved").exitCode, 0);
}

// The unknown language's directory.

TEST(LocalDirectory, IsTheLanguagesOwnOnceItIsKnown)
{
    writeIni("[Product]\nLocaleId=1031\n[LocaleIdLangName]\n1031=de-DE\n");
    startInEnglish();
    EXPECT_EQ(localDirectory(), inProgram("en-US"));
}

TEST(LocalDirectory, OfTheUnknownLanguageIsThatOfTheInstallationsLocale)
{
    writeIni("[Product]\nLocaleId=1031\n[LocaleIdLangName]\n1031=de-DE\n2052=zh-CN\n");
    EXPECT_EQ(localDirectory(), inProgram("de-DE"));
    EXPECT_EQ(languageDirectory(), inProgram("unknown"));
}

TEST(LocalDirectory, OfTheUnknownLanguageIsTheDefaultLocalesWithoutOne)
{
    writeIni("[LocaleIdLangName]\n1031=de-DE\n2052=zh-CN\n");
    EXPECT_EQ(localDirectory(), inProgram("zh-CN"));
}

TEST(LocalDirectory, FailsWhenTheLocaleHasNoDirectory)
{
    writeIni("[Product]\nLocaleId=1031\n[LocaleIdLangName]\n1033=en-US\n2052=zh-CN\n");
    EXPECT_EQ(localDirectory(), L"0");
}

TEST(LocalDirectory, FailsWhenTheDefaultLocaleHasNoDirectory)
{
    writeIni("[LocaleIdLangName]\n1031=de-DE\n");
    EXPECT_EQ(localDirectory(), L"0");
}

TEST(LocalDirectory, FailsWhenTheLocalesDirectoryIsEmpty)
{
    writeIni("[Product]\nLocaleId=1031\n[LocaleIdLangName]\n1031=\n");
    EXPECT_EQ(localDirectory(), L"0");
}

TEST(LocalDirectory, FailsWithoutTheInstallationsFile)
{
    EXPECT_EQ(localDirectory(), L"0");
}

TEST(LocalDirectory, FailsWhenTheInstallationsFileIsADirectoryOrNoText)
{
    fs::create_directories(Installation::here().programDir() / "VORNA.ini");
    EXPECT_EQ(localDirectory(), L"0");
    fs::remove(Installation::here().programDir() / "VORNA.ini");
    constexpr char kNoText[] = "\0\1\2\xFF\xFE\n[Product\0]\n";
    writeIni(std::string(kNoText, sizeof kNoText - 1));
    EXPECT_EQ(localDirectory(), L"0");
}

TEST(LocalDirectory, IsTheUnknownLanguagesForALocaleOfZeroOrBelow)
{
    for (const char* const number : {"0", "-1", "-2052", "none"}) {
        writeIni(std::string("[Product]\nLocaleId=") + number + "\n[LocaleIdLangName]\n0=cs-CZ\n-1=de-DE\n");
        EXPECT_EQ(localDirectory(), inProgram("unknown")) << number;
    }
}

TEST(LocalDirectory, LooksUpTheNumberAsDecimalText)
{
    writeIni("[Product]\nLocaleId=0x407 \n[LocaleIdLangName]\n0x407=cs-CZ\n1031=de-DE\n");
    EXPECT_EQ(localDirectory(), inProgram("de-DE"));
}

TEST(LocalDirectory, OfTheInstallationsLocaleHasTheSameSizeRule)
{
    writeIni("[Product]\nLocaleId=1\n[LocaleIdLangName]\n1=somewhere\n");
    EXPECT_EQ(localDirectory(programLength() + 9 + 3), L"0");
    EXPECT_EQ(localDirectory(programLength() + 9 + 4), inProgram("somewhere"));
}

TEST(LocalDirectory, FailsForAnOverlongDirectoryName)
{
    writeIni("[Product]\nLocaleId=1\n[LocaleIdLangName]\n1=" + std::string(5000, 'n') + "\n");
    EXPECT_EQ(localDirectory(), L"0");
}

TEST(LocalDirectory, FollowsTheInstallationsFileAtEachCall)
{
    writeIni("[LocaleIdLangName]\n2052=zh-CN\n");
    ASSERT_EQ(localDirectory(), inProgram("zh-CN"));
    writeIni("[LocaleIdLangName]\n2052=zh-TW\n");
    EXPECT_EQ(localDirectory(), inProgram("zh-TW"));
}

// Loading.

TEST(LoadResource, FindsALibraryInTheLanguagesDirectory)
{
    startInEnglish();
    auto* const library = LoadResourceDll(L"libVrUInfoRes.so");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library, GetModuleHandleW(inProgram("en-US/libVrUInfoRes.so").c_str()));
    EXPECT_EQ(LoadResourceDllEx(L"libVrUInfoRes.so", nullptr, 0), library);
}

TEST(LoadResource, UnderstandsTheOtherSystemsLibraryNames)
{
    startInEnglish();
    EXPECT_EQ(LoadResourceDll(L"VrUInfoRes.dll"), LoadResourceDll(L"libVrUInfoRes.so"));
    EXPECT_EQ(LoadResourceDllEx(L"VrUInfoRes.DLL", nullptr, 0), LoadResourceDll(L"libVrUInfoRes.so"));
}

TEST(LoadResource, NeedsAName)
{
    startInEnglish();
    EXPECT_EQ(LoadResourceDll(nullptr), nullptr);
    EXPECT_EQ(LoadResourceDll(L""), nullptr);
    EXPECT_EQ(LoadResourceDllEx(nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(LoadResourceDllEx(L"", nullptr, 0), nullptr);
}

TEST(LoadResource, LeavesANameThatIsNotThereToTheLoader)
{
    startInEnglish();
    EXPECT_EQ(LoadResourceDll(kSystemLibrary), GetModuleHandleW(kSystemLibrary));
    EXPECT_EQ(LoadResourceDllEx(kSystemLibrary, nullptr, 0), GetModuleHandleW(kSystemLibrary));
    EXPECT_NE(LoadResourceDll(kSystemLibrary), nullptr);
}

TEST(LoadResource, TakesTheLanguagesLibraryBeforeTheLoaders)
{
    startInEnglish();
    const fs::path own = Installation::here().programDir() / "en-US" / fs::path(kSystemLibrary);
    buildLibrary(own, resourceSource({{1, "own"}}));
    auto* const library = LoadResourceDll(kSystemLibrary);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library, GetModuleHandleW(own.wstring().c_str()));
}

TEST(LoadResource, GivesNullForWhatIsNotThere)
{
    startInEnglish();
    EXPECT_EQ(LoadResourceDll(L"libNowhereAtAll.so"), nullptr);
    EXPECT_EQ(LoadResourceDllEx(L"libNowhereAtAll.so", nullptr, 0), nullptr);
}

TEST(LoadResource, GivesNullForAFileThatIsNoLibrary)
{
    startInEnglish();
    Installation::here().installEmptyLanguage("en-US");
    EXPECT_EQ(LoadResourceDll(L"libNothing.so"), nullptr);
    EXPECT_EQ(LoadResourceDllEx(L"libNothing.so", nullptr, 0), nullptr);
}

TEST(LoadResource, PassesItsFlagsOn)
{
    startInEnglish();
    const fs::path library = Installation::here().programDir() / "en-US/libUnbound.so";
    buildLibrary(library, "void isNowhere();\nextern \"C\" void callsIt() { isNowhere(); }\n", {"-Wl,-z,lazy"});
    EXPECT_EQ(LoadResourceDll(L"libUnbound.so"), nullptr);
    EXPECT_EQ(LoadResourceDllEx(L"libUnbound.so", nullptr, 0), nullptr);
    EXPECT_NE(LoadResourceDllEx(L"libUnbound.so", nullptr, DONT_RESOLVE_DLL_REFERENCES), nullptr);
}

/// A full path of a library, made longer in a way that changes nothing.
std::wstring paddedPath(const fs::path& library, std::size_t length)
{
    std::string path = library;
    while (path.size() < length)
        path.insert(0, path.size() + 2 <= length ? "/." : "/");
    EXPECT_EQ(path.size(), length);
    return wide(path);
}

TEST(LoadResource, TakesANameAsLongAsTheDirectoryLeaves)
{
    startInEnglish();
    const fs::path library = Installation::here().programDir() / "libFar.so";
    buildLibrary(library, resourceSource({{1, "far"}}));
    const std::size_t longest = 1020 - languageDirectory().size();
    EXPECT_NE(LoadResourceDll(paddedPath(library, longest).c_str()), nullptr);
    EXPECT_NE(LoadResourceDllEx(paddedPath(library, longest).c_str(), nullptr, 0), nullptr);
}

TEST(LoadResource, RefusesANameThatIsLongerBeforeTheLoaderIsAsked)
{
    startInEnglish();
    const fs::path library = Installation::here().programDir() / "libFar.so";
    buildLibrary(library, resourceSource({{1, "far"}}));
    const std::size_t longest = 1020 - languageDirectory().size();
    EXPECT_EQ(LoadResourceDll(paddedPath(library, longest + 1).c_str()), nullptr);
    EXPECT_EQ(LoadResourceDllEx(paddedPath(library, longest + 1).c_str(), nullptr, 0), nullptr);
    EXPECT_EQ(LoadResourceDll(wideOf(5000).c_str()), nullptr);
    EXPECT_FALSE(isLoaded(library));
}

PROBE(loadSystemLibrary)
{
    return LoadResourceDll(kSystemLibrary) ? 1 : 0;
}

TEST(LoadResource, GivesNullWhereTheDirectoryCannotBeNamed)
{
    EXPECT_EQ(Installation(directoryOfLength(2000)).run("loadSystemLibrary").exitCode, 0);
}

// The help file.

TEST(HelpFile, LiesInTheLanguagesFolder)
{
    EXPECT_EQ(helpFile(1024), inProgram("unknown/Help/VrHelp.pdf"));
    startInEnglish();
    EXPECT_EQ(helpFile(1024), inProgram("en-US/Help/VrHelp.pdf"));
}

TEST(HelpFile, NeedsABufferAndAPositiveSize)
{
    Buffer buffer;
    EXPECT_EQ(GetHelpFilePath(nullptr, 1024), 0);
    EXPECT_EQ(GetHelpFilePath(buffer.data(), 0), 0);
    EXPECT_EQ(GetHelpFilePath(buffer.data(), -1), 0);
    EXPECT_EQ(GetHelpFilePath(buffer.data(), -2147483647 - 1), 0);
    EXPECT_TRUE(buffer.isUntouched());
}

TEST(HelpFile, MustBeTwoCharactersShorterThanTheSize)
{
    startInEnglish();
    const std::wstring expected = inProgram("en-US/Help/VrHelp.pdf");
    const auto length = static_cast<int>(expected.size());
    Buffer buffer;
    for (const int size : {1, 2, length, length + 1})
        EXPECT_EQ(GetHelpFilePath(buffer.data(), size), 0) << size;
    EXPECT_TRUE(buffer.isUntouched());
    EXPECT_EQ(helpFile(length + 2), expected);
}

PROBE(helpFileAtFullSize)
{
    std::cout << utf8(helpFile(1024)) << "\n";
    return 0;
}

TEST(HelpFile, FillsALongPath)
{
    const Installation program(directoryOfLength(999), "p");
    const std::string expected = program.programDir() / "unknown/Help/VrHelp.pdf";
    ASSERT_EQ(expected.size(), 1022U);
    EXPECT_EQ(program.run("helpFileAtFullSize").out, expected + "\n");
    EXPECT_EQ(Installation(directoryOfLength(1000), "p").run("helpFileAtFullSize").out, "0\n");
}

TEST(HelpFile, FailsWhenTheExecutablesPathIsTooLong)
{
    EXPECT_EQ(Installation(directoryOfLength(2000)).run("helpFileAtFullSize").out, "0\n");
}

// The partner's library.

TEST(PartnerFile, BesideTheLanguagesIsFoundLoadedAndRecorded)
{
    const fs::path partner = Installation::here().installPartner("en-US");
    startInEnglish();
    EXPECT_EQ(recordedPartner(), recordOf(partner));
    EXPECT_TRUE(isLoaded(partner));
    EXPECT_EQ(partnerFile(), partner.wstring());
}

TEST(PartnerFile, IsRecordedInTheCurrentProfile)
{
    const fs::path partner = Installation::here().installPartner("en-US");
    startInEnglish(L"Work");
    flush();
    EXPECT_EQ(textInFile(Installation::here().settingsFile(),
                         "Software/HALVIK/VORNA/2026/en-US/Profiles/Work/CommonSettings/CustomResFile"),
              recordOf(partner));
    EXPECT_TRUE(textInFile(Installation::here().settingsFile(), kPartnerValue).isNull());
}

TEST(PartnerFile, ThatIsRecordedGoesBeforeTheOneBesideTheLanguages)
{
    Installation::here().installPartner("en-US");
    const fs::path recorded = Installation::here().installPartner("brand");
    Installation::here().writeSetting(kPartnerValue, "5$" + recorded.string());
    startInEnglish();
    EXPECT_EQ(partnerFile(), recorded.wstring());
    EXPECT_TRUE(isLoaded(recorded));
    EXPECT_FALSE(isLoaded(Installation::here().programDir() / "en-US/VrCustomRes.so"));
    EXPECT_EQ(recordedPartner(), recordOf(recorded));
}

TEST(PartnerFile, IsNotLoadedByTheQuestionForARecordedOne)
{
    const fs::path recorded = Installation::here().installPartner("brand");
    startInEnglish();
    VornVariant value;
    value.setString(recorded.wstring().c_str(), VornVariant::kVarString);
    ASSERT_EQ(vornConfig()->setValue(VornaConfig::CurrentProfileRoot, L"CommonSettings/CustomResFile", value), 0U);
    lookForPartnerAgain();
    EXPECT_EQ(partnerFile(), recorded.wstring());
    EXPECT_FALSE(isLoaded(recorded));
}

TEST(PartnerFile, ThatIsMissingIsNotRecorded)
{
    startInEnglish();
    lookForPartnerAgain();
    EXPECT_EQ(partnerFile(), L"0");
    EXPECT_TRUE(recordedPartner().isNull());
}

TEST(PartnerFile, ThatIsNoLibraryIsNotRecorded)
{
    Installation::here().write("en-US/VrCustomRes.so", "this is no library\n");
    startInEnglish();
    lookForPartnerAgain();
    EXPECT_EQ(partnerFile(), L"0");
    EXPECT_TRUE(recordedPartner().isNull());
}

TEST(PartnerFile, IsNotLookedForWhileTheLanguagesLibraryIsInUse)
{
    startInEnglish();
    ASSERT_FALSE(vornConfig()->isNeedCheckOemPath());
    Installation::here().installPartner("en-US");
    EXPECT_EQ(partnerFile(), L"0");
    EXPECT_TRUE(recordedPartner().isNull());
}

TEST(PartnerFile, ThatIsRecordedIsNotGivenWhileTheLanguagesLibraryIsInUse)
{
    Installation::here().writeSetting(kPartnerValue, "5$/nowhere/VrCustomRes.so");
    startInEnglish();
    ASSERT_FALSE(vornConfig()->isNeedCheckOemPath());
    EXPECT_EQ(partnerFile(), L"0");
    EXPECT_EQ(recordedPartner(), QStringLiteral("5$/nowhere/VrCustomRes.so"));
}

TEST(PartnerFile, NeedsABuffer)
{
    EXPECT_EQ(GetCustomResFileName(nullptr), 0U);
}

TEST(PartnerFile, IsFoundAgainWhenItsRecordIsDeleted)
{
    const fs::path partner = Installation::here().installPartner("en-US");
    startInEnglish();
    ASSERT_EQ(vornConfig()->removeValue(VornaConfig::CurrentProfileRoot, L"CommonSettings", L"CustomResFile"), 0U);
    ASSERT_TRUE(recordedPartner().isNull());
    EXPECT_EQ(partnerFile(), partner.wstring());
    EXPECT_EQ(recordedPartner(), recordOf(partner));
}

TEST(PartnerFile, ThatIsLoadedAlreadyIsRecordedThoughItsFileIsGone)
{
    const fs::path partner = Installation::here().installPartner("en-US");
    startInEnglish();
    ASSERT_EQ(vornConfig()->removeValue(VornaConfig::CurrentProfileRoot, L"CommonSettings", L"CustomResFile"), 0U);
    fs::remove(partner);
    EXPECT_EQ(partnerFile(), partner.wstring());
    EXPECT_EQ(recordedPartner(), recordOf(partner));
}

class RecordOfAnotherKind : public testing::TestWithParam<const char*>
{
};

TEST_P(RecordOfAnotherKind, IsNotGivenAndNotOverwritten)
{
    Installation::here().installPartner("en-US");
    Installation::here().writeSetting(kPartnerValue, GetParam());
    startInEnglish();
    EXPECT_FALSE(vornConfig()->isNeedCheckOemPath());
    lookForPartnerAgain();
    EXPECT_EQ(partnerFile(), L"0");
    EXPECT_EQ(recordedPartner(), QString::fromLatin1(GetParam()));
    EXPECT_FALSE(isLoaded(Installation::here().programDir() / "en-US/VrCustomRes.so"));
}

INSTANTIATE_TEST_SUITE_P(All, RecordOfAnotherKind, testing::Values("1$42", "2$42", "4$2f746d70", "4$", "7$/tmp/x.so"));

TEST(PartnerFile, RecordedAsEmptyTextIsNone)
{
    Installation::here().installPartner("en-US");
    Installation::here().writeSetting(kPartnerValue, "5$");
    startInEnglish();
    lookForPartnerAgain();
    EXPECT_EQ(partnerFile(), L"0");
    EXPECT_EQ(recordedPartner(), QStringLiteral("5$"));
}

TEST(PartnerFile, RecordedWithoutATagIsTakenWhole)
{
    const fs::path recorded = Installation::here().installPartner("brand");
    Installation::here().writeSetting(kPartnerValue, recorded.string());
    startInEnglish();
    EXPECT_EQ(partnerFile(), recorded.wstring());
}

TEST(PartnerFile, RecordedMayHaveOneThousandTwentyTwoCharacters)
{
    startInEnglish();
    VornVariant value;
    value.setString(wideOf(1022).c_str(), VornVariant::kVarString);
    ASSERT_EQ(vornConfig()->setValue(VornaConfig::CurrentProfileRoot, L"CommonSettings/CustomResFile", value), 0U);
    lookForPartnerAgain();
    EXPECT_EQ(partnerFile(), wideOf(1022));
}

TEST(PartnerFile, RecordedIsNotGivenFromOneThousandTwentyThreeCharactersOn)
{
    startInEnglish();
    for (const std::size_t length : {std::size_t{1023}, std::size_t{1024}, std::size_t{5000}}) {
        VornVariant value;
        value.setString(wideOf(length).c_str(), VornVariant::kVarString);
        ASSERT_EQ(vornConfig()->setValue(VornaConfig::CurrentProfileRoot, L"CommonSettings/CustomResFile", value), 0U);
        lookForPartnerAgain();
        EXPECT_EQ(partnerFile(), L"0") << length;
    }
}

TEST(PartnerFile, IsFoundBeforeTheStartThoughItCannotBeRecorded)
{
    writeIni("[Product]\nLocaleId=1031\n[LocaleIdLangName]\n1031=de-DE\n");
    const fs::path partner = Installation::here().installPartner("de-DE");
    EXPECT_EQ(partnerFile(), partner.wstring());
    EXPECT_TRUE(isLoaded(partner));
    EXPECT_EQ(g_globalSettings, nullptr);
}

TEST(PartnerFile, IsNotFoundBeforeTheStartWithoutALocalDirectory)
{
    Installation::here().installPartner("unknown");
    EXPECT_EQ(partnerFile(), L"0");
}

PROBE(startWithoutWritableSettings)
{
    if (start() != 0)
        return 1;
    std::cout << utf8(partnerFile()) << "\n";
    return 0;
}

TEST(PartnerFile, IsGivenThoughItsRecordCannotReachTheDisk)
{
    const Installation program;
    program.installLanguage("en-US");
    const fs::path partner = program.installPartner("en-US");
    const Environment variables = {{"XDG_CONFIG_HOME", program.executable() / "no-directory"}};
    const ProcessResult result = program.run("startWithoutWritableSettings", {}, variables);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, partner.string() + "\n");
    EXPECT_EQ(result.err, "");
}

PROBE(startAndTellPartner)
{
    if (start() != 0)
        return 1;
    std::cout << utf8(partnerFile()) << "\n";
    return 0;
}

TEST(PartnerFile, IsTakenFromTheRecordByTheNextProcess)
{
    const Installation program;
    program.installLanguage("en-US");
    const fs::path partner = program.installPartner("en-US");
    ASSERT_EQ(program.run("startAndTellPartner").out, partner.string() + "\n");
    EXPECT_EQ(textInFile(program.settingsFile(), kPartnerValue), recordOf(partner));
    const fs::path other = program.installPartner("brand");
    program.writeSetting(kPartnerValue, "5$" + other.string());
    EXPECT_EQ(program.run("startAndTellPartner").out, other.string() + "\n");
}

// The process hooks.

TEST(ProcessHook, FreesTheLanguageLibraryOnDetach)
{
    startInEnglish();
    const fs::path library = Installation::here().programDir() / "en-US/libVrUInfoRes.so";
    ASSERT_NE(gVrUInfoResDllInstance, nullptr);
    ASSERT_TRUE(isLoaded(library));
    EXPECT_EQ(DllMain(nullptr, kDetach, nullptr), 1);
    EXPECT_EQ(gVrUInfoResDllInstance, nullptr);
    EXPECT_FALSE(isLoaded(library));
}

TEST(ProcessHook, DetachWithoutALanguageLibraryDoesNothing)
{
    ASSERT_EQ(gVrUInfoResDllInstance, nullptr);
    EXPECT_EQ(DllMain(nullptr, kDetach, nullptr), 1);
    EXPECT_EQ(gVrUInfoResDllInstance, nullptr);
}

TEST(ProcessHook, KeepsTheLanguageLibraryForEveryOtherReason)
{
    startInEnglish();
    auto* const library = gVrUInfoResDllInstance;
    auto* const own = GetModuleHandleW(L"libVrUInfo.so");
    for (const DWORD reason : {kAttach, DWORD{2}, DWORD{3}, DWORD{4711}})
        EXPECT_EQ(DllMain(own, reason, nullptr), 1) << reason;
    EXPECT_EQ(gVrUInfoResDllInstance, library);
    EXPECT_TRUE(isLoaded(Installation::here().programDir() / "en-US/libVrUInfoRes.so"));
}

/// A library that tells on standard output what passes through it, and passes it on.
fs::path buildWatcher(const Installation& program)
{
    fs::path library = program.root() / "libWatcher.so";
    buildLibrary(library, R"(#include <cstdio>
#include <dlfcn.h>
#include <link.h>
#include <string.h>
static const char* nameOf(void* module)
{
    link_map* map = nullptr;
    if (!module || dlinfo(module, RTLD_DI_LINKMAP, &map) != 0)
        return "nothing";
    const char* const slash = strrchr(map->l_name, '/');
    return slash ? slash + 1 : map->l_name;
}
static int passOn(const char* function, void* module)
{
    printf("%s %s\n", function, nameOf(module));
    fflush(stdout);
    return reinterpret_cast<int (*)(void*)>(dlsym(RTLD_NEXT, function))(module);
}
extern "C" int DisableThreadLibraryCalls(void* module) { return passOn("DisableThreadLibraryCalls", module); }
extern "C" int FreeLibrary(void* module) { return passOn("FreeLibrary", module); }
)");
    return library;
}

PROBE(startAndEnd)
{
    const unsigned int status = start();
    std::cout << "status " << status << std::endl;
    return 0;
}

PROBE(loadAndEnd)
{
    std::cout << "loaded" << std::endl;
    return 0;
}

TEST(ProcessHook, IsCalledAtLoadAndAtUnload)
{
    const Installation program;
    program.installLanguage("en-US");
    const ProcessResult result = program.run("startAndEnd", {}, preloading(buildWatcher(program)));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "DisableThreadLibraryCalls libVrUInfo.so\nstatus 0\nFreeLibrary libVrUInfoRes.so\n");
}

TEST(ProcessHook, FreesNothingAtUnloadWhenNothingWasLoaded)
{
    const Installation program;
    const ProcessResult result = program.run("loadAndEnd", {}, preloading(buildWatcher(program)));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "DisableThreadLibraryCalls libVrUInfo.so\nloaded\n");
}

PROBE(callTheGlobalHook)
{
    using Hook = int (*)(void*, unsigned int, void*);
    const auto hook = reinterpret_cast<Hook>(dlsym(RTLD_DEFAULT, "DllMain"));
    if (start() != 0 || !hook)
        return 1;
    constexpr unsigned int kReason = 7;
    return hook(nullptr, kReason, nullptr);
}

TEST(ProcessHook, IsTheLibrarysOwnThoughAnotherLibraryExportsTheName)
{
    const Installation program;
    program.installLanguage("en-US");
    const fs::path library = program.root() / "libOther.so";
    buildLibrary(library, "#include <cstdio>\n"
                          "extern \"C\" int DllMain(void*, unsigned int reason, void*) {\n"
                          "    printf(\"the other one %u\\n\", reason);\n"
                          "    return 42;\n"
                          "}\n");
    const ProcessResult result = program.run("callTheGlobalHook", {}, preloading(library));
    EXPECT_EQ(result.exitCode, 42);
    EXPECT_EQ(result.out, "the other one 7\n");
}

TEST(LanguageLibraryHandle, IsNullUntilItIsFirstNeeded)
{
    EXPECT_EQ(gVrUInfoResDllInstance, nullptr);
    startInEnglish();
    EXPECT_EQ(gVrUInfoResDllInstance, GetModuleHandleW(inProgram("en-US/libVrUInfoRes.so").c_str()));
}

TEST(LanguageLibraryHandle, IsNotSetByLoadingALibrary)
{
    Installation::here().installLanguage("en-US");
    Installation::here().installPartner("en-US");
    ASSERT_EQ(start(), 0U);
    ASSERT_TRUE(vornConfig()->isNeedCheckOemPath());
    EXPECT_NE(LoadResourceDll(L"libVrUInfoRes.so"), nullptr);
    EXPECT_EQ(gVrUInfoResDllInstance, nullptr);
}

} // namespace
