// Wide text through every string that the library takes: what is written is read back, by this process, by another one,
// and by an eye that knows nothing of either; or the status says no.
#include <filesystem>
#include <iostream>
#include <optional>

#include <gtest/gtest.h>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/FirstRun.h"
#include "VrUInfo/RootKeys.h"
#include "VrUInfo/Settings.h"
#include "scarce_memory.h"
#include "settings_file.h"
#include "start_words.h"
#include "started_store.h"
#include "wide_texts.h"

namespace fs = std::filesystem;
using namespace stress;
using namespace vrtest;

namespace
{

constexpr VornaConfig::Path kRoot = VornaConfig::SettingsRoot;
const std::wstring kSettings = L"Software/HALVIK/VORNA/2026/en-US/Settings";

std::wstring numbered(const wchar_t* item, std::size_t number)
{
    return std::wstring(item) + L"/" + std::to_wstring(number);
}

/// By hand: Qt's own conversion drops a byte-order mark.
std::u16string units(const std::wstring& text)
{
    std::u16string units;
    for (const wchar_t wide : text) {
        const auto c = static_cast<char32_t>(wide);
        if (c >= 0x10000)
            units += static_cast<char16_t>(QChar::highSurrogate(c));
        units += static_cast<char16_t>(c >= 0x10000 ? QChar::lowSurrogate(c) : c);
    }
    return units;
}

/// Where a text leads that is a path: separators around it go, a backslash is one of them.
std::wstring asPath(std::wstring text)
{
    for (wchar_t& c : text)
        c = c == L'\\' ? L'/' : c;
    text.erase(0, text.find_first_not_of(L'/'));
    return text.erase(text.find_last_not_of(L'/') + 1);
}

std::optional<std::wstring> read(const std::wstring& key, const std::wstring& name)
{
    VornVariant value;
    if (vornConfig()->getValue(key.c_str(), name.c_str(), value) != Vorn::eOk ||
        typeOf(value) != VornVariant::kVarString)
        return std::nullopt;
    return textIn(value);
}

std::optional<std::wstring> readBelowRoot(const std::wstring& path)
{
    VornVariant value;
    return vornConfig()->getValue(kRoot, path.c_str(), value) == Vorn::eOk ? std::optional(textIn(value))
                                                                           : std::nullopt;
}

/// The name at an iterator's position.
template <typename Iterator>
std::wstring nameIn(const Iterator& iterator, unsigned int (Iterator::*name)(wchar_t*, int&) const)
{
    std::wstring buffer(kVornPathCapacity, L'\0');
    int length = static_cast<int>(kVornPathCapacity);
    EXPECT_EQ((iterator.*name)(buffer.data(), length), 0U);
    return untilTerminator(buffer);
}

/// Every text in its turn, or one of so many; what fails is told by what is special about it.
template <typename Check>
void forEachText(Check check, std::size_t step = 1)
{
    const std::vector<WideText>& texts = wideTexts();
    for (std::size_t i = 0; i < texts.size(); i += step) {
        SCOPED_TRACE(texts[i].what);
        check(i, texts[i]);
    }
}

/// Sanitizers make a process long, and find nothing in the next one that is not in the first.
constexpr std::size_t kStepOfProcesses = kHasSanitizerAllocator ? 8 : 1;

class WideTextInTheTree : public StartedStore
{
protected:
    /// That another process finds what this one wrote.
    static void expectReadByAnother(const std::string& probe)
    {
        flush();
        const ProcessResult result = Installation::here().run(probe);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.out, std::to_string(wideTexts().size()) + " of " + std::to_string(wideTexts().size()) + "\n");
    }
    static SettingsFile onDisk()
    {
        flush();
        SettingsFile file = SettingsFile::read(Installation::here().settingsFile());
        EXPECT_EQ(file.fault, "");
        return file;
    }
    static void expectOnDisk(const SettingsFile& file, const std::wstring& path, const std::wstring& text)
    {
        const auto row = file.values.find(units(kSettings + L"/" + path));
        ASSERT_NE(row, file.values.end());
        EXPECT_EQ(row->second, u"5$" + units(text));
    }
};

