// vr_add_resource_library() in a project of its own that has nothing of ours but the function's files.
#include "resource_library.h"
#include "tool_run.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>

using resources::test::readFile;
using resources::test::ResourceLibrary;
using resources::test::runTool;
using resources::test::Texts;
using resources::test::ToolRun;
using resources::test::writeFile;

namespace
{

QByteArray samplePicture()
{
    return readFile(QStringLiteral(RESOURCE_SOURCES "/partner/icon.png"));
}

/// Copies the function and its helpers, and nothing else of ours, as an installed package has them.
bool copyHelpers(const QString& target)
{
    const QDir helpers(QStringLiteral(CMAKE_HELPERS));
    const QStringList names =
        helpers.entryList({QStringLiteral("VrAddResourceLibrary.cmake"), QStringLiteral("VrResource*")}, QDir::Files);
    const auto copied = [&](const QString& name) {
        return QFile::copy(helpers.filePath(name), target + QLatin1Char('/') + name);
    };
    return QDir().mkdir(target) && !names.isEmpty() && std::all_of(names.begin(), names.end(), copied);
}

class PartnerProject : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_directory.isValid());
        ASSERT_TRUE(copyHelpers(place(QStringLiteral("helpers"))));
        ASSERT_TRUE(writeFile(place(QStringLiteral("brand.txt")), "4092 Kite\n5001 a;b[c]\"d\"\\\\e\n"));
    }

    [[nodiscard]] QString place(const QString& name) const { return m_directory.filePath(name); }
    [[nodiscard]] QString built(const QString& name) const { return place(QStringLiteral("build/") + name); }

    [[nodiscard]] bool writeProject(const QByteArray& languages, const QByteArray& body) const
    {
        return writeFile(place(QStringLiteral("CMakeLists.txt")),
                         "cmake_minimum_required(VERSION 3.25)\nproject(Partner LANGUAGES " + languages +
                             ")\ninclude(helpers/VrAddResourceLibrary.cmake)\n" + body + "\n");
    }

    [[nodiscard]] ToolRun configure() const
    {
        return runTool(QStringLiteral(CMAKE_PROGRAM),
                       {QStringLiteral("-S"), m_directory.path(), QStringLiteral("-B"), place(QStringLiteral("build")),
                        QStringLiteral("-G"), QStringLiteral(BUILD_GENERATOR),
                        QStringLiteral("-DCMAKE_CXX_COMPILER=" CXX_COMPILER)});
    }

    [[nodiscard]] ToolRun build() const
    {
        return runTool(QStringLiteral(CMAKE_PROGRAM), {QStringLiteral("--build"), place(QStringLiteral("build"))});
    }

    void makeProject(const QByteArray& body) const
    {
        ASSERT_TRUE(writeProject("CXX", body));
        const ToolRun configured = configure();
        ASSERT_EQ(configured.exitCode, 0) << configured.errors.toStdString();
        const ToolRun made = build();
        ASSERT_EQ(made.exitCode, 0) << made.output.toStdString() << made.errors.toStdString();
    }

    QTemporaryDir m_directory;
};

TEST_F(PartnerProject, OneCallMakesTheBrandsLibrary)
{
    ASSERT_TRUE(writeFile(place(QStringLiteral("sign & mark.png")), samplePicture()));
    makeProject("vr_add_resource_library(Brand NAME VrCustomRes STRINGS brand.txt\n"
                "    ICON \"sign & mark.png\" LIB_PREFIX none)");
    const ResourceLibrary library(built(QStringLiteral("VrCustomRes.so")));
    ASSERT_EQ(library.loadError(), "");
    EXPECT_EQ(library.texts(), (Texts{{4092, L"Kite"}, {5001, L"a;b[c]\"d\"\\e"}}));
    EXPECT_EQ(readFile(QStringLiteral(":/VrCustomRes/VrCustomRes/IDI_VORNA_OEM_APPLICATION_EXE")), samplePicture());
}

TEST_F(PartnerProject, PrefixDirectoryAndFileNameAreTheOnesGiven)
{
    ASSERT_TRUE(writeFile(place(QStringLiteral("icon.png")), samplePicture()));
    makeProject("vr_add_resource_library(First NAME Same STRINGS brand.txt ICON icon.png PREFIX /one/two\n"
                "    OUTPUT_DIRECTORY first)\n"
                "vr_add_resource_library(Second NAME Same STRINGS brand.txt ICON icon.png\n"
                "    OUTPUT_DIRECTORY \"${CMAKE_BINARY_DIR}/second\" LIB_PREFIX lib)");
    const ResourceLibrary first(built(QStringLiteral("first/libSame.so")));
    EXPECT_EQ(first.loadError(), "");
    EXPECT_EQ(readFile(QStringLiteral(":/one/two/IDI_VORNA_OEM_APPLICATION_EXE")), samplePicture());
    EXPECT_FALSE(QFile::exists(QStringLiteral(":/Same/Same/IDI_VORNA_OEM_APPLICATION_EXE")));
    const ResourceLibrary second(built(QStringLiteral("second/libSame.so")));
    EXPECT_EQ(second.loadError(), "");
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/Same/Same/IDI_VORNA_OEM_APPLICATION_EXE")));
}

