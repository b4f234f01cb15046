#include "doctor/damaged_lines.h"

#include "repair_lines.h"

namespace vruinfo::tool::doctor
{

std::vector<int> damagedLines(const QByteArray& bytes)
{
    std::vector<int> numbers;
    if (hasMark(bytes))
        numbers.push_back(1);
    LineScanner scanner(bytes);
    while (const std::optional<SettingsLine> line = scanner.next()) {
        if (line->isDamaged())
            numbers.push_back(line->number);
    }
    return numbers;
}

std::vector<int> openLines(const QByteArray& bytes)
{
    std::vector<int> numbers;
    LineScanner scanner(bytes);
    while (const std::optional<SettingsLine> line = scanner.next()) {
        if (swallowsSettings(bytes, *line))
            numbers.push_back(line->number);
    }
    return numbers;
}

} // namespace vruinfo::tool::doctor
