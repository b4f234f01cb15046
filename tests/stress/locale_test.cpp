// A host under another locale behaves the same: one with a decimal comma, a Turkish one, and that of C. Each host tells
// all that could depend on it, and writes all that could; what it told, and every file that it left, is compared.
#include <array>
#include <clocale>
#include <cwctype>
#include <filesystem>
#include <iostream>
#include <map>

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/FirstRun.h"
#include "VrUInfo/Naming.h"
#include "VrUInfo/Oem.h"
#include "VrUInfo/Paths.h"
#include "VrUInfo/Resources.h"
#include "VrUInfo/Settings.h"
#include "start_words.h"
#include "started_store.h"
#include "wide_texts.h"

namespace fs = std::filesystem;
using namespace vrtest;

namespace
{

using Text = std::string;

void tell(const Text& what, const Text& answer)
{
    std::cout << what << ": " << answer << "\n";
}

void tell(const Text& what, const std::wstring& answer)
{
    tell(what, utf8(answer));
}

void tell(const Text& what, long long answer)
{
    tell(what, std::to_string(answer));
}

Text withoutHome(const std::wstring& path)
{
    Text text = utf8(path);
    const Text root = Installation::here().root();
    return text.rfind(root, 0) == 0 ? text.substr(root.size()) : text;
}

void tellNames()
{
    tell("company", vornConfig()->companyName());
    tell("product", vornConfig()->productName());
    tell("language", vornConfig()->language().shortName());
    tell("its name", vornConfig()->language().localName());
    tell("profile", vornConfig()->profileName());
    tell("maker's product", vornConfig()->isInitVORNAProduct());
    tell("brand", vornConfig()->oemCompanyLtdName());
    tell("version", GetVornProgramVersionString());
    tell("prefix", GetVornArchitectrueCommandNamePrefix());
    std::wstring name(kVornPathCapacity, L'\0');
    tell("pre-name", GetVornProductPreName(name.data()));
    tell("pre-name", untilTerminator(name));
    name.assign(kVornPathCapacity, L'\0');
    tell("program", GetVornProgramName(name.data()));
    tell("program", untilTerminator(name));
}

void tellPaths()
{
    for (const auto path : {GetUserApplicationDataVersionPath, GetUserLocalApplicationDataVersionPath}) {
        std::wstring text(kVornPathCapacity, L'\0');
        path(text.data());
        tell("path", withoutHome(untilTerminator(text)));
    }
    for (unsigned int root = 0; root <= VornaConfig::UserConfigRoot; ++root)
        tell("root", rootText(static_cast<VornaConfig::Path>(root)));
    Text path = configPath();
    tell("settings file", path.substr(path.find("/home/")));
}

void tellNumbers()
{
    vorn::Settings settings(VornaConfig::SettingsRoot, L"Numbers");
    for (const double number : {0.5, -1234567.875, 1e300}) {
        tell("double", settings.set(L"Double", number));
        tell("double", settings.get<double>(L"Double") == number);
        settings.set(std::wstring(L"Double") + (number < 0 ? L"1" : L"0"), number);
    }
    settings.set(L"Int", -1234567);
    tell("int", settings.get<int>(L"Int").value_or(0));
    settings.set(L"Long", std::int64_t{1234567890123456789});
    tell("long", settings.get<std::int64_t>(L"Long").value_or(0));
    settings.set(L"Text", L"1,5 1.5 1.234,5");
    tell("text", utf8(settings.get<std::wstring>(L"Text").value_or(L"none")));
    int number = 0;
    tell("INI number", vornConfig()->readIniInt(L"Numbers", L"Plain", number, L"VORNA.ini"));
    tell("INI number", number);
    tell("INI number", vornConfig()->readIniInt(L"Numbers", L"Grouped", number, L"VORNA.ini"));
    tell("INI number", number);
    tell("number", _wtoi(L" -12,5"));
}

void tellText()
{
    const std::vector<stress::WideText>& texts = stress::wideTexts();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::wstring item = L"Text/" + std::to_wstring(i);
        vornConfig()->addValue(VornaConfig::SettingsRoot, item.c_str(), texts[i].text.c_str(),
                               textValue(texts[i].text));
    }
    VornaConfig::ItemIterator items;
    vornConfig()->findItem(VornaConfig::SettingsRoot, L"Text", items);
    std::wstring name(kVornPathCapacity, L'\0');
    int length = static_cast<int>(kVornPathCapacity);
    while (items.name(name.data(), length) == 0 && items.step() == 0) {
        tell("item", untilTerminator(name));
        length = static_cast<int>(kVornPathCapacity);
    }
}

