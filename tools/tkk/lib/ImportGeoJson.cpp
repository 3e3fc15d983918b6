// GeoJSON (RFC 7946) to a circuit: positions are [longitude, latitude] with
// an optional altitude in metres.
#include <nlohmann/json.hpp>

#include "BadInput.h"
#include "Import.h"

namespace tkk {

namespace {

using nlohmann::json;

std::string TextProperty(const json& properties, const char* key) {
  if (!properties.is_object()) return std::string();
  const auto it = properties.find(key);
  return it != properties.end() && it->is_string() ? it->get<std::string>() : std::string();
}

// Collections and features may hold one another; a map needs three or four
// levels. Deeper nesting is refused rather than followed to the end of the
// stack.
constexpr int kMaxNesting = 32;

class GeoJsonReader {
 public:
  GeoJsonReader(Circuit& circuit, const std::string& source) : circuit_(circuit), source_(source) {}

  void Object(const json& object, const json& properties, int depth = 0) {
    if (!object.is_object()) throw BadInput(source_ + ": a GeoJSON object was expected");
    if (depth > kMaxNesting) throw BadInput(source_ + ": GeoJSON objects nested too deeply");
    const std::string type = TextProperty(object, "type");
    if (type == "FeatureCollection") {
      const auto features = object.find("features");
      if (features == object.end() || !features->is_array()) {
        throw BadInput(source_ + ": FeatureCollection without a features array");
      }
      for (const json& feature : *features) Object(feature, json(), depth + 1);
    } else if (type == "Feature") {
      const auto props = object.find("properties");
      const json own = props != object.end() ? *props : json();
      const std::string role = TextProperty(own, "role");
      if (!role.empty() && role != "outline") return;
      const auto geometry = object.find("geometry");
      if (geometry != object.end() && !geometry->is_null()) Object(*geometry, own, depth + 1);
    } else if (type == "GeometryCollection") {
      const auto geometries = object.find("geometries");
      if (geometries != object.end() && geometries->is_array()) {
        for (const json& g : *geometries) Object(g, properties, depth + 1);
      }
    } else if (type == "LineString") {
      Line(Coordinates(object), properties);
    } else if (type == "MultiLineString") {
      for (const json& line : Coordinates(object)) Line(line, properties);
    }
  }

 private:
  const json& Coordinates(const json& geometry) {
    const auto it = geometry.find("coordinates");
    if (it == geometry.end() || !it->is_array()) {
      throw BadInput(Where() + ": geometry without a coordinates array");
    }
    return *it;
  }

  std::string Where() const {
    return source_ + ", LineString " + std::to_string(circuit_.layouts.size() + 1);
  }

  void Line(const json& positions, const json& properties) {
    if (!positions.is_array()) throw BadInput(Where() + ": coordinates are not an array");
    Layout layout;
    layout.name = TextProperty(properties, "name");
    if (layout.name.empty()) layout.name = TextProperty(properties, "Name");
    for (const json& position : positions) {
      const std::string point = Where() + ", point " + std::to_string(layout.points.size() + 1);
      if (!position.is_array() || position.size() < 2 || position.size() > 3) {
        throw BadInput(point + ": a position is [longitude, latitude] or with altitude");
      }
      for (const json& number : position) {
        if (!number.is_number()) throw BadInput(point + ": coordinate is not a number");
      }
      GeoPoint p;
      p.lon = position[0].get<double>();
      p.lat = position[1].get<double>();
      if (position.size() == 3) p.alt = position[2].get<double>();
      layout.points.push_back(p);
    }
    ValidateLayout(layout, Where());
    if (circuit_.layouts.empty()) {
      circuit_.name = TextProperty(properties, "site");
      if (circuit_.name.empty()) circuit_.name = layout.name;
      circuit_.nation = TextProperty(properties, "nation");
      circuit_.state = TextProperty(properties, "state");
    }
    circuit_.layouts.push_back(std::move(layout));
  }

  Circuit& circuit_;
  const std::string& source_;
};

}  // namespace

Circuit ParseGeoJson(const std::string& text, const std::string& source) {
  const json document = json::parse(text, nullptr, false);
  if (document.is_discarded()) throw BadInput(source + ": not valid JSON");
  Circuit circuit;
  GeoJsonReader(circuit, source).Object(document, json());
  if (circuit.layouts.empty()) throw BadInput(source + ": no LineString in the GeoJSON");
  return circuit;
}

}  // namespace tkk
