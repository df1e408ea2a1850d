// The document's open/save pipeline: dispatch by file type, the reader and writer adapters,
// the open and save commands, and safe saving through a temporary file.
#include "doc/KCDataDoc.h"
#include "fileio/KCFileDialogRequest.h"

#include "fileio/KCArchive.h"
#include "KCFdOutputStream.h"
#include "fileio/KCFileDialogCore.h"
#include "KCFileFormatRegistry.h"
#include "fileio/KCFileTypeTable.h"
#include "doc/KCImagePipeline.h"
#include "host/KCFormat.h"
#include "fileio/KCHostFileMessage.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"
#include "KCMappedFile.h"
#include "fileio/KCSaveFile.h"
#include "host/KCMessageMarks.h"
#include "doc/KCUiAdrDataManager.h"
#include "doc/cKpf2Manager.h"
#include "doc/cKpf2ReadShadowData.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char *const ProjectExtension = "kpf2";

std::string mark(KCMessageMarks::Severity s)
{
    return KCMessageMarks::prefix(s);
}

std::string directoryOf(const std::string &path)
{
    const size_t sep = path.find_last_of("/\\");
    return sep == std::string::npos ? std::string() : path.substr(0, sep + 1);
}

} // namespace

void KCDataDoc::Serialize(KCArchive &ar)
{
    m_loadOk = 1;
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    if (!param)
        return;

    if (ar.IsStoring()) {
        const int type = m_projectFlag ? m_projectFlag : param->fileType;
        switch (type) {
        case LS_BINARY: WriteBinFile(ar); break;
        case LS_INTELHEX: WriteHexFileIntel(ar); break;
        case LS_MOTOROLA: WriteHexFileMotorola(ar); break;
        case LS_JEDEC: WriteJedFile(ar); break;
        case LS_KPF2:
        case LS_HANDLERJOB: WriteKpfFile(ar); break;
        default: ar.setNoWriter(); break; // read-only types: nothing is written
        }
        return;
    }

    switch (param->fileType) {
    case LS_BINARY: ReadBinFile(ar); break;
    case LS_INTELHEX: ReadHexFileIntel(ar); break;
    case LS_MOTOROLA: ReadHexFileMotorola(ar); break;
    case LS_TIHEX: ReadHexFileTI(ar); break;
    case LS_JEDEC: ReadJedFile(ar); break;
    case LS_SVF: ReadSVFile(ar); break;
    case LS_HOLTEK_OTP: ReadBinFileOTP(ar); break;
    case LS_KPF2:
    case LS_HANDLERJOB: ReadKpfFile(ar); break;
    case LS_STAPL: ReadSTPFile(ar); break;
    default: break;
    }
    if (m_loadOk && m_projectFlag == 0) {
        SetFileInfo(ar.GetFilePath(), 1);
        KCUiAdrDataManager manager(param, &m_algoParam->algoUiData());
        manager.CfgOnLoadFile();
    }
}

void KCDataDoc::readWithFormat(KCArchive &ar, LOADSAVE_FILETYPE type)
{
    if (const KCFileTypeRow *row = KCFileTypeTable::row(type))
        KCImagePipeline(*this).read(ar, *row);
    else
        m_loadOk = 0;
}

void KCDataDoc::ReadBinFile(KCArchive &ar) { readWithFormat(ar, LS_BINARY); }
void KCDataDoc::ReadHexFileIntel(KCArchive &ar) { readWithFormat(ar, LS_INTELHEX); }
void KCDataDoc::ReadHexFileMotorola(KCArchive &ar) { readWithFormat(ar, LS_MOTOROLA); }
void KCDataDoc::ReadHexFileTI(KCArchive &ar) { readWithFormat(ar, LS_TIHEX); }
void KCDataDoc::ReadJedFile(KCArchive &ar) { readWithFormat(ar, LS_JEDEC); }
void KCDataDoc::ReadSVFile(KCArchive &ar) { readWithFormat(ar, LS_SVF); }
void KCDataDoc::ReadBinFileOTP(KCArchive &ar) { readWithFormat(ar, LS_HOLTEK_OTP); }
void KCDataDoc::ReadSTPFile(KCArchive &ar) { readWithFormat(ar, LS_STAPL); }

