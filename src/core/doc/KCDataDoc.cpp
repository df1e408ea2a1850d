#include "doc/KCDataDoc.h"
#include "doc/cKpf2ReadShadowData.h"

#include "doc/KCDocView.h"
#include "doc/KCSelectDeviceNoneCtrl.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"
#include "host/KCFormat.h"
#include "doc/cBufferSum.h"
#include "serial/cKrlSerialNumberHandler.h"

#include <algorithm>

#include <cstdlib>
#include <cstdio>
#include <cstring>
#include <emmintrin.h>

namespace {

// Bytes an undo step swaps at a time.
constexpr uint64_t SwapBlock = 16 * 1024;
// Most buffers the document keeps for a device.
constexpr int MaxDeviceBuffers = 255;
const char *const BufferLayoutFuseMap = "JEDVIEW";

// A 32-bit address that stands for "not set". The design tests "negative as signed", which
// for buffers up to 2 GiB is the same as being no address of the buffer; above that only the
// all-ones value can mean "not set" without hiding real addresses.
bool isUnsetAddress(uint32_t value, uint64_t bufferSize)
{
    if (bufferSize <= 0x80000000ull)
        return static_cast<int32_t>(value) < 0;
    return value == 0xFFFFFFFFu;
}

void swapBytePairs(uint8_t *p, uint64_t pairs)
{
    uint64_t i = 0;
    for (; i + 8 <= pairs; i += 8) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + 2 * i));
        v = _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p + 2 * i), v);
    }
    for (; i < pairs; ++i) {
        const uint8_t t = p[2 * i];
        p[2 * i] = p[2 * i + 1];
        p[2 * i + 1] = t;
    }
}

} // namespace

uint32_t KCDataDoc::mDocBufferId = 0;
LOADSAVE_FILETYPE KCDataDoc::nOpenInitLoadFileType = LS_BINARY;
FILTERTYPE KCDataDoc::nOpenInitLoadFilterType = FILTER_ALL;

unsigned long KCDataDoc::getNewDocBufferId()
{
    return ++mDocBufferId;
}

KCDataDoc::KCDataDoc() : m_host(g_pMainProgDataExChange), m_serial(g_pMainProgDataExChange, *this)
{
    // The document cannot exist without its host.
    if (!m_host)
        std::exit(0);

    const unsigned long id = getNewDocBufferId();
    m_algoParam = std::make_unique<cAlgoParam>(id, m_host->GetHardwareParam(), m_host->GetMainObject(),
                                               MaxDeviceBuffers);
    m_algoParam->setDeviceName(m_host->GetNoDeviceName());
    m_algoParam->addBuffer(m_host->GetDefaultBufferSize(), m_host->GetFillByte());

    m_bufferParams.push_back(std::make_unique<TAG_BUFFER_PARAM>());
    // The open presets are the type the reader of a document opened next uses.
    m_bufferParams.front()->fileType = nOpenInitLoadFileType;
    m_bufferParams.front()->filterType = nOpenInitLoadFilterType;
    TAG_DATADOC_VIEWITEM main;
    main.bufferId = static_cast<int>(id);
    main.bufferParam = m_bufferParams.front().get();
    main.kind = VIEWITEM_KIND_BUFFERVIEW;
    main.number = 0;
    m_viewItems.push_back(main);
    defineWholeBuffer();
    m_selectDeviceCtrl = std::make_unique<KCSelectDeviceNoneCtrl>(this);
    m_kpfShadow = std::make_unique<cKpf2ReadShadowData>();
    m_csvHandler = std::make_unique<cKrlSerialNumberHandler>(std::string(), cKrlSerialNumberHandler::ModeLenient);
}

KCDataDoc::~KCDataDoc() = default;

bool KCDataDoc::OnNewDocument()
{
    if (m_host->GetOpenDataDocumentCount() > 1) {
        m_host->MessageBox(m_host->GetHostString(KCHostStrings::OneBufferDocumentOnly), KCPrompt::MB_OK);
        return false;
    }
    if (!KCDocBase::OnNewDocument())
        return false;
    m_ownPathName.clear();
    defineWholeBuffer();
    m_undo.clear();
    UpdateTitle();
    SetStandardAutoAction();
    return true;
}

