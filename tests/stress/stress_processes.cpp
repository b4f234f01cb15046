// Many processes on one settings file, and on one list of installed products.
//
//   stress_processes [--rounds=3] [--processes=8] [--values=100] [--events=0] [--starts=3] [--lists=3] [--deleted=2]
//
//   rounds    so many times: processes that have all started write own values at once. Every value is there.
//   events    so many times: the same, with an event loop in each, which writes back after nearly every value
//   starts    so many times: processes start at the same moment, and each removes the lock file that it finds. The file
//             is whole; of each process everything is there or nothing.
//   lists     so many times: processes put themselves on the list of installed products at once
//   deleted   so many times, one step after the other: a start removes the lock file of a process that is writing. What
//             that can cost is shown; where no start gets in between, nothing is lost.
//
// What two processes see of each other's changes to one value is tried once, in any case.
#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <thread>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include "VrUInfo/FirstRun.h"
#include "host_process.h"
#include "settings_file.h"
#include "started_host.h"
#include "trial.h"

namespace fs = std::filesystem;
using namespace stress;

namespace
{

constexpr char kUsage[] =
    "stress_processes [--rounds=N] [--processes=N] [--values=N] [--events=N] [--starts=N] [--lists=N] [--deleted=N]\n";

/// Left to the settings library alone, eight processes that end at once would take twelve seconds.
constexpr Milliseconds kLongestRound(5000);

std::u16string units(const std::string& text)
{
    return QString::fromStdString(text).toStdU16String();
}

// ---- The hosts ------------------------------------------------------------------------------------------------------

bool writeOwnValue(const std::wstring& own, int number)
{
    return writeText(L"Many/" + own + L"/Value" + std::to_wstring(number), own + L" " + std::to_wstring(number));
}

/// Starts when it is told, and then writes own values when it is told: "start", "write", and the end of the process.
int writeOwnValues(const Arguments& arguments)
{
    const std::wstring own = vrtest::wide(arguments.at(0));
    const int values = std::stoi(arguments.at(1));
    const bool isPatient = arguments.at(2) == "patient";
    bool isFine = hear().has_value() && startHost();
    tell("started");
    isFine = isFine && (!isPatient || hear().has_value());
    for (int i = 0; isFine && i < values; ++i)
        isFine = writeOwnValue(own, i);
    return isFine ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Starts, and writes own values one after the other in an event loop, which writes back as often as it can.
int writeInEvents(const Arguments& arguments)
{
    int count = 1;
    std::array<char, 5> name = {'h', 'o', 's', 't', '\0'};
    std::array<char*, 2> pointers = {name.data(), nullptr};
    const QCoreApplication application(count, pointers.data());
    const std::wstring own = vrtest::wide(arguments.at(0));
    const int values = std::stoi(arguments.at(1));
    bool isFine = hear().has_value() && startHost();
    tell("started");
    isFine = isFine && hear().has_value();
    QTimer timer;
    int next = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        isFine = isFine && writeOwnValue(own, next);
        if (!isFine || ++next == values)
            QCoreApplication::quit();
    });
    timer.start(1);
    QCoreApplication::exec();
    return isFine ? EXIT_SUCCESS : EXIT_FAILURE;
}

bool writeMany(const std::wstring& item, int count)
{
    bool isFine = true;
    for (int i = 0; i < count; ++i)
        isFine = writeText(item + L"/" + std::to_wstring(i), std::wstring(40, L'f')) && isFine;
    return isFine;
}

/// The answer to "set NAME TEXT", "fill NAME COUNT", "remove NAME", "get NAME" or "sync".
std::string answerTo(const std::string& line)
{
    std::istringstream words(line);
    std::string verb;
    std::string word;
    std::string text;
    words >> verb >> word >> text;
    const std::wstring name = vrtest::wide(word);
    if (verb == "get")
        return vrtest::utf8(readText(name));
    bool isDone = verb == "sync";
    if (verb == "sync")
        vrtest::flush();
    if (verb == "set")
        isDone = writeText(name, vrtest::wide(text));
    if (verb == "fill")
        isDone = writeMany(name, std::stoi(text));
    if (verb == "remove")
        isDone = vornConfig()->removeValue(kRoot, nullptr, name.c_str()) == Vorn::eOk;
    return isDone ? "done" : "failed";
}

