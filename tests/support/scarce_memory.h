// Running out of memory, honestly: texts that are huge to whoever copies them, and a process that cannot have as much.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include "process.h"
#include "sanitizers.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// The sanitizers' own count of allocated bytes, in their interface since long but not in every compiler's headers.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace vrtest
{

/// Bytes that a process with scarce memory cannot have in one piece.
inline constexpr std::size_t kTooMuch = std::size_t{256} << 20U;

/// What a process with scarce memory needs in its environment.
inline Environment scarceEnvironment()
{
    const std::string options = "allocator_may_return_null=1:max_allocation_size_mb=128:";
    Environment environment;
    for (const char* const name : {"ASAN_OPTIONS", "TSAN_OPTIONS"}) {
        const char* const present = std::getenv(name);
        environment[name] = options + (present ? present : "");
    }
    return environment;
}

/// From here on this process may grow by half of kTooMuch. (Sanitizers, whose shadow is larger than any limit, take it
/// from the environment.)
inline void makeMemoryScarce()
{
    if (kHasSanitizerAllocator)
        return;
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t bytes = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + kTooMuch / 2;
    const rlimit limit{bytes, bytes};
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        throw std::runtime_error("no limit");
}

/// `bytes` of one repeated 32-bit pattern, and zeros behind it. One small piece of memory, seen again and again, holds
/// it all.
class HugePattern
{
public:
    HugePattern(std::size_t bytes, std::uint32_t pattern) : m_bytes(bytes), m_mapped(bytes + kPiece)
    {
        m_data = map(nullptr, m_mapped, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1);
        const int piece = memfd_create("pattern", MFD_CLOEXEC);
        const std::u32string filling(kPiece / sizeof pattern, static_cast<char32_t>(pattern));
        if (piece < 0 || write(piece, filling.data(), kPiece) != static_cast<ssize_t>(kPiece))
            throw std::runtime_error("no pattern");
        for (std::size_t at = 0; at < m_bytes; at += kPiece)
            map(static_cast<char*>(m_data) + at, std::min(kPiece, m_bytes - at), MAP_PRIVATE | MAP_FIXED, piece);
        close(piece);
    }
    HugePattern(const HugePattern&) = delete;
    HugePattern& operator=(const HugePattern&) = delete;
    ~HugePattern() { munmap(m_data, m_mapped); }

    const void* data() const { return m_data; }

private:
    static constexpr std::size_t kPiece = std::size_t{32} << 20U; // `bytes` is a multiple of a page

    static void* map(void* place, std::size_t bytes, int flags, int file)
    {
        void* const mapped = mmap(place, bytes, PROT_READ | PROT_WRITE, flags, file, 0);
        if (mapped == MAP_FAILED)
            throw std::runtime_error("no room");
        return mapped;
    }

    std::size_t m_bytes;
    std::size_t m_mapped;
    void* m_data = nullptr;
};

} // namespace vrtest
