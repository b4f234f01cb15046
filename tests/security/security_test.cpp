// What links, foreign libraries, foreign environments and impossible sizes cannot make a process do. docs/threats.md
// tells what each test stands for.
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <memory>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "VrUInfo/FirstRun.h"
#include "VrUInfo/Oem.h"
#include "VrUInfo/VornaConfig.h"
#include "scarce_memory.h"
#include "small_library.h"
#include "start_words.h"
#include "unprivileged.h"

using namespace vrtest;

namespace
{

namespace fs = std::filesystem;

constexpr char kNeedsRoot[] = "being two users takes the rights of root";
constexpr char kPartnerKey[] = "Software/HALVIK/VORNA/2026/en-US/Profiles/Default/CommonSettings/CustomResFile";
constexpr char kSecret[] = "somebody's secret\n";

mode_t modeOf(const fs::path& path)
{
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

void give(const fs::path& path, uid_t owner)
{
    if (isRoot() && lchown(path.c_str(), owner, owner) != 0)
        throw std::runtime_error("no owner for " + path.string());
}

class Security : public testing::Test
{
protected:
    Security() : m_here(Installation::here())
    {
        umask(022);
        m_here.installLanguage("en-US");
        m_here.write("VORNA.ini", "[Product]\nLocaleId=1033\n[LocaleIdLangName]\n1033=en-US\n");
        fs::create_directories(m_list.parent_path());
    }
    /// A file that is to stay as it is.
    [[nodiscard]] fs::path secret() const
    {
        fs::path file = m_here.root() / "secret/file";
        writeFile(file, kSecret);
        setMode(file, 0600);
        return file;
    }
    static void expectUntouched(const fs::path& secret)
    {
        EXPECT_EQ(readFile(secret), kSecret);
        EXPECT_EQ(modeOf(secret), 0600U);
        EXPECT_EQ(std::distance(fs::directory_iterator(secret.parent_path()), fs::directory_iterator()), 1);
    }
    [[nodiscard]] ProcessResult tool(const std::vector<std::string>& arguments) const
    {
        const fs::path place = m_here.programDir() / "vruinfo";
        if (!fs::exists(place))
            fs::copy_file(TOOL_PROGRAM, place);
        std::vector<std::string> command{place};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return runProcess(command, m_here.environment());
    }

    const Installation& m_here;
    const fs::path m_list = m_here.home() / ".local/share/HALVIK/VR2D.conf";
};

} // namespace

/// A host: starts, writes a value, enters itself into the products list, and ends.
PROBE(live)
{
    const unsigned int status = startWith({"-", "-", "en-US"});
    VornVariant value;
    value.setString(L"new", VornVariant::kVarString);
    vornConfig()->setValue(VornaConfig::VersionRoot, L"New", value);
    std::cout << status << CreateProductsConfigReg() << "\n";
    return 0;
}

/// The same, and what it makes is closed to others.
PROBE(liveClosed)
{
    umask(077);
    return probe_live(arguments);
}

/// Starts and tells the brand.
PROBE(brand)
{
    startWith({"-", "-", "en-US"});
    std::cout << utf8(GetOemProductName()) << "\n";
    return 0;
}

/// Loads each companion that there is, and asks a question that no dialog can ask.
PROBE(companions)
{
    startWith({"-", "-", "en-US"});
    std::cout << (GetOemAppIcon(true) != nullptr);
    std::cout << MessageBoxW(nullptr, L"Really?", L"Question", MB_YESNO) << "\n";
    return 0;
}

namespace
{

// ---- Links in the place of lock files

using LockLink = Security;

TEST_F(LockLink, OfTheSettingsIsRemovedAndItsTargetStays)
{
    m_here.writeSetting("Some/Value", "5$kept");
    const fs::path target = secret();
    const fs::path lock = m_here.settingsFile().string() + ".lock";
    fs::create_symlink(target, lock);
    EXPECT_EQ(m_here.run("live").out, "01\n");
    EXPECT_FALSE(fs::is_symlink(lock));
    EXPECT_EQ(textInFile(m_here.settingsFile(), "Software/HALVIK/VORNA/2026/New"), QStringLiteral("5$new"));
    expectUntouched(target);
}

TEST_F(LockLink, OfTheProductsListIsRemovedAndItsTargetKeepsItsPermissions)
{
    const fs::path target = secret();
    const fs::path lock = m_list.string() + ".lock";
    fs::create_symlink(target, lock);
    EXPECT_EQ(m_here.run("live").out, "01\n");
    EXPECT_FALSE(fs::is_symlink(lock));
    EXPECT_TRUE(fs::exists(m_list));
    expectUntouched(target);
}

TEST_F(LockLink, ThatCannotBeRemovedLeavesItsTargetAlone)
{
    const fs::path target = secret();
    fs::create_symlink(target, m_list.string() + ".lock");
    giveAway(target.parent_path());
    giveAway(m_here.home());
    setMode(m_list.parent_path(), 0555);
    EXPECT_EQ(runUnprivileged(m_here, "live").out, "01\n");
    expectUntouched(target);
}

// ---- Links in the place of the files

using FileLink = Security;

TEST_F(FileLink, OfTheSettingsLeadsNoFurtherThanTheUsersRights)
{
    if (!isRoot())
        GTEST_SKIP() << kNeedsRoot;
    const fs::path target = secret();
    fs::create_directories(m_here.settingsFile().parent_path());
    fs::create_symlink(target, m_here.settingsFile());
    EXPECT_EQ(runUnprivileged(m_here, "live").out, "01\n");
    expectUntouched(target);
}

TEST_F(FileLink, OfTheProductsListLeadsNoFurtherThanTheUsersRights)
{
    if (!isRoot())
        GTEST_SKIP() << kNeedsRoot;
    const fs::path target = secret();
    fs::create_symlink(target, m_list);
    EXPECT_EQ(runUnprivileged(m_here, "live").out, "01\n");
    expectUntouched(target);
}

// ---- Files that are made

using NewFile = Security;

TEST_F(NewFile, IsAsClosedAsTheHostsMaskSays)
{
    EXPECT_EQ(m_here.run("liveClosed").out, "01\n");
    EXPECT_EQ(modeOf(m_here.settingsFile()), 0600U);
    EXPECT_EQ(modeOf(m_list), 0600U);
    EXPECT_EQ(modeOf(m_here.configDir() / "HALVIK"), 0700U);
}

TEST_F(NewFile, InTheFormerOnesPlaceStaysAsClosedAsThatWas)
{
    m_here.writeSetting("Some/Value", "5$kept");
    writeFile(m_list, "[InstalledProducts]\n1=OLD\n");
    setMode(m_here.settingsFile(), 0600);
    setMode(m_list, 0600);
    EXPECT_EQ(m_here.run("live").out, "01\n");
    EXPECT_EQ(textInFile(m_here.settingsFile(), "Software/HALVIK/VORNA/2026/New"), QStringLiteral("5$new"));
    EXPECT_EQ(modeOf(m_here.settingsFile()), 0600U);
    EXPECT_EQ(modeOf(m_list), 0600U);
}

TEST_F(NewFile, BackupIsAsClosedAsTheSettings)
{
    m_here.writeSetting("Some/Value", "5$kept");
    setMode(m_here.settingsFile(), 0600);
    const std::string before = readFile(m_here.settingsFile());
    ASSERT_EQ(tool({"rm", "Some", "--recursive"}).exitCode, 0);
    int backups = 0;
    for (const auto& entry : fs::directory_iterator(m_here.settingsFile().parent_path())) {
        if (entry.path().extension() != ".bak")
            continue;
        ++backups;
        EXPECT_EQ(modeOf(entry.path()), 0600U);
        EXPECT_EQ(readFile(entry.path()), before);
    }
    EXPECT_EQ(backups, 1);
}

TEST_F(NewFile, BackupGoesThroughNoLink)
{
    m_here.writeSetting("Some/Value", "5$kept");
    const std::string before = readFile(m_here.settingsFile());
    const fs::path target = secret().parent_path() / "made";
    for (int second = -1; second < 30; ++second) {
        std::array<char, 32> stamp{};
        const std::time_t then = std::time(nullptr) + second;
        std::strftime(stamp.data(), stamp.size(), "%Y%m%d-%H%M%S", std::localtime(&then));
        fs::create_symlink(target, m_here.settingsFile().string() + "." + stamp.data() + ".bak");
    }
    const ProcessResult result = tool({"rm", "Some", "--recursive"});
    EXPECT_FALSE(fs::exists(target)) << result.out << result.err;
    EXPECT_TRUE(result.exitCode == 0 || readFile(m_here.settingsFile()) == before);
}

class ExportLink : public Security
{
protected:
    ExportLink() : m_target(secret()), m_link(m_here.root() / "everybodys/export.json")
    {
        m_here.writeSetting("Some/Value", "5$kept");
        fs::create_directories(m_link.parent_path());
        fs::create_symlink(m_target, m_link);
    }
    [[nodiscard]] ProcessResult write() const { return tool({"export", "/", "-o", m_link}); }

