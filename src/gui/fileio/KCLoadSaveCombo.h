#pragma once

#include <QComboBox>

// The file dialog's drop-down list of load/save formats. It has no behaviour of its own: the
// dialog fills it and reads its selection.
class KCLoadSaveCombo : public QComboBox
{
    Q_OBJECT
public:
    explicit KCLoadSaveCombo(QWidget *parent = nullptr);
};
