#include "doctor_patient.h"

using namespace clitest;

namespace
{

struct Case {
    const char* line;
    const char* id;
    const char* words;
};

constexpr Case kFaults[] = {
    {"v=1$abc", "value.no-number", "\"abc\" is no whole number"},
    {"v=1$", "value.no-number", "\"\" is no whole number"},
    {"v=2$12x", "value.no-number", "\"12x\" is no whole number"},
    {"v=1$2147483648", "value.out-of-range", "does not fit int32"},
    {"v=1$-2147483649", "value.out-of-range", "does not fit int32"},
    {"v=2$9223372036854775808", "value.out-of-range", "does not fit int64"},
    {"v=2$-9223372036854775809", "value.out-of-range", "does not fit int64"},
    {"v=3$000000000000f03", "value.no-double", "16 hexadecimal digits"},
    {"v=3$000000000000f03f0", "value.no-double", "16 hexadecimal digits"},
    {"v=3$000000000000g03f", "value.no-double", "16 hexadecimal digits"},
    {"v=4$abc", "value.no-binary", "even number"},
    {"v=4$zz", "value.no-binary", "even number"},
    {"v=0$x", "value.unknown-tag", "\"0\""},
    {"v=6$x", "value.unknown-tag", "\"6\""},
    {"v=9$x", "value.unknown-tag", "\"9\""},
    {"v=a$b", "value.unknown-tag", "\"a\""},
    {"v=@Invalid()", "value.invalid", "counts as absent"},
    {"v=@Variant(\\0\\0\\0\\x2\\0\\0\\0\\x5)", "value.no-text", "own type int"},
    {"v=5$a, b", "value.no-text", "it is a list"},
    {"x%5Cv=5$a", "value.unreachable", "backslash"},
};

constexpr const char* kGood[] = {"v=1$2147483647",
                                 "v=1$-2147483648",
                                 "v=2$9223372036854775807",
                                 "v=2$-9223372036854775808",
                                 "v=3$000000000000F03f",
                                 "v=4$",
                                 "v=4$00ffAB",
                                 "v=5$",
                                 "v=5$x",
                                 "v=\"5$a, b\"",
                                 "v=free text",
                                 "v=12$5",
                                 "v=$",
                                 "v="};

TEST(DoctorValue, ThatCannotBeReadIsAWarning)
{
    Patient patient;
    for (const Case& fault : kFaults) {
        SCOPED_TRACE(fault.line);
        patient.settings(std::string("[General]\n") + fault.line + "\n");
        patient.look(kWarnings);
        EXPECT_EQ(patient.complaints(), Complaints{fault.id});
        patient.expectFound(fault.id, {"warning", "v", fault.words});
    }
}

TEST(DoctorValue, ThatCanBeReadIsInOrder)
{
    Patient patient;
    for (const char* const line : kGood) {
        SCOPED_TRACE(line);
        patient.settings(std::string("[General]\n") + line + "\n");
        patient.look(kDone);
        EXPECT_EQ(patient.complaints(), Complaints{});
    }
}

TEST(DoctorValue, WhoseTypeTheLibraryDoesNotExpectIsAWarning)
{
    const std::string version = "HALVIK\\VORNA\\2026\\en-US\\";
    const std::pair<std::string, std::string> kCases[] = {
        {"Other\\CurProduct=1$1", "Other/CurProduct"},
        {"HALVIK\\Other\\2026\\CurVer=2$1", "2026/CurVer"},
        {"HALVIK\\CurVer=2$1", "HALVIK/CurVer"},
        {version + "AutoMigrate=5$1", "AutoMigrate"},
        {version + "Profiles\\Profiles=4$00", "Profiles/Profiles"},
        {version + "Settings\\UserConfig\\Config\\UIStyle=1$1", "Config/UIStyle"},
        {version + "Profiles\\Work\\CommonSettings\\CustomResFile=1$1", "CommonSettings/CustomResFile"}};
    Patient patient;
    for (const auto& [line, path] : kCases) {
        SCOPED_TRACE(line);
        patient.settings("[Software]\n" + line + "\n");
        patient.look(kWarnings);
        EXPECT_EQ(patient.complaints(), Complaints{"value.wrong-tag"});
        patient.expectFound("value.wrong-tag", {"warning", path, "the library expects type"});
    }
}

TEST(DoctorValue, OfThatNameElsewhereMayHaveAnyType)
{
    Patient patient;
    patient.settings("[General]\nCurProduct=1$1\n[Software]\nA\\B\\CurProduct=1$1\nA\\B\\C\\AutoMigrate=5$1\n");
    patient.look(kDone);
    EXPECT_EQ(patient.complaints(), Complaints{});
}

TEST(DoctorValue, OfANameThatEndsTheProcessIsAnErrorFromTheFirstCharacterTooMany)
{
    Patient patient;
    patient.settings("[Software]\nOther\\CurProduct=5$" + std::string(255, 'p') +
                     "\nOther\\P\\2026\\CurVer=5$1234567\n");
    patient.look(kDone);
    patient.settings("[Software]\nOther\\CurProduct=5$" + std::string(256, 'p') + "\n");
    patient.look(kErrors);
    patient.expectFound("value.too-long", {"error", "Software/Other/CurProduct", "more than 255 characters"});
    patient.settings("[Software]\nOther\\P\\2026\\CurVer=5$12345678\n");
    patient.look(kErrors);
    patient.expectFound("value.too-long", {"error", "2026/CurVer", "more than 7 characters"});
}

TEST(DoctorValue, AtAPathThatNothingReachesIsAWarning)
{
    Patient patient;
    const auto lineOf = [](std::size_t length) {
        return std::string(length - 600, 'a') + "\\" + std::string(599, 'b') + "=5$x\n";
    };
    patient.settings("[General]\n" + lineOf(1022));
    patient.look(kDone);
    patient.settings("[General]\n" + lineOf(1023));
    patient.look(kWarnings);
    patient.expectFound("value.unreachable", {"warning", "b", "more than 1022 characters"});
    patient.settings("[Group]\n=5$x\n");
    patient.look(kWarnings);
    patient.expectFound("value.unreachable", {"warning", "Group/", "empty name"});
}

TEST(DoctorValue, OfAKindThatStandsThereOftenIsCountedOnly)
{
    Patient patient;
    std::string lines = "[General]\n";
    for (int i = 0; i < 20; ++i)
        lines += "a" + std::to_string(i) + "=1$x\n";
    patient.settings(lines);
    patient.look(kWarnings);
    EXPECT_EQ(patient.ids().count("value.no-number"), 20U);
    patient.settings(lines + "b=1$x\nc=1$x\n");
    patient.look(kWarnings);
    EXPECT_EQ(patient.ids().count("value.no-number"), 21U);
    patient.expectFound("value.no-number", {"warning", "/VORNA.conf", "2 more values"});
}

} // namespace
