#include <nlohmann/json.hpp>

#include "Export.h"

namespace tkk {

namespace {

using nlohmann::json;

json Position(const GeoPoint& p) {
  json position = {p.lon, p.lat};
  if (p.alt != 0.0) position.push_back(p.alt);
  return position;
}

json Feature(json properties, const char* type, json coordinates) {
  return {{"type", "Feature"},
          {"properties", std::move(properties)},
          {"geometry", {{"type", type}, {"coordinates", std::move(coordinates)}}}};
}

}  // namespace

std::string ExportGeoJson(const std::vector<ExportedVariant>& variants) {
  json features = json::array();
  for (const ExportedVariant& v : variants) {
    const json common = {{"variant", v.index}, {"name", v.track}, {"site", v.site}};
    json outline = common;
    outline.update({{"role", "outline"}, {"device", v.device}, {"nation", v.nation},
                    {"state", v.state}, {"type", v.type}, {"length", v.lengthM}});
    json points = json::array();
    for (const GeoPoint& p : v.geometry.outline) points.push_back(Position(p));
    features.push_back(Feature(outline, "LineString", points));

    json reference = common;
    reference["role"] = "reference";
    features.push_back(Feature(reference, "Point", Position(v.geometry.reference)));

    for (size_t i = 0; i < v.lineSegments.size(); ++i) {
      json line = common;
      line.update({{"role", i == 0 ? "finish" : "split"}, {"line", i},
                   {"width", v.geometry.lines[i].widthM}});
      features.push_back(Feature(line, "LineString",
                                 {Position(v.lineSegments[i].a), Position(v.lineSegments[i].b)}));
    }
  }
  return json({{"type", "FeatureCollection"}, {"features", features}}).dump(1) + "\n";
}

}  // namespace tkk
