#include <sstream>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace fs = std::filesystem;

namespace
{

fs::path listOf(const Installation& installation)
{
    return installation.home() / ".local/share/HALVIK/VR2D.conf";
}

std::string group(const std::string& entry, const std::string& name, const std::string& product,
                  const std::string& location)
{
    return "\n[" + entry + "]\nLanguage=zh-CN\nLocation=" + location + "\nProduct=" + product +
           "\nProductName=" + name + "\nVersion=2026\n";
}

/// This installation, one whose directory is gone, one that is elsewhere, and one without a group.
void fill(const Installation& installation)
{
    appendToFile(listOf(installation),
                 "[InstalledProducts]\n1=VORNA_2026_Chs\n10=Lost\n2=VORNA_Mech_2026_Chs\n3=VORNA_2025_Chs\n" +
                     group("VORNA_2026_Chs", "VORNA 2026 Chs", "VORNA", installation.programDir()) +
                     group("VORNA_Mech_2026_Chs", "VORNA Mech 2026 Chs", "VORNAM", "/nonexistent/vornam") +
                     group("VORNA_2025_Chs", "VORNA 2025 Chs", "VORNA", installation.root()) +
                     group("NotListed", "Not listed", "X", "/"));
}

/// The rows without the blanks that keep their columns in line.
std::vector<std::string> rowsOf(const std::string& answer)
{
    std::vector<std::string> rows;
    std::istringstream lines(answer);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string row;
        for (std::string word; words >> word;)
            row += (row.empty() ? "" : " ") + word;
        rows.push_back(row);
    }
    return rows;
}

TEST(Products, AreToldOneALineByNumber)
{
    const Installation installation;
    fill(installation);
    const std::string program = installation.programDir();
    const std::vector<std::string> expected = {
        "NO ENTRY NAME PRODUCT LANGUAGE VERSION LOCATION STATE",
        "1 VORNA_2026_Chs VORNA 2026 Chs VORNA zh-CN 2026 " + program + " this installation",
        "2 VORNA_Mech_2026_Chs VORNA Mech 2026 Chs VORNAM zh-CN 2026 /nonexistent/vornam location is gone",
        "3 VORNA_2025_Chs VORNA 2025 Chs VORNA zh-CN 2026 " + installation.root().string() + " there",
        "10 Lost incomplete: nothing is told about it"};
    EXPECT_EQ(rowsOf(answerOf(installation.run({"products"}))), expected);
}

TEST(Products, HaveTheirColumnsInLine)
{
    const Installation installation;
    fill(installation);
    std::istringstream lines(answerOf(installation.run({"products"})));
    std::string heading;
    std::getline(lines, heading);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_NE(line.at(heading.find("ENTRY")), ' ') << line;
        EXPECT_EQ(line.at(heading.find("ENTRY") - 1), ' ') << line;
        EXPECT_NE(line.at(heading.find("STATE")), ' ') << line;
        EXPECT_EQ(line.at(heading.find("STATE") - 1), ' ') << line;
    }
}

TEST(Products, AnswerInJson)
{
    const Installation installation;
    fill(installation);
    const QJsonArray rows = installation.array({"products"});
    ASSERT_EQ(rows.size(), 4);
    EXPECT_EQ(rows.at(0).toObject(),
              (QJsonObject{{QStringLiteral("number"), QStringLiteral("1")},
                           {QStringLiteral("entry"), QStringLiteral("VORNA_2026_Chs")},
                           {QStringLiteral("complete"), true},
                           {QStringLiteral("name"), QStringLiteral("VORNA 2026 Chs")},
                           {QStringLiteral("product"), QStringLiteral("VORNA")},
                           {QStringLiteral("language"), QStringLiteral("zh-CN")},
                           {QStringLiteral("version"), QStringLiteral("2026")},
                           {QStringLiteral("location"), QString::fromStdString(installation.programDir())},
                           {QStringLiteral("exists"), true},
                           {QStringLiteral("thisInstallation"), true}}));
    EXPECT_EQ(rows.at(1).toObject().value(QStringLiteral("exists")), QJsonValue(false));
    EXPECT_EQ(rows.at(1).toObject().value(QStringLiteral("thisInstallation")), QJsonValue(false));
    EXPECT_EQ(rows.at(2).toObject().value(QStringLiteral("exists")), QJsonValue(true));
    EXPECT_EQ(rows.at(2).toObject().value(QStringLiteral("thisInstallation")), QJsonValue(false));
    EXPECT_EQ(rows.at(3).toObject().value(QStringLiteral("complete")), QJsonValue(false));
}

TEST(Products, WithoutAListAreNotFoundAndTheRemedyIsNamed)
{
    const Installation installation;
    expectError(installation.run({"products"}), kNotFound,
                "there is no products list " + listOf(installation).string() +
                    " yet; `vruinfo first-run` enters this release into it");
    expectError(installation.run({"products", "--json"}), kNotFound, "there is no products list");
    EXPECT_TRUE(fs::is_empty(installation.home()));
}

TEST(Products, OfAnEmptyListAreNone)
{
    const Installation installation;
    appendToFile(listOf(installation), "\n");
    expectAnswer(installation.run({"products"}), listOf(installation).string() + ": no product is listed");
    EXPECT_TRUE(installation.array({"products"}).isEmpty());
}

TEST(Products, AreWhatAFirstRunEntered)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"first-run"}).exitCode, kDone);
    const QJsonArray rows = installation.array({"products"});
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows.at(0).toObject().value(QStringLiteral("entry")).toString(), QStringLiteral("VORNA_2026_Enu"));
    EXPECT_EQ(rows.at(0).toObject().value(QStringLiteral("thisInstallation")), QJsonValue(true));
}

TEST(Products, OfAListThatCannotBeReadAreAFailure)
{
    const Installation installation;
    fs::create_directories(listOf(installation));
    expectError(installation.run({"products"}), kFailed,
                "the products list " + listOf(installation).string() + " cannot be read");
}

TEST(Products, OfAListWithAValueThatAsksForAllTheMemoryAreAFailure)
{
    const Installation installation;
    fs::create_directories(listOf(installation).parent_path());
    appendToFile(listOf(installation), "[Foreign]\nList=@Variant(\\0\\0\\0\\v2222)\n[InstalledProducts]\n1=A\n");
    expectError(installation.run({"products"}), kFailed, "take damaged values out");
}

TEST(Products, LeaveTheListAndALockBesideItAlone)
{
    const Installation installation;
    fill(installation);
    const fs::path lock = listOf(installation).string() + ".lock";
    appendToFile(lock, "somebody's");
    const std::string before = readFile(listOf(installation));
    const auto time = fs::last_write_time(listOf(installation));
    EXPECT_EQ(installation.run({"products"}).exitCode, kDone);
    EXPECT_EQ(readFile(listOf(installation)), before);
    EXPECT_EQ(fs::last_write_time(listOf(installation)), time);
    EXPECT_EQ(readFile(lock), "somebody's");
}

} // namespace
