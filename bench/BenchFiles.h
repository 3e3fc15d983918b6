#ifndef VEKTKK_BENCH_BENCHFILES_H
#define VEKTKK_BENCH_BENCHFILES_H

// What the track-file benchmarks share: tracks built in memory and saved
// once, the bare file operations a careful program would do with the same
// bytes, and the clock and page-fault counter read around each operation.
#include <benchmark/benchmark.h>
#include <stddef.h>

#include <memory>
#include <string>
#include <vector>

#include "IFileTkk.h"

namespace bench {

// A fresh directory under $TMPDIR (or /tmp), removed at exit; ends in "/".
const std::string& Cartella();

// A track of `varianti` variants, each with its own shape of `punti` points,
// and one logo of `logoBytes` random bytes (none for 0), saved under a name
// of its own in Cartella(). The same arguments give the same track.
struct TrackSalvato {
  std::unique_ptr<IFileTkk> track;
  std::string nome;  // 8 characters
  std::string path;  // Cartella() + nome + ".tkk"
  size_t bytes;      // size of the saved file
};
const TrackSalvato& Track(int punti, int varianti, size_t logoBytes);

// The benchmark's file: a 7,999-point shape and a 900 KB logo (about 1 MB).
inline const TrackSalvato& TrackDiRiferimento() { return Track(7999, 1, 900 * 1024); }

// One read() of the whole file into a new buffer that is not zero-filled.
bool LetturaNuda(const std::string& path, size_t bytes);

// The same bytes saved as the library saves: a temporary file written and
// flushed, renamed over `path`, the directory flushed.
bool ScritturaNuda(const std::string& path, const std::vector<unsigned char>& bytes);

// Wall time and minor page faults of a stretch of code, summed over calls.
class Misura {
 public:
  void Inizia();
  void Ferma();
  double Secondi() const { return secondi_; }
  long Faults() const { return faults_; }

 private:
  double inizio_ = 0, secondi_ = 0;
  long faultsInizio_ = 0, faults_ = 0;
};

// Counters of a library operation against its bare counterpart measured in
// the same loop: microseconds of each, their ratio, page faults per operation.
void Riporta(benchmark::State& state, const Misura& libreria, const Misura& nuda);

}  // namespace bench

#endif  // VEKTKK_BENCH_BENCHFILES_H
