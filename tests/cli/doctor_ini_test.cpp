#include "doctor_patient.h"

using namespace clitest;

namespace
{

constexpr char kLocales[] = "[LocaleIdLangName]\n1031=de-DE\n1033=en-US\n1036=fr-FR\n1040=xx-YY\n";

TEST(DoctorIni, MissingIsAWarningAndTheStartAsks)
{
    Patient patient;
    fs::remove(patient.in("VORNA.ini"));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), (Complaints{"ini.missing", "start.asks"}));
    patient.expectFound("ini.missing", {"warning", "/VORNA.ini", "is not there"});
    patient.expectFound("start.asks", {"warning", "start", "continue with English"});
}

TEST(DoctorIni, ThatIsNoFileIsAnError)
{
    Patient patient;
    fs::remove(patient.in("VORNA.ini"));
    fs::create_directory(patient.in("VORNA.ini"));
    patient.look(kErrors);
    patient.expectFound("ini.not-a-file", {"error", "/VORNA.ini", "is a directory"});
    fs::remove(patient.in("VORNA.ini"));
    ASSERT_EQ(mkfifo(patient.in("VORNA.ini").c_str(), 0644), 0);
    patient.look(kErrors);
    patient.expectFound("ini.not-a-file", {"error", "/VORNA.ini", "is no plain file"});
}

TEST(DoctorIni, ThatIsALinkToNothingOrInACircleIsAnError)
{
    Patient patient;
    fs::remove(patient.in("VORNA.ini"));
    for (const char* const target : {"nowhere", "VORNA.ini"}) {
        fs::create_symlink(target, patient.in("VORNA.ini"));
        patient.look(kErrors);
        patient.expectFound("ini.dangling-link", {"error", "/VORNA.ini", "is a link to nothing"});
        fs::remove(patient.in("VORNA.ini"));
    }
}

TEST(DoctorIni, ThatCannotBeReadIsAnError)
{
    Patient patient;
    patient.giveToNobody();
    fs::permissions(patient.in("VORNA.ini"), fs::perms::none);
    fs::permissions(patient.in("product.ini"), fs::perms::none);
    patient.lookAsNobody(kErrors);
    patient.expectFound("ini.unreadable", {"error", "/VORNA.ini", "cannot be read by this user"});
    patient.expectFound("ini.unreadable", {"error", "/product.ini", "prefix"});
    patient.expectNotFound("ini.no-command-prefix");
    patient.expectNotFound("ini.no-locale-id");
}

TEST(DoctorIni, OfMoreThanSixtyFourMebibytesIsAnError)
{
    Patient patient;
    constexpr std::uintmax_t kMost = 64 * 1024 * 1024;
    fs::resize_file(patient.in("product.ini"), kMost + 1);
    patient.look(kErrors);
    patient.expectFound("ini.too-big", {"error", "/product.ini", "64 MiB"});
    fs::resize_file(patient.in("product.ini"), kMost);
    patient.look(kWarnings);
    patient.expectNotFound("ini.too-big");
}

TEST(DoctorIni, ThatCannotBeDecodedIsAWarning)
{
    Patient patient;
    const std::string content = std::string("[Product]\nLocaleId=1033\n") + kLocales;
    for (const std::string& bytes : {content + ";\xE4\n", content + std::string(1, '\0'), "\xFF\xFE" + content + "x"}) {
        patient.write("VORNA.ini", bytes.size() % 2 == 0 && bytes[0] == '\xFF' ? bytes + "x" : bytes);
        patient.look(kWarnings);
        patient.expectFound("ini.encoding", {"warning", "/VORNA.ini", "neither UTF-8 nor"});
    }
}

TEST(DoctorIni, InAKnownEncodingIsInOrder)
{
    Patient patient;
    const std::string content = std::string("[Product]\nLocaleId=1033\n") + kLocales;
    std::string wide = "\xFF\xFE";
    for (const char c : content)
        wide += std::string{c, '\0'};
    for (const std::string& bytes : {content + ";\xC3\xA4\n", "\xEF\xBB\xBF" + content, wide}) {
        patient.write("VORNA.ini", bytes);
        patient.look(kDone);
        patient.expectNotFound("ini.encoding");
    }
}

TEST(DoctorIni, WithoutALocaleIsAWarning)
{
    Patient patient;
    patient.write("VORNA.ini", std::string("[Product]\nCompanyName=HALVIK\n") + kLocales);
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), (Complaints{"ini.no-locale-id", "start.asks"}));
    patient.expectFound("ini.no-locale-id", {"warning", "/VORNA.ini", "LocaleId is not there"});
}

TEST(DoctorIni, WithALocaleThatLeadsToNoLanguageIsAWarning)
{
    Patient patient;
    patient.write("VORNA.ini", std::string("[Product]\nLocaleId=7777\n") + kLocales);
    patient.look(kWarnings);
    patient.expectFound("ini.unknown-locale", {"warning", "/VORNA.ini", "7777"});
    patient.write("VORNA.ini", std::string("[Product]\nLocaleId=1040\n") + kLocales);
    patient.look(kWarnings);
    patient.expectFound("ini.unknown-language", {"warning", "/VORNA.ini", "xx-YY"});
    patient.write("VORNA.ini", std::string("[Product]\nLocaleId=1036\n") + kLocales);
    patient.look(kWarnings);
    patient.expectFound("ini.language-not-installed", {"warning", "/VORNA.ini", "fr-FR"});
}

TEST(DoctorIni, OfTheReleaseGivesTheCommandPrefix)
{
    Patient patient;
    patient.write("product.ini", "[Product]\nMajorVer=26\n");
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"ini.no-command-prefix"});
    patient.expectFound("ini.no-command-prefix", {"warning", "/product.ini", "ProductId"});
    patient.write("product.ini", "[Product]\nMajorVer=-1\nProductId=1\n");
    patient.look(kWarnings);
    patient.expectFound("ini.no-command-prefix", {"warning", "/product.ini", "MajorVer"});
    fs::remove(patient.in("product.ini"));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), Complaints{"ini.missing"});
}

TEST(DoctorIni, OfTheExecutableWithoutAPrefixIsANote)
{
    Patient patient;
    patient.look(kDone);
    patient.expectNotFound("ini.no-prefix");
    patient.write("vruinfo.ini", "[Product]\n");
    patient.look(kDone);
    patient.expectFound("ini.no-prefix", {"note", "/vruinfo.ini", "\"Vr\""});
    fs::remove(patient.in("vruinfo.ini"));
    patient.look(kDone);
    patient.expectFound("ini.no-prefix", {"note", "/vruinfo.ini", "\"Vr\""});
}

} // namespace
