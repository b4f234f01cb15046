// What a repair did, in the doctor's words.
#pragma once

#include <QtCore/QJsonObject>

#include "doctor/finding.h"
#include "repair.h"

namespace vruinfo::tool
{

/// A finding for each line that is not as it was, and one for the file; none where nothing is damaged. What is lost is
/// a warning.
[[nodiscard]] doctor::Findings repairFindings(const QString& file, const Repair& repair);
/// The same for scripts.
[[nodiscard]] QJsonObject repairJson(const Repair& repair, RepairMode mode);

} // namespace vruinfo::tool
