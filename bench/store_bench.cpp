// What the exported store functions cost beside the same work done on a QSettings object with ready QStrings.
//
// All sides work on the one settings object of the process, on the same items, in one run:
//
//   ours    takes wide strings, builds the root path, locks and converts the value, in one variant that is kept at hand
//   direct  does beginGroup, value or setValue, endGroup
//   byhand  is ours with a variant made for each value (where it is not listed, ours is the same)
//   typed   does as byhand does, through the typed layer: with the same names, for a number or text of C++
//
// `list` takes the names; `fetch` reads each value, too.
//
//   store_bench --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
//
// scripts/bench makes the table of ratios of it.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <QtCore/QSettings>
#include <QtCore/QString>

#include "VrUInfo/VrUInfo.h"
#include "staged.h"

namespace
{

constexpr int kValuesPerItem = 100;
const QString kRoot = QStringLiteral("Software/HALVIK/VORNA/2026/en-US/Settings/Drawing");

/// Names of one value for both sides: ready before the measurement.
struct Entry {
    std::wstring name; ///< "Drawing/<size>/Item<i>/Value<k>", below the settings root
    QString group;
    QString key;
};

std::vector<Entry> makeEntries(int count)
{
    std::vector<Entry> entries;
    for (int i = 0; i < count; ++i) {
        const QString item = QStringLiteral("%1/Item%2").arg(count).arg(i / kValuesPerItem);
        const QString key = QStringLiteral("Value%1").arg(i % kValuesPerItem);
        entries.push_back({(QStringLiteral("Drawing/") + item + QLatin1Char('/') + key).toStdWString(),
                           kRoot + QLatin1Char('/') + item, key});
    }
    return entries;
}

/// Entries in an order that jumps through the whole tree, the same for both sides.
std::vector<Entry> shuffled(std::vector<Entry> entries)
{
    unsigned int state = 12345;
    for (std::size_t i = entries.size() - 1; i > 0; --i) {
        state = state * 1664525U + 1013904223U;
        std::swap(entries[i], entries[state % (i + 1)]);
    }
    return entries;
}

void fail(const char* what)
{
    std::fprintf(stderr, "store_bench: %s\n", what);
    std::abort();
}

/// Fills the tree with `count` values, alone.
const std::vector<Entry>& filled(int count)
{
    static int current = 0;
    static std::vector<Entry> entries;
    if (current == count)
        return entries;
    g_globalSettings->remove(kRoot);
    entries = shuffled(makeEntries(count));
    for (const Entry& entry : entries) {
        g_globalSettings->beginGroup(entry.group);
        g_globalSettings->setValue(entry.key, QStringLiteral("1$42"));
        g_globalSettings->endGroup();
    }
    g_globalSettings->sync();
    current = count;
    return entries;
}

void readOurs(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    std::size_t i = 0;
    VornVariant value;
    for (auto _ : state) {
        if (vornConfig()->getValue(VornaConfig::SettingsRoot, entries[i].name.c_str(), value) != Vorn::eOk)
            fail("a value is missing");
        benchmark::DoNotOptimize(value.data);
        i = i + 1 == entries.size() ? 0 : i + 1;
    }
}

void readDirect(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    std::size_t i = 0;
    for (auto _ : state) {
        g_globalSettings->beginGroup(entries[i].group);
        const QVariant value = g_globalSettings->value(entries[i].key);
        g_globalSettings->endGroup();
        if (!value.isValid())
            fail("a value is missing");
        i = i + 1 == entries.size() ? 0 : i + 1;
    }
}

void readByHand(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    std::size_t i = 0;
    for (auto _ : state) {
        VornVariant value;
        if (vornConfig()->getValue(VornaConfig::SettingsRoot, entries[i].name.c_str(), value) != Vorn::eOk)
            fail("a value is missing");
        benchmark::DoNotOptimize(value.data);
        i = i + 1 == entries.size() ? 0 : i + 1;
    }
}

void readTyped(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    std::size_t i = 0;
    const vorn::Settings settings(VornaConfig::SettingsRoot);
    for (auto _ : state) {
        const std::optional<int> value = settings.get<int>(entries[i].name);
        if (!value)
            fail("a value is missing");
        benchmark::DoNotOptimize(*value);
        i = i + 1 == entries.size() ? 0 : i + 1;
    }
}

void missOurs(benchmark::State& state)
{
    filled(static_cast<int>(state.range(0)));
    VornVariant value;
    for (auto _ : state) {
        if (vornConfig()->getValue(VornaConfig::SettingsRoot, L"Drawing/Nowhere/Item0/Value0", value) !=
            Vorn::eNotFound)
            fail("a value is there that should not be");
    }
}

void missDirect(benchmark::State& state)
{
    filled(static_cast<int>(state.range(0)));
    const QString group = kRoot + QStringLiteral("/Nowhere/Item0");
    const QString key = QStringLiteral("Value0");
    for (auto _ : state) {
        g_globalSettings->beginGroup(group);
        const QVariant value = g_globalSettings->value(key);
        g_globalSettings->endGroup();
        if (value.isValid())
            fail("a value is there that should not be");
    }
}

void missTyped(benchmark::State& state)
{
    filled(static_cast<int>(state.range(0)));
    const vorn::Settings settings(VornaConfig::SettingsRoot);
    for (auto _ : state) {
        if (settings.get<int>(L"Drawing/Nowhere/Item0/Value0"))
            fail("a value is there that should not be");
    }
}

void writeOurs(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    std::size_t i = 0;
    VornVariant value;
    value.setString(L"a text of some length", VornVariant::kVarString);
    for (auto _ : state) {
        if (vornConfig()->setValue(VornaConfig::SettingsRoot, entries[i].name.c_str(), value) != Vorn::eOk)
            fail("a value could not be written");
        i = i + 1 == entries.size() ? 0 : i + 1;
    }
}

void writeDirect(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    std::size_t i = 0;
    const QVariant value = QStringLiteral("5$a text of some length");
    for (auto _ : state) {
        g_globalSettings->beginGroup(entries[i].group);
        g_globalSettings->setValue(entries[i].key, value);
        g_globalSettings->endGroup();
        i = i + 1 == entries.size() ? 0 : i + 1;
    }
}

void writeByHand(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    std::size_t i = 0;
    for (auto _ : state) {
        VornVariant value;
        value.setString(L"a text of some length", VornVariant::kVarString);
        if (vornConfig()->setValue(VornaConfig::SettingsRoot, entries[i].name.c_str(), value) != Vorn::eOk)
            fail("a value could not be written");
        i = i + 1 == entries.size() ? 0 : i + 1;
    }
}

void writeTyped(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    std::size_t i = 0;
    vorn::Settings settings(VornaConfig::SettingsRoot);
    for (auto _ : state) {
        if (!settings.set(entries[i].name, L"a text of some length"))
            fail("a value could not be written");
        i = i + 1 == entries.size() ? 0 : i + 1;
    }
}

void listOurs(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    const std::wstring item = entries[0].name.substr(0, entries[0].name.rfind(L'/'));
    for (auto _ : state) {
        VornaConfig::ValueIterator values;
        if (vornConfig()->findItem(VornaConfig::SettingsRoot, item.c_str(), values) != Vorn::eOk)
            fail("nothing is listed");
    }
}

void listDirect(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        g_globalSettings->beginGroup(entries[0].group);
        const QStringList keys = g_globalSettings->childKeys();
        g_globalSettings->endGroup();
        if (keys.size() != kValuesPerItem)
            fail("a listing is not whole");
    }
}

