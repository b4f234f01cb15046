#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

struct Misuse {
    const char* rule;
    Arguments arguments;
    const char* words;
};

void PrintTo(const Misuse& misuse, std::ostream* out)
{
    *out << misuse.rule;
}

class MisuseTest : public testing::TestWithParam<Misuse>
{
};

const std::string kHuge(2000, 'x');

// clang-format off
const Misuse kMisuses[] = {
    {"NoCommand", {}, "No command is given."},
    {"NoCommandButAnOption", {"--json"}, "No command is given."},
    {"UnknownCommand", {"bogus"}, "Unknown command 'bogus'."},
    {"EmptyCommand", {""}, "Unknown command ''."},
    {"UnknownCommandToExplain", {"help", "bogus"}, "Unknown command 'bogus'."},
    {"UnknownOption", {"get", "a", "--bogus"}, "Unknown option 'bogus'."},
    {"UnknownOptionWithoutCommand", {"--bogus"}, "Unknown option 'bogus'."},
    {"OptionOfAnotherCommand", {"get", "a", "--recursive"}, "Unknown option 'recursive'."},
    {"OptionWithoutItsValue", {"get", "a", "--type"}, "Missing value after '--type'."},
    {"SwitchWithAValue", {"identity", "--json=yes"}, "json"},
    {"IdentityWithAnArgument", {"identity", "x"}, "Unexpected argument 'x'."},
    {"PathsWithAnArgument", {"paths", "x"}, "Unexpected argument 'x'."},
    {"LanguagesWithAnArgument", {"languages", "x"}, "Unexpected argument 'x'."},
    {"GetWithoutPath", {"get"}, "PATH is missing."},
    {"GetWithTwoPaths", {"get", "a", "b"}, "Unexpected argument 'b'."},
    {"SetWithoutValue", {"set", "a"}, "VALUE is missing."},
    {"SetWithTwoValues", {"set", "a", "b", "c"}, "Unexpected argument 'c'."},
    {"ListWithoutPath", {"list"}, "PATH is missing."},
    {"TreeWithoutPath", {"tree"}, "PATH is missing."},
    {"RmWithoutPath", {"rm"}, "PATH is missing."},
    {"HelpWithTwoCommands", {"help", "get", "set"}, "Unexpected argument 'set'."},
    {"ValueThatLooksLikeAnOption", {"set", "a", "-q"}, "Unknown option 'q'."},
    {"UnknownRoot", {"get", "@bogus/a"}, "unknown root '@bogus'"},
    {"RootInAnotherCase", {"get", "@Settings/a"}, "unknown root '@Settings'"},
    {"RootAsAValue", {"get", "@settings"}, "'@settings' names no value"},
    {"EmptyValuePath", {"get", ""}, "names nothing"},
    {"TopAsAValue", {"set", "/", "x"}, "names nothing"},
    {"EmptyValueName", {"get", "a/"}, "cannot be addressed"},
    {"EmptyNameBelowARoot", {"set", "@settings/", "x"}, "cannot be addressed"},
    {"EmptyPart", {"set", "a//b", "x"}, "cannot be addressed"},
    {"EmptyPartOfAnItem", {"list", "a//b"}, "cannot be addressed"},
    {"EmptyPartOfWhatGoes", {"rm", "a//b", "--recursive"}, "cannot be addressed"},
    {"RemovalOfTheTop", {"rm", "/", "--recursive"}, "names nothing"},
    {"RemovalOfAnEmptyPath", {"rm", "", "--recursive"}, "names nothing"},
    {"UnknownTypeToGet", {"get", "a", "--type", "float"}, "unknown type 'float'"},
    {"UnknownTypeToSet", {"set", "a", "1", "--type", "INT32"}, "unknown type 'INT32'"},
    {"EmptyType", {"set", "a", "1", "--type="}, "unknown type ''"},
    {"NegativeNumberAsAType", {"set", "a", "1", "--type", "-5"}, "unknown type '-5'"},
    {"Int32Empty", {"set", "a", "", "--type", "int32"}, "is no whole number"},
    {"Int32Word", {"set", "a", "five", "--type", "int32"}, "\"five\" is no whole number"},
    {"Int32WithTail", {"set", "a", "5x", "--type", "int32"}, "is no whole number"},
    {"Int32WithBlank", {"set", "a", " 5", "--type", "int32"}, "is no whole number"},
    {"Int32Fraction", {"set", "a", "5.0", "--type", "int32"}, "is no whole number"},
    {"Int32AboveItsRange", {"set", "a", "2147483648", "--type", "int32"}, "outside -2147483648 to 2147483647"},
    {"Int32BelowItsRange", {"set", "a", "-2147483649", "--type", "int32"}, "outside -2147483648 to 2147483647"},
    {"Int32HugeWithTail", {"set", "a", "99999999999x", "--type", "int32"}, "is no whole number"},
    {"Int64Word", {"set", "a", "0x10", "--type", "int64"}, "is no whole number"},
    {"Int64AboveItsRange", {"set", "a", "9223372036854775808", "--type", "int64"}, "outside -9223372036854775808"},
    {"Int64BelowItsRange", {"set", "a", "-9223372036854775809", "--type", "int64"}, "outside -9223372036854775808"},
    {"DoubleWord", {"set", "a", "two", "--type", "double"}, "is no number"},
    {"DoubleWithComma", {"set", "a", "2,5", "--type", "double"}, "is no number"},
    {"DoubleAboveItsRange", {"set", "a", "1e309", "--type", "double"}, "outside the range of a double"},
    {"DoubleTooSmall", {"set", "a", "1e-400", "--type", "double"}, "outside the range of a double"},
    {"BinaryEmpty", {"set", "a", "", "--type", "binary"}, "is no binary value"},
    {"BinaryOddDigits", {"set", "a", "abc", "--type", "binary"}, "is no binary value"},
    {"BinaryOtherCharacter", {"set", "a", "0g", "--type", "binary"}, "is no binary value"},
    {"BinaryWithBlank", {"set", "a", "00 11", "--type", "binary"}, "is no binary value"},
    {"ArgumentThatIsNoUtf8", {"get", "a\xff"}, "Argument 2 is not valid UTF-8."},
    {"ArgumentWithAnOverlongForm", {"get", "a\xc0\xaf"}, "Argument 2 is not valid UTF-8."},
};
// clang-format on

