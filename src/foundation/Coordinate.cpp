#include "Coordinate.h"

#include <limits.h>

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
  // Past the range of int (about 214.7 degrees) no result is promised; it
  // saturates, and NaN gives 0, so that every processor gives the same (x86
  // would give INT_MIN, ARM saturates) and the cast is never undefined.
  if (scaled != scaled) return 0;
  if (scaled >= 2147483648.0) return INT_MAX;
  if (scaled <= -2147483649.0) return INT_MIN;
  return static_cast<int>(scaled);  // truncation toward zero
}
