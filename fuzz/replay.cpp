// Runs a target over files, for compilers without a fuzzer: `<target> FILE-OR-DIRECTORY...`
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_input.h"

namespace
{

namespace fs = std::filesystem;

int replayed = 0;

void replayFile(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "%s cannot be read\n", file.c_str());
        std::exit(1);
    }
    // Of the exact size on the heap, so that a sanitizer sees a step beyond the end.
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    std::printf("%s\n", file.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++replayed;
}

void replay(const fs::path& place)
{
    if (!fs::is_directory(place))
        return replayFile(place);
    for (const auto& entry : fs::directory_iterator(place))
        replayFile(entry.path());
}

} // namespace

extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* count, char*** arguments);

int main(int argc, char** argv)
{
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    for (int i = 1; i < argc; ++i)
        replay(argv[i]);
    if (replayed == 0) {
        std::fprintf(stderr, "nothing to replay\n");
        return 1;
    }
    std::printf("%d inputs, every rule holds\n", replayed);
}
