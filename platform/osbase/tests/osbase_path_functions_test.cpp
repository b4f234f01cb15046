#include "osbase_support.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using vrosbase::testing::GuardedBuffer;

void put(GuardedBuffer& buffer, const std::wstring& text)
{
    *std::copy(text.begin(), text.end(), buffer.data()) = L'\0';
}

std::wstring appended(const std::wstring& path, const std::wstring& more)
{
    GuardedBuffer buffer(kVrPathCapacity);
    put(buffer, path);
    EXPECT_EQ(PathAppendW(buffer.data(), more.c_str()), TRUE);
    EXPECT_TRUE(buffer.guardsHold());
    return buffer.text();
}

TEST(PathAppendTest, PutsExactlyOneSeparatorBetween)
{
    EXPECT_EQ(appended(L"/a", L"b"), L"/a/b");
    EXPECT_EQ(appended(L"/a/", L"b"), L"/a/b");
    EXPECT_EQ(appended(L"/a//", L"b"), L"/a/b");
    EXPECT_EQ(appended(L"/a", L"/b"), L"/a/b");
    EXPECT_EQ(appended(L"/a/", L"//b"), L"/a/b");
    EXPECT_EQ(appended(L"/a", L"b/c/"), L"/a/b/c/");
    EXPECT_EQ(appended(L"/", L"b"), L"/b");
    EXPECT_EQ(appended(L"a", L"."), L"a/.");
}

TEST(PathAppendTest, EmptyComponentLeavesThePath)
{
    EXPECT_EQ(appended(L"/a/", L""), L"/a/");
    EXPECT_EQ(appended(L"a\\", L""), L"a\\");
    EXPECT_EQ(appended(L"a", L"/"), L"a");
    EXPECT_EQ(appended(L"", L""), L"");
}

TEST(PathAppendTest, EmptyPathBecomesTheComponent)
{
    EXPECT_EQ(appended(L"", L"b"), L"b");
    EXPECT_EQ(appended(L"", L"/b"), L"b");
}

TEST(PathAppendTest, BackslashesAreUnderstoodAndNotWritten)
{
    EXPECT_EQ(appended(L"\\a\\", L"\\b\\c"), L"/a/b/c");
}

TEST(PathAppendTest, ResultOf1023CharactersFits)
{
    const std::wstring component(10, L'b');
    EXPECT_EQ(appended(std::wstring(1012, L'a'), component), std::wstring(1012, L'a') + L'/' + component);
    EXPECT_EQ(appended(std::wstring(1012, L'a') + L'/', component).size(), 1023U);
}

TEST(PathAppendTest, ResultOf1024CharactersIsRefused)
{
    GuardedBuffer buffer(kVrPathCapacity);
    const std::wstring path(1013, L'a');
    put(buffer, path);
    SetLastError(0);
    EXPECT_EQ(PathAppendW(buffer.data(), std::wstring(10, L'b').c_str()), FALSE);
    EXPECT_EQ(GetLastError(), 206U);
    EXPECT_EQ(buffer.text(), path);
    EXPECT_TRUE(buffer.guardsHold());
    EXPECT_EQ(PathAppendW(buffer.data(), std::wstring(100000, L'b').c_str()), FALSE);
    EXPECT_EQ(buffer.text(), path);
}

TEST(PathAppendTest, PathWithoutAnEndInItsBufferIsRefused)
{
    GuardedBuffer buffer(kVrPathCapacity);
    EXPECT_EQ(PathAppendW(buffer.data(), L"b"), FALSE);
    EXPECT_TRUE(buffer.isUntouched());
}

TEST(PathAppendTest, ComponentMayBePartOfThePath)
{
    GuardedBuffer buffer(kVrPathCapacity);
    put(buffer, L"/ab/cd");
    EXPECT_EQ(PathAppendW(buffer.data(), buffer.data()), TRUE);
    EXPECT_EQ(buffer.text(), L"/ab/cd/ab/cd");
}

TEST(PathAppendTest, NullIsRefused)
{
    GuardedBuffer buffer(kVrPathCapacity);
    put(buffer, L"a");
    EXPECT_EQ(PathAppendW(buffer.data(), nullptr), FALSE);
    EXPECT_EQ(GetLastError(), 87U);
    SetLastError(0);
    EXPECT_EQ(PathAppendW(nullptr, L"b"), FALSE);
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_EQ(buffer.text(), L"a");
}

struct Cut {
    const wchar_t* path;
    const wchar_t* left;
    bool isCut;
};

