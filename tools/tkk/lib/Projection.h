#ifndef VEKTKK_TOOLS_TKK_PROJECTION_H
#define VEKTKK_TOOLS_TKK_PROJECTION_H

#include "Circuit.h"

namespace tkk {

// Metres east and north of the projection's centre.
struct XY {
  double x = 0.0;
  double y = 0.0;
};

// Azimuthal equidistant projection of the sphere about a centre: distances
// and directions from the centre are true, and over the few kilometres of a
// circuit the scale is the same in every direction at any latitude, so a
// circuit near the pole is drawn with the shape it has, not stretched east to
// west as plain longitude and latitude would draw it.
class AzimuthalEquidistant {
 public:
  explicit AzimuthalEquidistant(const GeoPoint& centre);
  XY Project(const GeoPoint& p) const;

 private:
  double lat0_;
  double lon0_;
  double sinLat0_;
  double cosLat0_;
};

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_PROJECTION_H
