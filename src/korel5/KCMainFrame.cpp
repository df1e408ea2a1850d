#include "KCMainFrame.h"

#include "KCDeviceCountView.h"
#include "KCProjectChecksumDlg.h"
#include "KCSaveHandlerJobDlg.h"

#include "KCDeviceMenu.h"

#include "bufops/KCBufferFill.h"
#include "search/KCSearchDlgBox.h"
#include "bufops/KCJoinLanes.h"
#include "bufops/KCShuffleBuffer.h"
#include "bufops/KCSplitBuffer.h"
#include "host/KCNumberText.h"
#include "view/KCClipboardController.h"
#include "view/KCCopyAs.h"

#include "KCAppHost.h"
#include "KCChildFrame.h"
#include "doc/KCDataDoc.h"
#include "KCDataView.h"
#include "KCDocWatcher.h"
#include "doc/KCLayoutNames.h"
#include "host/KCMessageMarks.h"
#include "KCMessageWindow.h"
#include "KCSerialDefDlg.h"
#include "cKrlCSVSerialNumberDlg.h"
#include "KCSettingsDialog.h"
#include "KCStatusBar.h"
#include "KCWorkspaceTree.h"

#include <QAction>
#include <QLineEdit>
#include <QMessageBox>
#include <QInputDialog>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QTimer>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QMdiArea>
#include <QMenuBar>
#include <QMimeData>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int DefaultWidth = 1280;
constexpr int DefaultHeight = 800;
constexpr int CounterRefreshMs = 1000; // the counter dock follows the host's counts

std::string toPath(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

QString fromPath(const std::string &path)
{
    return QFile::decodeName(path.c_str());
}

// The local files among dropped data.
QStringList localFiles(const QMimeData *data)
{
    QStringList files;
    if (!data || !data->hasUrls())
        return files;
    const QList<QUrl> urls = data->urls();
    for (const QUrl &url : urls)
        if (url.isLocalFile())
            files << url.toLocalFile();
    return files;
}

} // namespace

KCMainFrame::KCMainFrame(const QString &settingsFile, QWidget *parent)
    : QMainWindow(parent), m_settings(settingsFile)
{
    setObjectName("mainFrame");
    resize(DefaultWidth, DefaultHeight);
    setAcceptDrops(true);

    m_mdi = new QMdiArea(this);
    m_mdi->setObjectName("mdiArea");
    m_mdi->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdi->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(m_mdi);
    connect(m_mdi, &QMdiArea::subWindowActivated, this, [this] { currentWindowChanged(); });

    m_status = new KCStatusBar(this);
    setStatusBar(m_status);
    createDocks();

    m_host = std::make_unique<KCAppHost>(this);
    if (!m_host->stringTableError().empty())
        m_messages->showMessage(KCMessageMarks::prefix(KCMessageMarks::Warning) + m_host->stringTableError());
    m_watcher = std::make_unique<KCDocWatcher>();
    connect(m_watcher.get(), &KCDocWatcher::documentUpdated, this, &KCMainFrame::documentUpdated);

    m_viewFont = m_settings.font();
    KCDataView::m_pFont = &m_viewFont;
    KCDocBase::recentFiles().clear();
    for (const QString &f : m_settings.recentFiles())
        KCDocBase::recentFiles().push_back(toPath(f));

    m_devices = new KCDeviceMenu(*this, m_settings);
    connect(m_devices, &KCDeviceMenu::deviceChanged, this, [this] {
        m_settings.save();
        if (m_doc)
            documentUpdated(DOCHINT_ALL);
    });
    createActions();
    createMenus();
    if (!m_settings.windowGeometry().isEmpty())
        restoreGeometry(m_settings.windowGeometry());
    if (!m_settings.windowState().isEmpty())
        restoreState(m_settings.windowState());
    updateTitle();
    updateActions();
}

KCMainFrame::~KCMainFrame()
{
    // Each close makes the next document current.
    while (m_doc)
        closeDocument(false);
    m_watcher.reset();
    if (KCDataView::m_pFont == &m_viewFont)
        KCDataView::m_pFont = nullptr;
    m_host.reset();
}

