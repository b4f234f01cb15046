// Writers that are killed at random moments, under a reader that checks: the file is always whole, and holds an old or
// a new state, never a mixture.
//
//   stress_kill --settings=60 --products=60 [--seed=N]
//
// as many killed writers of the settings file, and of the list of installed products. (Killed imports of the tool are
// tests/cli/import_kill_test.cpp, whose number of rounds is VR_KILL_ROUNDS.)
#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <fstream>
#include <iostream>
#include <random>
#include <set>
#include <thread>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <unistd.h>

#include "VrUInfo/FirstRun.h"
#include "host_process.h"
#include "settings_file.h"
#include "started_host.h"
#include "trial.h"

namespace fs = std::filesystem;
using namespace stress;

namespace
{

constexpr char kUsage[] = "stress_kill [--settings=ROUNDS] [--products=ROUNDS] [--seed=N]\n";

// ---- A state of the settings: every value tells its generation ------------------------------------------------------

constexpr int kValues = 400;
const std::wstring kItem = L"Kill";

std::wstring nameOf(int value)
{
    return L"Group" + std::to_wstring(value % 13) + L"/V\u00E4lue \U0001F600" + std::to_wstring(value);
}

std::wstring textOf(int value, unsigned int generation)
{
    const std::wstring number = std::to_wstring(generation);
    return number + L" \"=%\\\n\u4E16" + std::wstring(static_cast<std::size_t>(value % 50), L'x') + L" " + number;
}

std::u16string units(const std::wstring& text)
{
    return QString::fromStdWString(text).toStdU16String();
}

bool writeGeneration(unsigned int generation)
{
    bool isWritten = true;
    for (int i = 0; i < kValues; ++i)
        isWritten = writeText(kItem + L"/" + nameOf(i), textOf(i, generation)) && isWritten;
    return isWritten;
}

/// What a reader sees of the settings file.
struct Seen {
    unsigned int generation = 0;
    std::string fault;
};

unsigned int generationOf(const SettingsFile::Values& values)
{
    const auto first = values.find(units(nameOf(0)));
    return first == values.end() ? 0 : QString::fromStdU16String(first->second).mid(2).section(u' ', 0, 0).toUInt();
}

Seen look(const fs::path& file)
{
    const SettingsFile content = SettingsFile::read(file);
    if (!content.fault.empty())
        return {0, "the settings file is not whole: " + content.fault};
    const auto values = content.below(std::u16string(kSettings) + u"/" + units(kItem));
    if (values.size() != kValues)
        return {0, std::to_string(values.size()) + " values instead of " + std::to_string(kValues)};
    const unsigned int generation = generationOf(values);
    for (int i = 0; i < kValues; ++i) {
        const auto value = values.find(units(nameOf(i)));
        if (value == values.end() || value->second != u"5$" + units(textOf(i, generation)))
            return {0, "a mixture: value " + std::to_string(i) + " is not of generation " + std::to_string(generation)};
    }
    return {generation, {}};
}

// ---- The writers ----------------------------------------------------------------------------------------------------

unsigned int numberIn(const Arguments& arguments)
{
    return static_cast<unsigned int>(std::stoul(arguments.at(0)));
}

/// Writes one generation, and ends: the end of the process brings it to the file. As the others, it tells when it has
/// started.
int writeAndEnd(const Arguments& arguments)
{
    if (!startHost())
        return EXIT_FAILURE;
    tell("begins");
    if (!writeGeneration(numberIn(arguments)))
        return EXIT_FAILURE;
    tell("0");
    return EXIT_SUCCESS;
}

/// Writes generation upon generation, and has each brought to the file. Tells each that is there.
int writeAndFlush(const Arguments& arguments)
{
    if (!startHost())
        return EXIT_FAILURE;
    tell("begins");
    for (unsigned int generation = numberIn(arguments); writeGeneration(generation); ++generation) {
        vrtest::flush();
        tell(std::to_string(generation));
    }
    return EXIT_FAILURE;
}

/// Writes generation upon generation in an event loop, which brings them to the file when it likes. Tells each before
/// it is written.
int writeInEvents(const Arguments& arguments)
{
    int count = 1;
    std::array<char, 5> name = {'h', 'o', 's', 't', '\0'};
    std::array<char*, 2> values = {name.data(), nullptr};
    const QCoreApplication application(count, values.data());
    if (!startHost())
        return EXIT_FAILURE;
    tell("begins");
    unsigned int generation = numberIn(arguments);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&generation] {
        tell(std::to_string(generation));
        if (!writeGeneration(generation++))
            QCoreApplication::exit(EXIT_FAILURE);
    });
    timer.start(0);
    return QCoreApplication::exec();
}

