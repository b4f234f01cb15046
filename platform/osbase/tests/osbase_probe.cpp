// A program whose end, or place on disk, is looked at from outside.
#include "VrOsBase/VrOsBase.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>

namespace
{

std::string markerDirectory;

void leaveMarker(const char* name)
{
    std::ofstream(markerDirectory + '/' + name) << "ran";
}

class Marker final
{
public:
    Marker() = default;
    Marker(const Marker&) = delete;
    Marker& operator=(const Marker&) = delete;
    Marker(Marker&&) = delete;
    Marker& operator=(Marker&&) = delete;
    ~Marker()
    {
        if (!markerDirectory.empty()) {
            leaveMarker("destructor");
        }
    }
};

const Marker marker;

[[noreturn]] void endWithCode(const char* code)
{
    ExitProcess(static_cast<UINT>(std::strtoul(code, nullptr, 10)));
}

/// Ends with text in every buffer there is: of the standard streams, and of a file of its own.
void endWithFullBuffers(const char* directory, const char* code)
{
    markerDirectory = directory;
    std::atexit([] { leaveMarker("handler"); });
    std::at_quick_exit([] { leaveMarker("quick-handler"); });
    std::FILE* const file = std::fopen((markerDirectory + "/settings").c_str(), "w");
    std::fputs("only in memory", file);
    std::printf("c-");
    std::cout << "cpp-";
    std::clog << "log";
    endWithCode(code);
}

void endWithUnsyncedStreams()
{
    std::ios::sync_with_stdio(false);
    std::cout.exceptions(std::ios::badbit | std::ios::failbit);
    std::cout << "out-";
    std::wclog << L"wide-log";
    ExitProcess(0);
}

/// Ends while another thread waits for standard input, which never comes, and holds that stream.
void endWhileReading()
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0 || ::dup2(ends[0], STDIN_FILENO) < 0) {
        std::exit(99);
    }
    std::thread([] { static_cast<void>(std::getchar()); }).detach();
    while (::ftrylockfile(stdin) == 0) {
        ::funlockfile(stdin);
        std::this_thread::yield();
    }
    ExitProcess(5);
}

/// Ends while another thread holds standard output for ever.
void endWhileOutputIsHeld()
{
    std::thread([] {
        ::flockfile(stdout);
        ::pause();
    }).detach();
    while (::ftrylockfile(stdout) == 0) {
        ::funlockfile(stdout);
        std::this_thread::yield();
    }
    ExitProcess(6);
}

void printPlace()
{
    std::array<wchar_t, kVrPathCapacity> path{};
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    for (DWORD i = 0; i < length; ++i) {
        std::putchar(static_cast<int>(path[i]));
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "code") {
        endWithCode(argv[2]);
    } else if (command == "buffers") {
        endWithFullBuffers(argv[2], argv[3]);
    } else if (command == "unsynced") {
        endWithUnsyncedStreams();
    } else if (command == "reading") {
        endWhileReading();
    } else if (command == "held") {
        endWhileOutputIsHeld();
    } else if (command == "where") {
        printPlace();
    } else if (command == "where-after-removal") {
        ::unlink(argv[0]);
        printPlace();
    } else {
        return 98;
    }
    return 0;
}
