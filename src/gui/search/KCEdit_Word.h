#pragma once

#include "search/KCEdit_Base.h"

class KCEditWordModel;

// The pattern as 16-bit words: bytes in pairs, each pair's second byte first when the
// byte-swap option is on (big-endian words).
class KCEdit_Word : public KCEdit_Base
{
    Q_OBJECT
public:
    explicit KCEdit_Word(QWidget *parent = nullptr);

    void setByteSwap(bool on);
    bool byteSwap() const;

protected:
    int cellPadding() const override;
    // A pair's two bytes touch; the gap comes after the pair.
    int slotX(int slot) const override;
    QString cellText(uint8_t byte) const override;

private:
    KCEditWordModel &wordModel() const;
};
