#pragma once

#include "doc/KCDocView.h"

#include <QWidget>

class KCDataDoc;
class KCOptionsDialogCtrl;
class QPushButton;
class QTabBar;

// The options view of the selected device: a tab per option page of the device's option
// type, the pages below the tabs, and a button that restores the device's defaults.
class KCDeviceOptions : public QWidget, public KCDocView
{
    Q_OBJECT
public:
    explicit KCDeviceOptions(KCDataDoc *doc = nullptr, QWidget *parent = nullptr);
    ~KCDeviceOptions() override;

    void SetDocument(KCDataDoc *doc);
    KCDataDoc *document() const { return m_doc; }

    // Builds the pages for the document's device; without a device, none.
    void CreateOptions();
    void DeleteOptions();
    void OnInitialUpdate() { CreateOptions(); }
    // A changed device rebuilds the pages; otherwise they read the record again.
    void OnUpdate(KCDocView *sender, long hint) override;

    void OnSelchangeDeviceOptionsTab(int index);
    void OnDefaultDeviceOptions();
    void EnableDefaultButton();
    void DisableDefaultButton();

    KCOptionsDialogCtrl *optionsCtrl() const { return m_ctrl; }
    QTabBar *tabBar() const { return m_tab; }
    QPushButton *defaultButton() const { return m_default; }

private:
    KCDataDoc *m_doc = nullptr;
    QTabBar *m_tab;
    QPushButton *m_default;
    KCOptionsDialogCtrl *m_ctrl = nullptr;
    std::string m_deviceName;
};
