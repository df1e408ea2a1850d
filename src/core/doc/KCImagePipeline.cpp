#include "doc/KCImagePipeline.h"

#include "fileio/KCArchive.h"
#include "doc/KCDataDoc.h"
#include "fileio/KCFileDialogCore.h"
#include "KCFileFormatRegistry.h"
#include "fileio/KCHostFileMessage.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"
#include "host/KCMessageMarks.h"

#include <cinttypes>
#include <cstdio>

namespace {

std::string hex32(uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08" PRIX64, value);
    return text;
}

std::string baseName(const std::string &path)
{
    const size_t sep = path.find_last_of('/');
    return sep == std::string::npos ? path : path.substr(sep + 1);
}

} // namespace

std::string KCImagePipeline::describeRanges(const std::vector<KCAddressRange> &ranges, size_t limit)
{
    std::string text;
    for (size_t i = 0; i < ranges.size() && i < limit; ++i) {
        text += i ? ", " : "";
        text += hex32(ranges[i].first) + "-" + hex32(ranges[i].second);
    }
    if (ranges.size() > limit)
        text += " and " + std::to_string(ranges.size() - limit) + " more ranges";
    return text.empty() ? "no data" : text;
}

bool KCImagePipeline::loadInto(KCArchive &ar, const KCFileFormatInfo &info, const KCLoadOptions &options)
{
    KCDataDoc &doc = m_doc;
    cByteBuffer &buffer = doc.m_algoParam->buffer(0);
    KCHostFileMessage sink(doc.host());
    doc.m_lastLoad = info.create(sink)->Load(ar.input(), buffer, options);

    // The file's ranges are file addresses; the map holds buffer addresses.
    doc.m_dataMap.clear();
    doc.m_changedMap.clear();
    doc.m_undo.clear();
    const uint64_t size = buffer.size();
    for (const KCAddressRange &r : doc.m_lastLoad.ranges) {
        if (r.second < options.rangeStart || r.first - options.rangeStart >= size)
            continue;
        const uint64_t first = r.first < options.rangeStart ? 0 : r.first - options.rangeStart;
        doc.m_dataMap.add(first, std::min(r.second - options.rangeStart, size - 1));
    }
    doc.m_saveRange.reset();
    if (!doc.m_lastLoad.ok) {
        KCMainProgDataExChange *host = doc.host();
        host->ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + host->GetHostString(KCHostStrings::ReadFailed)
                          + " : " + ar.GetFilePath());
        // What was read stays in the buffer, shown as the image shows it.
        if (!doc.m_sparse)
            doc.materializeGaps();
        return false;
    }
    return true;
}

KCImagePipeline::SparseChoice KCImagePipeline::askAboutSparseData(const std::string &path)
{
    const KCDataMap &map = m_doc.m_dataMap;
    const uint64_t size = m_doc.GetBufferSize();
    if (size <= SparsePromptSize || map.isEmpty() || map.countIn(0, UINT64_MAX) > size / 2)
        return SparseLoadAsItIs;
    char text[512];
    std::snprintf(text, sizeof text,
                  "%s holds %" PRIu64 " bytes of data at 0x%08" PRIX64 "-0x%08" PRIX64 ". Loading it from address 0 "
                  "takes %.1f GiB of memory.\n\nYes: load it from address 0.\nNo: load it from its lowest address, "
                  "0x%08" PRIX64 " (saving writes it back to the same addresses).\nCancel: do not load it.",
                  baseName(path).c_str(), map.countIn(0, UINT64_MAX), map.lowest(), map.highest(),
                  double(size) / double(uint64_t(1) << 30), map.lowest());
    switch (m_doc.host()->MessageBox(text, KCPrompt::MB_YESNOCANCEL | KCPrompt::MB_ICONQUESTION)) {
    case KCPrompt::IDYES:
        return SparseLoadAsItIs;
    case KCPrompt::IDNO:
        return SparseLoadFromLowest;
    default:
        return SparseDoNotLoad;
    }
}

