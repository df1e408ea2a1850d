#include "view/KCClipboardPort.h"
#include "view/KCEditByteModel.h"
#include "view/KCEditCharModel.h"
#include "view/KCEditWordModel.h"
#include "view/KCKrlBinary.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using Bytes = std::vector<uint8_t>;

struct BlockClipboard : KCClipboardPort
{
    int put(const uint8_t *bytes, uint64_t count, int asText) override
    {
        block = asText ? KCKrlBinary::encodeText(bytes, count) : KCKrlBinary::encode(bytes, count);
        return 1;
    }
    uint64_t get(std::vector<uint8_t> &bytes) override
    {
        bytes = KCKrlBinary::decode(block);
        return bytes.size();
    }
    int isEmpty() override { return block.empty(); }
    std::string block;
};

struct Fields : testing::Test
{
    Fields()
    {
        byte.setRepaint([this] { ++repaints[0]; });
        chars.setRepaint([this] { ++repaints[1]; });
        word.setRepaint([this] { ++repaints[2]; });
    }
    void type(KCEditFieldModel &f, const std::string &s)
    {
        for (char c : s)
            f.OnChar(static_cast<unsigned char>(c));
    }
    KCEditPatternState state;
    KCEditByteModel byte{state};
    KCEditCharModel chars{state};
    KCEditWordModel word{state};
    int repaints[3] = {};
};

} // namespace

TEST_F(Fields, TypingACharacterAppendsItAndRepaintsEveryField)
{
    EXPECT_TRUE(chars.OnChar('A'));
    EXPECT_EQ(state.bytes(), Bytes{0x41});
    EXPECT_EQ(repaints[0], 1);
    EXPECT_EQ(repaints[1], 1);
    EXPECT_EQ(repaints[2], 1);
    EXPECT_EQ(chars.caretColumn(), 1);
    // Insert mode inserts before the caret's byte, overwrite replaces it.
    chars.setCaretColumn(0);
    chars.OnChar('B');
    EXPECT_EQ(state.bytes(), (Bytes{0x42, 0x41}));
    state.setInsertMode(false);
    chars.OnChar('C');
    EXPECT_EQ(state.bytes(), (Bytes{0x42, 0x43}));
    // Past the end and control characters are ignored.
    chars.setCaretColumn(5);
    EXPECT_FALSE(chars.OnChar('D'));
    chars.setCaretColumn(0);
    EXPECT_FALSE(chars.OnChar('\n'));
    EXPECT_EQ(state.bytes(), (Bytes{0x42, 0x43}));
}

TEST_F(Fields, ColumnsMapToIndicesAndDigitsPerFieldIncludingNegativeColumns)
{
    EXPECT_EQ(byte.indexOfColumn(-1), -1);
    EXPECT_EQ(byte.digitOfColumn(-1), 2);
    EXPECT_EQ(byte.indexOfColumn(-2), -1);
    EXPECT_EQ(byte.digitOfColumn(-2), 1);
    byte.setCaretColumn(-1);
    EXPECT_FALSE(byte.OnChar('A'));
    EXPECT_TRUE(state.bytes().empty());

    state.setBaseOffset(5);
    EXPECT_EQ(byte.indexOfColumn(3), 6);
    EXPECT_EQ(chars.indexOfColumn(-1), 4);
    // The word field counts from the even index below the base.
    EXPECT_EQ(word.indexOfColumn(0), 4);
    EXPECT_EQ(word.indexOfColumn(3), 5);
    word.setByteSwap(true);
    EXPECT_EQ(word.indexOfColumn(0), 5);
    EXPECT_EQ(word.indexOfColumn(2), 4);
    EXPECT_EQ(word.columnOfIndex(4), 2);
}

TEST_F(Fields, SwappedWordsReachOnlyExistingPairsAndTheOddByteAtItsFirstColumn)
{
    state.setBytes({0x11, 0x22, 0x33});
    word.setByteSwap(true);
    // Pair 0/1 shows byte 1 first.
    EXPECT_TRUE(word.isValidColumn(0));
    EXPECT_EQ(word.indexOfColumn(0), 1);
    EXPECT_TRUE(word.isValidColumn(3));
    // Byte 2 is unpaired: shown at slot 3, only its first digit takes the caret.
    EXPECT_TRUE(word.isValidColumn(word.columnOfIndex(2)));
    EXPECT_FALSE(word.isValidColumn(word.columnOfIndex(2) + 1));
    EXPECT_FALSE(word.isValidColumn(4)); // index 3 does not exist, and no place to append
    // Unswapped, the append place after the last byte takes the caret.
    word.setByteSwap(false);
    EXPECT_TRUE(word.isValidColumn(6));
    EXPECT_FALSE(word.isValidColumn(7));

    // Start of a word: the first digit of the pair's first-shown byte.
    word.setCaretColumn(3);
    word.moveToUnitStart();
    EXPECT_EQ(word.caretColumn(), 0);
    word.setByteSwap(true);
    word.setCaretColumn(3);
    word.moveToUnitStart();
    EXPECT_EQ(word.caretIndex(), 1);
    EXPECT_EQ(word.caretColumn(), 0);
    byte.setCaretColumn(5);
    byte.moveToUnitStart();
    EXPECT_EQ(byte.caretColumn(), 4);
}

