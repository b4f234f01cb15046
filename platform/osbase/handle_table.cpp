#include "osbase/handle_table.h"

#include <atomic>

namespace vrosbase::internal
{

std::uintptr_t nextHandleNumber()
{
    static std::atomic<std::uintptr_t> last{0};
    return last.fetch_add(4) + 4;
}

} // namespace vrosbase::internal
