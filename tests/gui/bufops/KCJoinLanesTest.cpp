#include "bufops/KCJoinLanes.h"
#include "bufops/KCLaneJob.h"
#include "doc/KCDataDoc.h"
#include "KCTestHost.h"

#include <QComboBox>

#include <gtest/gtest.h>

#include <memory>

// Lanes listed in any order are picked by their names; OK joins them into a new document
// that holds the image they were split from.
TEST(KCJoinLanes, PicksTheLanesByNameAndJoinsThemIntoANewDocument)
{
    KCTestHost host;
    host.defaultBufferSize = 0x40;
    KCDataDoc source;
    for (uint32_t a = 0; a < 0x40; ++a)
        source.SetData(uint8_t(a * 5 + 1), a);
    std::vector<std::unique_ptr<KCDataDoc>> docs;
    std::vector<KCDataDoc *> listed;
    docs.push_back(std::make_unique<KCDataDoc>()); // not a lane
    docs.back()->SetTitle("other.bin");
    for (uint32_t lane = 0; lane < 4; ++lane) {
        docs.push_back(std::make_unique<KCDataDoc>());
        KCLaneJob::PrepareLaneDoc(*docs.back(), 0x10, "image.hex", 8, 32, lane);
        KCLaneJob::SplitLane(source, 0, 0x3F, 32, 8, lane, *docs.back());
    }
    for (auto it = docs.rbegin(); it != docs.rend(); ++it)
        listed.push_back(it->get());
    std::unique_ptr<KCDataDoc> joined;

    KCJoinLanes dlg(listed, [&] {
        joined = std::make_unique<KCDataDoc>();
        return joined.get();
    });
    auto *wide = qobject_cast<QComboBox *>(dlg.control(KCJoinLanes::IDC_WIDE_WIDTH));
    ASSERT_TRUE(wide);
    ASSERT_EQ(wide->count(), 3);
    wide->setCurrentIndex(1); // 8 into 32: four lanes
    for (int lane = 0; lane < 4; ++lane)
        EXPECT_EQ(qobject_cast<QComboBox *>(dlg.control(KCJoinLanes::IDC_LANE_DOC + lane))->currentIndex(), 3 - lane);
    dlg.OnOK();
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
    ASSERT_TRUE(joined);
    EXPECT_EQ(joined->GetTitle(), "image.hex [joined]");
    ASSERT_EQ(joined->GetBufferSize(), 0x40u);
    for (uint32_t a = 0; a < 0x40; ++a)
        ASSERT_EQ(joined->GetData(a), source.GetData(a)) << a;
    EXPECT_EQ(joined->mainBufferParam()->checksum, KCLaneJob::ByteSum(*joined, 0, 0x3F));
    ASSERT_TRUE(joined->Undo()); // the join is one step
    EXPECT_FALSE(joined->Undo());
}
