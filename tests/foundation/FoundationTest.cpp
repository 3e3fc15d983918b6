#include <gtest/gtest.h>
#include <string.h>

#include <climits>
#include <cmath>

#include "Coordinate.h"
#include "DataOraTkk.h"
#include "foundation/LittleEndian.h"
#include "support/FakeClock.h"

namespace {

using fakeclock::MakeTm;
using std::make_tuple;

// The operators are not one ordering: <, <= and >= compare every field on its
// own; > is lexicographic on the date and field by field on the time, with
// the seconds strictly greater. Each row says how each field of the left
// date (year, month, day, hours, minutes, seconds) compares with the right
// one, and the expected <, <=, >, >=, ==, !=. Rows with one field equal and
// the others smaller catch a field left out of < or >=.
TEST(DataOraTkk, EachComparisonKeepsItsOwnRule) {
  const std::pair<const char*, const char*> cases[] = {
      {"<<<<<<", "110001"}, {"<<<<<=", "010001"}, {"<<<<=<", "010001"}, {"<<<=<<", "010001"},
      {"<<=<<<", "010001"}, {"<=<<<<", "010001"}, {"======", "010110"}, {"<=====", "010001"},
      {"=<====", "010001"}, {"==<===", "010001"}, {"===<==", "010001"}, {"====<=", "010001"},
      {"=====<", "010001"}, {">=====", "001101"}, {"=>====", "001101"}, {"==>===", "001101"},
      {"===>==", "000101"}, {"====>=", "000101"}, {"=====>", "001101"}, {"<>>>>>", "000001"},
      {"=<>>>>", "000001"}, {"===<>>", "000001"}, {"====<>", "000001"}, {"=<<<<<", "010001"}};
  for (const auto& [fields, expected] : cases) {
    SCOPED_TRACE(fields);
    int l[6], r[6];
    for (int i = 0; i < 6; ++i) {
      l[i] = r[i] = 3 + i;
      (fields[i] == '<' ? r : l)[i] += fields[i] == '=' ? 0 : 1;
    }
    _UDataOraTkk a, b;
    b.Valore = 0x80000000u;  // the spare bit is never compared
    a.DataOra.CopiaDaTm(MakeTm(2015 + l[0], l[1], l[2], l[3], l[4], l[5]));
    b.DataOra.CopiaDaTm(MakeTm(2015 + r[0], r[1], r[2], r[3], r[4], r[5]));
    const _SDataOraTkk &x = a.DataOra, &y = b.DataOra;
    const bool got[] = {x<y, x <= y, x> y, x >= y, x == y, x != y};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(got[i], expected[i] == '1') << "operator " << i;
  }
}

// Degrees to 1e-7 steps, rounded half away from zero, the same on every
// processor beyond the range of int and for NaN.
TEST(Coordinate, RoundsAwayFromZeroAndSaturates) {
  const std::pair<double, int> cases[] = {
      {45.6185604, 456185604}, {-0.00000006, -1}, {-0.00000004, 0}, {-73.5224996, -735224996},
      {300.0, INT_MAX},        {-300.0, INT_MIN}, {NAN, 0},         {214.74836475, INT_MAX}};
  for (const auto& [deg, steps] : cases) EXPECT_EQ(ConvertiLatLonAs32(deg), steps) << deg;
}

// Every byte in its place, and nothing written past the value.
TEST(LittleEndian, EncodesAndDecodesEveryByteInPlace) {
  unsigned char b[9];
  memset(b, 0xEE, sizeof b);
  vektkk::EncodeFixed64(b, 0x0807060504030201ull);
  vektkk::EncodeFixed32(b, 0x14131211u), vektkk::EncodeFixed16(b + 6, 0x2221);
  EXPECT_EQ(
      make_tuple(b[8], vektkk::DecodeFixed32(b + 1), vektkk::DecodeFixed16(b + 6), vektkk::DecodeFixed64(b)),
      make_tuple(0xEE, 0x05141312u, 0x2221u, 0x2221060514131211ull));
}

}  // namespace
