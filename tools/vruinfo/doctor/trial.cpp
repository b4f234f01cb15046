#include "doctor/trial.h"

#include <algorithm>
#include <array>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include "VrUInfo/Diagnostics.h"
#include "VrUInfo/Lookups.h"
#include "VrUInfo/VornaConfig.h"
#include "doctor/patient.h"
#include "text.h"
#include "value_text.h"

namespace vruinfo::tool::doctor
{
namespace
{

const VornStartEntry* entryOf(const wchar_t* piece)
{
    const std::vector<VornStartEntry>& record = vornStartRecord();
    const auto found = std::find_if(record.begin(), record.end(),
                                    [piece](const VornStartEntry& entry) { return entry.piece == piece; });
    return found == record.end() ? nullptr : &*found;
}

bool isOf(const wchar_t* piece, VornOrigin origin)
{
    const VornStartEntry* const entry = entryOf(piece);
    return entry && entry->origin == origin;
}

/// What is remembered begins with the top of the settings tree; what is simply not there is no news.
QJsonArray passedOverSettings()
{
    QJsonArray all;
    for (const VornStartEntry& entry : vornStartRecord()) {
        for (const std::wstring& reason : entry.passedOver) {
            const QString words = fromWide(reason);
            if (words.startsWith(QLatin1String("Software/")) && !words.endsWith(QLatin1String(": not there")))
                all.append(words);
        }
    }
    return all;
}

QString textValue(VornaConfig::Path root, const wchar_t* name)
{
    VornVariant value;
    const bool isThere = vornConfig()->getValue(root, name, value) == Vorn::eOk;
    return isThere && value.type == VornVariant::kVarString ? plainText(value) : QString();
}

QString pathFrom(unsigned int (*write)(wchar_t*))
{
    std::array<wchar_t, kVornPathCapacity> path{};
    return write(path.data()) == 0 ? QString() : fromWide(path.data());
}

QString rootPath(VornaConfig::Path root)
{
    std::array<wchar_t, kVornPathCapacity> path{};
    vornConfig()->getRegRootPath(root, path.data());
    return fromWide(path.data());
}

QJsonArray pathFacts()
{
    QJsonArray all;
    for (const NamedPath& path : namedPaths())
        all.append(QJsonArray{path.name, static_cast<int>(path.kind), path.path});
    return all;
}

QJsonObject facts()
{
    VornaConfig* const config = vornConfig();
    const QString style = textValue(VornaConfig::UserConfigRoot, L"Config/UIStyle");
    const VornStartEntry* const profile = isOf(L"profile", VornOrigin::Settings) ? entryOf(L"profile") : nullptr;
    return {{QStringLiteral("product"), fromWide(config->productName())},
            {QStringLiteral("language"), fromWide(config->language().shortName())},
            {QStringLiteral("version"), fromWide(config->version())},
            {QStringLiteral("hasAsked"), isOf(L"language", VornOrigin::Asked)},
            {QStringLiteral("passedOver"), passedOverSettings()},
            {QStringLiteral("recordedProfile"), profile ? fromWide(profile->value) : QString()},
            {QStringLiteral("profileItem"), rootPath(VornaConfig::CurrentProfileRoot)},
            {QStringLiteral("hasProfileItem"), config->isItemExist(VornaConfig::CurrentProfileRoot, nullptr)},
            {QStringLiteral("paths"), pathFacts()},
            {QStringLiteral("partnerLibrary"),
             textValue(VornaConfig::CurrentProfileRoot, L"CommonSettings\\CustomResFile")},
            {QStringLiteral("styleFile"), style.isEmpty() ? QString() : pathFrom(GetVornUIStyleConfigFilePath)},
            {QStringLiteral("editorExtension"), pathFrom(GetVrLispVSCodeExtensionDirectory)},
            {QStringLiteral("isMigrationPending"), GetIsNeedStartMigrator()}};
}

} // namespace

Trial Trial::of(const Context& context)
{
    Trial trial;
    trial.m_outcome = runIsolated([&] {
        const std::optional<Problem> problem = context.start(Purpose::Look);
        const QJsonObject told = problem ? QJsonObject{{QStringLiteral("problem"), problem->text}} : facts();
        return QJsonDocument(told).toJson(QJsonDocument::Compact);
    });
    trial.m_facts = QJsonDocument::fromJson(trial.m_outcome.answer).object();
    return trial;
}

QStringList Trial::passedOver() const
{
    QStringList all;
    for (const auto& reason : m_facts.value(QStringLiteral("passedOver")).toArray())
        all.append(reason.toString());
    return all;
}

std::vector<NamedPath> Trial::paths() const
{
    std::vector<NamedPath> all;
    for (const auto& fact : m_facts.value(QStringLiteral("paths")).toArray()) {
        const QJsonArray path = fact.toArray();
        all.push_back({path.at(0).toString(), static_cast<PathKind>(path.at(1).toInt()), path.at(2).toString()});
    }
    return all;
}

} // namespace vruinfo::tool::doctor
