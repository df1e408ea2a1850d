#include "search/KCEdit_Word.h"

#include "view/KCEditWordModel.h"

namespace {

constexpr int HexBase = 16;
constexpr int ByteDigits = 2;
// Gap after each pair of bytes.
constexpr int PairGap = 6;
constexpr int PairBytes = 2;

} // namespace

KCEdit_Word::KCEdit_Word(QWidget *parent) : KCEdit_Base(std::make_unique<KCEditWordModel>(), parent)
{
}

KCEditWordModel &KCEdit_Word::wordModel() const
{
    return static_cast<KCEditWordModel &>(const_cast<KCEdit_Word *>(this)->model());
}

void KCEdit_Word::setByteSwap(bool on)
{
    wordModel().setByteSwap(on);
    update();
}

bool KCEdit_Word::byteSwap() const
{
    return wordModel().byteSwap();
}

int KCEdit_Word::cellPadding() const
{
    return 0;
}

int KCEdit_Word::slotX(int slot) const
{
    const int pairWidth = PairBytes * cellWidth() + PairGap;
    return (slot / PairBytes) * pairWidth + (slot % PairBytes) * cellWidth();
}

QString KCEdit_Word::cellText(uint8_t byte) const
{
    return QStringLiteral("%1").arg(byte, ByteDigits, HexBase, QLatin1Char('0')).toUpper();
}