void listTyped(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    const vorn::Settings settings(VornaConfig::SettingsRoot, entries[0].name.substr(0, entries[0].name.rfind(L'/')));
    for (auto _ : state) {
        if (settings.values().isEmpty())
            fail("nothing is listed");
    }
}

void fetchOurs(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    const std::wstring item = entries[0].name.substr(0, entries[0].name.rfind(L'/'));
    VornVariant value;
    for (auto _ : state) {
        VornaConfig::ValueIterator values;
        vornConfig()->findItem(VornaConfig::SettingsRoot, item.c_str(), values);
        for (int i = 0; i < kValuesPerItem; ++i, values.step()) {
            std::array<wchar_t, kVornPathCapacity> name{};
            int length = kVornPathCapacity;
            if (values.key(name.data(), length) != Vorn::eOk || values.value(value) != Vorn::eOk)
                fail("a value is missing");
            benchmark::DoNotOptimize(name);
        }
    }
}

void fetchTyped(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    const vorn::Settings settings(VornaConfig::SettingsRoot, entries[0].name.substr(0, entries[0].name.rfind(L'/')));
    for (auto _ : state) {
        int count = 0;
        for (const auto& value : settings.values()) {
            benchmark::DoNotOptimize(value.name());
            count += value.as<int>() ? 1 : 0;
        }
        if (count != kValuesPerItem)
            fail("a value is missing");
    }
}