    const fs::path m_target;
    const fs::path m_link;
};

TEST_F(ExportLink, ThroughALinkOfAnotherUserInADirectoryOfEverybodyIsRefused)
{
    if (!isRoot())
        GTEST_SKIP() << kNeedsRoot;
    setMode(m_link.parent_path(), 01777);
    give(m_link, kNobody);
    const ProcessResult result = write();
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("is a link that another user has put into"), std::string::npos) << result.err;
    expectUntouched(m_target);
}

TEST_F(ExportLink, ThroughTheUsersOwnLinkIsWritten)
{
    setMode(m_link.parent_path(), 01777);
    EXPECT_EQ(write().exitCode, 0);
    EXPECT_TRUE(fs::is_symlink(m_link));
    EXPECT_NE(readFile(m_target), kSecret);
}

TEST_F(ExportLink, ThroughALinkInADirectoryThatIsNotEverybodysIsWritten)
{
    give(m_link, kNobody);
    EXPECT_EQ(write().exitCode, 0);
    EXPECT_NE(readFile(m_target), kSecret);
}

// ---- The partner library that settings name

/// A library that leaves a mark where it is loaded.
std::string markingSource(const fs::path& mark)
{
    return "#include <fcntl.h>\n__attribute__((constructor)) static void mark()\n{ open(\"" + mark.string() +
           "\", O_CREAT | O_WRONLY, 0600); }\n";
}

class PartnerLibrary : public Security
{
protected:
    PartnerLibrary() : m_mark(m_here.root() / "marks/loaded")
    {
        fs::create_directories(m_mark.parent_path());
        setMode(m_mark.parent_path(), 0777);
    }
    /// Makes the library, and names it in the settings of the user, whose home it is.
    void name(const fs::path& library) const
    {
        if (!fs::exists(library))
            buildLibrary(library, markingSource(m_mark));
        m_here.writeSetting(kPartnerKey, "5$" + library.string());
        giveAway(m_here.home());
    }
    [[nodiscard]] bool isLoadedBy(const ProcessResult& result) const
    {
        EXPECT_EQ(result.exitCode, 0) << result.err;
        const bool isLoaded = fs::exists(m_mark);
        fs::remove(m_mark);
        return isLoaded;
    }
    [[nodiscard]] fs::path usersLibrary() const { return m_here.home() / "lib/VrCustomRes.so"; }

