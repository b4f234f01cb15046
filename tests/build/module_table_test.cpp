// The list of the product's own modules becomes a table, or the build fails and says why.
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "process.h"
#include "scratch_directory.h"

using namespace vrtest;

namespace
{

constexpr std::size_t kModules = 81;
const std::string kGenerator = REPOSITORY "/cmake/VrModuleTable.cmake";
const std::string kRealList = REPOSITORY "/src/api/auto_load_modules.txt";

using Names = std::vector<std::string>;

std::string linesOf(const Names& names)
{
    std::string lines;
    for (const std::string& name : names)
        lines += name + "\n";
    return lines;
}

std::string rowsOf(const Names& names)
{
    std::string rows;
    for (const std::string& name : names)
        rows += "L\"" + name + "\",\n";
    return rows;
}

class ModuleTable : public testing::Test
{
protected:
    static Names namesOf(std::size_t count)
    {
        Names names;
        for (std::size_t i = 0; i < count; ++i)
            names.push_back("VrModule" + std::to_string(i));
        return names;
    }
    /// The right number of names with one of them another.
    static Names withOne(const std::string& name)
    {
        Names names = namesOf(kModules);
        names[40] = name;
        return names;
    }
    ProcessResult generateFrom(const std::string& list) const
    {
        return runProcess({CMAKE_PROGRAM, "-DINPUT=" + list, "-DOUTPUT=" + table(),
                           "-DCOUNT=" + std::to_string(kModules), "-P", kGenerator});
    }
    ProcessResult generate(const std::string& lines) const
    {
        std::ofstream(list(), std::ios::binary) << lines;
        return generateFrom(list());
    }
    /// Expects a failure whose message has that in it, and no table.
    void expectRefused(const std::string& lines, const std::string& reason) const
    {
        const ProcessResult result = generate(lines);
        EXPECT_GT(result.exitCode, 0) << lines;
        // The program breaks its messages into lines.
        std::istringstream words(result.err);
        std::string message;
        for (std::string word; words >> word;)
            message += word + " ";
        EXPECT_NE(message.find(reason), std::string::npos) << message;
        EXPECT_FALSE(std::filesystem::exists(table()));
    }
    void expectRefused(const Names& names, const std::string& reason) const { expectRefused(linesOf(names), reason); }

    std::string list() const { return m_directory.file("modules.txt"); }
    std::string table() const { return m_directory.file("table.inc"); }

    ScratchDirectory m_directory;
};

TEST_F(ModuleTable, HasARowForEachOfEightyOneNamesInTheirOrder)
{
    const Names names = namesOf(kModules);
    EXPECT_EQ(generate(linesOf(names)).exitCode, 0);
    EXPECT_EQ(bytesOf(table()), rowsOf(names));
}

TEST_F(ModuleTable, NeedsNoLineEndBehindTheLastName)
{
    const Names names = namesOf(kModules);
    std::string lines = linesOf(names);
    lines.pop_back();
    EXPECT_EQ(generate(lines).exitCode, 0);
    EXPECT_EQ(bytesOf(table()), rowsOf(names));
}

TEST_F(ModuleTable, IsRefusedForEightyNames)
{
    expectRefused(namesOf(80), "has 80 names; there must be 81");
}

TEST_F(ModuleTable, IsRefusedForEightyTwoNames)
{
    expectRefused(namesOf(82), "has 82 names; there must be 81");
}

TEST_F(ModuleTable, IsRefusedForAnEmptyList)
{
    expectRefused("", "has 0 names; there must be 81");
}

TEST_F(ModuleTable, IsRefusedForAMissingList)
{
    EXPECT_GT(generateFrom(m_directory.file("none.txt")).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(table()));
}

TEST_F(ModuleTable, TakesNoEmptyLineForAName)
{
    const ProcessResult result = generate(linesOf(namesOf(80)) + "\n");
    EXPECT_GT(result.exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(table()));
}

TEST_F(ModuleTable, IsRefusedForANameThatStandsTwice)
{
    expectRefused(withOne("VrModule7"), "'VrModule7' stands there twice");
}

TEST_F(ModuleTable, IsRefusedForANameThatStandsTwiceInAnotherCase)
{
    expectRefused(withOne("VrMODULE7"), "'VrMODULE7' stands there twice");
}

TEST_F(ModuleTable, IsRefusedForANameThatDoesNotBeginWithVr)
{
    for (const char* const name : {"Module40", "vrModule40", "VRModule40", "XVrModule40", " VrModule40"})
        expectRefused(withOne(name), "is no module name");
}

TEST_F(ModuleTable, IsRefusedForWhatIsNoPlainName)
{
    for (const char* const name : {"Vr", "Vr Module", "Vr-Module", "VrModule.so", "VrModule40 ", "VrModule\"",
                                   "VrMo\\x", "VrGröße", "VrModule;VrOther", "VrModule[", "VrModule]"}) {
        const ProcessResult result = generate(linesOf(withOne(name)));
        EXPECT_GT(result.exitCode, 0) << name;
        EXPECT_FALSE(std::filesystem::exists(table())) << name;
    }
}

TEST_F(ModuleTable, TakesNoTwoNamesFromOneLine)
{
    Names names = namesOf(80);
    names.back() += ";VrOther";
    EXPECT_GT(generate(linesOf(names)).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(table()));
}

TEST_F(ModuleTable, IsMadeOfTheRealList)
{
    EXPECT_EQ(generateFrom(kRealList).exitCode, 0);
    Names names;
    std::ifstream list(kRealList);
    for (std::string name; std::getline(list, name);)
        names.push_back(name);
    EXPECT_EQ(names.size(), kModules);
    EXPECT_EQ(bytesOf(table()), rowsOf(names));
}

} // namespace
