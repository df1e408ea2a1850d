#include "search/KCEdit_Word.h"

#include "view/KCEditWordModel.h"

namespace {

constexpr int HexBase = 16;
constexpr int ByteDigits = 2;
// Cells as wide as the byte field's.
constexpr int CellPadding = 3;

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
    return CellPadding;
}

QString KCEdit_Word::cellText(uint8_t byte) const
{
    return QStringLiteral("%1").arg(byte, ByteDigits, HexBase, QLatin1Char('0')).toUpper();
}
