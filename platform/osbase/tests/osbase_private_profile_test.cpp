#include "osbase_support.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <random>
#include <thread>

namespace
{

using vrosbase::testing::GuardedBuffer;
using vrosbase::testing::runWithoutPrivileges;
using vrosbase::testing::TempDir;
using namespace std::string_literals;

class PrivateProfileTest : public ::testing::Test
{
protected:
    void content(const std::string& text) { m_dir.addFile("test.ini", text); }

    [[nodiscard]] std::wstring file() const { return m_dir.wideAt("test.ini"); }

    /// The whole of a text or list, terminators of names included.
    std::wstring read(const wchar_t* section, const wchar_t* key, const wchar_t* ifAbsent = L"-")
    {
        GuardedBuffer buffer(2048);
        const DWORD length =
            GetPrivateProfileStringW(section, key, ifAbsent, buffer.data(), buffer.capacity(), file().c_str());
        EXPECT_EQ(GetLastError(), 0U);
        EXPECT_EQ(buffer.data()[length], L'\0');
        EXPECT_TRUE(buffer.guardsHold());
        return buffer.first(length);
    }

    UINT number(const std::string& text, int ifAbsent = -1)
    {
        content("[s]\nk=" + text + "\n");
        return GetPrivateProfileIntW(L"s", L"k", ifAbsent, file().c_str());
    }

