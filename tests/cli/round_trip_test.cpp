// What is exported, removed and imported again is the same to the byte.
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include <QRect>
#include <QSettings>
#include <QVariant>

#include "installation.h"
#include "settings_words.h"

using namespace clitest;

namespace
{

/// Brings everything away and back.
void expectRoundTrip(const Installation& installation)
{
    const std::string before = settingsBytes(installation);
    const std::string file = installation.root() / "all.json";
    EXPECT_EQ(installation.run({"export", "-o", file}).err, "");
    expectShape("export", readFile(file));
    std::filesystem::remove(installation.settingsFile());
    EXPECT_EQ(installation.run({"import", file}).err, "");
    EXPECT_EQ(settingsBytes(installation), before) << readFile(file);
    EXPECT_EQ(answerOf(installation.run({"export"})), readFile(file));
    EXPECT_EQ(answerOf(installation.run({"diff", file, "--exit-code"})), "");
}

/// A settings file as the settings library writes it.
class RoundTrip : public testing::Test
{
protected:
    void store(const QString& key, const QVariant& value)
    {
        QSettings(QString::fromStdString(m_installation.settingsFile()), QSettings::NativeFormat).setValue(key, value);
    }
    void storeText(const QString& text)
    {
        store(QStringLiteral("Demo/v%1").arg(m_count++), QStringLiteral("5$") + text);
    }
    /// Lines as a hand wrote them, and then as the settings library writes them back.
    void expectOfLines(const std::string& lines)
    {
        writeSettings(m_installation, lines);
        store(QStringLiteral("Touched"), QStringLiteral("1$1"));
        expectRoundTrip(m_installation);
    }

    Installation m_installation;
    int m_count = 0;
};

QString bytesOf(double value)
{
    QByteArray bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return QStringLiteral("3$") + QString::fromLatin1(bytes.toHex());
}

double fromBits(std::uint64_t bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

TEST_F(RoundTrip, KeepsExtremeIntegers)
{
    for (const char* const text : {"1$0", "1$-2147483648", "1$2147483647", "2$-9223372036854775808",
                                   "2$9223372036854775807", "2$9007199254740993"})
        store(QStringLiteral("Demo/") + QString::fromLatin1(text).mid(2), QString::fromLatin1(text));
    expectRoundTrip(m_installation);
}

TEST_F(RoundTrip, KeepsDoublesByTheirBits)
{
    using Limits = std::numeric_limits<double>;
    const std::vector<double> values = {0.0,
                                        -0.0,
                                        0.1,
                                        -1e300,
                                        1e20,
                                        123456789012345678.0,
                                        Limits::denorm_min(),
                                        Limits::min(),
                                        Limits::max(),
                                        Limits::lowest(),
                                        Limits::infinity(),
                                        -Limits::infinity(),
                                        Limits::quiet_NaN(),
                                        fromBits(0x7ff8dead0000beef),
                                        fromBits(0xfff0000000000001)};
    for (std::size_t i = 0; i < values.size(); ++i)
        store(QStringLiteral("Demo/%1").arg(i), bytesOf(values[i]));
    expectRoundTrip(m_installation);
}

TEST_F(RoundTrip, KeepsAnyDouble)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 random(seed);
    QSettings settings(QString::fromStdString(m_installation.settingsFile()), QSettings::NativeFormat);
    for (int i = 0; i < 2000; ++i)
        settings.setValue(QStringLiteral("Demo/%1").arg(i), bytesOf(fromBits(random())));
    settings.sync();
    expectRoundTrip(m_installation);
}

TEST_F(RoundTrip, KeepsAnyText)
{
    const QChar high(0xD83D);
    const QChar low(0xDE00);
    const std::vector<QString> texts = {
        QString(),
        QStringLiteral("\"quoted\""),
        QStringLiteral("two\nlines\r\n\ttab"),
        QStringLiteral("a=b;c,d#e[f]"),
        QStringLiteral("100% %20 %U00e4"),
        QStringLiteral("a/b\\c\\x41\\"),
        QStringLiteral("@Invalid()"),
        QStringLiteral("@@"),
        QStringLiteral("  blanks  "),
        QString::fromUtf8("\xC3\xA4\xE2\x82\xAC"),
        QString(high) + low,
        QString(high),
        QString(low) + high,
        QString(QChar(0xFEFF)) + QStringLiteral("mark"),
        QString(QChar(0xFEFF)) + QChar(0xFEFF) + QChar(0xD800),
        QString(QChar(0xFFFE)) + QChar(0xFFFF),
        QStringLiteral("nul") + QChar(QChar::Null) + QStringLiteral("inside"),
        QString(QChar(0x1)) + QChar(0x1F) + QChar(0x7F) + QChar(0x85) + QChar(0x2028),
        QStringLiteral("\\ud800"),
        QString(5000, QLatin1Char('x')),
    };
    for (const QString& text : texts)
        storeText(text);
    expectRoundTrip(m_installation);
}

TEST_F(RoundTrip, KeepsTextsOfRandomUnits)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto unit = [&random] { return QChar(static_cast<ushort>(random() >> (random() % 2 == 0 ? 16U : 25U))); };
    for (int i = 0; i < 200; ++i) {
        QString name;
        QString text;
        for (int k = 0; k < 8; ++k) {
            const QChar c = unit();
            name += c == QLatin1Char('/') ? QChar(QLatin1Char('x')) : c;
            text += unit();
        }
        store(QStringLiteral("Demo/") + name, QStringLiteral("5$") + text);
        store(QStringLiteral("G") + name + QStringLiteral("/v"), text);
    }
    expectRoundTrip(m_installation);
}

