#include "fault_site.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSettings>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "VrUInfo/FirstRun.h"
#include "VrUInfo/VornaConfig.h"
#include "start_words.h"
#include "unprivileged.h"

namespace faults
{

const Words kReadAndWrite{"start", "read", "write"};

namespace
{

constexpr char kOldSettings[] = "[Faults]\nKept=5$old\n";
constexpr char kOldList[] = "[InstalledProducts]\n1=OLD_1999_Enu\n";
constexpr std::chrono::seconds kWait(2);        ///< From here on something was waited for.
constexpr std::chrono::seconds kLongestLife(8); ///< Of a process that waits for nothing.

// ---- Hosts without a fault

/// What the same steps make of the same files, or of none, when nothing is wrong.
std::string healthyResult(const Site& site, bool hasFiles, const Words& calls, const fs::path& file)
{
    static int count = 0;
    const fs::path home = site.program() / ("healthy" + std::to_string(count++));
    const fs::path twin = home / file.lexically_relative(site.home());
    fs::create_directories(twin.parent_path());
    if (hasFiles)
        writeText(twin, file == site.list() ? kOldList : kOldSettings);
    vrtest::giveAway(home);
    const vrtest::Installation& here = vrtest::Installation::here();
    Environment environment = here.environment();
    environment["HOME"] = home;
    EXPECT_EQ(here.run("host", calls, environment).exitCode, 0);
    return vrtest::readFile(twin);
}

bool isCall(const std::string& step)
{
    static const std::set<std::string> kCalls{"start", "read", "write", "list", "direct read", "direct write"};
    return kCalls.count(step) == 1;
}

Words callsIn(const Words& steps)
{
    Words calls;
    for (const std::string& step : steps) {
        if (isCall(step))
            calls.push_back(step);
    }
    return calls;
}

// ---- What is on disk

bool isFile(const fs::path& path)
{
    std::error_code none;
    return fs::is_regular_file(path, none);
}

/// One file as it stands there.
struct Seen {
    mode_t kind = 0; ///< 0 when there is nothing.
    std::string bytes;

    static Seen at(const fs::path& path)
    {
        struct stat status = {};
        Seen seen;
        if (lstat(path.c_str(), &status) != 0)
            return seen;
        seen.kind = status.st_mode & S_IFMT;
        if (S_ISLNK(status.st_mode))
            seen.bytes = fs::read_symlink(path).string() + "\n";
        if (isFile(path))
            seen.bytes += vrtest::readFile(path);
        return seen;
    }
    bool operator==(const Seen& other) const { return kind == other.kind && bytes == other.bytes; }

    [[nodiscard]] std::string words() const
    {
        switch (kind) {
        case 0:
            return "nothing";
        case S_IFDIR:
            return "the directory";
        case S_IFLNK:
            return "the link";
        case S_IFIFO:
            return "the pipe";
        default:
            return "the old file";
        }
    }
};

/// What stands in the directory beside the file and its lock.
std::set<std::string> othersBeside(const fs::path& file)
{
    std::set<std::string> names;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(file.parent_path(), none)) {
        const std::string name = entry.path().filename();
        if (name != file.filename() && name != file.filename().string() + ".lock")
            names.insert(name);
    }
    return names;
}

/// What stood there before a host ran, and what a host without a fault makes of it.
class Disk
{
public:
    Disk(const Site& site, const Words& steps, fs::path file) :
        m_site(site), m_calls(callsIn(steps)), m_file(std::move(file)), m_before(Seen::at(m_file)),
        m_others(othersBeside(m_file))
    {
    }
    [[nodiscard]] std::string words() const { return fileWords() + leftoverWords(); }

private:
    [[nodiscard]] std::string fileWords() const
    {
        const Seen after = Seen::at(m_file);
        const std::string bytes = isFile(m_file) ? vrtest::readFile(m_file) : "";
        const std::string link = after.kind == S_IFLNK ? ", behind the link" : "";
        if (after == m_before)
            return after.words() + (after.kind == 0 ? "" : ", unchanged");
        if (bytes == healthyResult(m_site, true, m_calls, m_file))
            return "old and new values" + link;
        if (bytes == healthyResult(m_site, false, m_calls, m_file))
            return "the new values only" + link;
        return after.words() + (after.bytes.empty() ? "" : ": " + bytes);
    }
    [[nodiscard]] std::string leftoverWords() const
    {
        std::set<std::string> more;
        const std::set<std::string> after = othersBeside(m_file);
        std::set_difference(after.begin(), after.end(), m_others.begin(), m_others.end(),
                            std::inserter(more, more.end()));
        return more.empty() ? "" : ", and the half-written new one beside it";
    }

