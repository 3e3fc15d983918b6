// Fuzz target for the summary: the input's whole 128-byte records are
// written as a summary file and read with IFileRiassuntivo::CreateMeUponFile;
// the bytes left over choose the point and distance of the nearest-track
// searches. Every operation then runs on what was read: the four sorted
// sets with both cross-indexes, the cross-index of the list into itself,
// the comparison with itself and with a second reading of the file, both
// nearest searches, the text listing, saving and reading back, removing a
// file name.

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "FuzzFiles.h"
#include "IFileRiassuntivo.h"
#include "summary/CFileRiassuntivo.h"

namespace {

constexpr size_t kRecord = sizeof(_SDatoRiassuntivo);

// A set's files: the primary file holds every record, each cross-index a
// valid position for each of them.
void CheckSet(const std::string& dir, size_t n) {
  if (fuzz::ReadFile(dir + "set1").size() != n * kRecord) abort();
  for (const char* name : {"set2", "set3"}) {
    const fuzz::Bytes idx = fuzz::ReadFile(dir + name);
    if (idx.size() != 2 * n) abort();
    for (size_t i = 0; i < n; ++i)
      if ((idx[2 * i] | idx[2 * i + 1] << 8) >= static_cast<int>(n)) abort();
  }
}

template <typename F>
void Set(IFileRiassuntivo& s, const std::string& dir, size_t n, F make) {
  const bool made = (s.*make)(dir + "set1", dir + "set2", dir + "set3");
  if (made != (n > 0)) abort();
  if (made) CheckSet(dir, n);
}

double Param(const uint8_t* p, size_t left, size_t at, double scale) {
  if (at + 4 > left) return 0.0;
  const int32_t v = static_cast<int32_t>(static_cast<uint32_t>(p[at]) | p[at + 1] << 8 |
                                         p[at + 2] << 16 | static_cast<uint32_t>(p[at + 3]) << 24);
  return v * scale;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const size_t whole = size - size % kRecord;
  const size_t n = whole / kRecord;
  // Positions are 16-bit in the cross-index files.
  if (n > 4096) return 0;
  const std::string& dir = fuzz::Dir();
  const std::string path = dir + "summary.dat";
  if (!fuzz::WriteFile(path, data, whole)) abort();

  std::unique_ptr<IFileRiassuntivo> s(IFileRiassuntivo::CreateMeUponFile(path));
  std::unique_ptr<IFileRiassuntivo> other(IFileRiassuntivo::CreateMeUponFile(path));
  if (!s || !other || s->GetNumRiassuntivi() != static_cast<int>(n)) abort();

  Set(*s, dir, n, &IFileRiassuntivo::CreaFileAlfabSortedSenzaNazione);
  Set(*s, dir, n, &IFileRiassuntivo::CreaFileAlfabSortedConNazione);
  Set(*s, dir, n, &IFileRiassuntivo::CreaFileLatLonSorted);
  Set(*s, dir, n, &IFileRiassuntivo::CreaFileGuidSorted);

  std::vector<_SDatoRiassuntivo*>& list = static_cast<CFileRiassuntivo&>(*s).Lista();
  CFileRiassuntivo::CalcolaAndScriviIdx(list, list, dir + "self.idx");
  const fuzz::Bytes self = fuzz::ReadFile(dir + "self.idx");
  if (self.size() != 2 * n) abort();
  for (size_t i = 0; i < n; ++i) {
    const size_t at = static_cast<size_t>(self[2 * i] | self[2 * i + 1] << 8);
    if (at > i || memcmp(list[at], list[i], kRecord) != 0) abort();
  }

  // Every file name is on both sides.
  for (IFileRiassuntivo* o : {s.get(), other.get()}) {
    SConfrontoPiste esito;
    s->ConfrontaConAltro(*o, esito);
    if (!esito.PisteSoloQui.empty() || !esito.PisteSoloAltrove.empty()) abort();
    SConfrontoPisteEsteso esteso;
    s->ConfrontaConAltroEsteso(*o, esteso);
    if (!esteso.PisteSoloQui.empty() || !esteso.PisteSoloAltrove.empty()) abort();
  }

  const uint8_t* tail = data + whole;
  const size_t left = size - whole;
  const double lat = Param(tail, left, 0, 1e-7);
  const double lon = Param(tail, left, 4, 1e-7);
  const int maxDist = static_cast<int>(Param(tail, left, 8, 1.0));
  const int nearest = s->GetDatoRiassuntivoNearest(lat, lon);
  if (nearest < 0 || nearest > static_cast<int>(n) || (n > 0 && nearest == static_cast<int>(n)))
    abort();
  std::vector<int> found;
  if (s->getNearestTracksByHeaversine(lat, lon, maxDist, found) != static_cast<int>(found.size()))
    abort();
  for (size_t i = 0; i < found.size(); ++i)
    if (found[i] < 0 || found[i] >= static_cast<int>(n) || (i > 0 && found[i] <= found[i - 1]))
      abort();

  if (!s->CreaFileAlfabSortedConNazioneTestuale(dir + "list.txt")) abort();

  s->SalvaFileDev(dir + "again.dat");
  if (fuzz::ReadFile(dir + "again.dat") != fuzz::Bytes(data, data + whole)) abort();

  if (n > 0) {
    const std::string name = list[0]->GetNomeFile();
    const int left_after = s->DelFileTkk(name);
    if (left_after < 0 || left_after >= static_cast<int>(n) || s->IsThisFileTkkHere(name) ||
        s->GetNumRiassuntivi() != left_after)
      abort();
  }
  fuzz::EmptyDir();
  return 0;
}
