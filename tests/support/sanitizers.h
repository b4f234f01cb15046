// What a test has to know of the build that it runs in.
#pragma once

namespace vrtest
{

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kHasSanitizerAllocator = true;
#else
inline constexpr bool kHasSanitizerAllocator = false;
#endif

#if defined(__SANITIZE_THREAD__)
inline constexpr bool kIsThreadSanitized = true;
#else
inline constexpr bool kIsThreadSanitized = false;
#endif

} // namespace vrtest
