// Single settings and places that modules ask for.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <malloc.h>

#include "VrUInfo/Lookups.h"
#include "VrUInfo/VornaConfig.h"
#include "long_path.h"
#include "scarce_memory.h"
#include "start_words.h"
#include "started_store.h"
#include "unprivileged.h"

namespace fs = std::filesystem;
using namespace vrtest;

namespace
{

using PathFunction = unsigned int (*)(wchar_t*);

/// What a path function wrote; "-" where it failed and left an empty text.
std::wstring pathGiven(PathFunction function)
{
    GuardedBuffer buffer(kCapacity);
    const unsigned int length = function(buffer.data());
    EXPECT_TRUE(buffer.isWhole());
    EXPECT_EQ(buffer.text().size(), length);
    return length == 0 ? L"-" : buffer.text();
}

std::wstring stylePath()
{
    return pathGiven(GetVornUIStyleConfigFilePath);
}

std::wstring extensionPath()
{
    return pathGiven(GetVrLispVSCodeExtensionDirectory);
}

} // namespace

/// Prints the extension's directory, "-" where there is none.
PROBE(printExtension)
{
    std::cout << utf8(extensionPath());
    return 0;
}

namespace
{

// The merged title.

class MergeTitle : public testing::Test
{
protected:
    static constexpr int kDefault = 7;

