#ifndef VEKTKK_TOOLS_TKK_CIRCUIT_H
#define VEKTKK_TOOLS_TKK_CIRCUIT_H

#include <string>
#include <vector>

namespace tkk {

// A position in degrees (WGS84) and an altitude in metres.
struct GeoPoint {
  double lat = 0.0;
  double lon = 0.0;
  double alt = 0.0;
};

// One layout of a circuit as drawn: its outline in the direction of travel,
// starting at the finish line.
struct Layout {
  std::string name;
  std::vector<GeoPoint> points;
};

// A circuit read from a map file, before it becomes a track file: one layout
// per variant, the first being the main one. Codes are empty when the file
// gave none.
struct Circuit {
  std::string name;
  std::string nation;
  std::string state;
  std::vector<Layout> layouts;
};

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_CIRCUIT_H
