#include "osbase_support.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{

using vrosbase::testing::CommandResult;
using vrosbase::testing::readFile;
using vrosbase::testing::run;
using vrosbase::testing::TempDir;

const std::string kProbe = VR_TEST_PROBE;

TEST(ExitTest, ProcessEndsWithTheLowByteOfTheCode)
{
    EXPECT_EQ(run(kProbe + " code 0").exitCode, 0);
    EXPECT_EQ(run(kProbe + " code 1").exitCode, 1);
    EXPECT_EQ(run(kProbe + " code 255").exitCode, 255);
    EXPECT_EQ(run(kProbe + " code 256").exitCode, 0);
    EXPECT_EQ(run(kProbe + " code 4294967295").exitCode, 255);
}

TEST(ExitTest, StandardStreamsAreFlushed)
{
    const TempDir dir;
    const CommandResult result = run(kProbe + " buffers " + dir.path() + " 3");
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_NE(result.output.find("c-cpp-"), std::string::npos);
    EXPECT_NE(result.output.find("log"), std::string::npos);
}

TEST(ExitTest, StreamsWithBuffersOfTheirOwnAreFlushed)
{
    const CommandResult result = run(kProbe + " unsynced");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "out-wide-log");
}

TEST(ExitTest, NoDestructorAndNoHandlerRuns)
{
    const TempDir dir;
    EXPECT_EQ(run(kProbe + " buffers " + dir.path() + " 0").exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(dir.at("destructor")));
    EXPECT_FALSE(std::filesystem::exists(dir.at("handler")));
    EXPECT_FALSE(std::filesystem::exists(dir.at("quick-handler")));
}

TEST(ExitTest, WhatIsOnlyInMemoryReachesNoFile)
{
    const TempDir dir;
    EXPECT_EQ(run(kProbe + " buffers " + dir.path() + " 0").exitCode, 0);
    ASSERT_TRUE(std::filesystem::exists(dir.at("settings")));
    EXPECT_EQ(readFile(dir.at("settings")), "");
}

TEST(ExitTest, ThreadThatWaitsForInputDoesNotHoldTheEndUp)
{
    EXPECT_EQ(run("timeout 20 " + kProbe + " reading").exitCode, 5);
}

TEST(ExitTest, ThreadThatHoldsTheOutputDoesNotHoldTheEndUp)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the thread sanitizer flushes standard output itself when a process ends";
#endif
    EXPECT_EQ(run("timeout 20 " + kProbe + " held").exitCode, 6);
}

TEST(ExitTest, ClosedOutputDoesNotHoldTheEndUp)
{
    EXPECT_EQ(run("(" + kProbe + " code 4 >&-)").exitCode, 4);
}

} // namespace
