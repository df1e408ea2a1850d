#include "view/KCDataViewLayoutSet.h"
#include "doc/KCLayoutNames.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// Text of `line` of `list`, trailing blanks removed.
std::string rowText(const KCDataViewLayout &l, LAYOUT_LIST list, int64_t line, const std::vector<uint8_t> &data)
{
    TAG_VIEW_ROW row;
    l.renderRow(list, line, data.data(), data.size(), 1, 0, row);
    const size_t end = row.text.find_last_not_of(' ');
    return end == std::string::npos ? std::string() : row.text.substr(0, end + 1);
}

struct Layouts : testing::Test
{
    KCTestHost host;
    KCDataViewLayoutSet set{&host};
    std::vector<uint8_t> data = std::vector<uint8_t>(0x8000, 0);
};

} // namespace

TEST_F(Layouts, StandardLayoutsInOrderAndByteRowGeometry)
{
    set.defineStandardLayouts(0x4000);
    ASSERT_EQ(set.count(), 3);
    EXPECT_EQ(set.GetBufferLayoutName(0), LAYOUT_BYTEVIEW);
    EXPECT_EQ(set.GetBufferLayoutName(1), LAYOUT_WORDVIEW);
    EXPECT_EQ(set.GetBufferLayoutName(2), LAYOUT_JEDVIEW);
    EXPECT_EQ(set.GetBufferLayoutName(3), "");

    const KCDataViewLayout &b = *set.layout(0);
    EXPECT_EQ(b.widestRow(), 76);
    const auto &data0 = b.blocks(LAYOUT_BODY)[0];
    EXPECT_EQ(data0.lineCount(), 1024);
    EXPECT_EQ(b.lineCount(LAYOUT_BODY), 1025); // plus the closing row
    EXPECT_EQ(b.findBlock(LAYOUT_BODY, 1025), -1);

    for (int i = 0; i < 16; ++i)
        data[0x3FF0 + i] = static_cast<uint8_t>('A' + i);
    const std::string last = rowText(b, LAYOUT_BODY, 1023, data);
    EXPECT_EQ(last, "00003FF0  41 42 43 44 45 46 47 48  49 4A 4B 4C 4D 4E 4F 50  ABCDEFGHIJKLMNOP");
    EXPECT_EQ(last.find("41"), 10u);
    EXPECT_EQ(last.find("49"), 35u);
    EXPECT_EQ(last.substr(60), "ABCDEFGHIJKLMNOP");
    EXPECT_EQ(rowText(b, LAYOUT_BODY, 1024, data), host.GetHostString(2472));
    EXPECT_EQ(rowText(b, LAYOUT_TOP, 2, data), std::string(76, '-'));
    EXPECT_EQ(rowText(b, LAYOUT_TOP, 1, data).substr(10, 25), "00 01 02 03 04 05 06 07  ");
}

TEST_F(Layouts, WordAndBitCellTexts)
{
    set.defineStandardLayouts(0x100);
    data[0] = 0x34;
    data[1] = 0x12;
    data[2] = 'x';
    EXPECT_EQ(rowText(*set.layout(1), LAYOUT_BODY, 0, data).substr(0, 20), "00000000  1234 0078 ");
    EXPECT_EQ(set.layout(1)->widestRow(), 67);

    data[0] = 0x01;
    data[1] = 0xFF;
    data[2] = 0xFE;
    data[32] = 1;
    const KCDataViewLayout &bits = *set.layout(2);
    EXPECT_EQ(rowText(bits, LAYOUT_BODY, 0, data).substr(0, 20), "00000000  1100 0000 ");
    EXPECT_EQ(rowText(bits, LAYOUT_BODY, 1, data).substr(0, 11), "00000032  1");
}

TEST_F(Layouts, Pic18FMapsFiveBlocksWithTheirDisplayOffsets)
{
    set.DefineBytePic18FLayout(LAYOUT_BYTEVIEW_PIC18F, 1);
    set.DefineBytePic18FLayout(LAYOUT_BYTEVIEW_PIC18F, 1);
    ASSERT_EQ(set.count(), 1);
    const KCDataViewLayout &l = *set.layout(0);
    EXPECT_EQ(rowText(l, LAYOUT_TOP, 2, data), std::string(63, '-'));

    struct Expect
    {
        const char *label;
        int64_t first, last, titleLine;
        const char *shown, *lastShown;
    };
    const Expect areas[] = {
        {"Code Memory:", 0x0000, 0x3FFF, 0, "0000000", "0003FF0"},
        {"IDs:", 0x4000, 0x4007, 1026, "0200000", "0200000"},
        {"Config:", 0x5000, 0x5003, 1029, "0300000", "0300000"},
        {"Device ID:", 0x6000, 0x6001, 1032, "03FFFFE", "03FFFFE"},
        {"EEPROM:", 0x7000, 0x70FF, 1035, "0F00000", "0F000F0"},
    };
    for (const Expect &a : areas) {
        EXPECT_EQ(rowText(l, LAYOUT_BODY, a.titleLine, data), a.label);
        const int b = l.findBlock(LAYOUT_BODY, a.titleLine + 1);
        ASSERT_GE(b, 0);
        const auto &blk = l.blocks(LAYOUT_BODY)[b];
        EXPECT_EQ(blk.firstAddress, a.first);
        EXPECT_EQ(blk.lastAddress, a.last);
        EXPECT_EQ(rowText(l, LAYOUT_BODY, blk.firstLine, data).substr(0, 7), a.shown) << a.label;
        EXPECT_EQ(rowText(l, LAYOUT_BODY, blk.lastLine, data).substr(0, 7), a.lastShown) << a.label;
        EXPECT_EQ(rowText(l, LAYOUT_BODY, blk.lastLine + 1, data), "");
        const TAG_VIEW_POSITION p = l.positionOfAddress(a.last, data.size());
        EXPECT_EQ(p.address, a.last);
        EXPECT_EQ(p.line, blk.lastLine);
    }
    EXPECT_EQ(l.lineCount(LAYOUT_BODY), 1054);
    EXPECT_EQ(rowText(l, LAYOUT_BODY, 1053, data), host.GetHostString(2472));
}

TEST_F(Layouts, ShortBlockShowsAndOffersOnlyItsBytes)
{
    set.DefineBytePic18FLayout(LAYOUT_BYTEVIEW_PIC18F, 1);
    const KCDataViewLayout &l = *set.layout(0);
    const int64_t idsLine = 1027;
    for (int i = 0; i < 16; ++i)
        data[0x4000 + i] = 0x2E;
    const std::string row = rowText(l, LAYOUT_BODY, idsLine, data);
    EXPECT_EQ(row, "0200000  2E 2E 2E 2E 2E 2E 2E 2E                            ........");
    // Right from the eighth byte skips the empty hex cells and lands on the first character.
    TAG_VIEW_POSITION p = l.positionOfAddress(0x4007, data.size());
    p = l.stepRight(l.stepRight(p, false, data.size()), false, data.size());
    EXPECT_EQ(p.column, 60);
    EXPECT_EQ(p.address, 0x4000);
    EXPECT_FALSE(l.positionAt(idsLine, 9 + 25, data.size()).isValid());
    // Down from the code area's last row passes the empty and title rows.
    const TAG_VIEW_POSITION down = l.stepLine(l.positionOfAddress(0x3FFC, data.size()), 1, data.size());
    EXPECT_EQ(down.address, 0x4007);
    // A buffer that ends inside a block cuts the block there.
    EXPECT_FALSE(l.positionOfAddress(0x5000, 0x5000).isValid());
}
