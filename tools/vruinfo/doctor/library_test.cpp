#include "doctor/library_test.h"

#include <QtCore/QFile>
#include <QtCore/QStringList>

#include "VrOsBase/VrOsBase.h"
#include "command.h"
#include "doctor/isolated.h"
#include "text.h"

namespace vruinfo::tool::doctor
{
namespace
{

QString reinstall()
{
    return QStringLiteral("Put the library of the installation package in its place.");
}

Finding finding(const ResourceLibrary& library, Severity severity, const char* id, const QString& meaning)
{
    return {severity, text(library.idPrefix) + text(id), library.path, meaning, reinstall()};
}

Finding notLoadable(const ResourceLibrary& library, const QString& message)
{
    return finding(library, library.whenNotLoadable, "not-loadable",
                   QStringLiteral("It cannot be loaded, %1; the loader says: %2.").arg(library.consequence, message));
}

/// A text may be longer than the place, which does not matter here.
bool hasText(HMODULE module, unsigned int id)
{
    wchar_t place[2];
    return LoadStringW(module, id, place, 2) > 0;
}

QStringList missingTexts(HMODULE module, const std::vector<unsigned int>& ids)
{
    QStringList missing;
    for (const unsigned int id : ids) {
        if (!hasText(module, id))
            missing.append(QString::number(id));
    }
    return missing;
}

Findings examine(const ResourceLibrary& library)
{
    const HMODULE module = LoadLibraryW(toWide(library.path).c_str());
    if (!module)
        return {notLoadable(library, fromWide(VrGetLoaderMessage()))};
    Findings findings;
    const QStringList missing = missingTexts(module, library.texts);
    if (!missing.isEmpty())
        findings.push_back(finding(library, Severity::Warning, "strings-missing",
                                   QStringLiteral("It lacks the texts %1, so that built-in ones or none are shown.")
                                       .arg(missing.join(QStringLiteral(", ")))));
    if (!QFile::exists(text(library.icon)))
        findings.push_back(finding(library, Severity::Warning, "no-icon",
                                   QStringLiteral("It lacks the application's icon (%1), so that windows have none.")
                                       .arg(text(library.icon))));
    return findings;
}

} // namespace

Findings checkResourceLibrary(const ResourceLibrary& library)
{
    const Finding broken = finding(library, Severity::Error, "not-loadable", QStringLiteral("Loading it"));
    return checkIsolated([&library] { return examine(library); }, broken);
}

std::vector<unsigned int> brandTexts()
{
    return {4091, 4092, 4095};
}

} // namespace vruinfo::tool::doctor
