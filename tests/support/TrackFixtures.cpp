#include "support/TrackFixtures.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "TrackMemoryRecords.h"

namespace fixtures {

TempDir::TempDir() {
  std::string pattern = std::filesystem::temp_directory_path().string() + "/vektkk-test-XXXXXX";
  if (mkdtemp(&pattern[0]) == nullptr) abort();
  path_ = pattern + "/";
}
TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}
std::vector<std::string> TempDir::Entries() const {
  std::vector<std::string> names;
  std::error_code ignored;  // a directory already gone has no entries
  for (const auto& e : std::filesystem::directory_iterator(path_, ignored))
    names.push_back(e.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

Snapshot Take(const TempDir& dir) {
  Snapshot files;
  for (const std::string& e : dir.Entries()) files.emplace(e, ReadAll(dir.path() + e));
  return files;
}

Bytes ReadAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteAll(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

static std::unique_ptr<CFileTkk> NewTrack(bool readOnly, const char* site, const char* guidName) {
  std::unique_ptr<CFileTkk> track(static_cast<CFileTkk*>(IFileTkk::CreateMe(readOnly, false)));
  _STagInfoFileTKK info;
  memcpy(info.NamexSito, site, strlen(site));
  memcpy(info.GuidNomeFile, guidName, 8);
  track->SetTagInfoFile("", info);
  return track;
}

std::unique_ptr<CFileTkk> MakeRandomTrack(uint32_t seed, bool readOnly) {
  std::mt19937 rng(seed);
  std::unique_ptr<CFileTkk> track = NewTrack(readOnly, "Autodromo", "00000000");
  const int variants = 1 + static_cast<int>(rng() % 3);
  for (int v = 0; v < variants; ++v) {
    std::vector<_t_s_lla_i> shape(1 + rng() % 500);
    for (auto& p : shape)
      p = {static_cast<int32_t>(rng()), static_cast<int32_t>(rng()), static_cast<int32_t>(rng() % 100000)};
    _STagIndexesVarianteTKK idx;
    idx.IdxPunti = track->AddTagDatiPuntiTracciato(shape);
    idx.IdxFondiStradali =
        track->AddDatiFondoStradale(std::vector<_eTipoRoadSurfaceTkk>(1 + rng() % 3, FONDO_DIRT));
    if (rng() % 2 == 0) {
      std::vector<unsigned char> image(10 + rng() % 300);
      for (auto& b : image) b = static_cast<unsigned char>(rng());
      idx.IdxLogo = track->AddTagDatiLogo(image, "/some/dir/logo" + std::to_string(v) + ".png");
    }
    // Every byte filled, reserved ones included, then the fields that carry
    // meaning set to plausible values.
    _STagInfoVarianteTKK_fw fw;
    unsigned char* raw = reinterpret_cast<unsigned char*>(&fw);
    for (size_t i = 0; i < sizeof fw; ++i) raw[i] = static_cast<unsigned char>(rng());
    memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
    fw.Guid.Valore = (static_cast<uint64_t>(rng()) << 16 | 1u) & 0x0001FFFFFFFFFFFFull;
    fw.InfoBeacons.TipoBeaconInUso = static_cast<uint8_t>(1 + rng() % 4);
    track->AddTagInfoVariante("Pista " + std::to_string(v), "Dev " + std::to_string(v), fw, idx);
  }
  return track;
}

std::unique_ptr<CFileTkk> MakeSmallTrack() {
  std::unique_ptr<CFileTkk> track = NewTrack(false, "Monza", "\0\0\0\0\0\0\0\0");
  _STagIndexesVarianteTKK idx;
  idx.IdxPunti = track->AddTagDatiPuntiTracciato(
      {{456200000, 92800000, 162000}, {456210000, 92810000, 162500}, {456220000, 92790000, 163000}});
  idx.IdxFondiStradali = track->AddDatiFondoStradale({FONDO_PAVED});
  _STagInfoVarianteTKK_fw fw;
  memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
  fw.Guid.Valore = 0x0000123456780001ull;
  track->AddTagInfoVariante("GP", "Monza GP", fw, idx);
  return track;
}

}  // namespace fixtures
