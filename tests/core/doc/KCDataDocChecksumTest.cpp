#include "doc/KCDataDoc.h"
#include "KCFakeDataView.h"
#include "host/KCHostStrings.h"
#include "KCTestHost.h"
#include "doc/cBufferSum.h"

#include <gtest/gtest.h>

#include <random>

namespace {

struct FuseDoc
{
    explicit FuseDoc(KCTestHost &host, uint64_t size) : view("JEDVIEW")
    {
        host.defaultBufferSize = size;
        host.fillByte = 0;
        doc = std::make_unique<KCDataDoc>();
        doc->viewItems()[0].view = &view;
    }
    KCFakeDataView view;
    std::unique_ptr<KCDataDoc> doc;
};

} // namespace

TEST(KCDataDocChecksum, RunningByteSumMatchesRecomputationAfterRandomEdits)
{
    KCTestHost host;
    host.defaultBufferSize = 4096;
    KCDataDoc doc;
    std::mt19937 rng(7);
    for (uint32_t a = 0; a < 4096; ++a)
        doc.AlgoParam().buffer(0).SetAt(a, uint8_t(rng()));
    doc.mainBufferParam()->LBSA = 100; // the running sum is kept over the load range only
    doc.mainBufferParam()->LBEA = 3999;
    doc.ComputeCheckSum(-1);

    for (int step = 0; step < 5000; ++step) {
        const uint32_t addr = rng() % 4096;
        switch (rng() % 3) {
        case 0:
            doc.SetData(uint8_t(rng()), addr);
            break;
        case 1:
            doc.SetDataWord(uint16_t(rng()), addr / 2);
            break;
        default: {
            // Swaps inside the kept range leave its byte sum as it is.
            const uint32_t from = 100 + rng() % 3800;
            const uint32_t to = from + 1 + 2 * (rng() % 40);
            if (doc.FlipBytes(from, to))
                doc.SetModifiedFlag(1);
        }
        }
        if (step % 97 == 0) {
            const uint32_t running = doc.mainBufferParam()->checksum;
            ASSERT_EQ(running, doc.ComputeCheckSum(-1)) << "step " << step;
        }
    }
    const uint32_t running = doc.mainBufferParam()->checksum;
    EXPECT_EQ(running, doc.ComputeCheckSum(-1));
    EXPECT_EQ(running, doc.GetCheckSum(100, 3999));
}

TEST(KCDataDocChecksum, FuseSumDriftsByTheDocumentedRule)
{
    KCTestHost host;
    FuseDoc f(host, 4096);
    KCDataDoc &doc = *f.doc;
    doc.SetData(1, 8);
    doc.SetData(1, 10);
    doc.SetData(1, 11);
    EXPECT_EQ(doc.GetCheckSum(8, 11), 3u); // before the first computation the kind is the byte sum
    EXPECT_EQ(doc.ComputeCheckSum(-1), 13u);
    EXPECT_EQ(doc.mainBufferParam()->checksumKind, CHECKSUM_KIND_FUSEMAP);

    // Nonzero over nonzero counts the weight again; zero takes it away.
    doc.SetData(3, 9);
    doc.SetData(5, 9);
    EXPECT_EQ(doc.mainBufferParam()->checksum, 13u + 2 + 2);
    doc.SetData(0, 9);
    EXPECT_EQ(doc.mainBufferParam()->checksum, 13u + 2);

    // A random run: the running value follows the rule, a recomputation the fuses.
    std::mt19937 rng(3);
    uint32_t model = doc.mainBufferParam()->checksum;
    for (int step = 0; step < 3000; ++step) {
        const uint32_t addr = rng() % 4096;
        const uint8_t value = uint8_t(rng() % 3);
        if (doc.GetData(addr) != value)
            model += value ? (1u << (addr & 7)) : -(1u << (addr & 7));
        doc.SetData(value, addr);
    }
    EXPECT_EQ(doc.mainBufferParam()->checksum, model);
    const auto &buf = doc.AlgoParam().buffer(0);
    EXPECT_EQ(doc.ComputeCheckSum(-1), cBufferSum::fuseSumReference(buf.data(), 4096, 0));
}

TEST(KCDataDocChecksum, RangeRulesAndStatusTexts)
{
    KCTestHost host;
    host.defaultBufferSize = 16;
    KCDataDoc doc;
    EXPECT_EQ(doc.GetCheckSum(5, 4), 0u);
    EXPECT_EQ(doc.GetCheckSum(0, 17), 0u);
    EXPECT_EQ(doc.GetCheckSum(0, 16), 16u * 0xFF); // to == size passes the bound

    // Whole buffer when the load range is unset.
    EXPECT_EQ(doc.ComputeCheckSum(-1), 16u * 0xFF);
    EXPECT_EQ(host.statusText(STATUSPANE_CHECKSUM), "Checksum 0x00000000-0x0000000F: 00000FF0");

    // An update outside the kept range does nothing.
    doc.mainBufferParam()->LBSA = 2;
    doc.mainBufferParam()->LBEA = 5;
    EXPECT_EQ(doc.ComputeCheckSum(-1), 4u * 0xFF);
    doc.SetData(0, 9);
    EXPECT_EQ(doc.mainBufferParam()->checksum, 4u * 0xFF);

    // A range outside the buffer keeps the old sum and says so.
    doc.mainBufferParam()->LBEA = 16;
    EXPECT_EQ(doc.ComputeCheckSum(-1), 0u);
    EXPECT_EQ(doc.mainBufferParam()->checksum, 4u * 0xFF);
    EXPECT_EQ(host.statusText(STATUSPANE_CHECKSUM), host.GetHostString(KCHostStrings::ChecksumInvalid));

    // A device range wins over the load range.
    doc.AlgoParam().setDeviceName("27C16");
    doc.AlgoParam().algoUiData().deviceRangeValid = 1;
    doc.AlgoParam().algoUiData().BSA = 0;
    doc.AlgoParam().algoUiData().BEA = 1;
    EXPECT_EQ(doc.ComputeCheckSum(-1), 2u * 0xFF);

    // The sum is always the selected view's, whichever view is named.
    TAG_BUFFER_PARAM other;
    TAG_DATADOC_VIEWITEM second = doc.viewItems()[0];
    second.bufferParam = &other;
    doc.viewItems().push_back(second);
    EXPECT_EQ(doc.ComputeCheckSum(1), 2u * 0xFF);
    EXPECT_EQ(other.checksum, 0u);
    EXPECT_EQ(doc.mainBufferParam()->checksum, 2u * 0xFF);

    doc.viewItems().clear();
    EXPECT_EQ(doc.ComputeCheckSum(-1), 0xFFFFFFFFu);
    EXPECT_EQ(doc.GetCheckSum(0, 1), 0xFFFFFFFFu);
}

TEST(KCDataDocChecksum, FuseStatusTextShowsTheLowTwoBytes)
{
    KCTestHost host;
    FuseDoc f(host, 0x10000);
    for (uint32_t a = 0; a < 0x10000; ++a)
        f.doc->AlgoParam().buffer(0).SetAt(a, 1);
    EXPECT_EQ(f.doc->ComputeCheckSum(-1), 0x10000u / 8 * 255);
    EXPECT_EQ(host.statusText(STATUSPANE_CHECKSUM), "Fuse checksum 0x00000000-0x0000FFFF: E000");
}
