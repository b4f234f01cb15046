#include <QSettings>

#include "doctor_patient.h"

using namespace clitest;

namespace
{

std::string hostName()
{
    char name[256] = "";
    gethostname(name, sizeof name - 1);
    return name;
}

TEST(DoctorSettings, MissingIsANote)
{
    Patient patient;
    patient.look(kDone);
    patient.expectFound("settings.missing", {"note", "/VORNA.conf", "first one"});
    patient.settings("[General]\na=5$x\n");
    patient.look(kDone);
    patient.expectNotFound("settings.missing");
}

TEST(DoctorSettings, InPlaceOfWhichSomethingElseStandsIsAnError)
{
    Patient patient;
    fs::create_directories(patient.settingsFile());
    patient.look(kErrors);
    patient.expectFound("settings.not-a-file", {"error", "/VORNA.conf", "is a directory"});
    fs::remove(patient.settingsFile());
    fs::create_symlink("nowhere", patient.settingsFile());
    patient.look(kErrors);
    patient.expectFound("settings.dangling-link", {"error", "/VORNA.conf", "is a link to nothing"});
}

TEST(DoctorSettings, WithAValueThatAsksForAllTheMemoryAreAnError)
{
    Patient patient;
    patient.settings("[General]\na=@Variant(\\0\\0\\0\\v2222)\n");
    patient.look(kErrors);
    patient.expectFound("settings.endless-value", {"error", "/VORNA.conf", "more memory than there is"});
}

TEST(DoctorSettings, ThatCannotBeReadAreAnError)
{
    Patient patient;
    patient.settings("[General]\na=5$x\n");
    patient.giveToNobody();
    fs::permissions(patient.settingsFile(), fs::perms::none);
    patient.lookAsNobody(kErrors);
    patient.expectFound("settings.unreadable", {"error", "/VORNA.conf", "cannot be read by this user"});
    fs::permissions(patient.settingsFile(), fs::perms(0644));
    fs::permissions(patient.settingsFile().parent_path(), fs::perms::none);
    patient.lookAsNobody(kErrors);
    patient.expectFound("settings.unreadable", {"error", "/VORNA.conf", "may not look"});
    fs::permissions(patient.settingsFile().parent_path(), fs::perms(0755));
}

TEST(DoctorSettings, ThatCannotBeWrittenAreAnError)
{
    Patient patient;
    patient.settings("[General]\na=5$x\n");
    patient.giveToNobody();
    patient.lookAsNobody(kDone);
    fs::permissions(patient.settingsFile(), fs::perms(0444));
    patient.lookAsNobody(kErrors);
    EXPECT_EQ(patient.complaints(), Complaints{"settings.not-writable"});
    patient.expectFound("settings.not-writable", {"error", "/VORNA.conf", "no change of a setting is kept"});
    fs::permissions(patient.settingsFile(), fs::perms(0644));
    fs::permissions(patient.settingsFile().parent_path(), fs::perms(0555));
    patient.lookAsNobody(kErrors);
    patient.expectFound("settings.not-writable", {"error", "/2026", "above the settings file"});
}

TEST(DoctorSettings, ThatAreDamagedAreAnErrorWithTheLines)
{
    Patient patient;
    patient.settings(
        "[General]\na=5$x\nnonsense\n; a comment\n\n[broken\nb=1$1\n c=\"5$x\ny\"\n# hash\nd=5$x\\\n\nlast");
    patient.look(kErrors);
    EXPECT_EQ(patient.complaints(), Complaints{"settings.damaged"});
    patient.expectFound("settings.damaged", {"error", "/VORNA.conf", "(3, 6, 10, 13)"});
}

bool isRefusedBySettingsLibrary(const fs::path& file)
{
    const QSettings settings(QString::fromStdString(file), QSettings::NativeFormat);
    settings.allKeys(); // which reads every line
    return settings.status() == QSettings::FormatError;
}

TEST(DoctorSettings, AreDamagedWhereTheSettingsLibraryRefusesThem)
{
    Patient patient;
    for (const char* const line : {"\"=\"", "\"a\"=5$x", "[=\\]", "[ a", "a=5$x;b", "a;b=5$x", "#=", "#", "\\\r\n=",
                                   "\\\n\r=", "\\\n\n=", "a=\"5$x", "\xEF\xBB\xBF", "=", "]", " ;x", "a\rb=5$x"}) {
        SCOPED_TRACE(line);
        patient.settings(std::string("[Group]\nfirst=5$x\n") + line + "\n");
        const bool isRefused = isRefusedBySettingsLibrary(patient.settingsFile());
        const ProcessResult result = patient.run({"doctor"});
        EXPECT_EQ(result.out.find("settings.damaged") != std::string::npos, isRefused) << result.out;
    }
}

TEST(DoctorSettings, ThatAreSmallEnoughAreNotHuge)
{
    Patient patient;
    constexpr std::size_t kMost = 16 * 1024 * 1024;
    const std::string begin = "[General]\na=5$";
    patient.settings(begin + std::string(kMost - begin.size() - 1, 'x') + "\n");
    patient.look(kDone);
    appendToFile(patient.settingsFile(), ";");
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"settings.huge"});
    patient.expectFound("settings.huge", {"warning", "/VORNA.conf", "16 MiB"});
}