/// Starts, and does what it is told.
int doAsTold(const Arguments&)
{
    if (!startHost())
        return EXIT_FAILURE;
    tell("started");
    while (const auto line = hear())
        tell(answerTo(*line));
    return EXIT_SUCCESS;
}

/// Starts as a product of its own, and puts that on the list when it is told.
int registerProduct(const Arguments& arguments)
{
    const std::wstring product = vrtest::wide(arguments.at(0));
    if (InitVornConfig(nullptr, product.c_str(), L"en-US", nullptr) != Vorn::eOk)
        return EXIT_FAILURE;
    tell("started");
    return hear() && CreateProductsConfigReg() ? EXIT_SUCCESS : EXIT_FAILURE;
}

const Roles kRoles = {{"writeOwnValues", writeOwnValues},
                      {"writeInEvents", writeInEvents},
                      {"doAsTold", doAsTold},
                      {"registerProduct", registerProduct}};

// ---- Many at once ---------------------------------------------------------------------------------------------------

using Hosts = std::vector<std::unique_ptr<HostProcess>>;

class Trial
{
public:
    Trial(const Numbers& numbers, Faults& faults) :
        m_processes(numbers["processes"]), m_values(numbers["values"]), m_faults(faults)
    {
        m_installation.installLanguage("en-US");
    }

    /// \return how many values are there
    std::size_t writeAfterTheStart(const std::string& role)
    {
        renew();
        Hosts hosts = hostsFor(role, "patient");
        sayToAll(hosts, "start");
        hearFromAll(hosts);
        sayToAll(hosts, "write");
        finishAll(hosts);
        return ownValues();
    }

    /// Nobody waits for anybody. \return how many values are there
    std::size_t writeWhileOthersStart()
    {
        renew();
        Hosts hosts = hostsFor("writeOwnValues", "hasty");
        sayToAll(hosts, "start");
        finishAll(hosts);
        return ownValues();
    }

    /// \return how many products have a number
    std::size_t registerAtOnce()
    {
        fs::remove(list());
        fs::create_directories(list().parent_path());
        Hosts hosts;
        for (unsigned int i = 0; i < m_processes; ++i)
            hosts.push_back(registrar(i));
        hearFromAll(hosts);
        sayToAll(hosts, "register");
        finishAll(hosts);
        return listed();
    }

    /// What was lost when they did it at once is there when they have done it again, in turn.
    void registerInTurn()
    {
        for (unsigned int i = 0; i < m_processes; ++i) {
            const auto host = registrar(i);
            host->say("register");
            m_faults.expect(host->finish() == EXIT_SUCCESS, "a process failed");
        }
        m_faults.expect(listed() == m_processes, "products that were registered again have no number");
    }

    [[nodiscard]] unsigned int allValues() const { return m_processes * m_values; }

private:
    fs::path list() const { return m_installation.home() / ".local/share/HALVIK/VR2D.conf"; }
    void renew() const { fs::remove(m_installation.settingsFile()); }

    std::unique_ptr<HostProcess> registrar(unsigned int number) const
    {
        return std::make_unique<HostProcess>(m_installation, "registerProduct",
                                             Arguments{"PRODUCT" + std::to_string(number)});
    }
    Hosts hostsFor(const std::string& role, const std::string& manner) const
    {
        Hosts hosts;
        for (unsigned int i = 0; i < m_processes; ++i)
            hosts.push_back(std::make_unique<HostProcess>(
                m_installation, role, Arguments{"Process" + std::to_string(i), std::to_string(m_values), manner}));
        return hosts;
    }
    static void sayToAll(const Hosts& hosts, const std::string& line)
    {
        for (const auto& host : hosts)
            host->say(line);
    }
    void hearFromAll(const Hosts& hosts)
    {
        for (const auto& host : hosts)
            m_faults.expect(host->line() == "started", "a process did not start");
    }
    void finishAll(const Hosts& hosts)
    {
        for (const auto& host : hosts)
            m_faults.expect(host->finish() == EXIT_SUCCESS, "a process failed");
    }

    SettingsFile wholeFile(const fs::path& path)
    {
        SettingsFile file = SettingsFile::read(path);
        m_faults.expect(file.fault.empty(), path.filename().string() + " is torn: " + file.fault);
        return file;
    }

