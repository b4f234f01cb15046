// Running a real process and seeing from outside what it did.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace vrtest
{

struct ProcessResult {
    int exitCode = -1; ///< -1 when a signal ended it.
    int signal = 0;    ///< 0 when it exited.
    std::string out;
    std::string err;
};

/// The variables in `environment` replace those of this process; an empty value takes the variable away.
using Environment = std::map<std::string, std::string>;

/// Runs a program to its end, without standard input, and catches both outputs. A program that takes longer
/// than `timeoutSeconds` is killed.
ProcessResult runProcess(const std::vector<std::string>& command, const Environment& environment = {},
                         const std::string& workingDirectory = {}, int timeoutSeconds = 120);

/// Runs a program to its end with the standard streams of this one; its exit code, or 128 + signal.
int passThrough(const std::vector<std::string>& command, const Environment& environment);

} // namespace vrtest
