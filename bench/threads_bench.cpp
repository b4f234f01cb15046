// What a read costs when eight threads read at once, beside the same reads done by one thread; and the same with the
// settings object used directly under a mutex, as a host would have to do it.
//
// Both take turns. Processor time is that of all threads together: waiting by spinning would show there. Wall-clock
// time says what the threads get done in a second: the reading itself is done by one at a time.
//
//   threads_bench [rounds] [values]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <QtCore/QSettings>
#include <QtCore/QString>

#include "VrUInfo/VrUInfo.h"
#include "staged.h"

namespace
{

constexpr int kThreads = 8;
constexpr int kReads = 20000; ///< Of each thread.
constexpr int kDefaultValues = 10000;
constexpr int kDefaultRounds = 15;

struct Entry {
    std::wstring name;
    QString group;
    QString key;
};

[[noreturn]] void fail(const char* what)
{
    std::fprintf(stderr, "threads_bench: %s\n", what);
    std::abort();
}

std::vector<Entry> fill(int values)
{
    const QString root = QStringLiteral("Software/HALVIK/VORNA/2026/en-US/Settings/");
    std::vector<Entry> entries;
    for (int i = 0; i < values; ++i) {
        const QString item = QStringLiteral("Item%1").arg(i / 100);
        const QString key = QStringLiteral("Value%1").arg(i % 100);
        entries.push_back({(item + QLatin1Char('/') + key).toStdWString(), root + item, key});
        g_globalSettings->setValue(root + item + QLatin1Char('/') + key, QStringLiteral("1$42"));
    }
    return entries;
}

using Reads = std::function<void(const std::vector<Entry>& entries, unsigned int seed, int count)>;

std::size_t jump(unsigned int& state, std::size_t size)
{
    state = state * 1664525U + 1013904223U;
    return (state >> 8U) % size;
}

void readOurs(const std::vector<Entry>& entries, unsigned int seed, int count)
{
    VornVariant value;
    for (int i = 0; i < count; ++i) {
        const Entry& entry = entries[jump(seed, entries.size())];
        if (vornConfig()->getValue(VornaConfig::SettingsRoot, entry.name.c_str(), value) != Vorn::eOk)
            fail("a value is missing");
    }
}

void readDirect(const std::vector<Entry>& entries, unsigned int seed, int count)
{
    static std::mutex mutex;
    for (int i = 0; i < count; ++i) {
        const Entry& entry = entries[jump(seed, entries.size())];
        const std::lock_guard<std::mutex> lock(mutex);
        g_globalSettings->beginGroup(entry.group);
        const QVariant value = g_globalSettings->value(entry.key);
        g_globalSettings->endGroup();
        if (!value.isValid())
            fail("a value is missing");
    }
}

double secondsOf(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Nanoseconds a read.
struct Cost {
    std::vector<double> cpu;
    std::vector<double> wall;

    void take(const std::function<void()>& work)
    {
        const double cpuBefore = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
        const double wallBefore = secondsOf(CLOCK_MONOTONIC);
        work();
        constexpr double kEach = 1e9 / (double(kThreads) * kReads);
        cpu.push_back((secondsOf(CLOCK_PROCESS_CPUTIME_ID) - cpuBefore) * kEach);
        wall.push_back((secondsOf(CLOCK_MONOTONIC) - wallBefore) * kEach);
    }
};

void together(const Reads& reads, const std::vector<Entry>& entries)
{
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < kThreads; ++i)
        threads.emplace_back([&reads, &entries, i] { reads(entries, i + 1, kReads); });
    for (std::thread& thread : threads)
        thread.join();
}

void alone(const Reads& reads, const std::vector<Entry>& entries)
{
    std::thread([&] {
        for (unsigned int i = 0; i < kThreads; ++i)
            reads(entries, i + 1, kReads);
    }).join();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void report(const char* side, const Cost& single, const Cost& many)
{
    std::printf("| %s | %.0f | %.0f | %.2f | %.0f | %.0f | %.2f |\n", side, median(single.cpu), median(many.cpu),
                median(many.cpu) / median(single.cpu), median(single.wall), median(many.wall),
                median(many.wall) / median(single.wall));
}

} // namespace

int main(int argc, char** argv)
{
    const int code = runStaged(argc, argv);
    if (code >= 0)
        return code;
    if (InitVornConfig(nullptr, nullptr, L"en-US", L"Default") != Vorn::eOk)
        fail("the library does not start");
    const int rounds = argc > 1 ? std::atoi(argv[1]) : kDefaultRounds;
    const std::vector<Entry> entries = fill(argc > 2 ? std::atoi(argv[2]) : kDefaultValues);
    Cost oursAlone;
    Cost oursTogether;
    Cost directAlone;
    Cost directTogether;
    for (int round = 0; round < rounds; ++round) {
        oursAlone.take([&] { alone(readOurs, entries); });
        oursTogether.take([&] { together(readOurs, entries); });
        directAlone.take([&] { alone(readDirect, entries); });
        directTogether.take([&] { together(readDirect, entries); });
    }
    std::puts("| side | processor time, one thread, ns | eight threads, ns | ratio | wall-clock, one thread, ns "
              "| eight threads, ns | ratio |\n| --- | ---: | ---: | ---: | ---: | ---: | ---: |");
    report("ours", oursAlone, oursTogether);
    report("direct, under a mutex", directAlone, directTogether);
    std::fflush(stdout);
    std::_Exit(0);
}
