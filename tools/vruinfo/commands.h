// The functions behind the commands.
#pragma once

#include "command.h"

namespace vruinfo::tool
{

Exit runCompletion(Context& context);
Exit runDiff(Context& context);
Exit runDoctor(Context& context);
Exit runExists(Context& context);
Exit runExport(Context& context);
Exit runFind(Context& context);
Exit runFirstRun(Context& context);
Exit runGet(Context& context);
Exit runHelp(Context& context);
Exit runIdentity(Context& context);
Exit runImport(Context& context);
Exit runLanguages(Context& context);
Exit runList(Context& context);
Exit runModules(Context& context);
Exit runPaths(Context& context);
Exit runProducts(Context& context);
Exit runRm(Context& context);
Exit runSet(Context& context);
Exit runTree(Context& context);
Exit runVersion(Context& context);
Exit runWatch(Context& context);

} // namespace vruinfo::tool
