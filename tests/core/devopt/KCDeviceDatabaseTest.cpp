// The device database checks itself: every device is consistent with its layout, ranges and
// record, and bad files are told with their name and line.
#include "devopt/KCDeviceDatabase.h"
#include "devopt/KCOptionTypeRegistry.h"
#include "doc/KCAlgoKeys.h"
#include "doc/KCLayoutNames.h"
#include "doc/cAlgoParam.h"
#include "fileio/KCFormatNames.h"

#include <gtest/gtest.h>

#include <set>

namespace {

const KCDeviceDatabase &database()
{
    static KCDeviceDatabase db = [] {
        KCDeviceDatabase d;
        EXPECT_TRUE(d.load(std::string(KRLDV_SOURCE_DATA_DIR) + "/devices")) << d.error();
        return d;
    }();
    return db;
}

} // namespace

TEST(DeviceDatabase, EveryDeviceIsConsistent)
{
    const KCDeviceDatabase &db = database();
    ASSERT_GE(db.devices().size(), 60u);
    std::set<uint32_t> types;
    const std::set<std::string> layouts = {LAYOUT_BYTEVIEW, LAYOUT_WORDVIEW, LAYOUT_JEDVIEW, LAYOUT_BYTEVIEW_OFFSET,
                                           LAYOUT_BYTEVIEW_PIC18F};
    for (const DEVICE_KRLXDEF_ITEM &d : db.devices()) {
        SCOPED_TRACE(d.name);
        EXPECT_FALSE(d.vendor.empty());
        EXPECT_TRUE(types.insert(d.type).second) << "type given twice";
        EXPECT_TRUE(layouts.count(d.layout)) << d.layout;
        EXPECT_LE(d.BSA, d.BEA);
        EXPECT_LT(d.BEA, d.bufferSize);
        const uint32_t unit = uint32_t(d.dataWidth / 8);
        EXPECT_EQ((d.BEA - d.BSA + 1) % unit, 0u);
        EXPECT_EQ(d.DEA - d.DSA + 1, (d.BEA - d.BSA + 1) / unit);
        EXPECT_GE(d.DMA, d.DEA);
        EXPECT_NE(KCFormatNames::loadSaveType(d.defaultFileType), LS_INVALID) << d.defaultFileType;
        EXPECT_TRUE(KCOptionTypeRegistry::shared().isRegistered(d.optionType)) << d.optionType;
        EXPECT_FALSE(KCOptionTypeRegistry::shared().pages(d.optionType).empty());
        // Fuse maps: one byte per fuse, shown and checksummed as a fuse map.
        EXPECT_EQ(d.fuseCount != 0, d.layout == LAYOUT_JEDVIEW);
        if (d.fuseCount) {
            EXPECT_EQ(d.bufferSize, d.fuseCount);
            EXPECT_EQ(d.defaultFileType, "jedec");
        }
        EXPECT_EQ(d.kind == DEVICE_KIND_OFFSET, d.layout == LAYOUT_BYTEVIEW_OFFSET);
        EXPECT_EQ(d.kind == DEVICE_KIND_OFFSET, d.addressOffset != 0);
        EXPECT_EQ(d.engine.empty(), d.engineChip.empty());
        // The record takes the device: ranges, option bytes and keys fit and read back.
        cAlgoParam algo(1, nullptr, nullptr, 1);
        ASSERT_TRUE(algo.CfgAlgoDataOnDeviceSelect(d));
        KCAlgoKeys keys(algo.algoUiData());
        for (const auto &[key, value] : d.numericKeys)
            EXPECT_EQ(keys.numeric(key), value) << key;
        for (const auto &[key, value] : d.textKeys) {
            std::string text;
            EXPECT_TRUE(keys.text(key, text)) << key;
            EXPECT_EQ(text, value);
        }
        for (const auto &[offset, value] : d.optionBytes) {
            EXPECT_GE(offset, ALGODATA_OPTION_FIELDS);
            EXPECT_LT(offset, ALGODATA_TEXT_FIELDS);
        }
    }
    // Names are found whatever their case; a pattern matches names and vendors.
    ASSERT_NE(db.find("w25q128fv"), nullptr);
    EXPECT_EQ(db.find("W25Q128FV")->engineChip, "W25Q128.V");
    EXPECT_GE(db.match("winbond").size(), 5u);
    EXPECT_EQ(db.match("").size(), db.devices().size());
}