    TempDir m_dir;
};

TEST_F(PrivateProfileTest, ReadsTheValueOfAKey)
{
    content("[a]\nx=1\n[b]\nx=2\ny=three words\n");
    EXPECT_EQ(read(L"a", L"x"), L"1");
    EXPECT_EQ(read(L"b", L"x"), L"2");
    EXPECT_EQ(read(L"b", L"y"), L"three words");
}

TEST_F(PrivateProfileTest, KeyOfAnotherSectionIsAbsent)
{
    content("x=0\n[a]\nx=1\n[b]\ny=2\n");
    EXPECT_EQ(read(L"a", L"y"), L"-");
    EXPECT_EQ(read(L"b", L"x"), L"-");
    EXPECT_EQ(read(L"c", L"x"), L"-");
}

TEST_F(PrivateProfileTest, NamesAreFoundWithoutRegardToCase)
{
    content("[Gr\xC3\xB6\xC3\x9F"
            "e]\n\xC3\x84Key=v\n[TITLE]\nLong\xC5\xBF=w\n");
    EXPECT_EQ(read(L"GR\xD6\xDF"
                   L"E",
                   L"\xE4kEY"),
              L"v");
    EXPECT_EQ(read(L"title", L"lONGS"), L"w");
}

TEST_F(PrivateProfileTest, DotlessIIsNotAnI)
{
    content("[T\xC4\xB1tle]\nk=v\n");
    EXPECT_EQ(read(L"Title", L"k"), L"-");
    EXPECT_EQ(read(L"t\x131tle", L"K"), L"v");
}

TEST_F(PrivateProfileTest, NameThatOnlyBeginsAlikeIsAnother)
{
    content("[section]\nkey=v\n");
    EXPECT_EQ(read(L"sectio", L"key"), L"-");
    EXPECT_EQ(read(L"sections", L"key"), L"-");
    EXPECT_EQ(read(L"section", L"ke"), L"-");
    EXPECT_EQ(read(L"section", L"keys"), L"-");
}

TEST_F(PrivateProfileTest, BlanksAroundAskedNamesAreIgnored)
{
    content("[my section]\nmy key=v\n");
    EXPECT_EQ(read(L" \tmy section ", L"\nmy key\x01 "), L"v");
    EXPECT_EQ(read(L"mysection", L"my key"), L"-");
}

TEST_F(PrivateProfileTest, BlanksAroundNamesAndValuesGo)
{
    content(" \t[ \x01s\t] \n \x1F k\x02\t =\x1F  v w\t \n");
    EXPECT_EQ(read(L"s", L"k"), L"v w");
    EXPECT_EQ(read(nullptr, nullptr), L"s\0"s);
    EXPECT_EQ(read(L"s", nullptr), L"k\0"s);
}

TEST_F(PrivateProfileTest, DeleteAndNoBreakSpaceAreNoBlanks)
{
    content("[s]\nk=\x7Fv\xC2\xA0\n");
    EXPECT_EQ(read(L"s", L"k"), L"\x7Fv\xA0");
}

TEST_F(PrivateProfileTest, FirstSectionOfANameWins)
{
    content("[s]\na=1\n[S]\na=2\nb=3\n");
    EXPECT_EQ(read(L"s", L"a"), L"1");
    EXPECT_EQ(read(L"s", L"b"), L"-");
    EXPECT_EQ(read(L"s", nullptr), L"a\0"s);
}

TEST_F(PrivateProfileTest, FirstKeyOfANameWins)
{
    content("[s]\nk=1\nK=2\n");
    EXPECT_EQ(read(L"s", L"K"), L"1");
}

TEST_F(PrivateProfileTest, OnePairOfMatchingQuotesGoes)
{
    const std::pair<const char*, const wchar_t*> values[] = {
        {"\"v\"", L"v"},       {"'v'", L"v"},         {"\" v \"", L" v "}, {R"(""v"")", L"\"v\""},
        {"'\"v\"'", L"\"v\""}, {"\"v", L"\"v"},       {"v\"", L"v\""},     {"'v\"", L"'v\""},
        {"\"", L"\""},         {"'", L"'"},           {"\"\"", L""},       {"''", L""},
        {"  \"v\"  ", L"v"},   {"a\"v\"", L"a\"v\""}, {"`v`", L"`v`"},     {R"("a" and "b")", L"a\" and \"b"},
    };
    for (const auto& [written, expected] : values) {
        content("[s]\nk="s + written + "\n");
        EXPECT_EQ(read(L"s", L"k"), expected) << written;
    }
}

TEST_F(PrivateProfileTest, SemicolonOpensACommentOnlyAsTheFirstThingOnALine)
{
    content(";[c]\n[s];[d]\n;a=1\n \t;b=2\nc=3;4\nd=;5\n#e=6\n");
    EXPECT_EQ(read(nullptr, nullptr), L"s\0"s);
    EXPECT_EQ(read(L"s", nullptr), L"c\0d\0#e\0"s);
    EXPECT_EQ(read(L"s", L"c"), L"3;4");
    EXPECT_EQ(read(L"s", L"d"), L";5");
    EXPECT_EQ(read(L"s", L"#e"), L"6");
    EXPECT_EQ(read(L"s", L";a"), L"-");
}

TEST_F(PrivateProfileTest, MissingBracketIsForgiven)
{
    content("[ s \nk=v\n[t\nk=w");
    EXPECT_EQ(read(L"s", L"k"), L"v");
    EXPECT_EQ(read(L"t", L"k"), L"w");
}

TEST_F(PrivateProfileTest, FirstBracketEndsTheSectionName)
{
    content("[a]b]\nk=v\n[[c]\nk=w\n");
    EXPECT_EQ(read(L"a", L"k"), L"v");
    EXPECT_EQ(read(L"[c", L"k"), L"w");
}

TEST_F(PrivateProfileTest, FirstEqualSignEndsTheKey)
{
    content("[s]\nk=a=b\n==c\n");
    EXPECT_EQ(read(L"s", L"k"), L"a=b");
    EXPECT_EQ(read(L"s", L""), L"=c");
}

TEST_F(PrivateProfileTest, LineWithoutEqualSignIsNoKey)
{
    content("[s]\nalone\nother=1\nalone=2\n");
    EXPECT_EQ(read(L"s", L"alone"), L"2");
    EXPECT_EQ(read(L"s", nullptr), L"other\0alone\0"s);
    content("[s]\nalone\n");
    EXPECT_EQ(read(L"s", L"alone"), L"-");
    EXPECT_EQ(read(L"s", nullptr), L"");
}

TEST_F(PrivateProfileTest, EmptyValueIsAValue)
{
    content("[s]\nk=\nl");
    EXPECT_EQ(read(L"s", L"k"), L"");
    EXPECT_EQ(read(L"s", L"l"), L"-");
}

TEST_F(PrivateProfileTest, NamesWithoutACharacterAreReadButNotListed)
{
    content("[]\na=1\n[s]\n=2\nb=3\n");
    EXPECT_EQ(read(L"", L"a"), L"1");
    EXPECT_EQ(read(L"s", L" "), L"2");
    EXPECT_EQ(read(nullptr, nullptr), L"s\0"s);
    EXPECT_EQ(read(L"s", nullptr), L"b\0"s);
}

TEST_F(PrivateProfileTest, EveryLineEndIsUnderstood)
{
    const std::string ends[] = {"\n", "\r\n", "\r", "\r\r\n", "\n\n", "\n\r"};
    for (const std::string& end : ends) {
        std::string text;
        for (const char* line : {"[s]", "a=1", "b=2", "[t]", "c=3"}) {
            text.append(line).append(end);
        }
        content(text);
        EXPECT_EQ(read(L"s", L"a"), L"1");
        EXPECT_EQ(read(L"s", L"b"), L"2");
        EXPECT_EQ(read(L"t", L"c"), L"3");
        EXPECT_EQ(read(L"s", nullptr), L"a\0b\0"s);
    }
}

TEST_F(PrivateProfileTest, Utf8IsReadWithAndWithoutMark)
{
    const std::string text = "[s]\nk=\xC3\xA4\xF0\x9F\x98\x80\n";
    content(text);
    EXPECT_EQ(read(L"s", L"k"), L"\xE4\x1F600");
    content("\xEF\xBB\xBF" + text);
    EXPECT_EQ(read(L"s", L"k"), L"\xE4\x1F600");
}

TEST_F(PrivateProfileTest, Utf16WithMarkIsRead)
{
    content("\xFF\xFE[\0s\0]\0\r\0\n\0k\0=\0\xE4\0\x3D\xD8\x00\xDE\r\0\n\0"s);
    EXPECT_EQ(read(L"s", L"k"), L"\xE4\x1F600");
}

TEST_F(PrivateProfileTest, LastByteOfAnOddUtf16FileGoes)
{
    content("\xFF\xFE[\0s\0]\0\n\0k\0=\0v\0w"s);
    EXPECT_EQ(read(L"s", L"k"), L"v");
    content("\xFF\xFE["s);
    EXPECT_EQ(read(nullptr, nullptr), L"");
    content("\xFF\xFE"s);
    EXPECT_EQ(read(nullptr, nullptr), L"");
}

TEST_F(PrivateProfileTest, HalfASurrogatePairBecomesTheReplacement)
{
    content("\xFF\xFE[\0s\0]\0\n\0a\0=\0\x80\xDC\n\0b\0=\0\x3D\xD8x\0\n\0c\0=\0\x3D\xD8"s);
    EXPECT_EQ(read(L"s", L"a"), L"\xFFFD");
    EXPECT_EQ(read(L"s", L"b"), L"\xFFFDx");
    EXPECT_EQ(read(L"s", L"c"), L"\xFFFD");
}

TEST_F(PrivateProfileTest, BytesThatAreNotUtf8AreKept)
{
    content("[s]\nk=a\xFF\n");
    const std::wstring expected = {L'a', wchar_t{0xDCFF}};
    EXPECT_EQ(read(L"s", L"k"), expected);
}

TEST_F(PrivateProfileTest, ZeroEndsWhatCountsOfALine)
{
    content("[s\0]\nk=a\0b\nl\0=c\nm=d\n"s);
    EXPECT_EQ(read(L"s", L"k"), L"a");
    EXPECT_EQ(read(L"s", L"l"), L"-");
    EXPECT_EQ(read(L"s", nullptr), L"k\0m\0"s);
}

TEST_F(PrivateProfileTest, EmptyFileHasNothing)
{
    content("");
    EXPECT_EQ(read(L"s", L"k"), L"-");
    EXPECT_EQ(read(L"s", nullptr), L"-");
    EXPECT_EQ(read(nullptr, nullptr), L"");
}

TEST_F(PrivateProfileTest, TrailingBlanksOfTheDefaultGo)
{
    content("[s]\n");
    EXPECT_EQ(read(L"s", L"k", L"  a b \t "), L"  a b");
    EXPECT_EQ(read(L"s", L"k", L" \t "), L"");
    EXPECT_EQ(read(L"s", L"k", L""), L"");
    EXPECT_EQ(read(L"s", L"k", nullptr), L"");
    EXPECT_EQ(read(L"s", L"k", L"\"q\""), L"\"q\"");
}

TEST_F(PrivateProfileTest, ListOfAnAbsentSectionIsTheDefault)
{
    content("[s]\n");
    EXPECT_EQ(read(L"t", nullptr), L"-");
    EXPECT_EQ(read(L"s", nullptr), L"");
}

TEST_F(PrivateProfileTest, ListsHaveEveryNameInOrderAndTwiceWhatStandsTwice)
{
    content("[b]\ny=\nx=\ny=\n[a]\n[b]\nz=\n");
    EXPECT_EQ(read(nullptr, nullptr), L"b\0a\0b\0"s);
    EXPECT_EQ(read(nullptr, L"ignored"), L"b\0a\0b\0"s);
    EXPECT_EQ(read(L"b", nullptr), L"y\0x\0y\0"s);
}

TEST_F(PrivateProfileTest, TextIsCutToTheCapacity)
{
    content("[s]\nk=\"abcd\"\n");
    const struct {
        DWORD capacity;
        DWORD length;
        DWORD error;
    } rows[] = {{0, 0, 234}, {1, 0, 234}, {2, 1, 234}, {4, 3, 234}, {5, 4, 0}, {6, 4, 0}};
    for (const auto& row : rows) {
        GuardedBuffer buffer(row.capacity);
        SetLastError(77);
        EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"", buffer.data(), row.capacity, file().c_str()), row.length);
        EXPECT_EQ(GetLastError(), row.error) << row.capacity;
        EXPECT_TRUE(buffer.guardsHold()) << row.capacity;
        if (row.capacity != 0) {
            EXPECT_EQ(buffer.text(), std::wstring(L"abcd", row.length));
        }
    }
}

