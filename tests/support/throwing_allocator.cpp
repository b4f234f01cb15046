// For programs in builds with a sanitizer; other builds take no notice. A request for more memory than there is gets
// none, as without the sanitizer, and the process goes on.

// NOLINTBEGIN(bugprone-reserved-identifier) the sanitizers' names
extern "C" {

__attribute__((visibility("default"))) const char* __asan_default_options();
__attribute__((visibility("default"))) const char* __tsan_default_options();

const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}

const char* __tsan_default_options()
{
    return "allocator_may_return_null=1";
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
