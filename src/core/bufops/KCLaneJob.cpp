#include "bufops/KCLaneJob.h"

#include "bufops/cBufferShuffle.h"
#include "bufops/cBufferSplit.h"
#include "bufops/cByteWindow.h"
#include "bufops/cLaneNames.h"
#include "doc/KCDataDoc.h"
#include "doc/cBufferSum.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace {

// Bytes of the source rebuilt from the lanes at a time by the round trip.
constexpr uint64_t RoundTripBlock = 1024 * 1024;
constexpr uint32_t BitsPerByte = 8;

// Runs `edit` inside one change of each document from `from` on, so that each keeps its
// checksum, map and undo for whatever the edit wrote, also when it throws.
void changeEach(const std::vector<KCDataDoc *> &docs, size_t from, uint64_t first, uint64_t last,
                const std::function<void()> &edit)
{
    if (from == docs.size()) {
        edit();
        return;
    }
    docs[from]->ChangeRange(first, last, "Split", [&] { changeEach(docs, from + 1, first, last, edit); });
}

} // namespace

bool KCLaneJob::PrepareLaneDoc(KCDataDoc &lane, uint64_t size, const std::string &sourceTitle, uint32_t narrowBits,
                               uint32_t wideBits, uint32_t laneNumber)
{
    cByteBuffer &buffer = lane.AlgoParam().buffer(0);
    if (lane.isSparse())
        lane.makeSparseImage(size);
    else if (!buffer.resize(0, 0) || !buffer.resize(size, lane.fillByte()))
        return false;
    lane.defineNothing();
    lane.undoHistory().clear();
    lane.SetTitle(sourceTitle + " [" + cLaneNames::NameOf(narrowBits, wideBits, laneNumber) + "]");
    return true;
}

std::pair<uint64_t, uint64_t> KCLaneJob::SplitLane(KCDataDoc &source, uint64_t first, uint64_t last,
                                                   uint32_t wideBits, uint32_t narrowBits, uint32_t lane,
                                                   KCDataDoc &dest)
{
    cBufferSplit split(source.AlgoParam().buffer(0), wideBits, dest.AlgoParam().buffer(0), narrowBits);
    const uint64_t destFirst = split.GetDestStart(first);
    const uint64_t destLast = split.GetDestEnd(last);
    source.materializeGaps(first, last);
    dest.ChangeRange(destFirst, destLast, "Split", [&] { split.Run(first, last, lane); });
    SetDataRange(dest, destFirst, destLast);
    dest.ComputeCheckSum(-1);
    return {destFirst, destLast};
}

std::pair<uint64_t, uint64_t> KCLaneJob::SplitLanes(KCDataDoc &source, uint64_t first, uint64_t last,
                                                    uint32_t wideBits, uint32_t narrowBits,
                                                    const std::vector<KCDataDoc *> &lanes)
{
    std::vector<KCByteArray *> buffers;
    for (KCDataDoc *lane : lanes)
        buffers.push_back(&lane->AlgoParam().buffer(0));
    // The engine checks the widths before anything is touched.
    const cBufferSplit any(source.AlgoParam().buffer(0), wideBits, source.AlgoParam().buffer(0), narrowBits);
    const uint64_t destFirst = any.GetDestStart(first);
    const uint64_t destLast = any.GetDestEnd(last);
    source.materializeGaps(first, last);
    changeEach(lanes, 0, destFirst, destLast, [&] {
        cBufferSplit::RunAllLanes(source.AlgoParam().buffer(0), wideBits, buffers, narrowBits, first, last);
    });
    for (KCDataDoc *lane : lanes) {
        SetDataRange(*lane, destFirst, destLast);
        lane->ComputeCheckSum(-1);
    }
    return {destFirst, destLast};
}

std::pair<uint64_t, uint64_t> KCLaneJob::Shuffle(KCDataDoc &source, uint64_t first, uint64_t last,
                                                 uint32_t narrowBits, uint32_t wideBits, uint32_t lane,
                                                 KCDataDoc &dest)
{
    cBufferShuffle shuffle(source.AlgoParam().buffer(0), narrowBits, dest.AlgoParam().buffer(0), wideBits);
    const uint64_t destFirst = shuffle.GetDestStart(first);
    const uint64_t destLast = shuffle.GetDestEnd(last);
    // Lanes from N on land past the wide units of the range: the change covers them too.
    const uint64_t changeFirst = std::min(destFirst, shuffle.MapAddress(first, lane));
    const uint64_t changeLast = std::max(destLast, shuffle.MapAddress(last, lane));
    source.materializeGaps(first, last);
    dest.ChangeRange(changeFirst, changeLast, "Shuffle", [&] { shuffle.Run(first, last, lane); });
    SetDataRange(dest, destFirst, destLast);
    dest.ComputeCheckSum(-1);
    return {destFirst, destLast};
}

std::pair<uint64_t, uint64_t> KCLaneJob::Join(const std::vector<KCDataDoc *> &lanes, uint32_t narrowBits,
                                              uint32_t wideBits, KCDataDoc &dest)
{
    // The widths are checked before anything is touched.
    const cBufferShuffle any(dest.AlgoParam().buffer(0), narrowBits, dest.AlgoParam().buffer(0), wideBits);
    uint64_t low = UINT64_MAX, high = 0;
    dest.beginAction("Join");
    try {
        for (uint32_t lane = 0; lane < lanes.size(); ++lane) {
            uint64_t first = 0, last = 0;
            if (!DataRange(*lanes[lane], any.GetSourceUnit(), first, last))
                continue;
            Reach(*lanes[lane], last);
            Reach(dest, std::max(any.GetDestEnd(last), any.MapAddress(last, lane)));
            // Run by run, so that the gaps of the lanes stay gaps of the wide image.
            for (const KCAddressRange &run : DataRuns(*lanes[lane], first, last, any.GetSourceUnit())) {
                const auto range = Shuffle(*lanes[lane], run.first, run.second, narrowBits, wideBits, lane, dest);
                low = std::min(low, range.first);
                high = std::max(high, range.second);
            }
        }
    } catch (...) {
        dest.endAction();
        throw;
    }
    dest.endAction();
    if (low <= high) {
        SetDataRange(dest, low, high);
        dest.ComputeCheckSum(-1);
    }
    return {low, high};
}

