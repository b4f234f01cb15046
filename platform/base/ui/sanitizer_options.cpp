// For programs that show windows, in builds with a sanitizer; other builds take no notice. Qt keeps some memory for
// good in such a program, and is not itself built so that the thread sanitizer could see how its threads are
// synchronised.

// NOLINTBEGIN(bugprone-reserved-identifier) the sanitizers' names
extern "C" {

__attribute__((visibility("default"))) const char* __asan_default_options();
__attribute__((visibility("default"))) const char* __tsan_default_options();

const char* __asan_default_options()
{
    return "detect_leaks=0";
}

const char* __tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
