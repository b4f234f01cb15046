#include "doctor_patient.h"

using namespace clitest;

namespace
{

void copyLibrary(const fs::path& from, const Patient& patient, const std::string& language)
{
    fs::create_directories(patient.in(language + "/Help"));
    patient.write(language + "/Help/VrHelp.pdf", "%PDF");
    fs::copy_file(from, patient.in(language + "/libVrUInfoRes.so"));
}

TEST(DoctorLanguage, ThatDoesNotCountAsInstalledIsAWarningWithTheReason)
{
    Patient patient;
    fs::create_directories(patient.in("cs-CZ"));
    patient.write("fr-FR", "a file");
    fs::create_symlink("nowhere", patient.in("it-IT"));
    ASSERT_EQ(mkfifo(patient.in("ja-JP").c_str(), 0644), 0);
    patient.look(kWarnings);
    patient.expectFound("language.no-library", {"warning", "/cs-CZ", "no *.so"});
    patient.expectFound("language.not-a-folder", {"warning", "/fr-FR", "is no folder"});
    patient.expectFound("language.dangling-link", {"warning", "/it-IT", "link to nothing"});
    patient.expectFound("language.not-a-folder", {"warning", "/ja-JP", "is no folder"});
    EXPECT_EQ(patient.complaints(),
              (Complaints{"language.no-library", "language.not-a-folder", "language.dangling-link"}));
}

TEST(DoctorLanguage, ThatCannotBeReadIsAWarning)
{
    Patient patient;
    patient.giveToNobody();
    fs::permissions(patient.in("de-DE"), fs::perms::none);
    patient.lookAsNobody(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"language.unreadable"});
    patient.expectFound("language.unreadable", {"warning", "/de-DE", "cannot be read by this user"});
}

TEST(DoctorLanguage, NoneAtAllIsAnError)
{
    Patient patient;
    fs::remove_all(patient.in("en-US"));
    fs::remove_all(patient.in("de-DE"));
    patient.look(kErrors);
    patient.expectFound("language.none", {"error", "/program", "No language is installed"});
    patient.expectFound("start.ends", {"error", "start", "Could't find any installed languages!"});
}

TEST(DoctorLanguage, WithoutItsOwnLibraryIsAnError)
{
    Patient patient;
    patient.write("fr-FR/other.so", "another library");
    patient.write("fr-FR/Help/VrHelp.pdf", "%PDF");
    patient.look(kErrors);
    EXPECT_EQ(patient.complaints(), Complaints{"language.library-missing"});
    patient.expectFound("language.library-missing", {"error", "/fr-FR/libVrUInfoRes.so", "status 5"});
}

TEST(DoctorLanguage, WithALibraryThatCannotBeReadIsAnError)
{
    Patient patient;
    patient.giveToNobody();
    fs::permissions(patient.in("de-DE/libVrUInfoRes.so"), fs::perms::none);
    patient.lookAsNobody(kErrors);
    EXPECT_EQ(patient.complaints(), Complaints{"language.library-unreadable"});
}

TEST(DoctorLanguage, WithALibraryThatDoesNotLoadTellsTheLoadersMessage)
{
    Patient patient;
    patient.write("fr-FR/libVrUInfoRes.so", "no library");
    patient.write("fr-FR/Help/VrHelp.pdf", "%PDF");
    patient.look(kErrors);
    EXPECT_EQ(patient.complaints(), Complaints{"language.library-not-loadable"});
    patient.expectFound("language.library-not-loadable",
                        {"error", "/fr-FR/libVrUInfoRes.so", "libVrUInfoRes.so: file too short"});
}

TEST(DoctorLanguage, WithALibraryThatEndsWhoLoadsItIsAnError)
{
    Patient patient;
    copyLibrary(patient.in("en-US/libVrUInfoRes.so"), patient, "fr-FR");
    fs::resize_file(patient.in("fr-FR/libVrUInfoRes.so"), 5000);
    patient.look(kErrors);
    patient.expectFound("language.library-not-loadable",
                        {"error", "/fr-FR/libVrUInfoRes.so", "Loading it ends the process"});
}

TEST(DoctorLanguage, WithALibraryThatLacksTextsAndIconIsAWarning)
{
    Patient patient;
    copyLibrary(fs::path(TOOL_LIBRARIES) / "libVrOsBase.so", patient, "fr-FR");
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), (Complaints{"language.library-strings-missing", "language.library-no-icon"}));
    patient.expectFound("language.library-strings-missing",
                        {"warning", "/fr-FR/libVrUInfoRes.so", "4091, 4092, 4095, 1001, 1002"});
    patient.expectFound("language.library-no-icon", {"warning", "/fr-FR/libVrUInfoRes.so",
                                                     ":/VrUInfoRes/VrUInfoRes/IDI_VORNA_OEM_APPLICATION_EXE"});
}

TEST(DoctorLanguage, OfThePartnersTextsLacksTheNamesOfTheLanguages)
{
    Patient patient;
    copyLibrary(fs::path(TOOL_RESOURCES) / "partner/VrCustomRes.so", patient, "fr-FR");
    patient.look(kWarnings);
    patient.expectFound(
        "language.library-strings-missing",
        {"warning", "/fr-FR/libVrUInfoRes.so",
         "lacks the texts 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 1011, 1012, 1013, "
         "1014, 1015, 1103,"});
}

TEST(DoctorLanguage, OfThisProductIsInOrderWhicheverItIs)
{
    Patient patient;
    for (const char* const name : {"cs-CZ", "es-ES", "fr-FR", "hu-HU", "it-IT", "ja-JP", "ko-KR", "pl-PL", "pt-PT",
                                   "ru-RU", "tr-TR", "zh-CN", "zh-TW"})
        copyLibrary(fs::path(TOOL_RESOURCES) / name / "libVrUInfoRes.so", patient, name);
    patient.look(kDone);
    EXPECT_EQ(patient.complaints(), Complaints{});
}

TEST(DoctorLanguage, WithoutHelpIsAWarning)
{
    Patient patient;
    fs::remove(patient.in("de-DE/Help/VrHelp.pdf"));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"language.help-missing"});
    patient.expectFound("language.help-missing", {"warning", "/de-DE/Help/VrHelp.pdf", "no help in this language"});
    fs::create_directory(patient.in("de-DE/Help/VrHelp.pdf"));
    patient.look(kWarnings);
    patient.expectFound("language.help-not-a-file", {"warning", "/de-DE/Help/VrHelp.pdf", "is a directory"});
}

TEST(DoctorLanguage, InOtherLettersIsAWarning)
{
    Patient patient;
    fs::create_directory(patient.in("FR-fr"));
    fs::create_directory(patient.in("plugins"));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"language.case"});
    patient.expectFound("language.case", {"warning", "/FR-fr", "fr-FR"});
}

TEST(DoctorLanguage, CannotBeLookedForInADirectoryThatCannotBeListed)
{
    Patient patient;
    patient.giveToNobody();
    fs::permissions(patient.programDir(), fs::perms(0711));
    patient.lookAsNobody(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"program.unreadable"});
}

} // namespace