void KCDataDoc::ReadKpfFile(KCArchive &ar)
{
    m_loadOk = 0;
    const std::string &path = ar.GetFilePath();
    cKpf2Manager manager(*this, path);
    // The archive holds the whole file already; the manager parses it from there.
    const KCInputFile &in = ar.input();
    std::string error;
    cKpf2ReadShadowData shadow;
    if (!cKpf2Manager::parse(std::string(reinterpret_cast<const char *>(in.data), in.size), path, shadow, error)) {
        m_host->ShowMessage("\xA7" "EWFailed to read file: " + path);
        m_host->ShowMessage(mark(KCMessageMarks::Error) + error);
        return;
    }
    *m_kpfShadow = std::move(shadow);
    m_host->ShowMessage("Reading " + path + " OK");
    // The document is a project from now on: saving writes the project again.
    m_projectFlag = m_kpfShadow->kind;
    m_loadOk = 1;
}

void KCDataDoc::saveRange(uint64_t &first, uint64_t &count) const
{
    const TAG_BUFFER_PARAM *param = m_bufferParams.front().get();
    const uint64_t size = GetBufferSize();
    first = 0;
    count = size;
    if (m_saveRange) {
        first = std::min(m_saveRange->first, size);
        count = m_saveRange->first >= size ? 0 : std::min(m_saveRange->second, size - 1) - first + 1;
        return;
    }
    // The device's save range; its "not set" is the negative value of the 32-bit fields.
    if (HasDeviceX() && !(static_cast<int32_t>(param->SBSA) < 0) && param->SBSA <= param->SBEA && param->SBEA < size) {
        first = param->SBSA;
        count = uint64_t(param->SBEA) - param->SBSA + 1;
    }
}

void KCDataDoc::writeWithFormat(KCArchive &ar, LOADSAVE_FILETYPE type)
{
    if (const KCFileTypeRow *row = KCFileTypeTable::row(type))
        KCImagePipeline(*this).write(ar, *row);
    else
        m_loadOk = 0;
}

void KCDataDoc::WriteBinFile(KCArchive &ar) { writeWithFormat(ar, LS_BINARY); }
void KCDataDoc::WriteHexFileIntel(KCArchive &ar) { writeWithFormat(ar, LS_INTELHEX); }
void KCDataDoc::WriteHexFileMotorola(KCArchive &ar) { writeWithFormat(ar, LS_MOTOROLA); }
void KCDataDoc::WriteJedFile(KCArchive &ar) { writeWithFormat(ar, LS_JEDEC); }

void KCDataDoc::WriteKpfFile(KCArchive &ar)
{
    if (HasDeviceX() == 0) {
        m_host->ShowMessage("\xA7" "WWNo Device Selected.");
        return;
    }
    const std::string &path = ar.GetFilePath();
    if (path.empty())
        return;
    // The save step's temporary file and rename keep the old file until this one is whole.
    m_loadOk = 0;
    const TAG_BUFFER_PARAM *param = mainBufferParam();
    const bool job = m_projectFlag == LS_HANDLERJOB || (m_projectFlag == 0 && param->fileType == LS_HANDLERJOB);
    std::string error;
    const std::string text = cKpf2Manager(*this, path).text(m_kpfShadow->optionBox,
                                                             job ? cKpf2Manager::WRITE_HANDLERJOB
                                                                 : cKpf2Manager::WRITE_PROJECT,
                                                             &error);
    if (text.empty()) {
        m_host->ShowMessage(mark(KCMessageMarks::Error) + error);
        return;
    }
    if (!ar.output().write(text.data(), text.size())) {
        m_host->ShowMessage("\xA7" "WFailed to write file: " + path);
        return;
    }
    ar.setWritten();
    m_loadOk = 1;
}

