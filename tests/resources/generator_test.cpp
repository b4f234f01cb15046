// The generator as a process of its own: what it refuses, and how, and what becomes of the texts it takes.
// The sources it writes are compiled and loaded, because only the loaded table says what a text has become.
#include "resource_library.h"
#include "tool_run.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using resources::test::ResourceLibrary;
using resources::test::runTool;
using resources::test::Texts;
using resources::test::ToolRun;
using resources::test::writeFile;

namespace
{

class Generator : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_directory.isValid()); }

    [[nodiscard]] QString place(const QString& name) const { return m_directory.filePath(name); }
    [[nodiscard]] QString source() const { return place(QStringLiteral("table.cpp")); }

    [[nodiscard]] ToolRun generate(const QStringList& files) const
    {
        const QStringList arguments = {QStringLiteral("-P"), QStringLiteral(CMAKE_HELPERS "/VrResourceStrings.cmake"),
                                       source()};
        return runTool(QStringLiteral(CMAKE_PROGRAM), arguments + files);
    }

    [[nodiscard]] ToolRun generateFrom(const QByteArray& content) const
    {
        const QString file = place(QStringLiteral("texts.txt"));
        return writeFile(file, content) ? generate({file}) : ToolRun();
    }

    [[nodiscard]] ToolRun compile() const
    {
        const QStringList arguments = {QStringLiteral("-shared"),
                                       QStringLiteral("-fPIC"),
                                       QStringLiteral("-Wall"),
                                       QStringLiteral("-Wextra"),
                                       QStringLiteral("-Werror"),
                                       QStringLiteral("-o"),
                                       library(),
                                       source()};
        return runTool(QStringLiteral(CXX_COMPILER), arguments);
    }

    [[nodiscard]] QString library() const { return place(QStringLiteral("table.so")); }

    /// The texts of a library made of this content; empty when any step fails.
    [[nodiscard]] Texts textsFrom(const QByteArray& content) const
    {
        const ToolRun generated = generateFrom(content);
        EXPECT_EQ(generated.exitCode, 0) << generated.errors.toStdString();
        const ToolRun compiled = compile();
        EXPECT_EQ(compiled.exitCode, 0) << compiled.errors.toStdString();
        return ResourceLibrary(library()).texts();
    }

    QTemporaryDir m_directory;
};

TEST_F(Generator, KeepsCharactersThatMeanSomethingElsewhere)
{
    const Texts expected = {{1, L"a;b;;[c] [[d]] ]=] \"e\" 'f' `g`"},
                            {2, L"${X} @Y@ $<Z> $ENV{HOME} %s %1$%2"},
                            {3, L"\\d+ \\\\ C:\\dir\\"},
                            {4, L"/* */ // ?\?/ #if R\"( )\""},
                            {5, L";"},
                            {6, L"["},
                            {7, L"# no comment"}};
    EXPECT_EQ(textsFrom("1 a;b;;[c] [[d]] ]=] \"e\" 'f' `g`\n"
                        "2 ${X} @Y@ $<Z> $ENV{HOME} %s %1$%2\n"
                        "3 \\\\d+ \\\\\\\\ C:\\\\dir\\\\\n"
                        "4 /* */ // ?\?/ #if R\"( )\"\n"
                        "5 ;\n"
                        "6 [\n"
                        "7 # no comment\n"),
              expected);
}

TEST_F(Generator, EscapesStandForTheirCharacters)
{
    const Texts expected = {{1, L"a\nb\rc\td e\\f"}, {2, L"A1\x1F600;"}, {3, L"\x1\xFFFF"}, {4, L"\\n \\x41;"}};
    EXPECT_EQ(textsFrom("1 a\\nb\\rc\\td\\se\\\\f\n"
                        "2 \\x41;1\\x1F600;;\n"
                        "3 \\x1;\\x00fFfF;\n"
                        "4 \\\\n \\\\x41;\n"),
              expected);
}

