#include "KCOptionsDialogCtrl.h"

#include "KCOptionPage.h"
#include "devopt/KCOptionPageLibrary.h"
#include "devopt/KCOptionTypeRegistry.h"
#include "host/KCMainProgDataExChange.h"

KCOptionsDialogCtrl::KCOptionsDialogCtrl(KCDeviceOptions *owner, uint32_t optionType, QWidget *parent)
    : QWidget(parent), m_owner(owner), m_optionType(optionType)
{
}

bool KCOptionsDialogCtrl::Build(TAG_UI_ALGODATA_KRL3 &record, const KCOptionTypeRegistry &registry,
                                const KCOptionPageLibrary &library)
{
    if (!registry.isRegistered(m_optionType))
        return false;
    bool complete = true;
    for (const KCOptionPageEntry &entry : registry.pages(m_optionType)) {
        const KCOptionPageDesc *desc = library.find(entry.className);
        if (!desc) {
            complete = false;
            continue;
        }
        const QString caption = g_pMainProgDataExChange
                                    ? QString::fromStdString(g_pMainProgDataExChange->GetHostString(entry.captionId))
                                    : QString::fromStdString(entry.className);
        AddPage(entry, caption, new KCOptionPage(*desc, record, this));
    }
    LayOut();
    return complete;
}

void KCOptionsDialogCtrl::AddPage(const KCOptionPageEntry &entry, const QString &caption, KCOptionPage *page)
{
    page->setParent(this);
    m_pages.push_back({caption, page, entry});
}

void KCOptionsDialogCtrl::LayOut()
{
    QSize largest;
    for (const Page &p : m_pages)
        largest = largest.expandedTo(p.page->pageSize());
    for (const Page &p : m_pages) {
        p.page->setGeometry(QRect(QPoint(0, 0), largest));
        p.page->hide();
    }
    setFixedSize(largest);
    if (!m_pages.empty())
        m_pages.front().page->show();
}

void KCOptionsDialogCtrl::ShowPage(int index)
{
    for (int i = 0; i < int(m_pages.size()); ++i)
        m_pages[size_t(i)].page->setVisible(i == index);
}

KCOptionPage *KCOptionsDialogCtrl::page(int index) const
{
    return index >= 0 && size_t(index) < m_pages.size() ? m_pages[size_t(index)].page : nullptr;
}

void KCOptionsDialogCtrl::SetDefaults(const TAG_UI_ALGODATA_KRL3 &defaults)
{
    for (const Page &p : m_pages) {
        p.page->model().setDefaults(defaults);
        p.page->Refresh();
    }
}

void KCOptionsDialogCtrl::RefreshPages()
{
    for (const Page &p : m_pages)
        p.page->Refresh();
}

void KCOptionsDialogCtrl::SendToPages(uint32_t msg)
{
    for (const Page &p : m_pages)
        p.page->message(msg);
}
