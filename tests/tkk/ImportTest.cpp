#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "BadInput.h"
#include "Import.h"

namespace tkk {
namespace {

TEST(Import, GeoJsonLayoutsNamesAndAltitudes) {
  const Circuit c = ParseGeoJson(R"({"type": "FeatureCollection", "features": [
      {"type": "Feature", "properties": {"name": "GP", "site": "Monza", "nation": "IT"},
       "geometry": {"type": "LineString", "coordinates": [[9.28, 45.61, 180], [9.29, 45.62]]}},
      {"type": "Feature", "properties": {"role": "finish"},
       "geometry": {"type": "LineString", "coordinates": [[0, 0], [1, 1]]}},
      {"type": "Feature", "properties": {"Name": "Junior"},
       "geometry": {"type": "MultiLineString", "coordinates": [[[9.1, 45.1], [9.2, 45.2]]]}}]})",
                                 "m.geojson");
  ASSERT_EQ(c.layouts.size(), 2u);
  EXPECT_EQ(c.name, "Monza");
  EXPECT_EQ(c.nation, "IT");
  EXPECT_EQ(c.layouts[0].name, "GP");
  EXPECT_EQ(c.layouts[1].name, "Junior");
  EXPECT_DOUBLE_EQ(c.layouts[0].points[0].lat, 45.61);
  EXPECT_DOUBLE_EQ(c.layouts[0].points[0].lon, 9.28);
  EXPECT_DOUBLE_EQ(c.layouts[0].points[0].alt, 180.0);
}

TEST(Import, GpxTracksJoinSegmentsAndRoutesCountOnlyWithoutTracks) {
  const Circuit c = ParseGpx(R"(<gpx version="1.1"><metadata><name>Site</name></metadata>
      <rte><name>ignored</name><rtept lat="1" lon="1"/><rtept lat="2" lon="2"/></rte>
      <trk><name>Long</name><trkseg><trkpt lat="45.5" lon="9.5"><ele>12.5</ele></trkpt></trkseg>
      <trkseg><trkpt lat="45.6" lon="9.6"/></trkseg></trk></gpx>)",
                             "a.gpx");
  ASSERT_EQ(c.layouts.size(), 1u);
  EXPECT_EQ(c.name, "Site");
  EXPECT_EQ(c.layouts[0].name, "Long");
  ASSERT_EQ(c.layouts[0].points.size(), 2u);
  EXPECT_DOUBLE_EQ(c.layouts[0].points[0].alt, 12.5);
  const Circuit r = ParseGpx(
      R"(<gpx><rte><name>R</name><rtept lat="1" lon="1"/><rtept lat="2" lon="2"/></rte></gpx>)", "r.gpx");
  EXPECT_EQ(r.name, "R");
}

TEST(Import, BadDocumentsNameTheProblem) {
  const struct {
    bool gpx;
    const char* text;
    const char* message;
  } cases[] = {
      {false, R"({"type": "Point", "coordinates": [1, 2]})", "x: no LineString in the GeoJSON"},
      {false, R"({"type": "LineString", "coordinates": [[1, "2"], [3, 4]]})",
       "x, LineString 1, point 1: coordinate is not a number"},
      {false, R"({"type": "LineString", "coordinates": [[1, 2], [3, 91]]})",
       "x, LineString 1, point 2: latitude out of range"},
      {false, R"({"type": "LineString", "coordinates": [[1, 2, 0], [3, 4, -2147483.648]]})",
       "x, LineString 1, point 2: altitude out of range"},
      {false, R"({"type": "LineString", "coordinates": [[1, 2]]})",
       "x, LineString 1: an outline needs at least two points"},
      {false, R"({"type": "LineString", "coordinates": [[1, 2], [3, 4])", "x: not valid JSON"},
      {true, R"(<gpx><trk><name>A</name><trkseg/></trk></gpx>)", "x, GPX track 1: empty, no points"},
      {true, R"(<gpx><trk><trkseg><trkpt lat="4x" lon="1"/></trkseg></trk></gpx>)",
       "x, GPX track 1, point 1: latitude is not a number"},
      {true, R"(<gpx><trk><trkseg><trkpt lat="1" lon="181"/><trkpt lat="1" lon="2"/></trkseg></trk></gpx>)",
       "x, GPX track 1, point 1: longitude out of range"},
      {true, R"(<gpx><wpt lat="1" lon="2"/></gpx>)", "x: no track or route in the GPX"},
      {true, R"(<kml/>)", "x: not a GPX document"},
  };
  for (const auto& c : cases) {
    try {
      c.gpx ? ParseGpx(c.text, "x") : ParseGeoJson(c.text, "x");
      ADD_FAILURE() << c.text;
    } catch (const BadInput& e) {
      EXPECT_STREQ(e.what(), c.message);
    }
  }
}

// Features and collections nested some hundred thousand levels deep used to
// overflow the stack; they are refused.
TEST(Import, DeeplyNestedGeoJsonIsRefused) {
  const std::string line = R"({"type": "LineString", "coordinates": [[1, 2], [3, 4]]})";
  for (const char* open : {R"({"type": "Feature", "geometry": )",
                           R"({"type": "GeometryCollection", "geometries": [)",
                           R"({"type": "FeatureCollection", "features": [)"}) {
    const bool array = open[strlen(open) - 1] == '[';
    for (int depth : {33, 200000}) {
      std::string text;
      for (int i = 0; i < depth; ++i) text += open;
      text += line;
      for (int i = 0; i < depth; ++i) text += array ? "]}" : "}";
      try {
        ParseGeoJson(text, "x");
        ADD_FAILURE() << open << depth;
      } catch (const BadInput& e) {
        EXPECT_STREQ(e.what(), "x: GeoJSON objects nested too deeply") << open << depth;
      }
    }
  }
  // Nesting a map really uses is read.
  std::string text = R"({"type": "FeatureCollection", "features": [{"type": "Feature", "geometry": )";
  text += R"({"type": "GeometryCollection", "geometries": [)" + line + "]}}]}";
  EXPECT_EQ(ParseGeoJson(text, "x").layouts.size(), 1u);
}

TEST(Import, FilesThatAreNotThere) {
  EXPECT_THROW(ReadCircuit("/nonexistent/a.geojson"), BadInput);
  EXPECT_THROW(ReadCircuit("/tmp"), BadInput);
}

}  // namespace
}  // namespace tkk
