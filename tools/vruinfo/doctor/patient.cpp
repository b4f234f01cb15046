#include "doctor/patient.h"

#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

namespace vruinfo::tool::doctor
{
namespace
{

QFileInfo executable()
{
    return QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget());
}

} // namespace

QString installationDirectory()
{
    return executable().path();
}

Patient::Patient(const Context& context) :
    installation(installationDirectory()), program(executable().fileName()), names(SettingsNames::of(context)),
    settingsFile(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QLatin1Char('/') +
                 names.file()),
    trial(Trial::of(context))
{
}

} // namespace vruinfo::tool::doctor
