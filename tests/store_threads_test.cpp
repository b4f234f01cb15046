// Eight threads at once on the one settings object: nothing is lost, and no thread ever sees another one's group.
#include <array>
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include "VrUInfo/VornaConfig.h"
#include "scarce_memory.h"
#include "started_store.h"
#include "store_values.h"

using namespace vrtest;

namespace
{

constexpr int kThreads = 8;
constexpr VornaConfig::Path kRoot = VornaConfig::SettingsRoot;
const std::wstring kSettings = L"Software/HALVIK/VORNA/2026/en-US/Settings";
// Sanitizers make each operation ten times as long.
constexpr int kRounds = kHasSanitizerAllocator ? 2000 : 10000;

/// What the threads found wrong; the first few are told.
class Complaints
{
public:
    void add(const std::wstring& text)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_count;
        if (m_texts.size() < 5)
            m_texts.push_back(utf8(text));
    }
    void expectNone() const
    {
        EXPECT_EQ(m_count, 0);
        for (const std::string& text : m_texts)
            ADD_FAILURE() << text;
    }

private:
    std::mutex m_mutex;
    int m_count = 0;
    std::vector<std::string> m_texts;
};

template <typename Iterator>
std::set<std::wstring> namesOf(const Iterator& iterator, unsigned int (Iterator::*name)(wchar_t*, int&) const)
{
    std::set<std::wstring> names;
    std::wstring buffer(kCapacity, L'\0');
    int length = static_cast<int>(kCapacity);
    while ((iterator.*name)(buffer.data(), length) == 0 && iterator.step() == 0) {
        names.insert(untilTerminator(buffer));
        buffer.assign(kCapacity, L'\0');
        length = static_cast<int>(kCapacity);
    }
    return names;
}

/// One thread's work in a tree of its own. It knows what must stand there, so every answer can be told from a wrong
/// one.
class Worker
{
public:
    Worker(int number, Complaints& complaints) :
        m_number(number), m_item(L"Thread" + std::to_wstring(number)), m_random(static_cast<unsigned int>(number) + 1),
        m_complaints(complaints)
    {
    }

    void work(int rounds)
    {
        using Operation = void (Worker::*)();
        static constexpr std::array<Operation, 12> kOperations = {
            &Worker::write,     &Worker::write,      &Worker::write,        &Worker::read,
            &Worker::readByKey, &Worker::overwrite,  &Worker::removeOne,    &Worker::listValues,
            &Worker::listItems, &Worker::askForItem, &Worker::stepAndWrite, &Worker::removeTree};
        for (int i = 0; i < rounds; ++i)
            (this->*kOperations[pick(kOperations.size())])();
    }

    /// The keys below the root that must be there in the end, with their texts.
    std::map<std::string, std::string> expectedInFile() const
    {
        std::map<std::string, std::string> expected;
        for (const auto& [path, number] : m_expected)
            expected[utf8(kSettings) + "/" + utf8(path)] = "1$" + std::to_string(number);
        return expected;
    }

private:
    std::size_t pick(std::size_t count) { return m_random() % count; }
    std::wstring anyItem() { return m_item + L"/Item" + std::to_wstring(pick(4)); }
    std::wstring anyName() { return L"Name" + std::to_wstring(m_number) + L"-" + std::to_wstring(pick(5)); }
    std::wstring anyPath() { return anyItem().append(L"/").append(anyName()); }
    std::int32_t newNumber() { return m_number * 1000000 + ++m_written; }
    bool isThere(const std::wstring& path) const { return m_expected.count(path) != 0; }

    void expect(bool condition, const wchar_t* what, const std::wstring& path)
    {
        if (!condition)
            m_complaints.add(m_item + L": " + what + L" " + path);
    }
    void expectValue(unsigned int status, const VornVariant& value, const std::wstring& path)
    {
        if (!isThere(path))
            return expect(status == 1, L"found what was never written:", path);
        expect(status == 0 && value.type == VornVariant::kVarInt32 &&
                   numberIn<std::int32_t>(value) == m_expected.at(path),
               L"read another value of", path);
    }