void tellCases()
{
    const std::array<const wchar_t*, 9> letters = {L"i",      L"I",      L"\u0131", L"\u0130", L"\u00E4",
                                                   L"\u00C4", L"\u00DF", L"SS",     L"\u03A3"};
    for (const wchar_t* const left : letters) {
        for (const wchar_t* const right : letters)
            tell("case " + utf8(left) + utf8(right), _wcsicmp(left, right) == 0);
    }
    for (const wchar_t* const name : {L"it-IT", L"IT-it", L"\u0131t-IT", L"\u0130T-IT", L"TR-TR", L"hu-HU"})
        tell("language " + utf8(name), VornaLanguage::isValidShortName(name));
    for (const wchar_t* const key : {L"TITLE", L"title", L"T\u0130TLE", L"t\u0131tle"}) {
        std::array<wchar_t, 100> text{};
        tell("INI " + utf8(key), vornConfig()->readIniString(L"MIXED i", key, text.data(), 100, L"VORNA.ini"));
        tell("INI " + utf8(key), text.data());
    }
    tell("search", StrStrIW(L"ab\u0131 IJ", L"ij") != nullptr);
    tell("search", StrStrIW(L"ab\u0131 IJ", L"\u0130") != nullptr);
    tell("library", GetModuleHandleW(L"VRUINFO.DLL") != nullptr);
    WIN32_FIND_DATAW found;
    const std::wstring pattern = wide(Installation::here().programDir()) + L"/V*.\u0131N\u0130";
    tell("pattern", FindFirstFileW(pattern.c_str(), &found) == INVALID_HANDLE_VALUE);
}

/// What a host makes of the environment's locale.
void takeLocale(const Text& manner)
{
    static int count = 1;
    static std::array<char, 5> name = {'h', 'o', 's', 't', '\0'};
    static std::array<char*, 2> values = {name.data(), nullptr};
    if (manner == "application")
        static const QCoreApplication kApplication(count, values.data());
    if (manner == "setlocale")
        (void)std::setlocale(LC_ALL, "");
}

} // namespace

/// Tells on standard error which locale is in effect: its decimal point, and what it makes of two letters.
PROBE(locale)
{
    takeLocale(arguments.at(0));
    std::cout << std::localeconv()->decimal_point << " " << std::towlower(L'I') << " " << std::towlower(L'\u00C4')
              << "\n";
    return 0;
}

/// Starts, tells all that could depend on the locale, and writes all that could.
PROBE(host)
{
    takeLocale(arguments.at(0));
    tell("start", startWith({arguments.at(1), "-", "TR-tr", "\xC4\xB0\xC4\xB1Ii"}));
    tellNames();
    tellPaths();
    tellNumbers();
    tellText();
    tellCases();
    tell("first run", CreateConfigReg());
    tell("products list", CreateProductsConfigReg());
    return 0;
}

/// Starts again, and tells whether what the other one wrote is there.
PROBE(hostAgain)
{
    takeLocale(arguments.at(0));
    (void)startWith({arguments.at(1), "-", "-", "\xC4\xB0\xC4\xB1Ii"});
    vorn::Settings settings(VornaConfig::SettingsRoot, L"Numbers");
    tell("language", vornConfig()->language().shortName());
    tell("double", settings.get<double>(L"Double0") == 1e300);
    tell("text", settings.get<std::wstring>(L"Text").value_or(L"none"));
    return 0;
}

