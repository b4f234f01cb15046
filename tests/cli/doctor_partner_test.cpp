// What the doctor says of a partner's library.
#include "doctor_patient.h"
#include "small_library.h"

using namespace clitest;

namespace
{

const fs::path kSample = fs::path(TOOL_RESOURCES) / "partner/VrCustomRes.so";
const std::string kPlace = "en-US/VrCustomRes.so";

using Texts = std::map<unsigned int, std::string>;

class Brand : public Patient
{
public:
    Brand() { write("VORNA.ini", kIni + "[PartnerOEM]\nMergeTitle=1\n"); }

    /// A library without an icon, looked at.
    void lookAt(const Texts& texts)
    {
        vrtest::buildLibrary(in(kPlace), vrtest::resourceSource(texts));
        look(kWarnings);
    }
    void install(const std::string& place) const { fs::copy_file(kSample, in(place)); }

    static inline const std::string kIni = "[Product]\nLocaleId=1033\n[LocaleIdLangName]\n1033=en-US\n";
};

const Texts kNames = {{4091, "Company"}, {4092, "Product"}, {4095, "Company Ltd."}};

Texts namesAnd(const Texts& more)
{
    Texts all = more;
    all.insert(kNames.begin(), kNames.end());
    return all;
}

TEST(DoctorBrand, NamesEachNameThatItLacks)
{
    Brand brand;
    brand.lookAt({{4091, "Company"}, {4092, "Product"}});
    brand.expectFound("partner.strings-missing", {"warning", kPlace, "lacks the texts 4095 (full legal name), so"});
    brand.lookAt({{4091, "Company"}, {4095, "Company Ltd."}});
    brand.expectFound("partner.strings-missing", {"warning", kPlace, "lacks the texts 4092 (product), so"});
    brand.lookAt({{4092, "Product"}, {4095, "Company Ltd."}});
    brand.expectFound("partner.strings-missing", {"warning", kPlace, "lacks the texts 4091 (company), so"});
    brand.lookAt({{1103, "Unknown"}});
    brand.expectFound("partner.strings-missing",
                      {"warning", kPlace, "4091, 4092, 4095 (company, product, full legal name), so"});
}

TEST(DoctorBrand, NameThatIsEmptyIsLacking)
{
    Brand brand;
    brand.lookAt({{4091, "Company"}, {4092, ""}, {4095, "Company Ltd."}});
    brand.expectFound("partner.strings-missing", {"warning", kPlace, "lacks the texts 4092 (product), so"});
}

TEST(DoctorBrand, NamesTheIconThatItLacks)
{
    Brand brand;
    brand.lookAt(kNames);
    EXPECT_EQ(brand.complaints(), Complaints{"partner.no-icon"});
    brand.expectFound("partner.no-icon",
                      {"warning", kPlace, ":/VrCustomRes/VrCustomRes/IDI_VORNA_OEM_APPLICATION_EXE"});
}

TEST(DoctorBrand, NameThatIsTooLongIsAWarning)
{
    Brand brand;
    brand.lookAt({{4091, std::string(1022, 'c')}, {4092, std::string(1023, 'p')}, {4095, std::string(1022, 'l')}});
    EXPECT_EQ(brand.complaints(), (Complaints{"partner.text-too-long", "partner.no-icon"}));
    EXPECT_EQ(brand.ids().count("partner.text-too-long"), 1U);
    brand.expectFound("partner.text-too-long", {"warning", kPlace, "text 4092 has 1023 characters, of which 1022"});
}

TEST(DoctorBrand, OtherTextThatIsTooLongIsAWarning)
{
    Brand brand;
    brand.lookAt(namesAnd({{1103, std::string(1023, 'u')}, {5001, std::string(1023, 'a')}}));
    EXPECT_EQ(brand.complaints(), Complaints{"partner.no-icon"});
    brand.lookAt(namesAnd({{1103, std::string(1024, 'u')}, {5001, std::string(5000, 'a')}}));
    EXPECT_EQ(brand.complaints(), (Complaints{"partner.text-too-long", "partner.no-icon"}));
    brand.expectFound("partner.text-too-long", {"warning", kPlace, "text 1103 has 1024 characters, of which 1023"});
    brand.expectFound("partner.text-too-long", {"warning", kPlace, "text 5001 has 5000 characters, of which 1023"});
}

TEST(DoctorBrand, TextInThePlaceOfOneOfTheProductsIsNoFault)
{
    Brand brand;
    brand.lookAt(namesAnd({{1001, "Czech"}, {1015, "Chinese"}, {1103, "Unknown"}}));
    EXPECT_EQ(brand.complaints(), Complaints{"partner.no-icon"});
    brand.expectNotFound("partner.own-strings");
}

TEST(DoctorBrand, TextThatNothingOfTheProductReadsIsANote)
{
    Brand brand;
    brand.lookAt(namesAnd({{1000, "a"}, {1016, "b"}, {4093, "c"}, {4094, "d"}, {65535, "e"}}));
    EXPECT_EQ(brand.complaints(), Complaints{"partner.no-icon"});
    brand.expectFound("partner.own-strings", {"note", kPlace, "texts of its own (1000, 1016, 4093 to 4094, 65535)"});
}

TEST(DoctorBrand, ThatIsWholeHasNoComplaint)
{
    Brand brand;
    brand.install(kPlace);
    brand.look(kDone);
    EXPECT_EQ(brand.complaints(), Complaints{});
    brand.expectFound("partner.own-strings", {"note", kPlace, "texts of its own (5001 to 5004)"});
    brand.expectNotFound("partner.no-merge-title");
    brand.expectNotFound("partner.not-used");
}

TEST(DoctorBrand, WithoutAWordAboutTitlesIsANote)
{
    Brand brand;
    brand.install(kPlace);
    brand.write("VORNA.ini", Brand::kIni);
    brand.look(kDone);
    brand.expectFound("partner.no-merge-title", {"note", "/VORNA.ini", "[PartnerOEM] MergeTitle is not there"});
    brand.write("VORNA.ini", Brand::kIni + "[PartnerOEM]\nMergeTitle=0\n");
    brand.look(kDone);
    brand.expectNotFound("partner.no-merge-title");
}

TEST(DoctorBrand, ThatIsNoneNeedsNoWordAboutTitles)
{
    Patient patient;
    patient.look(kDone);
    EXPECT_EQ(patient.complaints(), Complaints{});
    patient.expectNotFound("partner.no-merge-title");
}

TEST(DoctorBrand, BesideTheLanguageIsNotUsedWhereTheProfileNamesAnother)
{
    Brand brand;
    brand.install(kPlace);
    brand.install("Brand.so");
    const std::string value = "@profile/CommonSettings/CustomResFile";
    ASSERT_EQ(brand.run({"set", value, brand.in("Brand.so")}).exitCode, kDone);
    brand.look(kDone);
    brand.expectFound("partner.not-used", {"note", kPlace, "The profile names another library, "});
    ASSERT_EQ(brand.run({"set", value, brand.in("./" + kPlace)}).exitCode, kDone);
    brand.look(kDone);
    brand.expectNotFound("partner.not-used");
    ASSERT_EQ(brand.run({"rm", value}).exitCode, kDone);
    brand.look(kDone);
    brand.expectNotFound("partner.not-used");
}

TEST(DoctorLanguageTexts, ThatAreTooLongAreAWarning)
{
    Patient patient;
    Texts texts = namesAnd({{1103, std::string(63, 'u')}});
    for (unsigned int id = 1001; id <= 1015; ++id)
        texts[id] = std::string(62, 'n');
    const std::string place = "de-DE/libVrUInfoRes.so";
    fs::remove(patient.in(place));
    vrtest::buildLibrary(patient.in(place), vrtest::resourceSource(texts));
    patient.look(kWarnings);
    EXPECT_EQ(patient.complaints(), (Complaints{"language.library-text-too-long", "language.library-no-icon"}));
    EXPECT_EQ(patient.ids().count("language.library-text-too-long"), 1U);
    patient.expectFound("language.library-text-too-long",
                        {"warning", place, "text 1103 has 63 characters, of which 62"});
}

} // namespace
