#include "doctor_patient.h"

using namespace clitest;

namespace
{

const std::string kVersion = "HALVIK\\VORNA\\2026\\";

TEST(DoctorStart, ThatTakesWhatIsRememberedIsInOrder)
{
    Patient patient;
    patient.settings("[Software]\nHALVIK\\CurProduct=5$VORNA\n" + kVersion + "CurVer=5$de-DE\n");
    patient.look(kDone);
    patient.expectNotFound("identity.passed-over");
    patient.expectNotFound("start.asks");
}

TEST(DoctorStart, TellsWhatIsRememberedAndNotTaken)
{
    Patient patient;
    patient.settings("[Software]\nHALVIK\\CurProduct=5$\n" + kVersion + "CurVer=5$fr-FR\n");
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), (Complaints{"identity.passed-over", "start.asks"}));
    patient.expectFound("identity.passed-over", {"warning", "Software/HALVIK/CurProduct", "it is empty"});
    patient.expectFound("identity.passed-over",
                        {"warning", "Software/HALVIK/VORNA/2026/CurVer", "fr-FR: its folder is missing"});
}

TEST(DoctorStart, TellsOfARememberedLanguageOfAnotherMark)
{
    Patient patient;
    patient.settings("[Software]\n" + kVersion + "CurVer=1$5\n");
    patient.look(kWarnings);
    patient.expectFound("identity.passed-over", {"warning", "2026/CurVer", "its mark is not 5"});
    patient.expectFound("value.wrong-tag", {"warning", "2026/CurVer", "type string here and finds int32"});
}

TEST(DoctorStart, ThatEndsTheProcessIsAnErrorWithItsLastWords)
{
    Patient patient;
    patient.settings("[Software]\n" + kVersion + "CurVer=5$en-US-tooLong\n");
    patient.look(kErrors);
    EXPECT_EQ(patient.complaints(), (Complaints{"start.crashes", "value.too-long"}));
    patient.expectFound("start.crashes", {"error", "start", "signal 6; it says: \"libVrUInfo: a text is too long"});
    patient.expectFound("value.too-long", {"error", "Software/HALVIK/VORNA/2026/CurVer", "more than 7 characters"});
}

TEST(DoctorStart, ThatWaitsForEverIsAnError)
{
    Patient patient;
    const fs::path defaults = patient.home() / ".config/HALVIK/VORNA/2026.conf"; // for all products of that name
    fs::create_directories(defaults.parent_path());
    ASSERT_EQ(mkfifo(defaults.c_str(), 0644), 0);
    patient.look(kErrors);
    EXPECT_EQ(patient.complaints(), (Complaints{"start.hangs", "defaults.not-a-file"}));
    patient.expectFound("start.hangs", {"error", "start", "within 10 seconds"});
}

TEST(DoctorStart, InALanguageWithoutLibraryFails)
{
    Patient patient;
    patient.write("fr-FR/other.so", "another library");
    patient.look(kErrors, {"--language", "fr-FR"});
    patient.expectFound("start.fails", {"error", "start", "status 5: libVrUInfoRes.so of the language fr-FR"});
}

TEST(DoctorStart, WithARememberedProfileThatHoldsNothingIsANote)
{
    Patient patient;
    const std::string profiles = kVersion + "en-US\\Profiles\\";
    patient.settings("[Software]\n" + profiles + "Profiles=5$Work\n");
    patient.look(kDone);
    patient.expectFound("identity.empty-profile", {"note", "en-US/Profiles/Work", "\"Work\""});
    patient.settings("[Software]\n" + profiles + "Profiles=5$Work\n" + profiles + "Work\\a=1$1\n");
    patient.look(kDone);
    patient.expectNotFound("identity.empty-profile");
}

TEST(DoctorPartner, LibraryThatIsConfiguredAndNotThereIsAWarning)
{
    Patient patient;
    const std::string profiles = kVersion + "en-US\\Profiles\\";
    patient.settings("[Software]\n" + profiles + "Profiles=5$Default\n" + profiles +
                     "Default\\CommonSettings\\CustomResFile=5$/nowhere/Brand.so\n");
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"partner.missing"});
    patient.expectFound("partner.missing", {"warning", "/nowhere/Brand.so", "own brand is shown"});
}

TEST(DoctorPartner, LibraryThatIsConfiguredAndDoesNotLoadTellsTheLoadersMessage)
{
    Patient patient;
    patient.write("Brand.so", "no library");
    const std::string profiles = kVersion + "en-US\\Profiles\\";
    for (const std::string& name : {patient.in("Brand.so").string(), std::string("libNoSuchBrand.so")}) {
        patient.settings("[Software]\n" + profiles + "Profiles=5$Default\n" + profiles +
                         "Default\\CommonSettings\\CustomResFile=5$" + name + "\n");
        patient.look(kWarnings);
        EXPECT_EQ(patient.complaints(), Complaints{"partner.not-loadable"});
        patient.expectFound("partner.not-loadable", {"warning", name, "the loader says: " + name + ": "});
    }
}

TEST(DoctorPartner, LibraryBesideALanguageIsLookedAt)
{
    Patient patient;
    patient.write("de-DE/VrCustomRes.so", "no library");
    patient.look(kWarnings);
    patient.expectFound("partner.not-loadable", {"warning", "/de-DE/VrCustomRes.so", "file too short"});
    fs::remove(patient.in("de-DE/VrCustomRes.so"));
    fs::copy_file(fs::path(TOOL_LIBRARIES) / "libVrOsBase.so", patient.in("de-DE/VrCustomRes.so"));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), (Complaints{"partner.strings-missing", "partner.no-icon"}));
    patient.expectFound("partner.strings-missing", {"warning", "/de-DE/VrCustomRes.so", "4091, 4092, 4095"});
}

TEST(DoctorPartner, LibraryOfAWholeBrandIsInOrder)
{
    Patient patient;
    for (const char* const language : {"de-DE", "en-US"})
        fs::copy_file(fs::path(TOOL_RESOURCES) / "partner/VrCustomRes.so",
                      patient.in(std::string(language) + "/VrCustomRes.so"));
    patient.look(kDone);
    EXPECT_EQ(patient.complaints(), Complaints{});
}

} // namespace
