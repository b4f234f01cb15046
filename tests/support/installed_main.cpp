// The main program of the tests that need an installation around them.
//
// The library's state is per process, and an installation is the directory of the executable. So each test
// case runs in a process of its own: the program links itself into a fresh program directory, with a fresh
// home, and starts itself there again. The body of the test then finds itself installed. A probe is a third
// kind of start (see PROBE).
#include <cstdlib>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <filesystem>

#include <gtest/gtest.h>

#include "installation.h"

// What the sanitizers ask a program for. Qt is not instrumented: its reference counts, its mutexes and the event queue
// that a settings object posts to are not seen, so calls made inside it look unsynchronised; our own accesses are all
// seen. NOLINTNEXTLINE(bugprone-reserved-identifier) the sanitizer's name
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions()
{
    return "called_from_lib:libQt5Core.so.5\n";
}

using namespace vrtest;

namespace
{

std::map<std::string, ProbeFunction>& probes()
{
    static std::map<std::string, ProbeFunction> all;
    return all;
}

int runProbe(const std::string& name, int count, char** values)
{
    const auto probe = probes().find(name);
    if (probe == probes().end()) {
        std::cerr << "no probe " << name << "\n";
        return 125;
    }
    return probe->second(std::vector<std::string>(values + 1, values + count));
}

bool hasArgument(int count, char** values, const std::string& argument)
{
    for (int i = 1; i < count; ++i) {
        if (values[i] == argument)
            return true;
    }
    return false;
}

/// The cases that the arguments select, as "Suite.Case".
std::vector<std::string> selectedCases(int count, char** values)
{
    std::vector<std::string> command(values, values + count);
    command.front() = std::filesystem::read_symlink("/proc/self/exe");
    command.emplace_back("--gtest_list_tests");
    std::istringstream lines(runProcess(command).out);
    std::vector<std::string> cases;
    std::string suite;
    for (std::string line; std::getline(lines, line);) {
        // Behind the name of a case with a parameter stands "  # GetParam() = ...".
        const std::string name = line.substr(0, line.find("  #"));
        if (name.rfind("  ", 0) == 0)
            cases.push_back(suite + name.substr(2));
        else if (!name.empty() && name.back() == '.')
            suite = name;
    }
    return cases;
}

/// Runs the selected cases in this process. A selection that selects nothing is a failure, not a pass.
int runHere()
{
    const bool isListing = testing::GTEST_FLAG(list_tests);
    const int result = RUN_ALL_TESTS();
    return !isListing && testing::UnitTest::GetInstance()->test_to_run_count() == 0 ? 1 : result;
}

bool passesInstalled(const std::string& name)
{
    const Installation installation;
    return passThrough({installation.executable(), "--gtest_filter=" + name, "--gtest_brief=0"},
                       installation.environment()) == 0;
}

int runAllInstalled(const std::vector<std::string>& cases)
{
    int failed = 0;
    for (const std::string& name : cases)
        failed += passesInstalled(name) ? 0 : 1;
    std::cout << cases.size() - static_cast<std::size_t>(failed) << " passed, " << failed << " failed\n";
    return failed == 0 && !cases.empty() ? 0 : 1;
}

} // namespace

vrtest::ProbeRegistration::ProbeRegistration(const char* name, ProbeFunction function)
{
    probes()[name] = function;
}

int main(int argc, char** argv)
{
    if (const char* const probe = std::getenv("VR_PROBE"))
        return runProbe(probe, argc, argv);
    if (std::getenv("VR_INSTALLED") || hasArgument(argc, argv, "--gtest_list_tests")) {
        testing::InitGoogleTest(&argc, argv);
        return runHere();
    }
    return runAllInstalled(selectedCases(argc, argv));
}
