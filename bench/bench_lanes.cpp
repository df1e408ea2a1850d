// Splitting a 256 MiB image 32 -> 8 into its four byte lanes beside memcpy of 256 MiB over
// the same memory: the engine lane after lane and all lanes in one pass, and the documents'
// split (lane documents with their checksum and data map, undo off as on the command line).
#include "bufops/KCLaneJob.h"
#include "bufops/cBufferSplit.h"
#include "doc/KCDataDoc.h"
#include "KCBenchHost.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr uint64_t ImageSize = 256ull << 20;
constexpr uint32_t Wide = 32, Narrow = 8, Lanes = Wide / Narrow;

KCBenchHost &host()
{
    static KCBenchHost h(0, 0xFF);
    g_pMainProgDataExChange = &h;
    return h;
}

KCDataDoc &image()
{
    static KCDataDoc *doc = [] {
        host();
        auto *d = new KCDataDoc;
        cByteBuffer &buffer = d->AlgoParam().buffer(0);
        buffer.resize(ImageSize, 0);
        std::mt19937_64 rng(1);
        uint64_t *words = reinterpret_cast<uint64_t *>(buffer.data());
        for (uint64_t i = 0; i < ImageSize / 8; ++i)
            words[i] = rng();
        d->defineWholeBuffer();
        d->ComputeCheckSum(-1);
        return d;
    }();
    return *doc;
}

std::vector<std::unique_ptr<cByteBuffer>> &laneBuffers()
{
    static std::vector<std::unique_ptr<cByteBuffer>> lanes = [] {
        std::vector<std::unique_ptr<cByteBuffer>> v;
        for (uint32_t i = 0; i < Lanes; ++i)
            v.push_back(std::make_unique<cByteBuffer>(ImageSize / Lanes, 0));
        return v;
    }();
    return lanes;
}

void BM_SplitEngine32To8(benchmark::State &state)
{
    cByteBuffer &source = image().AlgoParam().buffer(0);
    auto &lanes = laneBuffers();
    for (auto _ : state) {
        for (uint32_t lane = 0; lane < Lanes; ++lane)
            cBufferSplit(source, Wide, *lanes[lane], Narrow).Run(0, ImageSize - 1, lane);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations() * ImageSize));
}

void BM_SplitEngineAllLanes32To8(benchmark::State &state)
{
    cByteBuffer &source = image().AlgoParam().buffer(0);
    std::vector<KCByteArray *> lanes;
    for (auto &lane : laneBuffers())
        lanes.push_back(lane.get());
    for (auto _ : state) {
        cBufferSplit::RunAllLanes(source, Wide, lanes, Narrow, 0, ImageSize - 1);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations() * ImageSize));
}

void BM_SplitDocuments32To8(benchmark::State &state)
{
    KCDataDoc &source = image();
    std::vector<std::unique_ptr<KCDataDoc>> docs;
    for (uint32_t lane = 0; lane < Lanes; ++lane) {
        docs.push_back(std::make_unique<KCDataDoc>());
        docs.back()->undoHistory().setBudget(0);
        KCLaneJob::PrepareLaneDoc(*docs.back(), ImageSize / Lanes, "image", Narrow, Wide, lane);
    }
    std::vector<KCDataDoc *> targets;
    for (auto &doc : docs)
        targets.push_back(doc.get());
    for (auto _ : state)
        benchmark::DoNotOptimize(KCLaneJob::SplitLanes(source, 0, ImageSize - 1, Wide, Narrow, targets));
    state.SetBytesProcessed(int64_t(state.iterations() * ImageSize));
}

void BM_Memcpy256MiB(benchmark::State &state)
{
    const uint8_t *source = image().AlgoParam().buffer(0).data();
    cByteBuffer copy(ImageSize, 0);
    for (auto _ : state) {
        std::memcpy(copy.data(), source, ImageSize);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations() * ImageSize));
}

} // namespace

BENCHMARK(BM_Memcpy256MiB)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_SplitEngine32To8)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_SplitEngineAllLanes32To8)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_SplitDocuments32To8)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK_MAIN();
