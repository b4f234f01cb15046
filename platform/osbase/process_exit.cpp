#include "VrOsBase/VrOsBase.h"

#include <unistd.h>

#include <cstdio>
#include <iostream>

namespace vrosbase::internal
{
namespace
{

/// By way of the buffer: the stream itself throws when its host asked for that.
template <typename Stream>
void flushBuffer(Stream& stream)
{
    if (stream.rdbuf() != nullptr) {
        static_cast<void>(stream.rdbuf()->pubsync());
    }
}

/// Flushes a standard stream and those of C++ that write through it, unless another thread is in the middle
/// of using it: that thread may be waiting for ever.
void flushStreams(std::FILE* stream, std::ostream& narrow, std::wostream& wide)
{
    if (::ftrylockfile(stream) != 0) {
        return;
    }
    flushBuffer(narrow);
    flushBuffer(wide);
    static_cast<void>(std::fflush(stream));
    ::funlockfile(stream);
}

} // namespace
} // namespace vrosbase::internal

using namespace vrosbase::internal;

// Files other than the standard streams are not flushed on purpose: what is only in memory stays out of them.
void ExitProcess(UINT uExitCode)
{
    flushStreams(stdout, std::cout, std::wcout);
    flushStreams(stderr, std::clog, std::wclog);
    ::_exit(static_cast<int>(uExitCode));
}
