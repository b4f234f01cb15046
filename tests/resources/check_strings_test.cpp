// The translators' check as a process of its own, over a copy of the real files with one fault.
#include "product/language_table.h"
#include "tool_run.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <numeric>

using resources::test::readFile;
using resources::test::runTool;
using resources::test::ToolRun;
using resources::test::writeFile;

namespace
{

ToolRun runCheck(const QStringList& arguments)
{
    return runTool(QStringLiteral(RESOURCE_SOURCES "/check_strings"), arguments);
}

class StringsCheck : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_directory.isValid());
        const QDir real(QStringLiteral(RESOURCE_SOURCES "/strings"));
        for (const QString& name : real.entryList(QDir::Files))
            ASSERT_TRUE(QFile::copy(real.filePath(name), place(name)));
    }

    [[nodiscard]] QString place(const QString& name) const { return m_directory.filePath(name); }

    void write(const char* name, const QByteArray& bytes) const
    {
        ASSERT_TRUE(writeFile(place(QString::fromLatin1(name)), bytes));
    }
    void writeUnknown(const QByteArray& text) const { write("de-DE.txt", "# Das Wort\n1103 " + text + "\n"); }
    /// The real file with these lines behind it.
    void add(const char* name, const QByteArray& lines) const
    {
        write(name, readFile(place(QString::fromLatin1(name))) + lines);
    }

    void expectOrder() const
    {
        const ToolRun run = runCheck({m_directory.path()});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.errors.toStdString(), "");
        EXPECT_EQ(run.output.toStdString(), "15 languages with 19 texts each: in order\n");
    }
    /// Exactly these, without the directory: "<file>:<line>: error: <what>".
    void expectFaults(const std::string& faults) const
    {
        const ToolRun run = runCheck({m_directory.path()});
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.output.toStdString(), "");
        EXPECT_EQ(QString(run.errors).remove(m_directory.path() + QLatin1Char('/')).toStdString(), faults);
    }

private:
    QTemporaryDir m_directory;
};

TEST_F(StringsCheck, FindsNothingInTheRealFiles)
{
    expectOrder();
}

TEST_F(StringsCheck, TakesEverythingThatTheLibrariesTake)
{
    write("de-DE.txt", "\xEF\xBB\xBF# \\q is text here\r\n\r\n  \t001103 \t un\\\\be\\x6b;annt\r\n");
    expectOrder();
}

TEST_F(StringsCheck, FindsAnIdThatALanguageLacks)
{
    write("de-DE.txt", "# Das Wort\n# fehlt.\n");
    expectFaults("de-DE.txt:2: error: id 1103 is missing: an unknown language\n");
}

TEST_F(StringsCheck, FindsAnIdThatAllLanguagesLackOnce)
{
    const QString common = place(QStringLiteral("common.txt"));
    write("common.txt", readFile(common).replace("4092 VORNA\n", ""));
    expectFaults("common.txt:22: error: id 4092 is missing: the product\n");
}

TEST_F(StringsCheck, TakesAnIdThatEachLanguageHasOfItsOwn)
{
    const QString common = place(QStringLiteral("common.txt"));
    write("common.txt", readFile(common).replace("4091 HALVIK\n", ""));
    const QDir directory(QFileInfo(common).path());
    for (const QString& name : directory.entryList({QStringLiteral("*-*.txt")}))
        add(name.toLatin1().constData(), "4091 HALVIK\n");
    expectOrder();
}

TEST_F(StringsCheck, FindsAnIdThatStandsTwiceInAFile)
{
    add("fr-FR.txt", "\n01103 Encore\n");
    const ToolRun run = runCheck({QFileInfo(place(QStringLiteral("x"))).path()});
    EXPECT_EQ(run.errors.toStdString(), place(QStringLiteral("fr-FR.txt")).toStdString() +
                                            ":4: error: id 1103 stands twice; first at " +
                                            place(QStringLiteral("fr-FR.txt")).toStdString() + ":2\n");
}

TEST_F(StringsCheck, FindsAnIdThatStandsInTheCommonFileToo)
{
    add("ja-JP.txt", "4092 VORNA\n");
    expectFaults("ja-JP.txt:3: error: id 4092 stands twice; first at common.txt:22\n");
}

TEST_F(StringsCheck, FindsAnIdThatNothingReads)
{
    add("tr-TR.txt", "1016 Klingon\n0 zero\n" + QByteArray(5000, '9') + " many\n");
    expectFaults("tr-TR.txt:3: error: id 1016 is unknown: nothing reads it\n"
                 "tr-TR.txt:4: error: id 0 is unknown: nothing reads it\n"
                 "tr-TR.txt:5: error: id " +
                 std::string(5000, '9') + " is unknown: nothing reads it\n");
}

TEST_F(StringsCheck, TakesANameThatFitsItsReader)
{
    writeUnknown(QByteArray(61, 'n') + "\\x1F600;");
    expectOrder();
}