void KCDataDoc::OnCloseDocument()
{
    SaveKpf2OnClose();
    KCDocBase::OnCloseDocument();
    nOpenInitLoadFileType = LS_BINARY;
    nOpenInitLoadFilterType = FILTER_ALL;
}

unsigned char KCDataDoc::GetData(uint32_t addr) const
{
    return m_algoParam->buffer(0).GetAt(addr);
}

void KCDataDoc::SetData(unsigned char value, uint32_t addr)
{
    cByteBuffer &buf = m_algoParam->buffer(0);
    const unsigned char old = m_gapsUnfilled && !m_dataMap.contains(addr) ? fillByte() : buf.GetAt(addr);
    if (m_gapsUnfilled && old != buf.GetAt(addr))
        buf.SetAt(addr, old);
    bool ownStep = false;
    if (old == value) {
        // Writing the fill value into a gap still makes that byte part of the image.
        m_dataMap.add(addr, addr);
        return;
    }
    if (!beforeChange(addr, 1, "Typing", ownStep))
        return;
    m_dataMap.add(addr, addr);
    buf.SetAt(addr, value);
    m_changedMap.add(addr, addr);
    SetModifiedFlag(1);
    UpdateCheckSum(old, value, addr, -1);
    afterChange(ownStep);
}

unsigned short KCDataDoc::GetDataWord(uint32_t wordIndex) const
{
    const uint64_t a = 2 * uint64_t(wordIndex);
    const cByteBuffer &buf = m_algoParam->buffer(0);
    return static_cast<unsigned short>(buf.GetAt(a) | (buf.GetAt(a + 1) << 8));
}

void KCDataDoc::SetDataWord(unsigned short value, uint32_t wordIndex)
{
    const uint64_t a = 2 * uint64_t(wordIndex);
    bool ownStep = false;
    if (GetDataWord(wordIndex) == value) {
        m_dataMap.add(a, a + 1);
        return;
    }
    if (!beforeChange(a, 2, "Typing", ownStep))
        return;
    m_dataMap.add(a, a + 1);
    cByteBuffer &buf = m_algoParam->buffer(0);
    const unsigned char oldLow = buf.GetAt(a);
    const unsigned char oldHigh = buf.GetAt(a + 1);
    const unsigned char low = static_cast<unsigned char>(value & 0xFF);
    const unsigned char high = static_cast<unsigned char>(value >> 8);
    buf.SetAt(a, low);
    buf.SetAt(a + 1, high);
    m_changedMap.add(a, a + 1);
    SetModifiedFlag(1);
    UpdateCheckSum(oldLow, low, static_cast<unsigned long>(a), -1);
    UpdateCheckSum(oldHigh, high, static_cast<unsigned long>(a + 1), -1);
    afterChange(ownStep);
}

void KCDataDoc::defineWholeBuffer()
{
    m_dataMap.clear();
    m_changedMap.clear();
    if (GetBufferSize())
        m_dataMap.add(0, GetBufferSize() - 1);
}

void KCDataDoc::noteWritten(uint64_t first, uint64_t last)
{
    m_dataMap.add(first, last);
    m_changedMap.add(first, last);
    SetModifiedFlag(1);
    PrintCheckSum(-1);
    UpdateAllViews(nullptr, DOCHINT_DATA);
}

