// Many threads on the one settings object, with every operation of the store, its iterators and root paths, while an
// event loop writes back: each thread's values are all there at the end, and no read ever gives another group's value.
//
//   stress_threads [--threads=16] [--seconds=5] [--seed=N]
//
// Each thread works in items of its own, and knows what must stand there, so that every answer can be told from a wrong
// one. The file is read with an eye of its own all the time, and compared at the end.
#include <array>
#include <atomic>
#include <iostream>
#include <memory>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include <QtCore/QCoreApplication>
#include <QtCore/QSettings>
#include <QtCore/QTimer>

#include "VrUInfo/RootKeys.h"
#include "VrUInfo/Settings.h"
#include "host_process.h"
#include "kept_value.h"
#include "settings_file.h"
#include "started_host.h"
#include "started_store.h"
#include "trial.h"

using namespace stress;

// Qt is not instrumented: its reference counts, its mutexes and the event queue that a settings object posts to are not
// seen, so calls made inside it look unsynchronised; our own accesses are all seen.
// NOLINTNEXTLINE(bugprone-reserved-identifier) the sanitizer's name
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions()
{
    return "called_from_lib:libQt5Core.so.5\n";
}

namespace
{

constexpr char kUsage[] = "stress_threads [--threads=N] [--seconds=N] [--seed=N]\n";
const std::wstring kSettingsKey = L"Software/HALVIK/VORNA/2026/en-US/Settings";
const std::array<std::wstring, 2> kProfiles = {L"Day", L"N\u00E4chtlich \U0001F600"};

using Names = std::set<std::wstring>;
using Status = unsigned int;

/// All names that an iterator gives.
template <typename Iterator>
Names namesOf(const Iterator& iterator, Status (Iterator::*name)(wchar_t*, int&) const)
{
    Names names;
    std::wstring buffer(vrtest::kCapacity, L'\0');
    int length = static_cast<int>(vrtest::kCapacity);
    while ((iterator.*name)(buffer.data(), length) == 0 && iterator.step() == 0) {
        names.insert(vrtest::untilTerminator(buffer));
        buffer.assign(vrtest::kCapacity, L'\0');
        length = static_cast<int>(vrtest::kCapacity);
    }
    return names;
}

/// One thread's work.
class Worker
{
public:
    Worker(unsigned int number, unsigned int seed, Faults& faults) :
        m_number(number), m_own(L"Threads/Th\u0159ead\U0001F600" + std::to_wstring(number)), m_random(seed + number),
        m_faults(faults)
    {
    }

    void work(const std::atomic<bool>& isOver)
    {
        while (!isOver) {
            const std::size_t operation = m_random() % kOperations.size();
            (this->*kOperations[operation])();
            ++m_done[operation];
        }
    }

    /// The values that must be there in the end, by their keys below the root.
    [[nodiscard]] SettingsFile::Values expectedInFile() const
    {
        SettingsFile::Values values;
        for (const auto& [path, value] : m_expected)
            values.emplace(QString::fromStdWString(path).toStdU16String(), value.inFile());
        return values;
    }
    /// How often it did each of its operations.
    [[nodiscard]] const std::vector<unsigned int>& done() const { return m_done; }

private:
    using Operation = void (Worker::*)();
    static const std::vector<Operation> kOperations;

    /// A place for a value, as the different operations want it.
    struct Place {
        std::wstring item; ///< Below the root.
        std::wstring name;

        std::wstring path() const { return item + L"/" + name; }
        std::wstring key() const { return kSettingsKey + L"/" + item; }
        std::wstring backslashed() const { return kSettingsKey + L"\\" + item; }
    };

    std::size_t pick(std::size_t count) { return m_random() % count; }
    std::wstring anyItem() { return m_own + L"/Item" + std::to_wstring(pick(4)); }
    Place anyPlace()
    {
        return {anyItem(), L"Name\U0001F601" + std::to_wstring(m_number) + L"-" + std::to_wstring(pick(5))};
    }
    KeptValue newValue() { return KeptValue(m_number * std::int64_t{100000000} + ++m_written); }
    bool isThere(const Place& place) const { return m_expected.count(place.path()) != 0; }

