#include <gtest/gtest.h>
#include <math.h>

#include "Geodesy.h"
#include "Projection.h"

namespace tkk {
namespace {

// A square of about 1 km by 1 km at latitude `lat`, drawn counter-clockwise
// from its south-west corner.
std::vector<GeoPoint> Square(double lat, double lon) {
  const double dLat = 1000.0 / kEarthRadiusM / kDegToRad;
  const double dLon = dLat / cos(lat * kDegToRad);
  return {{lat, lon}, {lat, lon + dLon}, {lat + dLat, lon + dLon}, {lat + dLat, lon}};
}

TEST(Geodesy, OneDegreeOfLatitudeOnTheLibrarysSphere) {
  EXPECT_NEAR(HaversineM({45.0, 9.0}, {46.0, 9.0}), kEarthRadiusM * kDegToRad, 1e-6);
  EXPECT_NEAR(HaversineM({0.0, 179.5}, {0.0, -179.5}), kEarthRadiusM * kDegToRad, 1e-6);
}

TEST(Geodesy, ClosedLengthAddsTheClosingSegmentOnce) {
  std::vector<GeoPoint> square = Square(52.0, -1.0);
  const double open = ClosedLengthM(square);
  EXPECT_NEAR(open, 4000.0, 1.0);
  square.push_back(square.front());  // already closed: no extra segment
  EXPECT_NEAR(ClosedLengthM(square), open, 1e-9);
}

TEST(Geodesy, CentroidIgnoresHowDenselyASideWasDrawn) {
  std::vector<GeoPoint> square = Square(60.0, 10.0);
  const GeoPoint centre = Centroid(square);
  // Forty extra points along the south side pull the mean of the points
  // south, not the centroid of the outline.
  std::vector<GeoPoint> dense(1, square[0]);
  for (int i = 1; i <= 40; ++i) {
    dense.push_back({square[0].lat, square[0].lon + (square[1].lon - square[0].lon) * i / 41.0});
  }
  dense.insert(dense.end(), square.begin() + 1, square.end());
  EXPECT_NEAR(HaversineM(Centroid(dense), centre), 0.0, 0.5);
  EXPECT_NEAR(HaversineM(centre, {square[0].lat, square[0].lon}), 707.0, 2.0);
  EXPECT_DOUBLE_EQ(Centroid({{1.0, 2.0, 3.0}, {1.0, 2.0, 5.0}}).alt, 4.0);  // no length: mean
  for (GeoPoint& p : square) p.alt = 100.0;
  EXPECT_NEAR(Centroid(square).alt, 100.0, 1e-9);
}

TEST(Geodesy, CrossLineIsAcrossTheDirectionOfTravel) {
  // Going east along the south side, also after a repeated first point.
  std::vector<GeoPoint> square = Square(45.0, 7.0);
  EXPECT_NEAR(TravelBearingDeg(square, square[0]), 90.0, 0.1);
  EXPECT_NEAR(TravelBearingDeg(square, square[3]), 180.0, 0.1);  // the last continues with the first
  square.insert(square.begin(), square.front());
  EXPECT_NEAR(TravelBearingDeg(square, square[0]), 90.0, 0.1);
  const Segment line = CrossLine(square, square[0], 12.0);
  EXPECT_NEAR(HaversineM(line.a, line.b), 12.0, 1e-6);
  EXPECT_NEAR(BearingDeg(line.a, line.b), 180.0, 0.1);  // from the left of eastbound: south
  EXPECT_NEAR(HaversineM(line.a, square[0]), 6.0, 1e-6);
  const GeoPoint there = Destination({45.0, 7.0}, 123.0, 2500.0);
  EXPECT_NEAR(HaversineM({45.0, 7.0}, there), 2500.0, 1e-6);
  EXPECT_NEAR(BearingDeg({45.0, 7.0}, there), 123.0, 1e-6);
}

TEST(Projection, KeepsShapeAndScaleFarFromTheEquator) {
  for (double lat : {0.0, 45.0, 70.0}) {
    const std::vector<GeoPoint> square = Square(lat, 20.0);
    const AzimuthalEquidistant projection(square[0]);
    const XY east = projection.Project(square[1]);
    const XY north = projection.Project(square[3]);
    EXPECT_NEAR(east.x, 1000.0, 0.5) << lat;
    EXPECT_NEAR(east.y, 0.0, 15.0) << lat;  // a parallel is not a great circle
    EXPECT_NEAR(north.x, 0.0, 1e-6) << lat;
    EXPECT_NEAR(north.y, 1000.0, 1e-6) << lat;
  }
}

}  // namespace
}  // namespace tkk
