#include "tool_run.h"

#include <QList>
#include <QRegularExpression>
#include <gtest/gtest.h>

using resources::test::readFile;

namespace
{

QByteArray helpFile()
{
    return readFile(QStringLiteral(RESOURCE_SOURCES "/help/VrHelp.pdf"));
}

/// The place of the cross-reference table as the end of the file tells it, or -1.
int tableOffset(const QByteArray& pdf)
{
    const QRegularExpression end(QStringLiteral("startxref\n(\\d+)\n%%EOF\n$"));
    const QRegularExpressionMatch match = end.match(QString::fromLatin1(pdf));
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}

/// Offsets of the objects in use, in the order of their numbers.
QList<int> objectOffsets(const QByteArray& table)
{
    const QRegularExpression row(QStringLiteral("(\\d{10}) 00000 n \n"));
    QList<int> offsets;
    for (auto matches = row.globalMatch(QString::fromLatin1(table)); matches.hasNext();) {
        offsets.append(matches.next().captured(1).toInt());
    }
    return offsets;
}

/// Whether each offset leads to the object whose number is its place in the list.
bool leadToTheirObjects(const QList<int>& offsets, const QByteArray& pdf)
{
    for (int i = 0; i < offsets.size(); ++i) {
        if (!pdf.mid(offsets[i]).startsWith(QByteArray::number(i + 1) + " 0 obj\n")) {
            return false;
        }
    }
    return true;
}

TEST(HelpFile, IsOfTheFormatItsNameSays)
{
    EXPECT_TRUE(helpFile().startsWith("%PDF-1.4\n"));
}

TEST(HelpFile, CrossReferencesPointAtTheirObjects)
{
    const QByteArray pdf = helpFile();
    const int table = tableOffset(pdf);
    ASSERT_GT(table, 0);
    ASSERT_TRUE(pdf.mid(table).startsWith("xref\n0 6\n0000000000 65535 f \n"));
    const QList<int> offsets = objectOffsets(pdf.mid(table));
    ASSERT_EQ(offsets.size(), 5);
    EXPECT_TRUE(leadToTheirObjects(offsets, pdf));
}

TEST(HelpFile, LengthOfThePageIsTheOneStated)
{
    const QRegularExpression content(QStringLiteral("/Length (\\d+) >>\nstream\n(.*)\nendstream"),
                                     QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = content.match(QString::fromLatin1(helpFile()));
    ASSERT_TRUE(match.hasMatch());
    EXPECT_EQ(match.captured(1).toInt(), match.captured(2).size());
    EXPECT_TRUE(match.captured(2).contains(QStringLiteral("(VORNA help) Tj")));
}

} // namespace
