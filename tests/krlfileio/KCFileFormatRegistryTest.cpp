#include "KCFileFormatRegistry.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

// Every row of the format table must be complete and unambiguous.
TEST(KCFileFormatRegistry, TableIsConsistent)
{
    std::set<std::string> names, extensions;
    for (const auto &f : KCFileFormatRegistry::formats()) {
        ASSERT_NE(f.name, nullptr);
        ASSERT_NE(f.create, nullptr) << f.name;
        EXPECT_TRUE(names.insert(f.name).second) << "duplicate name " << f.name;
        EXPECT_EQ(KCFileFormatRegistry::byName(f.name), &f);
    }
}