void KCDataDoc::updateChecksumForWrite(uint64_t first, uint64_t last, const uint8_t *newBytes, uint8_t fill)
{
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    if (!param)
        return;
    const uint64_t a = std::max<uint64_t>(first, param->checksumStart);
    const uint64_t b = std::min<uint64_t>(last, param->checksumEnd);
    if (a > b)
        return;
    const uint64_t n = b - a + 1;
    if (param->checksumKind == CHECKSUM_KIND_FUSEMAP) {
        // Each written byte adds its fuse weight when nonzero and takes it away when zero.
        for (uint64_t i = 0; i < n; ++i) {
            const uint8_t v = newBytes ? newBytes[a - first + i] : fill;
            const uint32_t weight = 1u << ((a + i) & 7);
            param->checksum += v ? weight : 0u - weight;
        }
        return;
    }
    const uint32_t added = newBytes ? cBufferSum::byteSum(newBytes + (a - first), n) : uint32_t(fill * n);
    // The old bytes' sum is the kept total less the bytes that stay: for a write over most of
    // the range that reads far less (nothing at all for the whole range, so a fill of the whole
    // buffer runs at memset speed).
    const uint64_t rangeFirst = param->checksumStart, rangeLast = param->checksumEnd;
    uint32_t oldSum;
    if (n > (rangeLast - rangeFirst + 1) / 2 && rangeLast < GetBufferSize()) {
        uint32_t rest = 0;
        if (a > rangeFirst)
            rest += rangeSum(CHECKSUM_KIND_BYTESUM, rangeFirst, a - 1);
        if (b < rangeLast)
            rest += rangeSum(CHECKSUM_KIND_BYTESUM, b + 1, rangeLast);
        oldSum = param->checksum - rest;
    } else {
        oldSum = rangeSum(CHECKSUM_KIND_BYTESUM, a, b);
    }
    param->checksum += added - oldSum;
}

bool KCDataDoc::confirmChangeSize(uint64_t bytes)
{
    if (!m_undo.isEnabled() || m_undo.fits(bytes))
        return true;
    char text[256];
    std::snprintf(text, sizeof text,
                  "This change of %llu bytes cannot be undone: undo keeps at most %llu MiB.\n\nMake it anyway?",
                  static_cast<unsigned long long>(bytes), static_cast<unsigned long long>(m_undo.budget() >> 20));
    return m_host->MessageBox(text, KCPrompt::MB_OKCANCEL | KCPrompt::MB_ICONEXCLAMATION) == KCPrompt::IDOK;
}

bool KCDataDoc::beforeChange(uint64_t first, uint64_t count, const char *name, bool &ownStep)
{
    ownStep = false;
    if (!m_undo.isEnabled())
        return true;
    if (!m_undo.fits(count)) {
        if (!confirmChangeSize(count))
            return false;
        // Older steps cannot be undone across a change that was not kept.
        m_undo.clear(false);
        return true;
    }
    if (!m_undo.isOpen()) {
        m_undo.open(name, m_dataMap);
        ownStep = true;
    }
    if (m_gapsUnfilled)
        materializeGaps(first, first + count - 1);
    m_undo.record(first, m_algoParam->buffer(0).data() + first, count);
    return true;
}

void KCDataDoc::afterChange(bool ownStep)
{
    if (ownStep)
        m_undo.close();
}

void KCDataDoc::applyStep(KCUndoHistory::Step &step, bool undo)
{
    uint8_t *data = m_algoParam->buffer(0).data();
    const size_t n = step.changes.size();
    for (size_t i = 0; i < n; ++i) {
        KCUndoHistory::Change &c = step.changes[undo ? n - 1 - i : i];
        const uint64_t count = c.bytes.size();
        if (c.address >= GetBufferSize() || count > GetBufferSize() - c.address)
            continue;
        const uint64_t last = c.address + count - 1;
        updateChecksumForWrite(c.address, last, c.bytes.data(), 0);
        // Swapped in blocks through a small buffer: three copies at memory speed.
        uint8_t block[SwapBlock];
        for (uint64_t done = 0; done < count; done += SwapBlock) {
            const size_t n = size_t(std::min<uint64_t>(SwapBlock, count - done));
            std::memcpy(block, data + c.address + done, n);
            std::memcpy(data + c.address + done, c.bytes.data() + done, n);
            std::memcpy(c.bytes.data() + done, block, n);
        }
        m_changedMap.add(c.address, last);
    }
    std::swap(step.map, m_dataMap);
}

bool KCDataDoc::Undo()
{
    return stepHistory(true);
}

bool KCDataDoc::Redo()
{
    return stepHistory(false);
}

