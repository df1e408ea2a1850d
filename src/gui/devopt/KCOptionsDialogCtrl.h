#pragma once

#include "devopt/KCOptionPageEntry.h"
#include "doc/TAG_UI_ALGODATA_KRL3.h"

#include <QString>
#include <QWidget>

#include <vector>

class KCDeviceOptions;
class KCOptionPage;
class KCOptionPageLibrary;
class KCOptionTypeRegistry;

// The pages of one option type: built by the builder registered for the type (none, no
// pages), all placed at the same spot, sized to the largest, one shown at a time.
class KCOptionsDialogCtrl : public QWidget
{
    Q_OBJECT
public:
    struct Page
    {
        QString caption;
        KCOptionPage *page;
        KCOptionPageEntry entry;
    };

    KCOptionsDialogCtrl(KCDeviceOptions *owner, uint32_t optionType, QWidget *parent = nullptr);

    // Adds the pages of the option type's builder over the record; false when no builder
    // serves the type or a page has no description.
    bool Build(TAG_UI_ALGODATA_KRL3 &record, const KCOptionTypeRegistry &registry,
               const KCOptionPageLibrary &library);
    void AddPage(const KCOptionPageEntry &entry, const QString &caption, KCOptionPage *page);
    // Sizes the area to the largest page, hides all and shows the first.
    void LayOut();
    void ShowPage(int index);

    KCDeviceOptions *owner() const { return m_owner; }
    uint32_t optionType() const { return m_optionType; }
    const std::vector<Page> &pages() const { return m_pages; }
    KCOptionPage *page(int index) const;
    // The device's own settings, against which the pages mark changed values.
    void SetDefaults(const TAG_UI_ALGODATA_KRL3 &defaults);
    // Every page reads the record again.
    void RefreshPages();
    // A window message to every page.
    void SendToPages(uint32_t msg);

private:
    KCDeviceOptions *m_owner;
    uint32_t m_optionType;
    std::vector<Page> m_pages;
};
