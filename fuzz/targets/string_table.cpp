// String tables: the fuzzer's table is this program's own, read with buffers of any capacity.
#include <map>
#include <vector>

#include "VrOsBase/VrOsBase.h"
#include "fuzz_input.h"

namespace
{

constexpr std::size_t kMostRows = 512;

} // namespace

extern "C" {
// What a resource library exports.
extern __attribute__((visibility("default"))) VrResourceString VrResourceStrings[kMostRows];
extern __attribute__((visibility("default"))) std::uint32_t VrResourceStringCount;
VrResourceString VrResourceStrings[kMostRows] = {};
std::uint32_t VrResourceStringCount = 0;
}

namespace
{

using Texts = std::map<std::uint32_t, std::wstring>;

/// A row a line: the distance to the row before, then the text.
Texts textsOf(vrfuzz::Input& input)
{
    Texts texts;
    std::uint32_t id = 0;
    while (!input.isEmpty() && texts.size() < kMostRows) {
        id += input.takeByte() * (input.takeByte() % 8 == 0 ? 256U : 1U) + 1;
        texts[id] = vrfuzz::terminated(vrfuzz::wide(input.takeLine()));
    }
    return texts;
}

void makeTable(const Texts& texts)
{
    VrResourceStringCount = 0;
    for (const auto& [id, text] : texts)
        VrResourceStrings[VrResourceStringCount++] = {id, text.c_str()};
}

void checkPresent(std::uint32_t id, const std::wstring& text, std::size_t capacity)
{
    const wchar_t* place = nullptr;
    const int whole = LoadStringW(nullptr, id, reinterpret_cast<LPWSTR>(&place), 0);
    VR_HOLDS(place && whole == static_cast<int>(text.size()) && text == place, "a capacity of 0 gives the text itself");
    std::vector<wchar_t> buffer(capacity, L'#');
    const int count = LoadStringW(nullptr, id, buffer.data(), static_cast<int>(capacity));
    VR_HOLDS(count == static_cast<int>(std::min(text.size(), capacity - 1)), "what fits is copied");
    VR_HOLDS(buffer[static_cast<std::size_t>(count)] == L'\0' &&
                 text.compare(0, static_cast<std::size_t>(count), buffer.data()) == 0,
             "a text is copied from its beginning and terminated");
}

void checkAbsent(std::uint32_t id)
{
    wchar_t untouched = L'#';
    VR_HOLDS(LoadStringW(nullptr, id, &untouched, 1) == 0 && untouched == L'#' &&
                 GetLastError() == ERROR_RESOURCE_NAME_NOT_FOUND,
             "an id without a text is told, and the buffer is as it was");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vrfuzz::Input input(data, size);
    const std::size_t capacity = input.takeByte() + 1;
    const Texts texts = textsOf(input);
    makeTable(texts);
    checkAbsent(0);
    for (const auto& [id, text] : texts) {
        checkPresent(id, text, capacity);
        if (texts.count(id + 1) == 0)
            checkAbsent(id + 1);
    }
    return 0;
}
