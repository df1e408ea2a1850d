#pragma once

#include "doc/DEVICE_KRLXDEF_ITEM.h"
#include "KCFileFormat.h"
#include "doc/KCDataMap.h"
#include "doc/KCDocBase.h"
#include "serial/KCSerialState.h"
#include "serial/cCSVSerialDataContent.h"
#include "serial/KCSerialTarget.h"
#include "doc/KCUndoHistory.h"
#include "fileio/KCFileTypes.h"
#include "doc/TAG_BUFFER_PARAM.h"
#include "doc/TAG_DATADOC_VIEWITEM.h"
#include "doc/TAG_WINDOW_PLACEMENT.h"
#include "doc/cAlgoParam.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class KCArchive;
class cKpf2ReadShadowData;
class KCSelectDeviceCtrlBase;
class KCSerialDefCtrl;
class cKrlSerialNumberHandler;
struct KCFileDialogRequest;
class KCMainProgDataExChange;

// Hints passed to the views by UpdateAllViews.
enum : long {
    DOCHINT_ALL = 0,           // redraw everything
    DOCHINT_MODIFIED_FLAG = 1, // only the modified state changed
    DOCHINT_DATA = 2,          // buffer bytes changed
    DOCHINT_DEVICE = 3,        // a device was selected or deselected: layouts follow it
    DOCHINT_PLACEMENT = 4,     // an opened project's window placement is to be applied
};

// The programmer-buffer document: owns the device's buffers (through cAlgoParam), the
// workspace-tree items and the per-buffer load/save and checksum state. Every change of a
// buffer byte goes through SetData/SetDataWord, which keep the modified flag and the
// running checksum right.
class KCDataDoc : public KCDocBase, private KCSerialTarget
{
public:
    KCDataDoc();
    ~KCDataDoc() override;

    // Document-buffer ids and the presets of the open dialog.
    static uint32_t mDocBufferId;
    static unsigned long getNewDocBufferId();
    static LOADSAVE_FILETYPE nOpenInitLoadFileType;
    static FILTERTYPE nOpenInitLoadFilterType;

    bool OnNewDocument() override;
    void OnCloseDocument() override;

    // Opening: the host's open command and its entry for a named file.
    static void OnFileOpen(KCMainProgDataExChange *host);
    static KCDocBase *OnOpenDocumentFile(const char *path);

    // Loading and storing through the reader or writer of the buffer's file type.
    void Serialize(KCArchive &ar) override;
    void ReadBinFile(KCArchive &ar);
    void ReadHexFileIntel(KCArchive &ar);
    void ReadHexFileMotorola(KCArchive &ar);
    void ReadHexFileTI(KCArchive &ar);
    void ReadJedFile(KCArchive &ar);
    void ReadSVFile(KCArchive &ar);
    void ReadBinFileOTP(KCArchive &ar);
    void ReadKpfFile(KCArchive &ar);
    void ReadSTPFile(KCArchive &ar);
    void WriteBinFile(KCArchive &ar);
    void WriteHexFileIntel(KCArchive &ar);
    void WriteHexFileMotorola(KCArchive &ar);
    void WriteJedFile(KCArchive &ar);
    void WriteKpfFile(KCArchive &ar);
    int WriteKpf2File(const std::string &path);
    void SetFileInfo(const std::string &path, int flag);

    bool OnOpenDocument(const char *path);
    bool OnSaveDocument(const char *path);
    bool privateOpenDocument(const std::string &path);
    bool privateSaveDocument(const std::string &path);
    bool SaveModified();
    bool SaveDoc(int askForName);
    void OnFileReLoad();
    void InitialFileReload();
    bool CanReloadDoc() const;
    void PostOpenLoadFile();
    // Writes an open project back to its file when the document closes; nonzero when
    // written, 0 when there was nothing to write or the write failed.
    int SaveKpf2OnClose();
    // What the last project file read holds until PostOpenLoadFile applies it.
    cKpf2ReadShadowData &kpfShadowData() { return *m_kpfShadow; }
    // The data file a project loads when it is opened; empty when it names none.
    const std::string &projectDataFile() const { return m_projectDataFile; }
    LOADSAVE_FILETYPE projectDataFileType() const { return m_projectDataFileType; }
    void setProjectDataFile(const std::string &path, LOADSAVE_FILETYPE type)
    {
        m_projectDataFile = path;
        m_projectDataFileType = type;
    }
    // Production counts, kept by the host: one more device passed or failed.
    void SuccessCountIncrement();
    void FailCountIncrement();
    void SetStandardAutoAction();

