#include "osbase_support.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{

using vrosbase::testing::EnvGuard;
using vrosbase::testing::GuardedBuffer;
using vrosbase::testing::TempDir;
using vrosbase::testing::wide;

constexpr int kAll[] = {5, 26, 28, 40};

/// The folder, or what stands for a failure.
std::wstring folder(int csidl, BOOL create = FALSE)
{
    GuardedBuffer buffer(kVrPathCapacity);
    const BOOL isGiven = SHGetSpecialFolderPathW(nullptr, buffer.data(), csidl, create);
    EXPECT_TRUE(buffer.guardsHold());
    EXPECT_EQ(isGiven, buffer.text().empty() ? FALSE : TRUE);
    return isGiven ? buffer.text() : L"failure";
}

HRESULT folderResult(int csidl)
{
    GuardedBuffer buffer(kVrPathCapacity);
    const HRESULT result = SHGetFolderPathW(nullptr, csidl, nullptr, 0, buffer.data());
    EXPECT_EQ(result == S_OK, !buffer.text().empty());
    return result;
}

class FoldersTest : public ::testing::Test
{
protected:
    const TempDir m_dir;
    const EnvGuard m_home{"HOME", m_dir.path().c_str()};
    const EnvGuard m_config{"XDG_CONFIG_HOME", nullptr};
    const EnvGuard m_data{"XDG_DATA_HOME", nullptr};
};

TEST_F(FoldersTest, StandBelowTheHome)
{
    EXPECT_EQ(folder(CSIDL_PROFILE), wide(m_dir.path()));
    EXPECT_EQ(folder(CSIDL_APPDATA), m_dir.wideAt(".config"));
    EXPECT_EQ(folder(CSIDL_LOCAL_APPDATA), m_dir.wideAt(".local/share"));
    EXPECT_EQ(folder(CSIDL_PERSONAL), m_dir.wideAt("Documents"));
}

TEST_F(FoldersTest, BothFormsGiveTheSame)
{
    for (const int csidl : kAll) {
        GuardedBuffer buffer(kVrPathCapacity);
        EXPECT_EQ(SHGetFolderPathW(nullptr, csidl, nullptr, 0, buffer.data()), S_OK);
        EXPECT_EQ(buffer.text(), folder(csidl));
    }
}

TEST_F(FoldersTest, FollowTheEnvironment)
{
    const EnvGuard config("XDG_CONFIG_HOME", m_dir.at("conf").c_str());
    const EnvGuard data("XDG_DATA_HOME", m_dir.at("data").c_str());
    EXPECT_EQ(folder(CSIDL_APPDATA), m_dir.wideAt("conf"));
    EXPECT_EQ(folder(CSIDL_LOCAL_APPDATA), m_dir.wideAt("data"));
    const EnvGuard other("HOME", m_dir.at("other").c_str());
    EXPECT_EQ(folder(CSIDL_PROFILE), m_dir.wideAt("other"));
}

TEST_F(FoldersTest, DocumentsFollowTheUsersDirectories)
{
    m_dir.addDirectory(".config");
    m_dir.addFile(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/My Papers\"\n");
    EXPECT_EQ(folder(CSIDL_PERSONAL), m_dir.wideAt("My Papers"));
    m_dir.addFile(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"/elsewhere/papers\"\n");
    EXPECT_EQ(folder(CSIDL_PERSONAL), L"/elsewhere/papers");
}

TEST_F(FoldersTest, TextOutsideAsciiIsKept)
{
    const EnvGuard home("HOME", m_dir.at("j\xC3\xBCrgen \xF0\x9F\x98\x80").c_str());
    EXPECT_EQ(folder(CSIDL_PROFILE), m_dir.wideAt("j") + L"\xFCrgen \x1F600");
}

TEST_F(FoldersTest, HomeThatEndsInABackslashKeepsIt)
{
    const EnvGuard home("HOME", m_dir.at("home\\").c_str());
    EXPECT_EQ(folder(CSIDL_PROFILE), m_dir.wideAt("home\\"));
    EXPECT_EQ(folder(CSIDL_APPDATA), m_dir.wideAt("home\\/.config"));
}

