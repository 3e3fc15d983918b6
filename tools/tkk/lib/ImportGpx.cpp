// GPX 1.1 to a circuit: tracks (or, without tracks, routes) become layouts.
#include <math.h>
#include <stdlib.h>

#include <pugixml.hpp>

#include "BadInput.h"
#include "Import.h"

namespace tkk {

namespace {

// A whole attribute or element text as a number; anything else is refused,
// so that "45.6x" is not read as 45.6.
double Number(const char* text, const std::string& where, const char* what) {
  char* end = nullptr;
  const double value = strtod(text, &end);
  while (end != nullptr && (*end == ' ' || *end == '\t' || *end == '\n' || *end == '\r')) ++end;
  if (end == text || *text == '\0' || end == nullptr || *end != '\0') {
    throw BadInput(where + ": " + what + " is not a number");
  }
  return value;
}

void AddPoint(const pugi::xml_node& node, Layout& layout, const std::string& where) {
  const std::string point = where + ", point " + std::to_string(layout.points.size() + 1);
  const pugi::xml_attribute lat = node.attribute("lat");
  const pugi::xml_attribute lon = node.attribute("lon");
  if (!lat || !lon) throw BadInput(point + ": lat and lon are required");
  GeoPoint p;
  p.lat = Number(lat.value(), point, "latitude");
  p.lon = Number(lon.value(), point, "longitude");
  const pugi::xml_node ele = node.child("ele");
  if (ele) p.alt = Number(ele.child_value(), point, "elevation");
  layout.points.push_back(p);
}

}  // namespace

Circuit ParseGpx(const std::string& text, const std::string& source) {
  pugi::xml_document doc;
  const pugi::xml_parse_result parsed = doc.load_buffer(text.data(), text.size());
  if (!parsed) throw BadInput(source + ": not valid XML (" + parsed.description() + ")");
  const pugi::xml_node gpx = doc.child("gpx");
  if (!gpx) throw BadInput(source + ": not a GPX document");

  const bool tracks = static_cast<bool>(gpx.child("trk"));
  const char* kind = tracks ? "trk" : "rte";
  Circuit circuit;
  for (const pugi::xml_node& line : gpx.children(kind)) {
    Layout layout;
    layout.name = line.child_value("name");
    const std::string where =
        source + ", GPX " + (tracks ? "track " : "route ") + std::to_string(circuit.layouts.size() + 1);
    if (tracks) {
      for (const pugi::xml_node& seg : line.children("trkseg")) {
        for (const pugi::xml_node& pt : seg.children("trkpt")) AddPoint(pt, layout, where);
      }
    } else {
      for (const pugi::xml_node& pt : line.children("rtept")) AddPoint(pt, layout, where);
    }
    if (layout.points.empty()) throw BadInput(where + ": empty, no points");
    ValidateLayout(layout, where);
    circuit.layouts.push_back(std::move(layout));
  }
  if (circuit.layouts.empty()) throw BadInput(source + ": no track or route in the GPX");
  circuit.name = gpx.child("metadata").child_value("name");
  if (circuit.name.empty()) circuit.name = circuit.layouts.front().name;
  return circuit;
}

}  // namespace tkk