TEST_P(MisuseTest, IsToldAndNothingIsDone)
{
    const Installation installation;
    const ProcessResult result = installation.run(GetParam().arguments);
    expectError(result, kMisuse, GetParam().words);
    EXPECT_FALSE(std::filesystem::exists(installation.settingsFile()));
}

INSTANTIATE_TEST_SUITE_P(Table, MisuseTest, testing::ValuesIn(kMisuses),
                         [](const auto& row) { return std::string(row.param.rule); });

TEST(MisuseUsage, AWrongCallOfACommandShowsItsUsage)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"set", "a"}).err,
              "vruinfo: VALUE is missing.\nUsage: vruinfo set PATH VALUE [--type TYPE]\n");
}

TEST(MisuseUsage, ACallWithoutCommandShowsTheGeneralUsage)
{
    const Installation installation;
    EXPECT_EQ(installation.run({}).err,
              "vruinfo: No command is given.\nUsage: vruinfo COMMAND [OPTION...]; see vruinfo --help\n");
}

TEST(PathLength, ThousandAndTwentyOneCharactersFitWithTheRoot)
{
    const Installation installation;
    const std::string name(1021 - kSettings.size() - 1, 'x');
    EXPECT_EQ(installation.run({"set", "@settings/" + name, "1"}).exitCode, kDone);
    EXPECT_EQ(installation.stored(kSettings + "/" + name), QStringLiteral("5$1"));
    expectAnswer(installation.run({"get", "@settings/" + name}), "1");
}

TEST(PathLength, OneCharacterMoreIsMisuse)
{
    const Installation installation;
    const std::string name(1022 - kSettings.size() - 1, 'x');
    for (const Arguments& arguments : {Arguments{"set", "@settings/" + name, "1"},
                                       Arguments{"get", "@settings/" + name}, Arguments{"list", "@settings/" + name},
                                       Arguments{"tree", "@settings/" + name}, Arguments{"rm", "@settings/" + name}})
        expectError(installation.run(arguments), kMisuse, "longer than 1021 characters");
    EXPECT_TRUE(installation.stored(kSettings + "/" + name).isNull());
}

TEST(PathLength, CharactersBeyondTheBasicPlaneCountOnce)
{
    const Installation installation;
    std::string name;
    for (std::size_t i = 0; i < 1021 - kSettings.size() - 1; ++i)
        name += "\xF0\x9F\x98\x80";
    EXPECT_EQ(installation.run({"set", "@settings/" + name, "1"}).exitCode, kDone);
    expectError(installation.run({"set", "@settings/x" + name, "1"}), kMisuse, "longer than 1021 characters");
}

TEST(PathLength, AHugePathIsMisuse)
{
    const Installation installation;
    for (const char* const command : {"get", "list", "tree", "rm"})
        expectError(installation.run({command, kHuge}), kMisuse, "longer than 1021 characters");
}

} // namespace