    const Site& m_site;
    const Words m_calls;
    const fs::path m_file;
    const Seen m_before;
    const std::set<std::string> m_others;
};

// ---- What was said

std::string joined(const Words& words, const std::string& separator)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

std::string callerWords(const ProcessResult& result)
{
    std::string words = result.out;
    std::replace(words.begin(), words.end(), '\n', ',');
    words.erase(words.find_last_not_of(',') + 1);
    for (std::size_t at = 0; (at = words.find(',', at)) != std::string::npos; at += 2)
        words.replace(at, 1, ", ");
    if (result.signal == SIGKILL)
        return words + ", then it hangs";
    if (result.signal != 0)
        return words + ", then SIG" + sigabbrev_np(result.signal);
    if (result.exitCode != 0)
        return words + (words.empty() ? "" : ", then ") + "exit code " + std::to_string(result.exitCode);
    return words;
}

std::string codeOf(const ProcessResult& result)
{
    return result.signal == 0 ? std::to_string(result.exitCode) : std::string("SIG") + sigabbrev_np(result.signal);
}

/// The findings that are no notes.
std::string doctorWords(const Site& site)
{
    const ProcessResult result = site.tool({"doctor", "--json"});
    const QJsonObject report = QJsonDocument::fromJson(QByteArray::fromStdString(result.out)).object();
    std::set<std::string> ids;
    for (const auto& value : report.value(QStringLiteral("findings")).toArray()) {
        const QJsonObject finding = value.toObject();
        const std::string id = finding.value(QStringLiteral("id")).toString().toStdString();
        if (finding.value(QStringLiteral("severity")).toString() != QStringLiteral("note"))
            ids.insert(id);
    }
    const std::string list = joined(Words(ids.begin(), ids.end()), ", ");
    return "`doctor` " + codeOf(result) + (list.empty() ? "" : ": " + list);
}

/// What `set` says is what is so: it wrote the value, or left everything as it was.
std::string setWords(const Site& site)
{
    const Seen before = Seen::at(site.settings());
    const ProcessResult result = site.tool({"set", "Faults/Tool", "x"});
    const std::string bytes = isFile(site.settings()) ? vrtest::readFile(site.settings()) : "";
    const bool isWritten = bytes.find("Tool=5$x\n") != std::string::npos;
    EXPECT_EQ(isWritten, result.exitCode == 0) << result.out << result.err;
    EXPECT_TRUE(isWritten || Seen::at(site.settings()) == before) << result.err;
    const bool isNamed = result.err.find(site.settings().filename()) != std::string::npos;
    EXPECT_TRUE(isNamed || result.exitCode == 0 || result.signal != 0) << result.err;
    return "`set` " + codeOf(result);
}

// ---- The rows of the page

struct Row {
    std::string caller;
    std::string disk;
    std::string tool;
};

std::string testName()
{
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    return std::string(test.test_suite_name()) + "." + test.name();
}

Words cellsOf(const std::string& line)
{
    Words cells;
    std::istringstream stream(line.substr(1));
    for (std::string cell; std::getline(stream, cell, '|');) {
        cell.erase(0, cell.find_first_not_of(' '));
        cell.erase(cell.find_last_not_of(' ') + 1);
        cells.push_back(cell);
    }
    return cells;
}

/// The cells of the page's rows whose last one names a test.
std::vector<Words> rowsOfThePage()
{
    std::vector<Words> rows;
    std::ifstream page(FAULTS_PAGE);
    for (std::string line; std::getline(page, line);) {
        const Words cells = line.rfind('|', 0) == 0 ? cellsOf(line) : Words();
        if (cells.size() == 5 && cells.back().find('.') != std::string::npos)
            rows.push_back(cells);
    }
    return rows;
}

void expectRow(const Row& seen)
{
    const std::string name = "`" + testName() + "`";
    const std::string wanted = seen.caller + " | " + seen.disk + " | " + seen.tool + " | " + name;
    for (const Words& row : rowsOfThePage()) {
        if (row.back() != name)
            continue;
        EXPECT_EQ(joined(Words(row.begin() + 1, row.end()), " | "), wanted) << "docs/faults.md tells the former";
        return;
    }
    ADD_FAILURE() << "docs/faults.md has no row | ... | " << wanted << " |";
}

std::string hostWords(const Site& site, const Words& steps)
{
    const auto begin = std::chrono::steady_clock::now();
    const ProcessResult result = site.host(steps);
    const bool hasWaited = std::chrono::steady_clock::now() - begin > kWait;
    EXPECT_EQ(result.err.find("failed: "), std::string::npos) << result.err;
    return callerWords(result) + (hasWaited ? ", then it waits" : "");
}

} // namespace

