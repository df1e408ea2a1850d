#include "search/KCEdit_Char.h"

#include "view/KCEditCharModel.h"

namespace {

constexpr uint8_t FirstPrintable = 0x20;
constexpr uint8_t Delete = 0x7F;
constexpr uint8_t FirstHighPrintable = 0xA0;

} // namespace

KCEdit_Char::KCEdit_Char(QWidget *parent) : KCEdit_Base(std::make_unique<KCEditCharModel>(), parent)
{
}

QString KCEdit_Char::cellText(uint8_t byte) const
{
    const bool printable = (byte >= FirstPrintable && byte < Delete) || byte >= FirstHighPrintable;
    return printable ? QString(QChar(byte)) : QStringLiteral(".");
}
