// A settings file that is cut at any byte, or has any byte flipped, crashes neither a start nor a read, and loses
// nothing that could still be read.
//
// By rule a start ends the process where a remembered product, language or profile is longer than the buffer for it; a
// damage can make such a name (a line's end that is gone puts two lines together). Those starts end so, and no other.
//
// Where a damage makes a picture of a colour, which only a process with an application object can read, the others
// leave the file alone. So does everybody where a damage makes a value that asks for all the memory there is.
//
// Every damage is opened and read in one process; every 37th is a start in a process of its own, and every 501st one in
// a freshly loaded program. With VR_DAMAGE_STEP=1 every one is a start.
#include <cstring>
#include <functional>
#include <iostream>

#include <QtCore/QByteArray>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "damaged_file.h"
#include "provision/picture_values.h"
#include "start_words.h"

using namespace vrtest;

namespace
{

namespace fs = std::filesystem;

enum Outcome { kDone = 0, kRefused = 7, kNotAsRead = 40, kNotAsLeft = 41, kOtherStatus = 42 };

QString lastName(const QString& key)
{
    return key.section(QLatin1Char('/'), -1);
}

bool isRemembered(const QString& key)
{
    const QString name = lastName(key);
    return name == QLatin1String("CurProduct") || name == QLatin1String("CurVer") || name == QLatin1String("Profiles");
}

/// A start by these values may end the process.
bool mayEndProcess(const Values& values)
{
    const std::map<QString, int> limits = {
        {QStringLiteral("CurProduct"), 255}, {QStringLiteral("CurVer"), 7}, {QStringLiteral("Profiles"), 1023}};
    for (const auto& [key, value] : values) {
        const QString text = value.toString();
        const int payload = text.size() > 1 && text.at(1) == QLatin1Char('$') ? text.size() - 2 : text.size();
        const auto limit = limits.find(lastName(key));
        if (limit != limits.end() && payload > limit->second)
            return true;
    }
    return false;
}

std::string bytesOf(const VornVariant& value)
{
    std::uint32_t size = 0;
    if (value.data)
        std::memcpy(&size, value.data, sizeof size);
    return std::to_string(value.type) + std::string(static_cast<const char*>(value.data), size);
}

/// A key that may be asked for; a longer one ends the process.
bool isAskable(const QString& key)
{
    constexpr int kLongest = 1000;
    const bool isPlain = !key.contains(QLatin1Char('\\')) && !key.contains(QChar(0));
    return key.indexOf(QLatin1Char('/')) > 0 && isPlain && key.size() < kLongest;
}

/// Whether the library reads each value that the settings library has.
bool readsAll(const Values& values)
{
    for (const auto& [key, stored] : values) {
        if (!isAskable(key) || isRemembered(key))
            continue;
        const int slash = key.lastIndexOf(QLatin1Char('/'));
        VornVariant read;
        VornVariant expected;
        QVariant in = stored;
        if (!stored.isNull())
            QVarToVVar(in, expected);
        vornConfig()->getValue(key.left(slash).toStdWString().c_str(), key.mid(slash + 1).toStdWString().c_str(), read);
        if (bytesOf(read) != bytesOf(expected))
            return false;
    }
    return true;
}

void listAll(const Values& values)
{
    for (const auto& [key, stored] : values) {
        if (!isAskable(key))
            continue;
        const std::wstring item = key.section(QLatin1Char('/'), 0, -2).toStdWString();
        VornaConfig::ItemIterator items;
        VornaConfig::ValueIterator entries;
        vornConfig()->findItem(item.c_str(), items);
        if (vornConfig()->findItem(item.c_str(), entries) != Vorn::eOk)
            continue;
        VornVariant value;
        do
            static_cast<void>(entries.value(value));
        while (entries.step() == Vorn::eOk);
    }
}

int sayYes(HWND, const wchar_t*, const wchar_t*, unsigned int)
{
    return IDYES;
}

/// The same bytes under a name of their own: the settings library keeps one content per name.
fs::path copyOf(const fs::path& file)
{
    return file.string() + ".copy";
}

/// A start over the file, reads, and what is left.
int startAndRead(const fs::path& file)
{
    VrSetMessageBoxHandler(sayYes);
    const unsigned int status = startWith({});
    if (status != Vorn::eOk && status != Vorn::eFailed)
        return kOtherStatus;
    g_globalSettings->allKeys();
    const Values before = PlainReading::of(copyOf(file)).values; // now, since a start may have learned about colours
    if (!readsAll(before))
        return kNotAsRead;
    listAll(before);
    flush();
    const PlainReading after = PlainReading::of(file);
    for (const auto& [key, stored] : before) {
        if (!isRemembered(key) && stored.userType() == QMetaType::QString && after.value(key) != stored)
            return kNotAsLeft;
    }
    return status == Vorn::eOk ? kDone : kRefused;
}

/// How a process ended, in words.
std::string ending(int status)
{
    if (WIFSIGNALED(status))
        return "signal " + std::to_string(WTERMSIG(status));
    return "exit code " + std::to_string(WEXITSTATUS(status));
}

class DamagedStart : public testing::Test
{
protected:
    DamagedStart() : m_file(Installation::here().settingsFile())
    {
        silenceWarnings();
        Installation::here().installLanguage("en-US");
        fs::create_directories(m_file.parent_path());
    }
    void place(const Damage& damage) const
    {
        writeDamaged(copyOf(m_file), damage.applied());
        writeDamaged(m_file, damage.applied());
    }
    [[nodiscard]] PlainReading plainly() const { return PlainReading::of(copyOf(m_file)); }
    [[nodiscard]] Values plainValues() const { return plainly().values; }
    /// In a process of its own, but without loading the program again.
    static int statusOf(const std::function<int()>& work)
    {
        const pid_t child = fork();
        if (child == 0) {
            const int null = open("/dev/null", O_WRONLY);
            dup2(null, STDERR_FILENO);
            _exit(work());
        }
        int status = -1;
        waitpid(child, &status, 0);
        return status;
    }

