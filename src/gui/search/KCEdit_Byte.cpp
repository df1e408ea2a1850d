#include "search/KCEdit_Byte.h"

#include "view/KCEditByteModel.h"

namespace {

constexpr int HexBase = 16;
constexpr int ByteDigits = 2;

} // namespace

KCEdit_Byte::KCEdit_Byte(QWidget *parent) : KCEdit_Base(std::make_unique<KCEditByteModel>(), parent)
{
}

QString KCEdit_Byte::cellText(uint8_t byte) const
{
    return QStringLiteral("%1").arg(byte, ByteDigits, HexBase, QLatin1Char('0')).toUpper();
}