    /// Of each process all values are there, or none; what is there is what it wrote.
    std::size_t ownValues()
    {
        const SettingsFile file = wholeFile(m_installation.settingsFile());
        std::size_t all = 0;
        for (unsigned int process = 0; process < m_processes; ++process) {
            const std::string own = "Process" + std::to_string(process);
            const auto values = file.below(kSettings + units("/Many/" + own));
            m_faults.expect(values.empty() || values.size() == m_values,
                            std::to_string(values.size()) + " values of " + own);
            const std::u16string beginning = u"5$" + units(own) + u' ';
            for (const auto& [name, text] : values)
                m_faults.expect(text == std::u16string(beginning).append(name.substr(5)), "another text of " + own);
            all += values.size();
        }
        return all;
    }

    /// Each number names an entry, and each entry is whole.
    std::size_t listed()
    {
        const SettingsFile file = wholeFile(list());
        const auto numbers = file.below(u"InstalledProducts");
        for (const auto& [number, entry] : numbers)
            m_faults.expect(file.below(entry).size() == 5, "a number of the list names no whole entry");
        for (unsigned int i = 0; i < m_processes; ++i) {
            const std::size_t keys = file.below(units("PRODUCT" + std::to_string(i) + "_2026_Enu")).size();
            m_faults.expect(keys == 0 || keys == 5, "an entry with " + std::to_string(keys) + " texts");
        }
        return numbers.size();
    }

    unsigned int m_processes;
    unsigned int m_values;
    Faults& m_faults;
    vrtest::Installation m_installation;
};

/// How many there were in each of some rounds.
class Counts
{
public:
    template <typename Round>
    void addRound(Round round)
    {
        const auto begin = Clock::now();
        const std::size_t count = round();
        m_longest = std::max(m_longest, std::chrono::duration_cast<Milliseconds>(Clock::now() - begin));
        m_least = m_rounds == 0 ? count : std::min(m_least, count);
        m_most = std::max(m_most, count);
        ++m_rounds;
    }
    void tell(const std::string& what, std::size_t of) const
    {
        if (m_rounds > 0)
            std::cout << what << ": " << m_rounds << " rounds, " << m_least << " to " << m_most << " of " << of
                      << "; the longest round took " << m_longest.count() << " ms" << std::endl;
    }
    std::size_t least() const { return m_least; }
    Milliseconds longest() const { return m_longest; }

private:
    unsigned int m_rounds = 0;
    std::size_t m_least = 0;
    std::size_t m_most = 0;
    Milliseconds m_longest{};
};

void tryMany(const Numbers& numbers, Faults& faults)
{
    Trial trial(numbers, faults);
    Counts written;
    for (unsigned int round = 0; round < numbers["rounds"]; ++round) {
        written.addRound([&trial] { return trial.writeAfterTheStart("writeOwnValues"); });
        faults.expect(written.least() == trial.allValues(),
                      "round " + std::to_string(round) + ": " + std::to_string(written.least()) + " values are there");
    }
    written.tell("own values of processes that had started", trial.allValues());
    faults.expect(written.longest() < kLongestRound, "processes that ended at once waited long for each other");
    Counts inEvents;
    for (unsigned int round = 0; round < numbers["events"]; ++round) {
        inEvents.addRound([&trial] { return trial.writeAfterTheStart("writeInEvents"); });
        faults.expect(inEvents.least() == trial.allValues(), "values written in event loops are not there");
    }
    inEvents.tell("own values of processes with event loops", trial.allValues());
    Counts hasty;
    for (unsigned int round = 0; round < numbers["starts"]; ++round)
        hasty.addRound([&trial] { return trial.writeWhileOthersStart(); });
    hasty.tell("own values of processes that start and write at the same moment", trial.allValues());
    Counts listed;
    for (unsigned int round = 0; round < numbers["lists"]; ++round) {
        listed.addRound([&trial] { return trial.registerAtOnce(); });
        faults.expect(listed.least() >= 1, "the list of products is empty");
        trial.registerInTurn();
    }
    listed.tell("products with a number that put themselves on the list at the same moment", numbers["processes"]);
}

// ---- Two, step by step ----------------------------------------------------------------------------------------------

class Pair
{
public:
    explicit Pair(Faults& faults) : m_faults(faults) { m_installation.installLanguage("en-US"); }