TEST(DoctorSettings, WithALockLeftBehindAreAWarningAndItStays)
{
    Patient patient;
    patient.settings("[General]\na=5$x\n");
    appendToFile(patient.lock(), "999999999\nVorna\n" + hostName() + "\nid\nid\n");
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"settings.lock"});
    patient.expectFound("settings.lock",
                        {"warning", "/VORNA.conf.lock", "process 999999999 (Vorna) on host " + hostName()});
    EXPECT_TRUE(fs::exists(patient.lock()));
}

TEST(DoctorSettings, WithALockOfALivingProcessAreInOrder)
{
    Patient patient;
    const std::string own = fs::read_symlink("/proc/self/exe").filename();
    appendToFile(patient.lock(), std::to_string(getpid()) + "\n" + own + "\n" + hostName() + "\n\n\n");
    patient.look(kDone);
    patient.expectFound("settings.lock", {"note", "/VORNA.conf.lock", "which lives"});
}

TEST(DoctorSettings, WithALockWhoseNumberAnotherProgramHasAreAWarning)
{
    Patient patient;
    appendToFile(patient.lock(), std::to_string(getpid()) + "\nVorna\n" + hostName() + "\n\n\n");
    patient.look(kWarnings);
    patient.expectFound("settings.lock", {"warning", "/VORNA.conf.lock", "does not live any more"});
}

TEST(DoctorSettings, WithALockOfAnotherHostOrOfNobodyAreAWarning)
{
    Patient patient;
    appendToFile(patient.lock(), std::to_string(getpid()) + "\nVorna\nelsewhere\n\n\n");
    patient.look(kWarnings);
    patient.expectFound("settings.lock", {"warning", "/VORNA.conf.lock", "cannot be told from this host"});
    for (const char* const content : {"x", "x\ny\nz\n", "-1\ny\n"}) {
        fs::remove(patient.lock());
        appendToFile(patient.lock(), content);
        patient.look(kWarnings);
        patient.expectFound("settings.lock", {"warning", "/VORNA.conf.lock", "does not tell whose it is"});
    }
}

TEST(DoctorSettings, WithALockThatIsNoFileDoNotKeepItWaiting)
{
    Patient patient;
    fs::create_directories(patient.lock());
    patient.look(kErrors);
    patient.expectFound("settings.lock", {"error", "/VORNA.conf.lock", "nothing is saved"});
    fs::remove(patient.lock());
    ASSERT_EQ(mkfifo(patient.lock().c_str(), 0644), 0);
    patient.look(kWarnings);
    patient.expectFound("settings.lock", {"warning", "/VORNA.conf.lock", "does not tell whose it is"});
}

TEST(DoctorSettings, WithLeftoversOfInterruptedSavesAreANote)
{
    Patient patient;
    for (const char* const name : {".aBcDeF", ".aBcDe1", ".aBcDeFg", ".old"})
        appendToFile(patient.settingsFile().string() + name, "x");
    patient.look(kDone);
    EXPECT_EQ(patient.ids().count("settings.leftover"), 1U);
    patient.expectFound("settings.leftover", {"note", "/VORNA.conf.aBcDeF", "interrupted"});
}

TEST(DoctorSettings, WithMoreThanTenBackupsAreANote)
{
    Patient patient;
    for (int i = 0; i < 10; ++i)
        appendToFile(patient.settingsFile().string() + ".20260101-00000" + std::to_string(i) + ".bak", "1234");
    patient.look(kDone);
    patient.expectNotFound("settings.backups");
    appendToFile(patient.settingsFile().string() + ".20260102-000000.bak", "1234");
    patient.look(kDone);
    patient.expectFound("settings.backups", {"note", "/VORNA.conf", "11 backups of it take 44 bytes"});
}

TEST(DoctorSettings, OfTheMachineInEffectAreANote)
{
    Patient patient;
    const fs::path machine = patient.root() / "etc";
    const Environment environment{{"XDG_CONFIG_DIRS", machine}};
    patient.look(kDone, {}, environment);
    patient.expectNotFound("defaults.in-effect");
    appendToFile(machine / "HALVIK/VORNA/2026/VORNA.conf", "[General]\na=5$x\n");
    appendToFile(machine / "HALVIK/VORNA/2026.conf", "[General]\na=5$x\n");
    appendToFile(patient.home() / ".config/HALVIK/VORNA/2026.conf", "[General]\na=5$x\n");
    patient.look(kDone, {}, environment);
    EXPECT_EQ(patient.ids().count("defaults.in-effect"), 3U);
    patient.expectFound("defaults.in-effect", {"note", "/etc/HALVIK/VORNA/2026/VORNA.conf", "in effect"});
    patient.expectFound("defaults.in-effect", {"note", "/etc/HALVIK/VORNA/2026.conf", "in effect"});
    patient.expectFound("defaults.in-effect", {"note", "/.config/HALVIK/VORNA/2026.conf", "in effect"});
}

TEST(DoctorSettings, OfAllReleasesThatCannotBeReadAreAWarning)
{
    Patient patient;
    const fs::path file = patient.home() / ".config/HALVIK/VORNA/2026.conf";
    appendToFile(file, "[General]\na=5$x\n");
    patient.giveToNobody();
    fs::permissions(file, fs::perms::none);
    patient.lookAsNobody(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"defaults.unreadable"});
    patient.expectFound("defaults.unreadable", {"warning", "/.config/HALVIK/VORNA/2026.conf", "not in effect"});
}

} // namespace
