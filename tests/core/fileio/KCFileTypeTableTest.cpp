#include "KCFileFormatRegistry.h"
#include "fileio/KCFileTypeTable.h"
#include "KCTempDir.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

// The table is the one place a file type is described: it must agree with the format
// library and with the fuzz targets, which are listed by hand in their build file.
TEST(KCFileTypeTable, AgreesWithTheFormatLibraryAndTheFuzzTargets)
{
    KCTestHost host;
    std::set<std::string> names;
    for (size_t i = 0; i < KCFileTypeTable::rows().size(); ++i) {
        const KCFileTypeRow &row = KCFileTypeTable::rows()[i];
        SCOPED_TRACE(row.type);
        EXPECT_EQ(row.type, LOADSAVE_FILETYPE(i)); // the type indexes the description table
        EXPECT_FALSE(KCFileTypeTable::description(row).empty());
        if (!row.formatName)
            continue;
        const KCFileFormatInfo *info = KCFileFormatRegistry::byName(row.formatName);
        ASSERT_NE(info, nullptr) << row.formatName;
        EXPECT_TRUE(row.readable);
        EXPECT_EQ(row.writable, info->writable) << row.formatName;
        names.insert(row.formatName);
    }

    const std::string build = readFile(std::string(KRLDV_TEST_DATA_DIR) + "/../../fuzz/CMakeLists.txt");
    std::smatch m;
    ASSERT_TRUE(std::regex_search(build, m, std::regex("set\\(KRLDV_FUZZ_FORMATS ([a-z ]+)\\)")));
    std::set<std::string> fuzzed;
    std::istringstream list(m[1].str());
    for (std::string name; list >> name;)
        fuzzed.insert(name);
    EXPECT_EQ(fuzzed, names);
}

TEST(KCFileTypeTable, KnowsEachTypesExtensionFamily)
{
    const KCFileTypeRow &motorola = *KCFileTypeTable::row(LS_MOTOROLA);
    EXPECT_TRUE(KCFileTypeTable::isFamilyExtension(motorola, "S3"));
    EXPECT_TRUE(KCFileTypeTable::isFamilyExtension(motorola, "srec"));
    EXPECT_FALSE(KCFileTypeTable::isFamilyExtension(motorola, "s19"));
    EXPECT_FALSE(KCFileTypeTable::isFamilyExtension(motorola, ""));
    EXPECT_FALSE(KCFileTypeTable::isFamilyExtension(motorola, "s"));
    EXPECT_EQ(KCFileTypeTable::row(LS_NOFORMAT), nullptr);
}