void KCImagePipeline::read(KCArchive &ar, const KCFileTypeRow &row)
{
    KCDataDoc &doc = m_doc;
    KCMainProgDataExChange *host = doc.host();
    doc.m_loadOk = 0;
    TAG_BUFFER_PARAM *param = doc.TF_GetBufferParam(nullptr, nullptr, nullptr, -1);
    const KCFileFormatInfo *info = row.formatName ? KCFileFormatRegistry::byName(row.formatName) : nullptr;
    if (!param || !info)
        return;
    const std::string &path = ar.GetFilePath();
    host->ShowMessage(host->GetHostString(KCHostStrings::ReadingFile) + " : " + path + " ("
                      + KCFileTypeTable::description(row) + ")");

    cByteBuffer &buffer = doc.m_algoParam->buffer(0);
    const uint8_t fill = host->GetFillByte();
    KCLoadOptions options;
    options.fill = fill;
    const bool rangeSet = !(static_cast<int32_t>(param->LBSA) < 0) && param->LBEA >= param->LBSA;
    if (rangeSet) {
        options.rangeStart = param->LBSA;
        options.rangeLength = uint64_t(param->LBEA) - param->LBSA + 1;
    }
    // A device fixes the buffer's size. Without one the image is what the file defines: the
    // buffer starts empty and grows to the highest loaded address, whatever size it had.
    const bool deviceFixed = doc.HasDeviceX() != 0;
    options.grow = !deviceFixed;
    if (!deviceFixed)
        buffer.resize(0, fill);
    else if (options.rangeLength > buffer.size())
        options.rangeLength = buffer.size();

    // Record formats may put a few bytes at high addresses. They are loaded lazily first (zero
    // is the value fresh pages have anyway, so only the data's pages are touched); the gaps
    // get their fill once the size is known to be wanted. A sparse document keeps them unfilled.
    const bool lazy = !deviceFixed && (doc.m_sparse || row.type != LS_BINARY);
    if (lazy) {
        buffer.setLazy(true);
        options.fill = 0;
    }
    doc.m_gapsUnfilled = lazy;
    doc.m_loadBase = 0;
    // A device shown at shifted addresses (flash far up) takes records from its own
    // addresses, and saving puts them back there; a binary file has no addresses to shift.
    const uint32_t deviceOffset = deviceFixed ? doc.m_algoParam->algoUiData().addressOffset : 0;
    doc.m_loadBase = deviceOffset;
    if (row.type != LS_BINARY)
        options.rangeStart += deviceOffset;
    bool ok = loadInto(ar, *info, options);
    if (ok && lazy && !doc.m_sparse) {
        switch (askAboutSparseData(path)) {
        case SparseLoadAsItIs:
            break;
        case SparseLoadFromLowest:
            options.rangeStart += doc.m_dataMap.lowest();
            buffer.resize(0, 0);
            ok = loadInto(ar, *info, options);
            doc.m_loadBase = options.rangeStart;
            break;
        case SparseDoNotLoad:
            buffer.resize(0, 0);
            doc.m_dataMap.clear();
            host->ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Warning) + path + " : not loaded");
            return;
        }
        doc.materializeGaps();
    }
    buffer.setLazy(doc.m_sparse);
    if (!ok)
        return;
    if (row.postLoad == POSTLOAD_FUSE_MAP && !deviceFixed && doc.m_lastLoad.fuseCount) {
        doc.materializeGaps();
        buffer.resize(doc.m_lastLoad.fuseCount, fill);
        doc.defineWholeBuffer();
    }
    host->ShowMessage(host->GetHostString(KCHostStrings::ReadOk) + " : " + path);
    doc.m_loadOk = 1;
}

void KCImagePipeline::write(KCArchive &ar, const KCFileTypeRow &row)
{
    KCDataDoc &doc = m_doc;
    KCMainProgDataExChange *host = doc.host();
    doc.m_loadOk = 0;
    const KCFileFormatInfo *info = row.formatName ? KCFileFormatRegistry::byName(row.formatName) : nullptr;
    if (!info)
        return;
    uint64_t first = 0, count = 0;
    doc.saveRange(first, count);
    const uint64_t last = count ? first + count - 1 : first;

    KCSaveOptions options = doc.m_saveOptions;
    // A file loaded from its lowest address goes back to the addresses it came from.
    options.startAddress = first + doc.m_loadBase;
    options.segments.clear();
    // What the file will hold, as buffer addresses.
    std::vector<KCAddressRange> stored;
    const std::vector<KCAddressRange> defined = count ? doc.m_dataMap.rangesIn(first, last) : stored;
    if (row.type == LS_INTELHEX || row.type == LS_MOTOROLA) {
        for (const KCAddressRange &r : defined)
            options.segments.emplace_back(r.first - first, r.second - first);
        stored = defined;
        if (defined.empty())
            count = 0; // nothing defined in the range: a file without data records
    } else if (count) {
        stored.emplace_back(first, last);
        doc.materializeGaps(first, last); // a flat format writes the fill bytes too
    }

    const std::string &path = ar.GetFilePath();
    if (row.type == LS_BINARY && !defined.empty() && defined.front().first - first > LeadingFillWarning)
        host->ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Warning) + path + " : "
                          + std::to_string(defined.front().first - first) + " bytes of fill come before the first "
                          + "data at " + hex32(defined.front().first) + "; start the save range at "
                          + hex32(defined.front().first) + " to leave them out");

    KCHostFileMessage sink(host);
    std::unique_ptr<KCFileFormat> format = info->create(sink);
    ar.setWritten();
    if (!format->Save(ar.output(), path, doc.m_algoParam->buffer(0).data() + first, count, options))
        return;

    uint64_t bytes = 0;
    for (const KCAddressRange &r : stored)
        bytes += r.second - r.first + 1;
    const std::string name = path == "-" ? "standard output" : baseName(path);
    const std::string type = KCFileTypeTable::description(row);
    std::string summary = name + " : written as " + type + ": " + describeRanges(stored) + " (" + std::to_string(bytes)
                          + " bytes)";
    // A name whose extension belongs to another format (or to none) is worth a word.
    const std::string extension = KCFileDialogCore::extensionOf(path);
    if (path != "-" && !KCFileTypeTable::isFamilyExtension(row, extension)
        && KCFileFormatRegistry::byExtension(extension) != info)
        summary += "; note: " + name + " written as " + type + ", which its extension does not say";
    ar.setSummary(summary);
    doc.m_loadOk = 1;
}
