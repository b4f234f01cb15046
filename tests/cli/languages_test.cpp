#include <algorithm>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

struct Expected {
    const char* name;
    const char* english;
    int lcid;
};

constexpr Expected kLanguages[] = {
    {"cs-CZ", "Czech", 0x405},
    {"de-DE", "German", 0x407},
    {"en-US", "English", 0x409},
    {"es-ES", "Spanish", 0xC0A},
    {"fr-FR", "French", 0x40C},
    {"hu-HU", "Hungarian", 0x40E},
    {"it-IT", "Italian", 0x410},
    {"ja-JP", "Japanese", 0x411},
    {"ko-KR", "Korean", 0x412},
    {"pl-PL", "Polish", 0x415},
    {"pt-PT", "Portuguese", 0x416},
    {"ru-RU", "Russian", 0x419},
    {"tr-TR", "Turkish", 0x41F},
    {"zh-CN", "Simplified Chinese", 0x804},
    {"zh-TW", "Traditional Chinese", 0x404},
};

QJsonObject rowOf(const QJsonArray& rows, const char* name)
{
    for (const auto& row : rows) {
        if (row.toObject().value(QStringLiteral("name")).toString() == QLatin1String(name))
            return row.toObject();
    }
    return {};
}

std::string textOf(const QJsonObject& row, const char* key)
{
    return row.value(QLatin1String(key)).toString().toStdString();
}

void expectRow(const QJsonObject& row, int id, const Expected& expected)
{
    EXPECT_EQ(row.value(QLatin1String("id")).toInt(-1), id);
    EXPECT_EQ(row.value(QLatin1String("lcid")).toInt(), expected.lcid);
    EXPECT_EQ(textOf(row, "name") + " " + textOf(row, "englishName"),
              std::string(expected.name) + " " + expected.english);
}

void expectState(const QJsonObject& row, bool isInstalled, const char* remark)
{
    EXPECT_EQ(row.value(QStringLiteral("installed")), QJsonValue(isInstalled));
    EXPECT_EQ(row.value(QStringLiteral("remark")).toString(), QLatin1String(remark));
}

/// The line of a language in the words of `languages`.
std::string lineOf(const std::string& words, const std::string& name)
{
    const std::size_t place = words.find("  " + name + "  ");
    if (place == std::string::npos)
        return {};
    const std::size_t begin = words.rfind('\n', place) + 1;
    return words.substr(begin, words.find('\n', place) - begin);
}

TEST(Languages, AreTheFifteenInOrder)
{
    const Installation installation;
    const QJsonArray rows = installation.array({"languages"});
    ASSERT_EQ(rows.size(), 15);
    for (int id = 0; id < 15; ++id)
        expectRow(rows.at(id).toObject(), id, kLanguages[id]);
}

TEST(Languages, OneIsCurrent)
{
    const Installation installation;
    for (const auto& row : installation.array({"languages", "--language", "de-DE"})) {
        const bool isGerman = row.toObject().value(QStringLiteral("name")).toString() == QStringLiteral("de-DE");
        EXPECT_EQ(row.toObject().value(QStringLiteral("current")), QJsonValue(isGerman));
    }
}

TEST(Languages, TellWhatIsInstalledOrWhyNot)
{
    const Installation installation;
    installation.write("fr-FR/readme.txt", "no library");
    installation.write("it-IT", "a file");
    installation.write("ja-JP/other.so", "another library");
    const QJsonArray rows = installation.array({"languages"});
    expectState(rowOf(rows, "en-US"), true, "");
    expectState(rowOf(rows, "de-DE"), true, "");
    expectState(rowOf(rows, "cs-CZ"), false, "no folder");
    expectState(rowOf(rows, "fr-FR"), false, "no *.so in the folder");
    expectState(rowOf(rows, "it-IT"), false, "not a folder");
    expectState(rowOf(rows, "ja-JP"), true, "libVrUInfoRes.so is missing or not readable");
}

TEST(Languages, TellOfAFolderThatCannotBeRead)
{
    const Installation installation;
    installation.installLanguage("tr-TR");
    giveEverybodyAccess(installation);
    std::filesystem::permissions(installation.programDir() / "tr-TR", std::filesystem::perms::none);
    const ProcessResult result = installation.runUnprivileged({"languages"});
    EXPECT_EQ(result.exitCode, kDone) << result.err;
    EXPECT_EQ(lineOf(result.out, "tr-TR"),
              "  12  0x041f  tr-TR  Turkish              not installed: folder not readable");
}

TEST(Languages, AreToldOneALine)
{
    const Installation installation;
    const std::string words = installation.run({"languages"}).out;
    EXPECT_EQ(words.substr(0, words.find('\n')), "  ID  LCID    NAME   LANGUAGE             STATE");
    EXPECT_EQ(lineOf(words, "en-US"), "*  2  0x0409  en-US  English              installed");
    EXPECT_EQ(lineOf(words, "de-DE"), "   1  0x0407  de-DE  German               installed");
    EXPECT_EQ(lineOf(words, "zh-TW"), "  14  0x0404  zh-TW  Traditional Chinese  not installed: no folder");
    EXPECT_EQ(std::count(words.begin(), words.end(), '\n'), 16);
}

} // namespace