void fetchDirect(benchmark::State& state)
{
    const std::vector<Entry>& entries = filled(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        g_globalSettings->beginGroup(entries[0].group);
        const QStringList keys = g_globalSettings->childKeys();
        for (const QString& key : keys)
            benchmark::DoNotOptimize(g_globalSettings->value(key));
        g_globalSettings->endGroup();
    }
}

void deleteOurs(benchmark::State& state)
{
    filled(static_cast<int>(state.range(0)));
    VornVariant value;
    value.setString(L"x", VornVariant::kVarString);
    for (auto _ : state) {
        state.PauseTiming();
        for (int i = 0; i < kValuesPerItem; ++i)
            vornConfig()->setValue(VornaConfig::SettingsRoot, (L"Gone/Item/Value" + std::to_wstring(i)).c_str(), value);
        state.ResumeTiming();
        vornConfig()->removeItem(VornaConfig::SettingsRoot, L"Gone");
    }
}

/// The walk that removes item by item, on the settings object itself.
bool deleteWalk(const QString& key)
{
    g_globalSettings->beginGroup(key);
    const QStringList groups = g_globalSettings->childGroups();
    for (const QString& group : groups)
        deleteWalk(group);
    const QStringList keys = g_globalSettings->childKeys();
    for (const QString& name : keys)
        g_globalSettings->remove(name);
    g_globalSettings->endGroup();
    g_globalSettings->remove(key);
    return !groups.isEmpty() || !keys.isEmpty();
}

void deleteDirect(benchmark::State& state)
{
    filled(static_cast<int>(state.range(0)));
    const QString gone = QStringLiteral("Software/HALVIK/VORNA/2026/en-US/Settings/Gone");
    for (auto _ : state) {
        state.PauseTiming();
        g_globalSettings->beginGroup(gone + QStringLiteral("/Item"));
        for (int i = 0; i < kValuesPerItem; ++i)
            g_globalSettings->setValue(QStringLiteral("Value%1").arg(i), QStringLiteral("5$x"));
        g_globalSettings->endGroup();
        state.ResumeTiming();
        deleteWalk(gone);
    }
}

void registerAll()
{
    struct Bench {
        const char* name;
        void (*side)(benchmark::State&);
    };
    const std::vector<Bench> benches = {
        {"read/ours", readOurs},        {"read/direct", readDirect},   {"read/byhand", readByHand},
        {"read/typed", readTyped},      {"miss/ours", missOurs},       {"miss/direct", missDirect},
        {"miss/typed", missTyped},      {"write/ours", writeOurs},     {"write/direct", writeDirect},
        {"write/typed", writeTyped},    {"write/byhand", writeByHand}, {"list/ours", listOurs},
        {"list/direct", listDirect},    {"list/typed", listTyped},     {"fetch/ours", fetchOurs},
        {"fetch/typed", fetchTyped},    {"fetch/direct", fetchDirect}, {"delete/ours", deleteOurs},
        {"delete/direct", deleteDirect}};
    for (const int count : {100, 10000, 100000}) {
        for (const Bench& bench : benches)
            benchmark::RegisterBenchmark(bench.name, bench.side)->Arg(count);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const int code = runStaged(argc, argv);
    if (code >= 0)
        return code;
    if (InitVornConfig(nullptr, nullptr, L"en-US", L"Default") != Vorn::eOk)
        fail("the library does not start");
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