namespace
{

struct Locale {
    const char* what;
    const char* name;
    const char* facts; ///< What the probe "locale" tells under it.
};

void PrintTo(const Locale& locale, std::ostream* out)
{
    *out << locale.what;
}

constexpr Locale kLocales[] = {{"C", "C", ". 105 196\n"},
                               {"Posix", "POSIX", ". 105 196\n"},
                               {"German", "de_DE.UTF-8", ", 105 228\n"},
                               {"Turkish", "tr_TR.UTF-8", ", 305 228\n"},
                               {"TurkishLatin", "tr_TR.ISO-8859-9", ", 305 228\n"}};

constexpr char kPlainCompany[] = "Acme I";
constexpr char kWideCompany[] = "Gr\xC3\xB6\xC3\x9F"
                                "e \xC4\xB0\xC4\xB1 \xF0\x9F\x98\x80";

/// Everything below a directory, by its path there.
std::map<Text, Text> filesIn(const fs::path& directory)
{
    std::map<Text, Text> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory))
        files[fs::relative(entry.path(), directory)] = entry.is_regular_file() ? readFile(entry.path()) : "directory";
    return files;
}

Environment environmentOf(const Text& locale)
{
    return {{"LC_ALL", locale}, {"LANG", ""}, {"LOCPATH", VR_LOCALES}};
}

/// An installation in which hosts run under locales.
class Program : public Installation
{
public:
    Program() : Installation("program")
    {
        installLanguage("tr-TR");
        write("VORNA.ini", "[Product]\nLocaleId=1055\n[LocaleIdLangName]\n1055=tr-TR\n[Numbers]\nPlain=1234\nGrouped=1."
                           "234,5\n[mixed I]\ntitle=Titel\n");
        write("product.ini", "[Product]\nMajorVer=26\nProductId=1234\n");
        write("host.ini", "[Product]\nPreStr=Vri\n");
        fs::create_directories(home() / ".local/share");
    }
    /// What a host tells, without what its place is called.
    Text told(const Text& probe, const Text& locale, const Text& manner, const Text& company) const
    {
        const ProcessResult result = run(probe, {manner, company}, environmentOf(locale));
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        return result.out;
    }
    std::map<Text, Text> written() const
    {
        std::map<Text, Text> files = filesIn(home());
        for (auto& [path, bytes] : files) {
            for (std::size_t at = bytes.find(programDir()); at != Text::npos; at = bytes.find(programDir()))
                bytes.replace(at, programDir().string().size(), "PROGRAM");
        }
        return files;
    }
};

