#include <atomic>
#include <chrono>
#include <ctime>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "VrPlatformBase/VrPlatformBase.h"

namespace
{

using std::chrono::milliseconds;
using Guard = std::lock_guard<VrLocker>;

static_assert(sizeof(VrLocker) <= 64);

/// A thread that takes the lock once and says so.
class Taker final
{
public:
    explicit Taker(VrLocker& locker) : m_thread([this, &locker] { take(locker); }) {}
    ~Taker() { m_thread.join(); }
    Taker(const Taker&) = delete;
    Taker& operator=(const Taker&) = delete;

    [[nodiscard]] bool hasTakenWithin(milliseconds time) const
    {
        const auto end = std::chrono::steady_clock::now() + time;
        while (!m_hasTaken && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(milliseconds(1));
        return m_hasTaken;
    }
    [[nodiscard]] double processorMilliseconds() const { return m_processorMilliseconds; }

private:
    static double processorTime()
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }
    void take(VrLocker& locker)
    {
        const double before = processorTime();
        const Guard guard(locker);
        m_processorMilliseconds = processorTime() - before;
        m_hasTaken = true;
    }

    std::atomic<bool> m_hasTaken{false};
    std::atomic<double> m_processorMilliseconds{0};
    std::thread m_thread;
};

constexpr milliseconds kShort(60);
constexpr milliseconds kLong(30000);

TEST(VrLockerTest, IsFreeWhenMade)
{
    VrLocker locker;
    const Taker taker(locker);
    EXPECT_TRUE(taker.hasTakenWithin(kLong));
}

TEST(VrLockerTest, HolderMayTakeItAgain)
{
    VrLocker locker;
    locker.lock();
    locker.lock(); // a lock that is not recursive would wait here for ever
    const Taker taker(locker);
    EXPECT_FALSE(taker.hasTakenWithin(kShort));
    locker.unlock();
    locker.unlock();
    EXPECT_TRUE(taker.hasTakenWithin(kLong));
}

TEST(VrLockerTest, IsFreeOnlyAfterAsManyUnlocksAsLocks)
{
    VrLocker locker;
    locker.lock();
    locker.lock();
    locker.lock();
    const Taker taker(locker);
    locker.unlock();
    locker.unlock();
    EXPECT_FALSE(taker.hasTakenWithin(kShort));
    locker.unlock();
    EXPECT_TRUE(taker.hasTakenWithin(kLong));
}

TEST(VrLockerTest, CanBeTakenAgainAfterItWasFree)
{
    VrLocker locker;
    locker.lock();
    locker.unlock();
    locker.lock();
    const Taker taker(locker);
    EXPECT_FALSE(taker.hasTakenWithin(kShort));
    locker.unlock();
}

TEST(VrLockerTest, UnlockByAnotherThreadDoesNothing)
{
    VrLocker locker;
    locker.lock();
    std::thread([&] { locker.unlock(); }).join();
    const Taker taker(locker);
    EXPECT_FALSE(taker.hasTakenWithin(kShort));
    locker.unlock();
}

TEST(VrLockerTest, UnlockOfAFreeLockDoesNothing)
{
    VrLocker locker;
    locker.unlock();
    locker.lock();
    const Taker taker(locker);
    EXPECT_FALSE(taker.hasTakenWithin(kShort));
    locker.unlock();
}

TEST(VrLockerTest, WaitingThreadSleeps)
{
    VrLocker locker;
    locker.lock();
    const Taker taker(locker);
    std::this_thread::sleep_for(milliseconds(300));
    locker.unlock();
    ASSERT_TRUE(taker.hasTakenWithin(kLong));
    EXPECT_LT(taker.processorMilliseconds(), 100);
}

class ContendedLockerTest : public testing::TestWithParam<int>
{
protected:
    template <typename Work>
    void runThreads(const Work& work)
    {
        std::vector<std::thread> threads;
        threads.reserve(static_cast<std::size_t>(GetParam()));
        for (int i = 0; i < GetParam(); ++i)
            threads.emplace_back(work);
        for (std::thread& thread : threads)
            thread.join();
    }

    VrLocker m_locker;
};

TEST_P(ContendedLockerTest, ThreadsExcludeEachOther)
{
    constexpr int kRounds = 20000;
    int inside = 0;
    int collisions = 0;
    long total = 0;
    runThreads([&] {
        for (int i = 0; i < kRounds; ++i) {
            const Guard outer(m_locker);
            const Guard inner(m_locker);
            collisions += static_cast<int>(++inside != 1);
            ++total;
            --inside;
        }
    });
    EXPECT_EQ(collisions, 0);
    EXPECT_EQ(total, static_cast<long>(GetParam()) * kRounds);
}

// Holding for longer than waiters have patience brings out every way of passing the lock on.
TEST_P(ContendedLockerTest, ThreadsThatHoldItLongExcludeEachOther)
{
    constexpr int kRounds = 12;
    int inside = 0;
    int collisions = 0;
    long total = 0;
    runThreads([&] {
        for (int i = 0; i < kRounds; ++i) {
            const Guard guard(m_locker);
            collisions += static_cast<int>(++inside != 1);
            std::this_thread::sleep_for(std::chrono::microseconds(i % 3 == 0 ? 1500 : 100));
            ++total;
            --inside;
        }
    });
    EXPECT_EQ(collisions, 0);
    EXPECT_EQ(total, static_cast<long>(GetParam()) * kRounds);
}

/// A thread that takes the lock again at once, so that a woken waiter would find it taken nearly always.
class GreedyThread final
{
public:
    explicit GreedyThread(VrLocker& locker) : m_thread([this, &locker] { run(locker); }) {}
    ~GreedyThread() { static_cast<void>(stop()); }
    GreedyThread(const GreedyThread&) = delete;
    GreedyThread& operator=(const GreedyThread&) = delete;

    /// How often it had the lock.
    [[nodiscard]] long stop()
    {
        m_isDone = true;
        if (m_thread.joinable())
            m_thread.join();
        return m_rounds;
    }

private:
    void run(VrLocker& locker)
    {
        while (!m_isDone) {
            const Guard guard(locker);
            ++m_rounds;
            std::this_thread::sleep_for(milliseconds(2));
        }
    }

    std::atomic<bool> m_isDone{false};
    long m_rounds = 0;
    std::thread m_thread;
};

TEST_P(ContendedLockerTest, WaitersAreNotPassedOverByAGreedyThread)
{
    constexpr int kRounds = 5;
    GreedyThread greedy(m_locker);
    runThreads([&] {
        for (int i = 0; i < kRounds; ++i)
            const Guard guard(m_locker);
    });
    EXPECT_LE(greedy.stop(), 3L * kRounds * GetParam() + 10);
}

INSTANTIATE_TEST_SUITE_P(Threads, ContendedLockerTest, testing::Values(2, 8, 16));

} // namespace
