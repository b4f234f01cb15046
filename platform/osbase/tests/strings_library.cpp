// A resource library: the lowest and the highest id, an empty text, a gap, and a text outside the basic
// plane.
#include "VrOsBase/VrOsBase.h"

#include <iterator>

extern "C" {
extern __attribute__((visibility("default"))) const VrResourceString VrResourceStrings[];
extern __attribute__((visibility("default"))) const std::uint32_t VrResourceStringCount;

const VrResourceString VrResourceStrings[] = {
    {1, L"first"}, {1001, L"Deutsch"}, {1002, L""}, {1004, L"\x1F600!"}, {65535, L"last"},
};
const std::uint32_t VrResourceStringCount = std::size(VrResourceStrings);
}
