// What the checks look at.
#pragma once

#include <QtCore/QString>

#include "context.h"
#include "doctor/trial.h"
#include "settings_names.h"

namespace vruinfo::tool::doctor
{

/// The directory of the executable.
[[nodiscard]] QString installationDirectory();

struct Patient {
    explicit Patient(const Context& context);

    QString installation; ///< The directory of the executable.
    QString program;      ///< The executable's name.
    SettingsNames names;
    QString settingsFile;
    Trial trial;

    [[nodiscard]] QString inInstallation(const QString& name) const { return installation + QLatin1Char('/') + name; }
};

} // namespace vruinfo::tool::doctor