    void write()
    {
        const std::wstring path = anyPath();
        const std::int32_t number = newNumber();
        expect(vornConfig()->setValue(kRoot, path.c_str(), int32Value(number)) == 0, L"could not write", path);
        m_expected[path] = number;
    }
    void read()
    {
        const std::wstring path = anyPath();
        VornVariant value;
        const unsigned int status = vornConfig()->getValue(kRoot, path.c_str(), value);
        expectValue(status, value, path);
    }
    void readByKey()
    {
        const std::wstring item = anyItem();
        const std::wstring name = anyName();
        VornVariant value;
        const unsigned int status = vornConfig()->getValue((kSettings + L"\\" + item).c_str(), name.c_str(), value);
        expectValue(status, value, item + L"/" + name);
    }
    void overwrite()
    {
        const std::wstring item = anyItem();
        const std::wstring name = anyName();
        const std::wstring path = item + L"/" + name;
        const std::int32_t number = newNumber();
        const unsigned int status =
            vornConfig()->addValue((kSettings + L"/" + item).c_str(), name.c_str(), int32Value(number));
        expect(status == (isThere(path) ? 0U : 7U), L"wrong answer to overwriting", path);
        if (isThere(path))
            m_expected[path] = number;
    }
    void removeOne()
    {
        const std::wstring item = anyItem();
        const std::wstring name = anyName();
        const std::wstring path = item + L"/" + name;
        const unsigned int status = vornConfig()->removeValue((kSettings + L"/" + item).c_str(), name.c_str());
        expect(status == (isThere(path) ? 0U : 7U), L"wrong answer to removing", path);
        m_expected.erase(path);
    }
    void listValues()
    {
        const std::wstring item = anyItem();
        VornaConfig::ValueIterator iterator;
        const unsigned int status = vornConfig()->findItem(kRoot, item.c_str(), iterator);
        std::set<std::wstring> expected = expectedNames(item + L"/");
        expect(status == (expected.empty() ? 1U : 0U), L"wrong answer to listing", item);
        expect(namesOf(iterator, &VornaConfig::ValueIterator::key) == expected, L"wrong values in", item);
    }
    void listItems()
    {
        VornaConfig::ItemIterator iterator;
        const unsigned int status = vornConfig()->findItem(kRoot, m_item.c_str(), iterator);
        expect(status == (m_expected.empty() ? 1U : 0U), L"wrong answer to listing", m_item);
        expect(namesOf(iterator, &VornaConfig::ItemIterator::name) == expectedNames(m_item + L"/"), L"wrong items in",
               m_item);
    }
    void askForItem()
    {
        const std::wstring item = anyItem();
        expect(vornConfig()->isItemExist(kRoot, item.c_str()) == !expectedNames(item + L"/").empty(),
               L"wrong answer about", item);
    }
    void stepAndWrite()
    {
        const std::wstring item = anyItem();
        VornaConfig::ValueIterator iterator;
        if (vornConfig()->findItem(kRoot, item.c_str(), iterator) != 0)
            return;
        std::wstring name(kCapacity, L'\0');
        int length = static_cast<int>(kCapacity);
        expect(iterator.key(name.data(), length) == 0, L"no first name in", item);
        const std::wstring path = item + L"/" + untilTerminator(name);
        VornVariant value;
        const unsigned int status = iterator.value(value);
        expectValue(status, value, path);
        const std::int32_t number = newNumber();
        expect(iterator.setValue(int32Value(number)) == 0, L"could not write", path);
        m_expected[path] = number;
    }
    void removeTree()
    {
        if (pick(4) != 0)
            return;
        const std::wstring item = anyItem();
        expect(vornConfig()->removeItem(kRoot, item.c_str()) == 0, L"could not remove", item);
        const auto first = m_expected.lower_bound(item + L"/");
        const auto last = m_expected.lower_bound(item + L"0"); // the character behind "/"
        m_expected.erase(first, last);
    }

    /// The names directly below a path that ends in "/".
    std::set<std::wstring> expectedNames(const std::wstring& parent) const
    {
        std::set<std::wstring> names;
        for (auto entry = m_expected.lower_bound(parent);
             entry != m_expected.end() && entry->first.rfind(parent, 0) == 0; ++entry) {
            const std::wstring below = entry->first.substr(parent.size());
            names.insert(below.substr(0, below.find(L'/')));
        }
        return names;
    }

    int m_number;
    std::wstring m_item;
    std::minstd_rand m_random;
    Complaints& m_complaints;
    std::int32_t m_written = 0;
    std::map<std::wstring, std::int32_t> m_expected; // below the root
};

