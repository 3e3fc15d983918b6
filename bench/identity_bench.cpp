// Cost of the identifiers a logger makes when it records a new circuit, from
// one thread and from four at once.
//
// rand() is replaced by a counter for this executable, so that no draw
// repeats within a second and the figures are the generators' own work (the
// clock, the packing, the lock and the set), not the 25 ms waits of a
// repeated number. The flags alternate from call to call as in a host that
// makes both kinds of track.
#include <benchmark/benchmark.h>
#include <string.h>

#include <atomic>

#include "GuidNomeFile.h"
#include "GuidTkk.h"
#include "tkkFlat.h"

namespace {
std::atomic<int> g_draws{0};
}  // namespace

extern "C" int __wrap_rand() { return g_draws.fetch_add(1, std::memory_order_relaxed) & 0x7FFFFFFF; }

namespace {

void BM_GetGuidTkk(benchmark::State& state) {
  bool vek = state.thread_index() % 2 == 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(IGuidTkk::GetGuidTkk(vek, false));
    vek = !vek;
  }
}
BENCHMARK(BM_GetGuidTkk)->Threads(1)->Threads(4)->UseRealTime();

void BM_GetNomeFile(benchmark::State& state) {
  bool vek = state.thread_index() % 2 == 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(IGuidNomeFile::GetNomeFile(vek, false));
    vek = !vek;
  }
}
BENCHMARK(BM_GetNomeFile)->Threads(1)->Threads(4)->UseRealTime();

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
