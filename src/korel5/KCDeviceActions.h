#pragma once

#include "engine/KCEngineResult.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

struct DEVICE_KRLXDEF_ITEM;
class KCDeviceMenu;
class KCEngine;
class KCMainFrame;
class QAction;
class QMenu;
class QProgressDialog;

// The Device menu's engine commands: Read, Blank Check, Erase, Program, Verify, Auto and
// Production Run..., each with a progress bar and Stop. The engine works off the window's
// thread; the window only shows its progress and forwards Stop. The engine and programmer
// are chosen with Programmer...; a device flashrom emulates starts on the emulator.
class KCDeviceActions : public QObject
{
    Q_OBJECT
public:
    KCDeviceActions(KCMainFrame &frame, KCDeviceMenu &devices);
    void addTo(QMenu *menu);

    enum Command { Read, BlankCheck, Erase, Program, Verify, Auto };
    // Runs one command on the current document's device; the result as the engine said it.
    KCEngineResult runCommand(Command command);
    // Programs `quantity` devices as a production run with the document's serial settings.
    bool productionRun(unsigned quantity);

    void setEngine(const QString &engine, const QString &programmer);
    QString programmer() const;
    QString engineName() const;

private:
    // The current document's device: the one its image and options were made for, which an
    // opened project brings along whatever the Device menu holds. The menu's without one.
    const DEVICE_KRLXDEF_ITEM *device() const;
    std::unique_ptr<KCEngine> makeEngine(QString *why);
    // Runs `work` on a thread of its own while the window keeps painting; Stop cancels.
    KCEngineResult runOffThread(KCEngine &engine, const std::function<KCEngineResult()> &work);
    void updateEnabled();

    KCMainFrame &m_frame;
    KCDeviceMenu &m_devices;
    QString m_engine;
    QString m_programmer;
    QProgressDialog *m_progress = nullptr;
    QList<QAction *> m_actions;
};
