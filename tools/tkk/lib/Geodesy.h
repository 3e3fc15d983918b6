#ifndef VEKTKK_TOOLS_TKK_GEODESY_H
#define VEKTKK_TOOLS_TKK_GEODESY_H

#include <vector>

#include "Circuit.h"

namespace tkk {

// The sphere of the library's own distance checks, so that the tool and the
// logger agree on every distance.
constexpr double kDegToRad = 0.017453292519943295;
constexpr double kEarthRadiusM = 6372797.560856;

// Great-circle distance in metres (haversine).
double HaversineM(const GeoPoint& a, const GeoPoint& b);

// Length of the outline closed back to its first point. An outline that
// already ends where it starts gets no extra segment.
double ClosedLengthM(const std::vector<GeoPoint>& outline);

// Centre of the closed outline taken as a line: the midpoints of its segments
// weighted by their lengths. Unlike the mean of the points it does not move
// towards the corners that were drawn with many points, and unlike the centre
// of the enclosed area it stays inside a figure-of-eight circuit. An outline
// without length gives the mean of its points.
GeoPoint Centroid(const std::vector<GeoPoint>& outline);

// Initial bearing from a to b, degrees clockwise from north in [0, 360).
double BearingDeg(const GeoPoint& a, const GeoPoint& b);

// The point `distanceM` from `from` along the bearing.
GeoPoint Destination(const GeoPoint& from, double bearingDeg, double distanceM);

// Direction of travel at the outline point nearest `at`: the bearing to the
// next point that differs from it (the outline is closed, so the last point
// continues with the first). 0 for an outline without two distinct points.
double TravelBearingDeg(const std::vector<GeoPoint>& outline, const GeoPoint& at);

struct Segment {
  GeoPoint a;
  GeoPoint b;
};

// A line `widthM` long centred on `at`, across the direction of travel;
// `a` lies on the left of a driver going round.
Segment CrossLine(const std::vector<GeoPoint>& outline, const GeoPoint& at, double widthM);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_GEODESY_H
