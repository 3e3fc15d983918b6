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

#include <dirent.h>
#include <fcntl.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include <zlib.h>

#include "CFileTkk.h"
#include "TrackMemoryRecords.h"

namespace {

const char kTrackName[] = "0k3f9zq1.tkk";
constexpr size_t kHeader = 8;
constexpr size_t kFooter = 4;

void EmptyDir(const std::string& dir) {
  DIR* d = opendir(dir.c_str());
  if (d == nullptr) return;
  while (const dirent* e = readdir(d)) {
    if (strcmp(e->d_name, ".") != 0 && strcmp(e->d_name, "..") != 0)
      unlink((dir + e->d_name).c_str());
  }
  closedir(d);
}

std::string g_dir;

void RemoveDir() {
  EmptyDir(g_dir);
  rmdir(g_dir.c_str());
}

// The private directory, ending in "/": under $TMPDIR, else /dev/shm, else
// /tmp.
const std::string& Dir() {
  if (g_dir.empty()) {
    const char* env = getenv("TMPDIR");
    std::string base = env != nullptr && *env != '\0' ? env
                       : access("/dev/shm", W_OK) == 0 ? "/dev/shm"
                                                       : "/tmp";
    std::string pattern = base + "/trackfile_fuzz-XXXXXX";
    if (mkdtemp(&pattern[0]) == nullptr) abort();
    g_dir = pattern + "/";
    atexit(RemoveDir);
  }
  return g_dir;
}

uint32_t GetLe32(const unsigned char* p) {
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
         static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

// Rewrites the CRC of every complete atom. Returns false when a logo's name
// holds a directory separator.
bool FixCrcs(std::vector<unsigned char>& b) {
  bool namesSafe = true;
  size_t p = 0;
  while (b.size() - p >= kHeader + kFooter) {
    const size_t size = GetLe32(&b[p + 4]);
    if (size > b.size() - p - kHeader - kFooter) break;
    unsigned char* payload = &b[p + kHeader];
    if (memcmp(&b[p], "lgo\0", 4) == 0) {
      const void* zero = memchr(payload, 0, size);
      const size_t nameLength =
          zero ? static_cast<size_t>(static_cast<const unsigned char*>(zero) - payload) : size;
      if (memchr(payload, '/', nameLength) != nullptr) namesSafe = false;
    }
    uLong crc = crc32(0L, &b[p], static_cast<uInt>(kHeader + size));
    for (int i = 0; i < 4; ++i) payload[size + i] = static_cast<unsigned char>(crc >> (8 * i));
    p += kHeader + size + kFooter;
  }
  return namesSafe;
}

bool WriteFile(const std::string& path, const std::vector<unsigned char>& b) {
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < b.size()) {
    const ssize_t n = write(fd, b.data() + done, b.size() - done);
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  return close(fd) == 0 && done == b.size();
}

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
  std::vector<unsigned char> bytes(data, data + size);
  const bool logosSafe = FixCrcs(bytes);
  const std::string& dir = Dir();
  const std::string path = dir + kTrackName;
  if (!WriteFile(path, bytes)) abort();
  Read(path, false);
  if (logosSafe) Read(path, true);
  EmptyDir(dir);
  return 0;
}