bool KCDataDoc::stepHistory(bool undo)
{
    if (undo ? !m_undo.canUndo() : !m_undo.canRedo())
        return false;
    applyStep(undo ? m_undo.nextUndo() : m_undo.nextRedo(), undo);
    if (undo)
        m_undo.undone();
    else
        m_undo.redone();
    // Back at the state last saved, the buffer matches its file again.
    SetModifiedFlag(m_undo.isAtSaved() ? 0 : 1);
    PrintCheckSum(-1);
    UpdateAllViews(nullptr, DOCHINT_DATA);
    return true;
}

uint8_t KCDataDoc::fillByte() const
{
    return m_host->GetFillByte();
}

namespace {

// Sum of the fuse weights 1 << (a & 7) over the addresses first..last.
uint32_t fuseWeights(uint64_t first, uint64_t last)
{
    uint32_t sum = 0;
    for (; first <= last && (first & 7); ++first)
        sum += 1u << (first & 7);
    if (first > last)
        return sum;
    const uint64_t groups = (last - first + 1) / 8;
    sum += uint32_t(groups * 0xFF);
    for (uint64_t a = first + groups * 8; a <= last; ++a)
        sum += 1u << (a & 7);
    return sum;
}

} // namespace

uint32_t KCDataDoc::rangeSum(int kind, uint64_t first, uint64_t last) const
{
    const uint8_t *data = m_algoParam->buffer(0).data();
    auto sumOf = [&](uint64_t a, uint64_t b) {
        return kind == CHECKSUM_KIND_FUSEMAP ? cBufferSum::fuseSum(data + a, b - a + 1, a)
                                             : cBufferSum::byteSum(data + a, b - a + 1);
    };
    if (!m_gapsUnfilled)
        return sumOf(first, last);
    // Gaps hold the fill byte in the image but zero in memory: their share is arithmetic.
    const uint8_t fill = fillByte();
    uint32_t sum = 0;
    uint64_t next = first;
    auto addGap = [&](uint64_t a, uint64_t b) {
        if (a > b || !fill)
            return;
        sum += kind == CHECKSUM_KIND_FUSEMAP ? fuseWeights(a, b) : uint32_t(uint64_t(fill) * (b - a + 1));
    };
    for (const KCAddressRange &r : m_dataMap.rangesIn(first, last)) {
        if (r.first > next)
            addGap(next, r.first - 1);
        sum += sumOf(r.first, r.second);
        next = r.second + 1;
    }
    if (next <= last && next >= first)
        addGap(next, last);
    return sum;
}

void KCDataDoc::materializeGaps(uint64_t first, uint64_t last)
{
    cByteBuffer &buf = m_algoParam->buffer(0);
    if (!m_gapsUnfilled || buf.size() == 0 || first >= buf.size())
        return;
    last = std::min(last, buf.size() - 1);
    const uint8_t fill = fillByte();
    // Gap bytes in memory are never read while the gaps count as unfilled, so filling only
    // some of them is safe.
    if (fill) {
        uint64_t next = first;
        for (const KCAddressRange &r : m_dataMap.rangesIn(first, last)) {
            if (r.first > next)
                buf.Fill(next, r.first - 1, fill);
            next = r.second + 1;
        }
        if (next <= last)
            buf.Fill(next, last, fill);
    }
    if (first == 0 && last == buf.size() - 1)
        m_gapsUnfilled = false;
}

void KCDataDoc::makeSparseImage(uint64_t size)
{
    cByteBuffer &buf = m_algoParam->buffer(0);
    buf.setLazy(true);
    buf.resize(0, 0);
    buf.resize(size, 0);
    m_sparse = true;
    m_gapsUnfilled = true;
    defineNothing();
}

bool KCDataDoc::growImage(uint64_t size)
{
    cByteBuffer &buf = m_algoParam->buffer(0);
    if (size <= buf.size())
        return true;
    // Unfilled gaps cost no memory: the growth is one of them.
    return buf.resize(size, m_gapsUnfilled ? 0 : fillByte());
}

