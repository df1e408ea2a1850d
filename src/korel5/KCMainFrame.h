#pragma once

#include "view/KCClipboardClass.h"

#include "KCAppSettings.h"

#include <QFont>
#include <QMainWindow>

#include <memory>
#include <string>

class KCAppHost;
class KCChildFrame;
class KCDataDoc;
class KCDataView;
class KCDeviceMenu;
class KCDocBase;
class KCDocWatcher;
class KCMessageWindow;
class KCStatusBar;
class KCWorkspaceTree;
class QAction;
class QActionGroup;
class QMdiArea;
class QMdiSubWindow;
class QMenu;

// korel5's main window: the multiple-document area with the buffer documents' views, the
// message window and the workspace tree as docks, the status bar, the menus. It owns the
// buffer documents and the host object the library talks to. The document of the current
// window is the current document, which every command works on; File New keeps to one
// buffer document, while a split adds one document per lane.
class KCMainFrame : public QMainWindow
{
    Q_OBJECT
public:
    // `settingsFile` empty: the user's settings; otherwise a file of its own.
    explicit KCMainFrame(const QString &settingsFile = QString(), QWidget *parent = nullptr);
    ~KCMainFrame() override;

    KCAppHost &host() { return *m_host; }
    KCAppSettings &settings() { return m_settings; }
    KCMessageWindow *messageWindow() const { return m_messages; }
    KCStatusBar *statusPanes() const { return m_status; }
    KCWorkspaceTree *workspaceTree() const { return m_tree; }
    QMdiArea *mdiArea() const { return m_mdi; }
    KCDeviceMenu *devices() const { return m_devices; }

    // The current document.
    KCDataDoc *document() const { return m_doc.get(); }
    // Another buffer document in a window of its own, made the current one (a lane of a split).
    KCDataDoc *addDocument();
    // Documents open, counting one being created.
    int documentCount() const;
    // The view of the current document window, null without one.
    KCDataView *currentView() const;

    // File New: a new buffer document (refused while one is open).
    bool newDocument();
    // Opens a file by name as the command line, drag and drop and the recent list do: the
    // file type follows the extension. False when it was not opened.
    bool openFile(const QString &path);
    // The host's entry: replaces the current document by the file (asking to save first).
    KCDocBase *openDocumentFile(const std::string &path);
    // Closes the document with its windows; `ask`: SaveModified first. False when kept.
    bool closeDocument(bool ask);
    // Another window on the document.
    KCDataView *newWindow();
    // Shows a named layout in the current view.
    bool showLayout(const char *layoutName);

    // Asked by a document window before it closes.
    bool canCloseWindow(KCChildFrame *child);

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void createActions();
    void createMenus();
    void createDocks();
    void install(std::unique_ptr<KCDataDoc> doc);
    void makeCurrent(KCDataDoc *doc);
    void closeDocumentsWithoutWindows();
    void applyFileTypeLayout(KCDataView *view);
    void documentUpdated(long hint);
    void viewDestroyed();
    void currentWindowChanged();
    void updateTitle();
    void updateActions();
    void updateMarkSum(KCDataView *view);
    void updateUndoActions();
    void goToAddress();
    void takeNextSerialNumber();
    void chooseCsvSerialFile();
    void updateRecentMenu();
    void saveRecentFiles();
    void save(bool askForName);
    void reload();
    void editSettings();
    void applyFont();

    KCAppSettings m_settings;
    QFont m_viewFont;
    KCMessageWindow *m_messages = nullptr;
    KCStatusBar *m_status = nullptr;
    KCWorkspaceTree *m_tree = nullptr;
    QMdiArea *m_mdi = nullptr;
    std::unique_ptr<KCAppHost> m_host;
    std::unique_ptr<KCDocWatcher> m_watcher;
    std::unique_ptr<KCDataDoc> m_doc;
    std::vector<std::unique_ptr<KCDataDoc>> m_otherDocs; // open besides the current one
    int m_pendingDocuments = 0;
    bool m_closingDocument = false;

    QAction *m_newAction = nullptr;
    QAction *m_openAction = nullptr;
    QAction *m_reloadAction = nullptr;
    QAction *m_saveAction = nullptr;
    QAction *m_closeAction = nullptr;
    QAction *m_undoAction = nullptr;
    QAction *m_cutAction = nullptr;
    QAction *m_goToAction = nullptr;
    QAction *m_selectAllAction = nullptr;
    QAction *m_fillAction = nullptr;
    QAction *m_findAction = nullptr;
    QAction *m_findNextAction = nullptr;
    QAction *m_findPreviousAction = nullptr;
    QList<QAction *> m_copyAsActions;
    QAction *m_copyAction = nullptr;
    QAction *m_pasteAction = nullptr;
    KCClipboardClass m_clipboard;
    QAction *m_redoAction = nullptr;
    QAction *m_saveAsAction = nullptr;
    QAction *m_settingsAction = nullptr;
    QAction *m_exitAction = nullptr;
    QAction *m_byteAction = nullptr;
    QAction *m_wordAction = nullptr;
    QAction *m_fuseAction = nullptr;
    QAction *m_newWindowAction = nullptr;
    QAction *m_swapAction = nullptr;
    QAction *m_splitAction = nullptr;
    QAction *m_shuffleAction = nullptr;
    QAction *m_joinAction = nullptr;
    QAction *m_serialAction = nullptr;
    QAction *m_takeSerialAction = nullptr;
    QAction *m_csvSerialAction = nullptr;
    QActionGroup *m_layoutGroup = nullptr;
    QMenu *m_recentMenu = nullptr;
    KCDeviceMenu *m_devices = nullptr;
};
