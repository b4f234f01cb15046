#include "VrOsBase/VrOsBase.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{

TEST(LastErrorTest, IsWhatWasSet)
{
    SetLastError(4711);
    EXPECT_EQ(GetLastError(), 4711U);
    SetLastError(0xFFFFFFFFU);
    EXPECT_EQ(GetLastError(), 0xFFFFFFFFU);
}

TEST(LastErrorTest, BeginsAtZeroInEachThreadAndStaysThere)
{
    SetLastError(1);
    DWORD atStart = 99;
    std::thread([&] {
        atStart = GetLastError();
        SetLastError(2);
    }).join();
    EXPECT_EQ(atStart, 0U);
    EXPECT_EQ(GetLastError(), 1U);
}

} // namespace