    // Serial numbers of a production run; the state and its rules are KCSerialState's.
    KCSerialState &serialState() { return m_serial; }
    void InitSerialNumberDefault() { m_serial.InitSerialNumberDefault(); }
    int EnableSerialNumberUsability(int enable) { return m_serial.EnableSerialNumberUsability(enable); }
    int GetNextSerialNumberFromFile(int advance, int readFile)
    {
        return m_serial.GetNextSerialNumberFromFile(advance, readFile);
    }
    int GetSerialNumber() { return m_serial.GetSerialNumber(); }
    int WriteSerialNumberToBuffer() { return m_serial.WriteSerialNumberToBuffer(); }
    void InvalidateCurrentSerialNumber() { m_serial.invalidate(); }
    bool isSerialNumberValid() const { return m_serial.isValid(); }
    int UpdateSerialDataFromFile() { return m_serial.UpdateSerialDataFromFile(); }
    KCSerialDefCtrl *serialDefCtrl() const { return m_serial.serialDefCtrl(); }
    int serialMode() const { return m_serial.mode(); }
    void setSerialMode(int mode) { m_serial.setMode(mode); }
    const std::string &serialNumberText() const { return m_serial.numberText(); }
    unsigned serialLength() const { return m_serial.length(); }
    unsigned serialValue() const { return m_serial.value(); }
    unsigned serialFlags() const { return m_serial.flags(); }
    void setSerialFlags(unsigned flags) { m_serial.setFlags(flags); }
    unsigned serialByteCount() const { return m_serial.byteCount(); }
    void setSerialByteCount(unsigned count) { m_serial.setByteCount(count); }
    unsigned serialAddress() const { return m_serial.address(); }
    void setSerialAddress(unsigned address) { m_serial.setAddress(address); }
    const std::string &serialDefPath() const { return m_serial.defPath(); }
    void setSerialDefPath(const std::string &path) { m_serial.setDefPath(path); }

    // The CSV serial project: the variables file a production run takes its rows from, with
    // its content as a project carries it. The document owns the handler of that file.
    cKrlSerialNumberHandler &getKrlSerialNumberHandler() { return *m_csvHandler; }
    const cCSVSerialDataContent &csvSerialData() const { return m_csvSerial; }
    // Makes `content` the document's CSV serial project with a new handler for its file. False,
    // and nothing changed, while a run takes rows from the current handler.
    bool prepareCSVSerialDataProject(cCSVSerialDataContent &content);
    // Reads the CSV file at `path` whole and makes it the project's; false, with `error`
    // naming the file, when it cannot be read or a run is using the current handler.
    bool setCSVSerialProjectFile(const std::string &path, std::string &error);
    // The CSV handler made ready for a production run: the buffer's size, the failed-device
    // policy and the definition file's number window set, the file read and checked. Null
    // when the document has no CSV serial project, or when its file fails (`errors` says why).
    cKrlSerialNumberHandler *prepareCsvRun(std::string *errors);

    // Writer settings (record length, line ends, header) and what the last load found.
    KCSaveOptions &saveOptions() { return m_saveOptions; }
    const KCLoadResult &lastLoadResult() const { return m_lastLoad; }
    // The bytes a writer stores: the explicit save range when one is set, else the device's
    // save range, else the whole buffer (after a load without a device: the image's extent);
    // always cut to the buffer.
    void saveRange(uint64_t &first, uint64_t &count) const;
    // A save range the user or a script gave; every address 0..0xFFFFFFFF is a valid bound.
    void setSaveRange(std::optional<KCAddressRange> range) { m_saveRange = range; }
    std::optional<KCAddressRange> explicitSaveRange() const { return m_saveRange; }

    // Data access; addresses are byte indices into buffer 0.
    unsigned char GetData(uint32_t addr) const;
    unsigned char GetDataByte(uint32_t addr) const { return GetData(addr); }
    void SetData(unsigned char value, uint32_t addr);
    void SetDataByte(unsigned char value, uint32_t addr) { SetData(value, addr); }
    unsigned short GetDataWord(uint32_t wordIndex) const;
    void SetDataWord(unsigned short value, uint32_t wordIndex);
    int FlipBytes(uint32_t from, uint32_t to);
    void OnSwapbytes();
    uint64_t GetBufferSize() const { return m_algoParam->buffer(0).size(); }