int KCDataDoc::WriteKpf2File(const std::string &path)
{
    m_loadOk = 0;
    cKpf2Manager manager(*this, path);
    if (!manager.write(0, 0)) {
        m_host->ShowMessage("\xA7" "WFailed to write file: " + path);
        if (!manager.error().empty())
            m_host->ShowMessage(mark(KCMessageMarks::Error) + manager.error());
        return 0;
    }
    m_host->ShowMessage("Writing " + path + " OK.");
    m_loadOk = 1;
    return 1;
}

int KCDataDoc::SaveKpf2OnClose()
{
    // An open project is written back so that its production counts survive a restart;
    // only when the counts moved and nothing else is unsaved (changes the user declined to
    // save stay unsaved). A handler job is never rewritten: its released CRC would change.
    // The project's own path is the framework's: the document's own path names data files.
    if (m_projectFlag != LS_KPF2 || GetPathName().empty() || !HasDeviceX() || IsModified())
        return 0;
    const cKpf2ReadShadowData &read = *m_kpfShadow;
    if (m_host->GetPassCount() == read.passCount && m_host->GetFailCount() == read.failCount)
        return 0;
    return WriteKpf2File(GetPathName());
}

void KCDataDoc::SuccessCountIncrement()
{
    const int pass = m_host->GetPassCount();
    m_host->SetCounts(pass < 0 ? 1 : pass + 1, m_host->GetFailCount() < 0 ? 0 : m_host->GetFailCount());
}

void KCDataDoc::FailCountIncrement()
{
    const int fail = m_host->GetFailCount();
    m_host->SetCounts(m_host->GetPassCount() < 0 ? 0 : m_host->GetPassCount(), fail < 0 ? 1 : fail + 1);
}

void KCDataDoc::SetFileInfo(const std::string &path, int)
{
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    if (!param)
        return;
    TAG_KRLFILEINFO info;
    if (m_host->GetFileInfo(path, &info) & FILEINFO_FAILED_MASK)
        return;
    const TAG_KRLFILEINFO copy(info);
    for (int i = 0; i < BUFFER_FILEINFO_WORDS; ++i)
        param->fileInfo[i] = copy.words[i];
}

bool KCDataDoc::OnOpenDocument(const char *path)
{
    return privateOpenDocument(path ? path : "");
}

bool KCDataDoc::OnSaveDocument(const char *path)
{
    return privateSaveDocument(path ? path : "");
}

bool KCDataDoc::privateOpenDocument(const std::string &path)
{
    // Raw images are read straight into the buffer; every other reader walks the bytes.
    const TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    const bool raw = param && param->fileType == LS_BINARY && m_projectFlag == 0;
    KCMappedFile file;
    // A stream (a pipe, standard input) is read whole before it is decoded: a binary image
    // may fill the largest buffer, a text stream of records at most a quarter of that.
    if (!file.open(path, !raw, raw ? KCMappedFile::DefaultStreamLimit : KCMappedFile::DefaultStreamLimit / 4)) {
        m_host->ShowMessage(mark(KCMessageMarks::Error) + file.errorText());
        return false;
    }
    KCArchive ar(path, file.input());
    Serialize(ar);
    const bool ok = m_loadOk != 0;
    if (ok) {
        SetPathName(path, true);
        SetModifiedFlag(0);
    } else {
        // Part of the file may be in the buffer now: closing must ask.
        SetModifiedFlag(1);
    }
    ComputeCheckSum(-1);
    UpdateAllViews(nullptr, DOCHINT_ALL);
    return ok;
}