bool KCDataDoc::WriteRange(uint64_t address, const uint8_t *bytes, uint64_t count)
{
    const uint64_t size = GetBufferSize();
    if (count == 0 || address >= size || count > size - address)
        return false;
    const uint64_t last = address + count - 1;
    bool ownStep = false;
    if (!beforeChange(address, count, "Write", ownStep))
        return false;
    updateChecksumForWrite(address, last, bytes, 0);
    std::memmove(m_algoParam->buffer(0).data() + address, bytes, count);
    noteWritten(address, last);
    afterChange(ownStep);
    return true;
}

bool KCDataDoc::FillRange(uint64_t first, uint64_t last, uint8_t value)
{
    if (first > last || last >= GetBufferSize())
        return false;
    bool ownStep = false;
    if (!beforeChange(first, last - first + 1, "Fill", ownStep))
        return false;
    updateChecksumForWrite(first, last, nullptr, value);
    m_algoParam->buffer(0).Fill(first, last, value);
    noteWritten(first, last);
    afterChange(ownStep);
    return true;
}

bool KCDataDoc::ChangeRange(uint64_t first, uint64_t last, const char *name, const std::function<void()> &edit)
{
    const uint64_t size = GetBufferSize();
    if (first > last || first >= size) {
        edit(); // nothing of the range is in the buffer: the edit can only refuse
        return true;
    }
    last = std::min(last, size - 1);
    bool ownStep = false;
    if (!beforeChange(first, last - first + 1, name, ownStep))
        return false;
    materializeGaps(first, last);
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    uint64_t a = 1, b = 0;
    uint32_t before = 0;
    if (param) {
        a = std::max<uint64_t>(first, param->checksumStart);
        b = std::min<uint64_t>(last, param->checksumEnd);
        // A change over the whole checksum range takes away all of the kept sum: nothing to read.
        const bool whole = a == param->checksumStart && b == param->checksumEnd;
        if (a <= b && b < size)
            before = whole ? param->checksum : rangeSum(param->checksumKind, a, b);
    }
    auto account = [&] {
        // Added to the map first: a gap's bytes count as what the buffer now holds.
        m_dataMap.add(first, last);
        if (param && a <= b && b < size)
            param->checksum += rangeSum(param->checksumKind, a, b) - before;
        noteWritten(first, last);
        afterChange(ownStep);
    };
    try {
        edit();
    } catch (...) {
        account();
        throw;
    }
    account();
    return true;
}

uint32_t KCDataDoc::checksumOf(uint64_t first, uint64_t last)
{
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    if (!param)
        return 0xFFFFFFFF;
    if (first > last || last >= GetBufferSize() || param->checksumKind > CHECKSUM_KIND_FUSEMAP)
        return 0;
    return rangeSum(param->checksumKind, first, last);
}

int KCDataDoc::FlipBytes(uint32_t from, uint32_t to)
{
    cByteBuffer &buf = m_algoParam->buffer(0);
    if (from >= to || to >= buf.size() || (to - from) % 2 == 0)
        return 0;
    if (uint8_t *p = buf.data())
        swapBytePairs(p + from, (uint64_t(to) - from + 1) / 2);
    return 1;
}

void KCDataDoc::OnSwapbytes()
{
    const std::string text = m_host->GetHostString(KCHostStrings::SwapBytesPrompt);
    if (m_host->MessageBox(text, KCPrompt::MB_OKCANCEL | KCPrompt::MB_ICONEXCLAMATION) != KCPrompt::IDOK)
        return;
    const uint64_t size = GetBufferSize();
    bool ownStep = false;
    if (size > 0 && !beforeChange(0, size, "Swap Bytes", ownStep))
        return;
    m_host->BeginWaitCursor();
    // A byte sum does not change under a swap: the checksum stays as it is.
    if (size > 0)
        FlipBytes(0, static_cast<uint32_t>(size - 1));
    // A pair with one byte of data now holds data in both halves.
    for (const KCAddressRange &r : m_dataMap.ranges())
        m_dataMap.add(r.first & ~uint64_t(1), std::min(r.second | 1, size - 1));
    if (size > 0)
        m_changedMap.add(0, size - 1);
    SetModifiedFlag(1);
    afterChange(ownStep);
    UpdateAllViews(nullptr, DOCHINT_ALL);
    m_host->EndWaitCursor();
}

