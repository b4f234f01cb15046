#include <algorithm>
#include <map>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

std::map<std::string, QJsonObject> pathsByName(const Installation& installation, const Arguments& options = {})
{
    Arguments arguments{"paths"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    std::map<std::string, QJsonObject> result;
    for (const auto& row : installation.array(arguments))
        result[row.toObject().value(QStringLiteral("name")).toString().toStdString()] = row.toObject();
    return result;
}

std::string pathOf(const QJsonObject& row)
{
    return row.value(QStringLiteral("path")).toString().toStdString();
}

bool exists(const QJsonObject& row)
{
    EXPECT_TRUE(row.value(QStringLiteral("exists")).isBool());
    return row.value(QStringLiteral("exists")).toBool();
}

TEST(Paths, AreThoseOfTheInstallationAndTheUser)
{
    const Installation installation;
    const std::string program = installation.programDir();
    const std::string roaming = installation.home() / ".config/";
    const std::string local = installation.home() / ".local/share/";
    const std::map<std::string, std::string> expected = {
        {"settings file", installation.settingsFile()},
        {"program directory", program + "/"},
        {"home", installation.home().string() + "/"},
        {"roaming data", roaming},
        {"roaming company data", roaming + "HALVIK/"},
        {"roaming product data", roaming + "HALVIK/VORNA/"},
        {"roaming version data", roaming + "HALVIK/VORNA/2026/"},
        {"roaming language data", roaming + "HALVIK/VORNA/2026/en-US/"},
        {"support", roaming + "HALVIK/VORNA/2026/en-US/Support/"},
        {"plotters", roaming + "HALVIK/VORNA/2026/en-US/Plotters/"},
        {"crash reports", roaming + "HALVIK/VORNA/2026/en-US/CrashReport/"},
        {"print styles", roaming + "HALVIK/VORNA/2026/en-US/Printstyle/"},
        {"local data", local},
        {"local company data", local + "HALVIK/"},
        {"local product data", local + "HALVIK/VORNA/"},
        {"local version data", local + "HALVIK/VORNA/2026/"},
        {"local language data", local + "HALVIK/VORNA/2026/en-US/"},
        {"templates", local + "HALVIK/VORNA/2026/en-US//Template"},
        {"user data cache", program + "/UserDataCache"},
        {"language user data cache", program + "/UserDataCache/en-US"},
        {"resource directory", program + "/en-US"},
        {"help file", program + "/en-US/Help/VrHelp.pdf"},
    };
    const auto rows = pathsByName(installation);
    EXPECT_EQ(rows.size(), expected.size());
    for (const auto& [name, path] : expected)
        EXPECT_EQ(rows.count(name) ? pathOf(rows.at(name)) : "(not listed)", path) << name;
}

TEST(Paths, TellWhatExists)
{
    const Installation installation;
    auto rows = pathsByName(installation);
    EXPECT_TRUE(exists(rows["program directory"]));
    EXPECT_TRUE(exists(rows["resource directory"]));
    EXPECT_FALSE(exists(rows["settings file"]));
    EXPECT_FALSE(exists(rows["help file"]));
    installation.write("en-US/Help/VrHelp.pdf", "%PDF");
    installation.store("a", "1$1");
    rows = pathsByName(installation);
    EXPECT_TRUE(exists(rows["settings file"]));
    EXPECT_TRUE(exists(rows["help file"]));
}

TEST(Paths, FollowTheIdentity)
{
    const Installation installation;
    const auto rows =
        pathsByName(installation, {"--company", "Änder & Co", "--product", "VORNAM", "--language", "de-DE"});
    EXPECT_EQ(pathOf(rows.at("roaming language data")),
              installation.home().string() + "/.config/Änder & Co/VORNAM/2026/de-DE/");
    EXPECT_EQ(pathOf(rows.at("settings file")),
              installation.home().string() + "/.config/Änder & Co/VORNAM/2026/VORNAM.conf");
    EXPECT_EQ(pathOf(rows.at("resource directory")), (installation.programDir() / "de-DE").string());
}

TEST(Paths, AreToldOneALine)
{
    const Installation installation;
    const std::string words = installation.run({"paths"}).out;
    expectContains(words, "exists   program directory         " + installation.programDir().string() + "/\n");
    expectContains(words, "missing  settings file             " + installation.settingsFile().string() + "\n");
    EXPECT_EQ(std::count(words.begin(), words.end(), '\n'), 22);
}

} // namespace