bool KCDataDoc::privateSaveDocument(const std::string &path)
{
    if (path.empty())
        return false;
    KCSaveFile file;
    if (!file.open(path)) {
        m_host->ShowMessage(mark(KCMessageMarks::Error) + file.errorText() + "; nothing was saved");
        return false;
    }
    KCFdOutputStream out(file.fd());
    KCArchive ar(file.target() == "-" ? path : file.target(), out);
    Serialize(ar);
    bool ok = m_loadOk && ar.written();
    std::string error;
    if (ok && !out.flush()) {
        error = "cannot write " + file.target() + ": " + std::strerror(out.error());
        ok = false;
    }
    if (ok && !file.commit()) {
        error = file.errorText();
        ok = false;
    }
    if (!ok) {
        file.abort();
        if (!error.empty())
            m_host->ShowMessage(mark(KCMessageMarks::Error) + error
                                + (file.isDirect() ? std::string() : "; the file on disk is unchanged"));
        else if (ar.noWriter())
            m_host->ShowMessage(mark(KCMessageMarks::Warning) + path
                                + " : files of this type cannot be written; nothing was saved");
        return false;
    }
    m_host->ShowMessage("Writing " + path + " OK.");
    if (!ar.summary().empty())
        m_host->ShowMessage(mark(KCMessageMarks::Information) + ar.summary());
    m_undo.markSaved();
    SetModifiedFlag(0);
    return true;
}

bool KCDataDoc::runFileDialog(CALLFROMMENUE origin, const TAG_BUFFER_PARAM &param, KCFileDialogRequest &request)
{
    KCFileDialogCore::m_CallFromMenue = origin;
    KCFileDialogCore::m_LoadSaveType = param.fileType;
    request.origin = origin;
    request.flags = FILEDIALOG_OPTIONS;
    request.initialPath = m_ownPathName;
    request.filterType = param.filterType;
    request.loadSaveType = param.fileType;
    // "All files" as the filter would turn the type to Binary: saving starts from the
    // buffer's own type, so its own filter is shown.
    const KCFileTypeRow *row = KCFileTypeTable::row(param.fileType);
    if (origin == CALLFROM_SAVE && param.filterType == FILTER_ALL && row && row->writable)
        request.filterType = row->filter;
    return m_host->RunFileDialog(request);
}

bool KCDataDoc::saveWithDialog()
{
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    if (!param)
        return false;
    KCFileDialogRequest request;
    if (!runFileDialog(CALLFROM_SAVE, *param, request))
        return false;
    param->filterType = request.chosenFilterType;
    param->fileType = request.chosenLoadSaveType;
    if (!OnSaveDocument(request.path.c_str()))
        return false;
    SetPathName(request.path, true);
    m_host->SetLastDirectory(directoryOf(request.path));
    return true;
}

bool KCDataDoc::SaveModified()
{
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    if (!param || !IsModified())
        return true;
    std::string prompt = KCFormat::format(m_host->GetHostString(KCHostStrings::AskToSave), {GetFileName()});
    if (m_host->GetNoProjectHintFlag() == 0 && !(param->optionFlags & BUFFER_OPTION_NO_PROJECT_HINT))
        prompt += KCFormat::format(m_host->GetHostString(KCHostStrings::SaveProjectHint), {ProjectExtension});
    const int answer = m_host->MessageBox(prompt, KCPrompt::MB_YESNOCANCEL | KCPrompt::MB_ICONEXCLAMATION);
    if (answer == KCPrompt::IDCANCEL)
        return false;
    if (answer == KCPrompt::IDNO)
        return true;
    m_projectFlag = 0;
    return SaveDoc(param->saveFlags & BUFFER_SAVE_ASK_NAME);
}

