#pragma once

#include "doc/KCDataMap.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class KCDataDoc;

// Split and shuffle between documents: the engines run on the documents' buffers while each
// document keeps its checksum, data map, modified state and undo right (one step per run).
// Engine failures pass on as their integer codes (cLaneError).
class KCLaneJob
{
public:
    // Makes a fresh document ready to take a lane: a buffer of `size` fill bytes with nothing
    // defined in it (a sparse image for a sparse document), titled after the source document
    // and the lane ("image.hex [Odd  Byte]").
    static bool PrepareLaneDoc(KCDataDoc &laneDoc, uint64_t size, const std::string &sourceTitle, uint32_t narrowBits,
                               uint32_t wideBits, uint32_t laneNumber);
    // The lane of source[first..last] into `dest` at (first / S) * D onwards; its data range
    // then covers the lane and its checksum is recomputed. Returns the destination range.
    static std::pair<uint64_t, uint64_t> SplitLane(KCDataDoc &source, uint64_t first, uint64_t last,
                                                   uint32_t wideBits, uint32_t narrowBits, uint32_t lane,
                                                   KCDataDoc &dest);
    // Every lane at once, lane l into lanes[l], each one step of its document's undo; the
    // bytes of SplitLane for l = 0, 1, ... with the source read once. Returns the range of each.
    static std::pair<uint64_t, uint64_t> SplitLanes(KCDataDoc &source, uint64_t first, uint64_t last,
                                                    uint32_t wideBits, uint32_t narrowBits,
                                                    const std::vector<KCDataDoc *> &lanes);
    // source[first..last] into lane `lane` of `dest`; the data range of `dest` then covers the
    // wide units written and its checksum is recomputed. Returns that range.
    static std::pair<uint64_t, uint64_t> Shuffle(KCDataDoc &source, uint64_t first, uint64_t last,
                                                 uint32_t narrowBits, uint32_t wideBits, uint32_t lane,
                                                 KCDataDoc &dest);
    // Lane l's data into lane l of `dest` for every lane, as one step of its undo: the inverse
    // of a split. Lanes and `dest` grow with fill bytes as needed (a buffer that cannot grow
    // refuses as a too small one does); the data range of `dest` then covers every lane.
    // Returns that range, first > second when no lane holds data.
    static std::pair<uint64_t, uint64_t> Join(const std::vector<KCDataDoc *> &lanes, uint32_t narrowBits,
                                              uint32_t wideBits, KCDataDoc &dest);
    // Grows a document's buffer with fill bytes to hold address `last`; false without memory.
    static bool Reach(KCDataDoc &doc, uint64_t last);
    // Sets a document's data range (and the device's range when one is selected).
    static void SetDataRange(KCDataDoc &doc, uint64_t first, uint64_t last);
    // Shuffles the lanes of a split back together in memory and compares them with
    // source[first..last]: the first address that differs, none when identical.
    static std::optional<uint64_t> RoundTrip(const KCDataDoc &source, uint64_t first, uint64_t last,
                                             uint32_t wideBits, uint32_t narrowBits,
                                             const std::vector<const KCDataDoc *> &lanes);
    // The document's data from its lowest to its highest defined address, widened to whole
    // units of `unit` bytes; false when it holds no data.
    static bool DataRange(const KCDataDoc &doc, uint32_t unit, uint64_t &first, uint64_t &last);
    // The runs of data inside [first, last], each widened to whole units of `unit` bytes
    // counted from `first` and merged where they meet: what a split or shuffle of an image
    // takes so that its gaps stay gaps.
    static std::vector<KCAddressRange> DataRuns(const KCDataDoc &doc, uint64_t first, uint64_t last, uint32_t unit);
    // Sum of the bytes first..last of a document's image (gaps as the fill byte), modulo 2^32.
    static uint32_t ByteSum(const KCDataDoc &doc, uint64_t first, uint64_t last);
};