/// Prints for how many texts the check holds.
template <typename Check>
int tellHowMany(Check check)
{
    if (startWith({"-", "-", "en-US"}) != 0)
        return 1;
    const std::vector<WideText>& texts = wideTexts();
    std::size_t found = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const bool isThere = check(i, texts[i].text);
        found += isThere ? 1 : 0;
        if (!isThere)
            std::cout << "not read back: " << texts[i].what << "\n";
    }
    std::cout << found << " of " << texts.size() << "\n";
    return 0;
}

} // namespace

PROBE(readValues)
{
    return tellHowMany(
        [](std::size_t i, const std::wstring& text) { return readBelowRoot(numbered(L"Values", i)) == text; });
}

PROBE(readNames)
{
    return tellHowMany([](std::size_t i, const std::wstring& text) {
        return read(kSettings + L"/" + numbered(L"Names", i), text) == std::to_wstring(i);
    });
}

PROBE(readItems)
{
    return tellHowMany([](std::size_t i, const std::wstring& text) {
        return readBelowRoot(numbered(L"Items", i) + L"/" + text + L"/Value") == std::to_wstring(i);
    });
}

TEST_F(WideTextInTheTree, IsReadBackAsAValue)
{
    forEachText([](std::size_t i, const WideText& wide) {
        ASSERT_EQ(config().setValue(kRoot, numbered(L"Values", i).c_str(), textValue(wide.text)), 0U);
        EXPECT_EQ(readBelowRoot(numbered(L"Values", i)), wide.text);
    });
    const SettingsFile file = onDisk();
    forEachText(
        [&file](std::size_t i, const WideText& wide) { expectOnDisk(file, numbered(L"Values", i), wide.text); });
    expectReadByAnother("readValues");
}

TEST_F(WideTextInTheTree, IsReadBackAsANameOfAValue)
{
    forEachText([](std::size_t i, const WideText& wide) {
        const std::wstring item = numbered(L"Names", i);
        ASSERT_EQ(config().addValue(kRoot, item.c_str(), wide.text.c_str(), textValue(std::to_wstring(i))), 0U);
        EXPECT_EQ(read(kSettings + L"/" + item, wide.text), std::to_wstring(i));
    });
    const SettingsFile file = onDisk();
    forEachText([&file](std::size_t i, const WideText& wide) {
        expectOnDisk(file, numbered(L"Names", i) + L"/" + wide.text, std::to_wstring(i));
    });
    expectReadByAnother("readNames");
}

TEST_F(WideTextInTheTree, IsReadBackAsAnItem)
{
    forEachText([](std::size_t i, const WideText& wide) {
        const std::wstring path = numbered(L"Items", i) + L"/" + wide.text + L"/Value";
        ASSERT_EQ(config().setValue(kRoot, path.c_str(), textValue(std::to_wstring(i))), 0U);
        EXPECT_EQ(readBelowRoot(path), std::to_wstring(i));
        EXPECT_TRUE(config().isItemExist(kRoot, (numbered(L"Items", i) + L"/" + wide.text).c_str()));
    });
    const SettingsFile file = onDisk();
    forEachText([&file](std::size_t i, const WideText& wide) {
        expectOnDisk(file, numbered(L"Items", i) + L"/" + asPath(wide.text) + L"/Value", std::to_wstring(i));
    });
    expectReadByAnother("readItems");
}

