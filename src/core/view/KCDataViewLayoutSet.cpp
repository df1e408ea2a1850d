#include "view/KCDataViewLayoutSet.h"

#include "host/KCHostStrings.h"
#include "doc/KCLayoutNames.h"
#include "host/KCMainProgDataExChange.h"

namespace {

constexpr int BytesPerRow = 16;
constexpr int HalfRow = 8;
constexpr int BitsPerRow = 32;
constexpr int BitsPerGroup = 4;
constexpr int WordsPerRow = 8;
constexpr int HexCellPitch = 3;   // "XX "
constexpr int WordCellPitch = 5;  // "XXXX "
constexpr int BitGroupPitch = 5;  // "0101 "
constexpr int SecondHalfGap = 25; // header column of byte 8, relative to the first hex column
constexpr int ByteSeparatorExtra = 66;
constexpr int AddressDigits = 8;
constexpr int DataX = 10;         // first data column after an 8-digit address and 2 blanks
constexpr int ByteCharX = 60;
constexpr int WordLowByteX = 12;
constexpr int WordCharX = 51;
constexpr int WordSeparator = 67;
constexpr int WordHeaderWidth = 4;
constexpr int ScrollFlagsStandard = 1;

// The device areas of the PIC18F layout: where the document keeps them, and the offset
// that makes the address column show the device's own addresses.
struct Pic18FArea
{
    const char *label;
    int64_t first;
    int64_t last;
    int32_t offset;
};
constexpr Pic18FArea Pic18FAreas[] = {
    {"Code Memory:", 0x0000, 0x3FFF, 0},
    {"IDs:", 0x4000, 0x4007, 0x1FC000},
    {"Config:", 0x5000, 0x5003, 0x2FB000},
    {"Device ID:", 0x6000, 0x6001, 0x3F9FFE},
    {"EEPROM:", 0x7000, 0x70FF, 0xEF9000},
};
constexpr int Pic18FAddressDigits = 7;
constexpr int Pic18FHexX = 9;
constexpr int Pic18FSeparator = 63;

int groupFlags(int i, int count)
{
    if (i == 0)
        return XLF_GROUP_START;
    if (i == count - 1)
        return XLF_GROUP_END;
    return XLF_EDITABLE;
}

void addByteColumnHeader(KCDataViewLayout &layout, int hexX)
{
    layout.beginTextBlock();
    for (int i = 0; i < HalfRow; ++i)
        layout.addColumnNumberCell(hexX + HexCellPitch * i, 2, i);
    for (int i = 0; i < HalfRow; ++i)
        layout.addColumnNumberCell(hexX + SecondHalfGap + HexCellPitch * i, 2, HalfRow + i);
    layout.finishBlock(LAYOUT_TOP);
}

} // namespace

KCDataViewLayoutSet::KCDataViewLayoutSet(const KCMainProgDataExChange *host) : m_host(host) {}

std::string KCDataViewLayoutSet::hostString(unsigned id) const
{
    return m_host ? m_host->GetHostString(id) : std::string();
}

void KCDataViewLayoutSet::addTextRow(KCDataViewLayout &layout, LAYOUT_LIST list, const std::string &text) const
{
    layout.beginTextBlock();
    if (!text.empty())
        layout.addTextCell(0, text);
    layout.finishBlock(list);
}

void KCDataViewLayoutSet::addClosingRow(KCDataViewLayout &layout) const
{
    addTextRow(layout, LAYOUT_BODY, hostString(KCHostStrings::ViewClosingRow));
}

void KCDataViewLayoutSet::DefineByteStandardTopLayout(KCDataViewLayout &layout, const std::string &title,
                                                      int hexX) const
{
    if (!title.empty())
        addTextRow(layout, LAYOUT_TOP, title);
    addTextRow(layout, LAYOUT_TOP, hostString(KCHostStrings::ViewHeaderRow));
    addByteColumnHeader(layout, hexX);
    addTextRow(layout, LAYOUT_TOP, std::string(static_cast<size_t>(hexX + ByteSeparatorExtra), '-'));
}

void KCDataViewLayoutSet::DefineBitStandardTopLayout(KCDataViewLayout &layout, const std::string &title, int x,
                                                     int y) const
{
    if (!title.empty())
        addTextRow(layout, LAYOUT_TOP, title);
    addTextRow(layout, LAYOUT_TOP, hostString(KCHostStrings::ViewHeaderRow));
    const int groups = (y + BitsPerGroup - 1) / BitsPerGroup;
    // Each group is headed by the decimal number of its first bit within the row.
    layout.beginTextBlock();
    for (int g = 0; g < groups; ++g)
        layout.addTextCell(x + BitGroupPitch * g, std::to_string(g * BitsPerGroup));
    layout.finishBlock(LAYOUT_TOP);
    const int separator = groups > 0 ? x + BitGroupPitch * groups - 1 : x;
    addTextRow(layout, LAYOUT_TOP, std::string(static_cast<size_t>(separator), '-'));
}

