// The list of installed products under faults that are its own, besides the shared ones. What each test sees is the row
// of its name in docs/faults.md.
#include <gtest/gtest.h>

#include "faulty_file.h"
#include "unprivileged.h"

using namespace faults;
using vrtest::setMode;

namespace
{

TEST_F(ProductsList, ThatIsRemovedWithItsDirectoryWhileAHostRuns)
{
    expectRow({"start", "rm -r " + directory().string(), "list"});
}

TEST_F(ProductsList, WhenNoFileCanBeOpened)
{
    expectRow({"start", "no descriptors", "list"});
}

TEST_F(ProductsList, InAHomeThatCannotBeWritten)
{
    fs::remove_all(site().home() / ".local");
    setMode(site().home(), 0555);
    expectRow();
}

} // namespace
