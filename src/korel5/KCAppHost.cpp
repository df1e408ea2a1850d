#include "KCAppHost.h"
#include "fileio/KCFileDialogRequest.h"

#include "serial/KCSerialDefCtrl.h"

#include <QDir>
#include <QStandardPaths>

#include "KCAppSettings.h"
#include "KCFileDialog.h"
#include "KCMainFrame.h"
#include "host/KCMessageMarks.h"
#include "KCMessageWindow.h"
#include "KCStatusBar.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>

#include <cstdio>

namespace {

QString toQString(const std::string &s)
{
    return QString::fromUtf8(s.data(), int(s.size()));
}

std::string toPath(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

} // namespace

KCAppHost::KCAppHost(KCMainFrame *frame) : m_frame(frame), m_previousHost(g_pMainProgDataExChange)
{
    m_strings.load(KCHostStringTable::defaultPath(), &m_stringError);
    g_pMainProgDataExChange = this;
}

KCAppHost::~KCAppHost()
{
    while (m_waitDepth > 0)
        EndWaitCursor();
    if (g_pMainProgDataExChange == this)
        g_pMainProgDataExChange = m_previousHost;
}

void KCAppHost::ShowMessage(const std::string &text, uint32_t textColor, uint32_t backColor, int)
{
    m_frame->messageWindow()->showMessage(text, textColor, backColor);
    // Nobody reads the window of a screenshot run: its errors and warnings go to stderr too.
    if (!m_interactive) {
        const KCMessageMarks::Parsed p = KCMessageMarks::parse(text);
        if (p.severity == KCMessageMarks::Error || p.severity == KCMessageMarks::Warning)
            std::fprintf(stderr, "korel5: %s%s\n", p.severity == KCMessageMarks::Error ? "error: " : "warning: ",
                         p.text.c_str());
    }
}

void KCAppHost::SetStatusBarText(unsigned paneId, const std::string &text)
{
    m_frame->statusPanes()->setPaneText(paneId, toQString(text));
}

int KCAppHost::MessageBox(const std::string &text, unsigned type)
{
    const unsigned buttons = type & KCPrompt::MB_BUTTONMASK;
    if (!m_interactive) {
        // Nothing destructive happens unasked: a question is answered No, a confirmation Cancel.
        switch (buttons) {
        case KCPrompt::MB_OK: return KCPrompt::IDOK;
        case KCPrompt::MB_YESNO: return KCPrompt::IDNO;
        default: return KCPrompt::IDCANCEL;
        }
    }
    QMessageBox box(m_frame);
    box.setWindowTitle(QApplication::applicationDisplayName());
    box.setText(toQString(text));
    switch (type & KCPrompt::MB_ICONMASK) {
    case KCPrompt::MB_ICONERROR: box.setIcon(QMessageBox::Critical); break;
    case KCPrompt::MB_ICONQUESTION: box.setIcon(QMessageBox::Question); break;
    case KCPrompt::MB_ICONEXCLAMATION: box.setIcon(QMessageBox::Warning); break;
    case KCPrompt::MB_ICONINFORMATION: box.setIcon(QMessageBox::Information); break;
    default: break;
    }
    switch (buttons) {
    case KCPrompt::MB_OKCANCEL: box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel); break;
    case KCPrompt::MB_YESNOCANCEL:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    case KCPrompt::MB_YESNO: box.setStandardButtons(QMessageBox::Yes | QMessageBox::No); break;
    default: box.setStandardButtons(QMessageBox::Ok); break;
    }
    // A long operation's busy cursor must not hide the pointer over the question.
    const bool busy = QApplication::overrideCursor() != nullptr;
    if (busy)
        QApplication::setOverrideCursor(Qt::ArrowCursor);
    const int answer = box.exec();
    if (busy)
        QApplication::restoreOverrideCursor();
    switch (answer) {
    case QMessageBox::Ok: return KCPrompt::IDOK;
    case QMessageBox::Yes: return KCPrompt::IDYES;
    case QMessageBox::No: return KCPrompt::IDNO;
    default: return KCPrompt::IDCANCEL;
    }
}

int KCAppHost::GetOpenDataDocumentCount() const
{
    return m_frame->documentCount();
}

uint64_t KCAppHost::GetDefaultBufferSize() const
{
    return m_frame->settings().defaultBufferSize();
}

uint8_t KCAppHost::GetFillByte() const
{
    return m_frame->settings().fillByte();
}

std::string KCAppHost::GetLastDirectory() const
{
    return toPath(m_frame->settings().lastDirectory());
}

void KCAppHost::SetLastDirectory(const std::string &dir)
{
    m_frame->settings().setLastDirectory(QFile::decodeName(dir.c_str()));
}

void KCAppHost::BeginWaitCursor()
{
    ++m_waitDepth;
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

void KCAppHost::EndWaitCursor()
{
    if (m_waitDepth == 0)
        return;
    --m_waitDepth;
    QApplication::restoreOverrideCursor();
}

bool KCAppHost::RunFileDialog(KCFileDialogRequest &request)
{
    if (!m_interactive)
        return false;
    KCFileDialog::m_CallFromMenue = request.origin;
    KCFileDialog::m_LoadSaveType = request.loadSaveType;
    KCFileDialog dialog(request.origin != CALLFROM_SAVE, QString(), QString(), request.flags, m_frame);
    const QFileInfo initial(QFile::decodeName(request.initialPath.c_str()));
    if (!request.initialPath.empty()) {
        if (initial.isDir()) {
            dialog.setDirectory(initial.absoluteFilePath());
        } else {
            dialog.setDirectory(initial.absolutePath());
            dialog.selectFile(initial.fileName());
        }
    }
    dialog.selectFilterType(request.filterType);
    if (dialog.DoModal() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    request.path = toPath(dialog.selectedFiles().constFirst());
    const FILTERTYPE filter = dialog.selectedFilterType();
    request.chosenFilterType = filter == FILTER_INVALID ? FILTER_ALL : filter;
    request.chosenLoadSaveType = KCFileDialog::m_LoadSaveType;
    return !request.path.empty();
}

KCDocBase *KCAppHost::OpenDocumentFile(const std::string &path)
{
    return m_frame->openDocumentFile(path);
}

std::string KCAppHost::GetSerialDefaultFilePath() const
{
    // The default definition file belongs to the user, beside the program's settings.
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(dir);
    return (dir + "/" + KCSerialDefCtrl::DefaultFileName).toStdString();
}