    [[nodiscard]] QString fileName() const { return QString::fromStdString(m_file); }

    fs::path m_file;
};

} // namespace

PROBE(startOnDamaged)
{
    VrSetMessageBoxHandler(sayYes);
    const unsigned int status = startWith({});
    VornVariant value;
    vornConfig()->getValue(VornaConfig::SettingsRoot, L"Long", value);
    return static_cast<int>(status);
}

namespace
{

TEST_F(DamagedStart, TheWholeFileIsReadAndStays)
{
    place({Damage::Kind::Cut, kWholeFile.size(), 0});
    EXPECT_EQ(ending(statusOf([this] { return startAndRead(m_file); })), "exit code 0");
    EXPECT_EQ(plainValues().size(), 17U);
    EXPECT_FALSE(mayEndProcess(plainValues()));
}

/// Opened, read and listed in this process, which knows colours from the first file on.
TEST_F(DamagedStart, EveryDamageIsOpenedAndRead)
{
    const std::size_t step = numberFrom("VR_DAMAGE_STEP", 3);
    int pictures = 0;
    int unbounded = 0;
    std::size_t opened = 0;
    forEachDamage(step, [&](const Damage& damage) {
        place(damage);
        vornConfig()->initRegObject(nullptr, nullptr);
        if (vruinfo::internal::arePicturesKnown() && vruinfo::internal::hasPictureValues(fileName())) {
            EXPECT_EQ(g_globalSettings->allKeys(), QStringList()) << damage.words(); // reading it would end the process
            ++pictures;
        } else if (const PlainReading reading = plainly(); !reading.isBounded) {
            EXPECT_EQ(g_globalSettings->allKeys(), QStringList()) << damage.words();
            ++unbounded;
        } else {
            g_globalSettings->allKeys();
            EXPECT_TRUE(readsAll(reading.values)) << damage.words();
            listAll(reading.values);
        }
        vornConfig()->uinitRegObject();
        EXPECT_EQ(readFile(m_file), damage.applied()) << damage.words();
        ++opened;
    });
    std::cout << opened << " damaged files were opened, " << pictures << " of them with a picture, " << unbounded
              << " with a value that has no end\n";
    EXPECT_EQ(opened, kWholeFile.size() * 10 / step + 1);
    EXPECT_GT(pictures, 0);
    EXPECT_GT(unbounded, 0);
}

TEST_F(DamagedStart, NoDamageCrashesAStartOrLosesWhatCanBeRead)
{
    std::map<std::string, int> endings;
    forEachDamage(numberFrom("VR_DAMAGE_STEP", 37), [&](const Damage& damage) {
        place(damage);
        const int status = statusOf([this] { return startAndRead(m_file); });
        const bool isEnded = WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT && mayEndProcess(plainValues());
        const bool isDone = WIFEXITED(status) && (WEXITSTATUS(status) == kDone || WEXITSTATUS(status) == kRefused);
        EXPECT_TRUE(isDone || isEnded) << damage.words() << ": " << ending(status);
        ++endings[ending(status)];
    });
    for (const auto& [words, count] : endings)
        std::cout << count << " starts ended with " << words << "\n";
    EXPECT_GT(endings["exit code 0"], 0);
}

TEST_F(DamagedStart, NoDamageCrashesAFreshlyLoadedProgram)
{
    forEachDamage(numberFrom("VR_DAMAGE_STEP", 501), [&](const Damage& damage) {
        place(damage);
        const ProcessResult result = Installation::here().run("startOnDamaged");
        const bool isEnded = result.signal == SIGABRT && mayEndProcess(plainValues());
        EXPECT_TRUE(result.exitCode == 0 || result.exitCode == kRefused || isEnded)
            << damage.words() << ": " << result.exitCode << " " << result.signal << "\n"
            << result.err;
    });
}

} // namespace