    static void write(const std::string& text) { Installation::here().write("VORNA.ini", "[PartnerOEM]\n" + text); }
    /// The setting where the key holds this text.
    static int settingOf(const std::string& text)
    {
        write("MergeTitle=" + text + "\n");
        return GetVornIniOEMMergeTitleValue(kDefault);
    }
};

TEST_F(MergeTitle, IsTheNumberOfItsKey)
{
    EXPECT_EQ(settingOf("1"), 1);
    EXPECT_EQ(settingOf("0"), 0);
    EXPECT_EQ(settingOf("2147483647"), 2147483647);
}

TEST_F(MergeTitle, IsTheCallersDefaultWithoutFileSectionOrKey)
{
    EXPECT_EQ(GetVornIniOEMMergeTitleValue(kDefault), kDefault);
    Installation::here().write("VORNA.ini", "[Product]\nMergeTitle=1\n");
    EXPECT_EQ(GetVornIniOEMMergeTitleValue(kDefault), kDefault);
    write("MergeTitl=1\n");
    EXPECT_EQ(GetVornIniOEMMergeTitleValue(kDefault), kDefault);
    EXPECT_EQ(GetVornIniOEMMergeTitleValue(-3), -3);
    EXPECT_EQ(GetVornIniOEMMergeTitleValue(0), 0);
}

TEST_F(MergeTitle, IsZeroForText)
{
    EXPECT_EQ(settingOf("yes"), 0);
}

TEST_F(MergeTitle, IsTheCallersDefaultForANegativeNumber)
{
    EXPECT_EQ(settingOf("-1"), kDefault);
}

TEST_F(MergeTitle, IsReadFromTheProductsIniFileOnly)
{
    Installation::here().write("product.ini", "[PartnerOEM]\nMergeTitle=1\n");
    EXPECT_EQ(GetVornIniOEMMergeTitleValue(kDefault), kDefault);
}

TEST_F(MergeTitle, IsReadAnewEachTime)
{
    EXPECT_EQ(settingOf("1"), 1);
    EXPECT_EQ(settingOf("2"), 2);
}

// The style file.

constexpr wchar_t kUserConfig[] = L"Software/HALVIK/VORNA/2026/en-US/Settings/UserConfig";

class StyleFile : public StartedStore
{
protected:
    /// The style path where the setting stands as this text in the settings file.
    static std::wstring pathWhere(const std::string& stored)
    {
        putText(std::wstring(kUserConfig) + L"/Config/UIStyle", stored);
        return stylePath();
    }
    static std::wstring defaultPath()
    {
        return wide((Installation::here().configDir() / "HALVIK/VORNA/2026/en-US/Support/Style.zus").string());
    }
    /// Makes the user's support folder a path of that many characters, its separator counted.
    static void setSupportFolderLength(std::size_t length)
    {
        constexpr std::size_t kComponents = 33; // "/HALVIK/VORNA/2026/en-US/Support/"
        setenv("XDG_CONFIG_HOME", absolutePath(length - kComponents).c_str(), 1);
    }
};

TEST_F(StyleFile, IsTheTextOfItsSetting)
{
    EXPECT_EQ(pathWhere("5$/styles/Größe 😀.zus"), L"/styles/Größe 😀.zus");
}

TEST_F(StyleFile, IsASettingOfTheItemConfigOnly)
{
    putText(std::wstring(kUserConfig) + L"/UIStyle", "5$/no.zus");
    putText(L"Software/HALVIK/VORNA/2026/en-US/Settings/Config/UIStyle", "5$/no.zus");
    EXPECT_EQ(stylePath(), defaultPath());
}

TEST_F(StyleFile, IsAnUntaggedTextToo)
{
    EXPECT_EQ(pathWhere("/styles/plain.zus"), L"/styles/plain.zus");
}

TEST_F(StyleFile, FailsForAnEmptyText)
{
    EXPECT_EQ(pathWhere("5$"), L"-");
}

TEST_F(StyleFile, FailsForAValueThatIsNoText)
{
    for (const char* const stored : {"1$5", "2$5", "3$0000000000000440", "4$2f61", "4$", "6$/no.zus"})
        EXPECT_EQ(pathWhere(stored), L"-") << stored;
}

TEST_F(StyleFile, MayHaveOneThousandTwentyThreeCharacters)
{
    EXPECT_EQ(pathWhere("5$" + std::string(1022, 's')), wideOf(1022, L's'));
    EXPECT_EQ(pathWhere("5$" + std::string(1023, 's')), wideOf(1023, L's'));
}

TEST_F(StyleFile, FailsForOneThousandTwentyFourCharacters)
{
    EXPECT_EQ(pathWhere("5$" + std::string(1024, 's')), L"-");
    EXPECT_EQ(pathWhere("5$" + std::string(5000, 's')), L"-");
}

TEST_F(StyleFile, IsInTheSupportFolderWithoutASetting)
{
    EXPECT_EQ(stylePath(), defaultPath());
}

TEST_F(StyleFile, IsInTheSupportFolderWithoutASettingsObject)
{
    putText(std::wstring(kUserConfig) + L"/Config/UIStyle", "5$/no.zus");
    closeStore();
    EXPECT_EQ(stylePath(), defaultPath());
}

TEST_F(StyleFile, MayBeInASupportFolderOfOneThousandTwelveCharacters)
{
    setSupportFolderLength(1012);
    const std::wstring path = stylePath();
    EXPECT_EQ(path.size(), 1012U + 9U);
    EXPECT_EQ(path.substr(1012 - 8), L"Support/Style.zus");
}

TEST_F(StyleFile, FailsInASupportFolderOfOneThousandThirteenCharacters)
{
    setSupportFolderLength(1013);
    EXPECT_EQ(stylePath(), L"-");
}

TEST_F(StyleFile, FailsWithoutASupportFolder)
{
    setenv("XDG_CONFIG_HOME", absolutePath(1020).c_str(), 1);
    EXPECT_EQ(stylePath(), L"-");
}

TEST_F(StyleFile, OfASettingNeedsNoSupportFolder)
{
    setenv("XDG_CONFIG_HOME", absolutePath(1020).c_str(), 1);
    EXPECT_EQ(pathWhere("5$/a.zus"), L"/a.zus");
}

TEST_F(StyleFile, FailsForANullBuffer)
{
    EXPECT_EQ(GetVornUIStyleConfigFilePath(nullptr), 0U);
}

TEST(StyleFileBeforeTheStart, IsInTheSupportFolderOfTheUnknownLanguage)
{
    const fs::path support = Installation::here().configDir() / "HALVIK/VORNA/2026/unknown/Support";
    EXPECT_EQ(stylePath(), wide((support / "Style.zus").string()));
}

// Migration.

class Migration : public StartedStore
{
protected:
    static bool isNeededWhere(const std::string& stored)
    {
        putText(L"Software/HALVIK/VORNA/2026/en-US/AutoMigrate", stored);
        return GetIsNeedStartMigrator();
    }
};

TEST_F(Migration, IsNeededWhereTheFlagIsOne)
{
    EXPECT_TRUE(isNeededWhere("1$1"));
}

TEST_F(Migration, IsNotNeededWhereTheFlagIsAnotherNumber)
{
    for (const char* const stored : {"1$2", "1$0", "1$-1", "1$11"})
        EXPECT_FALSE(isNeededWhere(stored)) << stored;
}

TEST_F(Migration, IsNotNeededWhereTheFlagIsNo32BitInteger)
{
    for (const char* const stored : {"5$1", "1", "2$1", "3$000000000000f03f", "4$01000000", "4$", "6$1"})
        EXPECT_FALSE(isNeededWhere(stored)) << stored;
}

TEST_F(Migration, IsNotNeededWithoutTheFlag)
{
    putText(L"Software/HALVIK/VORNA/2026/en-US/Other", "1$1");
    EXPECT_FALSE(GetIsNeedStartMigrator());
}

TEST_F(Migration, IsNotNeededWhereTheLanguageHasNoItem)
{
    ASSERT_TRUE(isNeededWhere("1$1"));
    ASSERT_EQ(config().removeItem(VornaConfig::LanguageRoot, nullptr), 0U);
    EXPECT_FALSE(GetIsNeedStartMigrator());
}

TEST_F(Migration, IsNotNeededByTheFlagOfAnotherLanguage)
{
    putText(L"Software/HALVIK/VORNA/2026/de-DE/AutoMigrate", "1$1");
    EXPECT_FALSE(GetIsNeedStartMigrator());
}

TEST_F(Migration, IsNotNeededWithoutASettingsObject)
{
    ASSERT_TRUE(isNeededWhere("1$1"));
    closeStore();
    EXPECT_FALSE(GetIsNeedStartMigrator());
}

TEST(MigrationBeforeTheStart, IsNotNeeded)
{
    EXPECT_FALSE(GetIsNeedStartMigrator());
}

// The product's own modules.

class AutoLoad : public testing::Test
{
protected:
    static bool isOwn(const std::string& name) { return GetCurrentFileIsVORNARegAutoLoadFile(wide(name).c_str()); }
    static std::vector<std::string> modules()
    {
        std::vector<std::string> names;
        std::ifstream list(VR_MODULE_LIST);
        for (std::string name; std::getline(list, name);)
            names.push_back(name);
        return names;
    }
    static std::string lower(std::string name)
    {
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
        return name;
    }
    static std::string upper(std::string name)
    {
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
        return name;
    }
};

TEST_F(AutoLoad, KnowsEightyOneModules)
{
    EXPECT_EQ(modules().size(), 81U);
}

TEST_F(AutoLoad, KnowsEachModuleInAnyCase)
{
    for (const std::string& name : modules()) {
        EXPECT_TRUE(isOwn(name)) << name;
        EXPECT_TRUE(isOwn(lower(name))) << name;
        EXPECT_TRUE(isOwn(upper(name))) << name;
        EXPECT_TRUE(isOwn(lower(name.substr(0, 1)) + upper(name.substr(1)))) << name;
    }
}

TEST_F(AutoLoad, KnowsNoNameThatIsNearlyOne)
{
    const std::vector<std::string> known = modules();
    for (const std::string& name : known) {
        for (const std::string& near : {name + "x", name.substr(0, name.size() - 1), " " + name, name + " ",
                                        name + ".so", "lib" + name, "/" + name, name.substr(1), name.substr(2)}) {
            const bool isKnown = std::find(known.begin(), known.end(), near) != known.end();
            EXPECT_EQ(isOwn(near), isKnown) << near;
        }
    }
}

TEST_F(AutoLoad, KnowsNoOtherName)
{
    for (const char* const name : {"V", "Vr", "VrNothing", "Größe", "*"})
        EXPECT_FALSE(isOwn(name)) << name;
}

TEST_F(AutoLoad, KnowsNeitherNullNorAnEmptyText)
{
    EXPECT_FALSE(GetCurrentFileIsVORNARegAutoLoadFile(nullptr));
    EXPECT_FALSE(GetCurrentFileIsVORNARegAutoLoadFile(L""));
}

// The editor's extension.

class Extension : public testing::Test
{
protected:
    Extension() : m_folder(Installation::here().home() / ".vscode/extensions") { fs::create_directories(m_folder); }

