// Lock files that the settings library makes while it writes, and what they tell.
#pragma once

#include <QtCore/QString>

#include "doctor/finding.h"

namespace vruinfo::tool::doctor
{

/// \param id of the finding
/// \return nothing when there is no lock file
[[nodiscard]] std::optional<Finding> lockFinding(const char* id, const QString& lock);

} // namespace vruinfo::tool::doctor
