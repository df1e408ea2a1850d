#include "host/KCHostStrings.h"
#include "view/KCSearchHits.h"
#include "view/KCSearchModel.h"
#include "view/cBufferSearch.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Bytes = std::vector<uint8_t>;

int64_t byRule(const cBufferSearch &s, const Bytes &buf, int64_t from, int64_t to)
{
    return s.matchStepByRule([&](int64_t i) { return buf[static_cast<size_t>(i)]; }, from, to);
}

int64_t fast(const cBufferSearch &s, const Bytes &buf, int64_t from, int64_t to)
{
    return s.next(buf.data(), buf.size(), from, to);
}

} // namespace

TEST(BufferSearch, PartialMatchResumesInsideTheComparedBytes)
{
    const Bytes buf = {0xAA, 0xAA, 0xAA, 0xBB};
    cBufferSearch s({0xAA, 0xAA, 0xBB});
    EXPECT_EQ(byRule(s, buf, 0, 3), 1);
    EXPECT_EQ(fast(s, buf, 0, 3), 1);
    // The range end is inclusive: the match must end at or before it.
    EXPECT_EQ(byRule(s, buf, 0, 2), -1);
    EXPECT_EQ(fast(s, buf, 0, 2), -1);
    // A pattern longer than the range finds nothing.
    cBufferSearch longer({0xAA, 0xAA, 0xAA, 0xBB, 0x00});
    EXPECT_EQ(byRule(longer, buf, 0, 3), -1);
    EXPECT_EQ(fast(longer, buf, 0, 3), -1);
}

TEST(BufferSearch, MemoryScanFindsExactlyWhatTheRuleFinds)
{
    std::mt19937 rng(12);
    for (int round = 0; round < 3000; ++round) {
        // Few distinct byte values make partial matches and overlaps common.
        const int alphabet = 1 + static_cast<int>(rng() % 4);
        Bytes buf(rng() % 200);
        for (auto &b : buf)
            b = static_cast<uint8_t>(0xA0 + rng() % alphabet);
        Bytes pat(1 + rng() % 7);
        for (auto &b : pat)
            b = static_cast<uint8_t>(0xA0 + rng() % alphabet);
        cBufferSearch s(pat);
        const int64_t n = static_cast<int64_t>(buf.size());
        const int64_t from = n ? static_cast<int64_t>(rng() % n) : 0;
        const int64_t to = n ? from + static_cast<int64_t>(rng() % (n - from + 2)) - 1 : -1;
        const int64_t end = std::min(to, n - 1);

        // Find next, repeated one past each hit as the dialog does; then find-all.
        KCSearchHits ruleHits;
        for (int64_t at = from; (at = byRule(s, buf, at, end)) >= 0; ++at) {
            ASSERT_EQ(fast(s, buf, at, end), at) << "round " << round;
            ruleHits.add(static_cast<uint64_t>(at), pat.size());
        }
        KCSearchHits all;
        s.findAll(buf.data(), buf.size(), from, to, all);
        ASSERT_EQ(all.list(), ruleHits.list()) << "round " << round;
        ASSERT_EQ(all.count(), ruleHits.count());

        // Word alignment keeps exactly the even hits.
        cBufferSearch aligned(pat);
        aligned.setAlignment(2);
        KCSearchHits even;
        aligned.findAll(buf.data(), buf.size(), from, to, even);
        Bytes expected;
        size_t evenCount = 0;
        for (uint64_t a : ruleHits.list())
            evenCount += a % 2 == 0;
        ASSERT_EQ(even.count(), evenCount);

        // Backwards: the last hit at or before the start.
        const int64_t back = s.previous(buf.data(), buf.size(), end, 0);
        int64_t expectBack = -1;
        for (int64_t at = 0; (at = byRule(s, buf, at, n - 1)) >= 0 && at <= end; ++at)
            expectBack = at;
        ASSERT_EQ(back, expectBack) << "round " << round;
    }
}

TEST(BufferSearch, LongRandomBuffersTakeTheVectorPathWithTheSameHits)
{
    std::mt19937 rng(7);
    for (int round = 0; round < 40; ++round) {
        Bytes buf(5000 + rng() % 5000);
        for (auto &b : buf)
            b = static_cast<uint8_t>(rng() % 3);
        Bytes pat(2 + rng() % 10);
        for (auto &b : pat)
            b = static_cast<uint8_t>(rng() % 3);
        cBufferSearch s(pat);
        KCSearchHits all;
        s.findAll(buf.data(), buf.size(), 0, static_cast<int64_t>(buf.size()) - 1, all);
        std::vector<uint64_t> expected;
        for (int64_t at = 0; (at = byRule(s, buf, at, buf.size() - 1)) >= 0; ++at)
            expected.push_back(static_cast<uint64_t>(at));
        ASSERT_EQ(all.list(), expected);
    }
}

TEST(BufferSearch, FindAllOfFFFFInFFReportsEveryAddressButTheLastAsOneRange)
{
    const Bytes buf(1000, 0xFF);
    cBufferSearch s({0xFF, 0xFF});
    KCSearchHits hits(100);
    EXPECT_EQ(s.findAll(buf.data(), buf.size(), 0, 999, hits), 999u);
    EXPECT_EQ(hits.count(), 999u);
    ASSERT_EQ(hits.list().size(), 100u); // the list stops at its limit, the count goes on
    EXPECT_TRUE(hits.listCut());
    for (size_t i = 0; i < hits.list().size(); ++i)
        EXPECT_EQ(hits.list()[i], i);
    ASSERT_EQ(hits.ranges().size(), 1u);
    EXPECT_EQ(hits.ranges()[0].first, 0u);
    EXPECT_EQ(hits.ranges()[0].last, 999u);
}