    void expect(bool condition, const char* what, const std::wstring& where)
    {
        if (!condition)
            m_faults.add("thread " + std::to_string(m_number) + ": " + what + " " + vrtest::utf8(where));
    }
    void expectRead(Status status, const VornVariant& value, const Place& place)
    {
        if (!isThere(place))
            return expect(status == Vorn::eNotFound, "found what was not written:", place.path());
        expect(status == Vorn::eOk && m_expected.at(place.path()).isIn(value), "read another value of", place.path());
    }
    void expectWritten(Status status, const Place& place, const KeptValue& value)
    {
        expect(status == Vorn::eOk, "could not write", place.path());
        m_expected[place.path()] = value;
    }
    /// The names directly below a path that ends in "/".
    Names expectedNames(const std::wstring& parent) const
    {
        Names names;
        for (auto row = m_expected.lower_bound(parent); row != m_expected.end() && row->first.rfind(parent, 0) == 0;
             ++row) {
            const std::wstring below = row->first.substr(parent.size());
            names.insert(below.substr(0, below.find(L'/')));
        }
        return names;
    }
    void forget(const std::wstring& item)
    {
        m_expected.erase(m_expected.lower_bound(item + L"/"), m_expected.lower_bound(item + L"0")); // behind "/"
    }

    // ---- Writing

    void set()
    {
        const Place place = anyPlace();
        const KeptValue value = newValue();
        expectWritten(vornConfig()->setValue(kRoot, place.path().c_str(), value.variant()), place, value);
    }
    void addBelowRoot()
    {
        const Place place = anyPlace();
        const KeptValue value = newValue();
        expectWritten(vornConfig()->addValue(kRoot, place.item.c_str(), place.name.c_str(), value.variant()), place,
                      value);
    }
    void writeByKey()
    {
        const Place place = anyPlace();
        const KeptValue value = newValue();
        expectWritten(WriteValueToReg(place.key().c_str(), place.name.c_str(), value.variant()), place, value);
    }
    void replaceByKey()
    {
        const Place place = anyPlace();
        const KeptValue value = newValue();
        const Status status = vornConfig()->addValue(place.backslashed().c_str(), place.name.c_str(), value.variant());
        expect(status == (isThere(place) ? 0U : 7U), "a wrong answer to replacing", place.path());
        if (isThere(place))
            m_expected[place.path()] = value;
    }
    void setTyped()
    {
        const Place place = anyPlace();
        const KeptValue value = newValue();
        vorn::Settings settings(kRoot, place.item);
        expect(settings.set(place.name, value.variant()), "could not write", place.path());
        m_expected[place.path()] = value;
    }

    // ---- Reading

    void get()
    {
        const Place place = anyPlace();
        VornVariant value;
        const Status status = vornConfig()->getValue(kRoot, place.path().c_str(), value);
        expectRead(status, value, place);
    }
    void getByKey()
    {
        const Place place = anyPlace();
        VornVariant value;
        const Status status = vornConfig()->getValue(place.backslashed().c_str(), place.name.c_str(), value);
        expectRead(status, value, place);
    }
    void getTyped()
    {
        const Place place = anyPlace();
        vorn::Settings settings(kRoot, place.item);
        const auto value = settings.get<VornVariant>(place.name);
        expect(value.has_value() == isThere(place), "a wrong answer about", place.path());
        if (value)
            expectRead(settings.status(), *value, place);
    }
    void askForItem()
    {
        const std::wstring item = anyItem();
        expect(vornConfig()->isItemExist(kRoot, item.c_str()) == !expectedNames(item + L"/").empty(),
               "a wrong answer about", item);
        expect(vornConfig()->addItem(kRoot, item.c_str()) == Vorn::eOk, "no item", item);
    }

    // ---- Removing

    void removeByKey()
    {
        const Place place = anyPlace();
        const Status status = vornConfig()->removeValue(place.key().c_str(), place.name.c_str());
        expect(status == (isThere(place) ? 0U : 7U), "a wrong answer to removing", place.path());
        m_expected.erase(place.path());
    }
    void removeBelowRoot()
    {
        const Place place = anyPlace();
        const Status status = vornConfig()->removeValue(kRoot, place.item.c_str(), place.name.c_str());
        expect(status == Vorn::eOk, "could not remove", place.path());
        m_expected.erase(place.path());
    }
    void removeTree()
    {
        if (pick(6) != 0)
            return;
        const std::wstring item = anyItem();
        const bool isEmpty = expectedNames(item + L"/").empty();
        const std::array<Status, 3> answers = {0U, isEmpty ? 7U : 0U, isEmpty ? 0U : 1U};
        const std::size_t way = pick(3);
        const std::wstring key = kSettingsKey + L"/" + item;
        Status answer = 0;
        if (way == 0)
            answer = vornConfig()->removeItem(kRoot, item.c_str());
        if (way == 1)
            answer = vornConfig()->removeItem(kSettingsKey.c_str(), item.c_str());
        if (way == 2)
            answer = RegDeleteKeyAndAllSubkeys(QString::fromStdWString(key)) ? 1 : 0;
        expect(answer == answers[way], "a wrong answer to removing", item);
        forget(item);
    }