void KCMainFrame::createDocks()
{
    m_messages = new KCMessageWindow(this);
    auto *messageDock = new QDockWidget(tr("Messages"), this);
    messageDock->setObjectName("messageDock");
    messageDock->setWidget(m_messages);
    addDockWidget(Qt::BottomDockWidgetArea, messageDock);

    m_tree = new KCWorkspaceTree(this);
    m_tree->setOtherDocuments([this] {
        std::vector<KCDataDoc *> others;
        for (const auto &doc : m_otherDocs)
            others.push_back(doc.get());
        return others;
    });
    auto *treeDock = new QDockWidget(tr("Workspace"), this);
    treeDock->setObjectName("workspaceDock");
    treeDock->setWidget(m_tree);
    addDockWidget(Qt::LeftDockWidgetArea, treeDock);
    resizeDocks({treeDock}, {220}, Qt::Horizontal);

    // The production counter, refreshed from the host's counts.
    auto *counter = new KCDeviceCountView(this, g_pMainProgDataExChange);
    auto *counterDock = new QDockWidget(tr("Counter"), this);
    counterDock->setObjectName("counterDock");
    counterDock->setWidget(counter);
    addDockWidget(Qt::RightDockWidgetArea, counterDock);
    auto *counterTimer = new QTimer(counter);
    connect(counterTimer, &QTimer::timeout, counter, &KCDeviceCountView::DrawCountInfo);
    counterTimer->start(CounterRefreshMs);
    counter->DrawCountInfo();
    resizeDocks({messageDock}, {150}, Qt::Vertical);
    connect(m_tree, &KCWorkspaceTree::viewItemActivated, this, [this](KCDocView *view) {
        const QList<QMdiSubWindow *> windows = m_mdi->subWindowList();
        for (QMdiSubWindow *w : windows)
            if (static_cast<KCDocView *>(qobject_cast<KCDataView *>(w->widget())) == view) {
                m_mdi->setActiveSubWindow(w);
                w->widget()->setFocus();
            }
    });
}

