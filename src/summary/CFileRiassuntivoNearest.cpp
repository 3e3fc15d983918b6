// The two nearest-track searches. The arithmetic is that of the devices,
// operation by operation and in double precision: the results at the
// threshold depend on it.
#include <float.h>
#include <math.h>

#include <new>

#include "summary/CFileRiassuntivo.h"

int CFileRiassuntivo::GetDatoRiassuntivoNearest(double lat, double lon) {
  Applica();
  // Degrees against raw values times -1e7: not a distance on the Earth (see
  // the header); kept as the devices have it.
  int migliore = static_cast<int>(Riassunti.size());
  double distanzaMigliore = DBL_MAX;
  for (size_t i = 0; i < Riassunti.size(); ++i) {
    const _SDatoRiassuntivo* r = Riassunti[i];
    if (r == nullptr) continue;
    const double dLat = lat + static_cast<double>(r->RifLat) * -10000000.0;
    const double dLon = lon + static_cast<double>(r->RIfLon) * -10000000.0;
    const double d = sqrt(dLat * dLat + dLon * dLon);
    if (distanzaMigliore > d) {
      distanzaMigliore = d;
      migliore = static_cast<int>(i);
    }
  }
  return migliore;
}

int CFileRiassuntivo::getNearestTracksByHeaversine(double lat, double lon, int maxDist,
                                                   std::vector<int>& out) {
  Applica();
  const double k = 0.017453292519943295;
  const double raggio = 6372797.560856;
  const double mezzo = 0.5;
  const double soglia = static_cast<double>(maxDist);
  const double c1 = cos(lat * k);
  // A quick test that leaves out only records that the formula would leave
  // out: when both latitudes lie within +-90 degrees, the distance is at
  // least the meridian arc R * |dLat| (a >= s1 * s1). The margin covers the
  // rounding of either side many times over.
  const bool filtra = fabs(lat) <= 90.0;
  const double limite = soglia * (1.0 + 1e-6) + 1.0;
  try {
    for (size_t i = 0; i < Riassunti.size(); ++i) {
      const _SDatoRiassuntivo* r = Riassunti[i];
      if (r == nullptr) continue;
      const double rLat = r->RifLat / 10000000.0;
      if (filtra && fabs(rLat) <= 90.0 && fabs(lat - rLat) * k * raggio > limite) continue;
      const double rLon = r->RIfLon / 10000000.0;
      const double s1 = sin((lat - rLat) * k * mezzo);
      const double s2 = sin((lon - rLon) * k * mezzo);
      const double c2 = cos(rLat * k);
      const double a = s1 * s1 + s2 * s2 * (c1 * c2);
      // asin(sqrt(a)) + asin(sqrt(a)): the same value twice, computed once.
      const double arco = asin(sqrt(a));
      const double d = (arco + arco) * raggio;
      if (soglia > d) out.push_back(static_cast<int>(i));
    }
  } catch (const std::bad_alloc&) {
  }
  return static_cast<int>(out.size());
}
