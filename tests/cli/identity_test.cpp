#include <algorithm>

#include <gtest/gtest.h>

#include "installation.h"

using namespace clitest;

namespace
{

QString textOf(const QJsonObject& identity, const char* piece, const char* key)
{
    return identity.value(QLatin1String(piece)).toObject().value(QLatin1String(key)).toString();
}

void expectPiece(const QJsonObject& identity, const char* piece, const char* value, const char* origin,
                 const char* place)
{
    EXPECT_EQ(textOf(identity, piece, "value"), QString::fromUtf8(value)) << piece;
    EXPECT_EQ(textOf(identity, piece, "origin"), QLatin1String(origin)) << piece;
    EXPECT_EQ(textOf(identity, piece, "place"), QLatin1String(place)) << piece;
}

/// Whether a place was passed over, with a reason behind it.
bool hasReason(const QJsonObject& identity, const char* piece, const char* place)
{
    const QJsonArray reasons =
        identity.value(QLatin1String(piece)).toObject().value(QLatin1String("passedOver")).toArray();
    return std::any_of(reasons.begin(), reasons.end(), [place](const QJsonValue& reason) {
        const QString text = reason.toString();
        return text.startsWith(QLatin1String(place)) && text.size() > QLatin1String(place).size();
    });
}

/// These are whole lines of the text.
void expectLines(const std::string& text, const std::string& lines)
{
    expectContains("\n" + text, "\n" + lines + "\n");
}

const std::string kIndent(16, ' ');

void expectValueAndOrigin(const QJsonObject& piece)
{
    EXPECT_FALSE(piece.value(QLatin1String("value")).isUndefined());
    EXPECT_TRUE(piece.value(QLatin1String("origin")).isString());
}

int editionOf(const Installation& installation, const char* product)
{
    const QJsonObject identity = installation.object({"identity", "--product", product});
    return identity.value(QLatin1String("edition")).toObject().value(QLatin1String("value")).toInt();
}

TEST(Identity, HasAllPiecesInJson)
{
    const Installation installation;
    const QJsonObject identity = installation.object({"identity"});
    const QStringList pieces = {
        QStringLiteral("company"),    QStringLiteral("edition"),      QStringLiteral("language"),
        QStringLiteral("oemCompany"), QStringLiteral("oemLegalName"), QStringLiteral("oemProduct"),
        QStringLiteral("product"),    QStringLiteral("profile"),      QStringLiteral("version")};
    EXPECT_EQ(identity.keys(), pieces);
    for (const QString& piece : pieces)
        expectValueAndOrigin(identity.value(piece).toObject());
}

TEST(Identity, IsBuiltInWhereNothingElseIsThere)
{
    const Installation installation;
    const QJsonObject identity = installation.object({"identity"});
    expectPiece(identity, "company", "HALVIK", "default", "");
    expectPiece(identity, "product", "VORNA", "default", "");
    expectPiece(identity, "version", "2026", "default", "");
    expectPiece(identity, "profile", "Default", "default", "");
    EXPECT_TRUE(hasReason(identity, "company", "VORNA.ini [Product] CompanyName: "));
    EXPECT_TRUE(hasReason(identity, "product", "Software/HALVIK/CurProduct: "));
    EXPECT_TRUE(hasReason(identity, "product", "VORNA.ini [Product] ProductName: "));
}

TEST(Identity, ComesFromTheIniFile)
{
    const Installation installation;
    installation.write("VORNA.ini", "[Product]\nCompanyName=Firma Ü\nProductName=VORNAM\nLocaleId=1031\n"
                                    "[LocaleIdLangName]\n1031=de-DE\n");
    const QJsonObject identity = installation.object({"identity"});
    expectPiece(identity, "company", "Firma Ü", "ini", "VORNA.ini [Product] CompanyName");
    expectPiece(identity, "product", "VORNAM", "ini", "VORNA.ini [Product] ProductName");
    expectPiece(identity, "language", "de-DE", "ini", "VORNA.ini [LocaleIdLangName] 1031");
}

TEST(Identity, ComesFromTheArguments)
{
    const Installation installation;
    const QJsonObject identity = installation.object(
        {"identity", "--company", "Firma Ü", "--product", "VORNAGEO", "--language", "DE-de", "--profile", "Zweite 😀"});
    expectPiece(identity, "company", "Firma Ü", "argument", "");
    expectPiece(identity, "product", "VORNAGEO", "argument", "");
    expectPiece(identity, "language", "de-DE", "argument", "");
    expectPiece(identity, "profile", "Zweite 😀", "argument", "");
}

TEST(Identity, IsRememberedFromTheStartBefore)
{
    const Installation installation;
    EXPECT_EQ(installation.run({"first-run", "--language", "de-DE"}).exitCode, kDone);
    EXPECT_EQ(installation.stored("Software/HALVIK/VORNA/2026/CurVer"), QStringLiteral("5$de-DE"));
    const QJsonObject identity = installation.object({"identity"});
    expectPiece(identity, "product", "VORNA", "settings", "Software/HALVIK/CurProduct");
    expectPiece(identity, "language", "de-DE", "settings", "Software/HALVIK/VORNA/2026/CurVer");
    expectPiece(identity, "profile", "Default", "settings", "Software/HALVIK/VORNA/2026/de-DE/Profiles/Profiles");
}

TEST(Identity, TellsAboutTheLanguage)
{
    const Installation installation;
    const QJsonObject language =
        installation.object({"identity", "--language", "de-DE"}).value(QStringLiteral("language")).toObject();
    EXPECT_EQ(language.value(QStringLiteral("englishName")).toString(), QStringLiteral("German"));
    EXPECT_EQ(language.value(QStringLiteral("ownName")).toString(), QStringLiteral("Deutsch"));
    EXPECT_EQ(language.value(QStringLiteral("lcid")).toInt(), 1031);
}

TEST(Identity, TakesTheBrandFromTheLanguageLibrary)
{
    const Installation installation;
    const std::string library = installation.programDir() / "en-US/libVrUInfoRes.so";
    const QJsonObject identity = installation.object({"identity"});
    expectPiece(identity, "oemProduct", "VORNA", "library", (library + " string 4092").c_str());
    expectPiece(identity, "oemCompany", "HALVIK", "library", (library + " string 4091").c_str());
    expectPiece(identity, "oemLegalName", "HALVIK CO., LTD.(Eastport)", "library", (library + " string 4095").c_str());
}

TEST(Identity, TakesTheBrandFromAPartnerLibrary)
{
    const Installation installation;
    const std::string library = installation.programDir() / "brand.so";
    std::filesystem::copy_file(std::filesystem::path(TOOL_RESOURCES) / "partner/VrCustomRes.so", library);
    EXPECT_EQ(installation.run({"set", "@profile/CommonSettings/CustomResFile", library}).exitCode, kDone);
    const QJsonObject identity = installation.object({"identity"});
    expectPiece(identity, "oemProduct", "Kestrel Draft", "library", (library + " string 4092").c_str());
    expectPiece(identity, "oemCompany", "Northmoor", "library", (library + " string 4091").c_str());
}

TEST(Identity, HasTheEditionOfTheProduct)
{
    const Installation installation;
    EXPECT_EQ(editionOf(installation, "VORNA"), 1);
    EXPECT_EQ(editionOf(installation, "VORNAM"), 2);
    EXPECT_EQ(editionOf(installation, "VORNAA"), 3);
    EXPECT_EQ(editionOf(installation, "VORNAGEO"), 6);
    EXPECT_EQ(editionOf(installation, "Other"), 4);
}

TEST(Identity, IsToldInWords)
{
    const Installation installation;
    const std::string words = installation.run({"identity", "--product", "VORNAM", "--profile", "Second"}).out;
    expectLines(words, "company         HALVIK\n" + kIndent + "built in");
    expectLines(words, "product         VORNAM\n" + kIndent + "given on the command line");
    expectLines(words, "version         2026\n" + kIndent + "built in");
    expectLines(words, "language        en-US\n" + kIndent + "English, in its own tongue English, LCID 1033\n" +
                           kIndent + "from the INI file: VORNA.ini [LocaleIdLangName] 1033");
    expectLines(words, "profile         Second\n" + kIndent + "given on the command line");
    expectLines(words, "edition         2\n" + kIndent + "by the product's name");
    expectContains(words, kIndent + "passed over: VORNA.ini [Product] CompanyName: ");
}

TEST(Identity, IsToldInWordsWhenRemembered)
{
    const Installation installation;
    installation.store("Software/HALVIK/CurProduct", "5$VORNA");
    const std::string words = installation.run({"identity"}).out;
    expectLines(words, "product         VORNA\n" + kIndent + "remembered in the settings: Software/HALVIK/CurProduct");
}

TEST(Identity, WorksInTheCLocaleFromADirectoryWithANonAsciiName)
{
    const Installation installation;
    const std::filesystem::path moved = installation.root() / "prögräm 漢😀";
    std::filesystem::rename(installation.programDir(), moved);
    const std::string home = installation.root() / "hömé";
    const ProcessResult result =
        vrtest::runProcess({moved / "vruinfo", "set", "@language/CurVer", "x", "--language", "de-DE"},
                           {{"HOME", home}, {"XDG_CONFIG_HOME", ""}, {"LC_ALL", "C"}, {"DISPLAY", ""}});
    EXPECT_EQ(result.exitCode, kDone) << result.err;
    EXPECT_NE(readFile(std::filesystem::path(home) / ".config/HALVIK/VORNA/2026/VORNA.conf").find("CurVer=5$x"),
              std::string::npos);
    const ProcessResult identity =
        vrtest::runProcess({moved / "vruinfo", "identity", "--language", "de-DE"},
                           {{"HOME", home}, {"XDG_CONFIG_HOME", ""}, {"LC_ALL", "C"}, {"DISPLAY", ""}});
    EXPECT_NE(identity.out.find((moved / "de-DE/libVrUInfoRes.so").string()), std::string::npos) << identity.out;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(installation.root()), {}), 3); // home, hömé, program
}

} // namespace
