#ifndef VEKTKK_TOOLS_DEMO_DEMOCIRCUITS_H
#define VEKTKK_TOOLS_DEMO_DEMOCIRCUITS_H

#include <string>
#include <vector>

namespace demo {

struct DemoLayout {
  const char* name;
  double lengthM;  // official length of the layout
};

// A well-known circuit: its real name, nation and state codes, position and
// length, from public facts. Only the outline is made up (DrawOutline).
struct DemoCircuit {
  const char* file;  // base name of its map file
  const char* name;
  const char* nation;
  const char* state;
  double lat;
  double lon;
  const char* type;  // circuit type as `tkk new --type` takes it
  std::vector<DemoLayout> layouts;
};

const std::vector<DemoCircuit>& DemoCircuits();

// An outline drawn for illustration around the circuit's real position: a
// rounded oblong turned to a direction of its own, with a few kinks, `length`
// metres round, starting in the middle of its main straight and driven
// anticlockwise. Points are {longitude, latitude} pairs. The layouts of one
// circuit share their start, so they share their finish line.
std::vector<std::vector<double>> DrawOutline(const DemoCircuit& circuit, double lengthM,
                                             double mainLengthM);

}  // namespace demo

#endif  // VEKTKK_TOOLS_DEMO_DEMOCIRCUITS_H