/// Runs one function in all threads at once.
void runInThreads(const std::function<void(int)>& function)
{
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&ready, &function, i] {
            ++ready;
            while (ready < kThreads)
                std::this_thread::yield();
            function(i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

class Workers
{
public:
    Workers()
    {
        for (int i = 0; i < kThreads; ++i)
            m_workers.push_back(std::make_unique<Worker>(i, m_complaints));
    }
    void work(int rounds)
    {
        runInThreads([this, rounds](int i) { m_workers[static_cast<std::size_t>(i)]->work(rounds); });
    }
    /// Nothing was wrong on the way, and the file holds exactly what the threads wrote last.
    void expectNothingLost()
    {
        m_complaints.expectNone();
        std::map<std::string, std::string> expected;
        for (const auto& worker : m_workers)
            expected.merge(worker->expectedInFile());
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(inFile(), expected);
    }

private:
    static std::map<std::string, std::string> inFile()
    {
        flush();
        const auto file = Installation::here().settingsFile();
        std::map<std::string, std::string> texts;
        for (const std::string& key : keysInFile(file)) {
            if (key.rfind(utf8(kSettings), 0) == 0)
                texts[key] = textInFile(file, key).toStdString();
        }
        return texts;
    }

    Complaints m_complaints;
    std::vector<std::unique_ptr<Worker>> m_workers;
};

} // namespace

class StoreThreads : public StartedStore
{
};

TEST_F(StoreThreads, LoseNothingAndSeeNoGroupButTheirOwn)
{
    Workers workers;
    workers.work(kRounds);
    workers.expectNothingLost();
    EXPECT_EQ(g_globalSettings->group(), QString());
}

TEST_F(StoreThreads, WriteIntoOneItemWithoutLosingAnything)
{
    constexpr int kEach = kRounds / 10;
    Complaints complaints;
    runInThreads([&complaints](int thread) {
        for (int i = 0; i < kEach; ++i) {
            const std::wstring name = std::to_wstring(thread) + L"-" + std::to_wstring(i);
            if (vornConfig()->addValue(kRoot, L"Shared", name.c_str(), int32Value(i)) != 0)
                complaints.add(name);
        }
    });
    complaints.expectNone();
    VornaConfig::ValueIterator iterator;
    ASSERT_EQ(config().findItem(kRoot, L"Shared", iterator), 0U);
    EXPECT_EQ(namesOf(iterator, &VornaConfig::ValueIterator::key).size(), static_cast<std::size_t>(kEach) * kThreads);
}

TEST_F(StoreThreads, SeeAWrittenValueWholeOrNotAtAll)
{
    // All threads write and read one value; each text repeats one digit, so a mixture would show.
    Complaints complaints;
    runInThreads([&complaints](int thread) {
        const std::wstring own(200, static_cast<wchar_t>(L'0' + thread));
        for (int i = 0; i < kRounds / 4; ++i) {
            config().setValue(kRoot, L"Shared/Value", textValue(own));
            VornVariant value;
            const unsigned int status = config().getValue(kRoot, L"Shared/Value", value);
            const std::wstring text = textIn(value);
            if (status != 0 || text.size() != own.size() || text != std::wstring(own.size(), text.front()))
                complaints.add(text);
        }
    });
    complaints.expectNone();
}

TEST_F(StoreThreads, DeleteWhileOthersWriteBesideThem)
{
    Complaints complaints;
    runInThreads([&complaints](int thread) {
        const std::wstring own = L"Tree" + std::to_wstring(thread) + L"/Deep";
        for (int i = 0; i < kRounds / 10; ++i) {
            for (const wchar_t* const below : {L"/1", L"/Sub/2", L"/Sub/Sub/3"})
                config().setValue(kRoot, (own + below).c_str(), int32Value(i));
            if (!config().isItemExist(kRoot, own.c_str()))
                complaints.add(L"lost " + own);
            if (config().removeItem(kSettings.c_str(), own.c_str()) != 0)
                complaints.add(L"nothing to remove in " + own);
            if (config().isItemExist(kRoot, own.c_str()))
                complaints.add(L"left over " + own);
        }
    });
    complaints.expectNone();
    EXPECT_FALSE(config().isItemExist(kRoot, nullptr));
}

TEST_F(StoreThreads, TestAndReplaceIsOneStep)
{
    // A value that one thread removes and makes again is never made by those that may only replace it.
    Complaints complaints;
    const std::wstring item = kSettings + L"/Shared";
    runInThreads([&complaints, &item](int thread) {
        for (int i = 0; i < kRounds; ++i) {
            if (thread != 0) {
                config().addValue(item.c_str(), L"Value", int32Value(thread));
                continue;
            }
            config().addValue(kRoot, L"Shared", L"Value", int32Value(0));
            if (config().removeValue(item.c_str(), L"Value") != 0)
                complaints.add(L"it was not there");
            VornVariant value;
            if (config().getValue(item.c_str(), L"Value", value) != 1)
                complaints.add(L"it was made again");
        }
    });
    complaints.expectNone();
}

TEST(ProfileInThreads, IsAdoptedOnceForAll)
{
    Installation::here().writeSetting("Software/HALVIK/VORNA/2026/en-US/Profiles/Profiles", "5$Night");
    ASSERT_EQ(startWithoutProfile(), kStartedWithoutProfile);
    std::array<std::wstring, kThreads> roots;
    runInThreads(
        [&roots](int thread) { roots[static_cast<std::size_t>(thread)] = rootOf(VornaConfig::CurrentProfileRoot); });
    for (const std::wstring& root : roots)
        EXPECT_EQ(root, L"Software/HALVIK/VORNA/2026/en-US/Profiles/Night");
}

TEST(ThreadsUnderAnEventLoop, LoseNothingWhileTheLoopWritesBack)
{
    int argumentCount = 1;
    std::array<char, 5> name = {'h', 'o', 's', 't', '\0'};
    std::array<char*, 2> arguments = {name.data(), nullptr};
    const QCoreApplication application(argumentCount, arguments.data());
    ASSERT_EQ(start(), 0U);

    const auto file = Installation::here().settingsFile();
    std::set<std::string> seen; // different contents of the file on the way
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&seen, &file] { seen.insert(readFile(file)); });
    timer.start(5);

    Workers workers;
    std::atomic<bool> isDone{false};
    std::thread host([&workers, &isDone] {
        while (!isDone)
            workers.work(kRounds / 20);
        QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
    });
    QTimer::singleShot(2000, [&isDone] { isDone = true; });
    QCoreApplication::exec();
    host.join();

    EXPECT_GT(seen.size(), 3U) << "the loop did not write back";
    workers.expectNothingLost();
}
