#include "settings_names.h"

#include <array>

#include <QtCore/QSettings>

#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "context.h"
#include "place/user_settings.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

namespace names = vruinfo::internal;

QString givenOrIni(const std::optional<QString>& given, const wchar_t* key, const wchar_t* fallback)
{
    if (given && !given->isEmpty())
        return *given;
    std::array<wchar_t, names::kNameSize> value{};
    const unsigned int status =
        vornConfig()->readIniString(names::kProductSection, key, value.data(), names::kNameSize, names::kProductIni);
    return fromWide(status == Vorn::eOk ? value.data() : fallback);
}

} // namespace

SettingsNames SettingsNames::of(const Context& context)
{
    return {givenOrIni(context.option("company"), names::kCompanyNameKey, names::kDefaultCompany),
            givenOrIni(context.option("product"), names::kProductNameKey, names::kDefaultProduct),
            givenOrIni(std::nullopt, names::kVersionKey, names::kRelease)};
}

QString SettingsNames::file() const
{
    return QStringLiteral("%1/%2/%3/%2.conf").arg(company, product, release);
}

QString SettingsNames::sharedFile() const
{
    return QStringLiteral("%1/%2/%3.conf").arg(company, product, release);
}

void openSettingsUntouched(const SettingsNames& names)
{
    const QString organisation = QStringLiteral("%1/%2/%3").arg(names.company, names.product, names.release);
    g_globalSettings = vruinfo::internal::openUserSettings<QSettings>(organisation, names.product).release();
}

} // namespace vruinfo::tool
