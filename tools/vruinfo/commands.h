// The functions behind the commands.
#pragma once

#include "command.h"

namespace vruinfo::tool
{

Exit runIdentity(Context& context);
Exit runPaths(Context& context);
Exit runLanguages(Context& context);
Exit runGet(Context& context);
Exit runSet(Context& context);
Exit runList(Context& context);
Exit runTree(Context& context);
Exit runRm(Context& context);
Exit runHelp(Context& context);

} // namespace vruinfo::tool
