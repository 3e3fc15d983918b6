#include "DemoCircuits.h"

#include <math.h>

namespace demo {

const std::vector<DemoCircuit>& DemoCircuits() {
  static const std::vector<DemoCircuit> table = {
      {"silverstone", "Silverstone Circuit", "GB", "", 52.0786, -1.0169, "Race Track",
       {{"Grand Prix", 5891}, {"National", 2638}}},
      {"monza", "Autodromo Nazionale Monza", "IT", "", 45.6156, 9.2811, "Race Track",
       {{"Grand Prix", 5793}}},
      {"spa", "Circuit de Spa-Francorchamps", "BE", "", 50.4372, 5.9714, "Race Track",
       {{"Grand Prix", 7004}}},
      {"monaco", "Circuit de Monaco", "MC", "", 43.7347, 7.4206, "Race Track", {{"Grand Prix", 3337}}},
      {"suzuka", "Suzuka International Racing Course", "JP", "", 34.8431, 136.5407, "Race Track",
       {{"Grand Prix", 5807}}},
      {"nurburgring", "Nürburgring", "DE", "", 50.3356, 6.9475, "Race Track", {{"GP-Strecke", 5148}}},
      {"hungaroring", "Hungaroring", "HU", "", 47.5789, 19.2486, "Race Track", {{"Grand Prix", 4381}}},
      {"zandvoort", "Circuit Zandvoort", "NL", "", 52.3888, 4.5409, "Race Track", {{"Grand Prix", 4259}}},
      {"cota", "Circuit of the Americas", "US", "TX", 30.1328, -97.6411, "Race Track",
       {{"Grand Prix", 5513}}},
      {"daytona", "Daytona International Speedway", "US", "FL", 29.1852, -81.0705, "Oval",
       {{"Tri-oval", 4023}}},
      {"laguna-seca", "Laguna Seca Raceway", "US", "CA", 36.5842, -121.7535, "Race Track",
       {{"Full course", 3602}}},
      {"montreal", "Circuit Gilles Villeneuve", "CA", "QC", 45.5000, -73.5228, "Race Track",
       {{"Grand Prix", 4361}}},
      {"bathurst", "Mount Panorama Circuit", "AU", "NSW", -33.4475, 149.5556, "Race Track",
       {{"Full circuit", 6213}}},
  };
  return table;
}

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kEarthRadiusM = 6372797.560856;
constexpr double kDegToRad = kPi / 180.0;
constexpr int kPoints = 160;

// A seed of the circuit's own, so each gets its own turn and kinks.
unsigned Seed(const char* text) {
  unsigned h = 2166136261u;
  for (const char* p = text; *p; ++p) h = (h ^ static_cast<unsigned char>(*p)) * 16777619u;
  return h;
}

double Signed(double v, double e) { return (v < 0 ? -1.0 : 1.0) * pow(fabs(v), e); }

}  // namespace

std::vector<std::vector<double>> DrawOutline(const DemoCircuit& circuit, double lengthM,
                                             double mainLengthM) {
  const unsigned seed = Seed(circuit.file);
  const double turn = (seed % 180) * kDegToRad;
  const double aspect = 2.2 + (seed >> 8) % 10 / 10.0;
  const int kinks = 3 + static_cast<int>((seed >> 16) % 4);
  // A squarish oval (superellipse) with kinks on the far side, unit size.
  std::vector<std::pair<double, double>> shape;
  for (int i = 0; i < kPoints; ++i) {
    const double t = -kPi / 2 + 2 * kPi * i / kPoints;
    const double far = sin(t) > 0 ? 0.12 * sin(kinks * t) * sin(t) : 0.0;
    shape.emplace_back(aspect * Signed(cos(t), 0.5), Signed(sin(t), 0.5) + far);
  }
  double perimeter = 0;
  for (int i = 0; i < kPoints; ++i) {
    const auto& a = shape[i];
    const auto& b = shape[(i + 1) % kPoints];
    perimeter += hypot(b.first - a.first, b.second - a.second);
  }
  // Scaled to its length; a shorter layout is moved so that it starts where
  // the main one does (scale of the main layout times its start, y = -1).
  const double scale = lengthM / perimeter;
  const double shift = (lengthM - mainLengthM) / perimeter;
  std::vector<std::vector<double>> points;
  for (const auto& p : shape) {
    const double x = p.first * scale;
    const double y = p.second * scale + shift;
    const double east = x * cos(turn) - y * sin(turn);
    const double north = x * sin(turn) + y * cos(turn);
    const double lat = circuit.lat + north / kEarthRadiusM / kDegToRad;
    const double lon = circuit.lon + east / (kEarthRadiusM * cos(circuit.lat * kDegToRad)) / kDegToRad;
    points.push_back({round(lon * 1e7) / 1e7, round(lat * 1e7) / 1e7});
  }
  return points;
}

}  // namespace demo
