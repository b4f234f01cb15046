// The guard around the settings object: who holds the store lock, and which group is open.
#include <array>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>

#include "VrUInfo/VornVariant.h"
#include "VrUInfo/VornaConfig.h"
#include "store/store_group.h"

using namespace vruinfo::internal;
using namespace std::chrono_literals;

namespace
{

constexpr auto kLong = 30s;    // for what must happen
constexpr auto kShort = 100ms; // for what must not

QString q(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

class StoreGroupTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_directory.isValid());
        m_settings = std::make_unique<QSettings>(m_directory.filePath(q("store.conf")), QSettings::NativeFormat);
        g_globalSettings = m_settings.get();
    }
    void TearDown() override { g_globalSettings = nullptr; }

    QSettings& settings() { return *m_settings; }
    static bool setsInTime(const std::future<void>& done) { return done.wait_for(kLong) == std::future_status::ready; }

private:
    QTemporaryDir m_directory;
    std::unique_ptr<QSettings> m_settings;
};

TEST_F(StoreGroupTest, OpensItsGroupForItsScope)
{
    {
        StoreGroup group(q("A/B"));
        EXPECT_EQ(settings().group(), q("A/B"));
        group.setValue(q("Name"), 1);
    }
    EXPECT_EQ(settings().group(), QString());
    EXPECT_EQ(settings().allKeys(), QStringList(q("A/B/Name")));
}

TEST_F(StoreGroupTest, EndsTheGroupWhenAnErrorPassesThrough)
{
    EXPECT_THROW(
        {
            const StoreGroup group(q("A"));
            throw 1;
        },
        int);
    EXPECT_EQ(settings().group(), QString());
    EXPECT_TRUE(setsInTime(std::async(std::launch::async, [] { const StoreGroup group(q("B")); })));
}

TEST_F(StoreGroupTest, OpensRelativeToTheOpenOneInTheSameThread)
{
    const StoreGroup outer(q("A"));
    {
        const StoreGroup inner(q("B/C"));
        EXPECT_EQ(settings().group(), q("A/B/C"));
    }
    EXPECT_EQ(settings().group(), q("A"));
}

TEST_F(StoreGroupTest, EmptyPathOpensNothing)
{
    const StoreGroup outer(q("A"));
    for (const char* const path : {"", "/", "//"}) {
        const StoreGroup inner(q(path));
        EXPECT_EQ(settings().group(), q("A")) << path;
    }
    EXPECT_EQ(settings().group(), q("A"));
}

TEST_F(StoreGroupTest, KeepsOtherThreadsOut)
{
    std::future<void> other;
    {
        const StoreGroup group(q("A"));
        other = std::async(std::launch::async, [] { StoreGroup(q("B")).setValue(q("Name"), 1); });
        EXPECT_EQ(other.wait_for(kShort), std::future_status::timeout);
        EXPECT_EQ(settings().allKeys(), QStringList());
    }
    EXPECT_TRUE(setsInTime(other));
    EXPECT_EQ(settings().allKeys(), QStringList(q("B/Name")));
}

TEST_F(StoreGroupTest, EmptyNamesReadAsAbsentAndAreNotWritten)
{
    StoreGroup group(q("A"));
    for (const char* const name : {"", "/", "///"}) {
        group.setValue(q(name), 1);
        EXPECT_FALSE(group.value(q(name)).isValid()) << name;
        EXPECT_FALSE(group.contains(q(name))) << name;
    }
    EXPECT_FALSE(group.holdsAnything());
}

TEST_F(StoreGroupTest, AValueByItsWholePathIsTheOneInTheGroup)
{
    int number = 0;
    for (const char* const item : {"", "/", "A", "/A/", "A//B", "A/B/", "A\\B"}) {
        for (const char* const name : {"N", "/N", "N/", "N//M", "\\N", " "}) {
            const QString path = q(item) + QLatin1Char('/') + q(name);
            StoreGroup(q(item)).setValue(q(name), ++number);
            EXPECT_EQ(storedValue(path), number) << item << " and " << name;
            const QStringList keys = settings().allKeys();
            storeValue(path, ++number);
            EXPECT_EQ(settings().allKeys(), keys) << item << " and " << name;
            EXPECT_EQ(StoreGroup(q(item)).value(q(name)), number) << item << " and " << name;
        }
    }
}

TEST_F(StoreGroupTest, AValueByItsWholePathKeepsOtherThreadsOut)
{
    std::future<void> reader;
    std::future<void> writer;
    {
        const std::lock_guard<VrLocker> lock(storeLock());
        reader = std::async(std::launch::async, [] { static_cast<void>(storedValue(q("A/Name"))); });
        writer = std::async(std::launch::async, [] { storeValue(q("B/Name"), 1); });
        EXPECT_EQ(reader.wait_for(kShort), std::future_status::timeout);
        EXPECT_EQ(writer.wait_for(kShort), std::future_status::timeout);
    }
    EXPECT_TRUE(setsInTime(reader));
    EXPECT_TRUE(setsInTime(writer));
}

