#include "text/wide_buffer.h"

#include <cstdio>
#include <cstdlib>

namespace vruinfo::internal
{

void endProcessTooLong(std::size_t capacity)
{
    std::fprintf(stderr, "libVrUInfo: a text is too long for its buffer of %zu characters; the process ends\n",
                 capacity);
    std::abort();
}

void copyBounded(wchar_t* target, std::size_t capacity, const wchar_t* source)
{
    const std::size_t length = wcsnlen(source, capacity);
    if (length >= capacity)
        endProcessTooLong(capacity);
    std::wmemcpy(target, source, length);
    target[length] = L'\0';
}

} // namespace vruinfo::internal
