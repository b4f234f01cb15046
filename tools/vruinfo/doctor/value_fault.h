// What is wrong with a value of the settings, or with the place where it stands.
#pragma once

#include <optional>

#include <QtCore/QString>
#include <QtCore/QVariant>

#include "doctor/finding.h"

namespace vruinfo::tool::doctor
{

/// Nothing for a value that the library can read and that is what it expects there.
[[nodiscard]] std::optional<Finding> faultOfValue(const QString& path, const QVariant& stored);

} // namespace vruinfo::tool::doctor