void KCMainFrame::createActions()
{
    m_newAction = new QAction(tr("&New"), this);
    m_newAction->setShortcut(QKeySequence::New);
    connect(m_newAction, &QAction::triggered, this, &KCMainFrame::newDocument);

    m_openAction = new QAction(tr("&Open..."), this);
    m_openAction->setShortcut(QKeySequence::Open);
    connect(m_openAction, &QAction::triggered, this, [this] { KCDataDoc::OnFileOpen(m_host.get()); });

    m_reloadAction = new QAction(tr("&Reload..."), this);
    m_reloadAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    connect(m_reloadAction, &QAction::triggered, this, &KCMainFrame::reload);

    m_saveAction = new QAction(tr("&Save"), this);
    m_saveAction->setShortcut(QKeySequence::Save);
    connect(m_saveAction, &QAction::triggered, this, [this] { save(false); });

    m_saveAsAction = new QAction(tr("Save &As..."), this);
    m_saveAsAction->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    connect(m_saveAsAction, &QAction::triggered, this, [this] { save(true); });

    m_closeAction = new QAction(tr("&Close"), this);
    m_closeAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));
    connect(m_closeAction, &QAction::triggered, this, [this] { closeDocument(true); });

    m_settingsAction = new QAction(tr("Se&ttings..."), this);
    connect(m_settingsAction, &QAction::triggered, this, &KCMainFrame::editSettings);

    m_exitAction = new QAction(tr("E&xit"), this);
    m_exitAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(m_exitAction, &QAction::triggered, this, &QWidget::close);

    m_layoutGroup = new QActionGroup(this);
    auto layoutAction = [this](const QString &text, const char *layout, Qt::Key key) {
        auto *a = new QAction(text, m_layoutGroup);
        a->setCheckable(true);
        a->setShortcut(QKeySequence(Qt::CTRL | key));
        a->setData(QString(layout));
        connect(a, &QAction::triggered, this, [this, layout] { showLayout(layout); });
        return a;
    };
    m_byteAction = layoutAction(tr("&Bytes"), LAYOUT_BYTEVIEW, Qt::Key_1);
    m_wordAction = layoutAction(tr("&Words"), LAYOUT_WORDVIEW, Qt::Key_2);
    m_fuseAction = layoutAction(tr("&Fuse Map"), LAYOUT_JEDVIEW, Qt::Key_3);

    m_newWindowAction = new QAction(tr("New &Window"), this);
    connect(m_newWindowAction, &QAction::triggered, this, &KCMainFrame::newWindow);

    m_undoAction = new QAction(tr("&Undo"), this);
    m_undoAction->setShortcut(QKeySequence::Undo);
    connect(m_undoAction, &QAction::triggered, this, [this] {
        if (m_doc)
            m_doc->Undo();
        updateUndoActions();
    });
    m_redoAction = new QAction(tr("&Redo"), this);
    m_redoAction->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    connect(m_redoAction, &QAction::triggered, this, [this] {
        if (m_doc)
            m_doc->Redo();
        updateUndoActions();
    });

    const auto editAction = [this](const QString &text, QKeySequence::StandardKey key, auto command) {
        auto *a = new QAction(text, this);
        a->setShortcut(key);
        connect(a, &QAction::triggered, this, [this, command] {
            KCDataView *view = currentView();
            if (!m_doc || !view)
                return;
            KCClipboardController controller(view->model(), m_clipboard);
            command(controller, *view);
            view->viewport()->update();
            updateMarkSum(view);
        });
        return a;
    };
    m_cutAction = editAction(tr("Cu&t"), QKeySequence::Cut,
                             [](KCClipboardController &c, KCDataView &) { c.OnEditCut(); });
    m_copyAction = editAction(tr("&Copy"), QKeySequence::Copy,
                              [](KCClipboardController &c, KCDataView &) { c.OnEditCopy(); });
    m_pasteAction = editAction(tr("&Paste"), QKeySequence::Paste, [](KCClipboardController &c, KCDataView &v) {
        c.OnEditPaste(v.isInsertMode());
    });

    m_selectAllAction = new QAction(tr("Select &All"), this);
    m_selectAllAction->setShortcut(QKeySequence::SelectAll);
    connect(m_selectAllAction, &QAction::triggered, this, [this] {
        KCDataView *view = currentView();
        if (view && m_doc && m_doc->GetBufferSize()) {
            view->model().setMarkRange(0, int64_t(m_doc->GetBufferSize()) - 1);
            view->viewport()->update();
            updateMarkSum(view);
        }
    });
    // Copy As: the marked bytes as text other programs take.
    const auto copyAs = [this](const QString &text, std::string (*format)(const uint8_t *, uint64_t, uint64_t)) {
        auto *a = new QAction(text, this);
        connect(a, &QAction::triggered, this, [this, format] {
            KCDataView *view = currentView();
            int64_t low = 0, high = 0;
            if (!m_doc || !view || !view->model().markRange(low, high) || low < 0
                || uint64_t(high) >= m_doc->GetBufferSize())
                return;
            const std::string out = format(m_doc->AlgoParam().buffer(0).data() + low, uint64_t(high - low) + 1,
                                           uint64_t(low));
            m_clipboard.put(reinterpret_cast<const uint8_t *>(out.data()), out.size(), 1);
        });
        return a;
    };
    m_copyAsActions = {
        copyAs(tr("&Hex Text"), [](const uint8_t *b, uint64_t n, uint64_t) { return KCCopyAs::hexText(b, n); }),
        copyAs(tr("&C Array"), KCCopyAs::cArray),
        copyAs(tr("&Intel HEX Records"), KCCopyAs::intelHex),
    };

    m_fillAction = new QAction(tr("&Fill..."), this);
    connect(m_fillAction, &QAction::triggered, this, [this] {
        if (!m_doc)
            return;
        KCBufferFill dialog(m_doc.get(), this);
        dialog.exec();
        if (KCDataView *view = currentView())
            view->viewport()->update();
    });

    // Edit > Find (the view's search command) and F3 / Shift+F3 to repeat it without the dialog.
    m_findAction = new QAction(tr("F&ind..."), this);
    m_findAction->setShortcut(QKeySequence::Find);
    m_findAction->setProperty("commandId", int(KCSearchDlgBox::ID_EDIT_SEARCH));
    connect(m_findAction, &QAction::triggered, this, [this] {
        KCDataView *view = currentView();
        if (!view)
            return;
        KCSearchDlgBox dialog(view, this);
        dialog.model().setListLimit(m_settings.hitListLimit());
        dialog.exec();
        view->viewport()->update();
    });
    m_findNextAction = new QAction(tr("Find &Next"), this);
    m_findNextAction->setShortcut(QKeySequence(Qt::Key_F3));
    connect(m_findNextAction, &QAction::triggered, this, [this] { KCSearchDlgBox::FindAgain(currentView(), true); });
    m_findPreviousAction = new QAction(tr("Find Pre&vious"), this);
    m_findPreviousAction->setShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F3));
    connect(m_findPreviousAction, &QAction::triggered, this, [this] { KCSearchDlgBox::FindAgain(currentView(), false); });

    m_goToAction = new QAction(tr("&Go To Address..."), this);
    m_goToAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
    connect(m_goToAction, &QAction::triggered, this, &KCMainFrame::goToAddress);

    m_swapAction = new QAction(tr("&Swap Bytes..."), this);
    m_swapAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_B));
    connect(m_swapAction, &QAction::triggered, this, [this] {
        if (m_doc)
            m_doc->OnSwapbytes();
    });

    m_splitAction = new QAction(tr("S&plit..."), this);
    connect(m_splitAction, &QAction::triggered, this, [this] {
        KCSplitBuffer dialog(m_mdi, [this] { return addDocument(); }, this);
        dialog.exec();
    });
    m_shuffleAction = new QAction(tr("Sh&uffle..."), this);
    connect(m_shuffleAction, &QAction::triggered, this, [this] {
        KCShuffleBuffer dialog(m_doc.get(), m_mdi, this);
        dialog.exec();
    });

    m_joinAction = new QAction(tr("&Join Lanes..."), this);
    connect(m_joinAction, &QAction::triggered, this, [this] {
        // The documents in the order of their windows.
        std::vector<KCDataDoc *> docs;
        for (QMdiSubWindow *w : m_mdi->subWindowList())
            if (auto *view = qobject_cast<KCDataView *>(w->widget()))
                if (std::find(docs.begin(), docs.end(), view->document()) == docs.end())
                    docs.push_back(view->document());
        KCJoinLanes dialog(docs, [this] { return addDocument(); }, this);
        dialog.exec();
    });

    m_serialAction = new QAction(tr("Serial &Numbers..."), this);
    connect(m_serialAction, &QAction::triggered, this, [this] {
        if (!m_doc)
            return;
        KCSerialDefDlg dialog(this, m_doc.get());
        dialog.exec();
        updateActions();
    });
    m_csvSerialAction = new QAction(tr("CSV Serial &Variables..."), this);
    connect(m_csvSerialAction, &QAction::triggered, this, &KCMainFrame::chooseCsvSerialFile);
    m_takeSerialAction = new QAction(tr("&Take Next Serial Number"), this);
    m_takeSerialAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
    connect(m_takeSerialAction, &QAction::triggered, this, &KCMainFrame::takeNextSerialNumber);
}

