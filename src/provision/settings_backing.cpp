// The settings object behind the tree, and its file.
#include <algorithm>
#include <array>
#include <memory>
#include <mutex>

#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <QtCore/QSettings>

#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "store/store_group.h"
#include "text/owned_text.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

namespace
{

/// Writes itself back, from the event loop, under the store lock: threads that work on the store meanwhile
/// wait, as they do for each other.
class LockedSettings final : public QSettings
{
public:
    using QSettings::QSettings;

protected:
    bool event(QEvent* event) override
    {
        const std::lock_guard<VrLocker> lock(storeLock());
        return QSettings::event(event);
    }
};

QString iniText(VornaConfig& config, const wchar_t* key, const wchar_t* fallback)
{
    std::array<wchar_t, kNameSize> text{};
    const unsigned int status = config.readIniString(kProductSection, key, text.data(), kNameSize, kProductIni);
    return toQString(status == Vorn::eOk ? text.data() : fallback);
}

QString givenOrIniText(const wchar_t* given, VornaConfig& config, const wchar_t* key, const wchar_t* fallback)
{
    return isEmpty(given) ? iniText(config, key, fallback) : toQString(given);
}

} // namespace

void VornaConfig::initRegObject(const wchar_t* company, const wchar_t* product)
{
    if (g_globalSettings)
        return;
    const QString companyName = givenOrIniText(company, *this, kCompanyNameKey, kDefaultCompany);
    const QString productName = givenOrIniText(product, *this, kProductNameKey, kDefaultProduct);
    const QString version = iniText(*this, kVersionKey, kRelease);
    const QString organisation = companyName + QLatin1Char('/') + productName + QLatin1Char('/') + version;
    auto settings =
        std::make_unique<LockedSettings>(QSettings::NativeFormat, QSettings::UserScope, organisation, productName);
    // A lock file found now was left behind: opening does not lock, and whoever still writes makes a new one.
    QFile::remove(settings->fileName() + QStringLiteral(".lock"));
    g_globalSettings = settings.release();
}

bool getConfigPath(int capacity, char* buffer)
{
    if (!g_globalSettings || !buffer)
        return false;
    const QByteArray path = QFile::encodeName(g_globalSettings->fileName());
    if (path.isEmpty() || path.size() >= capacity)
        return false;
    std::copy_n(path.constData(), path.size() + 1, buffer);
    return true;
}
