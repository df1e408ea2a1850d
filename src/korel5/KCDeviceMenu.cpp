#include "KCDeviceMenu.h"

#include "KCAppHost.h"
#include "KCAppSettings.h"
#include "KCDeviceActions.h"
#include "KCMainFrame.h"
#include "KCSelectDeviceDialog.h"
#include "doc/KCDataDoc.h"
#include "host/KCMainProgDataExChange.h"
#include "host/KCMessageMarks.h"

#include "KCDeviceOptions.h"
#include "devopt/KCOptionSettingsFile.h"

#include <QAction>
#include <QDockWidget>
#include <QFileDialog>
#include <QMenu>

KCDeviceMenu::KCDeviceMenu(KCMainFrame &frame, KCAppSettings &settings)
    : QObject(&frame), m_frame(frame), m_settings(settings)
{
    if (!m_database.load(KCDeviceDatabase::defaultFolder()))
        static_cast<KCMainProgDataExChange &>(frame.host()).ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + m_database.error());
    m_selectAction = new QAction(tr("Select &Device..."), this);
    m_selectAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_D));
    connect(m_selectAction, &QAction::triggered, this, &KCDeviceMenu::chooseDevice);
    m_noDeviceAction = new QAction(tr("&No Device"), this);
    connect(m_noDeviceAction, &QAction::triggered, this, &KCDeviceMenu::deselect);

    // The options of the selected device live in a dock beside the buffer.
    m_optionsDock = new QDockWidget(tr("Device Options"), &frame);
    m_optionsDock->setObjectName("deviceOptionsDock");
    m_options = new KCDeviceOptions(nullptr, m_optionsDock);
    m_optionsDock->setWidget(m_options);
    frame.addDockWidget(Qt::RightDockWidgetArea, m_optionsDock);
    m_optionsDock->hide();

    m_saveOptionsAction = new QAction(tr("&Save Options..."), this);
    connect(m_saveOptionsAction, &QAction::triggered, this, [this] {
        const QString path = QFileDialog::getSaveFileName(&m_frame, tr("Save Options"), QString(),
                                                          tr("Option settings (*.json)"));
        if (!path.isEmpty())
            saveOptions(path);
    });
    m_loadOptionsAction = new QAction(tr("&Load Options..."), this);
    connect(m_loadOptionsAction, &QAction::triggered, this, [this] {
        const QString path = QFileDialog::getOpenFileName(&m_frame, tr("Load Options"), QString(),
                                                          tr("Option settings (*.json)"));
        if (!path.isEmpty())
            loadOptions(path);
    });
}

void KCDeviceMenu::setDocument(KCDataDoc *doc)
{
    m_doc = doc;
    m_options->SetDocument(doc);
    if (doc)
        m_options->OnInitialUpdate();
    const bool device = doc && doc->HasDeviceX();
    m_saveOptionsAction->setEnabled(device);
    m_loadOptionsAction->setEnabled(device);
    m_optionsDock->setVisible(device);
    emit documentChanged();
}

bool KCDeviceMenu::saveOptions(const QString &path)
{
    KCMainProgDataExChange &host = m_frame.host();
    std::string error;
    if (!m_doc || !m_doc->HasDeviceX())
        return false;
    if (!KCOptionSettingsFile::save(path.toStdString(), m_doc->AlgoParam().algoUiData(), m_doc->GetDeviceName(),
                                    &error)) {
        host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + error);
        return false;
    }
    host.ShowMessage("Options of " + m_doc->GetDeviceName() + " saved to " + path.toStdString());
    return true;
}

bool KCDeviceMenu::loadOptions(const QString &path)
{
    KCMainProgDataExChange &host = m_frame.host();
    if (!m_doc || !m_doc->HasDeviceX())
        return false;
    TAG_UI_ALGODATA_KRL3 record = m_doc->AlgoParam().algoUiData();
    std::string device, error;
    if (!KCOptionSettingsFile::load(path.toStdString(), record, &device, &error)) {
        host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + error);
        return false;
    }
    if (device != m_doc->GetDeviceName())
        host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Warning) + path.toStdString() + " : options of " +
                         device + " loaded into " + m_doc->GetDeviceName());
    m_doc->AlgoParam().algoUiData() = record;
    m_doc->UpdateAllViews(nullptr, DOCHINT_ALL);
    host.ShowMessage("Options loaded from " + path.toStdString());
    return true;
}