void KCMainFrame::chooseCsvSerialFile()
{
    if (!m_doc)
        return;
    cKrlCSVSerialNumberDlg dialog(this, m_doc.get(), &m_doc->getKrlSerialNumberHandler(),
                                  fromPath(m_doc->csvSerialData().path()));
    if (dialog.exec() != QDialog::Accepted)
        return;
    std::string error;
    KCMainProgDataExChange &host = *m_host;
    const std::string path = toPath(dialog.fileName());
    if (m_doc->setCSVSerialProjectFile(path, error))
        host.ShowMessage("CSV serial variables file: " + path);
    else
        host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + error);
    updateActions();
}

void KCMainFrame::takeNextSerialNumber()
{
    if (!m_doc || m_doc->serialMode() == 0)
        return;
    // As before each device of a production run: the number is consumed from the file, but
    // only when it can be written whole where it belongs.
    std::string report;
    if (m_doc->serialState().takeNext(report)) {
        g_pMainProgDataExChange->ShowMessage(report);
        return;
    }
    const std::string text = "No serial number was taken: " + report;
    g_pMainProgDataExChange->ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + text);
    g_pMainProgDataExChange->MessageBox(text, KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
}

void KCMainFrame::createMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->addAction(m_newAction);
    file->addAction(m_openAction);
    file->addAction(m_reloadAction);
    file->addAction(m_saveAction);
    file->addAction(m_saveAsAction);
    file->addAction(m_closeAction);
    file->addSeparator();
    // Production: a handler job with its CRC-16, and the operator's check of it.
    file->addAction(tr("Save &Handler Job..."), this, [this] {
        if (!m_doc)
            return;
        KCSaveHandlerJobDlg dialog(this, m_doc.get());
        dialog.exec();
    });
    file->addAction(tr("Check Project Check&sum..."), this, [this] {
        const QString path = QFileDialog::getOpenFileName(
            this, tr("Check Project Checksum"), QString(),
            tr("Korel Handler Job File (*.handlerjob);;Korel Project File 2 (*.kpf2);;All files (*)"), nullptr,
            QFileDialog::DontUseNativeDialog);
        if (path.isEmpty())
            return;
        KCProjectChecksumDlg dialog(this, path.toStdString());
        if (dialog.exec() == QDialog::Accepted)
            g_pMainProgDataExChange->ShowMessage("Checksum OK: " + path.toStdString());
    });
    file->addSeparator();
    m_recentMenu = file->addMenu(tr("Recent &Files"));
    connect(m_recentMenu, &QMenu::aboutToShow, this, &KCMainFrame::updateRecentMenu);
    file->addSeparator();
    file->addAction(m_settingsAction);
    file->addSeparator();
    file->addAction(m_exitAction);

    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    edit->addAction(m_undoAction);
    edit->addAction(m_redoAction);
    edit->addSeparator();
    edit->addAction(m_cutAction);
    edit->addAction(m_copyAction);
    edit->addAction(m_pasteAction);
    QMenu *copyAs = edit->addMenu(tr("Copy &As"));
    copyAs->addActions(m_copyAsActions);
    edit->addAction(m_selectAllAction);
    edit->addSeparator();
    edit->addAction(m_fillAction);
    edit->addAction(m_goToAction);
    edit->addAction(m_findAction);
    edit->addAction(m_findNextAction);
    edit->addAction(m_findPreviousAction);
    // Paste is offered while the clipboard holds bytes in a format it takes.
    connect(edit, &QMenu::aboutToShow, this, [this] { m_pasteAction->setEnabled(m_doc && !m_clipboard.isEmpty()); });

    QMenu *view = menuBar()->addMenu(tr("&View"));
    view->addActions(m_layoutGroup->actions());
    view->addSeparator();
    view->addAction(m_newWindowAction);

    QMenu *device = menuBar()->addMenu(tr("&Device"));
    m_devices->addTo(device);

    QMenu *buffer = menuBar()->addMenu(tr("&Buffer"));
    buffer->addAction(m_swapAction);
    buffer->addAction(m_splitAction);
    buffer->addAction(m_shuffleAction);
    buffer->addAction(m_joinAction);
    buffer->addSeparator();
    buffer->addAction(m_serialAction);
    buffer->addAction(m_csvSerialAction);
    buffer->addAction(m_takeSerialAction);

    QMenu *window = menuBar()->addMenu(tr("&Window"));
    // Windows no longer maximized show their titles again.
    window->addAction(tr("&Tile"), this, [this] {
        m_mdi->tileSubWindows();
        updateTitle();
    });
    window->addAction(tr("&Cascade"), this, [this] {
        m_mdi->cascadeSubWindows();
        updateTitle();
    });
    window->addAction(tr("&Next"), QKeySequence(Qt::CTRL | Qt::Key_F6), m_mdi, &QMdiArea::activateNextSubWindow);
    updateRecentMenu();
}

