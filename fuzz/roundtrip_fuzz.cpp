// Fuzz target for a track's round trip: whatever reads as a good track is
// saved, read again and saved again. The second read must give the same
// records (file info apart from the name the save gives it, every variant's
// three records, shapes, road-surface lists, logo images), and the two saves
// the same bytes.
//
// As in trackfile_fuzz the CRCs are rewritten first and everything happens
// in a private directory; logos are loaded only when their names are safe
// to write there. A save leaves out logos too small to keep, and a read then
// skips the variants that named them: a track holding such a logo makes the
// round trip without logos.

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "FuzzFiles.h"
#include "TrackMemoryRecords.h"
#include "trackfile/LogoFiles.h"

namespace {

const char kInput[] = "0k3f9zq1.tkk";
const std::string kSaved = "1savedaa";

std::unique_ptr<CFileTkk> Read(const std::string& path, bool senzaLogo) {
  return std::unique_ptr<CFileTkk>(
      static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(path, false, senzaLogo)));
}

template <typename T>
bool SameBytes(const T& a, const T& b) {
  return memcmp(&a, &b, sizeof(T)) == 0;
}

template <typename T>
bool SameList(const T* a, const T* b) {
  if ((a == nullptr) != (b == nullptr)) return false;
  return a == nullptr || *a == *b;
}

void Compare(CFileTkk& a, CFileTkk& b) {
  _STagInfoFileTKK ia = a.GetTagInfoFile();
  _STagInfoFileTKK ib = b.GetTagInfoFile();
  memset(ia.GuidNomeFile, 0, sizeof ia.GuidNomeFile);
  memset(ib.GuidNomeFile, 0, sizeof ib.GuidNomeFile);
  if (!SameBytes(ia, ib)) abort();

  const std::vector<STagsInfoVariante*>& va = a.GetTagsInfoVarianti();
  const std::vector<STagsInfoVariante*>& vb = b.GetTagsInfoVarianti();
  if (va.size() != vb.size()) abort();
  for (size_t i = 0; i < va.size(); ++i) {
    const STagsInfoVariante& x = *va[i];
    const STagsInfoVariante& y = *vb[i];
    if (!SameBytes(x.InfoFw, y.InfoFw) || !SameBytes(x.InfoSw, y.InfoSw) ||
        !SameBytes(x.Indici, y.Indici))
      abort();
    if ((x.Punti == nullptr) != (y.Punti == nullptr) ||
        (x.Punti != nullptr && x.Punti->Punti.size() != y.Punti->Punti.size()))
      abort();
    if (x.Punti != nullptr && !x.Punti->Punti.empty() &&
        memcmp(x.Punti->Punti.data(), y.Punti->Punti.data(),
               x.Punti->Punti.size() * sizeof(_t_s_lla_i)) != 0)
      abort();
    if ((x.FondiStradali == nullptr) != (y.FondiStradali == nullptr) ||
        (x.FondiStradali != nullptr && x.FondiStradali->Fondi != y.FondiStradali->Fondi))
      abort();
    if ((x.Logo == nullptr) != (y.Logo == nullptr) ||
        (x.Logo != nullptr && x.Logo->Dati != y.Logo->Dati))
      abort();
  }
}

// Whether a save keeps every logo of the file: the images of all its "lgo"
// atoms (the bytes after the name's zero) are large enough.
bool AllLogosKept(const fuzz::Bytes& b) {
  size_t p = 0;
  while (b.size() - p >= 12) {
    const size_t size = static_cast<size_t>(b[p + 4]) | static_cast<size_t>(b[p + 5]) << 8 |
                        static_cast<size_t>(b[p + 6]) << 16 | static_cast<size_t>(b[p + 7]) << 24;
    if (size > b.size() - p - 12) break;
    if (memcmp(&b[p], "lgo\0", 4) == 0) {
      const unsigned char* payload = &b[p + 8];
      const void* zero = memchr(payload, 0, size);
      SLogo logo;
      logo.NomeFile = "logo";
      if (zero != nullptr)
        logo.Dati.assign(static_cast<const unsigned char*>(zero) + 1, payload + size);
      if (!vektkk::LogoDaSalvare(&logo)) return false;
    }
    p += 12 + size;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Bytes bytes(data, data + size);
  const bool senzaLogo = !fuzz::FixCrcs(bytes) || !AllLogosKept(bytes);
  const std::string& dir = fuzz::Dir();
  if (!fuzz::WriteFile(dir + kInput, bytes)) abort();

  std::unique_ptr<CFileTkk> first = Read(dir + kInput, senzaLogo);
  if (first && first->IsGood() && first->SalvaFileInPath(dir, &kSaved) == kSaved) {
    const std::string saved = dir + kSaved + ".tkk";
    const fuzz::Bytes once = fuzz::ReadFile(saved);
    std::unique_ptr<CFileTkk> second = Read(saved, senzaLogo);
    // What the library wrote it must read back.
    if (!second || !second->IsGood()) abort();
    Compare(*first, *second);
    if (second->SalvaFileInPath(dir, &kSaved) != kSaved) abort();
    if (fuzz::ReadFile(saved) != once) abort();
  }
  fuzz::EmptyDir();
  return 0;
}