    // ---- Iterators

    void listValues()
    {
        const std::wstring item = anyItem();
        const Names expected = expectedNames(item + L"/");
        VornaConfig::ValueIterator iterator;
        const Status status = pick(2) == 0 ? vornConfig()->findItem(kRoot, item.c_str(), iterator)
                                           : vornConfig()->findItem((kSettingsKey + L"/" + item).c_str(), iterator);
        expect(status == (expected.empty() ? 1U : 0U), "a wrong answer to listing", item);
        expect(namesOf(iterator, &VornaConfig::ValueIterator::key) == expected, "wrong values in", item);
    }
    void listItems()
    {
        const Names expected = expectedNames(m_own + L"/");
        VornaConfig::ItemIterator iterator;
        const Status status = pick(2) == 0 ? vornConfig()->findItem(kRoot, m_own.c_str(), iterator)
                                           : vornConfig()->findItem((kSettingsKey + L"/" + m_own).c_str(), iterator);
        expect(status == (expected.empty() ? 1U : 0U), "a wrong answer to listing", m_own);
        expect(namesOf(iterator, &VornaConfig::ItemIterator::name) == expected, "wrong items in", m_own);
    }
    void throughValueIterator()
    {
        const std::wstring item = anyItem();
        VornaConfig::ValueIterator iterator;
        if (vornConfig()->findItem(kRoot, item.c_str(), iterator) != Vorn::eOk)
            return;
        std::wstring name(vrtest::kCapacity, L'\0');
        int length = static_cast<int>(vrtest::kCapacity);
        expect(iterator.key(name.data(), length) == Vorn::eOk, "no first name in", item);
        const Place place{item, vrtest::untilTerminator(name)};
        VornVariant value;
        const Status status = iterator.value(value);
        expectRead(status, value, place);
        const KeptValue next = newValue();
        expectWritten(iterator.setValue(next.variant()), place, next);
    }
    void throughItemIterator()
    {
        VornaConfig::ItemIterator iterator;
        if (vornConfig()->findItem(kRoot, m_own.c_str(), iterator) != Vorn::eOk)
            return;
        std::wstring item(vrtest::kCapacity, L'\0');
        int length = static_cast<int>(vrtest::kCapacity);
        expect(iterator.name(item.data(), length) == Vorn::eOk, "no first item in", m_own);
        const Place place{m_own + L"/" + vrtest::untilTerminator(item), anyPlace().name};
        VornVariant value;
        const Status status = vornConfig()->getValue(iterator, place.name.c_str(), value);
        expectRead(status, value, place);
        const KeptValue next = newValue();
        expectWritten(vornConfig()->setValue(iterator, place.name.c_str(), next.variant()), place, next);
    }
    void listTyped()
    {
        const std::wstring item = anyItem();
        vorn::Settings settings(kRoot, item);
        Names names;
        for (const auto& value : settings.values())
            names.insert(std::wstring(value.name()));
        expect(names == expectedNames(item + L"/"), "wrong values in", item);
    }

    // ---- What all threads share

