#pragma once

#include "doc/KCDataMap.h"
#include "fileio/KCFileTypeTable.h"

#include <cstdint>
#include <string>
#include <vector>

class KCArchive;
class KCDataDoc;
struct KCFileFormatInfo;
struct KCLoadOptions;

// Moves an image between a file and the document's buffer 0 through the format library,
// so that the image keeps its shape: a load without a device makes the buffer exactly as
// large as the data needs and records which addresses the file defined; a save writes the
// save range, and record formats write only the defined ranges inside it, gaps staying gaps.
class KCImagePipeline
{
public:
    explicit KCImagePipeline(KCDataDoc &doc) : m_doc(doc) {}

    // The reader of `row` into buffer 0; sets the document's load-ok flag and last load.
    void read(KCArchive &ar, const KCFileTypeRow &row);
    // The writer of `row`; sets the load-ok flag and leaves a summary in the archive.
    void write(KCArchive &ar, const KCFileTypeRow &row);

    // "0x00000000-0x000003FF, 0x00004000-0x000042FF", at most `limit` ranges spelled out.
    static std::string describeRanges(const std::vector<KCAddressRange> &ranges, size_t limit = 8);

    // Fill ahead of the first data byte of a binary output above which the user is warned.
    static constexpr uint64_t LeadingFillWarning = uint64_t(1) << 20;
    // A file whose data would make a buffer larger than this, mostly of fill, is loaded only
    // after the user agreed.
    static constexpr uint64_t SparsePromptSize = uint64_t(1) << 30;

private:
    enum SparseChoice { SparseLoadAsItIs, SparseLoadFromLowest, SparseDoNotLoad };

    bool loadInto(KCArchive &ar, const KCFileFormatInfo &info, const KCLoadOptions &options);
    SparseChoice askAboutSparseData(const std::string &path);

    KCDataDoc &m_doc;
};
