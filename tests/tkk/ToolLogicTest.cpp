// The tool's logic in-process: geodesy and projection, reading maps, building
// tracks from them, comparing summaries, and what the binary runs cannot show
// cheaply of the exports and pictures. Summaries, their listings and pages,
// searches and checks are shown by the binary runs and the demo's check.
#include <gtest/gtest.h>
#include <math.h>
#include <stdlib.h>
#include <string.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>

#include "BadInput.h"
#include "Export.h"
#include "Import.h"
#include "Projection.h"
#include "Render.h"
#include "SummaryBuild.h"
#include "SummaryDiff.h"
#include "SummaryRecords.h"
#include "TrackBuilder.h"
#include "Vocabulary.h"

namespace tkk {
namespace {

// A rough 1.2 km loop near Imola, starting west-bound, and a shorter one; a
// name to escape.
const Circuit kTwoLayouts{
    "Prova & <Co>",
    "",
    "",
    {{"Lungo", {{44.340, 11.716, 150.0}, {44.340, 11.712}, {44.343, 11.712}, {44.343, 11.716}}},
     {"", {{44.340, 11.716}, {44.341, 11.712}, {44.342, 11.716}}}}};

// A square of about 1 km by 1 km at latitude `lat`, drawn counter-clockwise
// from its south-west corner.
std::vector<GeoPoint> Square(double lat, double lon) {
  const double dLat = 1000.0 / kEarthRadiusM / kDegToRad, dLon = dLat / cos(lat * kDegToRad);
  return {{lat, lon}, {lat, lon + dLon}, {lat + dLat, lon + dLon}, {lat + dLat, lon}};
}

// What a map document reads as: the site, its nation and each layout with
// its point count and first point; or the message of the bad input.
std::string Read(const std::string& doc) {
  try {
    const Circuit c = doc[0] == '<' ? ParseGpx(doc, "x") : ParseGeoJson(doc, "x");
    std::ostringstream out;
    out << c.name << "/" << c.nation;
    for (const Layout& l : c.layouts)
      out << " " << l.name << ":" << l.points.size() << "@" << l.points[0].lat << "," << l.points[0].lon
          << "," << l.points[0].alt;
    return out.str();
  } catch (const BadInput& e) {
    return e.what();
  }
}

// Forty extra points along the south side would pull a mean of the points
// south, not the centroid of the outline.
TEST(Geodesy, DistancesCentroidCrossLinesAndProjectionOnTheLibrarysSphere) {
  EXPECT_NEAR(HaversineM({0.0, 179.5}, {0.0, -179.5}), kEarthRadiusM * kDegToRad, 1e-6);
  std::vector<GeoPoint> square = Square(60.0, 10.0), dense(1, square[0]);
  EXPECT_NEAR(ClosedLengthM(square), 4000.0, 1.0);
  for (int i = 1; i <= 40; ++i)
    dense.push_back({square[0].lat, square[0].lon + (square[1].lon - square[0].lon) * i / 41.0});
  dense.insert(dense.end(), square.begin() + 1, square.end());
  EXPECT_NEAR(HaversineM(Centroid(dense), Centroid(square)), 0.0, 0.5);
  EXPECT_NEAR(HaversineM(Centroid(square), square[0]), 707.0, 2.0);
  square = Square(45.0, 7.0);
  EXPECT_NEAR(TravelBearingDeg(square, square[3]), 180.0, 0.1);  // the last continues with the first
  square.insert(square.begin(), square.front());  // east along the south side, after a repeated point
  EXPECT_NEAR(TravelBearingDeg(square, square[0]), 90.0, 0.1);
  const Segment line = CrossLine(square, square[0], 12.0);
  EXPECT_NEAR(HaversineM(line.a, line.b), 12.0, 1e-6);
  EXPECT_NEAR(BearingDeg(line.a, line.b), 180.0, 0.1);  // from the left of eastbound: south
  EXPECT_NEAR(HaversineM(line.a, square[0]), 6.0, 1e-6);
  for (double lat : {0.0, 45.0, 70.0}) {
    square = Square(lat, 20.0);
    const AzimuthalEquidistant projection(square[0]);
    const XY east = projection.Project(square[1]), north = projection.Project(square[3]);
    EXPECT_NEAR(east.x, 1000.0, 0.5) << lat;
    EXPECT_NEAR(north.x, 0.0, 1e-6) << lat;
    EXPECT_NEAR(north.y, 1000.0, 1e-6) << lat;
  }
}

// Documents starting with "<" are read as GPX, the others as GeoJSON. The
// export round trip shows the usual documents; here the other shapes (GPX
// routes count only in a file without tracks). The bad inputs that the
// binary runs show are not repeated.
TEST(Import, DocumentsReadAsLayoutsOrNameTheProblem) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"type": "Feature", "properties": {"Name": "Junior"}, "geometry": {"type": "MultiLineString",
        "coordinates": [[[9.1, 45.1, 7], [9.2, 45.2]], [[9, 45], [8, 44]]]}})",
       "Junior/ Junior:2@45.1,9.1,7 Junior:2@45,9,0"},
      {R"(<gpx><rte><name>R</name><rtept lat="1" lon="1"/><rtept lat="2" lon="2"/></rte></gpx>)",
       "R/ R:2@1,1,0"},
      {R"({"type": "LineString", "coordinates": [[1, 2, 0], [3, 4, -2147483.648]]})",
       "x, LineString 1, point 2: altitude out of range"},
      {R"({"type": "LineString", "coordinates": [[1, 2]]})",
       "x, LineString 1: an outline needs at least two points"},
      {R"({"type": "LineString", "coordinates": [[1, 2], [3, 4])", "x: not valid JSON"},
      {R"(<gpx><trk><trkseg><trkpt lat="4x" lon="1"/></trkseg></trk></gpx>)",
       "x, GPX track 1, point 1: latitude is not a number"},
      {R"(<gpx><trk><trkseg><trkpt lat="1" lon="181"/><trkpt lat="1" lon="2"/></trkseg></trk></gpx>)",
       "x, GPX track 1, point 1: longitude out of range"},
      {R"(<gpx><wpt lat="1" lon="2"/></gpx>)", "x: no track or route in the GPX"},
      {R"(<kml/>)", "x: not a GPX document"},
  };
  for (const auto& [doc, read] : cases) EXPECT_EQ(Read(doc), read);
  // Nesting some hundred thousand levels deep used to overflow the stack:
  // features and collections are refused past 32 levels.
  for (const char* open :
       {R"({"type": "Feature", "geometry": )", R"({"type": "GeometryCollection", "geometries": [)",
        R"({"type": "FeatureCollection", "features": [)"}) {
    std::string text;
    for (int i = 0; i < 33; ++i) text += open;
    text += R"({"type": "LineString", "coordinates": [[1, 2], [3, 4]]})";
    for (int i = 0; i < 33; ++i) text += open[strlen(open) - 1] == '[' ? "]}" : "}";
    EXPECT_THROW(ParseGeoJson(text, "x"), BadInput) << open;
  }
}

