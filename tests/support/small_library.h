// Shared libraries that a test builds for itself: resource libraries with texts of its own, and libraries that watch.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "process.h"

namespace vrtest
{

/// Builds a shared library from C++ source with the system's compiler; its folder is made.
inline void buildLibrary(const std::filesystem::path& target, const std::string& source,
                         const std::vector<std::string>& options = {})
{
    std::filesystem::create_directories(target.parent_path());
    const std::filesystem::path file = target.string() + ".cpp";
    std::ofstream(file) << source;
    const char* const compiler = std::getenv("CXX");
    std::vector<std::string> command{compiler ? compiler : "c++", "-std=c++17", "-shared", "-fPIC", "-o", target, file};
    command.insert(command.end(), options.begin(), options.end());
    const ProcessResult result = runProcess(command);
    std::filesystem::remove(file);
    if (result.exitCode != 0)
        throw std::runtime_error("cannot build " + target.string() + "\n" + result.err);
}

/// Source of a resource library without an icon. The texts are code points below 128 without quotes and backslashes.
inline std::string resourceSource(const std::map<unsigned int, std::string>& texts)
{
    std::string rows;
    for (const auto& [id, text] : texts)
        rows.append("{").append(std::to_string(id)).append(", L\"").append(text).append("\"},\n");
    return "struct VrResourceString { unsigned int id; const wchar_t* text; };\n"
           "extern \"C\" {\n"
           "extern const VrResourceString VrResourceStrings[];\n"
           "extern const unsigned int VrResourceStringCount;\n"
           "const VrResourceString VrResourceStrings[] = {\n" +
           rows + "};\nconst unsigned int VrResourceStringCount = " + std::to_string(texts.size()) + ";\n}\n";
}

/// The environment that puts a library in front of all others of a process, under sanitizers, too.
inline Environment preloading(const std::filesystem::path& library)
{
    return {{"LD_PRELOAD", library}, {"ASAN_OPTIONS", "verify_asan_link_order=0"}};
}

} // namespace vrtest
