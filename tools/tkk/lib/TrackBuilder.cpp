#include "TrackBuilder.h"

#include <math.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include <stdexcept>

#include "BadInput.h"
#include "Geodesy.h"
#include "Vocabulary.h"

namespace tkk {

namespace {

void CopyCode(char (&field)[4], const std::string& code) {
  memset(field, 0, sizeof field);
  memcpy(field, code.data(), code.size() < sizeof field ? code.size() : sizeof field);
}

_t_s_lla_i Stored(const GeoPoint& p) {
  _t_s_lla_i s;
  s.LatI = ConvertiLatLonAs32(p.lat);
  s.LonI = ConvertiLatLonAs32(p.lon);
  s.AltI = static_cast<int32_t>(lround(p.alt * 1000.0));
  return s;
}

_STagInfoVarianteTKK_fw VariantRecord(const Layout& layout, const Circuit& circuit,
                                      const NewTrackOptions& options) {
  _STagInfoVarianteTKK_fw fw;
  CopyCode(fw.NationCode, circuit.nation);
  CopyCode(fw.SubNationCode, circuit.state);
  fw.DataModifica = IDataOraTkk::GetDataOraTkk();
  fw.TipoTracciato = options.type;

  // The length is the measured one; the key only names the standard length
  // it counts as (for ovals), so both fields are set directly rather than
  // through ImpostaLunghezzaPista, which would round the length to the key.
  const double length = ClosedLengthM(layout.points);
  fw.TipoLunghezza = static_cast<int32_t>(StandardLengthKey(length, options.type));
  fw.Lunghezza = static_cast<float>(length);

  const GeoPoint centre = Centroid(layout.points);
  fw.LatRif = ConvertiLatLonAs32(centre.lat);
  fw.LonRif = ConvertiLatLonAs32(centre.lon);
  fw.AltRif = static_cast<int32_t>(lround(centre.alt * 1000.0));

  int hours = 50;
  int minutes = 0;
  IVarianteTkk::GetTimeZoneFromNation(circuit.nation, circuit.state, hours, minutes);
  fw.TimeZone = hours;
  fw.DeltaMin = minutes;

  // A user's track uses the "User" set (the library insists on it); a
  // maker's track keeps the scrutineering set.
  fw.InfoBeacons.TipoBeaconInUso = static_cast<uint8_t>(options.maker ? BEACON_SCRUTINEERING : BEACON_USER);
  const _t_s_lla_i start = Stored(layout.points.front());
  _SDatoCoordinateBeacon finish;
  finish.LatI = start.LatI;
  finish.LonI = start.LonI;
  finish.AltI = start.AltI;
  finish.LarghezzaPista = options.widthM;
  fw.InfoBeacons.SetLineeSplitLLH(0, finish, BEACON_IN_USO);
  return fw;
}

}  // namespace

std::string CutUtf8(const std::string& text, size_t bytes) {
  if (text.size() <= bytes) return text;
  size_t end = bytes;
  // Step back over continuation bytes (10xxxxxx) to the start of a character.
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end);
}

std::unique_ptr<IFileTkk> BuildTrack(const Circuit& input, const NewTrackOptions& options) {
  Circuit circuit = input;
  if (!options.name.empty()) circuit.name = options.name;
  if (!options.nation.empty()) circuit.nation = options.nation;
  if (!options.state.empty()) circuit.state = options.state;
  CheckCode(circuit.nation, "nation");
  CheckCode(circuit.state, "state");

  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMe(options.maker, options.dev));
  track->SetNamexSito(circuit.name);
  for (const Layout& layout : circuit.layouts) {
    std::vector<_t_s_lla_i> shape;
    for (const GeoPoint& p : layout.points) shape.push_back(Stored(p));
    _STagIndexesVarianteTKK indexes;
    indexes.IdxPunti = track->AddTagDatiPuntiTracciato(shape);
    indexes.IdxFondiStradali = track->AddDatiFondoStradale({options.surface});
    const std::string device = CutUtf8(layout.name.empty() ? circuit.name : layout.name, 28);
    if (!track->AddTagInfoVariante(layout.name, device, VariantRecord(layout, circuit, options),
                                   indexes)) {
      throw std::logic_error("the library refused a new variant");
    }
  }
  return track;
}

std::vector<std::string> SaveTracks(const std::vector<std::unique_ptr<IFileTkk>>& tracks,
                                    const std::string& dir) {
  struct stat st;
  if (stat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
    throw BadInput(dir + ": output folder does not exist");
  }
  const std::string folder = dir.back() == '/' ? dir : dir + "/";
  std::vector<std::string> written;
  for (const auto& track : tracks) {
    const std::string name = track->SalvaFileInPath(folder, nullptr);
    if (name.empty()) {
      for (const std::string& path : written) remove(path.c_str());
      throw BadInput(folder + ": cannot write a track file there");
    }
    written.push_back(folder + name + ".tkk");
  }
  return written;
}

}  // namespace tkk