TEST_F(WideTextInTheTree, IsGivenByTheIterators)
{
    forEachText([](std::size_t i, const WideText& wide) {
        const std::wstring item = numbered(L"Lists", i);
        config().setValue(kRoot, (item + L"/" + wide.text + L"/Value").c_str(), textValue(wide.text));
        VornaConfig::ItemIterator items;
        ASSERT_EQ(config().findItem(kRoot, item.c_str(), items), 0U);
        const std::wstring path = asPath(wide.text);
        EXPECT_EQ(nameIn(items, &VornaConfig::ItemIterator::name), path.substr(0, path.find(L'/')));

        const std::wstring parent = numbered(L"ValueLists", i);
        const std::wstring name = wide.has(L"/") ? L"Name" : wide.text;
        config().addValue(kRoot, parent.c_str(), name.c_str(), textValue(wide.text));
        VornaConfig::ValueIterator values;
        ASSERT_EQ(config().findItem(kRoot, parent.c_str(), values), 0U);
        EXPECT_EQ(nameIn(values, &VornaConfig::ValueIterator::key), name);
        VornVariant value;
        EXPECT_EQ(values.value(value), 0U);
        EXPECT_EQ(textIn(value), wide.text);
        EXPECT_EQ(values.setValue(int32Value(7)), 0U);
        EXPECT_EQ(values.value(value), 0U);
        EXPECT_EQ(numberIn<std::int32_t>(value), 7);
    });
}

TEST_F(WideTextInTheTree, IsRemovedWhereItIsTheName)
{
    forEachText([](std::size_t i, const WideText& wide) {
        const std::wstring item = numbered(L"Removed", i);
        const std::wstring key = kSettings + L"/" + item;
        config().addValue(kRoot, item.c_str(), wide.text.c_str(), textValue(L"x"));
        config().addValue(kRoot, item.c_str(), L"Beside", textValue(L"x"));
        EXPECT_EQ(config().removeValue(key.c_str(), wide.text.c_str()), 0U);
        EXPECT_EQ(config().removeValue(key.c_str(), wide.text.c_str()), 7U);
        config().setValue(kRoot, (item + L"/" + wide.text + L"/Value").c_str(), textValue(L"x"));
        EXPECT_EQ(config().removeItem(kRoot, (item + L"/" + wide.text).c_str()), 0U);
        EXPECT_FALSE(config().isItemExist(kRoot, (item + L"/" + asPath(wide.text)).c_str()));
        EXPECT_EQ(read(key, L"Beside"), L"x");
    });
}

TEST_F(WideTextInTheTree, IsReadBackThroughTheTypedLayer)
{
    forEachText([](std::size_t i, const WideText& wide) {
        vorn::Settings settings(kRoot, numbered(L"Typed", i));
        ASSERT_TRUE(settings.set(wide.text, wide.text));
        EXPECT_EQ(settings.get<std::wstring>(wide.text), wide.text);
        vorn::Settings below = settings.group(L"Below").group(wide.text);
        ASSERT_TRUE(below.set(L"Value", wide.text));
        EXPECT_EQ(below.get<std::wstring>(L"Value"), wide.text);
        EXPECT_EQ(readBelowRoot(numbered(L"Typed", i) + L"/Below/" + wide.text + L"/Value"), wide.text);
        EXPECT_TRUE(settings.remove(wide.text));
        EXPECT_FALSE(settings.get<std::wstring>(wide.text).has_value());
    });
}

TEST_F(WideTextInTheTree, IsToldFromItsNeighbours)
{
    // Each is a name of one item; none takes another one's place.
    forEachText([](std::size_t i, const WideText& wide) {
        config().addValue(kRoot, L"Together", wide.text.c_str(), textValue(std::to_wstring(i)));
    });
    forEachText([](std::size_t i, const WideText& wide) {
        EXPECT_EQ(read(kSettings + L"/Together", wide.text), std::to_wstring(i));
    });
    EXPECT_EQ(onDisk().below(units(kSettings + L"/Together")).size(), wideTexts().size());
}

TEST_F(WideTextInTheTree, OfTwoHalvesInTheirOrderIsTheCharacterOfBoth)
{
    const std::wstring halves = {kHighHalf, kLowHalf};
    ASSERT_EQ(config().setValue(kRoot, L"Halves", textValue(halves)), 0U);
    EXPECT_EQ(readBelowRoot(L"Halves"), L"\U0001F600");
}