int KCMainFrame::documentCount() const
{
    return (m_doc ? 1 : 0) + int(m_otherDocs.size()) + m_pendingDocuments;
}

KCDataDoc *KCMainFrame::addDocument()
{
    auto doc = std::make_unique<KCDataDoc>();
    doc->ComputeCheckSum(-1);
    install(std::move(doc));
    return m_doc.get();
}

void KCMainFrame::makeCurrent(KCDataDoc *doc)
{
    auto it = std::find_if(m_otherDocs.begin(), m_otherDocs.end(), [doc](const auto &d) { return d.get() == doc; });
    if (it == m_otherDocs.end())
        return;
    if (m_doc) {
        std::swap(m_doc, *it);
    } else {
        m_doc = std::move(*it);
        m_otherDocs.erase(it);
    }
    m_watcher->watch(m_doc.get());
    m_devices->setDocument(m_doc.get());
    m_doc->PrintCheckSum(-1);
    m_status->setModified(m_doc->IsModified());
    m_tree->rebuild(m_doc.get());
    updateTitle();
    updateActions();
}

namespace {

bool hasDataView(const KCDataDoc &doc)
{
    for (KCDocView *v : doc.views())
        if (v->isDataView())
            return true;
    return false;
}

} // namespace

void KCMainFrame::closeDocumentsWithoutWindows()
{
    for (auto it = m_otherDocs.begin(); it != m_otherDocs.end();) {
        if (hasDataView(**it)) {
            ++it;
            continue;
        }
        (*it)->OnCloseDocument();
        it = m_otherDocs.erase(it);
    }
    if (m_doc && !m_closingDocument && !hasDataView(*m_doc))
        closeDocument(false);
}

KCDataView *KCMainFrame::currentView() const
{
    QMdiSubWindow *w = m_mdi->currentSubWindow();
    if (!w && !m_mdi->subWindowList().isEmpty())
        w = m_mdi->subWindowList().constFirst();
    return w ? qobject_cast<KCDataView *>(w->widget()) : nullptr;
}

bool KCMainFrame::newDocument()
{
    ++m_pendingDocuments;
    auto doc = std::make_unique<KCDataDoc>();
    // The document itself refuses a second buffer document.
    const bool ok = doc->OnNewDocument();
    --m_pendingDocuments;
    if (!ok)
        return false;
    m_devices->applyTo(*doc);
    install(std::move(doc));
    m_doc->ComputeCheckSum(-1);
    return true;
}

bool KCMainFrame::openFile(const QString &path)
{
    return KCDataDoc::OnOpenDocumentFile(toPath(QFileInfo(path).absoluteFilePath()).c_str()) != nullptr;
}

KCDocBase *KCMainFrame::openDocumentFile(const std::string &path)
{
    if (m_doc && !m_doc->SaveModified())
        return nullptr;
    m_status->showMessage(tr("Loading %1 ...").arg(fromPath(path)));
    // The load runs without returning to the event loop: show the note now.
    m_status->repaint();
    m_host->BeginWaitCursor();
    ++m_pendingDocuments;
    auto doc = std::make_unique<KCDataDoc>();
    m_devices->applyToOpening(*doc); // the file loads through the device's ranges
    const bool ok = doc->OnOpenDocument(path.c_str());
    --m_pendingDocuments;
    m_host->EndWaitCursor();
    m_status->clearMessage();
    if (!ok) {
        // The open document stays as it was; the message window says what went wrong.
        if (m_doc)
            m_doc->PrintCheckSum(-1);
        else
            m_status->clearDocumentPanes();
        return nullptr;
    }
    closeDocument(false);
    install(std::move(doc));
    saveRecentFiles();
    return m_doc.get();
}

