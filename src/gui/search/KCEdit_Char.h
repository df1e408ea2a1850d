#pragma once

#include "search/KCEdit_Base.h"

// The pattern as characters, one column per byte; bytes without a printable character
// show as a dot.
class KCEdit_Char : public KCEdit_Base
{
    Q_OBJECT
public:
    explicit KCEdit_Char(QWidget *parent = nullptr);

protected:
    QString cellText(uint8_t byte) const override;
};
