#include "doc/KCAlgoKeys.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace {

struct AlgoKeys : testing::Test
{
    AlgoKeys() : keys(record)
    {
        EXPECT_TRUE(keys.build({{"COMSMIN", 1200}, {"COMS", 9600}, {"KN_N", 0x1234}, {"PGMFW", 1}, {"BSA", 0x100}},
                               {{"MCU_T", "AT89C51"}, {"ISPTYPE", "UART"}, {"EMPTY", ""}}));
    }
    TAG_UI_ALGODATA_KRL3 record{};
    KCAlgoKeys keys;
};

} // namespace

TEST_F(AlgoKeys, NamesMatchExactlyWhereverTheKeyLives)
{
    bool found = false;
    EXPECT_EQ(keys.numeric("COMS", &found), 9600u); // not its prefix of COMSMIN
    EXPECT_TRUE(found);
    EXPECT_EQ(keys.numeric("COMSMIN"), 1200u);
    EXPECT_EQ(keys.numeric("COM", &found), 0u);
    EXPECT_FALSE(found);
    EXPECT_EQ(keys.numeric("coms", &found), 0u);
    EXPECT_FALSE(found);
    EXPECT_EQ(keys.numeric("KN_N", &found), 0x1234u);
    EXPECT_TRUE(found);
    keys.numeric("SC_N", &found);
    EXPECT_FALSE(found);
    EXPECT_EQ(record.BSA, 0x100u);
    EXPECT_EQ(keys.numeric("BSA"), 0x100u);

    std::string text;
    EXPECT_TRUE(keys.text("MCU_T", text));
    EXPECT_EQ(text, "AT89C51");
    EXPECT_FALSE(keys.text("COM_T", text)); // its field starts with a zero byte
    EXPECT_TRUE(keys.text("ISPTYPE", text));
    EXPECT_EQ(text, "UART");
    EXPECT_TRUE(keys.text("EMPTY", text));
    EXPECT_EQ(text, "");
}

TEST_F(AlgoKeys, WritingChangesOnlyTheValueOfAKeyThatExists)
{
    TAG_UI_ALGODATA_KRL3 before = record;
    EXPECT_FALSE(keys.setNumeric("MISSING", 5));
    EXPECT_EQ(std::memcmp(&before, &record, sizeof record), 0);
    EXPECT_TRUE(keys.setNumeric("COMS", 0x01C200));
    EXPECT_TRUE(keys.setNumeric("KN_N", 7));
    EXPECT_EQ(keys.numeric("COMS"), 0x01C200u);
    EXPECT_EQ(keys.numeric("COMSMIN"), 1200u);
    EXPECT_EQ(keys.numeric("KN_N"), 7u);
    EXPECT_EQ(keys.numericKeys().size(), 4u); // COMSMIN, COMS, PGMFW and KN_N
}

TEST_F(AlgoKeys, KeysThatDoNotFitLeaveNoHalfTable)
{
    KCAlgoKeys::NumericKeys many;
    for (int i = 0; i < 400; ++i)
        many.emplace_back("KEY" + std::to_string(i), uint32_t(i));
    EXPECT_FALSE(keys.build(many, {}));
    bool found = true;
    keys.numeric("KEY0", &found);
    EXPECT_FALSE(found);
    EXPECT_TRUE(keys.numericKeys().empty());
}

// Whatever a record's table fields claim, lookups stay inside the record.
TEST(AlgoKeysRecord, GarbageTablesAreReadSafely)
{
    std::mt19937 rng(7);
    for (int round = 0; round < 200; ++round) {
        TAG_UI_ALGODATA_KRL3 record;
        auto *bytes = reinterpret_cast<uint8_t *>(&record);
        for (size_t i = 0; i < sizeof record; ++i)
            bytes[i] = uint8_t(rng() % 4 == 0 ? 0 : rng());
        KCAlgoKeys keys(record);
        std::string text;
        keys.numeric("PGMFW");
        keys.setNumeric("SNDDTA", 1);
        keys.text("ISPTYPE", text);
        keys.numericKeys();
        keys.textKeys();
    }
}
