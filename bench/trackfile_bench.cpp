// Reading and saving track files against the bare file operations on the
// same bytes, both measured in one loop, one after the other, so that the
// ratio holds whatever else the machine is doing. Each benchmark reports
// microseconds per operation of each, their ratio and the minor page faults
// per operation (ru_minflt).
//
// Reads come in two kinds: a new object per read (CreateMeUponFile and
// delete, as a host opening many tracks does) and the same object reading the
// same file again (LeggiFile: the steady state of one process).
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "BenchFiles.h"
#include "CFileTkk.h"

namespace {

using bench::Misura;
using bench::TrackSalvato;

enum Modo { kNuovoOggetto = 0, kStessoOggetto = 1 };

void Leggi(benchmark::State& state, const TrackSalvato& t, int modo) {
  Misura lib, nuda;
  std::unique_ptr<IFileTkk> stesso(IFileTkk::CreateMeUponFile(t.path, false, false));
  for (auto _ : state) {
    nuda.Inizia();
    const bool nudaOk = bench::LetturaNuda(t.path, t.bytes);
    nuda.Ferma();
    lib.Inizia();
    bool ok;
    if (modo == kStessoOggetto) {
      ok = stesso->LeggiFile(t.path, false);
    } else {
      std::unique_ptr<IFileTkk> nuovo(IFileTkk::CreateMeUponFile(t.path, false, false));
      ok = nuovo && nuovo->IsGood();
    }
    lib.Ferma();
    if (!ok || !nudaOk) state.SkipWithError("read failed");
  }
  bench::Riporta(state, lib, nuda);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * t.bytes * 2));
}

// The benchmark's file: a 7,999-point shape and a 900 KB logo.
void BM_Read(benchmark::State& state) {
  Leggi(state, bench::TrackDiRiferimento(), static_cast<int>(state.range(0)));
}
BENCHMARK(BM_Read)->ArgName("same")->Arg(kNuovoOggetto)->Arg(kStessoOggetto)->UseRealTime();

// The growth grid: points per shape x variants (each its own shape) x logo
// size in KB.
void BM_ReadGrid(benchmark::State& state) {
  const TrackSalvato& t = bench::Track(static_cast<int>(state.range(0)),
                                       static_cast<int>(state.range(1)),
                                       static_cast<size_t>(state.range(2)) * 1024);
  Leggi(state, t, static_cast<int>(state.range(3)));
  state.counters["KB"] = static_cast<double>(t.bytes) / 1024;
}
BENCHMARK(BM_ReadGrid)
    ->ArgNames({"pts", "var", "logoKB", "same"})
    ->ArgsProduct({{100, 1000, 7999}, {1, 5, 20}, {0, 100, 1024}, {kNuovoOggetto, kStessoOggetto}})
    ->UseRealTime();

// Saving the benchmark's file over itself, against writing the same bytes
// with the same flushes and rename, in the same directory.
void BM_Save(benchmark::State& state) {
  const TrackSalvato& t = bench::TrackDiRiferimento();
  std::vector<unsigned char> bytes(t.bytes);
  {
    FILE* f = fopen(t.path.c_str(), "rb");
    if (f == nullptr || fread(bytes.data(), 1, bytes.size(), f) != bytes.size()) abort();
    fclose(f);
  }
  const std::string nudo = bench::Cartella() + "nudo.tkk";
  Misura lib, nuda;
  for (auto _ : state) {
    nuda.Inizia();
    const bool nudaOk = bench::ScritturaNuda(nudo, bytes);
    nuda.Ferma();
    lib.Inizia();
    const bool ok = t.track->SalvaFileInPath(bench::Cartella(), &t.nome) == t.nome;
    lib.Ferma();
    if (!ok || !nudaOk) state.SkipWithError("save failed");
  }
  bench::Riporta(state, lib, nuda);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * t.bytes * 2));
}
BENCHMARK(BM_Save)->UseRealTime();

}  // namespace