TEST_F(WideTextInTheTree, BeyondTheLastCharacterBecomesTheReplacementCharacter)
{
    const std::wstring beyond = {static_cast<wchar_t>(0x110000), static_cast<wchar_t>(0x7FFFFFFF),
                                 static_cast<wchar_t>(-1)};
    ASSERT_EQ(config().setValue(kRoot, L"Beyond", textValue(beyond)), 0U);
    EXPECT_EQ(readBelowRoot(L"Beyond"), L"\uFFFD\uFFFD\uFFFD");
}

// ---- The names of a start -------------------------------------------------------------------------------------------

namespace
{

std::wstring textAt(const std::string& index)
{
    return wideTexts().at(std::stoul(index)).text;
}

unsigned int startAs(const std::string& kind, const std::wstring& text)
{
    const wchar_t* const company = kind == "company" ? text.c_str() : nullptr;
    const wchar_t* const product = kind == "product" ? text.c_str() : nullptr;
    return InitVornConfig(company, product, L"en-US", kind == "profile" ? text.c_str() : nullptr);
}

/// Whether the identity has the text, in all that can be asked.
bool isTold(const std::string& kind, const std::wstring& text)
{
    const std::wstring company = kind == "company" ? text : L"HALVIK";
    const std::wstring product = kind == "product" ? text : L"VORNA";
    const std::wstring profile = kind == "profile" ? text : L"Default";
    std::wstring name(kVornPathCapacity, L'\0');
    unsigned int length = kVornPathCapacity;
    GetCurrentProfileName(name.data(), length);
    const std::wstring root = L"Software/" + company + L"/" + product + L"/2026";
    return vornConfig()->companyName() == company && vornConfig()->productName() == product &&
           untilTerminator(name) == profile && rootOf(VornaConfig::VersionRoot) == root &&
           rootOf(VornaConfig::CurrentProfileRoot) == root + L"/en-US/Profiles/" + profile;
}

} // namespace

/// Starts with one of the texts in the place of one name, writes a value and tells what the library makes of the name.
PROBE(writeAs)
{
    const std::wstring text = textAt(arguments.at(1));
    const unsigned int status = startAs(arguments.at(0), text);
    if (status != 0) {
        std::cout << "refused " << status << "\n";
        return 0;
    }
    const bool isWritten =
        vornConfig()->setValue(VornaConfig::CurrentProfileRoot, L"A/B", textValue(text)) == Vorn::eOk;
    std::cout << (isTold(arguments.at(0), text) ? "told" : "not told") << (isWritten ? ", written" : "") << "\n";
    return 0;
}

/// Starts as that one did, and tells whether the value is there.
PROBE(readAs)
{
    const std::wstring text = textAt(arguments.at(1));
    const unsigned int status = startAs(arguments.at(0), text);
    VornVariant value;
    const bool isRead =
        status == 0 && vornConfig()->getValue(VornaConfig::CurrentProfileRoot, L"A/B", value) == Vorn::eOk;
    std::cout << (isRead && textIn(value) == text ? "read" : "not read") << "\n";
    return 0;
}

/// Starts, makes one of the texts the profile, and ends.
PROBE(changeProfile)
{
    (void)startWith({"-", "-", "en-US"});
    (void)rootOf(VornaConfig::CurrentProfileRoot); // from here on one is recorded
    std::cout << vornConfig()->updateProfileName(textAt(arguments.at(0)).c_str()) << "\n";
    return 0;
}

PROBE(rememberProfile)
{
    (void)startWith({"-", "-", "en-US"});
    std::wstring name(kVornPathCapacity, L'\0');
    unsigned int length = kVornPathCapacity;
    GetCurrentProfileName(name.data(), length);
    std::cout << (untilTerminator(name) == textAt(arguments.at(0)) ? "remembered" : "another one") << "\n";
    return 0;
}

