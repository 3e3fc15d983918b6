// Writes the demo's circuits as GeoJSON map files, one per circuit and one
// LineString per layout, into the folder given: the input of `tkk new`.
#include <stdio.h>

#include <fstream>

#include <nlohmann/json.hpp>

#include "DemoCircuits.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: demo_circuits DIR\n");
    return 2;
  }
  for (const demo::DemoCircuit& c : demo::DemoCircuits()) {
    nlohmann::json features = nlohmann::json::array();
    for (const demo::DemoLayout& layout : c.layouts) {
      features.push_back(
          {{"type", "Feature"},
           {"properties", {{"name", layout.name}, {"site", c.name}, {"nation", c.nation},
                           {"state", c.state}, {"length", layout.lengthM}}},
           {"geometry", {{"type", "LineString"},
                         {"coordinates", demo::DrawOutline(c, layout.lengthM, c.layouts[0].lengthM)}}}});
    }
    const std::string path = std::string(argv[1]) + "/" + c.file + ".geojson";
    std::ofstream out(path);
    out << nlohmann::json({{"type", "FeatureCollection"}, {"features", features}}).dump(1) << "\n";
    if (!out) {
      fprintf(stderr, "demo_circuits: cannot write %s\n", path.c_str());
      return 1;
    }
    printf("%s\t%s\n", c.file, c.type);
  }
  return 0;
}
