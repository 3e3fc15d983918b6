#include <gtest/gtest.h>

#include <iterator>
#include <pugixml.hpp>
#include <sstream>

#include "BadInput.h"
#include "Export.h"
#include "Identifiers.h"
#include "Import.h"
#include "Render.h"
#include "TrackBuilder.h"

namespace tkk {
namespace {

Circuit Sample() {
  Circuit c;
  c.name = "Sample & <Co>";
  c.nation = "GB";
  c.layouts.push_back({"GP", {{52.07, -1.02, 150.0}, {52.07, -1.01}, {52.08, -1.01}, {52.08, -1.02}}});
  c.layouts.push_back({"National", {{52.07, -1.02}, {52.075, -1.01}, {52.08, -1.02}}});
  return c;
}

void ExpectSameShapes(const Circuit& a, const Circuit& b) {
  ASSERT_EQ(a.layouts.size(), b.layouts.size());
  for (size_t i = 0; i < a.layouts.size(); ++i) {
    EXPECT_EQ(a.layouts[i].name, b.layouts[i].name);
    ASSERT_EQ(a.layouts[i].points.size(), b.layouts[i].points.size());
    for (size_t k = 0; k < a.layouts[i].points.size(); ++k) {
      EXPECT_NEAR(a.layouts[i].points[k].lat, b.layouts[i].points[k].lat, 1e-7);
      EXPECT_NEAR(a.layouts[i].points[k].lon, b.layouts[i].points[k].lon, 1e-7);
      EXPECT_NEAR(a.layouts[i].points[k].alt, b.layouts[i].points[k].alt, 1e-3);
    }
  }
}

TEST(Export, GeoJsonAndGpxReadBackAsTheSameShapes) {
  const Circuit circuit = Sample();
  const auto track = BuildTrack(circuit, NewTrackOptions());
  const Circuit fromJson = ParseGeoJson(ExportTrack(*track, ExportFormat::kGeoJson), "e.geojson");
  ExpectSameShapes(circuit, fromJson);
  EXPECT_EQ(fromJson.name, circuit.name);
  EXPECT_EQ(fromJson.nation, "GB");
  ExpectSameShapes(circuit, ParseGpx(ExportTrack(*track, ExportFormat::kGpx), "e.gpx"));
}

TEST(Export, KmlHasAFolderEachForOutlinesReferencesAndLines) {
  const auto track = BuildTrack(Sample(), NewTrackOptions());
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_string(ExportTrack(*track, ExportFormat::kKml).c_str()));
  const pugi::xml_node folders = doc.child("kml").child("Document");
  size_t placemarks[3] = {0, 0, 0};
  std::string names;
  size_t i = 0;
  for (const pugi::xml_node& folder : folders.children("Folder")) {
    names += std::string(folder.child_value("name")) + ";";
    placemarks[i++] = static_cast<size_t>(std::distance(folder.children("Placemark").begin(),
                                                        folder.children("Placemark").end()));
  }
  EXPECT_EQ(names, "Outlines;Reference points;Beacon lines;");
  std::istringstream coordinates(
      folders.child("Folder").child("Placemark").child("LineString").child_value("coordinates"));
  EXPECT_EQ(std::distance(std::istream_iterator<std::string>(coordinates), {}), 4);
  EXPECT_EQ(placemarks[0], 2u);
  EXPECT_EQ(placemarks[1], 2u);
  EXPECT_EQ(placemarks[2], 2u);  // one finish line per variant
  EXPECT_EQ(folders.child("name").text().as_string(), std::string("Sample & <Co>"));
}

TEST(Render, DrawsTheOutlineLinesAndLabels) {
  const auto track = BuildTrack(Sample(), NewTrackOptions());
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_string(RenderSvg(*track, 1).c_str()));
  const pugi::xml_node svg = doc.child("svg");
  EXPECT_EQ(std::string(svg.child("title").text().as_string()), "Sample & <Co> – National");
  EXPECT_TRUE(svg.find_child_by_attribute("line", "stroke", "#d01010"));  // the finish line
  // Everything drawn and written lies on the picture.
  std::istringstream outline(svg.find_child_by_attribute("path", "stroke", "#3a3a3a").attribute("d").value());
  size_t points = 0;
  for (std::string step; outline >> step;) {
    if (step == "Z") continue;
    const double x = std::stod(step.substr(1));
    const double y = std::stod(step.substr(step.find(',') + 1));
    EXPECT_TRUE(x > 40 && x < 760 && y > 90 && y < 720) << step;
    ++points;
  }
  EXPECT_EQ(points, 3u);
  std::string labels = ";";
  for (const pugi::xml_node& text : svg.children("text")) {
    EXPECT_TRUE(text.attribute("x").as_double() > 0 && text.attribute("x").as_double() < 800);
    labels += std::string(text.child_value()) + ";";
  }
  EXPECT_NE(labels.find(";Finish;"), std::string::npos) << labels;
  EXPECT_EQ(std::distance(svg.children("polygon").begin(), svg.children("polygon").end()), 6);
  EXPECT_THROW(RenderSvg(*track, 2), BadInput);
  const std::pair<double, double> bars[] = {{0.0, 1.0}, {1.0, 1.0}, {480.0, 200.0}, {999.0, 500.0}, {1000.0, 1000.0}};
  for (const auto& b : bars) EXPECT_EQ(ScaleBarLength(b.first), b.second) << b.first;
}

TEST(Identifiers, DecodeGuidsAndFileNames) {
  _UGuidTkk guid;
  guid.Valore = 0x0001800000000000ull;  // bits 47 and 48: a user's development track
  const nlohmann::json g = DecodeIdentifier(GuidText(guid));
  EXPECT_EQ(g["date"], "2015-01-01T00:00:00Z");
  EXPECT_FALSE(g["maker"].get<bool>());
  EXPECT_TRUE(g["development"].get<bool>());
  EXPECT_EQ(DecodeIdentifier("/data/00000010.tkk")["name"], "00000010");
  for (const char* bad : {"0000000Z", "abc", "00000010.txt", "00000000000000000g"}) {
    EXPECT_THROW(DecodeIdentifier(bad), BadInput) << bad;
  }
}

}  // namespace
}  // namespace tkk
