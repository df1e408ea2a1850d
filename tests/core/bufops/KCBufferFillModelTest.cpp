#include "bufops/KCBufferFillModel.h"
#include "doc/KCDataDoc.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

TEST(KCBufferFillModel, FillsOneOrAllBytesAndRefusesWhatIsNotInTheBuffer)
{
    KCTestHost host;
    host.defaultBufferSize = 64;
    host.fillByte = 0xA5;
    KCDataDoc doc;
    KCBufferFillModel fill(doc);
    ASSERT_TRUE(fill.isValid());
    EXPECT_EQ(fill.start(), 0u);
    EXPECT_EQ(fill.end(), 63u);
    EXPECT_EQ(fill.value(), 0xA5u);

    EXPECT_EQ(fill.apply(5, 5, 0x1FF), KCBufferFillModel::Filled); // one byte, the low eight bits
    EXPECT_EQ(doc.GetData(5), 0xFF);
    EXPECT_EQ(fill.apply(0, 63, 0), KCBufferFillModel::Filled);
    EXPECT_EQ(doc.GetData(63), 0);
    EXPECT_EQ(doc.mainBufferParam()->checksum, 0u);
    EXPECT_EQ(fill.apply(9, 8, 1), KCBufferFillModel::StartAfterEnd);
    EXPECT_EQ(fill.apply(60, 64, 1), KCBufferFillModel::Refused);
    EXPECT_EQ(doc.GetData(60), 0); // nothing written
    ASSERT_TRUE(doc.Undo());
    EXPECT_EQ(doc.GetData(63), 0xA5);
}
