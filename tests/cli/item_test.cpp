#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

void fill(const Installation& installation)
{
    installation.store("Demo/b", "1$-3");
    installation.store("Demo/a", "5$x \"y\"");
    installation.store("Demo/Sub/c", "2$4");
    installation.store("Demo/Sub/Deep/d", "4$01ff");
    installation.store("Demo/Other/e", "plain");
}

QStringList namesIn(const QJsonObject& item, const char* list)
{
    QStringList names;
    for (const auto& row : item.value(QLatin1String(list)).toArray())
        names.append(row.toObject().value(QStringLiteral("name")).toString());
    return names;
}

TEST(List, HasTheSubItemsAndThenTheValuesByName)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"list", "Demo"}), "item    Other/\n"
                                                     "item    Sub/\n"
                                                     "string  a = \"x \\\"y\\\"\"\n"
                                                     "int32   b = -3");
}

TEST(List, TakesSeparatorsAtTheEnds)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"list", "/Demo/Sub/"}), "item    Deep/\nint64   c = 4");
}

TEST(List, OfTheTopHasTheTopLevel)
{
    const Installation installation;
    installation.store("Loose", "5$x");
    installation.store("Software/a", "1$1");
    expectAnswer(installation.run({"list", "/"}), "item    Software/\nstring  Loose = \"x\"");
}

TEST(List, OfAnAbsentItemIsNotFound)
{
    const Installation installation;
    expectError(installation.run({"list", "@settings"}), kNotFound, kSettings + ": there is no such item");
    expectError(installation.run({"list", "@settings", "--json"}), kNotFound, "there is no such item");
}

TEST(List, AnswersInJson)
{
    const Installation installation;
    fill(installation);
    const QJsonObject answer = installation.object({"list", "Demo"});
    EXPECT_EQ(answer.value(QStringLiteral("path")).toString(), QStringLiteral("Demo"));
    EXPECT_EQ(answer.value(QStringLiteral("items")).toArray(),
              QJsonArray({QStringLiteral("Other"), QStringLiteral("Sub")}));
    const QJsonArray values = answer.value(QStringLiteral("values")).toArray();
    ASSERT_EQ(values.size(), 2);
    EXPECT_EQ(values.at(1).toObject(), (QJsonObject{{QStringLiteral("name"), QStringLiteral("b")},
                                                    {QStringLiteral("type"), QStringLiteral("int32")},
                                                    {QStringLiteral("value"), -3}}));
}

TEST(Tree, HasEverythingBelow)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"tree", "Demo"}), "Demo/\n"
                                                     "  a = string \"x \\\"y\\\"\"\n"
                                                     "  b = int32 -3\n"
                                                     "  Other/\n"
                                                     "    e = string \"plain\" (stored as \"plain\")\n"
                                                     "  Sub/\n"
                                                     "    c = int64 4\n"
                                                     "    Deep/\n"
                                                     "      d = binary 01ff");
}

TEST(Tree, AnswersInJson)
{
    const Installation installation;
    fill(installation);
    const QJsonObject answer = installation.object({"tree", "Demo"});
    EXPECT_EQ(answer.value(QStringLiteral("path")).toString(), QStringLiteral("Demo"));
    EXPECT_EQ(namesIn(answer, "values"), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(namesIn(answer, "items"), (QStringList{QStringLiteral("Other"), QStringLiteral("Sub")}));
    const QJsonObject sub = answer.value(QStringLiteral("items")).toArray().at(1).toObject();
    EXPECT_EQ(namesIn(sub, "values"), QStringList(QStringLiteral("c")));
    EXPECT_EQ(namesIn(sub, "items"), QStringList(QStringLiteral("Deep")));
}

TEST(Tree, OfTheTopHasTheWholeFile)
{
    const Installation installation;
    installation.store("Software/HALVIK/CurProduct", "5$VORNA");
    installation.store("Software/HALVIK/VORNA/2026/CurVer", "5$de-DE");
    expectAnswer(installation.run({"tree", "/"}), "/\n"
                                                  "  Software/\n"
                                                  "    HALVIK/\n"
                                                  "      CurProduct = string \"VORNA\"\n"
                                                  "      VORNA/\n"
                                                  "        2026/\n"
                                                  "          CurVer = string \"de-DE\"");
}

TEST(Tree, OfAnAbsentItemIsNotFound)
{
    const Installation installation;
    expectError(installation.run({"tree", "@recent"}), kNotFound, "there is no such item");
}

TEST(Tree, ReachesTheDeepestItem)
{
    const Installation installation;
    std::string path = "d";
    while (path.size() + 2 <= 1019)
        path += "/d";
    installation.store(path + "/v", "1$7"); // the item's path has 1019 characters
    const std::string answer = installation.run({"tree", "d"}).out;
    EXPECT_NE(answer.find(" v = int32 7\n"), std::string::npos);
    EXPECT_EQ(answer.find("too deep"), std::string::npos);
}

TEST(Tree, SaysWhereItCannotReach)
{
    const Installation installation;
    std::string path = "d";
    while (path.size() <= 1021)
        path += "/d";
    installation.store(path + "/v", "1$7");
    EXPECT_NE(installation.run({"tree", "d"}).out.find("(too deep to be read)"), std::string::npos);
}

} // namespace