void KCDataViewLayoutSet::DefineByteView(KCDataViewLayout &layout, int64_t first, int64_t last, int32_t addressOffset,
                                         int addressDigits, int hexX, int charX)
{
    layout.beginBlock(first, last, BytesPerRow);
    layout.addAddressCell(0, addressDigits, addressOffset);
    for (int i = 0; i < BytesPerRow; ++i) {
        const int x = hexX + HexCellPitch * i + (i >= HalfRow ? 1 : 0);
        layout.addHexCell(x, 1, groupFlags(i % HalfRow, HalfRow));
    }
    layout.addCursorAdjust(-BytesPerRow);
    for (int i = 0; i < BytesPerRow; ++i)
        layout.addCharCell(charX + i, 1, groupFlags(i, BytesPerRow));
    layout.finishBlock(LAYOUT_BODY);
}

std::unique_ptr<KCDataViewLayout> KCDataViewLayoutSet::buildByteLayout(const std::string &name, int scrollFlags,
                                                                       int64_t first, int64_t last,
                                                                       int32_t addressOffset) const
{
    auto layout = std::make_unique<KCDataViewLayout>(name, scrollFlags);
    DefineByteStandardTopLayout(*layout, std::string(), DataX);
    DefineByteView(*layout, first, last, addressOffset, AddressDigits, DataX, ByteCharX);
    addClosingRow(*layout);
    layout->close();
    return layout;
}

std::unique_ptr<KCDataViewLayout> KCDataViewLayoutSet::buildWordLayout(const std::string &name, int scrollFlags,
                                                                       int64_t first, int64_t last) const
{
    auto layout = std::make_unique<KCDataViewLayout>(name, scrollFlags, KCDataViewLayout::Kind::Words);
    addTextRow(*layout, LAYOUT_TOP, hostString(KCHostStrings::ViewHeaderRow));
    layout->beginTextBlock();
    for (int w = 0; w < WordsPerRow; ++w)
        layout->addColumnNumberCell(DataX + WordCellPitch * w, WordHeaderWidth, 2 * w);
    layout->finishBlock(LAYOUT_TOP);
    addTextRow(*layout, LAYOUT_TOP, std::string(WordSeparator, '-'));

    // Words are little-endian in the buffer and shown high byte first: step to the high
    // byte, show it, step back to the low byte, show it, then on to the next word.
    layout->beginBlock(first, last, BytesPerRow);
    layout->addAddressCell(0, AddressDigits, 0);
    for (int w = 0; w < WordsPerRow; ++w) {
        layout->addCursorAdjust(1);
        layout->addHexCell(DataX + WordCellPitch * w, -1, w == 0 ? XLF_GROUP_START : XLF_EDITABLE);
        layout->addHexCell(WordLowByteX + WordCellPitch * w, 2, w == WordsPerRow - 1 ? XLF_GROUP_END : XLF_EDITABLE);
    }
    layout->addCursorAdjust(-BytesPerRow);
    for (int i = 0; i < BytesPerRow; ++i)
        layout->addCharCell(WordCharX + i, 1, groupFlags(i, BytesPerRow));
    layout->finishBlock(LAYOUT_BODY);
    addClosingRow(*layout);
    layout->close();
    return layout;
}

std::unique_ptr<KCDataViewLayout> KCDataViewLayoutSet::buildBitLayout(const std::string &name, int scrollFlags,
                                                                      int64_t first, int64_t last) const
{
    auto layout = std::make_unique<KCDataViewLayout>(name, scrollFlags, KCDataViewLayout::Kind::Bits);
    DefineBitStandardTopLayout(*layout, std::string(), DataX, BitsPerRow);
    layout->beginBlock(first, last, BitsPerRow);
    layout->addAddressCell(0, AddressDigits, 0, true);
    for (int i = 0; i < BitsPerRow; ++i) {
        const int x = DataX + BitGroupPitch * (i / BitsPerGroup) + i % BitsPerGroup;
        layout->addBitCell(x, 1, groupFlags(i, BitsPerRow));
    }
    layout->finishBlock(LAYOUT_BODY);
    addClosingRow(*layout);
    layout->close();
    return layout;
}

void KCDataViewLayoutSet::DefineByteBufferLayout(const std::string &name, int scrollFlags, int64_t first, int64_t last)
{
    install(buildByteLayout(name, scrollFlags, first, last, 0), false);
}

void KCDataViewLayoutSet::DefineWordBufferLayout(const std::string &name, int scrollFlags, int64_t first, int64_t last)
{
    install(buildWordLayout(name, scrollFlags, first, last), false);
}