TEST(BufferSearch, HitRangesMergeWhenTheyTouchAndStopGrowingAtTheirLimit)
{
    KCSearchHits hits(10, 2);
    hits.add(10, 2);
    hits.add(12, 2); // adjacent: merged
    hits.add(20, 1);
    hits.add(30, 1); // past the range limit: counted, not coloured
    EXPECT_EQ(hits.count(), 4u);
    ASSERT_EQ(hits.ranges().size(), 2u);
    EXPECT_TRUE(hits.rangesCut());
    EXPECT_TRUE(hits.contains(13));
    EXPECT_FALSE(hits.contains(14));
    EXPECT_TRUE(hits.contains(20));
    EXPECT_FALSE(hits.contains(30));
    EXPECT_FALSE(hits.contains(9));
}

TEST(BufferSearch, RangeFromTheBufferDescriptionIsClampedToTheBuffer)
{
    const TAG_SEARCH_RANGE none = cBufferSearch::rangeFromDescription(nullptr, 100);
    EXPECT_EQ(none.first, 0);
    EXPECT_EQ(none.last, -1);
    const TAG_SEARCH_RANGE wide{-5, 100};
    const TAG_SEARCH_RANGE r = cBufferSearch::rangeFromDescription(&wide, 100);
    EXPECT_EQ(r.first, 0);
    EXPECT_EQ(r.last, 99);
    const TAG_SEARCH_RANGE empty = cBufferSearch::rangeFromDescription(&wide, 0);
    EXPECT_EQ(empty.first, 0);
    EXPECT_EQ(empty.last, 0);
    // An empty buffer's 0..0 reads nothing.
    cBufferSearch s({0x00});
    EXPECT_EQ(s.next(nullptr, 0, 0, 0), -1);
}

TEST(BufferSearch, AStopFlagEndsTheScanWithoutAHit)
{
    const Bytes buf(3 * cBufferSearch::BlockBytes, 0x00);
    cBufferSearch s({0x01});
    std::atomic<bool> stop{true};
    std::atomic<int64_t> position{-1};
    s.setStopFlag(&stop);
    s.setProgress(&position);
    Bytes withHit = buf;
    withHit.back() = 0x01;
    EXPECT_EQ(s.next(withHit.data(), withHit.size(), 0, withHit.size() - 1), -1);
    EXPECT_TRUE(s.stopped());
    stop = false;
    EXPECT_EQ(s.next(withHit.data(), withHit.size(), 0, withHit.size() - 1), int64_t(withHit.size() - 1));
    EXPECT_EQ(position.load(), int64_t(2 * cBufferSearch::BlockBytes)); // progress by blocks
}

TEST(SearchModel, FindNextCountsHitsStartsPastThemAndStartsOverWhenNothingIsLeft)
{
    Bytes buf(64, 0x00);
    buf[10] = 0x5A;
    buf[40] = 0x5A;
    KCSearchModel m;
    const TAG_SEARCH_RANGE whole{0, 63};
    m.setRange(whole);
    m.setPattern({0x5A});
    auto step = [&] {
        m.prepare(false);
        m.run(buf.data(), buf.size());
        return m.finish();
    };
    EXPECT_EQ(step(), KCSearchModel::Found);
    EXPECT_EQ(m.message().stringId, KCHostStrings::SearchFound);
    EXPECT_EQ(m.message().arguments, (std::vector<int64_t>{1, 10}));
    EXPECT_EQ(m.nextStart(), 11);
    EXPECT_EQ(step(), KCSearchModel::Found);
    EXPECT_EQ(m.message().arguments, (std::vector<int64_t>{2, 40}));
    EXPECT_EQ(step(), KCSearchModel::NotFound);
    EXPECT_EQ(m.message().stringId, KCHostStrings::SearchNotFound);
    EXPECT_EQ(KCSearchModel::hitCounter(), 0u);
    EXPECT_EQ(step(), KCSearchModel::Found);
    EXPECT_EQ(m.message().arguments, (std::vector<int64_t>{1, 10}));

    // A new dialog starts its counter at zero.
    KCSearchModel again;
    EXPECT_EQ(KCSearchModel::hitCounter(), 0u);
}

TEST(SearchModel, FindAllReportsTheCountAndResetsTheCounter)
{
    const Bytes buf(256, 0xFF);
    KCSearchModel m;
    m.setRange({0, 255});
    m.setPattern({0xFF, 0xFF});
    m.startAt(100);
    m.prepare(true);
    m.run(buf.data(), buf.size());
    EXPECT_EQ(m.finish(), KCSearchModel::FoundAll);
    EXPECT_EQ(m.message().stringId, KCHostStrings::SearchFoundAll);
    EXPECT_EQ(m.message().arguments, (std::vector<int64_t>{255}));
    EXPECT_EQ(KCSearchModel::hitCounter(), 0u);
    // From the caret when asked.
    m.prepare(true, true);
    m.run(buf.data(), buf.size());
    m.finish();
    EXPECT_EQ(m.hits().count(), 155u);
    EXPECT_EQ(m.hits().list().front(), 100u);
}
