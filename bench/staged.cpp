#include "staged.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{

constexpr char kStageVariable[] = "VR_BENCH_STAGE";

void stage(const fs::path& root)
{
    fs::create_directories(root / "home/.config");
    fs::create_directories(root / "program/en-US");
    fs::copy_file(fs::read_symlink("/proc/self/exe"), root / "program/bench");
    fs::permissions(root / "program/bench", fs::perms(0755));
    fs::copy_file(fs::path(VR_RESOURCES_DIR) / "en-US/libVrUInfoRes.so", root / "program/en-US/libVrUInfoRes.so");
}

int runIn(const fs::path& root, char** argv)
{
    const pid_t child = fork();
    if (child == 0) {
        const std::string executable = root / "program/bench";
        argv[0] = const_cast<char*>(executable.c_str());
        setenv(kStageVariable, root.c_str(), 1);
        setenv("HOME", (root / "home").c_str(), 1);
        unsetenv("XDG_CONFIG_HOME");
        unsetenv("XDG_DATA_HOME");
        execv(executable.c_str(), argv);
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

} // namespace

int runStaged(int, char** argv)
{
    if (std::getenv(kStageVariable))
        return -1;
    std::string root = fs::temp_directory_path() / "vruinfo-bench-XXXXXX";
    if (!mkdtemp(root.data()))
        throw std::runtime_error("cannot make " + root);
    stage(root);
    const int code = runIn(root, argv);
    fs::remove_all(root);
    return code;
}

std::string stageDir()
{
    return std::getenv(kStageVariable);
}
