// ComputeCheckSum (byte and fuse kind) over a 256 MiB buffer, measured in the same run as
// the physical limits on the same memory: memset (write) and memchr (read, never matching),
// and a plain byte-sum loop as the compiler builds it at this optimisation level.
#include "doc/KCDataDoc.h"
#include "doc/KCHeadlessDataView.h"
#include "KCBenchHost.h"
#include "doc/cBufferSum.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>

namespace {

constexpr uint64_t BufferSize = 256ull << 20;



KCDataDoc &document()
{
    static KCBenchHost host(BufferSize, 0xFF);
    static KCDataDoc *doc = [] {
        g_pMainProgDataExChange = &host;
        auto *d = new KCDataDoc;
        std::mt19937_64 rng(1);
        uint8_t *p = d->AlgoParam().buffer(0).data();
        for (uint64_t i = 0; i < BufferSize; i += 8) {
            const uint64_t v = rng() & 0x0101010101010101ull; // fuse-like 0/1 bytes, half set
            std::memcpy(p + i, &v, 8);
        }
        return d;
    }();
    return *doc;
}

void setBytes(benchmark::State &state)
{
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(BufferSize));
}

void BM_ComputeCheckSum_Byte(benchmark::State &state)
{
    KCDataDoc &doc = document();
    KCHeadlessDataView view("BYTEVIEW");
    doc.viewItems()[0].view = &view;
    for (auto _ : state)
        benchmark::DoNotOptimize(doc.ComputeCheckSum(-1));
    doc.viewItems()[0].view = nullptr;
    setBytes(state);
}

void BM_ComputeCheckSum_Fuse(benchmark::State &state)
{
    KCDataDoc &doc = document();
    KCHeadlessDataView view("JEDVIEW");
    doc.viewItems()[0].view = &view;
    for (auto _ : state)
        benchmark::DoNotOptimize(doc.ComputeCheckSum(-1));
    doc.viewItems()[0].view = nullptr;
    setBytes(state);
}

void BM_PlainByteSumLoop(benchmark::State &state)
{
    const uint8_t *p = document().AlgoParam().buffer(0).data();
    for (auto _ : state)
        benchmark::DoNotOptimize(cBufferSum::byteSumReference(p, BufferSize));
    setBytes(state);
}

void BM_Memchr(benchmark::State &state)
{
    const uint8_t *p = document().AlgoParam().buffer(0).data();
    for (auto _ : state)
        benchmark::DoNotOptimize(std::memchr(p, 0xAA, BufferSize)); // 0xAA never occurs
    setBytes(state);
}

void BM_Memset(benchmark::State &state)
{
    static std::vector<uint8_t> scratch(BufferSize);
    for (auto _ : state) {
        std::memset(scratch.data(), int(state.iterations() & 1), BufferSize);
        benchmark::ClobberMemory();
    }
    setBytes(state);
}

} // namespace

BENCHMARK(BM_Memset)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Memchr)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainByteSumLoop)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ComputeCheckSum_Byte)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ComputeCheckSum_Fuse)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