TEST_F(PrivateProfileTest, CharactersOutsideTheBasicPlaneCountOnce)
{
    content("[s]\nk=\xF0\x9F\x98\x80\xF0\x9F\x98\x81\n");
    GuardedBuffer buffer(2);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"", buffer.data(), 2, file().c_str()), 1U);
    EXPECT_EQ(buffer.text(), L"\x1F600");
}

TEST_F(PrivateProfileTest, DefaultIsCutToTheCapacity)
{
    content("[s]\n");
    GuardedBuffer buffer(4);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"abcd", buffer.data(), 4, file().c_str()), 3U);
    EXPECT_EQ(GetLastError(), 234U);
    EXPECT_EQ(buffer.text(), L"abc");
    EXPECT_TRUE(buffer.guardsHold());
}

TEST_F(PrivateProfileTest, ListThatDoesNotFitEndsInTwoZeros)
{
    content("[s]\nab=\ncd=\n");
    const std::wstring whole = L"ab\0cd\0\0"s;
    const struct {
        DWORD capacity;
        DWORD length;
        DWORD error;
        std::wstring memory;
    } rows[] = {
        {0, 0, 234, L""s},         {1, 0, 234, L"\0"s},        {2, 0, 234, L"\0\0"s}, {3, 1, 234, L"a\0\0"s},
        {5, 3, 234, L"ab\0\0\0"s}, {6, 4, 234, L"ab\0c\0\0"s}, {7, 6, 0, whole},      {8, 6, 0, whole + L'#'},
    };
    for (const auto& row : rows) {
        GuardedBuffer buffer(row.capacity);
        EXPECT_EQ(GetPrivateProfileStringW(L"s", nullptr, L"", buffer.data(), row.capacity, file().c_str()),
                  row.length);
        EXPECT_EQ(GetLastError(), row.error) << row.capacity;
        EXPECT_EQ(buffer.first(row.capacity), row.memory) << row.capacity;
        EXPECT_TRUE(buffer.guardsHold()) << row.capacity;
    }
}