void KCMainFrame::install(std::unique_ptr<KCDataDoc> doc)
{
    if (m_doc)
        m_otherDocs.push_back(std::move(m_doc));
    m_doc = std::move(doc);
    m_doc->undoHistory().setBudget(m_settings.undoBudgetBytes());
    m_watcher->watch(m_doc.get());
    m_devices->setDocument(m_doc.get());
    KCDataView *view = newWindow();
    if (view) {
        view->parentWidget()->showMaximized();
        applyFileTypeLayout(view);
    }
    m_doc->PrintCheckSum(-1);
    m_status->setModified(m_doc->IsModified());
    m_tree->rebuild(m_doc.get());
    updateTitle();
    updateActions();
}

void KCMainFrame::applyFileTypeLayout(KCDataView *view)
{
    const TAG_BUFFER_PARAM *param = m_doc ? m_doc->mainBufferParam() : nullptr;
    if (param && param->fileType == LS_JEDEC && m_doc->HavePathName())
        view->SetBufferLayoutView(LAYOUT_JEDVIEW);
}

KCDataView *KCMainFrame::newWindow()
{
    if (!m_doc)
        return nullptr;
    auto *view = new KCDataView(m_doc.get());
    auto *child = new KCChildFrame(this, view);
    m_mdi->addSubWindow(child);
    updateTitle();
    connect(view, &KCDataView::caretMoved, this, [this, view](quint64, const QString &text) {
        if (currentView() == view) {
            m_status->setCaretAddress(text);
            updateMarkSum(view);
        }
    });
    // The subwindow's own system-menu shortcuts (Ctrl+T "stay on top" among them) would make
    // the window's commands ambiguous while a view has the focus.
    if (QMenu *system = child->systemMenu())
        for (QAction *a : system->actions())
            a->setShortcut(QKeySequence());
    connect(view, &KCDataView::insertModeChanged, this, [this, view](bool insert) {
        if (currentView() == view)
            m_status->setInsertMode(insert);
    });
    connect(view, &QObject::destroyed, this, &KCMainFrame::viewDestroyed);
    // The view's context menu: the Edit commands.
    view->setContextMenuPolicy(Qt::ActionsContextMenu);
    view->addActions({m_undoAction, m_redoAction, m_cutAction, m_copyAction, m_pasteAction, m_selectAllAction,
                      m_fillAction, m_goToAction, m_findAction});
    view->OnInitialUpdate();
    child->show();
    view->setFocus();
    m_tree->rebuild(m_doc.get());
    currentWindowChanged();
    return view;
}

bool KCMainFrame::showLayout(const char *layoutName)
{
    KCDataView *view = currentView();
    if (!view || !view->SetBufferLayoutView(layoutName))
        return false;
    m_tree->rebuild(m_doc.get());
    currentWindowChanged();
    return true;
}

bool KCMainFrame::canCloseWindow(KCChildFrame *child)
{
    KCDataDoc *doc = child->view() ? child->view()->document() : nullptr;
    if (m_closingDocument || !doc)
        return true;
    int dataViews = 0;
    for (KCDocView *v : doc->views())
        dataViews += v->isDataView() ? 1 : 0;
    // The last window takes its document with it (see viewDestroyed).
    if (dataViews <= 1)
        return doc->SaveModified();
    return true;
}

void KCMainFrame::viewDestroyed()
{
    if (m_closingDocument || !m_doc)
        return;
    if (hasDataView(*m_doc) && std::all_of(m_otherDocs.begin(), m_otherDocs.end(), [](const auto &d) { return hasDataView(*d); })) {
        m_tree->rebuild(m_doc.get());
        return;
    }
    // The window is still being torn down: close its document once that is over.
    QTimer::singleShot(0, this, [this] {
        if (!m_closingDocument)
            closeDocumentsWithoutWindows();
    });
}

bool KCMainFrame::closeDocument(bool ask)
{
    if (!m_doc)
        return true;
    if (ask && !m_doc->SaveModified())
        return false;
    m_closingDocument = true;
    const QList<QMdiSubWindow *> windows = m_mdi->subWindowList();
    for (QMdiSubWindow *w : windows) {
        auto *view = qobject_cast<KCDataView *>(w->widget());
        if (!view || view->document() == m_doc.get())
            delete w;
    }
    m_watcher->watch(nullptr);
    m_devices->setDocument(nullptr);
    m_doc->OnCloseDocument();
    m_doc.reset();
    // Another open document becomes the current one.
    if (!m_otherDocs.empty()) {
        m_doc = std::move(m_otherDocs.back());
        m_otherDocs.pop_back();
        m_watcher->watch(m_doc.get());
        m_devices->setDocument(m_doc.get());
    }
    m_closingDocument = false;
    currentWindowChanged();
    m_tree->rebuild(m_doc.get());
    if (m_doc)
        m_doc->PrintCheckSum(-1);
    else
        m_status->clearDocumentPanes();
    updateTitle();
    updateActions();
    return true;
}

