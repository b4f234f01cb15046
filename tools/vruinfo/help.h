// Help texts, made from the table.
#pragma once

#include "command.h"
#include "printer.h"

namespace vruinfo::tool
{

void printGeneralHelp(Printer& printer);
void printCommandHelp(Printer& printer, const Command& command);
void printVersion(Printer& printer);

} // namespace vruinfo::tool
