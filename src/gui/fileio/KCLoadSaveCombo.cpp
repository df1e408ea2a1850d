#include "KCLoadSaveCombo.h"

KCLoadSaveCombo::KCLoadSaveCombo(QWidget *parent) : QComboBox(parent)
{
    setEditable(false);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
}
