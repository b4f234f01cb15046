#include "resource_library.h"
#include "tool_run.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

using resources::test::languageLibrary;
using resources::test::languages;
using resources::test::partnerLibrary;
using resources::test::runTool;
using resources::test::ToolRun;

namespace
{

std::vector<QString> libraries()
{
    std::vector<QString> paths = {partnerLibrary()};
    for (const std::string& language : languages()) {
        paths.push_back(languageLibrary(language));
    }
    return paths;
}

QStringList exportedSymbols(const QString& path)
{
    const ToolRun nm = runTool(QStringLiteral("nm"), {QStringLiteral("-D"), QStringLiteral("--defined-only"), path});
    QStringList names;
    for (const QString& line : nm.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        names.append(line.section(QLatin1Char(' '), -1));
    }
    names.sort();
    return names;
}

/// The values of the dynamic section's entries of one kind, like NEEDED.
QStringList dynamicEntries(const QString& path, const QString& kind)
{
    const ToolRun readelf = runTool(QStringLiteral("readelf"), {QStringLiteral("-d"), path});
    const QRegularExpression entry(QStringLiteral("\\(%1\\).*\\[(.*)\\]").arg(kind));
    QStringList values;
    for (auto matches = entry.globalMatch(readelf.output); matches.hasNext();) {
        values.append(matches.next().captured(1));
    }
    return values;
}

class ResourceSymbols : public testing::TestWithParam<QString>
{
};

TEST_P(ResourceSymbols, ExactlyTheTwoOfTheTableAreExported)
{
    const QStringList expected = {QStringLiteral("VrResourceStringCount"), QStringLiteral("VrResourceStrings")};
    EXPECT_EQ(exportedSymbols(GetParam()), expected) << GetParam().toStdString();
}

TEST_P(ResourceSymbols, NeedsOfQtTheCoreOnly)
{
    const QStringList needed = dynamicEntries(GetParam(), QStringLiteral("NEEDED"));
    EXPECT_EQ(needed.filter(QStringLiteral("Qt5")), QStringList(QStringLiteral("libQt5Core.so.5")));
    EXPECT_TRUE(needed.filter(QStringLiteral("Vr")).isEmpty());
}

// Fifteen files of one name must not be taken for one another by the loader.
TEST_P(ResourceSymbols, LibraryHasNoNameBesideItsPath)
{
    EXPECT_TRUE(dynamicEntries(GetParam(), QStringLiteral("SONAME")).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, ResourceSymbols, testing::ValuesIn(libraries()), [](const auto& instance) {
    const QString folder = instance.param.section(QLatin1Char('/'), -2, -2);
    return resources::test::testName(folder.toStdString());
});

} // namespace
