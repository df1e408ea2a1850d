#include "devopt/KCOptionSettingsFile.h"
#include "doc/KCAlgoKeys.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <unistd.h>

TEST(KCOptionSettingsFile, SavedSettingsLoadBackAndBadFilesChangeNothing)
{
    TAG_UI_ALGODATA_KRL3 saved{};
    ASSERT_TRUE(
        KCAlgoKeys(saved).build({{"PGMFW", 1}, {"KN_N", 7}, {"COMS", 9600}}, {{"MCU_T", "X51"}, {"LOT", "a b"}}));
    saved.optionFields[74 - ALGODATA_OPTION_FIELDS] = 0xA5;
    saved.optionFields[sizeof saved.optionFields - 1] = 0x3C;
    char dir[] = "/tmp/krldv-options-XXXXXX";
    ASSERT_NE(::mkdtemp(dir), nullptr);
    const std::string path = std::string(dir) + "/uni.json";
    std::string error;
    ASSERT_TRUE(KCOptionSettingsFile::save(path, saved, "UNI-32", &error)) << error;

    TAG_UI_ALGODATA_KRL3 loaded{};
    loaded.BSA = 0x100; // not an option setting: stays
    std::string device;
    ASSERT_TRUE(KCOptionSettingsFile::load(path, loaded, &device, &error)) << error;
    EXPECT_EQ(device, "UNI-32");
    EXPECT_EQ(loaded.BSA, 0x100u);
    EXPECT_EQ(std::memcmp(loaded.optionFields, saved.optionFields, sizeof saved.optionFields), 0);
    KCAlgoKeys keys(loaded);
    EXPECT_EQ(keys.numeric("COMS"), 9600u);
    EXPECT_EQ(keys.numeric("KN_N"), 7u);
    std::string text;
    EXPECT_TRUE(keys.text("LOT", text));
    EXPECT_EQ(text, "a b");

    const TAG_UI_ALGODATA_KRL3 before = loaded;
    for (const char *bad : {"{", R"({"device":"X","optionFields":"00","numericKeys":[],"textKeys":[]})",
                            R"({"device":"X","numericKeys":[],"textKeys":[]})"}) {
        EXPECT_FALSE(KCOptionSettingsFile::fromText(bad, loaded, &device, &error)) << bad;
        EXPECT_EQ(std::memcmp(&before, &loaded, sizeof loaded), 0) << bad;
    }
    EXPECT_FALSE(KCOptionSettingsFile::load(std::string(dir) + "/none.json", loaded, &device, &error));
    EXPECT_NE(error.find("none.json"), std::string::npos);
    std::remove(path.c_str());
    ::rmdir(dir);
}
