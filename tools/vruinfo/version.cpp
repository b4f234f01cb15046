#include "commands.h"

#include <algorithm>
#include <array>

#include <QtCore/QJsonObject>

#include "VrUInfo/Naming.h"
#include "VrUInfo/VornaConfig.h"
#include "context.h"
#include "loaded_libraries.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr int kLabelWidth = 20;

QString toolVersion()
{
    return text(VRUINFO_VERSION);
}

QString buildIdentifier()
{
    std::array<wchar_t, kVornPathCapacity> identifier{};
    const int length = GetVerNum(identifier.data(), static_cast<unsigned int>(identifier.size()), false);
    return length < 0 ? QString() : fromWide(identifier.data());
}

QString release()
{
    return QStringLiteral("%1.%2").arg(GetVornReleaseMajorVer()).arg(GetVornReleaseMinorVer());
}

QString runningQt()
{
    return text(qVersion());
}

QString libraryPath()
{
    for (const LoadedLibrary& library : loadedLibraries()) {
        if (library.name == QLatin1String("libVrUInfo.so"))
            return library.path;
    }
    return {};
}

struct Row {
    const char* label;
    const char* key; ///< In JSON.
    QString (*value)();
};

constexpr std::array<Row, 9> kRows = {{
    {"tool", "tool", toolVersion},
    {"build", "build", buildIdentifier},
    {"program version", "program", [] { return fromWide(GetVornProgramVersionString()); }},
    {"service pack", "servicePack", [] { return fromWide(GetServicePackageVersionString()); }},
    {"release", "release", release},
    {"product", "product", [] { return fromWide(GetCurrentProductName()); }},
    {"Qt it is built with", "qtBuild", [] { return text(QT_VERSION_STR); }},
    {"Qt it runs with", "qtRunning", runningQt},
    {"library", "library", libraryPath},
}};

} // namespace

Exit runVersion(Context& context)
{
    if (!context.wantsJson()) {
        for (const Row& row : kRows) {
            const QString value = row.value();
            context.printer().line(padded(text(row.label), kLabelWidth) +
                                   (value.isEmpty() ? QStringLiteral("none") : value));
        }
        return Exit::Done;
    }
    QJsonObject answer;
    for (const Row& row : kRows)
        answer.insert(text(row.key), row.value());
    context.printer().json(QJsonDocument(answer));
    return Exit::Done;
}

} // namespace vruinfo::tool
