#include "bufops/KCLaneJob.h"
#include "bufops/cLaneError.h"
#include "doc/KCDataDoc.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace {

// A document of `size` random bytes, all of them data.
void randomImage(KCDataDoc &doc, uint64_t size, unsigned seed)
{
    std::mt19937 rng(seed);
    std::vector<uint8_t> bytes(size);
    for (uint8_t &b : bytes)
        b = uint8_t(rng());
    doc.AlgoParam().buffer(0).resize(size, 0xFF);
    doc.WriteRange(0, bytes.data(), size);
    doc.ComputeCheckSum(-1);
    doc.undoHistory().clear();
}

} // namespace

TEST(KCLaneJob, SplitIntoLaneDocumentsAndShuffleThemBackIdentically)
{
    KCTestHost host;
    host.defaultBufferSize = 16;
    KCDataDoc source;
    randomImage(source, 0x1000, 3);
    const uint64_t first = 0x100, last = 0x4FF;
    std::vector<std::unique_ptr<KCDataDoc>> lanes;
    std::vector<const KCDataDoc *> parts;
    for (uint32_t lane = 0; lane < 4; ++lane) {
        lanes.push_back(std::make_unique<KCDataDoc>());
        KCDataDoc &doc = *lanes.back();
        ASSERT_TRUE(KCLaneJob::PrepareLaneDoc(doc, 0x140, "image.hex", 8, 32, lane));
        const auto range = KCLaneJob::SplitLane(source, first, last, 32, 8, lane, doc);
        EXPECT_EQ(range, std::make_pair(uint64_t(0x40), uint64_t(0x13F)));
        EXPECT_EQ(doc.GetData(0x40), source.GetData(first + lane));
        EXPECT_EQ(doc.dataMap().ranges(), (std::vector<KCAddressRange>{{0x40, 0x13F}}));
        EXPECT_EQ(doc.mainBufferParam()->checksum, KCLaneJob::ByteSum(doc, 0x40, 0x13F));
        EXPECT_TRUE(doc.IsModified());
        parts.push_back(&doc);
    }
    EXPECT_EQ(lanes[1]->GetTitle(), "image.hex [Low  Word - Odd  Byte]");
    EXPECT_FALSE(KCLaneJob::RoundTrip(source, first, last, 32, 8, parts).has_value());

    // A lane mixed up is found at its first byte; a range off the units shifts every lane.
    std::swap(parts[1], parts[2]);
    EXPECT_EQ(KCLaneJob::RoundTrip(source, first, last, 32, 8, parts), std::optional<uint64_t>(first + 1));

    // The split is one step of the lane document's undo.
    ASSERT_TRUE(lanes[0]->Undo());
    EXPECT_EQ(lanes[0]->GetData(0x40), 0xFF);
    EXPECT_FALSE(lanes[0]->Undo());
}

TEST(KCLaneJob, ShuffleIntoAnotherDocumentIsOneStepAndKeepsItsChecksum)
{
    KCTestHost host;
    host.defaultBufferSize = 0x400;
    KCDataDoc narrow, wide;
    randomImage(narrow, 0x100, 5);
    wide.ComputeCheckSum(-1);
    const auto range = KCLaneJob::Shuffle(narrow, 0, 0xFF, 8, 16, 1, wide);
    EXPECT_EQ(range, std::make_pair(uint64_t(0), uint64_t(0x1FF)));
    EXPECT_EQ(wide.GetData(0x1FF), narrow.GetData(0xFF));
    EXPECT_EQ(wide.GetData(0x1FE), 0xFF);
    EXPECT_EQ(wide.mainBufferParam()->LBSA, 0u);
    EXPECT_EQ(wide.mainBufferParam()->LBEA, 0x1FFu);
    EXPECT_EQ(wide.mainBufferParam()->checksum, KCLaneJob::ByteSum(wide, 0, 0x1FF));
    ASSERT_TRUE(wide.Undo());
    EXPECT_EQ(wide.GetData(0x1FF), 0xFF);
    EXPECT_FALSE(wide.Undo());

    // Too small a destination: refused at the first byte past its end, the rest kept.
    KCDataDoc small;
    small.AlgoParam().buffer(0).resize(0x101, 0xFF);
    small.ComputeCheckSum(-1);
    int code = 0;
    try {
        KCLaneJob::Shuffle(narrow, 0, 0xFF, 8, 16, 0, small);
    } catch (int c) {
        code = c;
    }
    EXPECT_EQ(code, cLaneError::ByteRefused);
    EXPECT_EQ(small.GetData(0x100), narrow.GetData(0x80));
    EXPECT_EQ(small.mainBufferParam()->checksum, KCLaneJob::ByteSum(small, 0, 0x100));
}