    void makeFolder(const std::string& name) const { fs::create_directories(m_folder / name); }
    void makeFile(const std::string& name) const { writeFile(m_folder / name, "no folder\n"); }
    /// The answer whatever the found folder's own name.
    std::wstring expected() const { return wide((m_folder / "HALVIK.VrLisp").string()); }

    const fs::path m_folder;
};

TEST_F(Extension, IsFoundUnderItsName)
{
    makeFolder("HALVIK.VrLisp");
    EXPECT_EQ(extensionPath(), expected());
}

TEST_F(Extension, IsFoundInLowerCaseWithAVersionAndNamedWithout)
{
    makeFolder("halvik.vrlisp-1.2.3");
    EXPECT_EQ(extensionPath(), expected());
    EXPECT_EQ(extensionPath().substr(expected().size() - 13), L"HALVIK.VrLisp");
}

TEST_F(Extension, IsFoundInUpperCaseAndInTheMiddleOfAName)
{
    makeFolder("old HALVIK.VRLISP (1)");
    EXPECT_EQ(extensionPath(), expected());
}

TEST_F(Extension, IsFoundUnderAHiddenName)
{
    makeFolder(".halvik.vrlisp-9");
    EXPECT_EQ(extensionPath(), expected());
}

TEST_F(Extension, IsFoundAmongOthers)
{
    for (const char* const name : {"a.first-1", "halvik.other-1", "zz.last-2"})
        makeFolder(name);
    makeFile("HALVIK.VrLisp.json");
    makeFolder("halvik.vrlisp-2");
    makeFile("zz");
    EXPECT_EQ(extensionPath(), expected());
}

TEST_F(Extension, IsFoundAtTheEndsOfTheListing)
{
    makeFolder("halvik.vrlisp");
    makeFolder("zz");
    EXPECT_EQ(extensionPath(), expected());
    fs::remove(m_folder / "zz");
    makeFolder("a");
    EXPECT_EQ(extensionPath(), expected());
}

TEST_F(Extension, IsNoPlainFile)
{
    makeFile("HALVIK.VrLisp");
    makeFile("halvik.vrlisp-1.2.3");
    EXPECT_EQ(extensionPath(), L"-");
}

TEST_F(Extension, IsFoundThroughALinkToAFolder)
{
    fs::create_directories(Installation::here().root() / "elsewhere");
    fs::create_directory_symlink(Installation::here().root() / "elsewhere", m_folder / "halvik.vrlisp-dev");
    EXPECT_EQ(extensionPath(), expected());
}

TEST_F(Extension, IsNoLinkToAFileOrToNothing)
{
    makeFile("file");
    fs::create_symlink(m_folder / "file", m_folder / "halvik.vrlisp-1");
    fs::create_symlink(m_folder / "gone", m_folder / "halvik.vrlisp-2");
    EXPECT_EQ(extensionPath(), L"-");
}

TEST_F(Extension, IsNoFolderWithANearName)
{
    for (const char* const name : {"halvik.vrlis", "halvik-vrlisp", "halvikvrlisp", "alvik.vrlisp", "vrlisp"})
        makeFolder(name);
    makeFolder("other/halvik.vrlisp");
    EXPECT_EQ(extensionPath(), L"-");
}

TEST_F(Extension, FailsInAnEmptyFolder)
{
    EXPECT_EQ(extensionPath(), L"-");
}

TEST_F(Extension, FailsWithoutTheFolderOfExtensions)
{
    fs::remove_all(m_folder);
    EXPECT_EQ(extensionPath(), L"-");
    fs::remove_all(m_folder.parent_path());
    EXPECT_EQ(extensionPath(), L"-");
}

TEST_F(Extension, FailsWhereTheFolderOfExtensionsIsAFile)
{
    fs::remove_all(m_folder);
    writeFile(m_folder, "halvik.vrlisp\n");
    EXPECT_EQ(extensionPath(), L"-");
}

TEST_F(Extension, FailsInAFolderThatCannotBeRead)
{
    makeFolder("halvik.vrlisp");
    ASSERT_EQ(utf8(expected()), runUnprivileged(Installation::here(), "printExtension").out);
    setMode(m_folder, 0111);
    EXPECT_EQ(runUnprivileged(Installation::here(), "printExtension").out, "-");
}

TEST_F(Extension, FailsForANullBuffer)
{
    makeFolder("halvik.vrlisp");
    EXPECT_EQ(GetVrLispVSCodeExtensionDirectory(nullptr), 0U);
}

TEST_F(Extension, NeedsNoStart)
{
    makeFolder("halvik.vrlisp");
    const Installation& here = Installation::here();
    EXPECT_EQ(here.run("printExtension", {}, {}, "/").out, utf8(expected()));
}

/// A home of exactly that many characters, with the extension in it.
std::string homeOfLength(std::size_t length)
{
    const std::string root = Installation::here().root().string() + "/";
    std::string home = root + folders(length - root.size());
    fs::create_directories(home + "/.vscode/extensions/halvik.vrlisp-1");
    return home;
}

TEST_F(Extension, MayBeInAHomeOfNineHundredEightyEightCharacters)
{
    const std::string home = homeOfLength(988);
    ASSERT_EQ(home.size(), 988U);
    setenv("HOME", home.c_str(), 1);
    EXPECT_EQ(extensionPath(), wide(home + "/.vscode/extensions/HALVIK.VrLisp"));
    EXPECT_EQ(extensionPath().size(), 1021U);
}

TEST_F(Extension, FailsInAHomeOfOneCharacterMore)
{
    setenv("HOME", homeOfLength(989).c_str(), 1);
    EXPECT_EQ(extensionPath(), L"-");
}

TEST_F(Extension, FailsInAHomeTooLongToBeNamed)
{
    setenv("HOME", homeOfLength(1022).c_str(), 1);
    EXPECT_EQ(extensionPath(), L"-");
}

/// Bytes that the process has allocated and not freed.
std::ptrdiff_t bytesInUse()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return static_cast<std::ptrdiff_t>(__sanitizer_get_current_allocated_bytes());
#else
    const struct mallinfo2 info = mallinfo2();
    return static_cast<std::ptrdiff_t>(info.uordblks + info.hblkhd);
#endif
}

TEST_F(Extension, KeepsNoListing)
{
    for (int i = 0; i < 100; ++i)
        makeFolder("halvik.vrlisp-" + std::to_string(i));
    ASSERT_EQ(extensionPath(), expected());
    const std::ptrdiff_t before = bytesInUse();
    for (int i = 0; i < 100; ++i)
        extensionPath();
    constexpr std::ptrdiff_t kTenListings = 32000; // each has a hundred entries of more than 32 bytes
    EXPECT_LT(bytesInUse() - before, kTenListings);
}

} // namespace