bool KCLaneJob::Reach(KCDataDoc &doc, uint64_t last)
{
    return doc.growImage(last + 1);
}

void KCLaneJob::SetDataRange(KCDataDoc &doc, uint64_t first, uint64_t last)
{
    TAG_BUFFER_PARAM *param = doc.mainBufferParam();
    param->LBSA = static_cast<uint32_t>(first);
    param->LBEA = static_cast<uint32_t>(last);
    if (doc.HasDeviceX()) {
        doc.AlgoParam().algoUiData().BSA = static_cast<uint32_t>(first);
        doc.AlgoParam().algoUiData().BEA = static_cast<uint32_t>(last);
    }
}

std::optional<uint64_t> KCLaneJob::RoundTrip(const KCDataDoc &source, uint64_t first, uint64_t last,
                                             uint32_t wideBits, uint32_t narrowBits,
                                             const std::vector<const KCDataDoc *> &lanes)
{
    const cByteBuffer &original = source.AlgoParam().buffer(0);
    const uint64_t wideUnit = wideBits / BitsPerByte, narrowUnit = narrowBits / BitsPerByte;
    if (first > last || last >= original.size() || !wideUnit || !narrowUnit)
        return first;
    // The lanes go back a block of wide units at a time, so the check needs no second image.
    const uint64_t blockUnits = RoundTripBlock / wideUnit;
    std::vector<uint8_t> block(blockUnits * wideUnit);
    for (uint64_t unit = first / wideUnit; unit <= last / wideUnit; unit += blockUnits) {
        const uint64_t units = std::min(blockUnits, last / wideUnit - unit + 1);
        cByteWindow wide(block.data(), units * wideUnit);
        std::fill(block.begin(), block.end(), 0);
        for (uint32_t lane = 0; lane < lanes.size(); ++lane) {
            cByteBuffer &laneBuffer = const_cast<cByteBuffer &>(lanes[lane]->AlgoParam().buffer(0));
            const uint64_t narrowFirst = unit * narrowUnit;
            if (laneBuffer.size() < narrowFirst + units * narrowUnit)
                return std::max(first, unit * wideUnit); // a lane too short for the range
            cByteWindow narrow(laneBuffer.data() + narrowFirst, units * narrowUnit);
            cBufferShuffle(narrow, narrowBits, wide, wideBits).Run(0, units * narrowUnit - 1, lane);
        }
        const uint64_t from = std::max(first, unit * wideUnit);
        const uint64_t to = std::min(last, (unit + units) * wideUnit - 1);
        const uint8_t *rebuilt = block.data() + (from - unit * wideUnit);
        if (std::memcmp(original.data() + from, rebuilt, to - from + 1) == 0)
            continue;
        for (uint64_t i = 0;; ++i) {
            if (original.data()[from + i] != rebuilt[i])
                return from + i;
        }
    }
    return std::nullopt;
}

bool KCLaneJob::DataRange(const KCDataDoc &doc, uint32_t unit, uint64_t &first, uint64_t &last)
{
    const std::vector<KCAddressRange> ranges = doc.dataMap().ranges();
    if (ranges.empty() || unit == 0)
        return false;
    first = ranges.front().first / unit * unit;
    last = (ranges.back().second / unit + 1) * unit - 1;
    return true;
}

std::vector<KCAddressRange> KCLaneJob::DataRuns(const KCDataDoc &doc, uint64_t first, uint64_t last, uint32_t unit)
{
    std::vector<KCAddressRange> runs;
    if (first > last || unit == 0)
        return runs;
    for (const KCAddressRange &r : doc.dataMap().rangesIn(first, last)) {
        const uint64_t a = first + (std::max(r.first, first) - first) / unit * unit;
        const uint64_t b = std::min(last, first + ((std::min(r.second, last) - first) / unit + 1) * unit - 1);
        if (!runs.empty() && a <= runs.back().second + 1)
            runs.back().second = std::max(runs.back().second, b);
        else
            runs.push_back({a, b});
    }
    return runs;
}

uint32_t KCLaneJob::ByteSum(const KCDataDoc &doc, uint64_t first, uint64_t last)
{
    const cByteBuffer &buffer = doc.AlgoParam().buffer(0);
    if (first > last || last >= buffer.size())
        return 0;
    uint32_t sum = 0;
    uint64_t next = first;
    const uint8_t fill = doc.fillByte();
    // A sparse image's gaps hold zero in memory: their share is the fill byte's.
    const auto gap = [&](uint64_t a, uint64_t b) {
        if (!doc.isSparse())
            sum += cBufferSum::byteSum(buffer.data() + a, b - a + 1);
        else
            sum += uint32_t(uint64_t(fill) * (b - a + 1));
    };
    for (const KCAddressRange &r : doc.dataMap().rangesIn(first, last)) {
        if (r.first > next)
            gap(next, r.first - 1);
        sum += cBufferSum::byteSum(buffer.data() + r.first, r.second - r.first + 1);
        next = r.second + 1;
    }
    if (next <= last && next >= first)
        gap(next, last);
    return sum;
}