/// Puts itself on the list of installed products again and again: after each time the old list is put back at one go.
int registerAgain(const Arguments& arguments)
{
    const fs::path list = arguments.at(0);
    const fs::path old = arguments.at(1);
    const fs::path link = list.string() + ".old";
    if (!startHost())
        return EXIT_FAILURE;
    tell("begins");
    for (unsigned int time = 0; CreateProductsConfigReg(); ++time) {
        tell(std::to_string(time));
        std::error_code ignored;
        fs::remove(link, ignored);
        fs::create_hard_link(old, link);
        fs::rename(link, list);
    }
    return EXIT_FAILURE;
}

int registerOnce(const Arguments&)
{
    return startHost() && CreateProductsConfigReg() ? EXIT_SUCCESS : EXIT_FAILURE;
}

const Roles kRoles = {{"end", writeAndEnd},
                      {"flush", writeAndFlush},
                      {"events", writeInEvents},
                      {"register", registerAgain},
                      {"registerOnce", registerOnce}};

// ---- Killing them ---------------------------------------------------------------------------------------------------

/// Looks at a file again and again, in a thread of its own, while writers are at work.
template <typename Look>
class Reader
{
public:
    explicit Reader(Look look) :
        m_thread([this, look] {
            while (!m_isDone) {
                look();
                ++m_count;
                std::this_thread::sleep_for(Microseconds(500));
            }
        })
    {
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { stop(); }
    unsigned int stop()
    {
        m_isDone = true;
        if (m_thread.joinable())
            m_thread.join();
        return m_count;
    }

private:
    std::atomic<bool> m_isDone{false};
    std::atomic<unsigned int> m_count{0};
    std::thread m_thread;
};

/// What killed processes leave beside a file; counted, and the new files that nobody finished are taken away.
class Leavings
{
public:
    explicit Leavings(fs::path file) : m_file(std::move(file)) {}
    void collect()
    {
        for (const fs::directory_entry& entry : fs::directory_iterator(m_file.parent_path())) {
            const std::string name = entry.path().filename();
            if (name == m_file.filename().string() + ".lock")
                ++m_locks;
            else if (name.rfind(m_file.filename().string() + ".", 0) == 0 && fs::remove(entry.path()))
                ++m_unfinished;
        }
    }
    std::string told() const
    {
        return "after " + std::to_string(m_locks) + " kills a lock file stood there; " + std::to_string(m_unfinished) +
               " unfinished new files were left";
    }

private:
    fs::path m_file;
    unsigned int m_locks = 0;
    unsigned int m_unfinished = 0;
};

/// How long a writer takes: until it has started, and from there until it has told four more lines, or has ended.
struct UsualTimes {
    Microseconds start{};
    Microseconds work{};
};

UsualTimes usualTimes(const vrtest::Installation& installation, const std::string& role, const Arguments& arguments)
{
    const auto begin = Clock::now();
    HostProcess writer(installation, role, arguments);
    (void)writer.line();
    const auto started = Clock::now();
    for (int i = 0; i < 4; ++i)
        (void)writer.line();
    return {std::chrono::duration_cast<Microseconds>(started - begin),
            std::chrono::duration_cast<Microseconds>(Clock::now() - started)};
}

/// Kills writers: every third one at any moment of its start, the others at any moment of their work.
class Killer
{
public:
    explicit Killer(unsigned int seed) : m_random(seed) {}
    /// \return whether it still ran
    bool kill(HostProcess& writer, const UsualTimes& times)
    {
        const bool isStarting = m_random() % 3 == 0;
        if (!isStarting)
            (void)writer.line();
        const Microseconds longest = isStarting ? times.start : times.work;
        std::this_thread::sleep_for(
            Microseconds(std::uniform_int_distribution<Microseconds::rep>(0, longest.count())(m_random)));
        return writer.kill();
    }

private:
    std::mt19937 m_random;
};

/// The last number that a killed writer told; nothing when it came to none.
std::optional<unsigned int> lastTold(HostProcess& writer)
{
    std::optional<unsigned int> last;
    for (auto line = writer.line(); line; line = writer.line()) {
        if (*line != "begins")
            last = static_cast<unsigned int>(std::stoul(*line));
    }
    return last;
}

class KilledWriters
{
public:
    KilledWriters(unsigned int seed, Faults& faults) : m_faults(faults), m_killer(seed)
    {
        m_installation.installLanguage("en-US");
        HostProcess first(m_installation, "end", {"1"});
        m_faults.expect(first.finish() == EXIT_SUCCESS, "the first writer failed");
        m_generation = expectWhole("at the beginning").generation;
        m_faults.expect(m_generation == 1, "the first generation is not there");
        for (Manner& manner : m_manners)
            manner.usual = usualTimes(m_installation, manner.role, {std::to_string(m_generation)});
        m_generation = expectWhole("before the first kill").generation;
    }

