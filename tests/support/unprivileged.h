// Processes whom file permissions bind, also where the tests run as root.
#pragma once

#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "installation.h"

namespace vrtest
{

constexpr uid_t kNobody = 65534;

inline bool isRoot()
{
    return geteuid() == 0;
}

/// Makes a file or directory the unprivileged user's, with everything in it.
inline void giveAway(const std::filesystem::path& path)
{
    if (!isRoot())
        return;
    std::vector<std::string> command{"chown", "-R", "-h", std::to_string(kNobody), path};
    runProcess(command);
}

/// `Installation::run` as an unprivileged user, to whom the home is given.
inline ProcessResult runUnprivileged(const Installation& installation, const std::string& probe,
                                     const std::vector<std::string>& arguments = {})
{
    giveAway(installation.home());
    Environment environment = installation.environment();
    environment["VR_PROBE"] = probe;
    std::vector<std::string> command;
    if (isRoot())
        command = {"setpriv", "--reuid=" + std::to_string(kNobody), "--regid=" + std::to_string(kNobody),
                   "--clear-groups"};
    command.push_back(installation.executable());
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProcess(command, environment);
}

/// Sets permissions as `chmod` does.
inline void setMode(const std::filesystem::path& path, mode_t mode)
{
    if (chmod(path.c_str(), mode) != 0)
        throw std::runtime_error("no permissions for " + path.string());
}

} // namespace vrtest
