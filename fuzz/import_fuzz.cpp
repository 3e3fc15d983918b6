// Fuzz target for the map importers of the tkk tool: the input is a GeoJSON
// or a GPX document, told apart as the tool does (first character that is
// not blank or a byte-order mark). The importers may only throw BadInput;
// what they accept must be a circuit the track builder can take: at least
// one layout, each of at least two finite points within range.

#include <math.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#include <string>

#include "BadInput.h"
#include "Import.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const size_t first = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
  if (first == std::string::npos) return 0;
  tkk::Circuit circuit;
  try {
    if (text[first] == '{')
      circuit = tkk::ParseGeoJson(text, "map");
    else
      circuit = tkk::ParseGpx(text, "map");
  } catch (const tkk::BadInput&) {
    return 0;
  }
  if (circuit.layouts.empty()) abort();
  for (const tkk::Layout& layout : circuit.layouts) {
    if (layout.points.size() < 2) abort();
    for (const tkk::GeoPoint& p : layout.points)
      if (!isfinite(p.lat) || !isfinite(p.lon) || !isfinite(p.alt) || fabs(p.lat) > 90.0 ||
          fabs(p.lon) > 180.0)
        abort();
  }
  return 0;
}
