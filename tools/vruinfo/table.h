// Rows of an answer, one below the other.
#pragma once

#include <QtCore/QList>
#include <QtCore/QStringList>

#include "printer.h"

namespace vruinfo::tool
{

/// Prints rows with their columns in line; the first row is the heading. All have as many columns.
void printTable(Printer& printer, const QList<QStringList>& rows);

} // namespace vruinfo::tool
