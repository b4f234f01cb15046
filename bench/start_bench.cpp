// What a start of the library costs beside the bare opening of the same settings file and one first read.
//
// Each measurement is taken in a fresh process, inside it: from before the call to after it. The two kinds take turns.
// The store holds as many values as the first argument says (1000).
//
//   start_bench [values] [rounds]
//
// With VR_BENCH_MARK set, the measured processes ask for a file that does not exist before and behind, so that
// describe_start finds the system calls in between.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <QtCore/QSettings>
#include <QtCore/QString>

#include <sys/wait.h>
#include <unistd.h>

#include "VrUInfo/VrUInfo.h"
#include "staged.h"

namespace
{

using Clock = std::chrono::steady_clock;

constexpr char kKindVariable[] = "VR_BENCH_KIND";
constexpr char kMarkVariable[] = "VR_BENCH_MARK";
constexpr int kDefaultValues = 1000;
constexpr int kDefaultRounds = 101;

double microsecondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

void mark(const char* place)
{
    if (std::getenv(kMarkVariable))
        static_cast<void>(access(place, F_OK));
}

[[noreturn]] void answer(double microseconds)
{
    std::printf("%.3f\n", microseconds);
    std::fflush(stdout);
    _exit(0); // nothing is written back: every round finds the same file
}

[[noreturn]] void measureOurs()
{
    mark("begin ours");
    const auto begin = Clock::now();
    const unsigned int status = InitVornConfig(nullptr, nullptr, nullptr, nullptr);
    const double taken = microsecondsSince(begin);
    mark("end ours");
    if (status != Vorn::eOk || std::wstring(GetCurrentLanguageShortName()) != L"en-US")
        std::abort();
    answer(taken);
}

[[noreturn]] void measureDirect()
{
    mark("begin direct");
    const auto begin = Clock::now();
    auto* const settings = new QSettings(QSettings::NativeFormat, QSettings::UserScope,
                                         QStringLiteral("HALVIK/VORNA/2026"), QStringLiteral("VORNA"));
    settings->beginGroup(QStringLiteral("Software/HALVIK/VORNA/2026"));
    const QVariant value = settings->value(QStringLiteral("CurVer"));
    settings->endGroup();
    const double taken = microsecondsSince(begin);
    mark("end direct");
    if (value.toString() != QStringLiteral("5$en-US"))
        std::abort();
    answer(taken);
}

double runRound(const char* kind)
{
    setenv(kKindVariable, kind, 1);
    const std::string command = "'" + stageDir() + "/program/bench'";
    FILE* const child = popen(command.c_str(), "r");
    double microseconds = -1;
    if (!child || std::fscanf(child, "%lf", &microseconds) != 1)
        std::abort();
    pclose(child);
    return microseconds;
}

void fillStore(int values)
{
    QSettings settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("HALVIK/VORNA/2026"),
                       QStringLiteral("VORNA"));
    settings.beginGroup(QStringLiteral("Software/HALVIK/VORNA/2026"));
    settings.setValue(QStringLiteral("CurVer"), QStringLiteral("5$en-US"));
    for (int i = 0; i < values; ++i)
        settings.setValue(QStringLiteral("en-US/Settings/Item%1/Value%2").arg(i / 100).arg(i % 100),
                          QStringLiteral("1$42"));
    settings.endGroup();
}

void report(const char* kind, std::vector<double>& times)
{
    std::sort(times.begin(), times.end());
    const std::size_t count = times.size();
    std::printf("%-8s median %8.1f us   quartiles %8.1f to %8.1f\n", kind, times[count / 2], times[count / 4],
                times[count * 3 / 4]);
}

} // namespace

int main(int argc, char** argv)
{
    const int code = runStaged(argc, argv);
    if (code >= 0)
        return code;
    if (const char* const kind = std::getenv(kKindVariable)) {
        if (std::string(kind) == "ours")
            measureOurs();
        measureDirect();
    }
    fillStore(argc > 1 ? std::atoi(argv[1]) : kDefaultValues);
    const int rounds = argc > 2 ? std::atoi(argv[2]) : kDefaultRounds;
    std::vector<double> ours;
    std::vector<double> direct;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(runRound("ours"));
        direct.push_back(runRound("direct"));
    }
    report("ours", ours);
    report("direct", direct);
    std::printf("ratio of medians %.2f\n", ours[ours.size() / 2] / direct[direct.size() / 2]);
    return 0;
}
