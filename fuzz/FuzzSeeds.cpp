// Writes the seed corpora of the fuzz targets into the directory given on
// the command line, one subdirectory per target: track files saved by the
// library (small, random, with embedded and external logos), summaries made
// from their variants, file names, and GeoJSON and GPX maps. Everything is
// made here at build time, so no binary is kept in the sources.

#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "FuzzFiles.h"
#include "GuidNomeFile.h"
#include "IFileRiassuntivo.h"
#include "support/TrackFixtures.h"

namespace {

std::string g_out;

void Put(const std::string& target, const std::string& name, const fuzz::Bytes& b) {
  mkdir((g_out + target).c_str(), 0755);
  if (!fuzz::WriteFile(g_out + target + "/" + name, b)) {
    fprintf(stderr, "cannot write %s%s/%s\n", g_out.c_str(), target.c_str(), name.c_str());
    exit(1);
  }
}

void PutText(const std::string& target, const std::string& name, const std::string& text) {
  Put(target, name, fuzz::Bytes(text.begin(), text.end()));
}

// Saves `track` and adds the file to the track targets' corpora; returns
// the saved path.
std::string AddTrack(CFileTkk& track, const std::string& name, bool logoEsterno) {
  const std::string& dir = fuzz::Dir();
  const std::string saved =
      logoEsterno ? track.SalvaFileInPathLogoEsterno(dir, name) : track.SalvaFileInPath(dir, &name);
  if (saved != name) {
    fprintf(stderr, "cannot save track %s\n", name.c_str());
    exit(1);
  }
  const std::string path = dir + name + ".tkk";
  const fuzz::Bytes b = fuzz::ReadFile(path);
  for (const char* target : {"atomtag", "trackfile", "roundtrip"}) Put(target, name, b);
  return path;
}

void AddSummary(const std::string& name, const std::vector<std::string>& tracks) {
  std::unique_ptr<IFileRiassuntivo> s(IFileRiassuntivo::CreateMe());
  for (const std::string& path : tracks) {
    std::unique_ptr<IFileTkk> t(IFileTkk::CreateMeUponFile(path, true, true));
    const short n = static_cast<short>(static_cast<CFileTkk&>(*t).GetTagsInfoVarianti().size());
    for (short i = 0; i < n; ++i) s->AddVarianteTkk(t.get(), i);
  }
  const std::string path = fuzz::Dir() + "summary.dat";
  s->SalvaFileDev(path);
  fuzz::Bytes b = fuzz::ReadFile(path);
  Put("summary", name, b);
  // The same records with a search point and distance after them.
  const unsigned char point[12] = {0x40, 0x6b, 0x30, 0x1b, 0x00, 0x03, 0x88, 0x05,
                                   0x10, 0x27, 0x00, 0x00};
  b.insert(b.end(), point, point + sizeof point);
  Put("summary", name + "-near", b);
}

const char kGeoJson[] = R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"name":"GP","site":"Monza","nation":"ITA","state":"MB",
"role":"outline"},"geometry":{"type":"LineString","coordinates":[[9.28,45.62,162.0],
[9.281,45.621,162.5],[9.279,45.622]]}},
{"type":"Feature","properties":{"role":"finish"},"geometry":{"type":"Point",
"coordinates":[9.28,45.62]}},
{"type":"Feature","properties":{"Name":"Junior"},"geometry":{"type":"MultiLineString",
"coordinates":[[[9.28,45.62],[9.29,45.63]],[[9.3,45.6],[9.31,45.61]]]}},
{"type":"Feature","properties":null,"geometry":{"type":"GeometryCollection",
"geometries":[{"type":"LineString","coordinates":[[1,2],[3,4]]}]}}]})";

const char kGpxTracks[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<gpx version="1.1" creator="t" xmlns="http://www.topografix.com/GPX/1/1">
<metadata><name>Monza</name></metadata>
<trk><name>GP</name><trkseg><trkpt lat="45.62" lon="9.28"><ele>162</ele></trkpt>
<trkpt lat="45.621" lon="9.281"/></trkseg><trkseg><trkpt lat="45.622" lon="9.279"/></trkseg></trk>
<trk><name>Junior</name><trkseg><trkpt lat="45.6" lon="9.3"/><trkpt lat="45.61" lon="9.31"/>
</trkseg></trk></gpx>
)";

const char kGpxRoutes[] = R"(<gpx version="1.1"><rte><name>Loop</name>
<rtept lat="-33.9" lon="151.2"><ele> 12.5 </ele></rtept><rtept lat="-33.91" lon="151.21"/>
</rte></gpx>)";

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: %s OUTPUT-DIR\n", argv[0]);
    return 2;
  }
  g_out = std::string(argv[1]) + "/";
  mkdir(argv[1], 0755);

  std::vector<std::string> tracks;
  tracks.push_back(AddTrack(*fixtures::MakeSmallTrack(), "0small00", false));
  for (uint32_t seed : {2u, 7u, 11u}) {
    const std::string name = "0rand00" + std::to_string(seed % 10);
    tracks.push_back(AddTrack(*fixtures::MakeRandomTrack(seed), name, false));
  }
  AddTrack(*fixtures::MakeRandomTrack(4), "0extlogo", true);

  AddSummary("one", {tracks[0]});
  AddSummary("all", tracks);

  for (const char* name : {"0k3f9zq1", "0k3f9zq1.tkk", "zzzzzzzz", "00000000", "1a2b3c4d5e"})
    PutText("guidname", name, name);
  PutText("guidname", "generated", IGuidNomeFile::GetNomeFile(true, false));
  PutText("guidname", "generated-dev", IGuidNomeFile::GetNomeFile(false, true));

  PutText("import", "map.geojson", kGeoJson);
  PutText("import", "tracks.gpx", kGpxTracks);
  PutText("import", "routes.gpx", kGpxRoutes);
  fuzz::EmptyDir();
  return 0;
}
