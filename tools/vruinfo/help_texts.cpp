#include "help_texts.h"

namespace vruinfo::tool
{
namespace
{

constexpr char kAbout[] =
    "Shows and changes what the product-information library knows. The tool belongs into the program directory of an\n"
    "application, beside its executable: that directory is the installation it tells about, and the settings are "
    "those\n"
    "of the user who runs it. Looking changes nothing. Only set, rm, import and first-run write, and say what they "
    "did.\n";

constexpr char kTreePaths[] =
    "Settings tree:\n"
    "  PATH is a key path from the top, with \"/\" (or \"\\\") between its parts, such as\n"
    "  Software/HALVIK/VORNA/2026/CurVer, or begins with one of the roots\n"
    "    @product       Software/<company>/<product>\n"
    "    @version       @product/<version>\n"
    "    @language      @version/<language>\n"
    "    @profiles      @language/Profiles\n"
    "    @profile       @profiles/<current profile>\n"
    "    @applications  @language/Applications\n"
    "    @recent        @language/Recent File List\n"
    "    @settings      @language/Settings\n"
    "    @userconfig    @settings/UserConfig\n"
    "  For a value, the last part is its name. A value whose name is empty or holds a separator cannot be addressed.\n";

constexpr char kExitCodes[] = "Exit codes:\n"
                              "  0  done\n"
                              "  1  failed\n"
                              "  2  wrong command line, nothing was done\n"
                              "  3  not found\n"
                              "  4  doctor: warnings, the application runs\n"
                              "  5  doctor: errors, something does not work\n";

} // namespace

const char* aboutText()
{
    return kAbout;
}

const char* treePathsText()
{
    return kTreePaths;
}

const char* exitCodesText()
{
    return kExitCodes;
}

} // namespace vruinfo::tool
