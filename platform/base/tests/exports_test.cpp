// What leaves the libraries, and what they load.

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "child_process.h"

namespace
{

using Names = std::set<std::string>;

Names linesOf(std::istream&& text)
{
    Names lines;
    for (std::string line; std::getline(text, line);)
        lines.insert(line);
    return lines;
}

/// The names behind address and kind.
Names exportsOf(const char* library)
{
    Names names;
    for (const std::string& line : linesOf(std::istringstream(outputOf({"nm", "-DC", "--defined-only", library}))))
        names.insert(line.substr(line.find(' ') + 3));
    return names;
}

std::string neededBy(const char* library)
{
    return outputOf({"readelf", "-d", library});
}

TEST(ExportsTest, LibraryExportsExactlyTheList)
{
    const Names expected = linesOf(std::ifstream(SYMBOLS));
    EXPECT_GT(expected.size(), 20U);
    EXPECT_EQ(exportsOf(LIBRARY), expected);
}

TEST(ExportsTest, UiLibraryExportsItsOneFunction)
{
    EXPECT_EQ(exportsOf(UI_LIBRARY), Names{"VrShowQtMessageBox"});
}

TEST(ExportsTest, LibraryLoadsNothingOfWindows)
{
    const std::string needed = neededBy(LIBRARY);
    EXPECT_NE(needed.find("libQt5Core"), std::string::npos);
    EXPECT_EQ(needed.find("libQt5Gui"), std::string::npos);
    EXPECT_EQ(needed.find("libQt5Widgets"), std::string::npos);
}

TEST(ExportsTest, SonameCarriesNoVersion)
{
    EXPECT_NE(neededBy(LIBRARY).find("soname: [libVrPlatformBase.so]"), std::string::npos);
}

} // namespace