    void run(unsigned int rounds)
    {
        Reader reader([this] { expectWhole("while a writer is at work"); });
        Leavings leavings(m_installation.settingsFile());
        for (unsigned int round = 0; round < rounds; ++round) {
            killOne(m_manners[round % m_manners.size()]);
            leavings.collect();
        }
        const unsigned int reads = reader.stop();
        for (const Manner& manner : m_manners)
            std::cout << "settings, writer \"" << manner.role << "\": " << manner.killed << " killed, "
                      << manner.renewed << " of them left a new state\n";
        std::cout << "settings: the last state is generation " << m_generation << "; " << reads
                  << " whole files were read meanwhile; " << leavings.told() << std::endl;
        m_faults.expect(rounds < m_manners.size() || m_manners[0].killed > 0, "no writer was killed at all");
    }

private:
    struct Manner {
        const char* role;
        UsualTimes usual{};
        unsigned int killed = 0;
        unsigned int renewed = 0;
    };

    Seen expectWhole(const std::string& when)
    {
        Seen seen = look(m_installation.settingsFile());
        if (!seen.fault.empty())
            m_faults.add(when + ": " + seen.fault);
        return seen;
    }

    void killOne(Manner& manner)
    {
        HostProcess writer(m_installation, manner.role, {std::to_string(m_generation + 1)});
        const bool wasKilled = m_killer.kill(writer, manner.usual);
        const auto told = lastTold(writer);
        const Seen seen = expectWhole("after a kill");
        expectOldOrNew(manner.role, wasKilled, told, seen.generation);
        manner.killed += wasKilled ? 1 : 0;
        manner.renewed += wasKilled && seen.generation > m_generation ? 1 : 0;
        m_generation = seen.generation;
    }

    void expectOldOrNew(const std::string& role, bool wasKilled, std::optional<unsigned int> told, unsigned int now)
    {
        unsigned int oldest = m_generation;
        unsigned int newest = m_generation + 1;
        if (role == "flush" && told) {
            oldest = *told;
            newest = *told + 1;
        }
        if (role == "events")
            newest = told.value_or(m_generation);
        if (role == "end" && !wasKilled)
            oldest = newest;
        m_faults.expect(oldest <= now && now <= newest,
                        role + ": generation " + std::to_string(now) + " is neither the old one nor the new one (" +
                            std::to_string(oldest) + " to " + std::to_string(newest) + ")");
    }

