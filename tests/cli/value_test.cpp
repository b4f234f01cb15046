#include <gtest/gtest.h>

#include <QJsonDocument>

#include "installation.h"

using namespace clitest;

namespace
{

/// A value on its way through the store.
struct RoundTrip {
    const char* rule;
    const char* type;
    const char* given;
    const char* inFile; ///< Payload of the text in the settings file, with its tag.
    const char* read;   ///< What `get --type` of this type prints.
    const char* listed; ///< Type and value as `list` has them.
};

void PrintTo(const RoundTrip& trip, std::ostream* out)
{
    *out << trip.rule;
}

// clang-format off
const RoundTrip kRoundTrips[] = {
    {"Int32Zero", "int32", "0", "1$0", "0", "int32   V = 0"},
    {"Int32Negative", "int32", "-5", "1$-5", "-5", "int32   V = -5"},
    {"Int32Largest", "int32", "2147483647", "1$2147483647", "2147483647", "int32   V = 2147483647"},
    {"Int32Smallest", "int32", "-2147483648", "1$-2147483648", "-2147483648", "int32   V = -2147483648"},
    {"Int64Negative", "int64", "-1", "2$-1", "-1", "int64   V = -1"},
    {"Int64Largest", "int64", "9223372036854775807", "2$9223372036854775807", "9223372036854775807",
     "int64   V = 9223372036854775807"},
    {"Int64Smallest", "int64", "-9223372036854775808", "2$-9223372036854775808", "-9223372036854775808",
     "int64   V = -9223372036854775808"},
    {"DoubleHalf", "double", "0.5", "3$000000000000e03f", "0.5", "double  V = 0.5"},
    {"DoubleNegative", "double", "-1.5e-3", "3$fa7e6abc749358bf", "-0.0015", "double  V = -0.0015"},
    {"DoubleNegativeWithoutLeadingDigit", "double", "-.5", "3$000000000000e0bf", "-0.5", "double  V = -0.5"},
    {"DoubleShortestForm", "double", "0.1", "3$9a9999999999b93f", "0.1", "double  V = 0.1"},
    {"DoubleLargest", "double", "1.7976931348623157e308", "3$ffffffffffffef7f", "1.7976931348623157e+308",
     "double  V = 1.7976931348623157e+308"},
    {"DoubleNegativeInfinity", "double", "-inf", "3$000000000000f0ff", "-inf", "double  V = -inf"},
    {"BinaryOneByte", "binary", "7f", "4$7f00000000", "7f00000000", "binary  V = 7f00000000"},
    {"BinaryUpperCaseDigits", "binary", "DEADbeef", "4$deadbeef00000000", "deadbeef00000000", "binary  V = deadbeef00000000"},
    {"BinaryZeroBytes", "binary", "0000", "4$000000000000", "000000000000", "binary  V = 000000000000"},
    {"StringPlain", "string", "hello", "5$hello", "hello", "string  V = \"hello\""},
    {"StringEmpty", "string", "", "5$", "", "string  V = \"\""},
    {"StringBeyondTheBasicPlane", "string", "Grüße 漢字 😀", "5$Grüße 漢字 😀", "Grüße 漢字 😀", "string  V = \"Grüße 漢字 😀\""},
    {"StringWithAByteOrderMark", "string", "\xEF\xBB\xBFx", "5$\xEF\xBB\xBFx", "\xEF\xBB\xBFx", "string  V = \"\xEF\xBB\xBFx\""},
    {"StringThatLooksTyped", "string", "1$7", "5$1$7", "1$7", "string  V = \"1$7\""},
    {"StringWithMarksOfTheFile", "string", "@a, b; [c]=%20\\", "5$@a, b; [c]=%20\\", "@a, b; [c]=%20\\",
     R"(string  V = "@a, b; [c]=%20\\")"},
    {"StringWithControlCharacters", "string", "a\tb\nc\x01\"", "5$a\tb\nc\x01\"", "a\tb\nc\x01\"",
     R"(string  V = "a\tb\nc\x1;\"")"},
    {"StringOfBlanks", "string", "  ", "5$  ", "  ", "string  V = \"  \""},
    {"StringThatIsANegativeNumber", "string", "-12", "5$-12", "-12", "string  V = \"-12\""},
};
// clang-format on

class RoundTripTest : public testing::TestWithParam<RoundTrip>
{
};

TEST_P(RoundTripTest, IsWrittenListedAndReadBack)
{
    const Installation installation;
    const RoundTrip& trip = GetParam();
    const ProcessResult written = installation.run({"set", "@settings/Item/V", trip.given, "--type", trip.type});
    EXPECT_EQ(written.exitCode, kDone) << written.err;
    EXPECT_EQ(written.out.rfind(kSettings + "/Item/V: absent -> " + trip.type, 0), 0U) << written.out;
    EXPECT_EQ(installation.stored(kSettings + "/Item/V"), QString::fromUtf8(trip.inFile));
    expectAnswer(installation.run({"get", "@settings/Item/V", "--type", trip.type}), trip.read);
    expectAnswer(installation.run({"list", "@settings/Item"}), trip.listed);
}

INSTANTIATE_TEST_SUITE_P(Table, RoundTripTest, testing::ValuesIn(kRoundTrips),
                         [](const auto& row) { return std::string(row.param.rule); });

TEST(Set, SaysWhatWasThereBefore)
{
    const Installation installation;
    const std::string path = kSettings + "/V";
    expectAnswer(installation.run({"set", "@settings/V", "1", "--type", "int32"}), path + ": absent -> int32 1");
    expectAnswer(installation.run({"set", "@settings/V", "-2", "--type", "int32"}), path + ": int32 1 -> int32 -2");
    expectAnswer(installation.run({"set", "@settings/V", "two words"}), path + ": int32 -2 -> string \"two words\"");
    expectAnswer(installation.run({"set", "@settings/V", "2.5", "--type=double"}),
                 path + ": string \"two words\" -> double 2.5");
    expectAnswer(installation.run({"set", "@settings/V", "3", "--type=double"}), path + ": double 2.5 -> double 3");
    expectAnswer(installation.run({"set", "@settings/V", "ff", "--type=binary"}),
                 path + ": double 3 -> binary ff00000000");
}

TEST(Set, AnswersInJson)
{
    const Installation installation;
    QJsonObject answer = installation.object({"set", "@settings/V", "1", "--type", "int32"});
    EXPECT_EQ(answer.keys(), (QStringList{QStringLiteral("new"), QStringLiteral("old"), QStringLiteral("path")}));
    EXPECT_TRUE(answer.value(QStringLiteral("old")).isNull());
    EXPECT_EQ(answer.value(QStringLiteral("path")).toString(), QString::fromStdString(kSettings + "/V"));
    const QJsonObject first = answer.value(QStringLiteral("new")).toObject();
    EXPECT_EQ(first, (QJsonObject{{QStringLiteral("type"), QStringLiteral("int32")}, {QStringLiteral("value"), 1}}));
    answer = installation.object({"set", "@settings/V", "x"});
    EXPECT_EQ(answer.value(QStringLiteral("old")).toObject(), first);
    EXPECT_EQ(answer.value(QStringLiteral("new")).toObject().value(QStringLiteral("value")).toString(),
              QStringLiteral("x"));
}

TEST(Set, TakesAnOptionLikeValueBehindTwoDashes)
{
    const Installation installation;
    expectAnswer(installation.run({"set", "--", "@settings/V", "-q"}), kSettings + "/V: absent -> string \"-q\"");
    expectAnswer(installation.run({"set", "@settings/V", "--", "-5"}), kSettings + R"(/V: string "-q" -> string "-5")");
}

TEST(Set, LeavesTheOldValueWhenTheNewOneIsRefused)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@settings/V", "1", "--type", "int32"}).exitCode, kDone);
    const std::string before = readFile(installation.settingsFile());
    EXPECT_EQ(installation.run({"set", "@settings/V", "x", "--type", "int32"}).exitCode, kMisuse);
    EXPECT_EQ(readFile(installation.settingsFile()), before);
}

