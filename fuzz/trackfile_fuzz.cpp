// Fuzz target for the track-file reader: the input is written as a track
// file, read with IFileTkk::CreateMeUponFile (once loading logos, once
// without), and every part of the result is touched, summary offsets
// included.
//
// CRCs: almost any change to an input breaks an atom's CRC, and the reader
// then stops at the container. Before writing the file the target therefore
// rewrites the CRC of every complete atom, so that mutations reach the
// records and the rules that build variants. The container's own checks
// have a target of their own (atomtag_fuzz).
//
// Files: the reader writes each logo's image beside the track file, under
// the name found in the file. Every process reads in a private directory
// that is emptied after each input and removed at exit; an input whose logo
// names hold a '/' is read without logos only, so that nothing is written
// outside that directory.

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

namespace {

const char kTrackName[] = "0k3f9zq1.tkk";

template <typename T>
void Check(const T* linked, uint16_t index) {
  // A variant is linked to a list exactly when its index names one.
  if ((linked == nullptr) != (index == 0xFFFF)) abort();
}

volatile uint64_t g_sink;

void Touch(CFileTkk& track, bool withLogos) {
  uint64_t sum = track.IsGood() + track.IsVekTrack() * 2u + track.IsDevTrack() * 4u;
  sum += static_cast<uint64_t>(track.GetIdxVariante()) + track.GetDimTkk();
  const _STagInfoFileTKK& info = track.GetTagInfoFile();
  sum += strnlen(info.NamexSito, sizeof info.NamexSito) +
         static_cast<unsigned char>(info.GuidNomeFile[7]);
  if (const std::string* logo = track.GetTrackLogo()) sum += logo->size();
  if (const SLogo* logo = track.GetTrackLogoBuffer()) sum += logo->Dati.size();

  const std::vector<STagsInfoVariante*>& variants = track.GetTagsInfoVarianti();
  const short n = static_cast<short>(variants.size() > 32767 ? 32767 : variants.size());
  for (short i = -1; i <= n; ++i) {
    sum += track.GetOffsetDatiFw(i) + track.GetOffsetPti(i) + track.GetGuidVariante(i).Valore;
    const STagsInfoVariante* v = track.GetTagInfoVariante(i);
    if (i < 0 || i == n) {
      if (v != nullptr) abort();
      continue;
    }
    if (v != variants[static_cast<size_t>(i)]) abort();
    sum += v->InfoFw.InfoBeacons.TipoBeaconInUso + strnlen(v->InfoSw.NomePista, 256);
    Check(v->Punti, v->Indici.IdxPunti);
    Check(v->FondiStradali, v->Indici.IdxFondiStradali);
    if (withLogos) Check(v->Logo, v->Indici.IdxLogo);
    if (v->Punti != nullptr) {
      if (v->Punti->Punti.empty()) abort();
      for (const _t_s_lla_i& p : v->Punti->Punti)
        sum += static_cast<uint32_t>(p.LatI ^ p.LonI ^ p.AltI);
    }
    if (v->FondiStradali != nullptr) {
      if (v->FondiStradali->Fondi.empty()) abort();
      for (_eTipoRoadSurfaceTkk f : v->FondiStradali->Fondi) sum += static_cast<uint32_t>(f);
    }
    if (v->Logo != nullptr) {
      sum += v->Logo->NomeFile.size();
      for (unsigned char c : v->Logo->Dati) sum += c;
    }
  }
  g_sink = sum;
}

void Read(const std::string& path, bool withLogos) {
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile(path, false, !withLogos));
  if (track) Touch(static_cast<CFileTkk&>(*track), withLogos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Bytes bytes(data, data + size);
  const bool logosSafe = fuzz::FixCrcs(bytes);
  const std::string path = fuzz::Dir() + kTrackName;
  if (!fuzz::WriteFile(path, bytes)) abort();
  Read(path, false);
  if (logosSafe) Read(path, true);
  fuzz::EmptyDir();
  return 0;
}
