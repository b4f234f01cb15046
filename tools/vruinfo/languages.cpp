#include "commands.h"

#include <array>
#include <vector>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include "VrUInfo/Resources.h"
#include "VrUInfo/VornaConfig.h"
#include "context.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

struct Row {
    VornaLanguage language;
    bool isInstalled;
    QString remark; ///< Why it is not installed, or what is wrong with it; may be empty.
};

QFileInfo folderOf(const VornaLanguage& language)
{
    std::array<wchar_t, kVornPathCapacity> path{};
    GetResourceDllPath(language.shortName(), path.data(), kVornPathCapacity);
    return QFileInfo(fromWide(path.data()));
}

/// What keeps the folder from counting as an installed language.
QString faultOf(const QFileInfo& folder)
{
    if (!folder.exists())
        return QStringLiteral("no folder");
    if (!folder.isDir())
        return QStringLiteral("not a folder");
    if (!folder.isReadable())
        return QStringLiteral("folder not readable");
    return QStringLiteral("no *.so in the folder");
}

/// A folder counts with any library in it; a start in that language needs this one.
QString weaknessOf(const QFileInfo& folder)
{
    const bool isWhole = QFileInfo(QDir(folder.filePath()).filePath(QStringLiteral("libVrUInfoRes.so"))).isReadable();
    return isWhole ? QString() : QStringLiteral("libVrUInfoRes.so is missing or not readable");
}

Row rowOf(int id)
{
    const VornaLanguage language(id);
    const bool isInstalled = vornConfig()->isLanguageExist(language.shortName());
    const QFileInfo folder = folderOf(language);
    return {language, isInstalled, isInstalled ? weaknessOf(folder) : faultOf(folder)};
}

bool isCurrent(const Row& row)
{
    return row.language == vornConfig()->language();
}

QString hexadecimal(std::uint32_t number)
{
    return QStringLiteral("0x%1").arg(number, 4, 16, QLatin1Char('0'));
}

QString stateOf(const Row& row)
{
    const QString state = row.isInstalled ? QStringLiteral("installed") : QStringLiteral("not installed");
    return row.remark.isEmpty() ? state : state + QStringLiteral(": ") + row.remark;
}

void printLines(Printer& printer, const std::vector<Row>& rows)
{
    const auto line = [&printer](QChar mark, const QString& id, const QString& lcid, const QString& name,
                                 const QString& english, const QString& state) {
        printer.line(mark + id.rightJustified(3) + QStringLiteral("  ") + padded(lcid, 8) + padded(name, 7) +
                     padded(english, 21) + state);
    };
    line(QLatin1Char(' '), QStringLiteral("ID"), QStringLiteral("LCID"), QStringLiteral("NAME"),
         QStringLiteral("LANGUAGE"), QStringLiteral("STATE"));
    for (const Row& row : rows)
        line(QLatin1Char(isCurrent(row) ? '*' : ' '), QString::number(row.language.id()),
             hexadecimal(row.language.vornLanguage()), fromWide(row.language.shortName()),
             fromWide(row.language.globalName()), stateOf(row));
}

QJsonObject jsonOf(const Row& row)
{
    return {{QStringLiteral("id"), row.language.id()},
            {QStringLiteral("lcid"), static_cast<qint64>(row.language.vornLanguage())},
            {QStringLiteral("name"), fromWide(row.language.shortName())},
            {QStringLiteral("englishName"), fromWide(row.language.globalName())},
            {QStringLiteral("installed"), row.isInstalled},
            {QStringLiteral("remark"), row.remark},
            {QStringLiteral("current"), isCurrent(row)}};
}

void printJson(Printer& printer, const std::vector<Row>& rows)
{
    QJsonArray all;
    for (const Row& row : rows)
        all.append(jsonOf(row));
    printer.json(QJsonDocument(all));
}

} // namespace

Exit runLanguages(Context& context)
{
    if (const auto problem = context.start(Purpose::Look))
        return context.fail(*problem);
    std::vector<Row> rows;
    rows.reserve(kVornLanguageCount);
    for (int id = 0; id < kVornLanguageCount; ++id)
        rows.push_back(rowOf(id));
    if (context.wantsJson())
        printJson(context.printer(), rows);
    else
        printLines(context.printer(), rows);
    return Exit::Done;
}

} // namespace vruinfo::tool