TEST(Set, BinaryReadAndWrittenAgainIsFourBytesLonger)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@settings/V", "0102", "--type", "binary"}).exitCode, kDone);
    const ProcessResult read = installation.run({"get", "@settings/V"});
    expectAnswer(read, "010200000000");
    EXPECT_EQ(installation.run({"set", "@settings/V", read.out.substr(0, 12), "--type", "binary"}).exitCode, kDone);
    expectAnswer(installation.run({"get", "@settings/V"}), "01020000000000000000");
}

TEST(Set, TakesNamesOfAnyScript)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@settings/Ordner 漢/Wert 😀", "ß"}).exitCode, kDone);
    EXPECT_EQ(installation.stored(kSettings + "/Ordner 漢/Wert 😀"), QStringLiteral("5$ß"));
    expectAnswer(installation.run({"get", "@settings/Ordner 漢/Wert 😀"}), "ß");
    expectAnswer(installation.run({"list", "@settings"}), "item    Ordner 漢/");
}

TEST(Set, TakesBackslashesAsSeparators)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@settings\\Item\\V", "x"}).exitCode, kDone);
    EXPECT_EQ(installation.stored(kSettings + "/Item/V"), QStringLiteral("5$x"));
    expectAnswer(installation.run({"get", "/" + kSettings + "\\Item/V"}), "x");
}

TEST(Set, WritesAtTheTopLevel)
{
    const Installation installation;
    expectAnswer(installation.run({"set", "Loose", "x"}), "Loose: absent -> string \"x\"");
    EXPECT_EQ(installation.stored("Loose"), QStringLiteral("5$x"));
    expectAnswer(installation.run({"get", "/Loose"}), "x");
}