TEST_F(PrivateProfileTest, EmptyListFitsEvenOneCharacter)
{
    content("");
    GuardedBuffer buffer(1);
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, L"x", buffer.data(), 1, file().c_str()), 0U);
    EXPECT_EQ(GetLastError(), 0U);
    EXPECT_EQ(buffer.text(), L"");
    EXPECT_TRUE(buffer.guardsHold());
}

TEST_F(PrivateProfileTest, MissingFileGivesTheDefaultAndError2)
{
    const std::wstring missing[] = {m_dir.wideAt("none.ini"), m_dir.wideAt("none/none.ini"), L"",
                                    m_dir.wideAt(std::string(300, 'x'))};
    for (const std::wstring& name : missing) {
        GuardedBuffer buffer(8);
        EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"def", buffer.data(), 8, name.c_str()), 3U);
        EXPECT_EQ(buffer.text(), L"def");
        EXPECT_EQ(GetLastError(), 2U);
        EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, L"def", buffer.data(), 8, name.c_str()), 3U);
        EXPECT_EQ(GetLastError(), 2U);
    }
}

TEST_F(PrivateProfileTest, FileBelowAFileIsMissing)
{
    content("");
    GuardedBuffer buffer(8);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"", buffer.data(), 8, (file() + L"/x").c_str()), 0U);
    EXPECT_EQ(GetLastError(), 2U);
}

TEST_F(PrivateProfileTest, DirectoryGivesTheDefaultAndError5)
{
    const std::wstring directory(m_dir.path().begin(), m_dir.path().end());
    GuardedBuffer buffer(8);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"def", buffer.data(), 8, directory.c_str()), 3U);
    EXPECT_EQ(buffer.text(), L"def");
    EXPECT_EQ(GetLastError(), 5U);
}

