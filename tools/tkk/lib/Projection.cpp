#include "Projection.h"

#include <math.h>

#include "Geodesy.h"

namespace tkk {

AzimuthalEquidistant::AzimuthalEquidistant(const GeoPoint& centre)
    : lat0_(centre.lat * kDegToRad),
      lon0_(centre.lon * kDegToRad),
      sinLat0_(sin(lat0_)),
      cosLat0_(cos(lat0_)) {}

XY AzimuthalEquidistant::Project(const GeoPoint& p) const {
  const double lat = p.lat * kDegToRad;
  const double dLon = p.lon * kDegToRad - lon0_;
  const double cosC = sinLat0_ * sin(lat) + cosLat0_ * cos(lat) * cos(dLon);
  const double c = acos(fmax(-1.0, fmin(1.0, cosC)));
  // k = c / sin c tends to 1 at the centre.
  const double k = c < 1e-12 ? 1.0 : c / sin(c);
  return XY{kEarthRadiusM * k * cos(lat) * sin(dLon),
            kEarthRadiusM * k * (cosLat0_ * sin(lat) - sinLat0_ * cos(lat) * cos(dLon))};
}

}  // namespace tkk