/// Writes what the first run writes, for a company and product of one of the texts, and registers it twice.
PROBE(firstRun)
{
    const std::wstring text = textAt(arguments.at(0));
    if (InitVornConfig(text.c_str(), text.c_str(), L"en-US", nullptr) != 0)
        return 1;
    std::cout << CreateConfigReg() << CreateProductsConfigReg() << CreateProductsConfigReg();
    VornVariant language;
    const unsigned int status = vornConfig()->getValue(VornaConfig::VersionRoot, L"CurVer", language);
    const bool isRead = status == Vorn::eOk && textIn(language) == L"en-US";
    std::cout << (isRead ? " read" : " not read") << "\n";
    return 0;
}

namespace
{

class WideTextAsAName : public testing::TestWithParam<std::string>
{
};

INSTANTIATE_TEST_SUITE_P(OfAStart, WideTextAsAName, testing::Values("company", "product", "profile"),
                         [](const auto& kind) { return kind.param; });

} // namespace

TEST_P(WideTextAsAName, IsToldAndItsSettingsAreReadBackOrItIsRefused)
{
    forEachText(
        [](std::size_t i, const WideText& wide) {
            const Installation other;
            other.installLanguage("en-US");
            const std::vector<std::string> arguments = {GetParam(), std::to_string(i)};
            const ProcessResult written = other.run("writeAs", arguments);
            EXPECT_EQ(written.err, "");
            const bool isPath = GetParam() == "profile" && wide.has(L"/\\");
            ASSERT_EQ(written.out, isPath ? "refused 8\n" : "told, written\n");
            if (!isPath) {
                EXPECT_EQ(other.run("readAs", arguments).out, "read\n");
            }
        },
        kStepOfProcesses);
}

/// Starts as a company whose name no directory can have, writes a value and reads it.
PROBE(writeAsTooLong)
{
    const std::wstring company(64, L'\U0001F600'); // 256 bytes
    const unsigned int status = InitVornConfig(company.c_str(), nullptr, L"en-US", nullptr);
    vornConfig()->setValue(kRoot, L"Value", textValue(L"x"));
    std::cout << status << (vornConfig()->companyName() == company) << (readBelowRoot(L"Value") == L"x") << "\n";
    return 0;
}

TEST(WideTextAsACompany, OfMoreBytesThanADirectorysNameMayHaveIsToldAndNotKept)
{
    const Installation other;
    other.installLanguage("en-US");
    EXPECT_EQ(other.run("writeAsTooLong").out, "011\n");
    EXPECT_TRUE(fs::is_empty(other.configDir()));
    EXPECT_EQ(other.run("writeAsTooLong").err, "");
}

TEST(WideTextAsAProfile, IsRememberedForTheNextStart)
{
    forEachText(
        [](std::size_t i, const WideText&) {
            const Installation other;
            other.installLanguage("en-US");
            EXPECT_EQ(other.run("changeProfile", {std::to_string(i)}).out, "0\n");
            EXPECT_EQ(other.run("rememberProfile", {std::to_string(i)}).out, "remembered\n");
        },
        kStepOfProcesses);
}

TEST(WideTextOfTheFirstRun, IsReadBackAndListedOnce)
{
    forEachText(
        [](std::size_t i, const WideText& wide) {
            const Installation other;
            other.installLanguage("en-US");
            fs::create_directories(other.home() / ".local/share");
            // Where a backslash stands in a name the item of the root is looked for in another place: the status says
            // so.
            const std::string status = wide.has(L"\\") ? "5" : "0";
            EXPECT_EQ(other.run("firstRun", {std::to_string(i)}).out, status + "11 read\n");
            SettingsFile list = SettingsFile::read(other.home() / ".local/share/HALVIK/VR2D.conf");
            EXPECT_EQ(list.fault, "");
            const auto numbers = list.below(u"InstalledProducts");
            ASSERT_EQ(numbers.size(), 1U);
            const std::u16string& entry = numbers.begin()->second;
            EXPECT_EQ(list.values[entry + u"/Product"], units(wide.text));
            EXPECT_EQ(list.values[entry + u"/ProductName"], units(wide.text + L" 2026 Enu"));
        },
        kStepOfProcesses);
}

