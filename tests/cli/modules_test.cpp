#include <algorithm>
#include <fstream>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

std::vector<std::string> listedNames()
{
    std::ifstream file(MODULE_LIST);
    std::vector<std::string> names;
    for (std::string line; std::getline(file, line);)
        names.push_back(line);
    return names;
}

QJsonValue fileOf(const QJsonArray& modules, const std::string& name)
{
    for (const auto& row : modules) {
        if (row.toObject().value(QStringLiteral("name")).toString().toStdString() == name)
            return row.toObject().value(QStringLiteral("file"));
    }
    return QJsonValue(QJsonValue::Undefined);
}

std::string pathOf(const QJsonObject& answer, const std::string& library)
{
    for (const auto& row : answer.value(QStringLiteral("libraries")).toArray()) {
        if (row.toObject().value(QStringLiteral("name")).toString().toStdString() == library)
            return row.toObject().value(QStringLiteral("path")).toString().toStdString();
    }
    return {};
}

QJsonArray modulesIn(const QJsonObject& answer)
{
    return answer.value(QStringLiteral("modules")).toArray();
}

TEST(Modules, AreThoseOfTheLibrary)
{
    const Installation installation;
    const QJsonArray modules = modulesIn(installation.object({"modules"}));
    const std::vector<std::string> names = listedNames();
    ASSERT_EQ(names.size(), 81U);
    ASSERT_EQ(modules.size(), 81);
    for (int i = 0; i < 81; ++i)
        EXPECT_EQ(modules.at(i).toObject().value(QStringLiteral("name")).toString().toStdString(),
                  names.at(static_cast<std::size_t>(i)));
}

TEST(Modules, HaveTheirFilesInTheProgramDirectory)
{
    const Installation installation;
    const std::vector<std::string> names = listedNames();
    installation.write("lib" + names.at(0) + ".so", "a module");
    installation.write(names.at(1) + ".so", "a module");
    installation.write(names.at(2) + ".txt", "no module");
    const QJsonArray modules = modulesIn(installation.object({"modules"}));
    EXPECT_EQ(fileOf(modules, names.at(0)).toString().toStdString(),
              (installation.programDir() / ("lib" + names.at(0) + ".so")).string());
    EXPECT_EQ(fileOf(modules, names.at(1)).toString().toStdString(),
              (installation.programDir() / (names.at(1) + ".so")).string());
    EXPECT_TRUE(fileOf(modules, names.at(2)).isNull());
    const std::string words = answerOf(installation.run({"modules"}));
    expectContains(words, "\n81 modules, 2 of them in " + installation.programDir().string() + "\n");
    expectContains(words, (installation.programDir() / (names.at(1) + ".so")).string() + "\n");
}

TEST(Modules, TellWhetherANameIsOneOfThem)
{
    const Installation installation;
    installation.write("libVrPlot.so", "a module");
    const std::string file = installation.programDir() / "libVrPlot.so";
    expectAnswer(installation.run({"modules", "VrPlot"}), "VrPlot is one of the product's own modules: " + file);
    expectAnswer(installation.run({"modules", "vrPLOT"}), "VrPlot is one of the product's own modules: " + file);
    const QJsonArray modules = modulesIn(installation.object({"modules", "VrPlot"}));
    ASSERT_EQ(modules.size(), 1);
    EXPECT_EQ(fileOf(modules, "VrPlot").toString().toStdString(), file);
}

TEST(Modules, TellThatOneHasNoFile)
{
    const Installation installation;
    expectAnswer(installation.run({"modules", "VrPlot"}),
                 "VrPlot is one of the product's own modules: no file of it in " + installation.programDir().string());
}

TEST(Modules, TakeFileNamesByTheirBaseName)
{
    const Installation installation;
    for (const char* const name :
         {"libVrPlot.so", "VrPlot.so", "/opt/x/libVrPlot.so", "x\\VrPlot.so", "libVrPlot.so.1"})
        expectContains(answerOf(installation.run({"modules", name})),
                       std::string(name) + " is taken as VrPlot\nVrPlot is one of the product's own modules: ");
}

TEST(Modules, DoNotHaveAnotherName)
{
    const Installation installation;
    expectError(installation.run({"modules", "VrNone"}), kNotFound, "VrNone is none of the product's own modules");
    expectError(installation.run({"modules", "libVrNone.so", "--json"}), kNotFound,
                "libVrNone.so, taken as VrNone, is none of the product's own modules");
    expectError(installation.run({"modules", ""}), kNotFound, " is none of the product's own modules");
}

TEST(Modules, ComeWithTheLibrariesOfAStart)
{
    const Installation installation;
    const QJsonObject answer = installation.object({"modules", "--language", "de-DE"});
    for (const char* const name : {"libVrUInfo.so", "libVrOsBase.so", "libVrPlatformBase.so"})
        EXPECT_EQ(pathOf(answer, name), std::string(TOOL_LIBRARIES) + "/" + name);
    EXPECT_EQ(pathOf(answer, "libVrUInfoRes.so"), (installation.programDir() / "de-DE/libVrUInfoRes.so").string());
    EXPECT_EQ(pathOf(answer, "libQt5Core.so.5"), "");
}

TEST(Modules, ComeWithTheLibrariesBesideTheProgram)
{
    const Installation installation;
    giveEverybodyAccess(installation); // puts them there
    const QJsonObject answer = installation.object({"modules"});
    EXPECT_EQ(pathOf(answer, "libVrUInfo.so"), (installation.programDir() / "libVrUInfo.so").string());
    expectContains(answerOf(installation.run({"modules"})), (installation.programDir() / "libVrOsBase.so").string());
}

TEST(Modules, ComeWithAPartnersLibrary)
{
    const Installation installation;
    const fs::path library = installation.programDir() / "brand.so";
    fs::copy_file(fs::path(TOOL_RESOURCES) / "partner/VrCustomRes.so", library);
    EXPECT_EQ(installation.run({"set", "@profile/CommonSettings/CustomResFile", library}).exitCode, kDone);
    EXPECT_EQ(pathOf(installation.object({"modules"}), "brand.so"), library.string());
}

} // namespace