void KCMainFrame::documentUpdated(long hint)
{
    if (!m_doc)
        return;
    if (hint == DOCHINT_PLACEMENT) {
        const auto &items = m_doc->viewItems();
        auto *view = items.empty() ? nullptr : dynamic_cast<KCDataView *>(items.front().view);
        auto *child = view ? qobject_cast<KCChildFrame *>(view->parentWidget()) : nullptr;
        if (child && m_doc->windowPlacement())
            child->applyPlacement(*m_doc->windowPlacement());
        return;
    }
    m_status->setModified(m_doc->IsModified());
    updateMarkSum(currentView());
    updateUndoActions();
    if (hint == DOCHINT_MODIFIED_FLAG || hint == DOCHINT_ALL) {
        m_tree->rebuild(m_doc.get());
        updateTitle();
        updateActions();
    }
}

void KCMainFrame::currentWindowChanged()
{
    KCDataView *view = currentView();
    // While a document closes its windows go one by one: the next current one is chosen after.
    if (view && view->document() != m_doc.get() && !m_closingDocument)
        makeCurrent(view->document());
    if (!view) {
        m_status->setCaretAddress(QString());
        for (QAction *a : m_layoutGroup->actions())
            a->setChecked(false);
        return;
    }
    m_status->setCaretAddress(view->caretAddressText());
    m_status->setInsertMode(view->isInsertMode());
    const QString layout = QString::fromStdString(view->GetBufferLayoutName());
    for (QAction *a : m_layoutGroup->actions())
        a->setChecked(a->data().toString() == layout);
}

void KCMainFrame::updateTitle()
{
    // The application's name follows the document's as the platform adds it: "name[*] — KOREL5".
    // A maximized subwindow would add its own title in brackets; its title bar is hidden then,
    // so it carries none while maximized.
    const QString title = m_doc ? QString::fromStdString(m_doc->displayName()) : QString();
    const QList<QMdiSubWindow *> windows = m_mdi->subWindowList();
    // Each window is named after its own document, numbered among that document's windows.
    std::vector<std::pair<KCDataDoc *, int>> seen;
    for (QMdiSubWindow *w : windows) {
        auto *view = qobject_cast<KCDataView *>(w->widget());
        KCDataDoc *doc = view ? view->document() : m_doc.get();
        const int total = int(std::count_if(windows.begin(), windows.end(), [doc](QMdiSubWindow *o) {
            auto *v = qobject_cast<KCDataView *>(o->widget());
            return (v ? v->document() : nullptr) == doc;
        }));
        auto it = std::find_if(seen.begin(), seen.end(), [doc](const auto &p) { return p.first == doc; });
        const int number = it == seen.end() ? (seen.push_back({doc, 1}), 1) : ++it->second;
        const QString own = doc ? QString::fromStdString(doc->displayName()) : QString();
        w->setWindowTitle(w->isMaximized() ? QString() : total > 1 ? QString("%1:%2").arg(own).arg(number) : own);
    }
    setWindowTitle(m_doc ? title + "[*]" : QString());
    setWindowModified(m_doc && m_doc->IsModified() != 0);
}

void KCMainFrame::goToAddress()
{
    KCDataView *view = currentView();
    if (!m_doc || !view)
        return;
    // In the units of the layout the view shows, as its address column and the status bar do.
    bool ok = false;
    const QString text = QInputDialog::getText(this, tr("Go To Address"),
                                               tr("Address (hexadecimal, as the view shows it):"), QLineEdit::Normal,
                                               view->caretAddressText(), &ok);
    if (!ok)
        return;
    uint64_t address = 0;
    if (!KCNumberText::parse(text.toStdString(), address, UINT32_MAX, 16) || !view->model().goToDisplayAddress(address)) {
        QMessageBox::warning(this, tr("Go To Address"),
                             tr("%1 is no address of this buffer.").arg(text.trimmed()));
        return;
    }
    view->setFocus();
}

void KCMainFrame::updateUndoActions()
{
    KCUndoHistory *history = m_doc ? &m_doc->undoHistory() : nullptr;
    m_undoAction->setEnabled(history && history->canUndo());
    m_redoAction->setEnabled(history && history->canRedo());
    m_undoAction->setText(history && history->canUndo()
                              ? tr("&Undo %1").arg(QString::fromStdString(history->undoName()))
                              : tr("&Undo"));
    m_redoAction->setText(history && history->canRedo()
                              ? tr("&Redo %1").arg(QString::fromStdString(history->redoName()))
                              : tr("&Redo"));
}

void KCMainFrame::updateMarkSum(KCDataView *view)
{
    int64_t low = 0, high = 0;
    if (!m_doc || !view || !view->model().markRange(low, high) || low < 0
        || uint64_t(high) >= m_doc->GetBufferSize()) {
        m_status->setMarkSum(QString());
        return;
    }
    const uint32_t sum = m_doc->checksumOf(uint64_t(low), uint64_t(high));
    const auto hex = [](quint64 v) { return QString::number(v, 16).toUpper().rightJustified(8, QLatin1Char('0')); };
    m_status->setMarkSum(tr("Marked 0x%1-0x%2: sum 0x%3").arg(hex(quint64(low)), hex(quint64(high)), hex(sum)));
}