TEST_F(Generator, NumberEscapesReachTheLimitsOfTheCharacters)
{
    const Texts expected = {{1, L"\xD7FF\xE000"}, {2, L"\x10FFFF"}};
    EXPECT_EQ(textsFrom("1 \\xD7FF;\\xE000;\n2 \\x10FFFF;\n"), expected);
}

TEST_F(Generator, BlanksAroundATextGoAndThoseInsideStay)
{
    const Texts expected = {{1, L"one  two\tthree"}, {2, L"x"}};
    EXPECT_EQ(textsFrom(" \t1 \t one  two\tthree \t \n\t2\tx\n"), expected);
}

TEST_F(Generator, EscapedBlanksAtTheEndsOfATextStay)
{
    const Texts expected = {{1, L" x "}, {2, L"\t"}, {3, L"  y\t\t"}};
    EXPECT_EQ(textsFrom("1 \\sx\\s  \n2 \\t\n3 \\s y\t\\t\n"), expected);
}

TEST_F(Generator, CommentsAndBlankLinesAreNothing)
{
    const Texts expected = {{2, L"two"}};
    EXPECT_EQ(textsFrom("# 1 one; [x\n\n  \t\n  # \\q \"\n2 two\n#\n"), expected);
}

TEST_F(Generator, ByteOrderMarkAndCarriageReturnsGo)
{
    const Texts expected = {{1, L"one"}, {2, L"two"}};
    EXPECT_EQ(textsFrom("\xEF\xBB\xBF"
                        "1 one\r\n\r\n2 two \r\n"),
              expected);
}

TEST_F(Generator, LastLineNeedsNoLineEnd)
{
    const Texts expected = {{1, L"one"}};
    EXPECT_EQ(textsFrom("1 one"), expected);
}

TEST_F(Generator, EachCharacterIsOneElementWhateverItsLengthInBytes)
{
    const Texts expected = {{1, L"\x7E\xA0\x7FF\x800\xFFFD\x10000\x10FFFD"}, {2, L"žluť 日本 𝄞"}};
    EXPECT_EQ(textsFrom(u8"1 \u007E\u00A0\u07FF\u0800\uFFFD\U00010000\U0010FFFD\n2 žluť 日本 𝄞\n"), expected);
}

TEST_F(Generator, RowsAscendWhateverTheOrderOfTheLines)
{
    ASSERT_EQ(generateFrom("65535 last\n10 ten\n9 nine\n1000 thousand\n1 first\n").exitCode, 0);
    ASSERT_EQ(compile().exitCode, 0);
    std::vector<std::uint32_t> ids;
    const ResourceLibrary loaded(library());
    for (const VrResourceString& row : loaded.rows()) {
        ids.push_back(row.id);
    }
    EXPECT_EQ(ids, (std::vector<std::uint32_t>{1, 9, 10, 1000, 65535}));
}

TEST_F(Generator, LeadingZerosOfAnIdMeanNothing)
{
    const Texts expected = {{8, L"eight"}, {65535, L"last"}};
    EXPECT_EQ(textsFrom("0008 eight\n000065535 last\n"), expected);
}

TEST_F(Generator, LongestLineIsTaken)
{
    const QByteArray text(8189, 'x');
    EXPECT_EQ(textsFrom("1 " + text + "\n"), (Texts{{1, std::wstring(8189, L'x')}}));
}

TEST_F(Generator, FilesGivenTogetherMakeOneTable)
{
    const QString first = place(QStringLiteral("first file.txt"));
    const QString second = place(QStringLiteral("second.txt"));
    ASSERT_TRUE(writeFile(first, "3 three\n1 one\n"));
    ASSERT_TRUE(writeFile(second, "2 two\n"));
    ASSERT_EQ(generate({first, second}).exitCode, 0);
    ASSERT_EQ(compile().exitCode, 0);
    EXPECT_EQ(ResourceLibrary(library()).texts(), (Texts{{1, L"one"}, {2, L"two"}, {3, L"three"}}));
}