TAG_BUFFER_PARAM *KCDataDoc::TF_GetBufferParam(int *bufferId, TAG_DATADOC_VIEWITEM *item, int *index, int view)
{
    if (view == -1)
        view = TF_GetSelectIndex();
    int chosen = -1;
    if (view >= 0 && static_cast<size_t>(view) < m_viewItems.size() && m_viewItems[view].isBufferView())
        chosen = view;
    else if (!m_viewItems.empty())
        chosen = 0;
    if (chosen < 0)
        return nullptr;
    const TAG_DATADOC_VIEWITEM &found = m_viewItems[chosen];
    if (bufferId)
        *bufferId = found.bufferId;
    if (item)
        *item = found;
    if (index)
        *index = chosen;
    return found.bufferParam;
}

int KCDataDoc::TF_GetMainBufferId() const
{
    return m_viewItems.empty() ? -1 : m_viewItems.front().bufferId;
}

unsigned long KCDataDoc::ComputeCheckSum(int view)
{
    // The selected view is the one whose checksum the status bar shows, whatever is asked.
    (void)view;
    TAG_DATADOC_VIEWITEM item;
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, &item, nullptr, -1);
    if (!param)
        return 0xFFFFFFFF;
    const cByteBuffer &buf = m_algoParam->buffer(0);
    const uint64_t size = buf.size();
    if (size == 0)
        return 0;

    uint32_t start, end;
    if (HasDeviceX()) {
        start = m_algoParam->algoUiData().BSA;
        end = m_algoParam->algoUiData().BEA;
    } else {
        start = param->LBSA;
        end = param->LBEA;
    }
    // The whole buffer's end is computed here, not given: 0xFFFFFFFF is then a real address.
    bool endGiven = true;
    if (isUnsetAddress(start, size)) {
        start = 0;
        end = static_cast<uint32_t>(std::min<uint64_t>(size - 1, 0xFFFFFFFFu));
        endGiven = false;
    }
    if (start >= size || end >= size || (endGiven && isUnsetAddress(end, size)) || start > end) {
        PrintCheckSumInvalid();
        return 0;
    }

    const bool fuseMap = item.view && item.view->isDataView() && item.view->GetBufferLayoutName() == BufferLayoutFuseMap;
    param->checksumKind = fuseMap ? CHECKSUM_KIND_FUSEMAP : CHECKSUM_KIND_BYTESUM;
    const uint32_t sum = rangeSum(param->checksumKind, start, end);
    param->checksumStart = start;
    param->checksumEnd = end;
    param->checksum = sum;
    PrintCheckSum(-1);
    return sum;
}

unsigned int KCDataDoc::GetCheckSum(unsigned int from, unsigned int to)
{
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    if (!param)
        return 0xFFFFFFFF;
    const cByteBuffer &buf = m_algoParam->buffer(0);
    // `to == size` passes the bound; the address one past the end contributes nothing.
    if (from > to || to > buf.size())
        return 0;
    const uint64_t last = std::min<uint64_t>(to, buf.size() - 1);
    if (buf.size() == 0 || from > last)
        return 0;
    const uint64_t count = last - from + 1;
    switch (param->checksumKind) {
    case CHECKSUM_KIND_BYTESUM:
        return cBufferSum::byteSum(buf.data() + from, count);
    case CHECKSUM_KIND_FUSEMAP:
        return cBufferSum::fuseSum(buf.data() + from, count, from);
    default:
        return 0;
    }
}

void KCDataDoc::UpdateCheckSum(unsigned long oldValue, unsigned long newValue, unsigned long addr, int view)
{
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, view);
    if (!param || addr < param->checksumStart || addr > param->checksumEnd)
        return;
    if (param->checksumKind == CHECKSUM_KIND_FUSEMAP) {
        // Any nonzero value counts the fuse once more, whatever was there before.
        const uint32_t weight = 1u << (addr & 7);
        if (newValue != 0)
            param->checksum += weight;
        else
            param->checksum -= weight;
    } else {
        param->checksum += static_cast<uint32_t>(newValue - oldValue);
    }
    PrintCheckSum(-1);
}

