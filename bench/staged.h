// Stages a program directory and a home in a temporary directory and starts the program there again, so that a
// benchmark runs in a real installation. The directory goes when the benchmark is done.
#pragma once

#include <string>

/// In the first process: stages, runs itself there, and returns its exit code. In the staged one: a negative number.
int runStaged(int argc, char** argv);

/// The staged installation's own directory.
std::string stageDir();
