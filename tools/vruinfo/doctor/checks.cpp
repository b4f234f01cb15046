#include "doctor/checks.h"

namespace vruinfo::tool::doctor
{
namespace
{

constexpr char kIniFiles[] = "INI files";
constexpr char kLanguages[] = "Languages";
constexpr char kStart[] = "Start";
constexpr char kPartner[] = "Partner brand";
constexpr char kSettings[] = "Settings";
constexpr char kProducts[] = "Products list";
constexpr char kUser[] = "User";
constexpr char kProgram[] = "Program files";

constexpr Check kChecks[] = {
    {kStart, checkStart},
    {kStart, checkPassedOver},
    {kStart, checkProfile},
    {kIniFiles, checkIniFiles},
    {kIniFiles, checkLocale},
    {kIniFiles, checkCommandPrefix},
    {kIniFiles, checkProductPrefix},
    {kLanguages, checkAnyLanguage},
    {kLanguages, checkLanguages},
    {kLanguages, checkLanguageNames},
    {kPartner, checkPartner},
    {kSettings, checkSettingsFile},
    {kSettings, checkSettingsWritable},
    {kSettings, checkSettingsLock},
    {kSettings, checkLeftovers},
    {kSettings, checkValues},
    {kSettings, checkDefaults},
    {kProducts, checkProductsFile},
    {kProducts, checkProducts},
    {kUser, checkHome},
    {kUser, checkDirectories},
    {kUser, checkStyle},
    {kUser, checkMigration},
    {kUser, checkEditorExtension},
    {kProgram, checkLibraries},
    {kProgram, checkIconLibrary},
    {kProgram, checkMessageBox},
};

} // namespace

Rows<Check> checks()
{
    return kChecks;
}

} // namespace vruinfo::tool::doctor
