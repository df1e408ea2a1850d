#pragma once

#include "devopt/KCDeviceDatabase.h"

#include <QObject>
#include <QStringList>

#include <optional>

class KCAppSettings;
class KCDataDoc;
class KCDeviceOptions;
class QDockWidget;
class KCMainFrame;
class QAction;
class QMenu;

// The Device menu: the device database, the device the program works with, the recently
// used ones. The device holds for every document opened or made while it is selected.
class KCDeviceMenu : public QObject
{
    Q_OBJECT
public:
    static constexpr int MaxRecentDevices = 8;

    KCDeviceMenu(KCMainFrame &frame, KCAppSettings &settings);

    void addTo(QMenu *menu);
    const KCDeviceDatabase &database() const { return m_database; }
    // The selected device, none when working on bare images.
    const DEVICE_KRLXDEF_ITEM *device() const { return m_device ? &*m_device : nullptr; }

    // Selects a device by name for the program and the open document; false (and said why)
    // when there is no such device, the user keeps the image, or the document refuses it.
    bool select(const QString &name);
    bool deselect();
    // Binds a document being made or opened to the selected device, before it loads.
    void applyTo(KCDataDoc &doc) const;
    // The same for a document about to read a file, which keeps the file's own type.
    void applyToOpening(KCDataDoc &doc) const;
    // Device > Select Device: the list dialog.
    void chooseDevice();
    // The document the options view edits; null before it goes.
    void setDocument(KCDataDoc *doc);
    KCDeviceOptions *optionsView() const { return m_options; }
    QDockWidget *optionsDock() const { return m_optionsDock; }
    // Device > Save Options / Load Options: the option settings of the device as a file.
    bool saveOptions(const QString &path);
    bool loadOptions(const QString &path);

signals:
    void deviceChanged();
    // Another document became the current one (it may bring a device of its own).
    void documentChanged();

private:
    void updateRecentMenu();
    void remember(const QString &name);
    // Asks before a device cuts defined bytes off the open image.
    bool confirmCut(const KCDataDoc &doc, const DEVICE_KRLXDEF_ITEM &device) const;

    KCMainFrame &m_frame;
    KCAppSettings &m_settings;
    KCDeviceDatabase m_database;
    std::optional<DEVICE_KRLXDEF_ITEM> m_device;
    QAction *m_selectAction;
    QAction *m_noDeviceAction;
    QAction *m_saveOptionsAction;
    QAction *m_loadOptionsAction;
    QDockWidget *m_optionsDock;
    KCDeviceOptions *m_options;
    KCDataDoc *m_doc = nullptr;
    QMenu *m_recentMenu = nullptr;
};