TEST(Roots, LeadToTheirPlaces)
{
    const Installation installation;
    const std::string release = "Software/HALVIK/VORNA/2026";
    const std::pair<const char*, std::string> roots[] = {
        {"@product", "Software/HALVIK/VORNA"},
        {"@version", release},
        {"@language", release + "/de-DE"},
        {"@profiles", release + "/de-DE/Profiles"},
        {"@profile", release + "/de-DE/Profiles/Zweite"},
        {"@applications", release + "/de-DE/Applications"},
        {"@recent", release + "/de-DE/Recent File List"},
        {"@settings", release + "/de-DE/Settings"},
        {"@userconfig", release + "/de-DE/Settings/UserConfig"},
    };
    for (const auto& [selector, path] : roots) {
        const std::string value = std::string(selector) + "/V";
        expectAnswer(installation.run({"set", value, selector, "--language", "de-DE", "--profile", "Zweite"}),
                     path + "/V: absent -> string \"" + selector + "\"");
        EXPECT_EQ(installation.stored(path + "/V"), QLatin1String("5$") + QLatin1String(selector));
    }
}

TEST(Get, OfAnAbsentValueIsNotFound)
{
    const Installation installation;
    expectError(installation.run({"get", "@settings/None"}), kNotFound, kSettings + "/None: there is no such value");
    expectError(installation.run({"get", "@settings/None", "--json"}), kNotFound, "there is no such value");
    EXPECT_EQ(installation.run({"set", "@settings/Item/V", "x"}).exitCode, kDone);
    expectError(installation.run({"get", "@settings/Item"}), kNotFound, "there is no such value");
}

TEST(Get, PrintsADoubleAsANumberAndWhereAskedAsItsBytes)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@settings/V", "0.5", "--type", "double"}).exitCode, kDone);
    expectAnswer(installation.run({"get", "@settings/V"}), "0.5");
    expectAnswer(installation.run({"get", "@settings/V", "--type", "binary"}), "000000000000e03f");
}

TEST(Get, OfAnotherTypeFails)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "@settings/Text", "7"}).exitCode, kDone);
    EXPECT_EQ(installation.run({"set", "@settings/Bytes", "0102", "--type", "binary"}).exitCode, kDone);
    expectError(installation.run({"get", "@settings/Text", "--type", "int32"}), kFailed,
                "is of type string, not int32");
    expectError(installation.run({"get", "@settings/Text", "--type", "double"}), kFailed,
                "is of type string, not double");
    expectError(installation.run({"get", "@settings/Bytes", "--type", "double"}), kFailed,
                "is of type binary, not double");
}

TEST(Get, OfATypeThatTheLibraryDoesNotReadFails)
{
    const Installation installation;
    installation.store(kSettings + "/Odd", "9$x");
    expectError(installation.run({"get", "@settings/Odd"}), kFailed, "is of a type that cannot be read");
    expectAnswer(installation.run({"list", "@settings"}), "unknown Odd = ");
}

/// A value that is written with a type, in the JSON answer of `get`.
QJsonValue inJson(const Installation& installation, const std::string& type, const std::string& value)
{
    answerOf(installation.run({"set", "@settings/V", value, "--type", type}));
    const QJsonObject answer = installation.object({"get", "@settings/V", "--type", type});
    EXPECT_EQ(answer.value(QStringLiteral("type")).toString(), QString::fromStdString(type));
    EXPECT_EQ(answer.value(QStringLiteral("path")).toString(), QString::fromStdString(kSettings + "/V"));
    return answer.value(QStringLiteral("value"));
}

TEST(Get, AnswersADoubleInJsonWithItsBits)
{
    const Installation installation;
    answerOf(installation.run({"set", "@settings/V", "-0.0", "--type", "double"}));
    const QJsonObject answer = installation.object({"get", "@settings/V"});
    EXPECT_EQ(answer.value(QStringLiteral("bits")).toString(), QStringLiteral("8000000000000000"));
}

TEST(Get, AnswersATextThatNoModuleWroteInJsonAsItStands)
{
    const Installation installation;
    installation.store(kSettings + "/V", "1$abc");
    const QJsonObject answer = installation.object({"get", "@settings/V"});
    EXPECT_EQ(answer.value(QStringLiteral("value")), QJsonValue(0));
    EXPECT_EQ(answer.value(QStringLiteral("stored")).toString(), QStringLiteral("1$abc"));
}

TEST(Get, AnswersInJson)
{
    const Installation installation;
    EXPECT_EQ(inJson(installation, "int32", "-5"), QJsonValue(-5));
    EXPECT_EQ(inJson(installation, "int64", "9007199254740993"), QJsonValue(QStringLiteral("9007199254740993")));
    EXPECT_EQ(inJson(installation, "double", "0.5"), QJsonValue(0.5));
    EXPECT_EQ(inJson(installation, "double", "inf"), QJsonValue(QStringLiteral("inf")));
    EXPECT_EQ(inJson(installation, "binary", "ab"), QJsonValue(QStringLiteral("ab00000000")));
    EXPECT_EQ(inJson(installation, "string", "a\n😀"), QJsonValue(QStringLiteral("a\n😀")));
}

} // namespace
