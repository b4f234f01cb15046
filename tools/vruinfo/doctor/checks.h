// The checks, each of which looks at one thing and tells what it finds. None changes anything on disk, and none waits
// for what may never come.
#pragma once

#include "command.h"
#include "doctor/finding.h"
#include "doctor/patient.h"

namespace vruinfo::tool::doctor
{

/// \name INI files
/// @{
[[nodiscard]] Findings checkIniFiles(const Patient& patient);
[[nodiscard]] Findings checkLocale(const Patient& patient);
[[nodiscard]] Findings checkCommandPrefix(const Patient& patient);
[[nodiscard]] Findings checkProductPrefix(const Patient& patient);
/// @}
/// \name Languages
/// @{
[[nodiscard]] Findings checkAnyLanguage(const Patient& patient);
[[nodiscard]] Findings checkLanguages(const Patient& patient);
[[nodiscard]] Findings checkLanguageNames(const Patient& patient);
/// @}
/// \name Start and identity
/// @{
[[nodiscard]] Findings checkStart(const Patient& patient);
[[nodiscard]] Findings checkPassedOver(const Patient& patient);
[[nodiscard]] Findings checkProfile(const Patient& patient);
/// @}
[[nodiscard]] Findings checkPartner(const Patient& patient);
/// \name Settings
/// @{
[[nodiscard]] Findings checkSettingsFile(const Patient& patient);
[[nodiscard]] Findings checkSettingsWritable(const Patient& patient);
[[nodiscard]] Findings checkSettingsLock(const Patient& patient);
[[nodiscard]] Findings checkLeftovers(const Patient& patient);
[[nodiscard]] Findings checkValues(const Patient& patient);
[[nodiscard]] Findings checkDefaults(const Patient& patient);
/// @}
/// \name Products list
/// @{
[[nodiscard]] Findings checkProductsFile(const Patient& patient);
[[nodiscard]] Findings checkProducts(const Patient& patient);
/// @}
/// \name User
/// @{
[[nodiscard]] Findings checkHome(const Patient& patient);
[[nodiscard]] Findings checkDirectories(const Patient& patient);
[[nodiscard]] Findings checkStyle(const Patient& patient);
[[nodiscard]] Findings checkMigration(const Patient& patient);
[[nodiscard]] Findings checkEditorExtension(const Patient& patient);
/// @}
/// \name Program files
/// @{
[[nodiscard]] Findings checkLibraries(const Patient& patient);
[[nodiscard]] Findings checkIconLibrary(const Patient& patient);
[[nodiscard]] Findings checkMessageBox(const Patient& patient);
/// @}

struct Check {
    const char* group; ///< What it belongs to; checks of one group stand together.
    Findings (*run)(const Patient& patient);
};

[[nodiscard]] Rows<Check> checks();

} // namespace vruinfo::tool::doctor
