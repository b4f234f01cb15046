#include "commands.h"

#include <algorithm>

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QSettings>

#include "export_file.h"
#include "input_file.h"
#include "own_values.h"
#include "saved_form.h"
#include "store.h"

namespace vruinfo::tool
{
namespace
{

/// A line about long work that goes when the work ends, before anything else is said.
class ProgressLine final
{
public:
    explicit ProgressLine(Printer& printer) : m_printer(printer) {}
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine() { m_printer.progress(QString()); }

    void show(const QString& text) { m_printer.progress(text); }

private:
    Printer& m_printer;
};

/// What an import does to a place.
struct Import {
    Place place;
    Snapshot wanted; ///< Everything that is there afterwards.
    Changes changes; ///< What it takes.
    QString backup;  ///< Empty when none was made.

    [[nodiscard]] int count(bool (*isOne)(const Change& change)) const
    {
        return static_cast<int>(std::count_if(changes.begin(), changes.end(), isOne));
    }
    [[nodiscard]] int added() const
    {
        return count([](const Change& change) { return !change.before; });
    }
    [[nodiscard]] int removed() const
    {
        return count([](const Change& change) { return !change.after; });
    }
    [[nodiscard]] int changed() const { return static_cast<int>(changes.size()) - added() - removed(); }
};

Result<Place> placeFor(const Context& context, const ExportFile& file)
{
    const Purpose purpose = context.isSet("dry-run") ? Purpose::Look : Purpose::Change;
    if (const std::optional<QString> at = context.option("at"))
        return placeOf(context, *at, TreePath::Kind::Item, purpose);
    context.openSettings(purpose);
    return file.place();
}

Snapshot merged(Snapshot base, const Snapshot& values)
{
    for (auto row = values.cbegin(); row != values.cend(); ++row)
        base.insert(row.key(), *row);
    return base;
}

/// Reads and checks everything, and changes nothing.
Result<Import> prepare(const Context& context)
{
    ProgressLine progress(context.printer());
    progress.show(QStringLiteral("reading %1").arg(shownInput(context.argument(0))));
    const Result<ExportFile> file = ExportFile::read(context.argument(0));
    if (!file)
        return file.problem();
    const Result<Place> place = placeFor(context, *file);
    if (!place)
        return place.problem();
    progress.show(QStringLiteral("checking %1").arg(shownInput(context.argument(0))));
    const Result<Snapshot> values = file->valuesAt(*place);
    if (!values)
        return values.problem();
    const Result<Snapshot> before = readableSnapshot(*place);
    if (!before)
        return before.problem();
    const Snapshot wanted = context.isSet("merge") ? merged(*before, *values) : *values;
    return Import{*place, wanted, changesBetween(*before, wanted), {}};
}

/// What goes with another removal is not removed again, which would cost a pass over everything below it.
void removeUnwanted(const Import& import)
{
    for (const Change& change : import.changes) {
        const QString key = joined(import.place, change.path);
        if (!change.after && g_globalSettings->contains(key))
            g_globalSettings->remove(key);
    }
}

bool stands(const QString& key, const StoredValue& value)
{
    return g_globalSettings->contains(key) && StoredValue::isSame(g_globalSettings->value(key), value.stored());
}

/// In memory only. Removing a value takes the item of its name along, which is why the values that stay are looked at
/// as well.
void apply(const Import& import, ProgressLine& progress)
{
    constexpr int kStep = 10000;
    const OwnValues own;
    removeUnwanted(import);
    int done = 0;
    for (auto row = import.wanted.cbegin(); row != import.wanted.cend(); ++row) {
        if (done++ % kStep == 0)
            progress.show(QStringLiteral("importing %1 of %2").arg(done - 1).arg(import.wanted.size()));
        const QString key = joined(import.place, row.key());
        if (!stands(key, *row))
            g_globalSettings->setValue(key, row->stored());
    }
}

std::optional<Problem> save(const Context& context, const Import& import)
{
    if (auto problem = saveChanges(context.printer())) {
        QFile::remove(import.backup);
        return problem;
    }
    if (liveSnapshot(import.place) == import.wanted)
        return std::nullopt;
    return Problem{Exit::Failed, QStringLiteral("another program changed the settings file %1 during the import, whose "
                                                "result it may not be; look at it with `vruinfo diff`, and import "
                                                "again. The file as it was before: %2")
                                     .arg(settingsFile(), import.backup)};
}

/// Brings the changes to the file. \return what stood against it; then the file is as it was
std::optional<Problem> carryOut(const Context& context, Import& import)
{
    if (auto problem = foreignValueInSettings()) // before a backup is made
        return problem;
    const Result<QString> backup = backUp();
    if (!backup)
        return backup.problem();
    import.backup = *backup;
    {
        ProgressLine progress(context.printer());
        apply(import, progress);
    }
    return save(context, import);
}

void printLines(const Context& context, const Import& import)
{
    Printer& printer = context.printer();
    if (import.changes.empty())
        return printer.line(QStringLiteral("nothing to change: %1 is as in %2")
                                .arg(import.place.shown(), shownInput(context.argument(0))));
    printChanges(printer, import.place, import.changes);
    printer.line(QStringLiteral("%1 added, %2 changed, %3 removed%4")
                     .arg(import.added())
                     .arg(import.changed())
                     .arg(import.removed())
                     .arg(context.isSet("dry-run") ? QStringLiteral("; a dry run: nothing was changed") : QString()));
    if (!import.backup.isEmpty())
        printer.line(QStringLiteral("backup: %1").arg(import.backup));
}

void printJson(const Context& context, const Import& import)
{
    QJsonObject answer{{QStringLiteral("dryRun"), context.isSet("dry-run")},
                       {QStringLiteral("changes"), changesJson(import.place, import.changes)},
                       {QStringLiteral("added"), import.added()},
                       {QStringLiteral("changed"), import.changed()},
                       {QStringLiteral("removed"), import.removed()},
                       {QStringLiteral("backup"), import.backup.isEmpty() ? QJsonValue() : QJsonValue(import.backup)}};
    insertText(answer, QStringLiteral("path"), import.place.shown());
    context.printer().json(QJsonDocument(answer));
}

} // namespace

Exit runImport(Context& context)
{
    const Result<Import> prepared = prepare(context);
    if (!prepared)
        return context.fail(prepared.problem());
    Import import = *prepared;
    if (!import.changes.empty() && !context.isSet("dry-run")) {
        if (const auto problem = carryOut(context, import))
            return context.fail(*problem);
    }
    context.wantsJson() ? printJson(context, import) : printLines(context, import);
    return Exit::Done;
}

} // namespace vruinfo::tool