    /// Written by all, each text repeats one character.
    void shareValue()
    {
        const std::wstring own(300, static_cast<wchar_t>(L'A' + m_number));
        expect(writeText(L"Shared/Value", own), "could not write", L"Shared/Value");
        const std::wstring text = readText(L"Shared/Value");
        expect(text == std::wstring(own.size(), text.front()), "a mixture:", text);
    }
    void askForRoots()
    {
        const std::wstring language = L"Software/HALVIK/VORNA/2026/en-US";
        const std::array<std::wstring, 9> roots = {L"Software/HALVIK/VORNA",
                                                   L"Software/HALVIK/VORNA/2026",
                                                   language,
                                                   language + L"/Profiles",
                                                   L"",
                                                   language + L"/Applications",
                                                   language + L"/Recent File List",
                                                   language + L"/Settings",
                                                   language + L"/Settings/UserConfig"};
        for (std::size_t i = 0; i < roots.size(); ++i) {
            std::wstring root(vrtest::kCapacity, L'?');
            vornConfig()->getRegRootPath(static_cast<VornaConfig::Path>(i), root.data());
            root = vrtest::untilTerminator(root);
            const bool isRight = i == VornaConfig::CurrentProfileRoot ? isProfileRoot(root) : roots[i] == root;
            expect(isRight, "another root:", root);
        }
        std::wstring key(vrtest::kCapacity, L'?');
        const Status length = GetVornRegistryLanguageRootKey(key.data());
        expect(length == language.size() && language == vrtest::untilTerminator(key), "another root:", key);
    }
    static bool isProfileRoot(const std::wstring& root)
    {
        const std::wstring parent = L"Software/HALVIK/VORNA/2026/en-US/Profiles/";
        return root == parent + kProfiles[0] || root == parent + kProfiles[1];
    }
    void askForProfile()
    {
        std::wstring name(vrtest::kCapacity, L'\0');
        auto length = static_cast<unsigned int>(vrtest::kCapacity);
        GetCurrentProfileName(name.data(), length);
        const std::wstring found = vrtest::untilTerminator(name);
        expect(found == kProfiles[0] || found == kProfiles[1], "another profile:", found);
        std::wstring key(vrtest::kCapacity, L'\0');
        expect(GetVornRegistryCurrentProfileConfigRootKey(key.data()) > 0, "no root of the profile", found);
        const std::wstring root = vrtest::untilTerminator(key);
        expect(isProfileRoot(root.substr(0, root.rfind(L'/'))), "another root:", root);
    }
    /// One thread has the profile change under the others.
    void changeProfile()
    {
        if (m_number == 0)
            expect(vornConfig()->updateProfileName(kProfiles[pick(2)].c_str()) == Vorn::eOk, "no profile", L"");
    }
    /// The profile may change between writing and reading, so there may be nothing yet; never another's value.
    void writeBelowProfile()
    {
        const std::wstring name = L"Stress/" + std::to_wstring(m_number);
        const VornVariant own = vrtest::int32Value(static_cast<std::int32_t>(m_number));
        expect(vornConfig()->setValue(VornaConfig::CurrentProfileRoot, name.c_str(), own) == Vorn::eOk,
               "could not write", name);
        VornVariant value;
        const Status status = vornConfig()->getValue(VornaConfig::CurrentProfileRoot, name.c_str(), value);
        const bool isOwn = status == Vorn::eOk && vrtest::numberIn<std::uint32_t>(value) == m_number;
        expect(isOwn || status == Vorn::eNotFound, "another thread's value of", name);
    }

    unsigned int m_number;
    std::wstring m_own;
    std::mt19937 m_random;
    Faults& m_faults;
    std::int64_t m_written = 0;
    std::map<std::wstring, KeptValue> m_expected; // below the root
    std::vector<unsigned int> m_done = std::vector<unsigned int>(kOperations.size());
};

const std::vector<Worker::Operation> Worker::kOperations = {&Worker::set,
                                                            &Worker::addBelowRoot,
                                                            &Worker::writeByKey,
                                                            &Worker::replaceByKey,
                                                            &Worker::setTyped,
                                                            &Worker::get,
                                                            &Worker::getByKey,
                                                            &Worker::getTyped,
                                                            &Worker::askForItem,
                                                            &Worker::removeByKey,
                                                            &Worker::removeBelowRoot,
                                                            &Worker::removeTree,
                                                            &Worker::listValues,
                                                            &Worker::listItems,
                                                            &Worker::throughValueIterator,
                                                            &Worker::throughItemIterator,
                                                            &Worker::listTyped,
                                                            &Worker::shareValue,
                                                            &Worker::askForRoots,
                                                            &Worker::askForProfile,
                                                            &Worker::changeProfile,
                                                            &Worker::writeBelowProfile};

class Trial
{
public:
    Trial(const Numbers& numbers, Faults& faults) : m_seconds(numbers["seconds"]), m_faults(faults)
    {
        for (unsigned int i = 0; i < numbers["threads"]; ++i)
            m_workers.push_back(std::make_unique<Worker>(i, numbers["seed"], faults));
    }

    /// In an event loop, which writes back while the threads work.
    void run()
    {
        std::vector<std::thread> threads;
        for (const auto& worker : m_workers)
            threads.emplace_back([this, &worker] { worker->work(m_isOver); });
        QTimer reader;
        QObject::connect(&reader, &QTimer::timeout, [this] { lookAtFile(); });
        reader.start(20);
        QTimer::singleShot(std::chrono::seconds(m_seconds), QCoreApplication::instance(), &QCoreApplication::quit);
        QCoreApplication::exec();
        m_isOver = true;
        for (std::thread& thread : threads)
            thread.join();
    }