// A layout without a name shows the site's name on the logger. On an oval,
// 1.30 km of outline counts as 8/10 mi while the length stays the measured
// one; the state comes from the map file. The exports' point counts are
// checked through GDAL end to end: here GeoJSON and GPX read back as the same
// layouts, and the picture puts the outline where the projection does.
TEST(TrackBuilder, LayoutsBecomeVariantsWithTheirGeometryAndKeysExportAsReadOptionsChecked) {
  NewTrackOptions user, maker;
  user.nation = "IT", user.widthM = 15;
  maker.type = TRACCIATO_OVAL, maker.maker = true;
  Circuit us = kTwoLayouts;
  us.nation = "US", us.state = "FL";
  const auto track = BuildTrack(kTwoLayouts, user), oval = BuildTrack(us, maker);
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 2u);
  for (size_t i = 0; i < 2; ++i) {
    IVarianteTkk& v = *track->GetVariantiTrack()[i];
    const VariantGeometry g = GeometryOf(v);
    EXPECT_NEAR(HaversineM(g.reference, Centroid(kTwoLayouts.layouts[i].points)), 0.0, 0.02);
    ASSERT_EQ(g.lines.size(), 1u);
    EXPECT_NEAR(HaversineM(g.lines[0].at, kTwoLayouts.layouts[i].points[0]), 0.0, 0.02);
    EXPECT_EQ(g.lines[0].widthM, 15u);
    EXPECT_EQ(v.GetNomeXDevice(), i == 0 ? "Lungo" : "Prova & <Co>");
  }
  const auto keys = [](IFileTkk& t) {
    return std::make_tuple(t.GetTimeZone(), static_cast<int>(t.GetTrackLenghtKey()),
                           int{t.GetTagInfo()->InfoFw.InfoBeacons.TipoBeaconInUso}, t.GetTrackIsReadOnly(),
                           FixedText(t.GetTagInfo()->InfoFw.SubNationCode, 4));
  };
  EXPECT_EQ(keys(*track), std::make_tuple(1, int{LUNGHEZZA_CUSTOM}, int{BEACON_USER}, false, std::string()));
  EXPECT_EQ(keys(*oval),
            std::make_tuple(-5, int{LUNGHEZZA_8_10_MI}, int{BEACON_SCRUTINEERING}, true, std::string("FL")));
  EXPECT_GT(oval->GetTrackLenght(), 1300.0f);
  const std::string layouts = " Lungo:4@44.34,11.716,150 :3@44.34,11.716,0";
  EXPECT_EQ(Read(ExportTrack(*track, ExportFormat::kGeoJson)), "Prova & <Co>/IT" + layouts);
  EXPECT_EQ(Read(ExportTrack(*track, ExportFormat::kGpx)), "Prova & <Co>/" + layouts);
  const std::string svg = RenderSvg(*track, 1);  // the outline and the finish line across it
  EXPECT_NE(svg.find(" d=\"M750.0,649.7 L50.0,405.0 L750.0,160.3 Z\""), std::string::npos) << svg;
  EXPECT_NE(svg.find(R"(<line x1="744.6" y1="665.3" x2="755.4" y2="634.1" stroke="#d01010")"),
            std::string::npos);
  EXPECT_THROW(RenderSvg(*track, 2), BadInput);
  // The words and numbers the options take.
  user.nation = "ITALY";
  EXPECT_THROW(BuildTrack(kTwoLayouts, user), BadInput);
  EXPECT_EQ(CutUtf8("Nürburgring", 2) + "/" + CutUtf8("Nürburgring", 3), "N/Nü");  // not half of the ü
  EXPECT_EQ(ParseTrackType("kart track") + ParseTrackType("10"), 12);
  EXPECT_THROW(ParseTrackType("4"), BadInput);
}

