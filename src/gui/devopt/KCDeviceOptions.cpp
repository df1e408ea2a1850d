#include "KCDeviceOptions.h"

#include "KCOptionsDialogCtrl.h"
#include "devopt/KCOptionDefaults.h"
#include "devopt/KCOptionPageLibrary.h"
#include "devopt/KCOptionTypeRegistry.h"
#include "doc/KCDataDoc.h"

#include <QPushButton>
#include <QTabBar>
#include <QVBoxLayout>

namespace {

// Text of the default button.
constexpr const char *DefaultButtonText = "Default";

} // namespace

KCDeviceOptions::KCDeviceOptions(KCDataDoc *doc, QWidget *parent)
    : QWidget(parent), m_tab(new QTabBar(this)),
      m_default(new QPushButton(QString::fromLatin1(DefaultButtonText), this))
{
    auto *column = new QVBoxLayout(this);
    column->addWidget(m_tab);
    column->addStretch(1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_default);
    column->addLayout(buttons);
    connect(m_tab, &QTabBar::currentChanged, this, &KCDeviceOptions::OnSelchangeDeviceOptionsTab);
    connect(m_default, &QPushButton::clicked, this, &KCDeviceOptions::OnDefaultDeviceOptions);
    DisableDefaultButton();
    SetDocument(doc);
}

KCDeviceOptions::~KCDeviceOptions()
{
    if (m_doc)
        m_doc->RemoveView(this);
}

void KCDeviceOptions::SetDocument(KCDataDoc *doc)
{
    if (m_doc == doc)
        return;
    DeleteOptions();
    if (m_doc)
        m_doc->RemoveView(this);
    m_doc = doc;
    if (m_doc)
        m_doc->AddView(this);
}

void KCDeviceOptions::CreateOptions()
{
    DeleteOptions();
    if (!m_doc || !m_doc->HasDeviceX())
        return;
    m_deviceName = m_doc->GetDeviceItemX().name;
    m_ctrl = new KCOptionsDialogCtrl(this, m_doc->GetDeviceItemX().optionType, this);
    TAG_UI_ALGODATA_KRL3 &record = m_doc->AlgoParam().algoUiData();
    m_ctrl->Build(record, KCOptionTypeRegistry::shared(), KCOptionPageLibrary::shared());
    TAG_UI_ALGODATA_KRL3 defaults = record;
    KCOptionDefaults::restore(defaults, m_doc->GetDeviceItemX());
    m_ctrl->SetDefaults(defaults);
    static_cast<QVBoxLayout *>(layout())->insertWidget(1, m_ctrl);
    {
        const QSignalBlocker quiet(m_tab);
        for (const KCOptionsDialogCtrl::Page &p : m_ctrl->pages())
            m_tab->addTab(p.caption);
    }
    m_tab->setCurrentIndex(0);
    // A tab bar filled while hidden keeps its empty size until told.
    m_tab->updateGeometry();
    layout()->invalidate();
    if (!m_ctrl->pages().empty())
        EnableDefaultButton();
}

void KCDeviceOptions::DeleteOptions()
{
    {
        const QSignalBlocker quiet(m_tab);
        while (m_tab->count() > 0)
            m_tab->removeTab(0);
    }
    delete m_ctrl;
    m_ctrl = nullptr;
    m_deviceName.clear();
    DisableDefaultButton();
}

void KCDeviceOptions::OnUpdate(KCDocView *, long)
{
    if (!m_doc)
        return;
    const DEVICE_KRLXDEF_ITEM &device = m_doc->GetDeviceItemX();
    if (!m_ctrl || device.name != m_deviceName || device.optionType != m_ctrl->optionType())
        CreateOptions();
    else
        m_ctrl->RefreshPages();
}

void KCDeviceOptions::OnSelchangeDeviceOptionsTab(int index)
{
    if (m_ctrl)
        m_ctrl->ShowPage(index);
}

void KCDeviceOptions::OnDefaultDeviceOptions()
{
    if (!m_doc || !m_ctrl)
        return;
    KCOptionDefaults::restore(m_doc->AlgoParam().algoUiData(), m_doc->GetDeviceItemX());
    m_ctrl->RefreshPages();
}

void KCDeviceOptions::EnableDefaultButton()
{
    m_default->setEnabled(true);
}

void KCDeviceOptions::DisableDefaultButton()
{
    m_default->setEnabled(false);
}