    const fs::path m_mark;
};

TEST_F(PartnerLibrary, OfTheUserIsLoadedForTheUser)
{
    name(usersLibrary());
    EXPECT_TRUE(isLoadedBy(runUnprivileged(m_here, "brand")));
}

TEST_F(PartnerLibrary, OfTheUserIsNotLoadedByRoot)
{
    if (!isRoot())
        GTEST_SKIP() << kNeedsRoot;
    name(usersLibrary());
    const ProcessResult result = m_here.run("brand");
    EXPECT_FALSE(isLoadedBy(result));
    EXPECT_EQ(result.out, "VORNA\n");
}

TEST_F(PartnerLibrary, OfAnyoneIsLoadedByRootWhoseOwnSettingsNameIt)
{
    if (!isRoot())
        GTEST_SKIP() << kNeedsRoot;
    const fs::path library = m_here.root() / "brand/VrCustomRes.so";
    buildLibrary(library, markingSource(m_mark));
    give(library, kNobody);
    m_here.writeSetting(kPartnerKey, "5$" + library.string());
    EXPECT_TRUE(isLoadedBy(m_here.run("brand")));
    give(m_here.settingsFile(), kNobody);
    EXPECT_FALSE(isLoadedBy(m_here.run("brand")));
    give(m_here.settingsFile(), 0);
    give(m_here.settingsFile().parent_path(), kNobody);
    EXPECT_FALSE(isLoadedBy(m_here.run("brand")));
}

TEST_F(PartnerLibrary, BehindALinkOfTheUserIsNotLoadedByRoot)
{
    if (!isRoot())
        GTEST_SKIP() << kNeedsRoot;
    name(usersLibrary());
    const fs::path link = m_here.programDir() / "brand.so";
    fs::create_symlink(usersLibrary(), link);
    name(link);
    EXPECT_FALSE(isLoadedBy(m_here.run("brand")));
}

TEST_F(PartnerLibrary, OfTheInstallationIsLoadedByRoot)
{
    if (!isRoot())
        GTEST_SKIP() << kNeedsRoot;
    const fs::path library = m_here.programDir() / "brand/VrCustomRes.so";
    name(library);
    give(library, kNobody);
    EXPECT_TRUE(isLoadedBy(m_here.run("brand")));
}

TEST_F(PartnerLibrary, OfRootIsLoadedByRoot)
{
    if (!isRoot())
        GTEST_SKIP() << kNeedsRoot;
    const fs::path library = m_here.root() / "brand/VrCustomRes.so";
    name(library);
    EXPECT_TRUE(isLoadedBy(m_here.run("brand")));
    for (const auto& [path, mode] :
         std::map<fs::path, mode_t>{{library, 0775}, {library.parent_path(), 0777}, {library, 0757}}) {
        const mode_t before = modeOf(path);
        setMode(path, mode);
        EXPECT_FALSE(isLoadedBy(m_here.run("brand"))) << path << " " << mode;
        setMode(path, before);
    }
    setMode(library.parent_path(), 01777); // others make files there, but do not replace this one
    EXPECT_TRUE(isLoadedBy(m_here.run("brand")));
    give(library.parent_path(), kNobody);
    EXPECT_FALSE(isLoadedBy(m_here.run("brand")));
}

TEST_F(PartnerLibrary, OfTheUserIsNotLoadedByAProgramWithRightsOfItsFile)
{
    struct statvfs disk = {};
    statvfs(m_here.root().c_str(), &disk);
    if (!isRoot() || (disk.f_flag & ST_NOSUID) != 0)
        GTEST_SKIP() << "a program with rights of its file takes root, and a file system that allows it";
    if (kHasSanitizerAllocator)
        GTEST_SKIP() << "the sanitizer does not work in such a program";
    if (isBuildClosed())
        GTEST_SKIP() << "such a program is told by nobody where the libraries are, and their own place is closed";
    name(usersLibrary());
    const fs::path program = m_here.programDir() / "raised";
    fs::copy_file(m_here.executable(), program);
    Environment environment = m_here.environment();
    environment["VR_PROBE"] = "brand";
    const std::vector<std::string> asUser{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", program};
    EXPECT_TRUE(isLoadedBy(runProcess(asUser, environment)));
    constexpr uid_t kSomebody = 65533;
    for (const uid_t owner : {uid_t{0}, kSomebody}) {
        give(program, owner);
        setMode(program, 04755); // a change of the owner takes it away
        EXPECT_FALSE(isLoadedBy(runProcess(asUser, environment))) << owner;
    }
}

TEST_F(PartnerLibrary, OfTheUserIsNotTestedByTheDoctorOfRoot)
{
    if (!isRoot())
        GTEST_SKIP() << kNeedsRoot;
    name(usersLibrary());
    const ProcessResult result = tool({"doctor"});
    EXPECT_NE(result.out.find("partner.not-trusted"), std::string::npos) << result.out;
    EXPECT_FALSE(fs::exists(m_mark));
}

// ---- What is loaded and run beside the libraries

using Companions = Security;

TEST_F(Companions, AreNotTakenFromTheEnvironmentNorFromTheWorkingDirectory)
{
    const fs::path mark = m_here.root() / "mark";
    const fs::path trap = m_here.root() / "trap";
    for (const char* const library : {"libVrUInfoIcons.so", "libVrMessageBoxUi.so"})
        buildLibrary(trap / library, markingSource(mark));
    writeFile(trap / "VrMessageBox", "#!/bin/sh\n>" + mark.string() + "\n");
    setMode(trap / "VrMessageBox", 0755);
    const Environment environment = {{"LD_LIBRARY_PATH", trap}, {"PATH", trap.string() + ":/usr/bin:/bin"},
                                     {"XDG_DATA_HOME", trap},   {"XDG_DATA_DIRS", trap},
                                     {"QT_PLUGIN_PATH", trap},  {"DISPLAY", ":987"}};
    const ProcessResult result = m_here.run("companions", {}, environment, trap);
    EXPECT_EQ(result.out, "1" + std::to_string(IDNO) + "\n") << result.err;
    EXPECT_FALSE(fs::exists(mark));
}

// ---- Sizes

/// The status that is thrown when a value is written; 0 when none is.
unsigned int thrownByWriting(const VornVariant& value)
{
    try {
        WriteValueToReg(L"Sizes", L"Value", value);
    } catch (VrErrorStatus* error) { // NOLINT(misc-throw-by-value-catch-by-reference) so they are thrown
        const std::unique_ptr<VrErrorStatus> owned(error);
        return owned->status();
    }
    return 0;
}

using Sizes = Security;

TEST_F(Sizes, OfBytesThatNoTextHoldsAreRefusedWithoutATouch)
{
    ASSERT_EQ(startWith({"-", "-", "en-US"}), 0U);
    for (const std::uint32_t size : {0xFFFFFFFFU, 0x80000003U, 0x7FFFFFFFU, 0x40000000U, 0x20000000U}) {
        VornVariant value;
        value.setString(L"", VornVariant::kVarString); // a block of eight bytes that tells another size
        value.type = VornVariant::kVarBinary;
        std::memcpy(value.data, &size, sizeof size);
        EXPECT_EQ(thrownByWriting(value), Vorn::eBadSize) << size;
    }
}

/// It went on, or ended itself before it wrote behind a buffer.
void expectInOrder(const ProcessResult& result)
{
    const bool isEndedInOrder =
        result.signal == SIGABRT && result.err.rfind("libVrUInfo: a text is too long for its buffer", 0) == 0;
    EXPECT_TRUE(result.exitCode == 0 || isEndedInOrder) << result.signal << " " << result.err;
}

TEST_F(Sizes, OfNamesInTheSettingsNeverReachBehindABuffer)
{
    const std::string product = "Software/HALVIK/";
    for (const std::string& key : {product + "CurProduct", product + "VORNA/2026/CurVer", std::string(kPartnerKey),
                                   product + "VORNA/2026/en-US/Profiles/Profiles"}) {
        for (const std::size_t length : {7U, 8U, 255U, 256U, 1022U, 1023U, 1024U, 100000U}) {
            SCOPED_TRACE(key + " " + std::to_string(length));
            fs::remove(m_here.settingsFile());
            m_here.writeSetting(key, "5$" + std::string(length, 'n'));
            expectInOrder(m_here.run("brand"));
        }
    }
}

TEST_F(Sizes, OfNamesInTheIniFileDoNotEndAStart)
{
    const std::string name(1000000, 'n');
    for (const char* const key : {"CompanyName", "ProductName", "Version", "LocaleId"}) {
        m_here.write("VORNA.ini", std::string("[Product]\n") + key + "=" + name + "\n");
        const ProcessResult result = m_here.run("brand");
        EXPECT_EQ(result.signal, 0) << key << result.err;
        EXPECT_EQ(result.exitCode, 0) << key << result.err;
    }
}

} // namespace
