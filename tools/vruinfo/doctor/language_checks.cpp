#include <QtCore/QDir>

#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "doctor/checks.h"
#include "doctor/file_state.h"
#include "doctor/library_test.h"
#include "text.h"

namespace vruinfo::tool::doctor
{
namespace
{

constexpr char kIcon[] = ":/VrUInfoRes/VrUInfoRes/IDI_VORNA_OEM_APPLICATION_EXE";

std::vector<QString> shortNames()
{
    std::vector<QString> names;
    names.reserve(kVornLanguageCount);
    for (int id = 0; id < kVornLanguageCount; ++id)
        names.push_back(fromWide(VornaLanguage(id).shortName()));
    return names;
}

bool isInstalled(const QString& name)
{
    return vornConfig()->isLangFolderExist(toWide(name).c_str());
}

std::vector<LibraryText> expectedTexts()
{
    std::vector<LibraryText> texts = brandTexts();
    const std::vector<LibraryText> names = languageTexts();
    texts.insert(texts.end(), names.begin(), names.end());
    return texts;
}

Finding notInstalled(const char* id, const QString& path, const QString& why, const QString& remedy)
{
    return warning(id, path, QStringLiteral("It %1, so that the language does not count as installed.").arg(why),
                   remedy);
}

/// Why something with a language's name is no installed language.
Finding folderFault(const QString& path)
{
    const QString remove = QStringLiteral("Remove it and install the language, or leave the language out.");
    const FileState state = FileState::of(path);
    if (state.kind == FileState::Kind::DanglingLink)
        return notInstalled("language.dangling-link", path, QStringLiteral("is a link to nothing"), remove);
    if (state.kind == FileState::Kind::OutOfReach)
        return notInstalled("language.unreadable", path, QStringLiteral("lies where this user may not look"),
                            QStringLiteral("Let this user enter the directories above it."));
    if (state.kind != FileState::Kind::Directory)
        return notInstalled("language.not-a-folder", path, QStringLiteral("is no folder"), remove);
    if (!state.isReadable)
        return notInstalled("language.unreadable", path, QStringLiteral("cannot be read by this user"),
                            QStringLiteral("Let everybody read it: chmod -R a+rX %1").arg(shellWord(path)));
    return notInstalled("language.no-library", path, QStringLiteral("holds no *.so"),
                        QStringLiteral("Put the language's libVrUInfoRes.so there, or remove the folder."));
}

Findings resourceFindings(const QString& folder)
{
    const QString path = folder + QLatin1Char('/') + fromWide(vruinfo::internal::kLanguageLibrary);
    const auto fault = faultFinding(
        path, {"language.library-", Severity::Error, Severity::Error,
               "so that a start in this language, which counts as installed, fails with status 5",
               QStringLiteral("Put the library of the installation package there, or remove the folder.")});
    if (fault)
        return {*fault};
    return checkResourceLibrary({path, "language.library-", Severity::Error,
                                 QStringLiteral("so that the language has no texts and no icon"), kIcon,
                                 expectedTexts(), reinstallLibrary()});
}

Findings languageFindings(const QString& folder, const QString& name)
{
    if (!isInstalled(name))
        return FileState::of(folder).kind == FileState::Kind::Missing ? Findings{} : Findings{folderFault(folder)};
    Findings findings = resourceFindings(folder);
    append(findings, faultFinding(folder + QStringLiteral("/Help/VrHelp.pdf"),
                                  {"language.help-", Severity::Warning, Severity::Warning,
                                   "so that there is no help in this language",
                                   QStringLiteral("Put the help file of the installation package there.")}));
    return findings;
}

std::optional<Finding> caseFinding(const Patient& patient, const QString& entry)
{
    for (const QString& name : shortNames()) {
        if (entry != name && entry.compare(name, Qt::CaseInsensitive) == 0)
            return warning(
                "language.case", patient.inInstallation(entry),
                QStringLiteral("A language's folder is found by its exact name only, which is %1.").arg(name),
                QStringLiteral("Rename it: mv %1 %2")
                    .arg(shellWord(patient.inInstallation(entry)), shellWord(patient.inInstallation(name))));
    }
    return std::nullopt;
}

} // namespace

Findings checkAnyLanguage(const Patient& patient)
{
    for (const QString& name : shortNames()) {
        if (isInstalled(name))
            return {};
    }
    return {
        error("language.none", patient.installation,
              QStringLiteral("No language is installed, so that the application ends with a message when it starts."),
              QStringLiteral("Install a language: a folder such as en-US with its libVrUInfoRes.so."))};
}

Findings checkLanguages(const Patient& patient)
{
    Findings findings;
    for (const QString& name : shortNames())
        append(findings, languageFindings(patient.inInstallation(name), name));
    return findings;
}

Findings checkLanguageNames(const Patient& patient)
{
    if (!FileState::of(patient.installation).isReadable)
        return {warning("program.unreadable", patient.installation,
                        QStringLiteral("This user cannot list it, so that not everything in it could be checked."),
                        QStringLiteral("Let everybody read it: chmod a+rX %1").arg(shellWord(patient.installation)))};
    Findings findings;
    const auto kinds = QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden;
    for (const QString& entry : QDir(patient.installation).entryList(kinds, QDir::Name))
        append(findings, caseFinding(patient, entry));
    return findings;
}

} // namespace vruinfo::tool::doctor