_SDatoRiassuntivo Record(const char* file, short variant, const char* name, uint32_t date) {
  _SDatoRiassuntivo r;
  memcpy(r.FileName, file, 8);
  strncpy(r.Name, name, sizeof r.Name);
  memcpy(r.Country, "IT", 2);
  r.VariantIdx = variant, r.Date.Valore = date;
  return r;
}

// Variants are compared with the same variant of the other side; a date in
// 2030 or later never counts as newer.
TEST(DiffSummaries, EachVariantNewRemovedChangedEitherWayOrEqual) {
  const std::string dir = mkdtemp(&(std::filesystem::temp_directory_path().string() + "/tkk-XXXXXX")[0]);
  const auto summary = [&dir](const char* name, const std::vector<_SDatoRiassuntivo>& records) {
    std::ofstream(dir + "/" + name, std::ios::binary)
        << std::string(reinterpret_cast<const char*>(records.data()), records.size() * sizeof records[0]);
    return OpenSummary(dir + "/" + name);
  };
  const uint32_t may = 0x24800000, june = 0x25000000, year2031 = 0x40000000;
  const std::vector<_SDatoRiassuntivo> before = {
      Record("aaaaaaaa", 0, "Two layouts", may), Record("aaaaaaaa", 1, "Short", may),
      Record("bbbbbbbb", 0, "Removed", may),     Record("cccccccc", 0, "Renamed", may),
      Record("dddddddd", 0, "Older", june),      Record("eeeeeeee", 0, "Far future", may)};
  const std::vector<_SDatoRiassuntivo> after = {
      Record("aaaaaaaa", 0, "Two layouts", may),     Record("aaaaaaaa", 1, "Short", may),
      Record("cccccccc", 0, "Renamed again", june),  Record("dddddddd", 0, "Older", may),
      Record("eeeeeeee", 0, "Far future", year2031), Record("ffffffff", 0, "Added", june)};
  const nlohmann::json diff = DiffSummaries(*summary("old.bin", before), *summary("new.bin", after));
  std::filesystem::remove_all(dir);
  EXPECT_EQ(DiffText(diff),
            "new                  ffffffff  0  IT    Added\n"
            "removed              bbbbbbbb  0  IT    Removed\n"
            "changed (newer)      cccccccc  0  IT    Renamed again\n"
            "changed (not newer)  dddddddd  0  IT    Older\n"
            "changed (not newer)  eeeeeeee  0  IT    Far future\n"
            "2 variants equal\n");
}

}  // namespace
}  // namespace tkk
