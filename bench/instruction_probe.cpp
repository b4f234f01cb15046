// One operation after the other, marked for callgrind: check_instructions counts what each one executes, and compares
// it with instructions.txt. Without callgrind it only checks that every operation answers as it should.
//
//   instruction_probe [values]
//
// VR_BENCH_UNDER is a command, callgrind, that the counting process is started with; filling the store goes without it.
//
// The store holds that many values (1000) in items of 50. `direct` is the same work done on the settings object with
// ready strings.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include <QtCore/QSettings>
#include <QtCore/QString>

#include <valgrind/callgrind.h>

#include "VrUInfo/VrUInfo.h"
#include "staged.h"

namespace
{

constexpr char kFilledVariable[] = "VR_BENCH_FILLED";
constexpr char kUnderVariable[] = "VR_BENCH_UNDER";
constexpr int kMostForAll = 10000; ///< With more values only reads and writes are counted: counting takes its time.
constexpr int kDefaultValues = 1000;
constexpr int kValuesPerItem = 50;
constexpr int kRounds = 100;
const QString kRoot = QStringLiteral("Software/HALVIK/VORNA/2026/en-US/Settings");
const QString kItem = kRoot + QStringLiteral("/Drawing/Item1");

void expect(bool isAsExpected, const char* what)
{
    if (isAsExpected)
        return;
    std::fprintf(stderr, "instruction_probe: %s\n", what);
    std::abort();
}

/// Does it once to warm up, then counts that many rounds under the name.
void count(const char* name, int rounds, const std::function<void()>& operation)
{
    operation();
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    for (int i = 0; i < rounds; ++i)
        operation();
    CALLGRIND_DUMP_STATS_AT(name);
    CALLGRIND_STOP_INSTRUMENTATION;
    std::printf("%s %d\n", name, rounds);
}

/// The same for what can be done only once.
void countOnce(const char* name, const std::function<void()>& operation)
{
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    operation();
    CALLGRIND_DUMP_STATS_AT(name);
    CALLGRIND_STOP_INSTRUMENTATION;
    std::printf("%s 1\n", name);
}

QString name(int value)
{
    return QStringLiteral("Value%1").arg(value);
}

void fillStore(int values)
{
    QSettings settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("HALVIK/VORNA/2026"),
                       QStringLiteral("VORNA"));
    for (int i = 0; i < values; ++i)
        settings.setValue(kRoot + QStringLiteral("/Drawing/Item%1/").arg(i / kValuesPerItem) + name(i % kValuesPerItem),
                          QStringLiteral("1$42"));
    settings.setValue(kRoot + QStringLiteral("/Drawing/Texts/Text"), QStringLiteral("5$a text of some length"));
}

VornVariant textValue()
{
    VornVariant value;
    value.setString(L"a text of some length", VornVariant::kVarString);
    return value;
}

void countReads()
{
    VornVariant value;
    count("read.ours", kRounds, [&value] {
        expect(vornConfig()->getValue(VornaConfig::SettingsRoot, L"Drawing/Item1/Value7", value) == Vorn::eOk, "read");
    });
    count("read.direct", kRounds, [] {
        g_globalSettings->beginGroup(kItem);
        expect(g_globalSettings->value(QStringLiteral("Value7")).isValid(), "direct read");
        g_globalSettings->endGroup();
    });
    const vorn::Settings settings(VornaConfig::SettingsRoot);
    count("read.typed", kRounds, [&settings] { expect(settings.get<int>(L"Drawing/Item1/Value7") == 42, "typed"); });
    count("text.ours", kRounds, [&value] {
        expect(vornConfig()->getValue(VornaConfig::SettingsRoot, L"Drawing/Texts/Text", value) == Vorn::eOk, "text");
    });
    count("miss.ours", kRounds, [&value] {
        expect(vornConfig()->getValue(VornaConfig::SettingsRoot, L"Drawing/Item1/Nowhere", value) == Vorn::eNotFound,
               "miss");
    });
    count("miss.direct", kRounds, [] {
        g_globalSettings->beginGroup(kItem);
        expect(!g_globalSettings->value(QStringLiteral("Nowhere")).isValid(), "direct miss");
        g_globalSettings->endGroup();
    });
}

