#pragma once

#include "search/KCEdit_Base.h"

class KCEditByteModel;

// The pattern as hex bytes: each byte two digits in a cell 3 pixels wider than its text.
class KCEdit_Byte : public KCEdit_Base
{
    Q_OBJECT
public:
    explicit KCEdit_Byte(QWidget *parent = nullptr);

protected:
    int cellPadding() const override { return CellPadding; }
    QString cellText(uint8_t byte) const override;

private:
    static constexpr int CellPadding = 3;
};
