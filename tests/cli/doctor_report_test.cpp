#include "doctor_patient.h"

using namespace clitest;

namespace
{

TEST(DoctorReport, OfAGoodInstallationHasNotesOnlyAndCodeZero)
{
    Patient patient;
    patient.look(kDone);
    EXPECT_EQ(patient.worst(), "note");
    EXPECT_EQ(patient.complaints(), Complaints{});
    patient.expectFound("settings.missing", {"note", "VORNA.conf", "first one"});
    patient.expectFound("products.not-listed", {"note", "VR2D.conf", "VORNA 2026"});
}

TEST(DoctorReport, SaysWhenNothingAtAllIsToBeTold)
{
    Patient patient;
    patient.giveToNobody();
    patient.settings("[General]\na=5$x\n");
    patient.products("[InstalledProducts]\n1=E\n[E]\nProduct=VORNA\nVersion=2026\nLanguage=en-US\nLocation=" +
                     patient.programDir().string() + "\n");
    patient.look(kDone);
    EXPECT_EQ(patient.worst(), "none") << patient.reportText();
    const std::string words = answerOf(patient.run({"doctor"}));
    EXPECT_EQ(words, "Installation: " + patient.programDir().string() +
                         "\nSettings:     " + patient.settingsFile().string() + "\n\neverything is in order\n");
}

TEST(DoctorReport, NamesInstallationAndSettingsFile)
{
    const Patient patient;
    const QJsonObject report = patient.object({"doctor"});
    EXPECT_EQ(Patient::textIn(report, "installation"), patient.programDir().string());
    EXPECT_EQ(Patient::textIn(report, "settingsFile"), patient.settingsFile().string());
}

TEST(DoctorReport, NamesTheSettingsFileThatTheToolUses)
{
    const Patient patient;
    patient.write("VORNA.ini", "[Product]\nCompanyName=Änder & Co\nProductName=VORNAM\nVersion=2027\nLocaleId=1033\n"
                               "[LocaleIdLangName]\n1033=en-US\n");
    for (const Arguments& options :
         {Arguments{}, Arguments{"--company", "C"}, Arguments{"--product=", "--company=Ü"}}) {
        Arguments doctor{"doctor"};
        Arguments paths{"paths"};
        doctor.insert(doctor.end(), options.begin(), options.end());
        paths.insert(paths.end(), options.begin(), options.end());
        EXPECT_EQ(patient.object(doctor).value(QStringLiteral("settingsFile")),
                  patient.array(paths).at(0).toObject().value(QStringLiteral("path")));
    }
}

TEST(DoctorReport, TellsTheWorstFirstWithinAGroupAndCountsAll)
{
    const Patient patient;
    fs::create_directories(patient.in("cs-CZ"));
    patient.write("it-IT/libVrUInfoRes.so", "none");
    patient.write("it-IT/Help/VrHelp.pdf", "%PDF");
    const ProcessResult result = patient.run({"doctor"});
    EXPECT_EQ(result.exitCode, kErrors);
    EXPECT_EQ(result.err, "");
    const std::size_t error =
        result.out.find("error    language.library-not-loadable: " + patient.in("it-IT").string());
    const std::size_t warning = result.out.find("warning  language.no-library: " + patient.in("cs-CZ").string() + "\n");
    EXPECT_LT(result.out.find("\nLanguages\n"), error) << result.out;
    EXPECT_LT(error, warning) << result.out;
    EXPECT_NE(warning, std::string::npos) << result.out;
    expectContains(result.out, "\n         Remedy: ");
    expectContains(result.out, "\n1 error, 1 warning, ");
}

TEST(DoctorReport, CountsInOneAndMany)
{
    const Patient patient;
    const std::string words = patient.run({"doctor"}).out;
    expectContains(words, " notes\n");
    fs::remove_all(patient.in("de-DE/Help"));
    expectContains(patient.run({"doctor"}).out, "\n1 warning, ");
    fs::remove_all(patient.in("en-US/Help"));
    expectContains(patient.run({"doctor"}).out, "\n2 warnings, ");
}

TEST(DoctorReport, HasColourOnATerminalOnly)
{
    const Patient patient;
    fs::create_directories(patient.in("cs-CZ"));
    const std::string onTerminal =
        patient.runShell("TERM=xterm NO_COLOR= script -qec 'vruinfo doctor' /dev/null </dev/null").out;
    expectContains(onTerminal, "\033[33mwarning  language.no-library: ");
    EXPECT_EQ(patient.run({"doctor"}).out.find('\033'), std::string::npos);
    EXPECT_EQ(patient.runShell("NO_COLOR=1 script -qec 'vruinfo doctor' /dev/null </dev/null").out.find("\033[33m"),
              std::string::npos);
}

TEST(DoctorReport, StaysATextInLines)
{
    const Patient patient;
    patient.settings("[General]\na\\x1b\\nb=1$\\x1b[31mx\\ny\n");
    const ProcessResult result = patient.run({"doctor"});
    EXPECT_EQ(result.exitCode, kWarnings);
    EXPECT_EQ(result.out.find('\033'), std::string::npos) << result.out;
}

TEST(DoctorReport, FollowsTheIdentityOptions)
{
    Patient patient;
    patient.look(kErrors, {"--language", "xx-YY"});
    patient.expectFound("start.ends", {"error", "start", "exit code 1; it says: \"The input initial language name"});
    patient.look(kErrors, {"--company", std::string(255, 'c')});
    patient.expectFound("start.fails", {"error", "start", "status 7"});
    patient.look(kErrors, {"--profile", "a/b"});
    patient.expectFound("start.fails", {"error", "start", "status 8"});
}

TEST(DoctorReport, TakesNoArguments)
{
    const Patient patient;
    EXPECT_EQ(patient.run({"doctor", "--heal"}).exitCode, kMisuse);
    EXPECT_EQ(patient.run({"doctor", "all"}).exitCode, kMisuse);
}

} // namespace
