// Names of registry keys: what is encoded is one file name, and comes back; paths of names are cut as a reference cuts.
#include <set>
#include <vector>

#include <climits>

#include "fuzz_input.h"
#include "osbase/key_name.h"
#include "osbase/path_text.h"

using namespace vrosbase::internal;

namespace
{

/// What the name can be at most: what is no character becomes U+FFFD, and bytes come back as such.
std::wstring asNarrowed(const std::wstring& name)
{
    return wideText(narrowText(name));
}

void checkEncoding(const std::wstring& name)
{
    const auto fileName = encodeKeyName(name);
    if (!fileName) {
        VR_HOLDS(narrowText(name).size() * 3 > NAME_MAX, "only a long name is refused");
        return;
    }
    VR_HOLDS(fileName->size() <= NAME_MAX, "a file name is no longer than it may be");
    VR_HOLDS(*fileName != "." && *fileName != "..", "a name is no way out of its directory");
    VR_HOLDS(fileName->find('\0') == std::string::npos, "a file name has no zero");
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    VR_HOLDS(std::none_of(fileName->begin(), fileName->end(), isControl), "a file name has no control character");
    VR_HOLDS(decodeKeyName(*fileName) == asNarrowed(name), "a name comes back");
}

/// Decoding takes any file name, since any may lie in the directory.
void checkDecoding(const std::string& fileName)
{
    const std::wstring name = decodeKeyName(fileName);
    VR_HOLDS(name.size() <= fileName.size(), "a name is no longer than its file's");
    const auto again = encodeKeyName(name);
    if (again)
        VR_HOLDS(decodeKeyName(*again) == name, "a name that was read comes back");
}

void checkSplitting(const std::wstring& path)
{
    const std::vector<std::wstring> names = splitKeyPath(path);
    std::vector<std::wstring> expected(1);
    for (const wchar_t c : path) {
        if (c == L'/' || c == L'\\')
            expected.emplace_back();
        else
            expected.back().push_back(c);
    }
    expected.erase(std::remove(expected.begin(), expected.end(), std::wstring()), expected.end());
    VR_HOLDS(names == expected, "a path is cut at its separators, and empty names go");
    for (const std::wstring& name : names)
        checkEncoding(name);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vrfuzz::Input input(data, size);
    const bool isRaw = (input.takeByte() & 1U) != 0;
    checkSplitting(input.wideRest(isRaw));
    std::string fileName(input.rest().substr(0, NAME_MAX));
    checkDecoding(fileName);
    VR_HOLDS(narrowText(wideText(fileName)) == fileName, "bytes come back from wide text");
    return 0;
}
