#include "commands.h"

#include <algorithm>
#include <vector>

#include <QtCore/QJsonArray>
#include <QtCore/QSet>
#include <QtCore/QSettings>

#include "VrUInfo/VornaConfig.h"
#include "store.h"
#include "text.h"
#include "tree_snapshot.h"
#include "value_text.h"

namespace vruinfo::tool
{
namespace
{

constexpr QLatin1Char kSeparator('/');

/// What is looked for, and where. Neither names nor values alone means both.
class Search final
{
public:
    explicit Search(const Context& context) :
        m_text(context.argument(0)), m_inNames(context.isSet("names") || !context.isSet("values")),
        m_inValues(context.isSet("values") || !context.isSet("names")),
        m_case(context.isSet("match-case") ? Qt::CaseSensitive : Qt::CaseInsensitive)
    {
    }

    [[nodiscard]] const QString& text() const { return m_text; }
    [[nodiscard]] bool finds(const QString& path, const StoredValue& value) const
    {
        return (m_inNames && isIn(path)) || (m_inValues && (isIn(plainText(value.value())) || isInStored(value)));
    }
    [[nodiscard]] bool findsItem(const QString& path) const
    {
        return m_inNames && isIn(path.mid(path.lastIndexOf(kSeparator) + 1));
    }

private:
    [[nodiscard]] bool isIn(const QString& text) const { return text.contains(m_text, m_case); }
    /// What the file has is looked at where the library's view does not tell all of it.
    [[nodiscard]] bool isInStored(const StoredValue& value) const
    {
        return !value.isCanonical() && isIn(value.stored().toStringList().join(QStringLiteral(", ")));
    }

    QString m_text;
    bool m_inNames;
    bool m_inValues;
    Qt::CaseSensitivity m_case;
};

QString parentOf(const QString& path)
{
    return path.left(std::max(0, path.lastIndexOf(kSeparator)));
}

/// The paths of all items, in no order.
QSet<QString> itemsOf(const Snapshot& values)
{
    QSet<QString> items;
    QString former;
    for (auto row = values.cbegin(); row != values.cend(); ++row) {
        QString item = parentOf(row.key());
        if (item == former)
            continue; // its neighbour's
        former = item;
        for (; !item.isEmpty() && !items.contains(item); item = parentOf(item))
            items.insert(item);
    }
    return items;
}

struct Found {
    QStringList items;
    Snapshot values;

    [[nodiscard]] bool isEmpty() const { return items.isEmpty() && values.isEmpty(); }
};

/// What `get` reads is looked at: the user's own values, and the defaults behind them.
Found findAt(const Place& place, const Search& search)
{
    const Snapshot all = snapshotOf(*g_globalSettings, place);
    Found found;
    for (auto row = all.cbegin(); row != all.cend(); ++row) {
        if (search.finds(row.key(), *row))
            found.values.insert(row.key(), *row);
    }
    for (const QString& item : itemsOf(all)) {
        if (search.findsItem(item))
            found.items.append(item);
    }
    found.items.sort();
    return found;
}

struct Line {
    QString path;
    QString text;
};

/// By path; an item before a value of its name.
void printLines(Printer& printer, const Place& place, const Found& found)
{
    std::vector<Line> lines;
    for (const QString& item : found.items)
        lines.push_back({item, joined(place, item) + kSeparator});
    for (auto row = found.values.cbegin(); row != found.values.cend(); ++row)
        lines.push_back({row.key(), joined(place, row.key()) + QStringLiteral(" = ") + row->text()});
    std::stable_sort(lines.begin(), lines.end(),
                     [](const Line& left, const Line& right) { return left.path < right.path; });
    for (const Line& line : lines)
        printer.line(line.text);
}

void printJson(Printer& printer, const Place& place, const Search& search, const Found& found)
{
    QJsonArray items;
    for (const QString& item : found.items)
        items.append(joined(place, item));
    QJsonArray values;
    for (auto row = found.values.cbegin(); row != found.values.cend(); ++row) {
        QJsonObject value = row->json();
        insertText(value, QStringLiteral("path"), joined(place, row.key()));
        values.append(value);
    }
    printer.json(QJsonDocument(QJsonObject{{QStringLiteral("text"), search.text()},
                                           {QStringLiteral("path"), place.shown()},
                                           {QStringLiteral("items"), items},
                                           {QStringLiteral("values"), values}}));
}

Problem nothingFound(const Place& place, const Search& search)
{
    Problem problem = absent(place, QStringLiteral("item"));
    if (problem.exit != Exit::NotFound)
        return problem;
    return {Exit::NotFound, QStringLiteral("%1: nothing there has %2 in it").arg(place.shown(), quoted(search.text()))};
}

} // namespace

Exit runFind(Context& context)
{
    const QString path = context.hasArgument(1) ? context.argument(1) : QString(kSeparator);
    const Result<Place> place = placeOf(context, path, TreePath::Kind::Item, Purpose::Look);
    if (!place)
        return context.fail(place.problem());
    const Search search(context);
    const Found found = findAt(*place, search);
    if (found.isEmpty())
        return context.fail(nothingFound(*place, search));
    if (context.wantsJson())
        printJson(context.printer(), *place, search, found);
    else
        printLines(context.printer(), *place, found);
    return Exit::Done;
}

} // namespace vruinfo::tool