TEST(PathRemoveFileSpecTest, CutsTheLastComponent)
{
    const Cut cuts[] = {
        {L"/a/b", L"/a", true}, {L"/a", L"/", true},  {L"/", L"/", false},   {L"", L"", false},
        {L"a", L"", true},      {L"a/b", L"a", true}, {L"a/", L"a", true},   {L"/a/b/", L"/a/b", true},
        {L"a//b", L"a", true},  {L"//a", L"/", true}, {L"a\\b", L"a", true}, {L"/a\\b/c", L"/a\\b", true},
    };
    for (const Cut& cut : cuts) {
        GuardedBuffer buffer(16);
        put(buffer, cut.path);
        EXPECT_EQ(PathRemoveFileSpecW(buffer.data()) != FALSE, cut.isCut) << cut.path;
        EXPECT_EQ(buffer.text(), cut.left) << cut.path;
        EXPECT_TRUE(buffer.guardsHold());
    }
}

TEST(PathRemoveFileSpecTest, NullIsRefused)
{
    SetLastError(0);
    EXPECT_EQ(PathRemoveFileSpecW(nullptr), FALSE);
    EXPECT_EQ(GetLastError(), 87U);
}

struct Parts {
    const wchar_t* path;
    const wchar_t* dir;
    const wchar_t* name;
    const wchar_t* ext;
};

TEST(SplitPathTest, SplitsIntoDirectoryNameAndExtension)
{
    const Parts rows[] = {
        {L"/a/b.c", L"/a/", L"b", L".c"},
        {L"b.c", L"", L"b", L".c"},
        {L"/a/b", L"/a/", L"b", L""},
        {L"/a.d/b", L"/a.d/", L"b", L""},
        {L"a.tar.gz", L"", L"a.tar", L".gz"},
        {L"/a/", L"/a/", L"", L""},
        {L"/", L"/", L"", L""},
        {L"", L"", L"", L""},
        {L".x", L"", L"", L".x"},
        {L"x.", L"", L"x", L"."},
        {L"a\\b.c", L"a/", L"b", L".c"},
        {L"c:/x", L"c:/", L"x", L""},
        {L"..", L"", L".", L"."},
    };
    for (const Parts& row : rows) {
        GuardedBuffer drive(3);
        GuardedBuffer dir(1024);
        GuardedBuffer name(256);
        GuardedBuffer ext(256);
        _wsplitpath(row.path, drive.data(), dir.data(), name.data(), ext.data());
        EXPECT_EQ(drive.text(), L"") << row.path;
        EXPECT_EQ(dir.text(), row.dir) << row.path;
        EXPECT_EQ(name.text(), row.name) << row.path;
        EXPECT_EQ(ext.text(), row.ext) << row.path;
    }
}

TEST(SplitPathTest, PartsAreCutToTheirCapacities)
{
    for (const std::size_t spare : {std::size_t{0}, std::size_t{1}, std::size_t{500}}) {
        const std::wstring dir = std::wstring(1022 + spare, L'd') + L'/';
        const std::wstring name(255 + spare, L'n');
        const std::wstring ext = L'.' + std::wstring(254 + spare, L'e');
        GuardedBuffer dirBuffer(1024);
        GuardedBuffer nameBuffer(256);
        GuardedBuffer extBuffer(256);
        const std::wstring path = std::wstring(dir).append(name).append(ext);
        _wsplitpath(path.c_str(), nullptr, dirBuffer.data(), nameBuffer.data(), extBuffer.data());
        EXPECT_EQ(dirBuffer.text(), dir.substr(0, 1023));
        EXPECT_EQ(nameBuffer.text(), name.substr(0, 255));
        EXPECT_EQ(extBuffer.text(), ext.substr(0, 255));
        EXPECT_TRUE(dirBuffer.guardsHold() && nameBuffer.guardsHold() && extBuffer.guardsHold());
    }
}

TEST(SplitPathTest, NullOutputsAreSkipped)
{
    GuardedBuffer name(256);
    _wsplitpath(L"/a/b.c", nullptr, nullptr, name.data(), nullptr);
    EXPECT_EQ(name.text(), L"b");
}

TEST(SplitPathTest, NullPathIsError87AndLeavesTheOutputs)
{
    GuardedBuffer name(256);
    SetLastError(0);
    _wsplitpath(nullptr, name.data(), name.data(), name.data(), name.data());
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_TRUE(name.isUntouched());
}

} // namespace
