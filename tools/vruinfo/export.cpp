#include "commands.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <sys/stat.h>
#include <unistd.h>

#include "export_file.h"
#include "saved_form.h"
#include "store.h"

namespace vruinfo::tool
{
namespace
{

Problem notWritten(const QString& name, const QString& why)
{
    return {Exit::Failed, QStringLiteral("%1 cannot be written: %2").arg(name, why)};
}

/// A link that somebody else has put where everybody may, such as in /tmp. What it leads to is not what is meant.
bool isPlantedLink(const QString& name)
{
    struct stat link = {};
    struct stat directory = {};
    const bool isForeignLink =
        lstat(QFile::encodeName(name).constData(), &link) == 0 && S_ISLNK(link.st_mode) && link.st_uid != geteuid();
    if (!isForeignLink || stat(QFile::encodeName(QFileInfo(name).path()).constData(), &directory) != 0)
        return false;
    return (directory.st_mode & S_IWOTH) != 0 && link.st_uid != directory.st_uid;
}

/// Whole, or not at all: what stood there before stays until then.
std::optional<Problem> writeFile(const QString& name, const QByteArray& content)
{
    const QFileInfo existing(name);
    if (existing.exists() && !existing.isFile())
        return notWritten(name, QStringLiteral("it is no regular file; without --output, standard output is written"));
    if (isPlantedLink(name))
        return notWritten(name,
                          QStringLiteral("it is a link that another user has put into a directory of everybody's"));
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        return notWritten(name, file.errorString());
    return std::nullopt;
}

std::optional<Problem> foreignIn(const Place& place, const Snapshot& values)
{
    for (auto row = values.cbegin(); row != values.cend(); ++row) {
        if (isForeign(row->stored()))
            return Problem{Exit::Failed,
                           QStringLiteral("%1 holds a %2, which this program cannot read whole")
                               .arg(joined(place, row.key()), QString::fromLatin1(row->stored().typeName()))};
    }
    return std::nullopt;
}

Exit write(const Context& context, const Place& place, const Snapshot& values)
{
    const std::optional<QString> output = context.option("output");
    const QByteArray content = exportText(place, values);
    if (!output || *output == QLatin1Char('-')) {
        context.printer().bytes(content);
        return Exit::Done;
    }
    if (const auto problem = writeFile(*output, content))
        return context.fail(*problem);
    if (!context.wantsJson())
        context.printer().line(
            QStringLiteral("%1: %2 values of %3 written").arg(*output).arg(values.size()).arg(place.shown()));
    return Exit::Done;
}

void warnOfHidden(const Context& context, const Place& place)
{
    const int count = hiddenValues(place);
    if (count > 0)
        context.printer().error(QStringLiteral("warning: %1 values are left out; their names have an empty part, and "
                                               "nothing can read them")
                                    .arg(count));
}

} // namespace

Exit runExport(Context& context)
{
    const QString path = context.hasArgument(0) ? context.argument(0) : QStringLiteral("/");
    const Result<Place> place = placeOf(context, path, TreePath::Kind::Item, Purpose::Look);
    if (!place)
        return context.fail(place.problem());
    const Snapshot values = liveSnapshot(*place);
    if (values.isEmpty())
        return context.fail(absent(*place, QStringLiteral("value or item")));
    if (const auto problem = foreignIn(*place, values))
        return context.fail(*problem);
    warnOfHidden(context, *place);
    return write(context, *place, values);
}

} // namespace vruinfo::tool
