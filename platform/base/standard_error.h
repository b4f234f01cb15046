#pragma once

#include <string_view>

namespace vrplatformbase::internal
{

/// Writes to standard error, past the streams' buffers. Neither a reader that is gone nor a terminal that this process
/// is in the background of ends or stops it, and a reader that takes nothing for some seconds is given up.
void writeToStandardError(std::string_view text);

} // namespace vrplatformbase::internal
