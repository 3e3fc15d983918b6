#include "Coordinate.h"

const double c_fattore_conversione = 10000000.0;

namespace {
// Literal scales rather than the exported constant: the conversions must
// divide by exactly these values (a multiplication by 1e-7 would not round
// the same way).
constexpr double kStepsPerDegree = 1e7;
constexpr double kMillimetresPerMetre = 1000.0;
}  // namespace

double ConvertiLatLonADouble(const int& value) {
  return static_cast<double>(value) / kStepsPerDegree;
}

double ConvertiAltADouble(const int& value) {
  return static_cast<double>(value) / kMillimetresPerMetre;
}

int ConvertiLatLonAs32(const double& degrees) {
  const double scaled =
      degrees >= 0.0 ? degrees * kStepsPerDegree + 0.5 : degrees * kStepsPerDegree - 0.5;
  return static_cast<int>(scaled);  // truncation toward zero
}