// ---- The site

Site::Site(bool listsRelease) : m_here(vrtest::Installation::here()), m_listsRelease(listsRelease)
{
    umask(022);
    for (const char* const language : {"en-US", "de-DE"}) {
        m_here.installLanguage(language);
        m_here.write(std::string(language) + "/Help/VrHelp.pdf", "%PDF");
    }
    m_here.write("VORNA.ini", "[Product]\nLocaleId=1033\n[LocaleIdLangName]\n1033=en-US\n");
    m_here.write("product.ini", "[Product]\nMajorVer=26\nProductId=1\n");
    m_here.write("vruinfo.ini", "[Product]\nPreStr=Vr\n");
    fs::copy_file(TOOL_PROGRAM, program() / "vruinfo");
    writeFiles();
}

void Site::writeFiles() const
{
    fs::create_directories(elsewhere());
    writeText(settings(), kOldSettings);
    const std::string entry = "\n[VORNA_2026_Enu]\nLanguage=en-US\nLocation=" + program().string() +
                              "\nProduct=VORNA\nProductName=VORNA 2026 Enu\nVersion=2026\n";
    writeText(list(), m_listsRelease ? "[InstalledProducts]\n1=VORNA_2026_Enu\n" + entry : kOldList);
    giveToUser();
}

void Site::giveToUser() const
{
    vrtest::giveAway(home());
    vrtest::giveAway(elsewhere());
}

ProcessResult Site::run(const Words& command, const Environment& changes) const
{
    Words all;
    if (vrtest::isRoot())
        all = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    all.insert(all.end(), before.begin(), before.end());
    all.insert(all.end(), command.begin(), command.end());
    Environment whole = m_here.environment();
    for (const Environment* const more : {&environment, &changes}) {
        for (const auto& [name, value] : *more)
            whole[name] = value;
    }
    const auto begin = std::chrono::steady_clock::now();
    ProcessResult result = vrtest::runProcess(all, whole, {}, 20);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kLongestLife) << joined(all, " ");
    return result;
}

ProcessResult Site::host(const Words& steps) const
{
    Words command{m_here.executable()};
    command.insert(command.end(), steps.begin(), steps.end());
    return run(command, {{"VR_PROBE", "host"}});
}