TEST_F(Generator, AnIdInTwoFilesIsRefusedWithBothPlaces)
{
    const QString first = place(QStringLiteral("first.txt"));
    const QString second = place(QStringLiteral("second.txt"));
    ASSERT_TRUE(writeFile(first, "1 one\n2 two\n"));
    ASSERT_TRUE(writeFile(second, "\n2 zwei\n"));
    const ToolRun run = generate({first, second});
    EXPECT_NE(run.exitCode, 0);
    EXPECT_TRUE(
        run.errors.contains(QStringLiteral("%1:2: error: id 2 stands twice; first at %2:2\n").arg(second, first)))
        << run.errors.toStdString();
}

TEST_F(Generator, AMissingFileIsNamed)
{
    const QString missing = place(QStringLiteral("missing.txt"));
    const ToolRun run = generate({missing});
    EXPECT_NE(run.exitCode, 0);
    EXPECT_TRUE(run.errors.contains(missing + QStringLiteral(":1: error: no such file\n"))) << run.errors.toStdString();
}

TEST_F(Generator, EveryFaultOfAFileIsToldAtOnce)
{
    const ToolRun run = generateFrom("x\n1 one\n\n0 zero\n1 uno\n");
    const QString file = place(QStringLiteral("texts.txt"));
    for (const char* start : {":1: error: ", ":4: error: ", ":5: error: "}) {
        EXPECT_TRUE(run.errors.contains(file + QString::fromLatin1(start))) << run.errors.toStdString();
    }
    EXPECT_EQ(run.errors.count(file + QLatin1Char(':')), 4) << "three faults, one of them with two places";
}

TEST_F(Generator, AFaultLeavesNoSourceBehind)
{
    EXPECT_NE(generateFrom("1 one\nx\n").exitCode, 0);
    EXPECT_FALSE(QFile::exists(source()));
}

TEST_F(Generator, CalledWithoutFilesItSaysHowItIsCalled)
{
    const ToolRun run = generate({});
    EXPECT_NE(run.exitCode, 0);
    EXPECT_TRUE(run.errors.contains(QStringLiteral("usage: "))) << run.errors.toStdString();
}

struct Fault {
    const char* name;
    QByteArray content;
    const char* complaint; ///< from the line number on
};

/// What a failure and the list of tests show of a case.
void PrintTo(const Fault& fault, std::ostream* stream)
{
    *stream << fault.complaint;
}

class GeneratorRefusal : public Generator, public testing::WithParamInterface<Fault>
{
};

TEST_P(GeneratorRefusal, NamesFileAndLine)
{
    const ToolRun run = generateFrom(GetParam().content);
    EXPECT_NE(run.exitCode, 0);
    const QString expected =
        place(QStringLiteral("texts.txt")) + QLatin1Char(':') + QString::fromLatin1(GetParam().complaint);
    EXPECT_TRUE(run.errors.contains(expected)) << run.errors.toStdString();
}

const char* const kBadEscape = R"(2: error: bad escape; there are \n \r \t \s \\ and \xH...;)";

