#include "osbase_support.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace
{

using vrosbase::testing::DirectoryGuard;
using vrosbase::testing::GuardedBuffer;
using vrosbase::testing::runWithoutPrivileges;
using vrosbase::testing::TempDir;
using vrosbase::testing::wide;

/// 0, or the errno of the refusal.
int access(const std::wstring& path, int mode)
{
    errno = 0;
    const int answer = _waccess(path.c_str(), mode);
    EXPECT_TRUE(answer == 0 || (answer == -1 && errno != 0));
    return answer == 0 ? 0 : errno;
}

TEST(AccessTest, ExistingFileMayBeUsedByItsOwner)
{
    const TempDir dir;
    dir.addFile("f");
    for (const int mode : {0, 2, 4, 6}) {
        EXPECT_EQ(access(dir.wideAt("f"), mode), 0);
        EXPECT_EQ(access(dir.wideAt(""), mode), 0);
    }
}

TEST(AccessTest, MissingFileIsEnoent)
{
    const TempDir dir;
    dir.addFile("f");
    std::filesystem::create_symlink("none", dir.at("dangling"));
    std::filesystem::create_symlink("loop", dir.at("loop"));
    for (const int mode : {0, 2, 4, 6}) {
        EXPECT_EQ(access(dir.wideAt("none"), mode), ENOENT);
        EXPECT_EQ(access(dir.wideAt("f/x"), mode), ENOENT);
        EXPECT_EQ(access(dir.wideAt("dangling"), mode), ENOENT);
        EXPECT_EQ(access(dir.wideAt("loop"), mode), ENOENT);
        EXPECT_EQ(access(dir.wideAt(std::string(300, 'x')), mode), ENOENT);
        EXPECT_EQ(access(L"", mode), ENOENT);
    }
}

TEST(AccessTest, MissingRightIsEacces)
{
    const TempDir dir;
    ASSERT_EQ(::chmod(dir.addFile("readable").c_str(), 0444), 0);
    ASSERT_EQ(::chmod(dir.addFile("writable").c_str(), 0222), 0);
    EXPECT_EQ(runWithoutPrivileges([&] {
                  const bool isRight =
                      access(dir.wideAt("readable"), 4) == 0 && access(dir.wideAt("readable"), 2) == EACCES &&
                      access(dir.wideAt("readable"), 6) == EACCES && access(dir.wideAt("readable"), 0) == 0 &&
                      access(dir.wideAt("writable"), 2) == 0 && access(dir.wideAt("writable"), 4) == EACCES;
                  return isRight ? 0 : 1;
              }),
              0);
}

TEST(AccessTest, EffectiveRightsCount)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs the right to change its user";
    }
    const TempDir dir;
    ASSERT_EQ(::chmod(dir.addFile("secret").c_str(), 0600), 0);
    ASSERT_EQ(::seteuid(65534), 0);
    const int asOther = access(dir.wideAt("secret"), 4);
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_EQ(asOther, EACCES);
}

TEST(AccessTest, ReadOnlyFileSystemIsEacces)
{
    EXPECT_EQ(access(L"/proc/sys/kernel/ostype", 0), 0);
    EXPECT_EQ(runWithoutPrivileges([] { return access(L"/proc/sys/kernel/ostype", 2); }), EACCES);
}

