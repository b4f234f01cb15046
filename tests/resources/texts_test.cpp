// The text files themselves, read without the generator: plain lines of id and text.
#include "resource_library.h"
#include "tool_run.h"

#include <QDir>
#include <QRegularExpression>
#include <gtest/gtest.h>

using resources::test::languageLibrary;
using resources::test::languages;
using resources::test::readFile;
using resources::test::ResourceLibrary;
using resources::test::Texts;

namespace
{

struct Entry {
    std::uint32_t id;
    std::wstring text;
};

std::vector<Entry> entriesOf(const QString& fileName)
{
    const QRegularExpression line(QStringLiteral("^(\\d+) (.+)$"), QRegularExpression::MultilineOption);
    const QString content = QString::fromUtf8(readFile(QStringLiteral(RESOURCE_SOURCES "/") + fileName));
    std::vector<Entry> entries;
    for (auto matches = line.globalMatch(content); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        entries.push_back({match.captured(1).toUInt(), match.captured(2).toStdWString()});
    }
    return entries;
}

/// What the files of one language say, in the order of the lines.
std::vector<Entry> entriesOfLanguage(const std::string& language)
{
    std::vector<Entry> entries = entriesOf(QStringLiteral("strings/common.txt"));
    const std::vector<Entry> own = entriesOf(QStringLiteral("strings/%1.txt").arg(QString::fromStdString(language)));
    entries.insert(entries.end(), own.begin(), own.end());
    return entries;
}

bool hasOnlyCommentsAndEntries(const QString& fileName)
{
    const QRegularExpression sound(QStringLiteral("^(|#.*|\\d+ \\S(.*\\S)?)$"));
    const QByteArray content = readFile(QStringLiteral(RESOURCE_SOURCES "/") + fileName);
    const QStringList lines = QString::fromUtf8(content).split(QLatin1Char('\n'));
    return !content.isEmpty() && lines.filter(sound).size() == lines.size();
}

class LanguageTexts : public testing::TestWithParam<std::string>
{
};

TEST_P(LanguageTexts, LibraryHoldsExactlyWhatTheFilesSay)
{
    const std::vector<Entry> entries = entriesOfLanguage(GetParam());
    Texts said;
    for (const Entry& entry : entries) {
        said[entry.id] = entry.text;
    }
    EXPECT_EQ(said.size(), entries.size()) << "an id stands twice";
    EXPECT_EQ(ResourceLibrary(languageLibrary(GetParam())).texts(), said);
}

TEST_P(LanguageTexts, OwnFileHoldsOnlyTheWordForAnUnknownLanguage)
{
    const std::vector<Entry> own = entriesOf(QStringLiteral("strings/%1.txt").arg(QString::fromStdString(GetParam())));
    ASSERT_EQ(own.size(), 1U);
    EXPECT_EQ(own.front().id, 1103U);
}

INSTANTIATE_TEST_SUITE_P(All, LanguageTexts, testing::ValuesIn(languages()),
                         [](const auto& instance) { return resources::test::testName(instance.param); });

TEST(TextFiles, EveryLineIsAnEntryACommentOrEmpty)
{
    const QDir folder(QStringLiteral(RESOURCE_SOURCES "/strings"));
    for (const QString& name : folder.entryList(QDir::Files)) {
        EXPECT_TRUE(hasOnlyCommentsAndEntries(QStringLiteral("strings/") + name)) << name.toStdString();
    }
    EXPECT_TRUE(hasOnlyCommentsAndEntries(QStringLiteral("partner/strings.txt")));
}

TEST(TextFiles, ThereIsOneForEachLanguageAndOneForAll)
{
    QStringList expected = {QStringLiteral("common.txt")};
    for (const std::string& language : languages()) {
        expected.append(QString::fromStdString(language) + QStringLiteral(".txt"));
    }
    expected.sort();
    const QDir folder(QStringLiteral(RESOURCE_SOURCES "/strings"));
    QStringList found = folder.entryList(QDir::Files);
    found.sort();
    EXPECT_EQ(found, expected);
}

} // namespace