TEST_F(RoundTrip, KeepsBytes)
{
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    store(QStringLiteral("Demo/all"), QStringLiteral("4$") + QString::fromLatin1(all.toHex()));
    store(QStringLiteral("Demo/none"), QStringLiteral("4$"));
    store(QStringLiteral("Demo/one"), QStringLiteral("4$00"));
    expectRoundTrip(m_installation);
}

TEST_F(RoundTrip, KeepsWhatAHandWrote)
{
    expectOfLines("[Demo]\n"
                  "a=no tag\n"
                  "b=9$x\n"
                  "c=1$abc\n"
                  "d=3$000000000000F03F\n"
                  "e=4$ABCDEF\n"
                  "f=a, b\n"
                  "g=@ByteArray(a\\0\\xff)\n"
                  "h=@Invalid()\n"
                  "i=@Rect(1 2 3 4)\n"
                  "j=1$007\n"
                  "k=2$ 1\n"
                  "l=3$0102\n"
                  "m=4$0\n"
                  "n=\n"
                  "o=$\n"
                  "p=\"1$1\", \n"
                  "q=@String(x\\0y), b\n"
                  "r=1$99999999999999999999\n"
                  "s=5$a, 5$b\n"
                  "t=@@twice\n"
                  "u=@Variant(\\0\\0\\0\\x6\\0\\0\\0\\0\\0\\0\\x3\\xe7)\n"
                  "v=\" 1$1 \"\n"
                  "w=\\xd800, b\n");
}

TEST_F(RoundTrip, KeepsKindsThatTheSettingsLibraryKnows)
{
    store(QStringLiteral("Demo/list"), QStringList{QStringLiteral("a,b"), QStringLiteral("\"")});
    store(QStringLiteral("Demo/bytes"), QByteArray("5$x"));
    store(QStringLiteral("Demo/rect"), QRect(1, 2, 3, 4));
    store(QStringLiteral("Demo/number"), 5);
    store(QStringLiteral("Demo/real"), 0.1);
    store(QStringLiteral("Demo/map"), QVariantMap{{QStringLiteral("k"), 1}});
    store(QStringLiteral("Demo/nothing"), QVariant());
    store(QStringLiteral("Demo/listOfOne"), QStringList{QStringLiteral("a")});
    store(QStringLiteral("Demo/noList"), QStringList());
    expectRoundTrip(m_installation);
}

