// The settings file of a user and release, opened in one way by the library and by who looks at it from outside.
#pragma once

#include <memory>

#include <QtCore/QDir>
#include <QtCore/QSettings>
#include <QtCore/QString>

#include "place/file_kind.h"

namespace vruinfo::internal
{

/// Where the settings library keeps what it writes for the user.
[[nodiscard]] inline QString userSettingsDirectory()
{
    const QString given = QFile::decodeName(qgetenv("XDG_CONFIG_HOME"));
    const QString parent = given.startsWith(QLatin1Char('/')) ? QString() : QDir::homePath() + QLatin1Char('/');
    return parent + (given.isEmpty() ? QStringLiteral(".config") : given);
}

/// A settings object of the user. Opening a settings file is reading it to its end. Where something stands in its place
/// that may have none, the object's file is one below that, where nothing can be: it reads nothing and keeps nothing.
template <typename Settings>
[[nodiscard]] std::unique_ptr<Settings> openUserSettings(const QString& organisation, const QString& application)
{
    const QString name = application + QStringLiteral(".conf");
    const QString path = QStringLiteral("%1/%2/%3").arg(userSettingsDirectory(), organisation, name);
    if (hasAnEnd(path))
        return std::make_unique<Settings>(QSettings::NativeFormat, QSettings::UserScope, organisation, application);
    return std::make_unique<Settings>(path + QLatin1Char('/') + name, QSettings::NativeFormat);
}

} // namespace vruinfo::internal