void KCDataViewLayoutSet::DefineBitBufferLayout(const std::string &name, int scrollFlags, int64_t first, int64_t last)
{
    install(buildBitLayout(name, scrollFlags, first, last), false);
}

void KCDataViewLayoutSet::DefineByteBufferLayoutV2(const std::string &name, int scrollFlags, int64_t first,
                                                   int64_t last, int32_t addressOffset)
{
    install(buildByteLayout(name, scrollFlags, first, last, addressOffset), true);
}

void KCDataViewLayoutSet::DefineBytePic18FLayout(const std::string &name, int scrollFlags)
{
    auto layout = std::make_unique<KCDataViewLayout>(name, scrollFlags);
    addTextRow(*layout, LAYOUT_TOP, hostString(KCHostStrings::ViewHeaderRow));
    addByteColumnHeader(*layout, Pic18FHexX);
    addTextRow(*layout, LAYOUT_TOP, std::string(Pic18FSeparator, '-'));
    for (const Pic18FArea &area : Pic18FAreas) {
        addTextRow(*layout, LAYOUT_BODY, area.label);
        DefineByteView(*layout, area.first, area.last, area.offset, Pic18FAddressDigits, Pic18FHexX, ByteCharX);
        addTextRow(*layout, LAYOUT_BODY, std::string());
    }
    addClosingRow(*layout);
    layout->close();
    install(std::move(layout), true);
}

void KCDataViewLayoutSet::defineStandardLayouts(uint64_t size)
{
    const int64_t last = static_cast<int64_t>(size) - 1;
    DefineByteBufferLayout(LAYOUT_BYTEVIEW, ScrollFlagsStandard, 0, last);
    DefineWordBufferLayout(LAYOUT_WORDVIEW, ScrollFlagsStandard, 0, last);
    DefineBitBufferLayout(LAYOUT_JEDVIEW, ScrollFlagsStandard, 0, last);
    m_standardSize = size;
}

void KCDataViewLayoutSet::resizeStandardLayouts(uint64_t size)
{
    if (size == m_standardSize)
        return;
    const int64_t last = static_cast<int64_t>(size) - 1;
    for (const char *name : {LAYOUT_BYTEVIEW, LAYOUT_WORDVIEW, LAYOUT_JEDVIEW}) {
        const int index = GetBufferLayoutIndex(name);
        if (index < 0)
            continue;
        KCDataViewLayout &old = *m_layouts[index];
        std::unique_ptr<KCDataViewLayout> rebuilt;
        switch (old.kind()) {
        case KCDataViewLayout::Kind::Bytes: rebuilt = buildByteLayout(name, old.scrollFlags(), 0, last, 0); break;
        case KCDataViewLayout::Kind::Words: rebuilt = buildWordLayout(name, old.scrollFlags(), 0, last); break;
        case KCDataViewLayout::Kind::Bits: rebuilt = buildBitLayout(name, old.scrollFlags(), 0, last); break;
        }
        rebuilt->takeViewState(old);
        m_layouts[index] = std::move(rebuilt);
    }
    m_standardSize = size;
}

void KCDataViewLayoutSet::install(std::unique_ptr<KCDataViewLayout> layout, bool replace)
{
    layout->setTextMetrics(m_charWidth, m_linePitch);
    if (replace) {
        const int index = GetBufferLayoutIndex(layout->name());
        if (index >= 0) {
            m_layouts[index] = std::move(layout);
            return;
        }
    }
    m_layouts.push_back(std::move(layout));
    if (m_current < 0)
        m_current = 0;
}

void KCDataViewLayoutSet::ClearLA()
{
    m_layouts.clear();
    m_current = -1;
}

KCDataViewLayout *KCDataViewLayoutSet::layout(int index) const
{
    if (index < 0 || index >= count())
        return nullptr;
    return m_layouts[index].get();
}

std::string KCDataViewLayoutSet::GetBufferLayoutName(int index) const
{
    const KCDataViewLayout *l = layout(index);
    return l ? l->name() : std::string();
}

int KCDataViewLayoutSet::GetBufferLayoutIndex(const std::string &name) const
{
    for (int i = 0; i < count(); ++i)
        if (m_layouts[i]->name() == name)
            return i;
    return -1;
}

int KCDataViewLayoutSet::SetBufferLayoutView(const std::string &name)
{
    return SetBufferLayoutView(GetBufferLayoutIndex(name));
}

int KCDataViewLayoutSet::SetBufferLayoutView(int index)
{
    if (!layout(index))
        return 0;
    m_current = index;
    return 1;
}

void KCDataViewLayoutSet::setTextMetrics(int charWidth, int linePitch)
{
    m_charWidth = charWidth;
    m_linePitch = linePitch;
    for (auto &l : m_layouts)
        l->setTextMetrics(charWidth, linePitch);
}