TEST_F(PrivateProfileTest, PipeIsNotWaitedFor)
{
    ASSERT_EQ(::mkfifo(m_dir.at("pipe").c_str(), 0600), 0);
    GuardedBuffer buffer(8);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"def", buffer.data(), 8, m_dir.wideAt("pipe").c_str()), 3U);
    EXPECT_EQ(GetLastError(), 5U);
}

TEST_F(PrivateProfileTest, FileWithoutReadingRightGivesError5)
{
    content("[s]\nk=v\n");
    ASSERT_EQ(::chmod(m_dir.at("test.ini").c_str(), 0000), 0);
    const std::wstring name = file();
    EXPECT_EQ(runWithoutPrivileges([&] {
                  wchar_t buffer[8] = {};
                  static_cast<void>(GetPrivateProfileStringW(L"s", L"k", L"d", buffer, 8, name.c_str()));
                  return buffer[0] == L'd' ? static_cast<int>(GetLastError()) : 100;
              }),
              5);
}

TEST_F(PrivateProfileTest, FileThatFailsWhileReadGivesError5)
{
    GuardedBuffer buffer(8);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"d", buffer.data(), 8, L"/proc/self/mem"), 1U);
    EXPECT_EQ(GetLastError(), 5U);
}

TEST_F(PrivateProfileTest, FileThatTellsNoSizeIsReadToItsEnd)
{
    // Each of the two has text, and the kernel gives their size as 0; the second is longer than one read.
    GuardedBuffer buffer(64);
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, L"-", buffer.data(), 64, L"/proc/self/status"), 0U);
    EXPECT_EQ(GetLastError(), 0U);
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, L"-", buffer.data(), 64, L"/proc/self/maps"), 0U);
    EXPECT_EQ(GetLastError(), 0U);
}

TEST_F(PrivateProfileTest, FileOf64MiBIsReadAndALongerOneIsNot)
{
    content("[s]\nk=v\n");
    constexpr std::uintmax_t kLimit = std::uintmax_t{64} * 1024 * 1024;
    std::filesystem::resize_file(m_dir.at("test.ini"), kLimit);
    EXPECT_EQ(read(L"s", L"k"), L"v");
    std::filesystem::resize_file(m_dir.at("test.ini"), kLimit + 1);
    GuardedBuffer buffer(8);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"d", buffer.data(), 8, file().c_str()), 1U);
    EXPECT_EQ(GetLastError(), 5U);
}

TEST_F(PrivateProfileTest, NullBufferOrFileNameIsError87)
{
    content("[s]\nk=1\n");
    GuardedBuffer buffer(8);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"d", nullptr, 8, file().c_str()), 0U);
    EXPECT_EQ(GetLastError(), 87U);
    SetLastError(0);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"d", buffer.data(), 8, nullptr), 1U);
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_EQ(buffer.text(), L"d");
}

TEST_F(PrivateProfileTest, BackslashesOfTheFileNameAreSeparators)
{
    content("[s]\nk=v\n");
    std::wstring name = file();
    std::replace(name.begin(), name.end(), L'/', L'\\');
    GuardedBuffer buffer(8);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"", buffer.data(), 8, name.c_str()), 1U);
    EXPECT_EQ(buffer.text(), L"v");
}

TEST_F(PrivateProfileTest, FileOfAnyNameIsFound)
{
    m_dir.addFile("\xC3\xA4\xFF.ini", "[s]\nk=v\n");
    const std::wstring name = m_dir.wideAt("") + L'\xE4' + wchar_t{0xDCFF} + L".ini";
    GuardedBuffer buffer(8);
    EXPECT_EQ(GetPrivateProfileStringW(L"s", L"k", L"", buffer.data(), 8, name.c_str()), 1U);
}

TEST_F(PrivateProfileTest, ValueIsReadAnewEachTime)
{
    content("[s]\nk=1\n");
    EXPECT_EQ(read(L"s", L"k"), L"1");
    content("[s]\nk=2\n");
    EXPECT_EQ(read(L"s", L"k"), L"2");
}

