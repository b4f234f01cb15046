// A library without a string table of its own.

extern "C" __attribute__((visibility("default"))) int vrSampleAnswer()
{
    return 42;
}
