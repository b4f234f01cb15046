// Faults that are done alike to the settings file and to the list of installed products. What each test sees is the row
// of its name in docs/faults.md.
#include <fstream>
#include <utility>

#include <unistd.h>

#include "faulty_file.h"
#include "unprivileged.h"

using namespace faults;
using vrtest::setMode;

namespace
{

enum class Needs { Nothing, Root, Mount };

struct Fault {
    const char* name;
    Needs needs;
    void (*make)(FaultyFile& file);
};

void replaceByDirectory(FaultyFile& file)
{
    fs::remove(file.file());
    fs::create_directory(file.file());
    file.site().giveToUser();
}

void lockByDirectory(FaultyFile& file)
{
    fs::create_directories(file.lock() / "inside");
    file.site().giveToUser();
}

void moveBehindLink(FaultyFile& file)
{
    const fs::path target = file.site().elsewhere() / "kept.conf";
    fs::rename(file.file(), target);
    file.replaceByLink(target);
}

void lockByLinkInReadOnlyDirectory(FaultyFile& file)
{
    file.lockByLink("nowhere");
    setMode(file.directory(), 0555);
}

void giveToSomebodyElse(FaultyFile& file)
{
    ASSERT_EQ(chown(file.file().c_str(), 0, 0), 0);
    setMode(file.file(), 0600);
}

void removeHome(FaultyFile& file)
{
    fs::remove_all(file.site().home());
    setMode(file.site().home().parent_path(), 0555);
}

const std::vector<Fault> kFaults{
    {"OnAFullDisk", Needs::Mount, [](FaultyFile& file) { fill(file.site().home()); }},
    {"OnAReadOnlyFileSystem", Needs::Mount, [](FaultyFile& file) { makeReadOnly(file.site().home()); }},
    {"OfAnotherUser", Needs::Root, giveToSomebodyElse},
    {"LongerThanTheLimitOfFilesWhoseSignalIsIgnored", Needs::Nothing,
     [](FaultyFile& file) {
         file.site().before = {"sh", "-c", "trap '' XFSZ; ulimit -f 0; exec \"$@\"", "sh"};
     }},
    {"LongerThanTheLimitOfFiles", Needs::Nothing,
     [](FaultyFile& file) {
         file.site().before = {"sh", "-c", "ulimit -c 0; ulimit -f 0; exec \"$@\"", "sh"};
     }},
    {"InAReadOnlyDirectory", Needs::Nothing, [](FaultyFile& file) { setMode(file.directory(), 0555); }},
    {"ThatIsReadOnly", Needs::Nothing, [](FaultyFile& file) { setMode(file.file(), 0444); }},
    {"ThatCannotBeRead", Needs::Nothing, [](FaultyFile& file) { setMode(file.file(), 0); }},
    {"WithAValueThatAsksForAllTheMemory", Needs::Nothing,
     [](FaultyFile& file) {
         std::ofstream(file.file(), std::ios::app) << "\n[InstalledProducts]\n9=@Variant(\\0\\0\\0\\v2222)\n";
     }},
    {"ReplacedByADirectory", Needs::Nothing, replaceByDirectory},
    {"ReplacedByALink", Needs::Nothing, moveBehindLink},
    {"ReplacedByALinkToNothing", Needs::Nothing,
     [](FaultyFile& file) { file.replaceByLink(file.site().elsewhere() / "made.conf"); }},
    {"ReplacedByALinkToItself", Needs::Nothing, [](FaultyFile& file) { file.replaceByLink(file.file().filename()); }},
    {"ReplacedByAPipe", Needs::Nothing, [](FaultyFile& file) { file.replaceByPipe(); }},
    {"WithALockOfAnotherHost", Needs::Nothing, [](FaultyFile& file) { file.lockByAnotherHost(); }},
    {"WithALockThatIsADirectory", Needs::Nothing, lockByDirectory},
    {"WithALockThatIsALinkToNothing", Needs::Nothing, [](FaultyFile& file) { file.lockByLink("nowhere"); }},
    {"WithALockThatIsALinkToNothingInAReadOnlyDirectory", Needs::Nothing, lockByLinkInReadOnlyDirectory},
    {"InAHomeThatIsNotThere", Needs::Nothing, removeHome},
    {"WhenHomeIsNotSet", Needs::Nothing, [](FaultyFile& file) { file.site().environment["HOME"] = ""; }},
};

/// A fault done to the file that the suite is about.
template <typename Suite>
class Shared final : public Suite
{
public:
    explicit Shared(const Fault& fault) : m_fault(fault) {}

private:
    void TestBody() override
    {
        if (m_fault.needs == Needs::Mount && !this->hasHomeOfItsOwn())
            GTEST_SKIP() << kNeedsMount;
        if (m_fault.needs == Needs::Root && !vrtest::isRoot())
            GTEST_SKIP() << kNeedsRoot;
        m_fault.make(*this);
        this->expectRow(this->stepsAfter({}));
    }
    void TearDown() override { setMode(this->site().home().parent_path(), 0755); }

    const Fault& m_fault;
};

template <typename Suite>
bool addSharedFaults(const char* suite)
{
    for (const Fault& fault : kFaults) {
        const auto make = [&fault]() -> Suite* { return new Shared<Suite>(fault); };
        testing::RegisterTest(suite, fault.name, nullptr, nullptr, __FILE__, __LINE__, make);
    }
    return true;
}

[[maybe_unused]] const bool kIsAdded =
    addSharedFaults<SettingsFile>("SettingsFile") && addSharedFaults<ProductsList>("ProductsList");

} // namespace
