#include <algorithm>
#include <cstdio>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

void fill(const Installation& installation)
{
    installation.store("Demo/Grid/Step", "1$125");
    installation.store("Demo/Grid/Title", "5$The Big one");
    installation.store("Demo/Other", "5$a grid \"line\"");
    installation.store("Demo/Wide/Gap", "3$000000000000c03f"); // 0.125
    installation.store("Demo/bytes", "4$0abc");
    installation.store("Demo/plain", "untagged");
}

TEST(Find, HasNamesAndValuesByPath)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"find", "grid"}), "Demo/Grid/\n"
                                                     "Demo/Grid/Step = int32 125\n"
                                                     "Demo/Grid/Title = string \"The Big one\"\n"
                                                     "Demo/Other = string \"a grid \\\"line\\\"\"");
}

TEST(Find, LooksAtNumbersBytesAndDoublesAsTheyArePrinted)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"find", "125"}), "Demo/Grid/Step = int32 125\n"
                                                    "Demo/Wide/Gap = double 0.125");
    expectAnswer(installation.run({"find", "0ABC"}), "Demo/bytes = binary 0abc");
}

TEST(Find, LooksAtWhatIsStoredWhereTheViewDoesNotTellIt)
{
    const Installation installation;
    installation.store("Demo/odd", "1$seven");
    expectAnswer(installation.run({"find", "seven"}), "Demo/odd = int32 0 (stored as \"1$seven\")");
    installation.store("Demo/text", "5$x");
    expectError(installation.run({"find", "5$"}), kNotFound, "/: nothing there has \"5$\" in it");
}

TEST(Find, InNamesOnly)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"find", "grid", "--names"}), "Demo/Grid/\n"
                                                                "Demo/Grid/Step = int32 125\n"
                                                                "Demo/Grid/Title = string \"The Big one\"");
}

TEST(Find, InValuesOnly)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"find", "grid", "--values"}), "Demo/Other = string \"a grid \\\"line\\\"\"");
}

TEST(Find, InNamesAndValuesIsAsWithoutEither)
{
    const Installation installation;
    fill(installation);
    EXPECT_EQ(answerOf(installation.run({"find", "grid", "--values", "--names"})),
              answerOf(installation.run({"find", "grid"})));
}

TEST(Find, TellsCapitalLettersApartWhenAsked)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"find", "grid", "--match-case"}), "Demo/Other = string \"a grid \\\"line\\\"\"");
    installation.store("Demo/ümlaut", "5$x");
    expectAnswer(installation.run({"find", "ÜML"}), "Demo/ümlaut = string \"x\"");
    expectError(installation.run({"find", "ÜML", "--match-case"}), kNotFound, "nothing there has");
}

TEST(Find, LooksBelowThePathOnly)
{
    const Installation installation;
    fill(installation);
    installation.store(kSettings + "/Grid", "5$x");
    expectAnswer(installation.run({"find", "step", "Demo/Grid"}), "Demo/Grid/Step = int32 125");
    expectAnswer(installation.run({"find", "grid", "@settings"}), kSettings + "/Grid = string \"x\"");
    expectError(installation.run({"find", "Demo", "Demo"}), kNotFound, "Demo: nothing there has \"Demo\" in it");
}

TEST(Find, HasTheValueAtThePathItself)
{
    const Installation installation;
    fill(installation);
    expectAnswer(installation.run({"find", "big", "Demo/Grid/Title"}), "Demo/Grid/Title = string \"The Big one\"");
}

TEST(Find, OfNothingIsNotFound)
{
    const Installation installation;
    expectError(installation.run({"find", "x"}), kNotFound, "/: nothing there has \"x\" in it");
    expectError(installation.run({"find", "x", "--json"}), kNotFound, "/: nothing there has \"x\" in it");
}

TEST(Find, DoesNotFindWhatTheStartRemembers)
{
    const Installation installation;
    expectError(installation.run({"find", "de-DE", "@product", "--language", "de-DE"}), kNotFound, "nothing there has");
}

TEST(Find, AnswersInJson)
{
    const Installation installation;
    fill(installation);
    const QJsonObject answer = installation.object({"find", "grid", "Demo"});
    EXPECT_EQ(answer.value(QStringLiteral("text")).toString(), QStringLiteral("grid"));
    EXPECT_EQ(answer.value(QStringLiteral("path")).toString(), QStringLiteral("Demo"));
    EXPECT_EQ(answer.value(QStringLiteral("items")).toArray(), QJsonArray({QStringLiteral("Demo/Grid")}));
    const QJsonArray values = answer.value(QStringLiteral("values")).toArray();
    ASSERT_EQ(values.size(), 3);
    EXPECT_EQ(values.at(0).toObject(), (QJsonObject{{QStringLiteral("path"), QStringLiteral("Demo/Grid/Step")},
                                                    {QStringLiteral("type"), QStringLiteral("int32")},
                                                    {QStringLiteral("value"), 125}}));
}

} // namespace
