#include <QtGlobal>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

std::string textOf(const QJsonObject& answer, const char* key)
{
    return answer.value(QLatin1String(key)).toString().toStdString();
}

TEST(VersionCommand, HasEachPieceInJson)
{
    const Installation installation;
    const QJsonObject answer = installation.object({"version"});
    EXPECT_EQ(textOf(answer, "tool"), TOOL_VERSION);
    EXPECT_EQ(textOf(answer, "build"), readFile(IDENTIFIER_FILE));
    EXPECT_EQ(textOf(answer, "program"), "2026");
    EXPECT_EQ(textOf(answer, "servicePack"), "");
    EXPECT_EQ(textOf(answer, "release"), "26.0");
    EXPECT_EQ(textOf(answer, "product"), "VORNA");
    EXPECT_EQ(textOf(answer, "qtBuild"), QT_VERSION_STR);
    EXPECT_EQ(textOf(answer, "qtRunning"), qVersion());
    EXPECT_EQ(textOf(answer, "library"), std::string(TOOL_LIBRARIES) + "/libVrUInfo.so");
}

TEST(VersionCommand, NamesTheLibraryBesideTheProgram)
{
    const Installation installation;
    giveEverybodyAccess(installation); // puts it there
    EXPECT_EQ(textOf(installation.object({"version"}), "library"),
              (installation.programDir() / "libVrUInfo.so").string());
}

TEST(VersionCommand, IsToldInWords)
{
    const Installation installation;
    expectAnswer(installation.run({"version"}),
                 std::string("tool                ") + TOOL_VERSION + "\n" +     //
                     "build               " + readFile(IDENTIFIER_FILE) + "\n" + //
                     "program version     2026\n"                                //
                     "service pack        none\n"                                //
                     "release             26.0\n"                                //
                     "product             VORNA\n"                               //
                     "Qt it is built with " +
                     QT_VERSION_STR + "\n" +                      //
                     "Qt it runs with     " + qVersion() + "\n" + //
                     "library             " + TOOL_LIBRARIES + "/libVrUInfo.so");
}

TEST(VersionCommand, MakesNoStart)
{
    const Installation installation;
    installation.store("Software/HALVIK/CurProduct", "5$Else");
    installation.store("Software/HALVIK/Else/2026/CurVer", "5$fr-FR"); // a start would ask
    EXPECT_EQ(textOf(installation.object({"version"}), "product"), "VORNA");
}

} // namespace
