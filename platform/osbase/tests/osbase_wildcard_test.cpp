#include "osbase/wildcard.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace
{

using namespace vrosbase::internal;

struct Pair {
    const wchar_t* name;
    const wchar_t* pattern;
};

TEST(WildcardTest, Matches)
{
    const Pair pairs[] = {
        {L"", L""},           {L"", L"*"},
        {L"", L"**"},         {L"a", L"a"},
        {L"a", L"?"},         {L"a", L"*"},
        {L"a", L"a*"},        {L"a", L"*a"},
        {L"a", L"**a**"},     {L"abc", L"a?c"},
        {L"abc", L"a*c"},     {L"ac", L"a*c"},
        {L"abcbc", L"a*bc"},  {L"aXbXc", L"*X*c"},
        {L"a.txt", L"*.txt"}, {L".txt", L"*.txt"},
        {L"readme", L"*.*"},  {L"", L"*.*"},
        {L"a.b", L"*.*"},     {L"\x1F600", L"?"},
        {L"a*b", L"a*b"},     {L"mississippi", L"m*iss*pi"},
        {L"abab", L"*ab"},    {L"x", L"*?"},
    };
    for (const Pair& pair : pairs) {
        EXPECT_TRUE(matchesWildcard(pair.name, pair.pattern)) << pair.name << " " << pair.pattern;
    }
}

TEST(WildcardTest, DoesNotMatch)
{
    const Pair pairs[] = {
        {L"", L"?"},          {L"", L"a"},      {L"a", L""},          {L"ab", L"a"},
        {L"a", L"ab"},        {L"a", L"??"},    {L"ab", L"?"},        {L"a", L"A"},
        {L"a.txt", L"*.TXT"}, {L"abc", L"a*d"}, {L"", L"*?"},         {L"a.txt.b", L"*.txt"},
        {L"readme", L"*.?"},  {L"abc", L"b*"},  {L"readme", L"?*.*"},
    };
    for (const Pair& pair : pairs) {
        EXPECT_FALSE(matchesWildcard(pair.name, pair.pattern)) << pair.name << " " << pair.pattern;
    }
}

TEST(WildcardTest, ManyStarsTakeNoExponentialTime)
{
    std::wstring pattern;
    for (int i = 0; i < 100; ++i) {
        pattern += L"*a";
    }
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(matchesWildcard(std::wstring(250, L'a') + L'b', pattern));
    EXPECT_TRUE(matchesWildcard(std::wstring(250, L'a'), pattern));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

TEST(WildcardTest, KnowsWhatIsAPattern)
{
    EXPECT_TRUE(hasWildcard(L"a*"));
    EXPECT_TRUE(hasWildcard(L"?"));
    EXPECT_FALSE(hasWildcard(L"a.b"));
    EXPECT_FALSE(hasWildcard(L""));
}

} // namespace
