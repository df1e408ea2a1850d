#include "bufops/KCLaneJob.h"

#include "bufops/cBufferShuffle.h"
#include "bufops/cBufferSplit.h"
#include "bufops/cLaneNames.h"
#include "doc/KCDataDoc.h"
#include "doc/cBufferSum.h"

#include <algorithm>
#include <cstring>

namespace {

// Bytes compared at a time when looking for the first difference.
constexpr uint64_t CompareBlock = 64 * 1024;

} // namespace

bool KCLaneJob::PrepareLaneDoc(KCDataDoc &lane, uint64_t size, const std::string &sourceTitle, uint32_t narrowBits,
                               uint32_t wideBits, uint32_t laneNumber)
{
    cByteBuffer &buffer = lane.AlgoParam().buffer(0);
    if (!buffer.resize(0, 0) || !buffer.resize(size, lane.fillByte()))
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
    if (first > last || last >= original.size())
        return first;
    cByteBuffer rebuilt;
    rebuilt.setLazy(true);
    for (uint32_t lane = 0; lane < lanes.size(); ++lane) {
        KCByteArray &narrow = const_cast<cByteBuffer &>(lanes[lane]->AlgoParam().buffer(0));
        cBufferShuffle shuffle(narrow, narrowBits, rebuilt, wideBits);
        const uint64_t narrowFirst = first / (wideBits / 8) * (narrowBits / 8);
        const uint64_t narrowLast = std::min<uint64_t>((last / (wideBits / 8) + 1) * (narrowBits / 8),
                                                       narrow.size()) - 1;
        if (narrow.size() == 0 || narrowFirst > narrowLast)
            continue;
        const uint64_t need = std::max(shuffle.GetDestEnd(narrowLast), shuffle.MapAddress(narrowLast, lane)) + 1;
        if (rebuilt.size() < need && !rebuilt.resize(need, 0))
            return first;
        shuffle.Run(narrowFirst, narrowLast, lane);
    }
    if (rebuilt.size() <= last)
        rebuilt.resize(last + 1, 0);
    for (uint64_t a = first; a <= last; a += CompareBlock) {
        const uint64_t n = std::min(CompareBlock, last - a + 1);
        if (std::memcmp(original.data() + a, rebuilt.data() + a, n) == 0)
            continue;
        for (uint64_t i = 0;; ++i) {
            if (original.data()[a + i] != rebuilt.data()[a + i])
                return a + i;
        }
    }
    return std::nullopt;
}

uint32_t KCLaneJob::ByteSum(const KCDataDoc &doc, uint64_t first, uint64_t last)
{
    const cByteBuffer &buffer = doc.AlgoParam().buffer(0);
    if (first > last || last >= buffer.size())
        return 0;
    return cBufferSum::byteSum(buffer.data() + first, last - first + 1);
}