void countWrites()
{
    const VornVariant value = textValue();
    count("write.ours", kRounds, [&value] {
        expect(vornConfig()->setValue(VornaConfig::SettingsRoot, L"Drawing/Item0/Value7", value) == Vorn::eOk, "write");
    });
    const QVariant ready = QStringLiteral("5$a text of some length");
    const QString item = kRoot + QStringLiteral("/Drawing/Item0");
    count("write.direct", kRounds, [&ready, &item] {
        g_globalSettings->beginGroup(item);
        g_globalSettings->setValue(QStringLiteral("Value7"), ready);
        g_globalSettings->endGroup();
    });
}

void fetchOurs()
{
    VornaConfig::ValueIterator values;
    expect(vornConfig()->findItem(VornaConfig::SettingsRoot, L"Drawing/Item1", values) == Vorn::eOk, "fetch");
    VornVariant value;
    for (int i = 0; i < kValuesPerItem; ++i, values.step()) {
        std::array<wchar_t, kVornPathCapacity> key; // NOLINT(cppcoreguidelines-pro-type-member-init) filled by the call
        int length = kVornPathCapacity;
        expect(values.key(key.data(), length) == Vorn::eOk && values.value(value) == Vorn::eOk, "fetched value");
    }
}

void countLists()
{
    count("list.ours", kRounds, [] {
        VornaConfig::ValueIterator values;
        expect(vornConfig()->findItem(VornaConfig::SettingsRoot, L"Drawing/Item1", values) == Vorn::eOk, "list");
    });
    count("list.direct", kRounds, [] {
        g_globalSettings->beginGroup(kItem);
        expect(g_globalSettings->childKeys().size() == kValuesPerItem, "direct list");
        g_globalSettings->endGroup();
    });
    count("fetch.ours", kRounds, fetchOurs);
    count("fetch.direct", kRounds, [] {
        g_globalSettings->beginGroup(kItem);
        const QStringList keys = g_globalSettings->childKeys();
        for (const QString& key : keys)
            expect(g_globalSettings->value(key).isValid(), "direct fetch");
        g_globalSettings->endGroup();
    });
    count("items.ours", 5, [] {
        VornaConfig::ItemIterator items;
        expect(vornConfig()->findItem(VornaConfig::SettingsRoot, L"Drawing", items) == Vorn::eOk, "items");
    });
}

void countDeletion()
{
    const VornVariant value = textValue();
    for (int i = 0; i < kValuesPerItem; ++i)
        vornConfig()->setValue(VornaConfig::SettingsRoot, (L"Gone/Value" + std::to_wstring(i)).c_str(), value);
    countOnce("delete.ours",
              [] { expect(vornConfig()->removeItem(VornaConfig::SettingsRoot, L"Gone") == Vorn::eOk, "delete"); });
}

void countStart()
{
    countOnce("start.ours", [] {
        expect(InitVornConfig(nullptr, nullptr, L"en-US", L"Default") == Vorn::eOk, "the library does not start");
    });
}

/// The same program again, under the command that counts.
[[noreturn]] void startCounting(int argc, char** argv)
{
    setenv(kFilledVariable, "1", 1);
    const char* const under = std::getenv(kUnderVariable);
    std::istringstream command(under ? under : "");
    std::vector<std::string> texts{std::istream_iterator<std::string>(command), {}};
    texts.insert(texts.end(), argv, argv + argc);
    std::vector<char*> words;
    for (std::string& text : texts)
        words.push_back(text.data());
    words.push_back(nullptr);
    execvp(words[0], words.data());
    expect(false, "the counting process cannot be started");
    std::abort();
}

} // namespace

int main(int argc, char** argv)
{
    const int code = runStaged(argc, argv);
    if (code >= 0)
        return code;
    const int values = argc > 1 ? std::atoi(argv[1]) : kDefaultValues;
    if (!std::getenv(kFilledVariable)) {
        fillStore(values);
        startCounting(argc, argv);
    }
    if (values <= kMostForAll)
        countStart();
    else
        InitVornConfig(nullptr, nullptr, L"en-US", L"Default");
    countReads();
    countWrites();
    if (values <= kMostForAll) {
        countLists();
        countDeletion();
    }
    std::fflush(stdout);
    _exit(0);
}