void KCDataDoc::PrintCheckSum(int view)
{
    TAG_BUFFER_PARAM *param = TF_GetBufferParam(nullptr, nullptr, nullptr, view);
    if (!param)
        return;
    const uint32_t c = param->checksum;
    std::string text;
    if (param->checksumKind == CHECKSUM_KIND_BYTESUM) {
        const std::string fmt = m_host->GetHostString(KCHostStrings::ChecksumBytes);
        text = KCFormat::format(fmt, {param->checksumStart, param->checksumEnd, int(c >> 24), int((c >> 16) & 0xFF),
                                      int((c >> 8) & 0xFF), int(c & 0xFF)});
    } else if (param->checksumKind == CHECKSUM_KIND_FUSEMAP) {
        const std::string fmt = m_host->GetHostString(KCHostStrings::ChecksumFuse);
        text = KCFormat::format(fmt, {param->checksumStart, param->checksumEnd, int((c >> 8) & 0xFF), int(c & 0xFF)});
    } else {
        return;
    }
    m_host->SetStatusBarText(STATUSPANE_CHECKSUM, text);
}

void KCDataDoc::PrintCheckSumInvalid()
{
    m_host->SetStatusBarText(STATUSPANE_CHECKSUM, m_host->GetHostString(KCHostStrings::ChecksumInvalid));
}

void KCDataDoc::SetDeviceItemX(const DEVICE_KRLXDEF_ITEM *item)
{
    if (item)
        m_deviceItem = *item;
}

int KCDataDoc::HasDeviceX() const
{
    if (m_algoParam->deviceName() == m_host->GetNoDeviceName())
        return 0;
    return static_cast<int>(m_algoParam->algoUiData().deviceRangeValid);
}

std::string KCDataDoc::GetDeviceName() const
{
    return m_deviceItem.name.empty() ? m_algoParam->deviceName() : m_deviceItem.name;
}

uint32_t KCDataDoc::GetDeviceType() const
{
    return m_deviceItem.type ? m_deviceItem.type : m_algoParam->deviceType();
}

void KCDataDoc::SetModifiedFlag(int modified)
{
    const bool changed = (IsModified() != 0) != (modified != 0);
    // Clean again: the buffer matches its file, nothing differs from it any more.
    if (!modified)
        m_changedMap.clear();
    KCDocBase::SetModifiedFlag(modified);
    if (changed)
        UpdateAllViews(nullptr, DOCHINT_MODIFIED_FLAG);
}

void KCDataDoc::SetPathName(const std::string &path, bool addToMru)
{
    if (m_projectFlag == 0)
        m_ownPathName = path;
    KCDocBase::SetPathName(path, addToMru && m_projectFlag == 0);
    UpdateTitle();
}

std::string KCDataDoc::GetFileName() const
{
    if (m_ownPathName.empty())
        return m_host->GetHostString(KCHostStrings::Untitled);
    const size_t sep = m_ownPathName.find_last_of("/\\");
    return sep == std::string::npos ? m_ownPathName : m_ownPathName.substr(sep + 1);
}

std::string KCDataDoc::GetFilePath() const
{
    const size_t sep = m_ownPathName.find_last_of("/\\");
    return sep == std::string::npos ? std::string() : m_ownPathName.substr(0, sep + 1);
}

void KCDataDoc::UpdateTitle()
{
    SetTitle(GetFileName());
}

std::string KCDataDoc::displayName() const
{
    const std::string &path = GetPathName();
    if (m_projectFlag != 0 && !path.empty() && path != m_ownPathName)
        return path.substr(path.find_last_of("/\\") + 1);
    return GetTitle().empty() ? GetFileName() : GetTitle();
}

void KCDataDoc::SetStandardAutoAction()
{
    m_host->SetStandardAutoAction(this);
}
