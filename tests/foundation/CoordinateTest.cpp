#include <gtest/gtest.h>

#include <limits.h>

#include <limits>
#include <random>

#include "Coordinate.h"

namespace {

struct ToStored {
  double degrees;
  int stored;
};

TEST(Coordinate, DegreesRoundHalfAwayFromZero) {
  const ToStored cases[] = {
      {0.0, 0},
      {-0.0, 0},
      {0.00000004, 0},
      {-0.00000004, 0},
      {0.00000005, 1},
      {-0.00000005, -1},
      {45.12345675, 451234568},
      {-45.12345675, -451234568},
      {90.0, 900000000},
      {-180.0, -1800000000},
      // No result is promised past the range; it is the same everywhere.
      {214.74836475, INT_MAX},
      {1e300, INT_MAX},
      {-214.74836485, INT_MIN},
      {-1e300, INT_MIN},
      {std::numeric_limits<double>::quiet_NaN(), 0},
  };
  for (const auto& c : cases) EXPECT_EQ(ConvertiLatLonAs32(c.degrees), c.stored) << c.degrees;
}

TEST(Coordinate, StoredToDoubleIsATrueDivision) {
  EXPECT_EQ(ConvertiLatLonADouble(900000000), 90.0);
  EXPECT_EQ(ConvertiLatLonADouble(-1800000000), -180.0);
  EXPECT_EQ(ConvertiLatLonADouble(451234568), 451234568 / 1e7);
  EXPECT_EQ(ConvertiAltADouble(-1500), -1.5);
  EXPECT_EQ(ConvertiAltADouble(1), 1 / 1000.0);
  EXPECT_EQ(c_fattore_conversione, 1e7);
}

TEST(Coordinate, EveryStoredValueSurvivesTheRoundTrip) {
  // A dense walk over the whole longitude range plus random values: every
  // stored integer must come back unchanged through degrees.
  auto roundTrip = [](int v) { return ConvertiLatLonAs32(ConvertiLatLonADouble(v)); };
  for (long long v = -1800000000LL; v <= 1800000000LL; v += 9973) {
    const int stored = static_cast<int>(v);
    ASSERT_EQ(roundTrip(stored), stored);
  }
  std::mt19937 gen(20261122);
  std::uniform_int_distribution<int> any(-1800000000, 1800000000);
  for (int i = 0; i < 200000; ++i) {
    const int stored = any(gen);
    ASSERT_EQ(roundTrip(stored), stored);
  }
  for (int stored : {-1800000000, -1, 0, 1, 1800000000}) EXPECT_EQ(roundTrip(stored), stored);
}

}  // namespace
