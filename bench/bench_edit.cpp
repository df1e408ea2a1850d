// The document's edits at memory speed: a fill of 1 GiB beside memset over the same memory,
// the undo of a 256 MiB fill (its bytes swapped back), and a 16 MiB paste beside memcpy.
#include "doc/KCDataDoc.h"
#include "KCBenchHost.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {

constexpr uint64_t FillSize = 1ull << 30;
constexpr uint64_t UndoSize = 256ull << 20;
constexpr uint64_t PasteSize = 16ull << 20;


KCDataDoc &document()
{
    static KCBenchHost host(FillSize, 0xFF);
    static KCDataDoc *doc = [] {
        g_pMainProgDataExChange = &host;
        auto *d = new KCDataDoc;
        d->ComputeCheckSum(-1);
        return d;
    }();
    return *doc;
}

void BM_DocumentFill1GiB(benchmark::State &state)
{
    KCDataDoc &doc = document();
    doc.undoHistory().setBudget(0); // the peer keeps no old bytes either
    uint8_t value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(doc.FillRange(0, FillSize - 1, ++value));
    state.SetBytesProcessed(int64_t(state.iterations() * FillSize));
}

void BM_Memset1GiB(benchmark::State &state)
{
    uint8_t *p = document().AlgoParam().buffer(0).data();
    uint8_t value = 0;
    for (auto _ : state) {
        std::memset(p, ++value, FillSize);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations() * FillSize));
}

void BM_UndoOfA256MiBFill(benchmark::State &state)
{
    KCDataDoc &doc = document();
    doc.undoHistory().setBudget(2 * UndoSize);
    uint8_t value = 0;
    for (auto _ : state) {
        state.PauseTiming();
        doc.FillRange(0, UndoSize - 1, ++value);
        state.ResumeTiming();
        benchmark::DoNotOptimize(doc.Undo());
    }
    state.SetBytesProcessed(int64_t(state.iterations() * UndoSize));
}

void BM_DocumentPaste16MiB(benchmark::State &state)
{
    KCDataDoc &doc = document();
    doc.undoHistory().setBudget(0);
    std::vector<uint8_t> clip(PasteSize, 0x5A);
    for (auto _ : state)
        benchmark::DoNotOptimize(doc.WriteRange(PasteSize, clip.data(), PasteSize));
    state.SetBytesProcessed(int64_t(state.iterations() * PasteSize));
}

void BM_Memcpy16MiB(benchmark::State &state)
{
    uint8_t *p = document().AlgoParam().buffer(0).data();
    std::vector<uint8_t> clip(PasteSize, 0x5A);
    for (auto _ : state) {
        std::memcpy(p + PasteSize, clip.data(), PasteSize);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations() * PasteSize));
}

} // namespace

BENCHMARK(BM_DocumentFill1GiB)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_Memset1GiB)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_UndoOfA256MiBFill)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_DocumentPaste16MiB)->Unit(benchmark::kMillisecond)->MinTime(0.5);
BENCHMARK(BM_Memcpy16MiB)->Unit(benchmark::kMillisecond)->MinTime(0.5);
BENCHMARK_MAIN();
