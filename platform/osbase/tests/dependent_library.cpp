// A library that needs a resource library and has no string table itself.
#include "VrOsBase/VrOsBase.h"

extern "C" {
extern const std::uint32_t VrResourceStringCount;

__attribute__((visibility("default"))) std::uint32_t vrCountOfOther()
{
    return VrResourceStringCount;
}
}
