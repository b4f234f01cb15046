#include <cerrno>
#include <chrono>

#include <linux/futex.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "VrPlatformBase/VrPlatformBase.h"

// The state word is 0 while the lock is free. While it is held, it says who has to be thought of when it is given up:
// kSleepers, when threads may sleep until it is free, and kHeir times the number of threads that have waited too long.
// Those do not run for the free lock any more: whoever gives it up leaves it held and passes it to one of them through
// the bequest word. As many heirs as are counted wait for that word, so that a bequest always finds its taker.

namespace
{

using Word = std::atomic<std::uint32_t>;
using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kFree = 0;
constexpr std::uint32_t kHeld = 1;
constexpr std::uint32_t kSleepers = 2;
constexpr std::uint32_t kHeir = 4;
constexpr int kSpins = 40; // some reads of a setting: going to sleep and being woken costs more than that
constexpr std::chrono::milliseconds kPatience(1);

static_assert(sizeof(Word) == sizeof(std::uint32_t), "the kernel waits on the word itself");
static_assert(sizeof(VrLocker) <= 64, "part of the binary interface");

std::uintptr_t callingThread() noexcept
{
#if defined(__x86_64__) && __has_builtin(__builtin_thread_pointer)
    return reinterpret_cast<std::uintptr_t>(__builtin_thread_pointer()); // pthread_self without the call
#else
    return static_cast<std::uintptr_t>(pthread_self());
#endif
}

void sleepWhile(Word& word, std::uint32_t value) noexcept
{
    const int error = errno;
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
    errno = error;
}

void wakeOne(Word& word) noexcept
{
    const int error = errno;
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    errno = error;
}

void pauseShortly() noexcept
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

bool replace(Word& state, std::uint32_t from, std::uint32_t to) noexcept
{
    return state.compare_exchange_strong(from, to, std::memory_order_acquire, std::memory_order_relaxed);
}

bool takeBySpinning(Word& state) noexcept
{
    for (int i = 0; i < kSpins; ++i) {
        if (state.load(std::memory_order_relaxed) == kFree && replace(state, kFree, kHeld))
            return true;
        pauseShortly();
    }
    return false;
}

// Takes the lock if it is free, else sleeps until something about it changes. Others may sleep as well, so that the one
// who takes it after a sleep has to remember them.
bool takeOrSleep(Word& state) noexcept
{
    const std::uint32_t seen = state.load(std::memory_order_relaxed);
    if (seen == kFree)
        return replace(state, kFree, kHeld | kSleepers);
    if ((seen & kSleepers) != 0 || replace(state, seen, seen | kSleepers))
        sleepWhile(state, seen | kSleepers);
    return false;
}

bool takeBequest(Word& bequest) noexcept
{
    if (bequest.load(std::memory_order_relaxed) == 1 && replace(bequest, 1, 0))
        return true;
    sleepWhile(bequest, 0);
    return false;
}

// The thread that comes here was woken in the place of all sleepers, and has to remember them as well.
void inherit(Word& state, Word& bequest) noexcept
{
    for (bool isHeir = false; !isHeir;) {
        const std::uint32_t seen = state.load(std::memory_order_relaxed);
        if (seen == kFree && replace(state, kFree, kHeld | kSleepers))
            return;
        isHeir = seen != kFree && replace(state, seen, (seen | kSleepers) + kHeir);
    }
    while (!takeBequest(bequest)) {
    }
}

void takeContended(Word& state, Word& bequest) noexcept
{
    if (takeBySpinning(state))
        return;
    const Clock::time_point start = Clock::now();
    while (!takeOrSleep(state)) {
        if (Clock::now() - start > kPatience)
            return inherit(state, bequest);
    }
}

void giveUpContended(Word& state, Word& bequest) noexcept
{
    std::uint32_t seen = state.load(std::memory_order_relaxed);
    std::uint32_t next = kFree;
    do {
        next = seen >= kHeir ? seen - kHeir : kFree;
    } while (!state.compare_exchange_weak(seen, next, std::memory_order_release, std::memory_order_relaxed));
    if (next == kFree)
        return wakeOne(state);
    bequest.store(1, std::memory_order_release);
    wakeOne(bequest);
}

} // namespace

VrLocker::VrLocker() noexcept = default;

VrLocker::~VrLocker() = default;

void VrLocker::lock()
{
    const std::uintptr_t self = callingThread();
    if (m_owner.load(std::memory_order_relaxed) == self) {
        ++m_depth;
        return;
    }
    if (!replace(m_state, kFree, kHeld))
        takeContended(m_state, m_bequest);
    m_owner.store(self, std::memory_order_relaxed);
    m_depth = 1;
}

void VrLocker::unlock() noexcept
{
    if (m_owner.load(std::memory_order_relaxed) != callingThread() || --m_depth != 0)
        return;
    m_owner.store(0, std::memory_order_relaxed);
    std::uint32_t held = kHeld;
    if (!m_state.compare_exchange_strong(held, kFree, std::memory_order_release, std::memory_order_relaxed))
        giveUpContended(m_state, m_bequest);
}
