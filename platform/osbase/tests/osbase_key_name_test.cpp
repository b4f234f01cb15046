#include "osbase/key_name.h"

#include <gtest/gtest.h>

namespace
{

using namespace vrosbase::internal;

struct Form {
    std::wstring name;
    std::string fileName;
};

TEST(KeyNameTest, NamesAreEncodedWhereAFileNameCannotHoldThem)
{
    const Form forms[] = {
        {L"Software", "Software"}, {L"a b", "a b"},       {L".", "%2E"},
        {L"..", "%2E%2E"},         {L"...", "..."},       {L".hidden", ".hidden"},
        {L"100%", "100%25"},       {L"%2E", "%252E"},     {L"a\tb\n", "a%09b%0A"},
        {L"\x7F", "%7F"},          {L"\xE4", "\xC3\xA4"}, {L"\x1F600", "\xF0\x9F\x98\x80"},
        {L"\x1F", "%1F"},          {L" ", " "},
    };
    for (const Form& form : forms) {
        EXPECT_EQ(encodeKeyName(form.name), form.fileName);
        EXPECT_EQ(decodeKeyName(form.fileName), form.name);
    }
}

TEST(KeyNameTest, FileNamesThatNobodyEncodedAreReadAsTheyStand)
{
    EXPECT_EQ(decodeKeyName("100%"), L"100%");
    EXPECT_EQ(decodeKeyName("%4"), L"%4");
    EXPECT_EQ(decodeKeyName("%4x"), L"%4x");
    EXPECT_EQ(decodeKeyName("%%41"), L"%A");
    EXPECT_EQ(decodeKeyName("%2e"), L"%2e");
}

TEST(KeyNameTest, EncodedNameHasAtMost255Bytes)
{
    EXPECT_TRUE(encodeKeyName(std::wstring(255, L'x')));
    EXPECT_FALSE(encodeKeyName(std::wstring(256, L'x')));
    EXPECT_TRUE(encodeKeyName(std::wstring(127, L'\xE4')));
    EXPECT_FALSE(encodeKeyName(std::wstring(128, L'\xE4')));
    EXPECT_TRUE(encodeKeyName(std::wstring(85, L'%')));
    EXPECT_FALSE(encodeKeyName(std::wstring(86, L'%')));
}

TEST(KeyNameTest, PathIsSplitAtBothSeparators)
{
    using Names = std::vector<std::wstring>;
    EXPECT_EQ(splitKeyPath(L""), Names());
    EXPECT_EQ(splitKeyPath(L"a"), Names({L"a"}));
    EXPECT_EQ(splitKeyPath(L"a\\b/c"), Names({L"a", L"b", L"c"}));
    EXPECT_EQ(splitKeyPath(L"\\a\\\\b/"), Names({L"a", L"b"}));
    EXPECT_EQ(splitKeyPath(L"\\/"), Names());
}

} // namespace