    Faults& m_faults;
    Killer m_killer;
    vrtest::Installation m_installation;
    std::array<Manner, 3> m_manners = {{{"flush"}, {"end"}, {"events"}}};
    std::atomic<unsigned int> m_generation{0};
};

class KilledRegistrations
{
public:
    KilledRegistrations(unsigned int seed, Faults& faults) : m_faults(faults), m_killer(seed)
    {
        m_installation.installLanguage("en-US");
        fs::create_directories(list().parent_path());
        std::ofstream(list(), std::ios::binary) << listOf(kOthers);
        fs::copy_file(list(), oldList());
        m_old = bytesOf(list());
        HostProcess first(m_installation, "registerOnce");
        m_faults.expect(first.finish() == EXIT_SUCCESS, "the first registration failed");
        m_new = bytesOf(list());
        expectNewIsComplete();
        m_usual = usualTimes(m_installation, "register", {list(), oldList()});
    }

    void run(unsigned int rounds)
    {
        Reader reader([this] { expectOldOrNew("while one is at work"); });
        Leavings leavings(list());
        for (unsigned int round = 0; round < rounds; ++round) {
            killOne();
            leavings.collect();
        }
        const unsigned int reads = reader.stop();
        std::cout << "products list: " << m_killed << " killed, " << m_renewed << " left the new list; " << reads
                  << " whole lists were read meanwhile; " << leavings.told() << std::endl;
        m_faults.expect(rounds == 0 || m_killed > 0, "no registration was killed at all");
    }

private:
    static constexpr int kOthers = 150;

    fs::path list() const { return m_installation.home() / ".local/share/HALVIK/VR2D.conf"; }
    fs::path oldList() const { return m_installation.root() / "old.conf"; }

    static std::string listOf(int products)
    {
        std::string numbers = "[InstalledProducts]\n";
        std::string entries;
        for (int i = 1; i <= products; ++i) {
            const std::string key = "PRODUCT" + std::to_string(i) + "_2026_Enu";
            numbers += std::to_string(i) + "=" + key + "\n";
            entries += "\n[" + key + "]\nLanguage=en-US\nLocation=/opt/product\nProduct=PRODUCT\nVersion=2026\n";
        }
        return numbers + entries;
    }

    void expectNewIsComplete()
    {
        const SettingsFile file = SettingsFile::parse(m_new);
        m_faults.expect(file.fault.empty(), "the new list is not whole: " + file.fault);
        const auto row = file.values.find(u"InstalledProducts/" + units(std::to_wstring(kOthers + 1)));
        m_faults.expect(row != file.values.end() && row->second == u"VORNA_2026_Enu", "the new list has no new number");
        m_faults.expect(file.below(u"VORNA_2026_Enu").size() == 5, "the new list has no whole entry");
        m_faults.expect(file.values.size() == SettingsFile::parse(m_old).values.size() + 6, "the old entries are gone");
    }

    /// \return whether it is the new one
    bool expectOldOrNew(const std::string& when)
    {
        const std::string now = bytesOf(list());
        if (now != m_old && now != m_new)
            m_faults.add("products list " + when + ": " + std::to_string(now.size()) + " bytes, neither the old " +
                         std::to_string(m_old.size()) + " nor the new " + std::to_string(m_new.size()));
        return now == m_new;
    }

    void killOne()
    {
        HostProcess writer(m_installation, "register", {list(), oldList()});
        m_killed += m_killer.kill(writer, m_usual) ? 1 : 0;
        m_renewed += expectOldOrNew("after a kill") ? 1 : 0;
    }

    Faults& m_faults;
    Killer m_killer;
    vrtest::Installation m_installation;
    std::string m_old;
    std::string m_new;
    UsualTimes m_usual{};
    unsigned int m_killed = 0;
    unsigned int m_renewed = 0;
};

} // namespace

int main(int argc, char** argv)
{
    if (const auto code = playedRole(argc, argv, kRoles))
        return *code;
    const Numbers numbers(argc, argv, {{"settings", 60}, {"products", 60}, {"seed", anySeed()}}, kUsage);
    std::cout << "stress_kill --settings=" << numbers["settings"] << " --products=" << numbers["products"]
              << " --seed=" << numbers["seed"] << std::endl;
    Faults faults;
    KilledWriters(numbers["seed"], faults).run(numbers["settings"]);
    KilledRegistrations(numbers["seed"], faults).run(numbers["products"]);
    return faults.verdict("stress_kill");
}