TEST_F(StringsCheck, FindsANameThatIsTooLongForItsReader)
{
    writeUnknown(QByteArray(62, 'n') + "\xF0\x9F\x98\x80");
    expectFaults("de-DE.txt:2: error: id 1103 has 63 characters; 62 fit where it is read\n");
}

TEST_F(StringsCheck, FindsANameOfABrandThatIsTooLongForItsReader)
{
    const QByteArray common = readFile(place(QStringLiteral("common.txt")));
    write("common.txt", QByteArray(common).replace("4092 VORNA\n", "4092 " + QByteArray(1022, 'V') + "\n"));
    expectOrder();
    write("common.txt", QByteArray(common).replace("4092 VORNA\n", "4092 " + QByteArray(1023, 'V') + "\n"));
    expectFaults("common.txt:22: error: id 4092 has 1023 characters; 1022 fit where it is read\n");
}

TEST_F(StringsCheck, FindsPlaceholdersThatDifferFromTheEnglishOnes)
{
    for (const char* const name : {"de-DE.txt", "en-US.txt"})
        write(name, "1103 %d, %ls and 100%%\n");
    const ToolRun run = runCheck({QFileInfo(place(QStringLiteral("x"))).path()});
    EXPECT_EQ(run.errors.count(QLatin1Char('\n')), 13) << "all but English and German";
    const QString expected = QStringLiteral("%1:2: error: id 1103 has the placeholders none, but %d %ls at %2:1\n");
    EXPECT_TRUE(run.errors.contains(
        QString(expected).arg(place(QStringLiteral("it-IT.txt")), place(QStringLiteral("en-US.txt")))))
        << run.errors.toStdString();
}

struct Placeholders {
    const char* name;
    QByteArray english;
    QByteArray german;
    const char* complaint; ///< Empty when they are alike.
};

/// What a failure and the list of tests show of a case.
void PrintTo(const Placeholders& value, std::ostream* stream)
{
    *stream << value.name;
}

class StringsCheckPlaceholders : public StringsCheck, public testing::WithParamInterface<Placeholders>
{
};

