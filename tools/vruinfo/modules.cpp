#include "commands.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include "VrUInfo/Lookups.h"
#include "VrUInfo/Paths.h"
#include "VrUInfo/VornaConfig.h"
#include "context.h"
#include "loaded_libraries.h"
#include "table.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr const wchar_t* kModules[] = {
#include "auto_load_modules.inc"
};

struct Module {
    QString name;
    QString file; ///< Empty when there is none in the program directory.
};

QDir programDirectory()
{
    std::array<wchar_t, kVornPathCapacity> path{};
    GetVornProgramPath(path.data());
    return QDir(fromWide(path.data()));
}

QString fileOf(const QString& name)
{
    const QDir directory = programDirectory();
    for (const QString& form : {QStringLiteral("lib%1.so"), QStringLiteral("%1.so")}) {
        QString file = directory.filePath(form.arg(name));
        if (QFileInfo::exists(file))
            return file;
    }
    return {};
}

/// "VrPlot" of "lib/libVrPlot.so" and the like.
QString baseName(const QString& given)
{
    QString name = QString(given).replace(QLatin1Char('\\'), QLatin1Char('/'));
    name = name.mid(name.lastIndexOf(QLatin1Char('/')) + 1);
    const int ending = name.indexOf(QLatin1String(".so"), 0, Qt::CaseInsensitive);
    if (ending < 0)
        return name;
    name.truncate(ending);
    return name.startsWith(QLatin1String("lib"), Qt::CaseInsensitive) ? name.mid(3) : name;
}

std::vector<Module> allModules()
{
    std::vector<Module> modules;
    for (const wchar_t* const name : kModules)
        modules.push_back({fromWide(name), fileOf(fromWide(name))});
    return modules;
}

/// That of a name in any case, as the table spells it.
std::vector<Module> modulesNamed(const QString& name)
{
    std::vector<Module> modules;
    for (const wchar_t* const module : kModules) {
        if (fromWide(module).compare(name, Qt::CaseInsensitive) == 0)
            modules.push_back({fromWide(module), fileOf(fromWide(module))});
    }
    return modules;
}

void printLibraries(Printer& printer)
{
    QList<QStringList> rows{{QStringLiteral("LOADED LIBRARY"), QStringLiteral("PATH")}};
    for (const LoadedLibrary& library : loadedLibraries())
        rows.append({library.name, library.path});
    printer.line(QString());
    printTable(printer, rows);
}

void printAll(Printer& printer, const std::vector<Module>& modules)
{
    QList<QStringList> rows{{QStringLiteral("MODULE"), QStringLiteral("FILE")}};
    for (const Module& module : modules)
        rows.append({module.name, module.file.isEmpty() ? QStringLiteral("-") : module.file});
    printTable(printer, rows);
    const auto count =
        std::count_if(modules.begin(), modules.end(), [](const Module& module) { return !module.file.isEmpty(); });
    printer.line(
        QStringLiteral("%1 modules, %2 of them in %3").arg(modules.size()).arg(count).arg(programDirectory().path()));
    printLibraries(printer);
}

void printOne(Printer& printer, const QString& given, const Module& module)
{
    const QString taken = baseName(given);
    if (taken != given)
        printer.line(QStringLiteral("%1 is taken as %2").arg(given, taken));
    const QString where =
        module.file.isEmpty() ? QStringLiteral("no file of it in ") + programDirectory().path() : module.file;
    printer.line(QStringLiteral("%1 is one of the product's own modules: %2").arg(module.name, where));
}

void printJson(Printer& printer, const std::vector<Module>& modules)
{
    QJsonArray moduleRows;
    for (const Module& module : modules)
        moduleRows.append(QJsonObject{{QStringLiteral("name"), module.name},
                                      {QStringLiteral("file"), module.file.isEmpty() ? QJsonValue() : module.file}});
    QJsonArray libraryRows;
    for (const LoadedLibrary& library : loadedLibraries())
        libraryRows.append(QJsonObject{{QStringLiteral("name"), library.name}, {QStringLiteral("path"), library.path}});
    printer.json(QJsonDocument(
        QJsonObject{{QStringLiteral("modules"), moduleRows}, {QStringLiteral("libraries"), libraryRows}}));
}

Problem noModule(const QString& given)
{
    const QString taken = baseName(given);
    const QString shown = taken == given ? given : QStringLiteral("%1, taken as %2,").arg(given, taken);
    return {Exit::NotFound, shown + QStringLiteral(" is none of the product's own modules")};
}

} // namespace

Exit runModules(Context& context)
{
    if (const auto problem = context.start(Purpose::Look))
        return context.fail(*problem);
    const bool isOne = context.hasArgument(0);
    const QString name = isOne ? baseName(context.argument(0)) : QString();
    if (isOne && !GetCurrentFileIsVORNARegAutoLoadFile(toWide(name).c_str()))
        return context.fail(noModule(context.argument(0)));
    const std::vector<Module> modules = isOne ? modulesNamed(name) : allModules();
    if (context.wantsJson())
        printJson(context.printer(), modules);
    else if (isOne)
        printOne(context.printer(), context.argument(0), modules.front());
    else
        printAll(context.printer(), modules);
    return Exit::Done;
}

} // namespace vruinfo::tool