TEST_F(StoreGroupTest, RemovingTheEmptyNameRemovesEverythingInTheGroup)
{
    settings().setValue(q("A/Name"), 1);
    settings().setValue(q("A/B/Name"), 1);
    settings().setValue(q("C/Name"), 1);
    StoreGroup(q("A")).remove(QString());
    EXPECT_EQ(settings().allKeys(), QStringList(q("C/Name")));
}

TEST_F(StoreGroupTest, HoldsSomethingByAValueAtAnyDepth)
{
    settings().setValue(q("A/B/C/Name"), 1);
    EXPECT_TRUE(StoreGroup(q("A")).holdsAnything());
    EXPECT_TRUE(StoreGroup(q("A/B/C")).holdsAnything());
    EXPECT_FALSE(StoreGroup(q("A/B/C/Name")).holdsAnything());
}

TEST_F(StoreGroupTest, NamesNothingWithoutAnotherCharacterThanASeparator)
{
    for (const char* const text : {"", "/", "////"})
        EXPECT_TRUE(namesNothing(q(text))) << text;
    for (const char* const text : {"a", "/a", "a/", "\\", " "})
        EXPECT_FALSE(namesNothing(q(text))) << text;
}

TEST_F(StoreGroupTest, WriterWithoutKeyOrNameTakesNoLock)
{
    const std::lock_guard<VrLocker> lock(storeLock());
    auto status = std::async(std::launch::async, [] {
        const VornVariant value;
        return WriteValueToReg(nullptr, L"Name", value) * 10 + WriteValueToReg(L"A", nullptr, value);
    });
    ASSERT_EQ(status.wait_for(kLong), std::future_status::ready);
    EXPECT_EQ(status.get(), 55U);
}

TEST_F(StoreGroupTest, WriterWithoutASettingsObjectTakesNoLock)
{
    g_globalSettings = nullptr;
    const std::lock_guard<VrLocker> lock(storeLock());
    auto status = std::async(std::launch::async, [] { return WriteValueToReg(L"A", L"Name", VornVariant()); });
    ASSERT_EQ(status.wait_for(kLong), std::future_status::ready);
    EXPECT_EQ(status.get(), 5U);
}

TEST_F(StoreGroupTest, WriterWaitsForTheLockAndTheHolderMayWrite)
{
    std::future<unsigned int> other;
    VornVariant value;
    value.setString(L"x", VornVariant::kVarString);
    {
        const std::lock_guard<VrLocker> lock(storeLock());
        other = std::async(std::launch::async, [&value] { return WriteValueToReg(L"A", L"Other", value); });
        EXPECT_EQ(other.wait_for(kShort), std::future_status::timeout);
        EXPECT_EQ(WriteValueToReg(L"A", L"Own", value), 0U);
        EXPECT_EQ(settings().allKeys(), QStringList(q("A/Own")));
    }
    ASSERT_EQ(other.wait_for(kLong), std::future_status::ready);
    EXPECT_EQ(other.get(), 0U);
}

TEST_F(StoreGroupTest, RecursiveDeleteTakesTheLockAgain)
{
    settings().setValue(q("A/B/Name"), 1);
    const std::lock_guard<VrLocker> lock(storeLock());
    EXPECT_TRUE(RegDeleteKeyAndAllSubkeys(q("A")));
    EXPECT_EQ(settings().allKeys(), QStringList());
}

TEST(WriteBack, OfTheEventLoopWaitsForTheStoreLock)
{
    int argumentCount = 1;
    std::array<char, 5> name = {'h', 'o', 's', 't', '\0'};
    std::array<char*, 2> arguments = {name.data(), nullptr};
    const QCoreApplication application(argumentCount, arguments.data());
    const QTemporaryDir directory;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, directory.path());
    vornConfig()->initRegObject(nullptr, nullptr);
    ASSERT_NE(g_globalSettings, nullptr);
    g_globalSettings->setValue(q("Name"), 1); // asks the event loop to write back

    std::promise<void> isHeld;
    auto wasWritten = std::async(std::launch::async, [&isHeld] {
        const std::lock_guard<VrLocker> lock(storeLock());
        isHeld.set_value();
        std::this_thread::sleep_for(kShort);
        return QFile::exists(g_globalSettings->fileName());
    });
    isHeld.get_future().wait();
    QCoreApplication::processEvents();
    EXPECT_FALSE(wasWritten.get());
    EXPECT_TRUE(QFile::exists(g_globalSettings->fileName()));
    vornConfig()->uinitRegObject();
}