TEST_F(PrivateProfileTest, JunkNeverHarms)
{
    std::mt19937 random(4711); // the same junk each time
    std::uniform_int_distribution<int> length(0, 300);
    const std::string alphabet = "[]=;\"' \t\r\n\0\xFF\xFE\xEF\xBB\xBFks\xC3\xA4\xD8\xDC"s;
    std::uniform_int_distribution<std::size_t> letter(0, alphabet.size() - 1);
    for (int round = 0; round < 500; ++round) {
        std::string junk(static_cast<std::size_t>(length(random)), '\0');
        std::generate(junk.begin(), junk.end(), [&] { return alphabet[letter(random)]; });
        content(junk);
        const std::wstring sections = read(nullptr, nullptr);
        EXPECT_TRUE(sections.empty() || sections.back() == L'\0');
        EXPECT_LE(read(L"s", L"k").size(), junk.size() + 1);
        EXPECT_LE(read(L"s", nullptr).size(), 2 * junk.size() + 1);
    }
}

TEST_F(PrivateProfileTest, MayBeReadByManyThreads)
{
    content("[s]\nk=value\n");
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    threads.reserve(wrong.size());
    for (int& count : wrong) {
        threads.emplace_back([&count, name = file()] {
            for (int i = 0; i < 100; ++i) {
                wchar_t buffer[16] = {};
                count += GetPrivateProfileStringW(L"s", L"k", L"", buffer, 16, name.c_str()) == 5 ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

TEST_F(PrivateProfileTest, IntegerIsSignAndLeadingDigits)
{
    EXPECT_EQ(number("42"), 42U);
    EXPECT_EQ(number("-42"), static_cast<UINT>(-42));
    EXPECT_EQ(number("+7"), 7U);
    EXPECT_EQ(number("12abc"), 12U);
    EXPECT_EQ(number("007"), 7U);
    EXPECT_EQ(number("\" 5\""), 5U);
    EXPECT_EQ(number("3 4"), 3U);
}

TEST_F(PrivateProfileTest, IntegerMayBeHexadecimal)
{
    EXPECT_EQ(number("0x1F"), 31U);
    EXPECT_EQ(number("0XaBg"), 0xABU);
    EXPECT_EQ(number("-0x10"), static_cast<UINT>(-16));
    EXPECT_EQ(number("0x"), 0U);
    EXPECT_EQ(number("0xG"), 0U);
    EXPECT_EQ(number("x10"), 0U);
}

TEST_F(PrivateProfileTest, TextReadsAsZero)
{
    EXPECT_EQ(number("yes"), 0U);
    EXPECT_EQ(number(""), 0U);
    EXPECT_EQ(number("-"), 0U);
    EXPECT_EQ(number("+-3"), 0U);
    EXPECT_EQ(number("- 3"), 0U);
    EXPECT_EQ(number("@"), 0U);
}

TEST_F(PrivateProfileTest, IntegerWrapsTo32Bits)
{
    EXPECT_EQ(number("4294967295"), 4294967295U);
    EXPECT_EQ(number("4294967296"), 0U);
    EXPECT_EQ(number("4294967298"), 2U);
    EXPECT_EQ(number("0x100000001"), 1U);
    EXPECT_EQ(number("-2147483648"), 0x80000000U);
}

TEST_F(PrivateProfileTest, AbsentKeySectionOrFileGivesTheDefaultInteger)
{
    content("[s]\nk=1\nalone\n");
    EXPECT_EQ(GetPrivateProfileIntW(L"s", L"none", 9, file().c_str()), 9U);
    EXPECT_EQ(GetPrivateProfileIntW(L"s", L"alone", 9, file().c_str()), 9U);
    EXPECT_EQ(GetPrivateProfileIntW(L"none", L"k", -9, file().c_str()), static_cast<UINT>(-9));
    EXPECT_EQ(GetLastError(), 0U);
    EXPECT_EQ(GetPrivateProfileIntW(L"s", L"k", 9, m_dir.wideAt("none").c_str()), 9U);
    EXPECT_EQ(GetLastError(), 2U);
}

TEST_F(PrivateProfileTest, NullNamesGiveTheDefaultIntegerAndError87)
{
    content("[s]\nk=1\n");
    const std::wstring name = file();
    for (const auto& [section, key, path] : {std::tuple{static_cast<LPCWSTR>(nullptr), L"k", name.c_str()},
                                             std::tuple{L"s", static_cast<LPCWSTR>(nullptr), name.c_str()},
                                             std::tuple{L"s", L"k", static_cast<LPCWSTR>(nullptr)}}) {
        SetLastError(0);
        EXPECT_EQ(GetPrivateProfileIntW(section, key, 5, path), 5U);
        EXPECT_EQ(GetLastError(), 87U);
    }
}

} // namespace
