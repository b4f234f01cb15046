#include "table.h"

#include <algorithm>

#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr int kGap = 2;

int widthOf(const QList<QStringList>& rows, int column)
{
    int width = 0;
    for (const QStringList& row : rows)
        width = std::max(width, row.at(column).size());
    return width + kGap;
}

} // namespace

void printTable(Printer& printer, const QList<QStringList>& rows)
{
    QStringList lines;
    for (int i = 0; i < rows.size(); ++i)
        lines.append(QString());
    for (int column = 0; column < rows.constFirst().size(); ++column) {
        const bool isLast = column + 1 == rows.constFirst().size();
        const int width = isLast ? 0 : widthOf(rows, column);
        for (int i = 0; i < rows.size(); ++i)
            lines[i] += padded(rows.at(i).at(column), width);
    }
    for (int i = 0; i < lines.size(); ++i)
        printer.line(i == 0 ? Style::Heading : Style::Plain, lines.at(i));
}

} // namespace vruinfo::tool