    /// Of two changes of one value the later write-back stays; until its own, each reads its own.
    void changeOneValue()
    {
        const auto first = newHost();
        const auto second = newHost();
        order(*first, "set Value first");
        order(*second, "set Value second");
        expectAnswers(*first, "get Value", "first");
        expectAnswers(*second, "get Value", "second");
        order(*second, "sync");
        expectInFile("Value", u"5$second");
        expectAnswers(*first, "get Value", "first"); // its own, not yet written
        order(*first, "sync");
        expectInFile("Value", u"5$first");
        expectAnswers(*second, "get Value", "second"); // as it was when it last wrote
        order(*second, "sync");
        expectAnswers(*second, "get Value", "first"); // it had nothing of its own to write
        expectInFile("Value", u"5$first");
        order(*second, "remove Value");
        order(*second, "sync");
        expectInFile("Value", u"");
        expectAnswers(*first, "get Value", "first");
        order(*first, "set Beside x"); // what it did not change again stays removed
        order(*first, "sync");
        expectInFile("Value", u"");
        expectInFile("Beside", u"5$x");
        expectAnswers(*first, "get Value", "(1)");
    }

    /// A process that writes is stopped in the middle; one that had started before waits for it.
    void writeWhileAnotherWrites()
    {
        const auto slow = newHost();
        const auto other = newHost();
        if (!stopWhileItWrites(*slow))
            return;
        order(*other, "set Others x");
        other->say("sync");
        m_faults.expect(!other->line(Milliseconds(500)), "a write did not wait for the one that was under way");
        expectInFile("Others", u"");
        slow->signal(SIGCONT);
        m_faults.expect(slow->line() == "done" && other->line() == "done", "a write did not come to its end");
        expectInFile("Others", u"5$x");
        expectFilled();
    }

    /// The same, but the one that writes is killed: its lock file is seen to be left behind.
    void writeAfterAnotherWasKilled()
    {
        const auto slow = newHost();
        const auto other = newHost();
        if (!stopWhileItWrites(*slow))
            return;
        slow->kill();
        m_faults.expect(fs::exists(lockFile()), "a killed process left no lock file");
        order(*other, "set Others x");
        const auto begin = Clock::now();
        order(*other, "sync");
        m_faults.expect(Clock::now() - begin < kLongestRound, "a write waited for one that had been killed");
        expectInFile("Others", u"5$x");
        m_faults.expect(!fs::exists(lockFile()), "a lock file is left");
    }

    /// A lock file that is empty tells nothing of its holder, and is waited for.
    void writeBesideAnEmptyLock()
    {
        const auto host = newHost();
        order(*host, "set Value w");
        order(*host, "sync");
        order(*host, "set Value x");
        std::ofstream(lockFile()).close();
        host->say("sync");
        m_faults.expect(!host->line(Milliseconds(2000)), "a write did not wait for an empty lock file");
        fs::remove(lockFile());
        m_faults.expect(host->line() == "done", "a write did not come to its end");
        expectInFile("Value", u"5$x");
    }

    /// A process that writes is stopped in the middle, and another one starts now, which removes the lock file.
    /// \return whether the other one's value was lost
    bool startWhileAnotherWrites()
    {
        const auto slow = newHost();
        if (!stopWhileItWrites(*slow))
            return false;
        const auto other = newHost();
        m_faults.expect(!fs::exists(lockFile()), "a start left the lock file that it found");
        order(*other, "set Others x");
        order(*other, "sync");
        expectInFile("Others", u"5$x");
        slow->signal(SIGCONT);
        m_faults.expect(slow->line() == "done", "a write did not come to its end");
        expectFilled();
        const bool isLost = inFile("Others").empty();
        order(*other, "set Later y"); // the other one's next write does not bring it back, but loses nothing either
        order(*other, "sync");
        expectInFile("Later", u"5$y");
        expectFilled();
        m_faults.expect(inFile("Others").empty() == isLost, "a lost value came back");
        return isLost;
    }

private:
    static constexpr int kMany = 20000;

    std::unique_ptr<HostProcess> newHost()
    {
        auto host = std::make_unique<HostProcess>(m_installation, "doAsTold");
        m_faults.expect(host->line() == "started", "a process did not start");
        return host;
    }
    fs::path lockFile() const { return m_installation.settingsFile().string() + ".lock"; }