    // Which addresses hold data (loaded, typed, pasted, stamped) as opposed to fill, and which
    // changed since the buffer last matched its file.
    const KCDataMap &dataMap() const { return m_dataMap; }
    const KCDataMap &changedMap() const { return m_changedMap; }
    // Makes [0, size) the whole image: a new buffer, or a file that defines every byte.
    void defineWholeBuffer();
    // Makes the whole buffer fill: a new document that is to receive its data later.
    void defineNothing()
    {
        m_dataMap.clear();
        m_changedMap.clear();
    }
    // Range writes: every write path of more than a byte goes through these, so the checksum,
    // the modified flag and both maps stay right. False (nothing changed) when the range does
    // not lie inside the buffer.
    bool WriteRange(uint64_t address, const uint8_t *bytes, uint64_t count);
    bool FillRange(uint64_t first, uint64_t last, uint8_t value);
    // A change that code working on the buffer itself (the lane engines) makes inside
    // [first, last], clipped to the buffer: one undo step named `name`, after which the
    // checksum, both maps and the modified flag cover the range. What `edit` wrote before it
    // threw stays written and is accounted for; the exception then passes on. False (nothing
    // run) when the user refused a change too large to undo.
    bool ChangeRange(uint64_t first, uint64_t last, const char *name, const std::function<void()> &edit);
    // Checksum of [first, last] with the kind of the selected view, without touching the
    // stored checksum; 0xFFFFFFFF without a buffer view. The range must lie in the buffer.
    uint32_t checksumOf(uint64_t first, uint64_t last);
    // Undo and redo of every change made through the document. An action of several changes
    // (a cut, a paste) is one step between beginAction and endAction; a change outside an
    // action is a step of its own. A change larger than the history's budget is made only
    // when the user agrees that it cannot be undone.
    KCUndoHistory &undoHistory() { return m_undo; }
    void beginAction(const std::string &name) { m_undo.open(name, m_dataMap); }
    // Closing the outermost action tells the views: the step can be undone from now on.
    void endAction()
    {
        m_undo.close();
        if (!m_undo.isOpen())
            UpdateAllViews(nullptr, DOCHINT_DATA);
    }
    bool Undo();
    bool Redo();
    // Asks the user before a change of `bytes` bytes that the history cannot hold; true when
    // it can, or the user agreed.
    bool confirmChangeSize(uint64_t bytes);

    // Sparse documents (the command line's) load without filling the gaps, so that memory
    // and time follow the data, not the highest address: a gap byte then reads as zero in the
    // buffer while the image holds the fill byte there. Sums and record-format saves take
    // this into account; anything that needs the flat image calls materializeGaps() first.
    void setSparse(bool sparse) { m_sparse = sparse; }
    bool isSparse() const { return m_sparse; }
    // Makes the buffer a sparse image of `size` bytes that are all gap: memory is taken only
    // for what is written later (a lane of a split on the command line).
    void makeSparseImage(uint64_t size);
    // Grows the buffer to `size` bytes that are gap, read as the fill byte; false without memory.
    bool growImage(uint64_t size);
    // Puts the fill byte into the gaps inside [first, last] (all of them by default).
    void materializeGaps(uint64_t first = 0, uint64_t last = UINT64_MAX);
    uint8_t fillByte() const;
    // The file address of buffer address 0: a device's address offset, or the lowest
    // address of a file loaded from there.
    uint64_t loadBase() const { return m_loadBase; }

    cAlgoParam &AlgoParam() { return *m_algoParam; }
    const cAlgoParam &AlgoParam() const { return *m_algoParam; }

    // Workspace-tree items.
    std::vector<TAG_DATADOC_VIEWITEM> &viewItems() { return m_viewItems; }
    const std::vector<TAG_DATADOC_VIEWITEM> &viewItems() const { return m_viewItems; }
    TAG_BUFFER_PARAM *mainBufferParam() { return m_bufferParams.front().get(); }
    // Where the document's window stands: the host keeps it current, a project carries it.
    const std::optional<TAG_WINDOW_PLACEMENT> &windowPlacement() const { return m_placement; }
    void setWindowPlacement(const TAG_WINDOW_PLACEMENT &placement) { m_placement = placement; }
    // The current tab of the document's window, -1 without one.
    int TF_GetSelectIndex() const { return m_selectIndex; }
    void TF_SetSelectIndex(int index) { m_selectIndex = index; }
    TAG_BUFFER_PARAM *TF_GetBufferParam(int *bufferId, TAG_DATADOC_VIEWITEM *item, int *index, int view);
    int TF_GetMainBufferId() const;

    // Checksum.
    unsigned long ComputeCheckSum(int view);
    unsigned int GetCheckSum(unsigned int from, unsigned int to);
    void UpdateCheckSum(unsigned long oldValue, unsigned long newValue, unsigned long addr, int view);
    void PrintCheckSum(int view);
    void PrintCheckSumInvalid();

