#include "doctor_patient.h"

using namespace clitest;

namespace
{

std::string entry(const std::string& name, const std::string& location, const std::string& language = "en-US")
{
    return "[" + name + "]\nLocation=" + location + "\nProduct=VORNA\nVersion=2026\nLanguage=" + language + "\n";
}

TEST(DoctorProducts, ThatListThisReleaseAreInOrder)
{
    Patient patient;
    patient.products("[InstalledProducts]\n1=E\n" + entry("E", patient.programDir()));
    patient.look(kDone);
    patient.expectNotFound("products.not-listed");
    patient.products("[InstalledProducts]\n1=E\n" + entry("E", patient.programDir(), "zh-CN"));
    patient.look(kDone);
    patient.expectFound("products.not-listed", {"note", "/VR2D.conf", "VORNA 2026"});
}

TEST(DoctorProducts, WhoseLocationIsGoneAreAWarning)
{
    Patient patient;
    patient.products("[InstalledProducts]\n1=E\n" + entry("E", "/nowhere"));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"products.location"});
    patient.expectFound("products.location", {"warning", "E (1)", "/nowhere is no directory"});
}

TEST(DoctorProducts, WithGapsAndDoublesAreAWarning)
{
    Patient patient;
    const std::string here = patient.programDir();
    patient.products("[InstalledProducts]\n1=E\n3=F\n" + entry("E", here) + entry("F", here));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"products.gap"});
    patient.expectFound("products.gap", {"warning", "/VR2D.conf", "1, 3 instead of 1 to 2"});
    patient.products("[InstalledProducts]\n1=E\nx=F\n" + entry("E", here) + entry("F", here));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"products.gap"});
    patient.products("[InstalledProducts]\n1=E\n2=E\n" + entry("E", here));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"products.double"});
    patient.expectFound("products.double", {"warning", "E (2)", "two numbers"});
}

TEST(DoctorProducts, ThatAreNamedOnlyAreAWarning)
{
    Patient patient;
    patient.products("[InstalledProducts]\n1=E\n2=F\n" + entry("E", patient.programDir()));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"products.no-entry"});
    patient.expectFound("products.no-entry", {"warning", "F (2)", "tells nothing of it"});
}

TEST(DoctorProducts, InADamagedListOrWithALockAreAWarning)
{
    Patient patient;
    patient.products("[InstalledProducts]\n1=E\nnonsense\n" + entry("E", patient.programDir()));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"products.damaged"});
    patient.products("[InstalledProducts]\n1=E\n" + entry("E", patient.programDir()));
    appendToFile(patient.productsList().string() + ".lock", "");
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"products.lock"});
    EXPECT_TRUE(fs::exists(patient.productsList().string() + ".lock"));
}

TEST(DoctorProducts, InWhatIsNoReadableFileAreAWarning)
{
    Patient patient;
    fs::create_directories(patient.productsList().parent_path());
    ASSERT_EQ(mkfifo(patient.productsList().c_str(), 0644), 0);
    patient.look(kWarnings);
    patient.expectFound("products.not-a-file", {"warning", "/VR2D.conf", "no plain file"});
    patient.products("[InstalledProducts]\n");
    patient.giveToNobody();
    fs::permissions(patient.productsList(), fs::perms::none);
    patient.lookAsNobody(kWarnings);
    patient.expectFound("products.unreadable", {"warning", "/VR2D.conf", "cannot be read"});
}

TEST(DoctorUser, WithoutAHomeIsAnError)
{
    Patient patient;
    fs::remove(patient.home());
    patient.look(kErrors);
    EXPECT_EQ(patient.complaints(), Complaints{"home.missing"});
    patient.expectFound("home.missing", {"error", "/home", "is no directory"});
}

TEST(DoctorUser, WhoCannotWriteTheHomeIsAnError)
{
    Patient patient;
    patient.giveToNobody();
    patient.lookAsNobody(kDone);
    fs::permissions(patient.home(), fs::perms(0555));
    patient.lookAsNobody(kErrors);
    patient.expectFound("home.not-writable", {"error", "/home", "cannot be written"});
    EXPECT_EQ(patient.complaints(), (Complaints{"home.not-writable", "settings.not-writable"}));
}

