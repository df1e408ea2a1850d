#pragma once

#include "bufops/KCJoinLanesModel.h"

#include <QDialog>

#include <vector>

class QComboBox;
class QFormLayout;

// The join dialog: lane documents picked in lane order into one new wide document. Its rules
// are KCJoinLanesModel's; the dialog shows the lists and forwards OK.
class KCJoinLanes : public QDialog
{
    Q_OBJECT
public:
    // Lane l's document list has the id IDC_LANE_DOC + l.
    enum : int { IDC_NARROW_WIDTH = 1041, IDC_WIDE_WIDTH = 1042, IDC_LANE_DOC = 2012 };
    static constexpr int MaxLanes = 8;

    KCJoinLanes(std::vector<KCDataDoc *> docs, std::function<KCDataDoc *()> newDocument, QWidget *parent = nullptr);
    QWidget *control(int id) const;
    const KCJoinLanesModel &model() const { return m_model; }
    void OnOK();

private:
    void refillWideWidths();
    void showLanes();

    KCJoinLanesModel m_model;
    QFormLayout *m_form;
    QComboBox *m_narrowWidth;
    QComboBox *m_wideWidth;
    std::vector<QComboBox *> m_laneDocs;
};