QByteArray second(const QByteArray& line)
{
    return "1 one\n" + line + "\n3 three\n";
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(All, GeneratorRefusal, testing::Values(
    Fault{"EmptyFile", "", "1: error: no text in this file\n"},
    Fault{"OnlyComments", "# a\n\n#b\n", "1: error: no text in this file\n"},
    Fault{"NoId", second("text"), "2: error: malformed line; expected an id"},
    Fault{"NegativeId", second("-5 text"), "2: error: malformed line; expected an id"},
    Fault{"SignedId", second("+5 text"), "2: error: malformed line; expected an id"},
    Fault{"HexadecimalId", second("0x10 text"), "2: error: malformed line; expected a blank behind the id\n"},
    Fault{"NoBlankBehindId", second("2text"), "2: error: malformed line; expected a blank behind the id\n"},
    Fault{"EqualsSign", second("2=text"), "2: error: malformed line; expected a blank behind the id\n"},
    Fault{"NoText", second("2"), "2: error: id without a text\n"},
    Fault{"BlanksForText", second("2 \t "), "2: error: id without a text\n"},
    Fault{"IdZero", second("0 text"), "2: error: id 0 is outside 1 to 65535\n"},
    Fault{"IdManyZeros", second("000 text"), "2: error: id 0 is outside 1 to 65535\n"},
    Fault{"IdAboveLimit", second("65536 text"), "2: error: id 65536 is outside 1 to 65535\n"},
    Fault{"IdHuge", second("18446744073709551617 text"), "2: error: id 18446744073709551617 is outside"},
    Fault{"IdTwice", second("3 text"), "3: error: id 3 stands twice; first at "},
    Fault{"IdTwiceWithZeros", second("01 text"), "2: error: id 1 stands twice; first at "},
    Fault{"UnknownEscape", second("2 a\\qb"), kBadEscape},
    Fault{"EscapedBlank", second("2 a\\ b"), kBadEscape},
    Fault{"UnfinishedEscape", second("2 a\\"), kBadEscape},
    Fault{"EscapedCharacterOfTwoBytes", second("2 a\\\xC3\xA9"), kBadEscape},
    Fault{"NumberWithoutEnd", second("2 \\x41"), kBadEscape},
    Fault{"NumberWithoutDigits", second("2 \\x;"), kBadEscape},
    Fault{"NumberWithOtherLetters", second("2 \\x4g;"), kBadEscape},
    Fault{"NumberTooLong", second("2 \\x0000041;"), kBadEscape},
    Fault{"NumberZero", second("2 a\\x0;b"), kBadEscape},
    Fault{"NumberAboveLimit", second("2 \\x110000;"), kBadEscape},
    Fault{"NumberFirstSurrogate", second("2 \\xD800;"), kBadEscape},
    Fault{"NumberLastSurrogate", second("2 \\xDFFF;"), kBadEscape},
    Fault{"Latin1", second("2 M\xFCller"), "2: error: not valid UTF-8\n"},
    Fault{"Latin1InComment", second("# M\xFCller"), "2: error: not valid UTF-8\n"},
    Fault{"LoneContinuation", second("2 a\x80z"), "2: error: not valid UTF-8\n"},
    Fault{"CutSequence", second("2 \xE6\x97"), "2: error: not valid UTF-8\n"},
    Fault{"OverlongTwoBytes", second("2 \xC1\xBF"), "2: error: not valid UTF-8\n"},
    Fault{"OverlongThreeBytes", second("2 \xE0\x9F\xBF"), "2: error: not valid UTF-8\n"},
    Fault{"OverlongFourBytes", second("2 \xF0\x8F\xBF\xBF"), "2: error: not valid UTF-8\n"},
    Fault{"EncodedSurrogate", second("2 \xED\xA0\x80"), "2: error: not valid UTF-8\n"},
    Fault{"AboveTheLastCharacter", second("2 \xF4\x90\x80\x80"), "2: error: not valid UTF-8\n"},
    Fault{"Utf16", QByteArray("\xFF\xFE\x31\x00\x20\x00\x61\x00\x0A\x00", 10), "1: error: not valid UTF-8\n"},
    Fault{"ZeroByte", second(QByteArray("2 a\0b", 5)), "2: error: a control character; write it as an escape\n"},
    Fault{"ControlCharacter", second("2 a\x1B[0m"), "2: error: a control character; write it as an escape\n"},
    Fault{"CarriageReturnInside", second("2 a\rb"), "2: error: a control character; write it as an escape\n"},
    Fault{"Delete", second("2 a\x7F"), "2: error: a control character; write it as an escape\n"},
    Fault{"LineTooLong", second("2 " + QByteArray(8190, 'x')), "2: error: more than 8191 bytes in a line\n"}),
    [](const auto& instance) { return std::string(instance.param.name); });
// clang-format on

} // namespace