TEST(DoctorUser, WhoseDirectoriesCannotBeMadeIsAWarningForEachObstacle)
{
    Patient patient;
    appendToFile(patient.home() / ".local", "a file");
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"directory.not-writable"});
    EXPECT_EQ(patient.ids().count("directory.not-writable"), 1U);
    patient.expectFound("directory.not-writable",
                        {"warning", "/home/.local", "local data, local company data, local product data"});
}

TEST(DoctorUser, WhoseDirectoriesCannotBeWrittenIsAWarning)
{
    Patient patient;
    const fs::path support = patient.home() / ".config/HALVIK/VORNA/2026/en-US/Support";
    fs::create_directories(support);
    patient.giveToNobody();
    fs::permissions(support, fs::perms(0555));
    patient.lookAsNobody(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"directory.not-writable"});
    patient.expectFound("directory.not-writable", {"warning", "/en-US/Support", "nothing can be put into: support."});
}

TEST(DoctorUser, NeedNotWriteTheInstallation)
{
    Patient patient;
    patient.giveToNobody();
    fs::permissions(patient.programDir(), fs::perms(0555));
    patient.lookAsNobody(kDone);
    patient.expectFound("directory.not-writable", {"note", "/program", "user data cache, language user data cache"});
}

TEST(DoctorUser, WhoseStyleFileIsConfiguredAndMissingIsAWarning)
{
    Patient patient;
    const std::string style = "HALVIK\\VORNA\\2026\\en-US\\Settings\\UserConfig\\Config\\UIStyle=5$";
    patient.settings("[Software]\n" + style + "/nowhere/Mine.zus\n");
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"style.missing"});
    patient.expectFound("style.missing", {"warning", "/nowhere/Mine.zus", "style that is configured"});
    patient.write("Mine.zus", "style");
    patient.settings("[Software]\n" + style + patient.in("Mine.zus").string() + "\n");
    patient.look(kDone);
    patient.expectNotFound("style.missing");
}

TEST(DoctorUser, WhoseSettingsWaitToBeTakenOverIsANote)
{
    Patient patient;
    const std::string flag = "[Software]\nHALVIK\\VORNA\\2026\\en-US\\AutoMigrate=1$";
    patient.settings(flag + "1\n");
    patient.look(kDone);
    patient.expectFound("migration.pending", {"note", "AutoMigrate", "older release"});
    patient.settings(flag + "2\n");
    patient.look(kDone);
    patient.expectNotFound("migration.pending");
}

TEST(DoctorUser, WithTheEditorsExtensionIsANote)
{
    Patient patient;
    patient.look(kDone);
    patient.expectNotFound("editor.extension");
    fs::create_directories(patient.home() / ".vscode/extensions/halvik.vrlisp-1.0");
    patient.look(kDone);
    patient.expectFound("editor.extension", {"note", "/.vscode/extensions/HALVIK.VrLisp", "installed"});
}

TEST(DoctorProgram, FilesThatAreTakenFromElsewhereAreNotes)
{
    Patient patient;
    patient.look(kDone);
    for (const char* const name : {"libVrUInfo.so", "libVrOsBase.so", "libVrPlatformBase.so", "libVrUInfoIcons.so",
                                   "libVrMessageBoxUi.so", "VrMessageBox"})
        patient.expectFound("program.elsewhere", {"note", name, fs::path(TOOL_LIBRARIES) / name});
    patient.giveToNobody();
    patient.look(kDone);
    patient.expectNotFound("program.elsewhere");
}

TEST(DoctorProgram, FilesThatAreNowhereAreAWarning)
{
    Patient patient;
    patient.giveToNobody();
    fs::remove(patient.in("libVrUInfoIcons.so"));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"program.no-icons"});
    patient.expectFound("program.no-icons", {"warning", "libVrUInfoIcons.so", patient.programDir()});
    fs::remove(patient.in("VrMessageBox"));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), (Complaints{"program.no-icons", "program.no-message-box"}));
    patient.expectFound("program.no-message-box", {"warning", "VrMessageBox", "may not be seen"});
}

TEST(DoctorProgram, IconLibraryThatDoesNotLoadIsAWarning)
{
    Patient patient;
    patient.giveToNobody();
    fs::remove(patient.in("libVrUInfoIcons.so"));
    patient.write("libVrUInfoIcons.so", "no library");
    patient.look(kWarnings);
    patient.expectFound("program.no-icons", {"warning", "/libVrUInfoIcons.so", "file too short"});
}

} // namespace