void KCMainFrame::updateActions()
{
    const bool hasDoc = m_doc != nullptr;
    m_reloadAction->setEnabled(hasDoc && m_doc->CanReloadDoc());
    m_saveAction->setEnabled(hasDoc);
    m_saveAsAction->setEnabled(hasDoc);
    m_closeAction->setEnabled(hasDoc);
    m_cutAction->setEnabled(hasDoc);
    m_copyAction->setEnabled(hasDoc);
    m_pasteAction->setEnabled(hasDoc);
    m_goToAction->setEnabled(hasDoc);
    m_selectAllAction->setEnabled(hasDoc);
    m_fillAction->setEnabled(hasDoc);
    m_findAction->setEnabled(hasDoc);
    m_findNextAction->setEnabled(hasDoc);
    m_findPreviousAction->setEnabled(hasDoc);
    updateUndoActions();
    m_swapAction->setEnabled(hasDoc);
    m_splitAction->setEnabled(hasDoc);
    m_shuffleAction->setEnabled(hasDoc && !m_otherDocs.empty());
    m_joinAction->setEnabled(hasDoc && !m_otherDocs.empty());
    m_serialAction->setEnabled(hasDoc);
    m_takeSerialAction->setEnabled(hasDoc && m_doc->serialMode() != 0);
    m_csvSerialAction->setEnabled(hasDoc);
    m_newWindowAction->setEnabled(hasDoc);
    m_layoutGroup->setEnabled(hasDoc);
}

void KCMainFrame::updateRecentMenu()
{
    m_recentMenu->clear();
    const std::vector<std::string> &files = KCDocBase::recentFiles();
    for (size_t i = 0; i < files.size(); ++i) {
        const QString path = fromPath(files[i]);
        QAction *a = m_recentMenu->addAction(QString("&%1 %2").arg(i + 1).arg(path));
        connect(a, &QAction::triggered, this, [this, path] { openFile(path); });
    }
    m_recentMenu->setEnabled(!files.empty());
}

void KCMainFrame::saveRecentFiles()
{
    QStringList files;
    for (const std::string &f : KCDocBase::recentFiles())
        files << fromPath(f);
    m_settings.setRecentFiles(files);
    updateRecentMenu();
}

void KCMainFrame::save(bool askForName)
{
    if (!m_doc)
        return;
    const TAG_BUFFER_PARAM *param = m_doc->mainBufferParam();
    const bool ask = askForName || (param && (param->saveFlags & BUFFER_SAVE_ASK_NAME));
    m_doc->SaveDoc(ask ? 1 : 0);
    saveRecentFiles();
    m_tree->rebuild(m_doc.get()); // Save As renames the document
    updateTitle();
    updateActions();
}

void KCMainFrame::reload()
{
    if (!m_doc)
        return;
    m_doc->OnFileReLoad();
    if (KCDataView *view = currentView())
        applyFileTypeLayout(view);
    m_tree->rebuild(m_doc.get());
    updateTitle();
    updateActions();
}

void KCMainFrame::editSettings()
{
    KCSettingsDialog dialog(m_settings, this);
    if (dialog.exec() != QDialog::Accepted || !dialog.applyTo(m_settings))
        return;
    if (dialog.fontChanged())
        applyFont();
    if (m_doc)
        m_doc->undoHistory().setBudget(m_settings.undoBudgetBytes());
    m_settings.save();
}

void KCMainFrame::applyFont()
{
    m_viewFont = m_settings.font();
    const QList<QMdiSubWindow *> windows = m_mdi->subWindowList();
    for (QMdiSubWindow *w : windows)
        if (auto *view = qobject_cast<KCDataView *>(w->widget()))
            view->InitTextMetrics();
}

void KCMainFrame::closeEvent(QCloseEvent *event)
{
    // Closing the current document makes the next one current: each is asked in turn.
    while (m_doc) {
        if (!closeDocument(true)) {
            event->ignore();
            return;
        }
    }
    saveRecentFiles();
    m_settings.setWindow(saveGeometry(), saveState());
    m_settings.save();
    event->accept();
}

void KCMainFrame::dragEnterEvent(QDragEnterEvent *event)
{
    if (!localFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void KCMainFrame::dropEvent(QDropEvent *event)
{
    const QStringList files = localFiles(event->mimeData());
    if (files.isEmpty())
        return;
    event->acceptProposedAction();
    // One buffer document: the first file is the one opened.
    const QString path = files.constFirst();
    QTimer::singleShot(0, this, [this, path] { openFile(path); });
}
