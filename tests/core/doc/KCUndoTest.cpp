#include "doc/KCDataDoc.h"
#include "KCTempDir.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <random>

namespace {

struct State
{
    std::string bytes;
    std::vector<KCAddressRange> map;
    uint32_t checksum;
    bool operator==(const State &o) const { return bytes == o.bytes && map == o.map && checksum == o.checksum; }
};

State stateOf(KCDataDoc &doc)
{
    const uint8_t *p = doc.AlgoParam().buffer(0).data();
    return State{std::string(p, p + doc.GetBufferSize()), doc.dataMap().ranges(), doc.mainBufferParam()->checksum};
}

} // namespace

// Random edits of every kind, then undo back to the start and redo to the end: each step
// restores the bytes, the data map and the running checksum it had.
TEST(KCUndo, UndoAndRedoWalkBackAndForthThroughEveryKindOfChange)
{
    KCTestHost host;
    host.defaultBufferSize = 512;
    KCDataDoc doc;
    doc.FillRange(0, 511, 0xFF); // a known start that is itself undoable
    std::mt19937 rng(11);
    std::vector<State> states{stateOf(doc)};
    doc.ComputeCheckSum(-1);
    states[0] = stateOf(doc);
    for (int step = 0; step < 60; ++step) {
        const uint32_t a = rng() % 500, n = 1 + rng() % 12;
        switch (rng() % 5) {
        case 4: doc.FillRange(a / 8, 511 - a / 8, uint8_t(rng())); break; // most of the buffer
        case 0: doc.SetData(uint8_t(rng()), a); break;
        case 1: doc.SetDataWord(uint16_t(rng()), a / 2); break;
        case 2: {
            std::vector<uint8_t> block(n, uint8_t(rng()));
            doc.WriteRange(a, block.data(), n);
            break;
        }
        case 3: // one action of several changes, overlapping ones included
            doc.beginAction("Cut");
            doc.FillRange(a, a + n - 1, 0);
            doc.SetData(1, a + n / 2);
            doc.FillRange(a + 1, a + n, 7);
            doc.endAction();
            break;
        }
        if (!(stateOf(doc) == states.back()))
            states.push_back(stateOf(doc));
    }
    ASSERT_EQ(doc.mainBufferParam()->checksum, doc.ComputeCheckSum(-1));
    for (size_t i = states.size() - 1; i > 0; --i) {
        ASSERT_TRUE(doc.Undo()) << i;
        ASSERT_TRUE(stateOf(doc) == states[i - 1]) << "undo to " << i - 1;
    }
    for (size_t i = 1; i < states.size(); ++i) {
        ASSERT_TRUE(doc.Redo()) << i;
        ASSERT_TRUE(stateOf(doc) == states[i]) << "redo to " << i;
    }
    EXPECT_FALSE(doc.Redo());
    EXPECT_EQ(doc.mainBufferParam()->checksum, doc.ComputeCheckSum(-1));
}

TEST(KCUndo, TheModifiedFlagFollowsTheSavedStateAndALoadForgets)
{
    KCTestHost host;
    host.defaultBufferSize = 16;
    TempDir dir;
    KCDataDoc doc;
    doc.SetData(1, 0);
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("a.bin").c_str()));
    doc.SetData(2, 1);
    EXPECT_TRUE(doc.IsModified());
    ASSERT_TRUE(doc.Undo());
    EXPECT_FALSE(doc.IsModified()); // back at what was saved
    ASSERT_TRUE(doc.Undo());
    EXPECT_TRUE(doc.IsModified());
    EXPECT_EQ(doc.GetData(0), 0xFF);
    ASSERT_TRUE(doc.Redo());
    EXPECT_FALSE(doc.IsModified());
    // A new change after an undo drops what could be redone.
    ASSERT_TRUE(doc.Undo());
    doc.SetData(3, 2);
    EXPECT_FALSE(doc.Redo());

    ASSERT_TRUE(doc.OnOpenDocument(dir.file("a.bin").c_str()));
    EXPECT_FALSE(doc.undoHistory().canUndo());
}

TEST(KCUndo, AChangeTooLargeToKeepIsMadeOnlyWhenTheUserAgrees)
{
    KCTestHost host;
    host.defaultBufferSize = 1024;
    KCDataDoc doc;
    doc.undoHistory().setBudget(100);
    doc.SetData(5, 0);
    host.scriptAnswers({KCPrompt::IDCANCEL});
    EXPECT_FALSE(doc.FillRange(0, 199, 0));
    EXPECT_EQ(doc.GetData(100), 0xFF);
    EXPECT_TRUE(doc.undoHistory().canUndo());

    host.scriptAnswers({KCPrompt::IDOK});
    EXPECT_TRUE(doc.FillRange(0, 199, 0));
    EXPECT_EQ(doc.GetData(100), 0);
    EXPECT_FALSE(doc.undoHistory().canUndo()); // nothing before it can be undone either
    EXPECT_EQ(host.prompts.size(), 2u);
    EXPECT_NE(host.prompts[1].text.find("cannot be undone"), std::string::npos);
}