    // Device binding.
    void SetDeviceItemX(const DEVICE_KRLXDEF_ITEM *item);
    void ResetDeviceItemX() { m_deviceItem = DEVICE_KRLXDEF_ITEM(); }
    const DEVICE_KRLXDEF_ITEM &GetDeviceItemX() const { return m_deviceItem; }
    int HasDeviceX() const;
    // Binds the document to a device: buffer size, record, ranges, layouts and file type
    // follow it. 0, and the previous configuration kept, when there is no device, no device
    // window in the host, or a kind no control serves.
    int selectDevice(const DEVICE_KRLXDEF_ITEM &device);
    // selectDevice for a document about to read a file: the type the file's extension or the
    // Open dialog named stays, the device's default type standing in only where none was.
    int selectDeviceForFile(const DEVICE_KRLXDEF_ITEM &device);
    KCSelectDeviceCtrlBase *SelectDeviceCtrl() const { return m_selectDeviceCtrl.get(); }
    // Back to no device; the buffer keeps its bytes.
    int deselectDeviceItem();
    // Defined bytes at and above `size`: what a device of that size would cut off.
    uint64_t definedBytesFrom(uint64_t size) const;
    std::string GetDeviceName() const;
    uint32_t GetDeviceType() const;

    // Modified flag, path and titles.
    void SetModifiedFlag(int modified = 1) override;
    int IsModified() const override { return KCDocBase::IsModified(); }
    void SetPathName(const std::string &path, bool addToMru = true) override;
    const std::string &getPathName() const { return m_ownPathName; }
    void setPathName(const std::string &path) { m_ownPathName = path; }
    bool HavePathName() const { return !m_ownPathName.empty(); }
    std::string GetFileName() const;
    std::string GetFilePath() const;
    void UpdateTitle();
    // The name windows and the workspace tree show: an opened project's own file name (its
    // title names the data file, which a project often has none of), otherwise the title.
    std::string displayName() const;

    int GetKPFFileFlag() const { return m_projectFlag; }
    void SetKPFFileFlag(int flag) { m_projectFlag = flag; }
    int GetLoadOkFlag() const { return m_loadOk; }
    void SetLoadOkFlag(int flag) { m_loadOk = flag; }
    bool CanDoAction() const { return m_actionLock == 0; }
    void SetActionLock(int lock) { m_actionLock = lock; }

    KCMainProgDataExChange *host() const { return m_host; }

private:
    struct DeviceState;
    DeviceState deviceState();
    void restoreDeviceState(const DeviceState &state);

    KCMainProgDataExChange *m_host;
    int m_projectFlag = 0;
    int m_reserved = 0;
    int m_loadOk = 0;
    std::vector<TAG_DATADOC_VIEWITEM> m_viewItems;
    std::optional<TAG_WINDOW_PLACEMENT> m_placement;
    std::vector<std::unique_ptr<TAG_BUFFER_PARAM>> m_bufferParams;
    std::unique_ptr<KCSelectDeviceCtrlBase> m_selectDeviceCtrl;
    DEVICE_KRLXDEF_ITEM m_deviceItem;
    std::unique_ptr<cAlgoParam> m_algoParam;
    int m_actionLock = 0;
    std::string m_ownPathName;
    int m_selectIndex = -1;
    KCSaveOptions m_saveOptions;
    KCSerialState m_serial;
    std::unique_ptr<cKrlSerialNumberHandler> m_csvHandler;
    cCSVSerialDataContent m_csvSerial;

    KCLoadResult m_lastLoad;
    KCDataMap m_dataMap;
    KCDataMap m_changedMap;
    std::optional<KCAddressRange> m_saveRange;
    bool m_sparse = false;
    bool m_gapsUnfilled = false;
    uint64_t m_loadBase = 0; // file address of buffer address 0 after a load from the lowest address
    uint32_t rangeSum(int kind, uint64_t first, uint64_t last) const;

    KCUndoHistory m_undo;
    std::unique_ptr<cKpf2ReadShadowData> m_kpfShadow;
    std::string m_projectDataFile;
    LOADSAVE_FILETYPE m_projectDataFileType = LS_BINARY;

    void noteWritten(uint64_t first, uint64_t last);

    // Where serial numbers are written: buffer 0 of the current view.
    bool hasSerialTarget() override;
    uint64_t serialTargetSize() const override { return GetBufferSize(); }
    uint8_t serialByte(uint64_t address) const override;
    void beginSerialWrite() override { beginAction("Serial Number"); }
    void writeSerialByte(uint64_t address, uint8_t value) override;
    void endSerialWrite(bool changed) override;
    void serialSettingsChanged() override;
    bool beforeChange(uint64_t first, uint64_t count, const char *name, bool &ownStep);
    void afterChange(bool ownStep);
    void applyStep(KCUndoHistory::Step &step, bool undo);
    bool stepHistory(bool undo);
    void updateChecksumForWrite(uint64_t first, uint64_t last, const uint8_t *newBytes, uint8_t fill);

    friend class KCImagePipeline;
    void readWithFormat(KCArchive &ar, LOADSAVE_FILETYPE type);
    void writeWithFormat(KCArchive &ar, LOADSAVE_FILETYPE type);
    bool saveWithDialog();
    bool runFileDialog(CALLFROMMENUE origin, const TAG_BUFFER_PARAM &param, KCFileDialogRequest &request);
};
