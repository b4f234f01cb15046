#include <QtCore/QFileInfo>

#include "VrUInfo/Lookups.h"
#include "VrUInfo/VornaLanguage.h"
#include "command_table.h"
#include "doctor/checks.h"
#include "doctor/file_state.h"
#include "doctor/library_test.h"
#include "place/trust.h"
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

/// Testing it is loading it, which runs what is in it.
bool mayBeTested(const QString& path, const Patient& patient)
{
    namespace internal = vruinfo::internal;
    const std::wstring directory = toWide(patient.installation + QLatin1Char('/'));
    return !internal::exceedsRightsOf(toWide(patient.settingsFile)) ||
           internal::trustedLibrary(toWide(path).c_str(), directory.c_str());
}

Findings libraryFindings(const Patient& patient, const QString& path)
{
    const bool isBareName = !path.contains(QLatin1Char('/'));
    const auto fault =
        isBareName ? std::nullopt
                   : faultFinding(path, {"partner.", Severity::Warning, Severity::Warning, kConsequence, newPath()});
    if (fault)
        return {*fault};
    if (!mayBeTested(path, patient))
        return {
            warning("partner.not-trusted", path,
                    QStringLiteral("Others than root can change it: a process with the rights of root does not load "
                                   "it, and neither does this one."),
                    QStringLiteral("Run %1 as the user whose settings they are.").arg(text(kProgram)))};
    return checkBrandLibrary({path, "partner.", Severity::Warning, text(kConsequence), kIcon, brandTexts(),
                              QStringLiteral("Complete or correct the brand's texts and picture, and build it anew.")});
}

QString besideLanguage(const Patient& patient, const QString& language)
{
    return patient.inInstallation(language + QStringLiteral("/VrCustomRes.so"));
}

bool isThere(const QString& path)
{
    const FileState::Kind kind = FileState::of(path).kind;
    return kind != FileState::Kind::Missing && kind != FileState::Kind::OutOfReach;
}

/// What the profile names goes before what stands beside the language.
QStringList librariesOf(const Patient& patient)
{
    QStringList libraries;
    const QString configured = patient.trial.partnerLibrary();
    if (!configured.isEmpty())
        libraries.append(configured);
    for (int id = 0; id < kVornLanguageCount; ++id) {
        const QString path = besideLanguage(patient, fromWide(VornaLanguage(id).shortName()));
        if (isThere(path) && !libraries.contains(path))
            libraries.append(path);
    }
    return libraries;
}

std::optional<Finding> unusedFinding(const Patient& patient)
{
    const QString configured = patient.trial.partnerLibrary();
    const QString beside = besideLanguage(patient, patient.trial.language());
    const bool isUsed = configured == beside || QFileInfo(configured) == QFileInfo(beside);
    if (configured.isEmpty() || isUsed || !isThere(beside))
        return std::nullopt;
    return note("partner.not-used", beside,
                QStringLiteral("The profile names another library, %1, so that this one is not used.").arg(configured),
                QStringLiteral("Where this one is meant: %1")
                    .arg(toolLine("rm", QStringLiteral("@profile/CommonSettings/CustomResFile"))));
}

std::optional<Finding> titleFinding(const Patient& patient)
{
    const bool isDecided = GetVornIniOEMMergeTitleValue(0) == GetVornIniOEMMergeTitleValue(1);
    if (isDecided)
        return std::nullopt;
    return note("partner.no-merge-title", patient.inInstallation(QStringLiteral("VORNA.ini")),
                QStringLiteral("[PartnerOEM] MergeTitle is not there, so that each program decides for itself whether "
                               "the brand's name goes into its title."),
                QStringLiteral("Write MergeTitle=1 into section [PartnerOEM], or MergeTitle=0 to keep it out."));
}

} // namespace

Findings checkPartner(const Patient& patient)
{
    const QStringList libraries = librariesOf(patient);
    Findings findings;
    for (const QString& library : libraries)
        append(findings, libraryFindings(patient, library));
    append(findings, unusedFinding(patient));
    if (!libraries.isEmpty())
        append(findings, titleFinding(patient));
    return findings;
}

} // namespace vruinfo::tool::doctor
