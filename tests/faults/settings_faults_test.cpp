// The settings file under faults that are its own, besides the shared ones. What each test sees is the row of its name
// in docs/faults.md.
#include <gtest/gtest.h>

#include "faulty_file.h"
#include "unprivileged.h"

using namespace faults;
using vrtest::setMode;

namespace
{

// ---- Room

TEST_F(SettingsFile, OnADiskThatIsFullWithoutOne)
{
    if (!hasHomeOfItsOwn())
        GTEST_SKIP() << kNeedsMount;
    fs::remove(file());
    fill(site().home());
    expectRow();
}

// ---- Rights

TEST_F(SettingsFile, OfAnotherUserWhoLetsItBeRead)
{
    if (!vrtest::isRoot())
        GTEST_SKIP() << kNeedsRoot;
    ASSERT_EQ(chown(file().c_str(), 0, 0), 0);
    setMode(file(), 0644);
    expectRow();
}

TEST_F(SettingsFile, WhoseDirectoryIsAnotherUsers)
{
    if (!vrtest::isRoot())
        GTEST_SKIP() << kNeedsRoot;
    ASSERT_EQ(chown(directory().c_str(), 0, 0), 0);
    setMode(directory(), 0700);
    expectRow();
}

// ---- Something else in its place

TEST_F(SettingsFile, ReplacedByALinkIntoNoDirectory)
{
    replaceByLink(site().elsewhere() / "missing/made.conf");
    expectRow();
}

TEST_F(SettingsFile, ReplacedByALinkToAPipe)
{
    makePipe(site().elsewhere() / "pipe");
    replaceByLink(site().elsewhere() / "pipe");
    expectRow();
}

TEST_F(SettingsFile, ReplacedByALinkToADeviceWithoutAnEnd)
{
    replaceByLink("/dev/zero");
    expectRow();
}

// ---- While a host runs

TEST_F(SettingsFile, ThatIsRemovedWithItsDirectoryWhileAHostRuns)
{
    expectRow({"start", "rm -r " + directory().string(), "read", "write"});
}

TEST_F(SettingsFile, WhoseHomeIsRemovedWhileAHostRuns)
{
    fs::remove_all(site().elsewhere());
    setMode(site().home().parent_path(), 0777);
    expectRow({"start", "rm -r " + site().home().string(), "read", "write"});
}

TEST_F(SettingsFile, ThatIsReplacedByADirectoryWhileAHostRuns)
{
    expectRow({"start", "rm " + file().string() + " && mkdir " + file().string(), "read", "write"});
}

TEST_F(SettingsFile, ThatIsReplacedByALinkWhileAHostRuns)
{
    const std::string other = site().elsewhere() / "kept.conf";
    expectRow({"start", "mv " + file().string() + " " + other + " && ln -s " + other + " " + file().string(), "read",
               "write"});
}

TEST_F(SettingsFile, ThatIsReplacedByAPipeWhileAHostRuns)
{
    expectRow({"start", "rm " + file().string() + " && mkfifo " + file().string(), "read", "write"});
}

TEST_F(SettingsFile, WhoseDirectoryBecomesReadOnlyWhileAHostRuns)
{
    expectRow({"start", "read", "chmod 555 " + directory().string(), "write"});
}

TEST_F(SettingsFile, WhoseDiskFillsWhileAHostRuns)
{
    if (!hasHomeOfItsOwn())
        GTEST_SKIP() << kNeedsMount;
    const std::string filler = site().home() / "filler";
    expectRow({"start", "read", "write", "! cat /dev/zero 2>/dev/null >" + filler});
}

// ---- Lock files

// A lock of another host holds for thirty seconds after it was made; three of them are left.
std::string makeOldLock(const std::string& lock)
{
    return R"(printf '4242\nVorna\nelsewhere.example\n' >)" + lock + " && touch -d '27 seconds ago' " + lock;
}

TEST_F(SettingsFile, WithALockOfAnotherHostWithoutThisLibrary)
{
    expectRow({makeOldLock(lock()), "direct read", "direct write"});
}

TEST_F(SettingsFile, WithALockOfAnotherHostThatComesWhileAHostRuns)
{
    expectRow({"start", "read", "write", makeOldLock(lock())});
}

TEST_F(SettingsFile, WithALockOfALivingProcess)
{
    writeText(lock(), std::to_string(getpid()) + "\n" + site().program().filename().string() + "\n\n");
    site().giveToUser();
    expectRow();
}

TEST_F(SettingsFile, WithALockInAReadOnlyDirectory)
{
    lockByAnotherHost();
    setMode(directory(), 0555);
    expectRow();
}

// ---- Descriptors

TEST_F(SettingsFile, WhenNoFileCanBeOpened)
{
    expectRow({"no descriptors", "start", "read", "write"});
}

TEST_F(SettingsFile, WhenNoFileCanBeOpenedAtTheEnd)
{
    expectRow({"start", "read", "write", "no descriptors"});
}

TEST_F(SettingsFile, WhenNoFileCanBeOpenedForAWhile)
{
    expectRow({"start", "no descriptors", "read", "write", "descriptors again"});
}

// ---- Homes

TEST_F(SettingsFile, InAHomeThatCannotBeWritten)
{
    fs::remove_all(site().home() / ".config");
    setMode(site().home(), 0555);
    expectRow();
}

TEST_F(SettingsFile, InAHomeThatIsAFile)
{
    fs::remove_all(site().home());
    writeText(site().home(), "");
    expectRow();
}

} // namespace
