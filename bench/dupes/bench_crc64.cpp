// CRC-64 over a 256 MiB buffer on one core: our dispatching entry point, our
// table kernel, and ISA-L's crc64_jones_refl (same polynomial and reflection;
// with a zero seed its result is the bitwise NOT of ours).
#include "engine/duplicate/crc.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <random>
#include <vector>

#if VELMORA_HAVE_ISAL
#include <isa-l/crc64.h>
#endif

namespace {

const std::vector<unsigned char>& buffer() {
    static const std::vector<unsigned char> data = [] {
        std::vector<unsigned char> bytes(size_t(256) << 20);
        std::mt19937_64 generator(2024);
        for (size_t i = 0; i < bytes.size(); i += 8) {
            const uint64_t word = generator();
            for (int k = 0; k < 8; ++k) bytes[i + size_t(k)] = static_cast<unsigned char>(word >> (8 * k));
        }
        return bytes;
    }();
    return data;
}

void run(benchmark::State& state, uint64_t (*crc)(const unsigned char*, size_t)) {
    const std::vector<unsigned char>& data = buffer();
    for (auto _ : state) benchmark::DoNotOptimize(crc(data.data(), data.size()));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(data.size()));
}

uint64_t ours(const unsigned char* p, size_t n) { return velmora::crc::update(velmora::crc::kInitial, p, n); }
uint64_t velmoraPclmul(const unsigned char* p, size_t n) {
    return velmora::crc::updateWithCarrylessMultiply(velmora::crc::kInitial, p, n);
}
uint64_t velmoraTable(const unsigned char* p, size_t n) {
    return velmora::crc::updateWithTable(velmora::crc::kInitial, p, n);
}

void BM_Velmora(benchmark::State& state) { run(state, ours); }
void BM_VelmoraPclmul128(benchmark::State& state) { run(state, velmoraPclmul); }
void BM_VelmoraTable(benchmark::State& state) { run(state, velmoraTable); }
BENCHMARK(BM_Velmora)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_VelmoraPclmul128)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_VelmoraTable)->Unit(benchmark::kMillisecond)->MinTime(2);

#if VELMORA_HAVE_ISAL
uint64_t isal(const unsigned char* p, size_t n) { return crc64_jones_refl(0, p, n); }
void BM_IsaL(benchmark::State& state) { run(state, isal); }
BENCHMARK(BM_IsaL)->Unit(benchmark::kMillisecond)->MinTime(2);
#endif

}  // namespace

int main(int argc, char** argv) {
    const std::vector<unsigned char>& data = buffer();
    const uint64_t value = ours(data.data(), data.size());
    std::printf("carry-less multiply kernel: %s, 256-bit: %s\n", velmora::crc::hasCarrylessMultiply() ? "yes" : "no",
                velmora::crc::hasWideCarrylessMultiply() ? "yes" : "no");
    std::printf("CRC-64 of the buffer: %016llx\n", static_cast<unsigned long long>(value));
    if (value != velmoraTable(data.data(), data.size()) || value != velmoraPclmul(data.data(), data.size())) {
        std::printf("MISMATCH between kernels\n");
        return 1;
    }
#if VELMORA_HAVE_ISAL
    const uint64_t reference = isal(data.data(), data.size());
    std::printf("ISA-L crc64_jones_refl(0): %016llx, NOT: %016llx -> %s\n", static_cast<unsigned long long>(reference),
                static_cast<unsigned long long>(~reference), ~reference == value ? "equal" : "MISMATCH");
    if (~reference != value) return 1;
#endif
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
