// End to end over real circuits (read from the shared data set at test
// time): each becomes a track file, the tracks go into a summary, the four
// sorted sets are written and read back, and the haversine search finds
// each circuit from its published location.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "Coordinate.h"
#include "summary/Riassunto.h"
#include "summary/CFileRiassuntivo.h"
#include "support/TrackFixtures.h"

namespace {

const std::string kData = VEKTKK_F1_DATA_DIR;

nlohmann::json Load(const std::string& path) { return nlohmann::json::parse(std::ifstream(path)); }

// A track file of one circuit: its shape, a finish line at the first point,
// its nation (upper-case country code of the id), reference point at the
// shape's centre. Returns the file name.
std::string SaveCircuit(const nlohmann::json& feature, const std::string& dir) {
  const nlohmann::json& props = feature["properties"];
  const std::string id = props["id"], name = props["Name"];
  std::vector<_t_s_lla_i> shape;
  double lat = 0, lon = 0;
  for (const nlohmann::json& c : feature["geometry"]["coordinates"]) {
    shape.push_back({ConvertiLatLonAs32(c[1].get<double>()), ConvertiLatLonAs32(c[0].get<double>()),
                     props["altitude"].get<int32_t>() * 1000});
    lat += c[1].get<double>();
    lon += c[0].get<double>();
  }
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMe(false, false));
  _STagInfoFileTKK info;
  memcpy(info.NamexSito, name.data(), std::min(name.size(), sizeof info.NamexSito));
  track->SetTagInfoFile("", info);
  _STagIndexesVarianteTKK idx;
  idx.IdxPunti = track->AddTagDatiPuntiTracciato(shape);
  _STagInfoVarianteTKK_fw fw;
  memset(fw.NationCode, 0, 4);
  memset(fw.SubNationCode, 0, 4);
  for (int i = 0; i < 2; ++i) fw.NationCode[i] = static_cast<char>(toupper(id[static_cast<size_t>(i)]));
  fw.LatRif = ConvertiLatLonAs32(lat / static_cast<double>(shape.size()));
  fw.LonRif = ConvertiLatLonAs32(lon / static_cast<double>(shape.size()));
  const float length = props["length"].get<float>();
  fw.ImpostaLunghezzaPista(nullptr, &length);
  _SDatoCoordinateBeacon finish;
  finish.LatI = shape[0].LatI;
  finish.LonI = shape[0].LonI;
  finish.LarghezzaPista = 12000;
  fw.InfoBeacons.SetLineeSplitLLH(0, finish, BEACON_SCRUTINEERING);
  EXPECT_TRUE(track->AddTagInfoVariante(name, name, fw, idx)) << id;
  return track->SalvaFileInPath(dir, nullptr);
}

TEST(SummaryF1, CircuitsThroughTheSummary) {
  if (access((kData + "/f1-locations.json").c_str(), R_OK) != 0)
    GTEST_SKIP() << "no f1 circuit outlines at " << kData << " (set VEKTKK_F1_DATA)";
  fixtures::TempDir dir;
  std::map<std::string, std::string> fileOf;  // circuit id -> track file name
  CFileRiassuntivo summary;
  const nlohmann::json locations = Load(kData + "/f1-locations.json");
  ASSERT_FALSE(locations.empty());
  for (const nlohmann::json& loc : locations) {
    const std::string id = loc["id"],
                      name = SaveCircuit(Load(kData + "/circuits/" + id + ".geojson")["features"][0],
                                         dir.path());
    fileOf[id] = name;
    std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile(dir.path() + name + ".tkk", true, true));
    summary.AddVarianteTkk(track.get(), 0);
  }
  const int n = static_cast<int>(locations.size());
  ASSERT_EQ(summary.GetNumRiassuntivi(), n);
  using Set = bool (IFileRiassuntivo::*)(const std::string&, const std::string&, const std::string&);
  namespace rs = vektkk::riassunto;
  const std::pair<Set, rs::Ordine> sets[] = {
      {&IFileRiassuntivo::CreaFileAlfabSortedSenzaNazione, rs::Ordine::AlfabeticoSenzaNazione},
      {&IFileRiassuntivo::CreaFileAlfabSortedConNazione, rs::Ordine::AlfabeticoConNazione},
      {&IFileRiassuntivo::CreaFileLatLonSorted, rs::Ordine::LatLon},
      {&IFileRiassuntivo::CreaFileGuidSorted, rs::Ordine::Guid}};
  for (const auto& set : sets) {
    const std::string p = dir.path() + "set";
    ASSERT_TRUE((summary.*set.first)(p + ".rsm", p + ".i2", p + ".i3"));
    EXPECT_EQ(fixtures::ReadAll(p + ".i2").size(), 2u * static_cast<size_t>(n));
    std::unique_ptr<IFileRiassuntivo> back(IFileRiassuntivo::CreateMeUponFile(p + ".rsm"));
    std::vector<const _SDatoRiassuntivo*> records;
    back->GetDatiRiassuntivi(records);
    ASSERT_EQ(records.size(), static_cast<size_t>(n));
    for (size_t i = 1; i < records.size(); ++i)
      EXPECT_FALSE(rs::Precede(set.second, *records[i], *records[i - 1]));
  }
  for (const nlohmann::json& loc : locations) {
    std::vector<int> found;
    summary.getNearestTracksByHeaversine(loc["lat"].get<double>(), loc["lon"].get<double>(), 5000, found);
    EXPECT_TRUE(std::any_of(found.begin(), found.end(), [&](int i) {
      return summary.Lista()[static_cast<size_t>(i)]->GetNomeFile() == fileOf[loc["id"]];
    })) << loc["id"];
  }
}

}  // namespace
