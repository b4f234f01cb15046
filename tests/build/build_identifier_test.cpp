// The build identifier is an input of the build, with a default.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "process.h"
#include "scratch_directory.h"

using namespace vrtest;

namespace
{

class BuildIdentifier : public testing::Test
{
protected:
    /// Configures the library alone; the line of the generated header that holds the identifier.
    std::string configured(const std::vector<std::string>& options) const
    {
        const std::string build = m_directory.file("build");
        std::vector<std::string> command = {
            CMAKE_PROGRAM, "-S", REPOSITORY,      "-B",
            build,         "-G", BUILD_GENERATOR, std::string("-DCMAKE_CXX_COMPILER=") + CXX_COMPILER};
        for (const char* const part : {"TESTS", "TOOLS", "BENCH"})
            command.push_back(std::string("-DVRUINFO_BUILD_") + part + "=OFF");
        command.insert(command.end(), options.begin(), options.end());
        const ProcessResult result = runProcess(command);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        const std::string header = bytesOf(build + "/src/build_identifier.h");
        const std::size_t begin = header.find("L\"");
        return begin == std::string::npos ? "" : header.substr(begin, header.find('\n', begin) - begin);
    }

    ScratchDirectory m_directory;
};

TEST_F(BuildIdentifier, HasADefaultThatIsTheSameOnEveryProcessor)
{
    EXPECT_EQ(configured({}), "L\"26.00_2025.06.25(#13215-01c20d49625)_Linux_arm64\";");
}

TEST_F(BuildIdentifier, IsWhatTheBuildIsGiven)
{
    EXPECT_EQ(configured({"-DVRUINFO_BUILD_IDENTIFIER=27.01_2026.01.02(#1-0123456789a)_Linux_x86_64"}),
              "L\"27.01_2026.01.02(#1-0123456789a)_Linux_x86_64\";");
}

} // namespace