TEST_F(RoundTrip, KeepsAnyName)
{
    for (const char* const name :
         {"a=b", "100%", "%20", "q\"q", "back\\slash", "@at", "[x]", "#c", ";c", " blanks ", "two\nlines", "tab\t",
          "\xC3\xA4", "\xF0\x9F\x98\x80", "General", "general", "%General", "Demo", "\xEF\xBB\xBFmark"}) {
        const QString text = QString::fromUtf8(name);
        store(text, QStringLiteral("1$1"));
        store(QStringLiteral("Demo/") + text, QStringLiteral("1$2"));
        store(QStringLiteral("Demo/") + text + QStringLiteral("/below"), QStringLiteral("1$3"));
    }
    store(QStringLiteral("General/a"), QStringLiteral("1$4"));
    store(QStringLiteral("%General/a"), QStringLiteral("1$4"));
    store(QStringLiteral(" blanks /a"), QStringLiteral("1$5"));
    store(QStringLiteral("]/a"), QStringLiteral("1$6"));
    store(QStringLiteral("Demo/") + QChar(0xDC00) + QStringLiteral("/") + QChar(0xD800), QStringLiteral("1$7"));
    store(QStringLiteral("Demo/nul") + QChar(QChar::Null), QStringLiteral("1$8"));
    expectRoundTrip(m_installation);
}

TEST_F(RoundTrip, KeepsItemsAndValuesOfOneName)
{
    for (const char* const key : {"Both", "Both/Both", "Both/Both/Both", "Both/a", "Both!", "Both0/x"})
        store(QString::fromLatin1(key), QStringLiteral("5$") + QString::fromLatin1(key));
    expectRoundTrip(m_installation);
}

TEST_F(RoundTrip, OfAPlaceLeavesTheRestOfTheFile)
{
    store(QStringLiteral("Demo/Sub/a"), QStringLiteral("1$1"));
    store(QStringLiteral("Demo/Sub"), QStringLiteral("5$value at the place"));
    store(QStringLiteral("Demo/Sub2/b"), QStringLiteral("1$2"));
    store(QStringLiteral("Alone"), QStringLiteral("hand"));
    const std::string before = settingsBytes(m_installation);
    const std::string file = m_installation.root() / "sub.json";
    EXPECT_EQ(m_installation.run({"export", "Demo/Sub", "-o", file}).exitCode, kDone);
    EXPECT_EQ(m_installation.run({"rm", "Demo/Sub", "--recursive"}).exitCode, kDone);
    EXPECT_NE(settingsBytes(m_installation), before);
    EXPECT_EQ(m_installation.run({"import", file}).exitCode, kDone);
    EXPECT_EQ(settingsBytes(m_installation), before);
}

TEST_F(RoundTrip, ThroughAPipeIsTheSame)
{
    store(QStringLiteral("Demo/a"), QStringLiteral("5$x"));
    const std::string before = settingsBytes(m_installation);
    EXPECT_EQ(m_installation.runShell("vruinfo export Demo | vruinfo import - --at Copy").exitCode, kDone);
    EXPECT_EQ(m_installation.stored("Copy/a"), QStringLiteral("5$x"));
    EXPECT_EQ(m_installation.run({"rm", "Copy", "--recursive"}).exitCode, kDone);
    EXPECT_EQ(settingsBytes(m_installation), before);
}

TEST_F(RoundTrip, OfManyValuesIsTheSame)
{
    QSettings settings(QString::fromStdString(m_installation.settingsFile()), QSettings::NativeFormat);
    for (int i = 0; i < 20000; ++i)
        settings.setValue(QStringLiteral("Group%1/Sub%2/Value%3").arg(i % 7).arg(i % 101).arg(i),
                          QStringLiteral("1$%1").arg(i));
    settings.sync();
    expectRoundTrip(m_installation);
}

} // namespace