bool KCDataDoc::SaveDoc(int askForName)
{
    if (!askForName && !m_ownPathName.empty()) {
        if (OnSaveDocument(m_ownPathName.c_str()))
            return true;
        m_host->MessageBox(m_host->GetHostString(KCHostStrings::FailedToSave), KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
        return false;
    }
    return saveWithDialog();
}

bool KCDataDoc::CanReloadDoc() const
{
    return !m_ownPathName.empty() && CanDoAction();
}

void KCDataDoc::OnFileReLoad()
{
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    if (!param || !CanReloadDoc() || !SaveModified())
        return;
    KCFileDialogRequest request;
    if (!runFileDialog(CALLFROM_RELOAD, *param, request))
        return;
    param->filterType = request.chosenFilterType;
    param->fileType = request.chosenLoadSaveType;
    m_algoParam->buffer(0).Fill(0, GetBufferSize(), m_host->GetFillByte());
    privateOpenDocument(request.path);
}

void KCDataDoc::InitialFileReload()
{
    if (m_projectDataFile.empty())
        return;
    const KCFileTypeRow *row = KCFileTypeTable::row(m_projectDataFileType);
    KCMappedFile file;
    if (!row || !row->formatName || !file.open(m_projectDataFile, true, KCMappedFile::DefaultStreamLimit)) {
        m_host->ShowMessage("\xA7" "EWFailed to read file: " + m_projectDataFile
                            + (row && row->formatName ? " : " + file.errorText() : std::string()));
        return;
    }
    KCArchive ar(m_projectDataFile, file.input());
    readWithFormat(ar, m_projectDataFileType);
    ComputeCheckSum(-1);
    UpdateAllViews(nullptr, DOCHINT_ALL);
}

void KCDataDoc::PostOpenLoadFile()
{
    cKpf2ReadShadowData &shadow = *m_kpfShadow;
    if (!shadow.loaded || m_projectFlag == 0)
        return;
    shadow.loaded = false;
    bool ok = true;
    if (shadow.device) {
        ok = selectDevice(*shadow.device) != 0;
        if (ok)
            m_algoParam->algoUiData() = shadow.record; // with the option pages' edits
    } else if (HasDeviceX()) {
        deselectDeviceItem();
    }
    // Buffers beyond the device's own are added as the project has them.
    for (size_t b = 0; ok && b < shadow.buffers.size(); ++b) {
        const cKpf2ReadShadowData::Buffer &from = shadow.buffers[b];
        if (b >= m_algoParam->bufferCount() && !m_algoParam->addBuffer(from.size, from.fill)) {
            ok = false;
            break;
        }
        cByteBuffer &buffer = m_algoParam->buffer(b);
        if (!buffer.resize(from.size, from.fill)) {
            ok = false;
            break;
        }
        buffer.Fill(0, from.size, from.fill);
        for (const auto &range : from.ranges)
            std::copy(range.second.begin(), range.second.end(), buffer.data() + range.first);
        if (b == 0) {
            m_dataMap.clear();
            for (const auto &range : from.ranges)
                m_dataMap.add(range.first, range.first + range.second.size() - 1);
        }
    }
    if (!ok) {
        m_host->ShowMessage("Failed to set the project data to the Document.");
        return;
    }
    m_sparse = false;
    m_gapsUnfilled = false;
    m_loadBase = 0;
    m_changedMap.clear();
    m_undo.clear();
    TAG_BUFFER_PARAM *param = mainBufferParam();
    const TAG_BUFFER_PARAM &p = shadow.bufferParam;
    param->LBSA = p.LBSA;
    param->LBEA = p.LBEA;
    param->SBSA = p.SBSA;
    param->SBEA = p.SBEA;
    param->loadRangeFromDevice = p.loadRangeFromDevice;
    param->saveRangeFromDevice = p.saveRangeFromDevice;
    param->optionFlags = p.optionFlags;
    param->saveFlags = p.saveFlags;
    // The buffer keeps the project's own type, so that saving writes the project again.
    m_saveRange = shadow.saveRange ? std::optional<KCAddressRange>(KCAddressRange{shadow.saveRange->first,
                                                                                  shadow.saveRange->second})
                                   : std::nullopt;
    m_projectDataFile = shadow.dataFile;
    m_projectDataFileType = shadow.dataFileType;
    m_serial.setMode(shadow.serialMode);
    m_serial.setFlags(shadow.serialFlags);
    m_serial.setByteCount(shadow.serialByteCount);
    m_serial.setAddress(shadow.serialAddress);
    m_serial.setDefPath(shadow.serialDefPath);
    m_host->SetCounts(shadow.passCount, shadow.failCount);
    m_host->SetTargetCount(shadow.targetCount);
    m_algoParam->setAction(shadow.action);
    if (!shadow.viewItems.empty()) {
        // The links to this session's buffer and windows stay; the rest is the project's.
        const int bufferId = TF_GetMainBufferId();
        std::vector<TAG_DATADOC_VIEWITEM> items = shadow.viewItems;
        for (size_t i = 0; i < items.size(); ++i) {
            items[i].bufferId = bufferId;
            items[i].bufferParam = items[i].kind == VIEWITEM_KIND_BUFFERVIEW ? param : nullptr;
            items[i].view = i < m_viewItems.size() ? m_viewItems[i].view : nullptr;
        }
        m_viewItems = std::move(items);
    }
    if (shadow.placement)
        m_placement = shadow.placement;
    if (shadow.csvSerial)
        cKpf2Manager(*this, GetPathName()).takeOverCSVSerialData(*shadow.csvSerial);
    ComputeCheckSum(-1);
    SetModifiedFlag(0);
    UpdateAllViews(nullptr, DOCHINT_ALL);
    if (shadow.placement)
        UpdateAllViews(nullptr, DOCHINT_PLACEMENT);
    m_host->ShowMessage("Project Data setting up successful.");
}

void KCDataDoc::OnFileOpen(KCMainProgDataExChange *host)
{
    if (!host)
        return;
    KCFileDialogCore::m_CallFromMenue = CALLFROM_OPEN;
    const LOADSAVE_FILETYPE saved = nOpenInitLoadFileType;
    KCFileDialogCore::m_LoadSaveType = saved;
    KCFileDialogRequest request;
    request.origin = CALLFROM_OPEN;
    request.flags = FILEDIALOG_OPTIONS;
    request.initialPath = host->GetLastDirectory();
    request.filterType = nOpenInitLoadFilterType;
    request.loadSaveType = saved;
    if (!host->RunFileDialog(request))
        return;
    nOpenInitLoadFilterType = request.chosenFilterType;
    nOpenInitLoadFileType = request.chosenLoadSaveType;
    host->SetLastDirectory(directoryOf(request.path));
    if (auto *doc = dynamic_cast<KCDataDoc *>(host->OpenDocumentFile(request.path))) {
        doc->PostOpenLoadFile();
        if (doc->GetKPFFileFlag())
            doc->InitialFileReload();
    }
}

KCDocBase *KCDataDoc::OnOpenDocumentFile(const char *path)
{
    KCMainProgDataExChange *host = g_pMainProgDataExChange;
    if (!host || !path)
        return nullptr;
    KCFileDialogCore dialog;
    const FILTERTYPE filter = dialog.GetFilterType(KCFileDialogCore::extensionOf(path));
    // An extension no file type claims leaves the presets as they are.
    if (filter != FILTER_INVALID) {
        const LOADSAVE_FILETYPE type = dialog.GetLoadSaveType(filter);
        if (type != LS_NOFORMAT && type != LS_INVALID) {
            nOpenInitLoadFilterType = filter;
            nOpenInitLoadFileType = type;
        }
    }
    KCDocBase *doc = host->OpenDocumentFile(path);
    if (auto *dataDoc = dynamic_cast<KCDataDoc *>(doc)) {
        dataDoc->PostOpenLoadFile();
        if (dataDoc->GetKPFFileFlag())
            dataDoc->InitialFileReload();
    }
    return doc;
}