TEST(AccessTest, UnknownModeOrNullIsEinval)
{
    const TempDir dir;
    dir.addFile("f");
    for (const int mode : {1, 3, 5, 7, 8, -1}) {
        EXPECT_EQ(access(dir.wideAt("f"), mode), EINVAL);
    }
    errno = 0;
    SetLastError(0);
    EXPECT_EQ(_waccess(nullptr, 0), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(GetLastError(), 87U);
}

TEST(AccessTest, BackslashesAreSeparators)
{
    const TempDir dir;
    dir.addDirectory("d");
    dir.addFile("d/f");
    EXPECT_EQ(access(dir.wideAt("d\\f"), 0), 0);
}

class CurrentDirectoryTest : public ::testing::Test
{
protected:
    const TempDir m_dir;
    const DirectoryGuard m_back;
};

TEST_F(CurrentDirectoryTest, IsWhatWasSet)
{
    ASSERT_EQ(SetCurrentDirectoryW(wide(m_dir.path()).c_str()), TRUE);
    EXPECT_EQ(std::filesystem::current_path(), m_dir.path());
    GuardedBuffer buffer(1024);
    EXPECT_EQ(GetCurrentDirectoryW(1024, buffer.data()), m_dir.path().size());
    EXPECT_EQ(buffer.text(), wide(m_dir.path()));
}

TEST_F(CurrentDirectoryTest, TooSmallACapacityGivesTheOneNeeded)
{
    ASSERT_EQ(SetCurrentDirectoryW(wide(m_dir.path()).c_str()), TRUE);
    const auto length = static_cast<DWORD>(m_dir.path().size());
    for (const DWORD capacity : {DWORD{0}, DWORD{1}, length}) {
        GuardedBuffer buffer(capacity);
        EXPECT_EQ(GetCurrentDirectoryW(capacity, buffer.data()), length + 1);
        EXPECT_TRUE(buffer.isUntouched());
    }
    GuardedBuffer buffer(length + 1);
    EXPECT_EQ(GetCurrentDirectoryW(length + 1, buffer.data()), length);
    EXPECT_EQ(buffer.text(), wide(m_dir.path()));
    EXPECT_TRUE(buffer.guardsHold());
    EXPECT_EQ(GetCurrentDirectoryW(1024, nullptr), length + 1);
}

TEST_F(CurrentDirectoryTest, NameOfAnyBytesIsGiven)
{
    std::filesystem::create_directory(m_dir.at("\xC3\xA4\xFF"));
    const std::wstring path = m_dir.wideAt("") + L'\xE4' + wchar_t{0xDCFF};
    ASSERT_EQ(SetCurrentDirectoryW(path.c_str()), TRUE);
    GuardedBuffer buffer(1024);
    EXPECT_EQ(GetCurrentDirectoryW(1024, buffer.data()), path.size());
    EXPECT_EQ(buffer.text(), path);
}

TEST_F(CurrentDirectoryTest, DirectoryThatIsGoneIsAFailure)
{
    m_dir.addDirectory("gone");
    ASSERT_EQ(SetCurrentDirectoryW(m_dir.wideAt("gone").c_str()), TRUE);
    std::filesystem::remove(m_dir.at("gone"));
    GuardedBuffer buffer(1024);
    EXPECT_EQ(GetCurrentDirectoryW(1024, buffer.data()), 0U);
    EXPECT_EQ(GetLastError(), 2U);
    EXPECT_TRUE(buffer.isUntouched());
}

TEST_F(CurrentDirectoryTest, WhatIsNoDirectoryIsRefused)
{
    m_dir.addFile("f");
    const std::pair<std::wstring, DWORD> rows[] = {
        {m_dir.wideAt("none"), 2},
        {L"", 2},
        {m_dir.wideAt("f"), 3},
        {m_dir.wideAt("f/x"), 3},
        {m_dir.wideAt(std::string(300, 'x')), 3},
    };
    for (const auto& [path, error] : rows) {
        SetLastError(0);
        EXPECT_EQ(SetCurrentDirectoryW(path.c_str()), FALSE) << path;
        EXPECT_EQ(GetLastError(), error) << path;
    }
}

TEST_F(CurrentDirectoryTest, DirectoryWithoutTheRightIsError5)
{
    ASSERT_EQ(::chmod(m_dir.addDirectory("d").c_str(), 0000), 0);
    EXPECT_EQ(runWithoutPrivileges([&] {
                  const BOOL isChanged = SetCurrentDirectoryW(m_dir.wideAt("d").c_str());
                  return isChanged ? 100 : static_cast<int>(GetLastError());
              }),
              5);
}

TEST_F(CurrentDirectoryTest, NullIsError87)
{
    SetLastError(0);
    EXPECT_EQ(SetCurrentDirectoryW(nullptr), FALSE);
    EXPECT_EQ(GetLastError(), 87U);
}

TEST_F(CurrentDirectoryTest, BackslashesAreSeparators)
{
    m_dir.addDirectory("d/e");
    ASSERT_EQ(SetCurrentDirectoryW(m_dir.wideAt("d\\e").c_str()), TRUE);
    EXPECT_EQ(std::filesystem::current_path(), m_dir.at("d/e"));
}

} // namespace
