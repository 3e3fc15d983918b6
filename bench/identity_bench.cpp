// Cost of the identifiers a logger makes when it records a new circuit.
#include <benchmark/benchmark.h>
#include <string.h>

#include "GuidNomeFile.h"
#include "GuidTkk.h"
#include "tkkFlat.h"

namespace {

void BM_GetGuidTkk(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(IGuidTkk::GetGuidTkk(false, false));
}
BENCHMARK(BM_GetGuidTkk);

void BM_GetNomeFile(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(IGuidNomeFile::GetNomeFile(false, false));
}
BENCHMARK(BM_GetNomeFile);

void BM_NameRoundTrip(benchmark::State& state) {
  const char* name = "0k3f9zq1";
  char back[9];
  for (auto _ : state) {
    unsigned char value[8] = {0};
    tkkGetGuidFromNomeFile(value, name);
    tkkGetNomeFileFromGuid(back, value);
    benchmark::DoNotOptimize(back);
  }
}
BENCHMARK(BM_NameRoundTrip);

}  // namespace
