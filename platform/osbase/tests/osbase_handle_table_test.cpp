#include "osbase/handle_table.h"

#include "VrOsBase/VrOsBase.h"

#include <gtest/gtest.h>

#include <set>

namespace
{

using vrosbase::internal::HandleTable;

TEST(HandleTableTest, GivesWhatWasAddedUntilItIsRemoved)
{
    HandleTable<int> table;
    void* const handle = table.add(std::make_shared<int>(7));
    ASSERT_NE(table.get(handle), nullptr);
    EXPECT_EQ(*table.get(handle), 7);
    EXPECT_TRUE(table.remove(handle));
    EXPECT_EQ(table.get(handle), nullptr);
    EXPECT_FALSE(table.remove(handle));
}

TEST(HandleTableTest, ObjectInUseOutlivesItsHandle)
{
    HandleTable<int> table;
    void* const handle = table.add(std::make_shared<int>(7));
    const auto value = table.get(handle);
    EXPECT_TRUE(table.remove(handle));
    EXPECT_EQ(*value, 7);
}

TEST(HandleTableTest, NoHandleComesTwiceAndNoneIsReserved)
{
    HandleTable<int> one;
    HandleTable<int> other;
    std::set<void*> seen = {nullptr, INVALID_HANDLE_VALUE, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE};
    for (int i = 0; i < 1000; ++i) {
        void* const handle = one.add(std::make_shared<int>(i));
        EXPECT_TRUE(seen.insert(handle).second);
        EXPECT_TRUE(one.remove(handle));
        EXPECT_TRUE(seen.insert(other.add(std::make_shared<int>(i))).second);
    }
}

TEST(HandleTableTest, HandleOfOneTableIsNoneOfAnother)
{
    HandleTable<int> one;
    HandleTable<int> other;
    void* const handle = one.add(std::make_shared<int>(7));
    EXPECT_EQ(other.get(handle), nullptr);
    EXPECT_FALSE(other.remove(handle));
    EXPECT_TRUE(one.remove(handle));
}

} // namespace
