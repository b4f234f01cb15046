#include "VrOsBase/VrOsBase.h"

#include "osbase_support.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <regex>
#include <set>
#include <sstream>
#include <type_traits>

namespace
{

using vrosbase::testing::readFile;
using vrosbase::testing::run;
using Names = std::set<std::string>;

static_assert(sizeof(BOOL) == 4 && sizeof(UINT) == 4 && sizeof(DWORD) == 4 && sizeof(LONG) == 4);
static_assert(sizeof(WCHAR) == 4 && sizeof(HANDLE) == 8 && sizeof(HRESULT) == 4 && sizeof(LSTATUS) == 4);
static_assert(std::is_unsigned_v<DWORD> && std::is_signed_v<LONG>);
static_assert(sizeof(WIN32_FIND_DATAW) == 1052 && alignof(WIN32_FIND_DATAW) == 4);
static_assert(offsetof(WIN32_FIND_DATAW, dwFileAttributes) == 0);
static_assert(offsetof(WIN32_FIND_DATAW, nFileSizeHigh) == 4);
static_assert(offsetof(WIN32_FIND_DATAW, nFileSizeLow) == 8);
static_assert(offsetof(WIN32_FIND_DATAW, cFileName) == 12);
static_assert(sizeof(VrResourceString) == 16 && offsetof(VrResourceString, text) == 8);
static_assert(kVrPathCapacity == 1024);
static_assert(S_OK == 0 && E_FAIL == -2147467259 && E_INVALIDARG == -2147024809);
static_assert(CSIDL_PERSONAL == 5 && CSIDL_APPDATA == 26 && CSIDL_LOCAL_APPDATA == 28 && CSIDL_PROFILE == 40);
static_assert(CSIDL_FLAG_CREATE == 0x8000 && DONT_RESOLVE_DLL_REFERENCES == 1);
static_assert(FILE_ATTRIBUTE_DIRECTORY == 0x10 && FILE_ATTRIBUTE_NORMAL == 0x80);
static_assert(REG_CREATED_NEW_KEY == 1 && REG_OPENED_EXISTING_KEY == 2);

Names words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// The first group of every place that matches.
Names matches(const std::string& text, const char* pattern)
{
    const std::regex regex(pattern);
    Names found;
    for (std::sregex_iterator i(text.begin(), text.end(), regex), end; i != end; ++i) {
        found.insert((*i)[1].str());
    }
    return found;
}

Names reviewed()
{
    return words(readFile(VR_TEST_SYMBOLS));
}

TEST(AbiTest, LibraryExportsExactlyTheReviewedList)
{
    const auto listing = run(VR_TEST_NM " -D --defined-only " VR_TEST_LIBRARY);
    ASSERT_EQ(listing.exitCode, 0) << listing.output;
    EXPECT_EQ(matches(listing.output, "[0-9a-f]+ [A-Za-z] (\\S+)"), reviewed());
}

TEST(AbiTest, HeaderDeclaresExactlyTheReviewedList)
{
    EXPECT_EQ(matches(readFile(VR_TEST_HEADER), "(?:\n|\\]\\] )VROSBASE_API [^;(]*?(\\w+)\\("), reviewed());
}

TEST(AbiTest, MapNamesExactlyTheReviewedList)
{
    Names names = matches(readFile(VR_TEST_MAP), "(\\w+);");
    EXPECT_EQ(names, reviewed());
}

TEST(AbiTest, ListIsSortedAndHasNoNameTwice)
{
    std::string sorted;
    for (const std::string& name : reviewed()) {
        sorted += name + '\n';
    }
    EXPECT_EQ(readFile(VR_TEST_SYMBOLS), sorted);
}

} // namespace