TEST_P(StringsCheckPlaceholders, AreComparedWithTheEnglishOnes)
{
    write("en-US.txt", "1103 " + GetParam().english + "\n");
    write("de-DE.txt", "1103 " + GetParam().german + "\n");
    const ToolRun run = runCheck({QFileInfo(place(QStringLiteral("x"))).path()});
    const QString german = place(QStringLiteral("de-DE.txt:1: error: id 1103 has the placeholders "));
    const QString complaint = QString::fromLatin1(GetParam().complaint);
    EXPECT_EQ(run.errors.contains(german), !complaint.isEmpty()) << run.errors.toStdString();
    EXPECT_TRUE(complaint.isEmpty() || run.errors.contains(german + complaint)) << run.errors.toStdString();
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(All, StringsCheckPlaceholders, testing::Values(
    Placeholders{"Same", "Open %ls", "%ls wird", ""},
    Placeholders{"Gone", "Open %ls", "Offen", "none, but %ls at "},
    Placeholders{"OtherType", "Open %ls", "Offen %s", "%s, but %ls at "},
    Placeholders{"OtherOrder", "%d of %ls", "%ls hat %d", "%ls %d, but %d %ls at "},
    Placeholders{"OneTooMany", "%d", "%d von %d", "%d %d, but %d at "},
    Placeholders{"OtherPrecision", "%.2f", "%.3f", "%.3f, but %.2f at "},
    Placeholders{"NamedInOtherOrder", "%1$d of %2$ls", "%2$ls hat %1$d", ""},
    Placeholders{"NumbersInOtherOrder", "%1 of %2", "%2 hat %1", ""},
    Placeholders{"NumberGone", "%1 of %2", "%1", "%1, but %1 %2 at "},
    Placeholders{"DoublePercentSign", "100%%", "zu 100 Prozent", ""},
    Placeholders{"PercentSign", "50 % of it", "50 % davon", ""}),
    [](const auto& instance) { return std::string(instance.param.name); });
// clang-format on

TEST_F(StringsCheck, FindsATextThatEndsInABlank)
{
    for (const char* const end : {"\\s", "\\t", "\\n", "\\xA0;", "\xE3\x80\x80"}) {
        writeUnknown(QByteArray("Unbekannt") + end);
        expectFaults("de-DE.txt:2: error: id 1103 ends in a blank or a line break\n");
    }
}

TEST_F(StringsCheck, FindsABlankAtTheEndOfALine)
{
    for (const char* const end : {" ", "\t", " \r"}) {
        writeUnknown(QByteArray("Unbekannt") + end);
        expectFaults("de-DE.txt:2: error: a blank at the end of the line, which is lost when the library is built\n");
    }
}

TEST_F(StringsCheck, FindsAMissingFile)
{
    QFile::remove(place(QStringLiteral("ko-KR.txt")));
    expectFaults("ko-KR.txt:1: error: no such file\n");
}

TEST_F(StringsCheck, FindsAFileOfNoLanguage)
{
    write("en_US.txt", "1103 Unknown\n");
    expectFaults("en_US.txt:1: error: this file's name is that of no language\n");
}

TEST_F(StringsCheck, TellsAllFaultsInTheirOrder)
{
    add("zh-TW.txt", "x\n");
    add("cs-CZ.txt", "1016 a\n1017 b\n");
    expectFaults("cs-CZ.txt:3: error: id 1016 is unknown: nothing reads it\n"
                 "cs-CZ.txt:4: error: id 1017 is unknown: nothing reads it\n"
                 "zh-TW.txt:3: error: malformed line; expected an id, a blank and a text\n");
}

struct BadLine {
    const char* name;
    QByteArray line;
    const char* complaint;
};

/// What a failure and the list of tests show of a case.
void PrintTo(const BadLine& value, std::ostream* stream)
{
    *stream << value.name;
}

class StringsCheckRefusal : public StringsCheck, public testing::WithParamInterface<BadLine>
{
};

/// The check refuses what the build refuses, in its words.
TEST_P(StringsCheckRefusal, IsThatOfTheBuild)
{
    add("de-DE.txt", GetParam().line + "\n");
    const QString file = place(QStringLiteral("de-DE.txt"));
    const QString expected = file + QStringLiteral(":3: error: ") + QString::fromLatin1(GetParam().complaint);
    const ToolRun check = runCheck({QFileInfo(file).path()});
    EXPECT_EQ(check.exitCode, 1);
    EXPECT_EQ(check.errors.toStdString(), expected.toStdString() + "\n");
    const ToolRun build = runTool(QStringLiteral(CMAKE_PROGRAM),
                                  {QStringLiteral("-P"), QStringLiteral(CMAKE_HELPERS "/VrResourceStrings.cmake"),
                                   place(QStringLiteral("table.cpp")), file});
    EXPECT_NE(build.exitCode, 0);
    EXPECT_TRUE(build.errors.contains(expected)) << build.errors.toStdString();
}

const char* const kBadEscape =
    R"(bad escape; there are \n \r \t \s \\ and \xH...; with 1 to 6 digits of a character's )"
    "number";

// clang-format off
INSTANTIATE_TEST_SUITE_P(All, StringsCheckRefusal, testing::Values(
    BadLine{"NoId", "text", "malformed line; expected an id, a blank and a text"},
    BadLine{"NoText", "4091", "id without a text"},
    BadLine{"UnknownEscape", "4091 a\\qb", kBadEscape},
    BadLine{"UnfinishedEscape", "4091 a\\", kBadEscape},
    BadLine{"NumberWithoutEnd", "4091 \\x41", kBadEscape},
    BadLine{"NumberTooLong", "4091 \\x0000041;", kBadEscape},
    BadLine{"NumberZero", "4091 a\\x0;b", kBadEscape},
    BadLine{"NumberAboveLimit", "4091 \\x110000;", kBadEscape},
    BadLine{"NumberOfASurrogate", "4091 \\xDFFF;", kBadEscape},
    BadLine{"Latin1", "4091 M\xFCller", "not valid UTF-8"},
    BadLine{"EncodedSurrogate", "# \xED\xA0\x80", "not valid UTF-8"},
    BadLine{"ControlCharacter", "4091 a\x1B[0m", "a control character; write it as an escape"},
    BadLine{"LineTooLong", "# " + QByteArray(8190, 'x'), "more than 8191 bytes in a line"}),
    [](const auto& instance) { return std::string(instance.param.name); });
// clang-format on

TEST(StringsCheckReaders, AreThoseOfTheLibrary)
{
    QStringList expected;
    for (const std::uint32_t id : vruinfo::internal::kLocalNameTexts)
        expected.append(QStringLiteral("%1    62 characters  %2, in its own tongue")
                            .arg(id)
                            .arg(QString::fromWCharArray(_std_global_languages[expected.size()])));
    expected.append(
        QStringLiteral("%1    62 characters  an unknown language").arg(vruinfo::internal::kUnknownLanguageText));
    expected.append(QStringLiteral("4091  1022 characters  the company"));
    expected.append(QStringLiteral("4092  1022 characters  the product"));
    expected.append(QStringLiteral("4095  1022 characters  the company's full legal name"));
    const ToolRun run = runCheck({QStringLiteral("--readers")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output.toStdString(), (expected.join(QLatin1Char('\n')) + QLatin1Char('\n')).toStdString());
}

TEST(StringsCheckUsage, IsToldToWhoNamesNoDirectory)
{
    const ToolRun run = runCheck({QStringLiteral("/nonexistent")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.errors.startsWith(QLatin1String("check_strings [DIRECTORY]"))) << run.errors.toStdString();
}

} // namespace