ProcessResult Site::tool(const Words& arguments) const
{
    Words command{program() / "vruinfo"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(command, {});
}

void expectSettingsRow(const Site& site, const Words& steps)
{
    const Disk disk(site, steps, site.settings());
    const std::string caller = hostWords(site, steps);
    const std::string onDisk = disk.words();
    const std::string doctor = doctorWords(site);
    const std::string identity = "`identity` " + codeOf(site.tool({"identity"}));
    expectRow({caller, onDisk, doctor + "; " + identity + "; " + setWords(site)});
}

void expectListRow(const Site& site, const Words& steps)
{
    const Disk disk(site, steps, site.list());
    const std::string caller = hostWords(site, steps);
    const std::string onDisk = disk.words();
    const std::string products = "`products` " + codeOf(site.tool({"products"}));
    expectRow({caller, onDisk, doctorWords(site) + "; " + products});
}

// ---- File systems

bool mayMount()
{
    static const bool kMay =
        unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return kMay;
}

void mountSmall(const fs::path& directory, std::size_t bytes)
{
    fs::create_directories(directory);
    const std::string options = "size=" + std::to_string(bytes);
    if (mount("small", directory.c_str(), "tmpfs", 0, options.c_str()) != 0)
        throw std::runtime_error("no small file system");
}

void fill(const fs::path& directory)
{
    const int file = open((directory / "filler").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    const std::array<char, 4096> page{};
    while (write(file, page.data(), page.size()) > 0) {
    }
    const bool isFull = errno == ENOSPC;
    close(file);
    if (!isFull)
        throw std::runtime_error("not full");
}

void makeReadOnly(const fs::path& mountPoint)
{
    if (mount("none", mountPoint.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
        throw std::runtime_error("not read-only");
}

void makePipe(const fs::path& path)
{
    if (mkfifo(path.c_str(), 0666) != 0)
        throw std::runtime_error("no pipe");
}

void writeText(const fs::path& path, const std::string& text)
{
    vrtest::writeFile(path, text);
}

} // namespace faults

// ---- The page as a whole

namespace
{

using namespace faults;

std::set<std::string> testsOfFaults()
{
    const testing::UnitTest& unit = *testing::UnitTest::GetInstance();
    std::set<std::string> names;
    for (int i = 0; i < unit.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *unit.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count() && std::string(suite.name()) != "FaultsPage"; ++j)
            names.insert("`" + std::string(suite.name()) + "." + suite.GetTestInfo(j)->name() + "`");
    }
    return names;
}

TEST(FaultsPage, HasOneRowForEachFaultThatIsTriedAndNoOther)
{
    std::multiset<std::string> rows;
    for (const Words& row : rowsOfThePage())
        rows.insert(row.back());
    const std::set<std::string> tests = testsOfFaults();
    EXPECT_EQ(rows, std::multiset<std::string>(tests.begin(), tests.end()));
}

void tellRead(bool isThere)
{
    std::cout << (isThere ? "the old value is read" : "the old value is absent") << std::endl;
}

void start()
{
    const unsigned int status = vrtest::startWith({"-", "-", "en-US"});
    std::cout << "start " << status << std::endl;
}

void readValue()
{
    VornVariant value;
    tellRead(vornConfig()->getValue(L"Faults", L"Kept", value) == 0);
}

void writeValue()
{
    VornVariant value;
    value.setString(L"new", VornVariant::kVarString);
    std::cout << "write " << WriteValueToReg(L"Faults", L"New", value) << std::endl;
}

void enterIntoList()
{
    std::cout << "list " << (CreateProductsConfigReg() ? "true" : "false") << std::endl;
}

QSettings& direct()
{
    static QSettings settings(QStringLiteral("HALVIK/VORNA/2026"), QStringLiteral("VORNA"));
    return settings;
}

void readDirectly()
{
    tellRead(direct().contains(QStringLiteral("Faults/Kept")));
}

void writeDirectly()
{
    direct().setValue(QStringLiteral("Faults/New"), QStringLiteral("5$new"));
    direct().sync();
    std::cout << "write " << direct().status() << std::endl;
}

void takeDescriptors()
{
    while (open("/dev/null", O_RDONLY | O_CLOEXEC) >= 0) {
    }
}

void giveDescriptors()
{
    closefrom(STDERR_FILENO + 1);
}

void takeStep(const std::string& step)
{
    static const std::map<std::string, void (*)()> kSteps = {{"start", start},
                                                             {"read", readValue},
                                                             {"write", writeValue},
                                                             {"list", enterIntoList},
                                                             {"direct read", readDirectly},
                                                             {"direct write", writeDirectly},
                                                             {"no descriptors", takeDescriptors},
                                                             {"descriptors again", giveDescriptors}};
    const auto found = kSteps.find(step);
    if (found != kSteps.end())
        found->second();
    else if (std::system(step.c_str()) != 0)
        std::cerr << "failed: " << step << "\n";
}

} // namespace

/// A host: takes the steps that the arguments are, prints what each call gives, and ends.
PROBE(host)
{
    for (const std::string& step : arguments)
        takeStep(step);
    return 0;
}
