// The search at memory speed: find-next of a pattern absent from 1 GiB of random bytes beside
// memmem and memchr over the same memory, and find-all of FF FF in 256 MiB of 0xFF (every
// address a hit) with the memory the hits take.
#include "doc/cByteBuffer.h"
#include "view/KCSearchHits.h"
#include "view/cBufferSearch.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <cstring>
#include <vector>

namespace {

constexpr uint64_t RandomSize = 1ull << 30;
constexpr uint64_t FullSize = 256ull << 20;
// The random bytes never take this value, so memchr for it reads all the memory.
constexpr uint8_t AbsentByte = 0xFF;
constexpr uint64_t ByteValues = 255;
constexpr int KiB = 1024;

const std::vector<uint8_t> Pattern = {0x4B, 0x52, 0x4C, 0x35, 0x00, 0x13, 0x37, 0x42};

const cByteBuffer &randomBuffer()
{
    static cByteBuffer *buffer = [] {
        auto *b = new cByteBuffer(RandomSize, 0);
        uint64_t x = 0x9E3779B97F4A7C15ull;
        uint8_t *p = b->data();
        for (uint64_t i = 0; i < RandomSize; ++i) {
            x ^= x << 13;
            x ^= x >> 7;
            x ^= x << 17;
            p[i] = static_cast<uint8_t>((x >> 24) % ByteValues);
        }
        return b;
    }();
    return *buffer;
}

const cByteBuffer &fullBuffer()
{
    static cByteBuffer *buffer = new cByteBuffer(FullSize, 0xFF);
    return *buffer;
}

long peakKiB()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return u.ru_maxrss;
}

void BM_FindNextAbsent1GiB(benchmark::State &state)
{
    const cByteBuffer &b = randomBuffer();
    cBufferSearch search(Pattern);
    for (auto _ : state)
        benchmark::DoNotOptimize(search.next(b.data(), b.size(), 0, static_cast<int64_t>(b.size()) - 1));
    state.SetBytesProcessed(int64_t(state.iterations() * RandomSize));
}

void BM_MemmemAbsent1GiB(benchmark::State &state)
{
    const cByteBuffer &b = randomBuffer();
    for (auto _ : state)
        benchmark::DoNotOptimize(memmem(b.data(), b.size(), Pattern.data(), Pattern.size()));
    state.SetBytesProcessed(int64_t(state.iterations() * RandomSize));
}

void BM_MemchrAbsent1GiB(benchmark::State &state)
{
    const cByteBuffer &b = randomBuffer();
    for (auto _ : state)
        benchmark::DoNotOptimize(std::memchr(b.data(), AbsentByte, b.size()));
    state.SetBytesProcessed(int64_t(state.iterations() * RandomSize));
}

void BM_FindAllFFFFIn256MiBOfFF(benchmark::State &state)
{
    const cByteBuffer &b = fullBuffer();
    cBufferSearch search({0xFF, 0xFF});
    const long before = peakKiB();
    uint64_t hits = 0;
    size_t ranges = 0;
    for (auto _ : state) {
        KCSearchHits found;
        search.findAll(b.data(), b.size(), 0, static_cast<int64_t>(b.size()) - 1, found);
        hits = found.count();
        ranges = found.ranges().size();
    }
    state.SetBytesProcessed(int64_t(state.iterations() * FullSize));
    state.counters["hits"] = double(hits);
    state.counters["ranges"] = double(ranges);
    state.counters["listMiB"] = double(KCSearchHits::DefaultListLimit * sizeof(uint64_t)) / (KiB * KiB);
    state.counters["peakGrowthMiB"] = double(peakKiB() - before) / KiB;
    state.counters["peakMiB"] = double(peakKiB()) / KiB;
}

} // namespace

BENCHMARK(BM_FindNextAbsent1GiB)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_MemmemAbsent1GiB)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_MemchrAbsent1GiB)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_FindAllFFFFIn256MiBOfFF)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_MAIN();