class HostUnderLocale : public testing::TestWithParam<std::tuple<Locale, const char*>>
{
protected:
    static Locale locale() { return std::get<0>(GetParam()); }
    static Text manner() { return std::get<1>(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(All, HostUnderLocale,
                         testing::Combine(testing::ValuesIn(kLocales), testing::Values("setlocale", "application")),
                         [](const auto& row) {
                             return std::get<0>(row.param).what + Text("By") + std::get<1>(row.param);
                         });

} // namespace

TEST_P(HostUnderLocale, IsReallyUnderIt)
{
    EXPECT_EQ(Installation::here().run("locale", {manner()}, environmentOf(locale().name)).out, locale().facts);
}

TEST_P(HostUnderLocale, TellsAndWritesWhatOneWithoutALocaleDoes)
{
    const Program plain;
    const Program other;
    const Text expected = plain.told("host", "C.UTF-8", "none", kPlainCompany);
    EXPECT_EQ(other.told("host", locale().name, manner(), kPlainCompany), expected);
    EXPECT_NE(expected.find("start: 0\n"), Text::npos) << expected;
    EXPECT_NE(expected.find("products list: 1\n"), Text::npos) << expected;
    EXPECT_EQ(other.written(), plain.written());
}

TEST_P(HostUnderLocale, KeepsTheSettingsOfACompanyInOtherLettersWhereOneWithoutALocaleDoes)
{
    const Program plain;
    const Program other;
    EXPECT_EQ(other.told("host", locale().name, manner(), kWideCompany),
              plain.told("host", "C.UTF-8", "none", kWideCompany));
    EXPECT_EQ(other.written(), plain.written());
}

TEST_P(HostUnderLocale, ReadsWhatAHostUnderAnotherOneWrote)
{
    for (const char* const company : {kPlainCompany, kWideCompany}) {
        const Program program;
        program.told("host", locale().name, manner(), company);
        EXPECT_EQ(program.told("hostAgain", "C.UTF-8", "setlocale", company),
                  "language: tr-TR\ndouble: 1\ntext: 1,5 1.5 1.234,5\n");
        program.told("host", "tr_TR.UTF-8", "application", company);
        EXPECT_EQ(program.told("hostAgain", locale().name, manner(), company),
                  "language: tr-TR\ndouble: 1\ntext: 1,5 1.5 1.234,5\n");
    }
}

#ifdef VR_TOOL

namespace
{

/// What the tool answers to some commands, one after the other, with what it says of its failures.
Text answersOfTool(const Program& program, const Text& locale)
{
    const fs::path tool = program.programDir() / "vruinfo";
    fs::copy_file(VR_TOOL, tool, fs::copy_options::overwrite_existing);
    Environment environment = program.environment();
    environment.merge(environmentOf(locale));
    const std::vector<std::vector<Text>> commands = {{"set", "@settings/T\xC4\xB1tle \xF0\x9F\x98\x80",
                                                      " Gr\xC3\xB6\xC3\x9F"
                                                      "e\n=%\\ "},
                                                     {"set", "@settings/Double", "--type", "double", "1234567.5"},
                                                     {"set", "@settings/Double", "--type", "double", "1,5"},
                                                     {"get", "@settings/Double"},
                                                     {"get", "@settings/T\xC4\xB1tle \xF0\x9F\x98\x80"},
                                                     {"list", "@settings", "--json"},
                                                     {"find", "TITLE", "/"},
                                                     {"find", "GR\xC3\x96", "/", "--values"},
                                                     {"export", "/"},
                                                     {"exists", "@settings/\xC3\x84"},
                                                     {"identity"},
                                                     {"languages"},
                                                     {"get", "@settings/\xFF"}};
    Text answers;
    for (std::vector<Text> command : commands) {
        command.insert(command.begin(), tool);
        const ProcessResult result = runProcess(command, environment);
        answers += "[" + std::to_string(result.exitCode) + "]\n" + result.out + result.err;
    }
    for (std::size_t at = answers.find(program.root()); at != Text::npos; at = answers.find(program.root()))
        answers.erase(at, program.root().string().size());
    return answers;
}

/// The harness's own conversion drops a byte-order mark.
Text utf8OfAll(const std::wstring& text)
{
    return utf8(L"x" + text).substr(1);
}

class ToolUnderLocale : public testing::TestWithParam<Locale>
{
};

INSTANTIATE_TEST_SUITE_P(All, ToolUnderLocale, testing::ValuesIn(kLocales),
                         [](const auto& row) { return Text(row.param.what); });

} // namespace

TEST_P(ToolUnderLocale, AnswersAndWritesWhatItDoesWithoutOne)
{
    const Program plain;
    const Program other;
    const Text expected = answersOfTool(plain, "C.UTF-8");
    EXPECT_NE(expected.find("1234567.5"), Text::npos) << expected;
    EXPECT_NE(expected.find("tr-TR"), Text::npos) << expected;
    EXPECT_EQ(answersOfTool(other, GetParam().name), expected);
    EXPECT_EQ(other.written(), plain.written());
}

TEST(WideTextThroughTheTool, IsReadBack)
{
    const Program program;
    fs::copy_file(VR_TOOL, program.programDir() / "vruinfo");
    Environment environment = program.environment();
    environment.merge(environmentOf("C"));
    const auto answer = [&](std::vector<Text> command) {
        command.insert(command.begin(), program.programDir() / "vruinfo");
        const ProcessResult result = runProcess(command, environment);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return result.out;
    };
    const std::vector<stress::WideText>& texts = stress::wideTexts();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        SCOPED_TRACE(texts[i].what);
        if (texts[i].hasHalf())
            continue; // cannot be said on a command line
        const Text text = utf8OfAll(texts[i].text);
        const Text path = "@settings/Wide" + std::to_string(i);
        answer({"set", path, "--", text});
        EXPECT_EQ(answer({"get", path}), text + "\n");
        answer({"set", path + "/" + text + "/Value", "below"});
        EXPECT_EQ(answer({"get", path + "/" + text + "/Value"}), "below\n");
    }
}

#endif