    /// Has it write many values, and stops it in the middle. \return whether that was so
    bool stopWhileItWrites(HostProcess& host)
    {
        for (int attempt = 0; attempt < 20; ++attempt) {
            fs::remove(m_installation.settingsFile());
            order(host, "remove Others");
            order(host, "sync");
            order(host, "fill Fill" + std::to_string(attempt) + " " + std::to_string(kMany));
            host.say("sync");
            if (waitForNewFile(host) && isStoppedUnderLock(host))
                return true;
            host.signal(SIGCONT);
            (void)host.line();
        }
        m_faults.add("no process could be stopped while it writes");
        return false;
    }
    /// Waits until it has a new file open: by then it has read the old one.
    bool waitForNewFile(const HostProcess& host) const
    {
        const auto end = Clock::now() + std::chrono::seconds(20);
        while (!hasNewFile(host) && Clock::now() < end)
            std::this_thread::yield();
        return Clock::now() < end;
    }
    bool hasNewFile(const HostProcess& host) const
    {
        const fs::path settings = m_installation.settingsFile();
        const auto files = host.openFiles();
        return fs::exists(lockFile()) && std::any_of(files.begin(), files.end(), [&](const fs::path& file) {
                   return file.parent_path() == settings.parent_path() && file != settings && file != lockFile();
               });
    }
    bool isStoppedUnderLock(const HostProcess& host) const
    {
        host.signal(SIGSTOP);
        std::this_thread::sleep_for(Milliseconds(20));
        return fs::exists(lockFile());
    }

    std::u16string inFile(const std::string& name)
    {
        const SettingsFile file = SettingsFile::read(m_installation.settingsFile());
        m_faults.expect(file.fault.empty(), "the file is torn: " + file.fault);
        const auto row = file.values.find(kSettings + units("/" + name));
        return row == file.values.end() ? std::u16string() : row->second;
    }
    void expectInFile(const std::string& name, const std::u16string& text)
    {
        const auto shown = [](const std::u16string& of) { return QString::fromStdU16String(of).toStdString(); };
        const std::u16string found = inFile(name);
        m_faults.expect(found == text, name + " is '" + shown(found) + "', not '" + shown(text) + "'");
    }
    void order(HostProcess& host, const std::string& order) { expectAnswers(host, order, "done"); }
    void expectAnswers(HostProcess& host, const std::string& question, const std::string& answer)
    {
        const std::string given = host.ask(question);
        m_faults.expect(given == answer, question + ": " + given + ", not " + answer);
    }
    void expectFilled()
    {
        const SettingsFile file = SettingsFile::read(m_installation.settingsFile());
        std::size_t found = 0;
        for (const auto& [name, text] : file.below(kSettings))
            found += name.rfind(u"Fill", 0) == 0 && text == u"5$" + std::u16string(40, u'f') ? 1 : 0;
        m_faults.expect(found >= kMany, std::to_string(found) + " of the values of a slow write are there");
    }

    Faults& m_faults;
    vrtest::Installation m_installation;
};

void tryPairs(const Numbers& numbers, Faults& faults)
{
    Pair(faults).changeOneValue();
    Pair(faults).writeBesideAnEmptyLock();
    unsigned int lost = 0;
    for (unsigned int round = 0; round < numbers["deleted"]; ++round) {
        Pair(faults).writeWhileAnotherWrites();
        Pair(faults).writeAfterAnotherWasKilled();
        lost += Pair(faults).startWhileAnotherWrites() ? 1 : 0;
    }
    std::cout << "a start between the reading and the writing of another process: the value that was written meanwhile "
                 "was lost "
              << lost << " of " << numbers["deleted"] << " times" << std::endl;
    faults.expect(lost > 0 || numbers["deleted"] == 0, "what a start in between can cost was not seen");
}

} // namespace

int main(int argc, char** argv)
{
    if (const auto code = playedRole(argc, argv, kRoles))
        return *code;
    const Numbers numbers(
        argc, argv,
        {{"rounds", 3}, {"processes", 8}, {"values", 100}, {"events", 0}, {"starts", 3}, {"lists", 3}, {"deleted", 2}},
        kUsage);
    Faults faults;
    tryMany(numbers, faults);
    tryPairs(numbers, faults);
    return faults.verdict("stress_processes");
}
