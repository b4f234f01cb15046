// Where the settings file lies, told without the library opening it.
#pragma once

#include <QtCore/QString>

namespace vruinfo::tool
{

class Context;

/// Names that decide where the settings file lies, found as the library finds them but without opening it.
struct SettingsNames {
    QString company;
    QString product;
    QString release;

    [[nodiscard]] static SettingsNames of(const Context& context);
    /// Below a configuration directory: "HALVIK/VORNA/2026/VORNA.conf".
    [[nodiscard]] QString file() const;
    /// What the settings library reads for all products of that name: "HALVIK/VORNA/2026.conf".
    [[nodiscard]] QString sharedFile() const;
};

/// Opens the settings as the library does, but leaves a lock file beside them alone: it may be that of a program at
/// work. The library takes the object that is there, which stays until the process is gone, so that it never writes.
void openSettingsUntouched(const SettingsNames& names);

} // namespace vruinfo::tool