void KCDeviceMenu::addTo(QMenu *menu)
{
    menu->addAction(m_selectAction);
    m_recentMenu = menu->addMenu(tr("&Recent Devices"));
    menu->addAction(m_noDeviceAction);
    menu->addSeparator();
    menu->addAction(m_optionsDock->toggleViewAction());
    menu->addAction(m_saveOptionsAction);
    menu->addAction(m_loadOptionsAction);
    (new KCDeviceActions(m_frame, *this))->addTo(menu);
    // The window's commands work wherever the focus is.
    m_frame.addAction(m_selectAction);
    updateRecentMenu();
}

void KCDeviceMenu::chooseDevice()
{
    KCSelectDeviceDialog dialog(m_database, m_settings.recentDevices(), &m_frame);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedName().isEmpty())
        select(dialog.selectedName());
}

bool KCDeviceMenu::confirmCut(const KCDataDoc &doc, const DEVICE_KRLXDEF_ITEM &device) const
{
    const uint64_t cut = doc.definedBytesFrom(device.bufferSize);
    if (cut == 0 || (!doc.HavePathName() && !doc.IsModified()))
        return true;
    const std::string text = std::to_string(cut) + " bytes of the image lie beyond the " +
                             std::to_string(device.bufferSize) + " bytes of " + device.name +
                             " and will be cut off.\nSelect the device anyway?";
    return static_cast<KCMainProgDataExChange &>(m_frame.host()).MessageBox(text, KCPrompt::MB_OKCANCEL | KCPrompt::MB_ICONEXCLAMATION) == KCPrompt::IDOK;
}

bool KCDeviceMenu::select(const QString &name)
{
    KCMainProgDataExChange &host = m_frame.host();
    const DEVICE_KRLXDEF_ITEM *device = m_database.find(name.toStdString());
    if (!device) {
        host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + name.toStdString() +
                         " : no such device in the device database");
        return false;
    }
    if (KCDataDoc *doc = m_frame.document()) {
        if (!confirmCut(*doc, *device))
            return false;
        if (!doc->selectDevice(*device)) {
            host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + device->name + " : cannot be selected");
            return false;
        }
    }
    m_device = *device;
    remember(name);
    setDocument(m_frame.document());
    host.ShowMessage("Device selected: " + device->name + " (" + device->vendor + ", " +
                     std::to_string(device->bufferSize) + " bytes)");
    emit deviceChanged();
    return true;
}

bool KCDeviceMenu::deselect()
{
    if (KCDataDoc *doc = m_frame.document(); doc && !doc->deselectDeviceItem())
        return false;
    m_device.reset();
    setDocument(m_frame.document());
    emit deviceChanged();
    return true;
}

void KCDeviceMenu::applyTo(KCDataDoc &doc) const
{
    if (m_device)
        doc.selectDevice(*m_device);
}

void KCDeviceMenu::applyToOpening(KCDataDoc &doc) const
{
    if (m_device)
        doc.selectDeviceForFile(*m_device);
}

void KCDeviceMenu::remember(const QString &name)
{
    QStringList recent = m_settings.recentDevices();
    recent.removeAll(name);
    recent.prepend(QString::fromStdString(m_database.find(name.toStdString())->name));
    while (recent.size() > MaxRecentDevices)
        recent.removeLast();
    m_settings.setRecentDevices(recent);
    updateRecentMenu();
}

void KCDeviceMenu::updateRecentMenu()
{
    if (!m_recentMenu)
        return;
    m_recentMenu->clear();
    for (const QString &name : m_settings.recentDevices())
        connect(m_recentMenu->addAction(name), &QAction::triggered, this, [this, name] { select(name); });
    m_recentMenu->setEnabled(!m_recentMenu->isEmpty());
}