TEST_F(FoldersTest, HomeHasNoTrailingSeparator)
{
    const EnvGuard home("HOME", m_dir.at("home/").c_str());
    EXPECT_EQ(folder(CSIDL_PROFILE), m_dir.wideAt("home"));
}

TEST_F(FoldersTest, FolderOf1023CharactersFits)
{
    const EnvGuard home("HOME", ("/" + std::string(1022, 'x')).c_str());
    EXPECT_EQ(folder(CSIDL_PROFILE), L"/" + std::wstring(1022, L'x'));
    EXPECT_EQ(folderResult(CSIDL_PROFILE), S_OK);
    EXPECT_EQ(folderResult(CSIDL_APPDATA), E_FAIL);
}

TEST_F(FoldersTest, FolderOf1024CharactersIsAFailure)
{
    const EnvGuard home("HOME", ("/" + std::string(1023, 'x')).c_str());
    for (const int csidl : kAll) {
        EXPECT_EQ(folder(csidl), L"failure");
        EXPECT_EQ(folderResult(csidl), E_FAIL);
    }
}

TEST_F(FoldersTest, LimitCountsCharactersAndNotBytes)
{
    std::string name = "/";
    for (int i = 0; i < 1022; ++i) {
        name += "\xC3\xA4";
    }
    {
        const EnvGuard home("HOME", name.c_str());
        EXPECT_EQ(folder(CSIDL_PROFILE), L"/" + std::wstring(1022, L'\xE4'));
    }
    const EnvGuard home("HOME", (name + "\xC3\xA4").c_str());
    EXPECT_EQ(folder(CSIDL_PROFILE), L"failure");
}

TEST_F(FoldersTest, FolderIsOnlyMadeWhenAsked)
{
    EXPECT_NE(folder(CSIDL_LOCAL_APPDATA), L"failure");
    EXPECT_FALSE(std::filesystem::exists(m_dir.at(".local")));
    EXPECT_EQ(folder(CSIDL_LOCAL_APPDATA, TRUE), m_dir.wideAt(".local/share"));
    EXPECT_TRUE(std::filesystem::is_directory(m_dir.at(".local/share")));
    EXPECT_EQ(folder(CSIDL_APPDATA | CSIDL_FLAG_CREATE), m_dir.wideAt(".config"));
    EXPECT_TRUE(std::filesystem::is_directory(m_dir.at(".config")));
    EXPECT_EQ(folderResult(CSIDL_PERSONAL | CSIDL_FLAG_CREATE), S_OK);
    EXPECT_TRUE(std::filesystem::is_directory(m_dir.at("Documents")));
    EXPECT_EQ(folder(CSIDL_PERSONAL | CSIDL_FLAG_CREATE, TRUE), m_dir.wideAt("Documents"));
}

TEST_F(FoldersTest, FolderThatCannotBeMadeIsAFailure)
{
    m_dir.addFile(".config");
    EXPECT_EQ(folder(CSIDL_APPDATA, TRUE), L"failure");
    EXPECT_EQ(folderResult(CSIDL_APPDATA | CSIDL_FLAG_CREATE), E_FAIL);
    EXPECT_EQ(folder(CSIDL_APPDATA), m_dir.wideAt(".config"));
}

TEST_F(FoldersTest, UnknownNumbersAreRefused)
{
    for (const int csidl : {0, 4, 6, 25, 27, 29, 39, 41, -1, 0x4000 | 26}) {
        EXPECT_EQ(folder(csidl), L"failure") << csidl;
        EXPECT_EQ(folderResult(csidl), E_INVALIDARG) << csidl;
    }
}

TEST_F(FoldersTest, NullBufferIsRefused)
{
    SetLastError(0);
    EXPECT_EQ(SHGetSpecialFolderPathW(nullptr, nullptr, CSIDL_PROFILE, FALSE), FALSE);
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_EQ(SHGetFolderPathW(nullptr, CSIDL_PROFILE, nullptr, 0, nullptr), E_INVALIDARG);
}

} // namespace
