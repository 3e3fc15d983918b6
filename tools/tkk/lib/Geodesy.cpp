#include "Geodesy.h"

#include <math.h>

#include <limits>

namespace tkk {

namespace {

constexpr double kRadToDeg = 1.0 / kDegToRad;

bool SamePlace(const GeoPoint& a, const GeoPoint& b) { return a.lat == b.lat && a.lon == b.lon; }

size_t NearestIndex(const std::vector<GeoPoint>& outline, const GeoPoint& at) {
  size_t best = 0;
  double bestDistance = std::numeric_limits<double>::max();
  for (size_t i = 0; i < outline.size(); ++i) {
    const double d = HaversineM(outline[i], at);
    if (d < bestDistance) {
      bestDistance = d;
      best = i;
    }
  }
  return best;
}

}  // namespace

double HaversineM(const GeoPoint& a, const GeoPoint& b) {
  const double s = sin((b.lat - a.lat) * kDegToRad * 0.5);
  const double t = sin((b.lon - a.lon) * kDegToRad * 0.5);
  const double h = s * s + t * t * cos(a.lat * kDegToRad) * cos(b.lat * kDegToRad);
  return 2.0 * asin(sqrt(fmin(1.0, h))) * kEarthRadiusM;
}

double ClosedLengthM(const std::vector<GeoPoint>& outline) {
  double length = 0.0;
  for (size_t i = 0; i < outline.size(); ++i) {
    length += HaversineM(outline[i], outline[(i + 1) % outline.size()]);
  }
  return length;
}

GeoPoint Centroid(const std::vector<GeoPoint>& outline) {
  GeoPoint sum;
  double weight = 0.0;
  for (size_t i = 0; i < outline.size(); ++i) {
    const GeoPoint& a = outline[i];
    const GeoPoint& b = outline[(i + 1) % outline.size()];
    const double w = HaversineM(a, b);
    sum.lat += w * (a.lat + b.lat) / 2;
    sum.lon += w * (a.lon + b.lon) / 2;
    sum.alt += w * (a.alt + b.alt) / 2;
    weight += w;
  }
  if (weight > 0.0) return GeoPoint{sum.lat / weight, sum.lon / weight, sum.alt / weight};
  GeoPoint mean;
  for (const GeoPoint& p : outline) {
    mean.lat += p.lat / static_cast<double>(outline.size());
    mean.lon += p.lon / static_cast<double>(outline.size());
    mean.alt += p.alt / static_cast<double>(outline.size());
  }
  return mean;
}

double BearingDeg(const GeoPoint& a, const GeoPoint& b) {
  const double lat1 = a.lat * kDegToRad;
  const double lat2 = b.lat * kDegToRad;
  const double dLon = (b.lon - a.lon) * kDegToRad;
  const double y = sin(dLon) * cos(lat2);
  const double x = cos(lat1) * sin(lat2) - sin(lat1) * cos(lat2) * cos(dLon);
  const double deg = atan2(y, x) * kRadToDeg;
  return deg < 0.0 ? deg + 360.0 : deg;
}

GeoPoint Destination(const GeoPoint& from, double bearingDeg, double distanceM) {
  const double delta = distanceM / kEarthRadiusM;
  const double theta = bearingDeg * kDegToRad;
  const double lat1 = from.lat * kDegToRad;
  const double lon1 = from.lon * kDegToRad;
  const double lat2 = asin(sin(lat1) * cos(delta) + cos(lat1) * sin(delta) * cos(theta));
  const double lon2 =
      lon1 + atan2(sin(theta) * sin(delta) * cos(lat1), cos(delta) - sin(lat1) * sin(lat2));
  double lon = lon2 * kRadToDeg;
  if (lon > 180.0) lon -= 360.0;
  if (lon < -180.0) lon += 360.0;
  return GeoPoint{lat2 * kRadToDeg, lon, from.alt};
}

double TravelBearingDeg(const std::vector<GeoPoint>& outline, const GeoPoint& at) {
  if (outline.empty()) return 0.0;
  const size_t i = NearestIndex(outline, at);
  for (size_t step = 1; step < outline.size(); ++step) {
    const GeoPoint& next = outline[(i + step) % outline.size()];
    if (!SamePlace(next, outline[i])) return BearingDeg(outline[i], next);
  }
  return 0.0;
}

Segment CrossLine(const std::vector<GeoPoint>& outline, const GeoPoint& at, double widthM) {
  const double bearing = TravelBearingDeg(outline, at);
  return Segment{Destination(at, bearing - 90.0, widthM / 2), Destination(at, bearing + 90.0, widthM / 2)};
}

}  // namespace tkk
