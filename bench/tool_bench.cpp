// What the tool costs, in fresh processes: `vruinfo get` of one value beside the least program that reads the same
// value from the same file, in turn, by root and by full path; and `export` and `import` of growing trees.
//
//   tool_bench [rounds]
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <QtCore/QSettings>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "staged.h"

namespace fs = std::filesystem;

namespace
{

using Clock = std::chrono::steady_clock;
using Command = std::vector<std::string>;

constexpr int kDefaultRounds = 51;
constexpr int kTreeRounds = 5;

struct Answer {
    double milliseconds;
    std::string text;
};

/// Starts a program with its output into a pipe. \return the pipe's reading end
int start(const Command& command, pid_t& child)
{
    std::vector<char*> words;
    for (const std::string& word : command)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    std::array<int, 2> ends{};
    posix_spawn_file_actions_t actions;
    if (pipe2(ends.data(), O_CLOEXEC) != 0 || posix_spawn_file_actions_init(&actions) != 0)
        std::abort();
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    if (posix_spawn(&child, words.front(), &actions, nullptr, words.data(), environ) != 0)
        std::abort();
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    return ends[0];
}

std::string readAll(int descriptor)
{
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(descriptor, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    close(descriptor);
    return text;
}

/// Runs a program and takes its time, from before it is made until it has ended.
Answer run(const Command& command)
{
    Answer answer{};
    pid_t child = 0;
    int status = -1;
    const auto begin = Clock::now();
    answer.text = readAll(start(command, child));
    waitpid(child, &status, 0);
    answer.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    if (status != 0)
        std::abort();
    return answer;
}

double checkedRun(const Command& command, const std::string& wanted)
{
    const Answer answer = run(command);
    if (answer.text != wanted) {
        std::fprintf(stderr, "'%s' answered '%s'\n", command.front().c_str(), answer.text.c_str());
        std::abort();
    }
    return answer.milliseconds;
}

/// The middle, and the quarters around it.
struct Spread {
    explicit Spread(std::vector<double> times)
    {
        std::sort(times.begin(), times.end());
        low = times[times.size() / 4];
        middle = times[times.size() / 2];
        high = times[times.size() * 3 / 4];
    }
    double low;
    double middle;
    double high;
};

std::string tool()
{
    return stageDir() + "/program/vruinfo";
}

void install()
{
    const fs::path program = stageDir() + "/program";
    fs::copy_file(VR_TOOL, program / "vruinfo", fs::copy_options::overwrite_existing);
    fs::copy_file(VR_READER, program / "minimal_reader", fs::copy_options::overwrite_existing);
    for (const char* const library : {"libVrUInfo.so", "libVrOsBase.so", "libVrPlatformBase.so"})
        fs::copy_file(fs::path(VR_LIBRARIES) / library, program / library, fs::copy_options::overwrite_existing);
}

void fillStore(int values)
{
    fs::remove_all(stageDir() + "/home/.config");
    QSettings settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("HALVIK/VORNA/2026"),
                       QStringLiteral("VORNA"));
    settings.beginGroup(QStringLiteral("Software/HALVIK/VORNA/2026"));
    settings.setValue(QStringLiteral("CurVer"), QStringLiteral("5$en-US"));
    for (int i = 0; i < values; ++i)
        settings.setValue(QStringLiteral("en-US/Settings/Item%1/Value%2").arg(i / 100).arg(i % 100),
                          QStringLiteral("1$%1").arg(i));
    settings.endGroup();
}

void reportGet(int values, int rounds)
{
    fillStore(values);
    const std::string item = "Item0/Value7";
    const std::string full = "Software/HALVIK/VORNA/2026/en-US/Settings/" + item;
    std::vector<double> byRoot;
    std::vector<double> byPath;
    std::vector<double> least;
    for (int round = 0; round < rounds; ++round) {
        least.push_back(checkedRun({stageDir() + "/program/minimal_reader", full}, "7\n"));
        byRoot.push_back(checkedRun({tool(), "get", "@settings/" + item}, "7\n"));
        byPath.push_back(checkedRun({tool(), "get", full}, "7\n"));
    }
    const Spread minimal(least);
    const Spread root(byRoot);
    const Spread path(byPath);
    std::printf("| get | %d | %.2f | %.2f (%.2f to %.2f) | %.2f | %.2f | %.2f |\n", values, minimal.middle, root.middle,
                root.low, root.high, root.middle / minimal.middle, path.middle, path.middle / minimal.middle);
}

void reportTree(int values)
{
    fillStore(values);
    const std::string file = stageDir() + "/export.json";
    std::vector<double> exports;
    std::vector<double> imports;
    std::vector<double> finds;
    for (int round = 0; round < kTreeRounds; ++round) {
        finds.push_back(run({tool(), "find", "Value99"}).milliseconds);
        exports.push_back(run({tool(), "export", "@settings", "-o", file}).milliseconds);
        run({tool(), "rm", "@settings", "--recursive"});
        imports.push_back(run({tool(), "import", file}).milliseconds);
    }
    const Spread out(exports);
    const Spread in(imports);
    const Spread found(finds);
    std::printf("| %d | %.0f | %.1f | %.0f | %.1f | %.0f | %.1f |\n", values, out.middle, out.middle * 1000 / values,
                in.middle, in.middle * 1000 / values, found.middle, found.middle * 1000 / values);
}

} // namespace

int main(int argc, char** argv)
{
    const int code = runStaged(argc, argv);
    if (code >= 0)
        return code;
    install();
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : kDefaultRounds;
    std::puts("| command | values | least program, ms | by root, ms | ratio | by full path, ms | ratio |\n"
              "| --- | ---: | ---: | ---: | ---: | ---: | ---: |");
    for (const int values : {10, 1000, 10000, 100000})
        reportGet(values, rounds);
    std::puts("\n| values | export, ms | us a value | import, ms | us a value | find, ms | us a value |\n"
              "| ---: | ---: | ---: | ---: | ---: | ---: | ---: |");
    for (const int values : {1000, 10000, 100000})
        reportTree(values);
    return 0;
}