TEST_F(Fields, HexDigitsFillNibblesAppendAndInsertLikeTheHexEditor)
{
    type(byte, "A5");
    EXPECT_EQ(state.bytes(), Bytes{0xA5});
    EXPECT_EQ(byte.caretColumn(), 2); // on the append place
    type(byte, "7g");                 // 'g' is no digit: nothing changes
    EXPECT_EQ(state.bytes(), (Bytes{0xA5, 0x70}));
    EXPECT_EQ(byte.caretColumn(), 3);
    // Insert mode: a first digit inserts a byte, the second fills it.
    byte.setCaretColumn(0);
    type(byte, "3C");
    EXPECT_EQ(state.bytes(), (Bytes{0x3C, 0xA5, 0x70}));
    // Overwrite: nibble by nibble.
    state.setInsertMode(false);
    type(byte, "9");
    EXPECT_EQ(state.bytes(), (Bytes{0x3C, 0x95, 0x70}));
    // The word field types into the byte shown under its caret.
    word.setByteSwap(true);
    word.setCaretColumn(0); // byte 1
    type(word, "EE");
    EXPECT_EQ(state.bytes(), (Bytes{0x3C, 0xEE, 0x70}));
}

TEST_F(Fields, UndoRestoresTheCopyAndASecondUndoTakesItBack)
{
    EXPECT_FALSE(byte.canUndo());
    type(byte, "12");
    EXPECT_TRUE(byte.canUndo());
    EXPECT_TRUE(byte.undo());
    EXPECT_EQ(state.bytes(), Bytes{0x10});
    EXPECT_TRUE(byte.undo());
    EXPECT_EQ(state.bytes(), Bytes{0x12});
}

TEST_F(Fields, MarkWithNegativeLengthCoversTheBytesBeforeItsStart)
{
    state.setBytes({0, 1, 2, 3, 4, 5, 6});
    state.setMark(5, -3);
    EXPECT_FALSE(state.isMarked(1));
    EXPECT_TRUE(state.isMarked(2));
    EXPECT_TRUE(state.isMarked(4));
    EXPECT_FALSE(state.isMarked(5));
    // Shift+Left from index 3 marks index 2 backwards.
    byte.setCaretColumn(6);
    state.clearMark();
    byte.OnKeyDown(KCEditFieldModel::KeyLeft, true);
    EXPECT_EQ(state.markStart(), 3);
    EXPECT_EQ(state.markLength(), -1);
    // Dragging forward takes the byte under the pointer.
    chars.clickAt(1);
    chars.dragTo(3);
    EXPECT_EQ(state.markStart(), 1);
    EXPECT_EQ(state.markLength(), 3);
}

TEST_F(Fields, CutCopyAndPasteGoThroughKrlBinary)
{
    BlockClipboard clip;
    state.setBytes({0x10, 0x11, 0x12, 0x13, 0x14});
    EXPECT_EQ(byte.copy(clip), 0u); // no mark: nothing
    EXPECT_TRUE(byte.canCutCopy());
    state.setMark(-1, 2);
    EXPECT_FALSE(byte.canCutCopy());

    state.setMark(4, 3); // cut to the last index
    EXPECT_EQ(byte.copy(clip), 1u);
    EXPECT_EQ(clip.block, std::string("\x01\x00\x00\x00\x14", 5));

    state.setMark(3, -2); // indices 1 and 2
    EXPECT_EQ(byte.cut(clip), 2u);
    EXPECT_EQ(state.bytes(), (Bytes{0x10, 0x13, 0x14}));
    EXPECT_EQ(byte.caretIndex(), 1);
    EXPECT_EQ(state.markStart(), -1);
    EXPECT_EQ(state.markLength(), 0);

    // Insert at the caret; the pasted bytes end marked, the caret after them.
    EXPECT_EQ(byte.paste(clip), 2u);
    EXPECT_EQ(state.bytes(), (Bytes{0x10, 0x11, 0x12, 0x13, 0x14}));
    EXPECT_EQ(state.markStart(), 1);
    EXPECT_EQ(state.markLength(), 2);
    EXPECT_EQ(byte.caretIndex(), 3);
    // Overwrite grows the pattern past its end.
    state.setInsertMode(false);
    byte.setCaretColumn(8);
    EXPECT_EQ(byte.paste(clip), 2u);
    EXPECT_EQ(state.bytes(), (Bytes{0x10, 0x11, 0x12, 0x13, 0x11, 0x12}));
    EXPECT_TRUE(byte.undo());
    EXPECT_EQ(state.bytes(), (Bytes{0x10, 0x11, 0x12, 0x13, 0x14}));
}

TEST(EditChain, FieldsJoinTheChainWhileTheyLive)
{
    KCEditPatternState state;
    auto a = std::make_unique<KCEditByteModel>(state);
    {
        KCEditCharModel b(state);
        EXPECT_EQ(state.firstField(), &b);
        EXPECT_EQ(b.nextField(), a.get());
    }
    EXPECT_EQ(state.firstField(), a.get());
    a.reset();
    EXPECT_EQ(state.firstField(), nullptr);
}