TEST(WideTextAsALanguage, IsRefusedInAMessage)
{
    for (const char* const name :
         {"\xC4\xB1t-IT", "\xC4\xB0T-IT", "it-\xC4\xB0T", "\xF0\x9F\x98\x80", " it-IT", "it-IT\n", "it_IT"}) {
        const Installation other;
        other.installLanguage("en-US");
        other.installLanguage("it-IT");
        const ProcessResult result = other.run("start", {"-", "-", name, "-"});
        EXPECT_EQ(result.exitCode, 1) << name;
        EXPECT_NE(result.err.find("not a valid short language name"), std::string::npos) << name;
        EXPECT_FALSE(fs::exists(other.settingsFile())) << name;
    }
}

// ---- Texts that the library only reads ------------------------------------------------------------------------------

namespace
{

/// Whether an INI file can say a text at all: on one line, without blanks or quotes at both ends, in UTF-8.
bool isSaidInIni(const WideText& wide)
{
    const std::wstring ends = {wide.text.front(), wide.text.back()};
    return !wide.hasHalf() && !wide.has(L"\n\r") &&
           ends.find_first_of(L" \"'\t\u00A0\u3000\uFEFF") == std::wstring::npos;
}

} // namespace

TEST(WideTextInAnIniFile, IsReadAsItStandsThere)
{
    std::string lines = "[Product]\n";
    forEachText([&lines](std::size_t i, const WideText& wide) {
        if (isSaidInIni(wide))
            lines += "Key" + std::to_string(i) + "=" + utf8(wide.text) + "\n";
    });
    Installation::here().write("VORNA.ini", lines);
    int read = 0;
    forEachText([&read](std::size_t i, const WideText& wide) {
        VornVariant value;
        const std::wstring key = L"Key" + std::to_wstring(i);
        const bool isThere = GetVornIniConfigValue(L"Product", key.c_str(), value, VornVariant::kVarString);
        EXPECT_EQ(isThere, isSaidInIni(wide));
        if (isThere) {
            EXPECT_EQ(textIn(value), wide.text);
        }
        read += isThere ? 1 : 0;
    });
    EXPECT_GE(read, 20);
}

TEST(WideTextInAnIniFile, IsFoundAsSectionAndAsKey)
{
    std::string lines;
    const auto isName = [](const WideText& wide) { return isSaidInIni(wide) && !wide.has(L"=[];#"); };
    forEachText([&](std::size_t i, const WideText& wide) {
        if (isName(wide))
            lines += "[" + utf8(wide.text) + "]\n" + utf8(wide.text) + "=" + std::to_string(i) + "\n";
    });
    Installation::here().write("VORNA.ini", lines);
    forEachText([&](std::size_t i, const WideText& wide) {
        int number = -1;
        if (isName(wide)) {
            EXPECT_EQ(vornConfig()->readIniInt(wide.text.c_str(), wide.text.c_str(), number, L"VORNA.ini"), 0U);
        }
        EXPECT_EQ(number, isName(wide) ? static_cast<int>(i) : -1);
    });
}

TEST(WideTextOfAResource, IsLoadedAsItWasGiven)
{
    const HMODULE library = LoadLibraryW(wide(VR_WIDE_RESOURCES).c_str());
    ASSERT_NE(library, nullptr);
    const std::vector<std::wstring> texts = {L"a\U0001F600b\U00010000",
                                             L"\U0010FFFF",
                                             L"e\u0301 \u00E9 n\u0303\u0323",
                                             L"a\nb\r\nc",
                                             L"a\tb\u0001",
                                             L"\"a\" 'b' =x= %41 a/b \\ [c];d#e",
                                             L"  a b  ",
                                             L"\uFEFFa",
                                             L"I\u0130\u0131i",
                                             L"? %ls %d"};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        std::wstring text(200, L'?');
        const int length = LoadStringW(library, static_cast<UINT>(i + 1), text.data(), 200);
        EXPECT_EQ(length, static_cast<int>(texts[i].size()));
        EXPECT_EQ(untilTerminator(text), texts[i]);
    }
    FreeLibrary(library);
}
