// The atom CRC-32 against zlib's on buffers of 64 KB and 1 MB.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <random>
#include <vector>

#include "atomtag/Crc32.h"

namespace {

std::vector<unsigned char> Dati(size_t n) {
  std::mt19937 rng(3);
  std::vector<unsigned char> bytes(n);
  for (auto& b : bytes) b = static_cast<unsigned char>(rng());
  return bytes;
}

void BM_Crc32Zlib(benchmark::State& state) {
  const auto bytes = Dati(static_cast<size_t>(state.range(0)));
  for (auto _ : state)
    benchmark::DoNotOptimize(crc32(0, bytes.data(), static_cast<uInt>(bytes.size())));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(BM_Crc32Zlib)->Arg(64 << 10)->Arg(1 << 20);

// Each way this machine has (0 portable, 1 PCLMULQDQ, 2 VPCLMULQDQ, 3 ARM).
void BM_Crc32(benchmark::State& state) {
  const auto via = static_cast<vekatomtag::Crc32Via>(state.range(0));
  if (!vekatomtag::Crc32Disponibile(via)) {
    state.SkipWithError("not on this machine");
    return;
  }
  const auto bytes = Dati(static_cast<size_t>(state.range(1)));
  for (auto _ : state)
    benchmark::DoNotOptimize(vekatomtag::Crc32Con(via, 0, bytes.data(), bytes.size()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(BM_Crc32)->ArgNames({"via", "bytes"})->ArgsProduct({{0, 1, 2, 3}, {64 << 10, 1 << 20}});

}  // namespace