TEST(DeviceDatabase, BadFilesAreToldWithFileAndLine)
{
    struct Case
    {
        const char *text;
        const char *expected;
    };
    const Case cases[] = {
        {"{\n \"family\": \"X\",\n \"devices\": [\n  {\"name\": \"A\", \"size\": 16,}\n ]\n}", "f.json: line 4:"},
        {"{\"family\": \"X\", \"devices\": [\n{\"name\": \"A\"}\n]}", "f.json: line 2: A: size: missing or 0"},
        {"{\"family\": \"X\", \"devices\": [\n{\"name\": \"A\", \"size\": 16, \"sise\": 1}]}", "unknown field \"sise\""},
        {"{\"family\": \"X\", \"devices\": [{\"name\": \"A\", \"size\": \"0x1G\"}]}", "size: \"0x1G\" is not a number"},
        {"{\"family\": \"X\", \"devices\": [{\"name\": \"A\", \"size\": 16, \"dataWidth\": 12}]}", "dataWidth: 12"},
        {"{\"family\": \"X\", \"devices\": [{\"name\": \"A\", \"size\": 16}, {\"name\": \"a\", \"size\": 8}]}",
         "given twice"},
        {"{\"family\": \"X\", \"defaults\": {\"name\": \"A\"}, \"devices\": []}", "gives no device name"},
        {"[1, 2]", "a family file holds"},
        {"{\"family\": \"X\", \"devices\": [{\"name\": \"A\", \"size\": 16, \"BSA\": -1}]}", "BSA: a whole number"},
    };
    for (const Case &c : cases) {
        KCDeviceDatabase db;
        EXPECT_FALSE(db.loadText(c.text, "f.json")) << c.text;
        EXPECT_NE(db.error().find(c.expected), std::string::npos) << db.error();
        EXPECT_TRUE(db.devices().empty());
    }
    KCDeviceDatabase db;
    EXPECT_FALSE(db.load("/nonexistent-device-folder"));
    EXPECT_NE(db.error().find("/nonexistent-device-folder"), std::string::npos);
}

// A family's defaults hold for every device unless it says otherwise; ranges follow the size.
TEST(DeviceDatabase, DefaultsAndDerivedRanges)
{
    KCDeviceDatabase db;
    ASSERT_TRUE(db.loadText(R"({"family": "F", "typeBase": "0x12", "defaults": {"dataWidth": 16, "optionType": 3},
        "devices": [{"name": "A", "size": 256}, {"name": "B", "size": "0x200", "dataWidth": 8, "BSA": "0x100"}]})",
                            "f.json"))
        << db.error();
    const DEVICE_KRLXDEF_ITEM &a = *db.find("A");
    EXPECT_EQ(a.type, 0x120001u);
    EXPECT_EQ(a.optionType, 3u);
    EXPECT_EQ(a.BEA, 0xFFu);
    EXPECT_EQ(a.DEA, 0x7Fu); // words
    EXPECT_EQ(a.layout, LAYOUT_WORDVIEW);
    const DEVICE_KRLXDEF_ITEM &b = *db.find("B");
    EXPECT_EQ(b.type, 0x120002u);
    EXPECT_EQ(b.BEA, 0x1FFu);
    EXPECT_EQ(b.DEA, 0xFFu); // DSA 0 plus the 0x100 bytes from BSA
    EXPECT_EQ(b.familyName, "F");
}
