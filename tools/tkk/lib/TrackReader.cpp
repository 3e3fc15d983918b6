#include "TrackReader.h"

#include <string.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "BadInput.h"

namespace tkk {

namespace {

std::vector<unsigned char> ReadBytes(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) throw BadInput(path + ": no such file");
  if (S_ISDIR(st.st_mode)) throw BadInput(path + ": is a directory, not a track file");
  std::ifstream in(path, std::ios::binary);
  if (!in) throw BadInput(path + ": cannot be read");
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), {});
}

std::vector<SAtomTag> DecodeAtoms(const std::string& path, const std::vector<unsigned char>& bytes) {
  std::unique_ptr<IAtomTagDecoderBin> decoder(IAtomTagDecoderBin::CreateMe());
  std::vector<SAtomTag> atoms;
  if (bytes.empty()) throw BadInput(path + ": empty file, not a track file");
  if (!decoder || !decoder->decode(bytes.data(), bytes.size(), atoms)) {
    throw BadInput(path + ": damaged track file (cut short or corrupt)");
  }
  return atoms;
}

// The library clears its read result into IsGood together with two rules of
// its own; a read that succeeded is recognised by those rules holding.
bool ReadFailed(IFileTkk& track) {
  if (track.IsGood()) return false;
  if (track.IsVekTrack() && track.IsDevTrack()) return false;
  for (const STagsInfoVariante* v : track.GetTagsInfoVarianti()) {
    const uint8_t type = v->InfoFw.InfoBeacons.TipoBeaconInUso;
    if (type < 1 || type > 4) return false;
  }
  return true;
}

}  // namespace

std::unique_ptr<IFileTkk> OpenTrack(const std::string& path) {
  DecodeAtoms(path, ReadBytes(path));
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile(path, true, true));
  if (ReadFailed(*track)) throw BadInput(path + ": not a track file");
  return track;
}

std::vector<LogoEntry> ListLogos(const std::string& path) {
  const std::vector<unsigned char> bytes = ReadBytes(path);
  std::vector<LogoEntry> logos;
  for (const SAtomTag& atom : DecodeAtoms(path, bytes)) {
    if (atom.Tag != "lgo") continue;
    const auto* zero = static_cast<const unsigned char*>(memchr(atom.Dati, 0, atom.Dim));
    const size_t nameLength = zero ? static_cast<size_t>(zero - atom.Dati) : atom.Dim;
    LogoEntry logo;
    logo.name.assign(reinterpret_cast<const char*>(atom.Dati), nameLength);
    logo.bytes = zero ? atom.Dim - nameLength - 1 : 0;
    logos.push_back(logo);
  }
  return logos;
}

std::string FixedText(const char* field, size_t size) { return std::string(field, strnlen(field, size)); }

GeoPoint ToGeo(int32_t latI, int32_t lonI, int32_t altMm) {
  return GeoPoint{ConvertiLatLonADouble(latI), ConvertiLatLonADouble(lonI), ConvertiAltADouble(altMm)};
}

VariantGeometry GeometryOf(IVarianteTkk& variant) {
  VariantGeometry g;
  const STagsInfoVariante* record = variant.GetTagInfo();
  if (record == nullptr) return g;
  if (record->Punti != nullptr) {
    for (const _t_s_lla_i& p : record->Punti->Punti) g.outline.push_back(ToGeo(p.LatI, p.LonI, p.AltI));
  }
  g.reference = ToGeo(record->InfoFw.LatRif, record->InfoFw.LonRif, record->InfoFw.AltRif);
  const _SDatoCoordinateBeacon* lines = nullptr;
  const unsigned int used = variant.GetLineeSplitLLH(lines, BEACON_IN_USO);
  for (unsigned int i = 0; i < used; ++i) {
    g.lines.push_back(BeaconLine{i, ToGeo(lines[i].LatI, lines[i].LonI, lines[i].AltI),
                                 lines[0].LarghezzaPista});
  }
  return g;
}

}  // namespace tkk
