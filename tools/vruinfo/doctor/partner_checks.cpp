#include <QtCore/QDir>

#include "VrUInfo/VornaLanguage.h"
#include "doctor/checks.h"
#include "doctor/file_state.h"
#include "doctor/library_test.h"
#include "text.h"

namespace vruinfo::tool::doctor
{
namespace
{

constexpr char kIcon[] = ":/VrCustomRes/VrCustomRes/IDI_VORNA_OEM_APPLICATION_EXE";
constexpr char kConsequence[] = "so that the product's own brand is shown instead of the partner's";

QString newPath()
{
    return QStringLiteral("Install the partner's library, or name it anew: %1 PATH")
        .arg(toolLine("set", QStringLiteral("@profile/CommonSettings/CustomResFile")));
}

Findings libraryFindings(const QString& path)
{
    const bool isBareName = !path.contains(QLatin1Char('/'));
    const auto fault =
        isBareName ? std::nullopt
                   : faultFinding(path, {"partner.", Severity::Warning, Severity::Warning, kConsequence, newPath()});
    if (fault)
        return {*fault};
    return checkResourceLibrary({path, "partner.", Severity::Warning, text(kConsequence), kIcon, brandTexts()});
}

} // namespace

Findings checkPartner(const Patient& patient)
{
    QStringList libraries;
    const QString configured = patient.trial.partnerLibrary();
    if (!configured.isEmpty())
        libraries.append(configured);
    for (int id = 0; id < kVornLanguageCount; ++id) {
        const QString path =
            patient.inInstallation(fromWide(VornaLanguage(id).shortName()) + QStringLiteral("/VrCustomRes.so"));
        const FileState::Kind kind = FileState::of(path).kind;
        const bool isThere = kind != FileState::Kind::Missing && kind != FileState::Kind::OutOfReach;
        if (isThere && !libraries.contains(path))
            libraries.append(path);
    }
    Findings findings;
    for (const QString& library : libraries)
        append(findings, libraryFindings(library));
    return findings;
}

} // namespace vruinfo::tool::doctor