    void expectAllThere()
    {
        vrtest::flush();
        SettingsFile::Values expected;
        for (const auto& worker : m_workers)
            expected.merge(worker->expectedInFile());
        const SettingsFile file = SettingsFile::read(vrtest::Installation::here().settingsFile());
        m_faults.expect(file.fault.empty(), "the file is not whole at the end: " + file.fault);
        SettingsFile::Values found;
        for (const auto& [name, text] : file.below(std::u16string(kSettings) + u"/Threads"))
            found.emplace(u"Threads/" + name, text);
        m_faults.expect(!expected.empty(), "the threads wrote nothing");
        m_faults.expect(found == expected, std::to_string(found.size()) + " values are in the file, and not the " +
                                               std::to_string(expected.size()) + " that were written");
        m_faults.expect(g_globalSettings->group().isEmpty(), "a group is left open");
        std::cout << expected.size() << " values are in the file, as they were written last\n";
    }

    void tellWork() const
    {
        std::uint64_t all = 0;
        unsigned int least = ~0U;
        for (std::size_t i = 0; i < m_workers.front()->done().size(); ++i) {
            unsigned int count = 0;
            for (const auto& worker : m_workers)
                count += worker->done()[i];
            all += count;
            least = std::min(least, count);
        }
        std::cout << m_workers.size() << " threads, " << m_seconds << " s: " << all
                  << " operations, each kind at least " << least << " times; the file was read " << m_reads
                  << " times, " << m_contents << " times with another content" << std::endl;
        m_faults.expect(least > 0, "an operation was never done");
        m_faults.expect(m_contents > 2, "the event loop did not write back");
    }

private:
    void lookAtFile()
    {
        const std::string bytes = bytesOf(vrtest::Installation::here().settingsFile());
        ++m_reads;
        if (bytes == m_last)
            return;
        ++m_contents;
        m_last = bytes;
        const SettingsFile file = SettingsFile::parse(bytes);
        m_faults.expect(file.fault.empty(), "the file is not whole: " + file.fault);
    }

    unsigned int m_seconds;
    Faults& m_faults;
    std::vector<std::unique_ptr<Worker>> m_workers;
    std::atomic<bool> m_isOver{false};
    std::string m_last;
    unsigned int m_reads = 0;
    unsigned int m_contents = 0;
};

int workInThreads(const Arguments& arguments)
{
    int count = 1;
    std::array<char, 5> name = {'h', 'o', 's', 't', '\0'};
    std::array<char*, 2> values = {name.data(), nullptr};
    const QCoreApplication application(count, values.data());
    std::vector<std::string> texts = arguments;
    std::vector<char*> pointers = {name.data()};
    for (std::string& text : texts)
        pointers.push_back(text.data());
    const Numbers numbers(static_cast<int>(pointers.size()), pointers.data(),
                          {{"threads", 16}, {"seconds", 5}, {"seed", 1}}, kUsage);
    Faults faults;
    const bool isStarted = InitVornConfig(nullptr, nullptr, L"en-US", kProfiles[0].c_str()) == Vorn::eOk;
    faults.expect(isStarted, "the library did not start");
    if (isStarted) {
        Trial trial(numbers, faults);
        trial.run();
        trial.tellWork();
        trial.expectAllThere();
    }
    return faults.verdict("stress_threads");
}

} // namespace

int main(int argc, char** argv)
{
    if (const auto code = playedRole(argc, argv, {{"threads", workInThreads}}))
        return *code;
    const Numbers numbers(argc, argv, {{"threads", 16}, {"seconds", 5}, {"seed", anySeed()}}, kUsage);
    Arguments arguments;
    for (const char* const name : {"threads", "seconds", "seed"})
        arguments.push_back("--" + std::string(name) + "=" + std::to_string(numbers[name]));
    std::cout << "stress_threads --seed=" << numbers["seed"] << std::endl;
    const vrtest::Installation installation;
    installation.installLanguage("en-US");
    HostProcess host(installation, "threads", arguments);
    for (auto line = host.line(std::chrono::hours(24)); line; line = host.line(std::chrono::hours(24)))
        std::cout << *line << std::endl;
    return host.finish() == EXIT_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE;
}