TEST_F(PartnerProject, WithoutAnIconNothingOfQtIsNeeded)
{
    makeProject("vr_add_resource_library(Brand NAME VrCustomRes STRINGS brand.txt)");
    const QString library = built(QStringLiteral("libVrCustomRes.so"));
    ASSERT_EQ(ResourceLibrary(library).texts().size(), 2U);
    const ToolRun readelf = runTool(QStringLiteral("readelf"), {QStringLiteral("-d"), library});
    EXPECT_TRUE(readelf.output.contains(QStringLiteral("(SYMTAB)")));
    EXPECT_FALSE(readelf.output.contains(QStringLiteral("Qt")));
}

TEST_F(PartnerProject, AChangedTextIsBuiltAgain)
{
    makeProject("vr_add_resource_library(Brand NAME VrCustomRes STRINGS brand.txt)");
    ASSERT_TRUE(writeFile(place(QStringLiteral("brand.txt")), "4092 Heron\n"));
    ASSERT_EQ(build().exitCode, 0);
    EXPECT_EQ(ResourceLibrary(built(QStringLiteral("libVrCustomRes.so"))).texts(), (Texts{{4092, L"Heron"}}));
}

TEST_F(PartnerProject, AChangedPictureIsBuiltAgain)
{
    ASSERT_TRUE(writeFile(place(QStringLiteral("icon.png")), "before"));
    makeProject("vr_add_resource_library(Brand NAME VrCustomRes STRINGS brand.txt ICON icon.png)");
    ASSERT_TRUE(writeFile(place(QStringLiteral("icon.png")), samplePicture()));
    ASSERT_EQ(build().exitCode, 0);
    const ResourceLibrary library(built(QStringLiteral("libVrCustomRes.so")));
    EXPECT_EQ(readFile(QStringLiteral(":/VrCustomRes/VrCustomRes/IDI_VORNA_OEM_APPLICATION_EXE")), samplePicture());
}

TEST_F(PartnerProject, AFaultyTextEndsTheBuildAndNamesFileAndLine)
{
    makeProject("vr_add_resource_library(Brand NAME VrCustomRes STRINGS brand.txt)");
    ASSERT_TRUE(writeFile(place(QStringLiteral("brand.txt")), "4092 Heron\noops\n"));
    const ToolRun failed = build();
    EXPECT_NE(failed.exitCode, 0);
    const QString told = failed.output + failed.errors;
    EXPECT_TRUE(told.contains(QStringLiteral("/brand.txt:2: error: malformed line"))) << told.toStdString();
}

struct Misuse {
    const char* name;
    const char* arguments;
    const char* complaint;
};

/// What a failure and the list of tests show of a case.
void PrintTo(const Misuse& misuse, std::ostream* stream)
{
    *stream << misuse.complaint;
}

class PartnerMisuse : public PartnerProject, public testing::WithParamInterface<Misuse>
{
};

TEST_P(PartnerMisuse, IsToldWhenConfiguring)
{
    ASSERT_TRUE(writeProject("NONE", QByteArray("vr_add_resource_library(Brand ") + GetParam().arguments + ")"));
    const ToolRun run = configure();
    EXPECT_NE(run.exitCode, 0);
    const QString told = run.errors.simplified(); // the messages are broken into lines
    EXPECT_TRUE(told.contains(QString::fromLatin1(GetParam().complaint))) << told.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    All, PartnerMisuse,
    testing::Values(Misuse{"NoName", "STRINGS brand.txt", "(Brand): NAME and STRINGS are needed"},
                    Misuse{"NoStrings", "NAME VrCustomRes", "(Brand): NAME and STRINGS are needed"},
                    Misuse{"UnknownPrefixWord", "NAME A STRINGS brand.txt LIB_PREFIX so",
                           "(Brand): LIB_PREFIX is lib or none, not so"},
                    Misuse{"UnknownWord", "extra NAME A STRINGS brand.txt", "(Brand): unknown arguments extra"},
                    Misuse{"NoSuchPicture", "NAME A STRINGS brand.txt ICON none.png", "(Brand): no icon "}),
    [](const auto& instance) { return std::string(instance.param.name); });

} // namespace
