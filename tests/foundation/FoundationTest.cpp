#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <cmath>

#include "Coordinate.h"
#include "DataOraTkk.h"
#include "foundation/LittleEndian.h"
#include "foundation/LogEvento.h"
#include "support/EvtLogRecorder.h"
#include "support/FakeClock.h"

namespace {

using fakeclock::MakeTm;
using std::make_tuple;
constexpr uint32_t kWord =
    9u << 26 | 2u << 22 | 4u << 17 | 12u << 12 | 34u << 6 | 56u;  // 2024-03-05 12:34:56

// Each field is cut to its width, with no normalisation; unpacking clears the whole tm.
TEST(DataOraTkk, PacksEachFieldInItsBits) {
  const std::tuple<tm, uint32_t, tm> cases[] = {
      {MakeTm(2024, 3, 5, 12, 34, 56), kWord, MakeTm(2024, 3, 5, 12, 34, 56)},
      {MakeTm(2047, 1, 1, 0, 0, 0), 0, MakeTm(2015, 1, 1, 0, 0, 0)},
      {MakeTm(2014, 12, 31, 23, 59, 60), 31u << 26 | 11u << 22 | 30u << 17 | 23u << 12 | 59u << 6 | 60u,
       MakeTm(2046, 12, 31, 23, 59, 60)},
      {MakeTm(2020, 1, 1, 33, 64, 65), 5u << 26 | 1u << 12 | 1u, MakeTm(2020, 1, 1, 1, 0, 1)}};
  for (const auto& [in, word, out] : cases) {
    _UDataOraTkk u;
    u.Valore = 0x80000000u;  // the spare bit is kept
    u.DataOra.CopiaDaTm(in);
    tm back;
    memset(&back, 0x5A, sizeof back);
    EXPECT_TRUE(IDataOraTkk::GetDaDataOraTkk(u, back) && u.Valore == (word | 0x80000000u)) << word;
    EXPECT_EQ(memcmp(&back, &out, sizeof back), 0) << word;
  }
}

// The operators are not one ordering: <, <= and >= compare every field on its
// own; > is lexicographic on the date and field by field on the time, with
// the seconds strictly greater. Each row says how each field of the left
// date (year, month, day, hours, minutes, seconds) compares with the right
// one, and the expected <, <=, >, >=, ==, !=. Rows with one field equal and
// the others smaller catch a field left out of < or >=.
TEST(DataOraTkk, EachComparisonKeepsItsOwnRule) {
  const std::pair<const char*, const char*> cases[] = {
      {"<<<<<<", "110001"}, {"<<<<<=", "010001"}, {"<<<<=<", "010001"}, {"<<<=<<", "010001"},
      {"<<=<<<", "010001"}, {"<=<<<<", "010001"}, {"<<<<<>", "000001"}, {"======", "010110"},
      {"<=====", "010001"}, {"=<====", "010001"}, {"==<===", "010001"}, {"===<==", "010001"},
      {"====<=", "010001"}, {"=====<", "010001"}, {">=====", "001101"}, {"=>====", "001101"},
      {"==>===", "001101"}, {"===>==", "000101"}, {"====>=", "000101"}, {"=====>", "001101"},
      {">>>>><", "001001"}, {"<>>>>>", "000001"}, {"=<>>>>", "000001"}, {"==><<<", "001001"},
      {"===<>>", "000001"}, {"====<>", "000001"}, {">>>>>=", "001101"}, {"=<<<<<", "010001"}};
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

// A clock never set (a year before 2001) still gives its time.
TEST(DataOraTkk, CurrentTimeComesFromTheClock) {
  using fakeclock::Utc;
  for (const auto& [now, set, yday] :
       {make_tuple(Utc(2000, 12, 31, 23, 59, 59), false, 365), make_tuple(Utc(2001, 1, 1, 0, 0, 0), true, 0),
        make_tuple(Utc(2024, 3, 5, 12, 34, 56), true, 64)}) {
    fakeclock::Freeze(now);
    tm t;
    EXPECT_EQ(IDataOraTkk::GetDataOraUTC(t), set) << now;
    EXPECT_EQ(make_tuple(t.tm_yday, timegm(&t)), make_tuple(yday, now));
  }
  EXPECT_EQ(IDataOraTkk::GetDataOraTkk().Valore, kWord);
  fakeclock::Reset();
}

// Every byte in its place, and nothing written past the value.
TEST(LittleEndian, EncodesAndDecodesEveryByteInPlace) {
  unsigned char b[9];
  memset(b, 0xEE, sizeof b);
  vektkk::EncodeFixed64(b, 0x0807060504030201ull);
  EXPECT_EQ(b[8], 0xEE);
  EXPECT_EQ(vektkk::DecodeFixed64(b), 0x0807060504030201ull);
  EXPECT_EQ(vektkk::DecodeFixed32(b + 1), 0x05040302u);
  EXPECT_EQ(vektkk::DecodeFixed16(b + 6), 0x0807u);
  vektkk::EncodeFixed16(b, 0xA1B2);
  vektkk::EncodeFixed32(b + 2, 0xC1D2E3F4u);
  EXPECT_EQ(vektkk::DecodeFixed64(b), 0x0807C1D2E3F4A1B2ull);
}

// Rounded half away from zero (the half steps are checked through the
// reference point, tests/trackfile); past the range of int the result
// saturates and NaN gives 0, the same on every processor.
TEST(Coordinate, DegreesRoundToTheNearestStep) {
  const std::pair<double, int> cases[] = {{-45.12345675, -451234568}, {214.74836475, INT_MAX},
                                          {1e300, INT_MAX},           {-214.74836485, INT_MIN},
                                          {-1e300, INT_MIN},          {NAN, 0}};
  for (const auto& [degrees, stored] : cases) EXPECT_EQ(ConvertiLatLonAs32(degrees), stored) << degrees;
  EXPECT_EQ(ConvertiAltADouble(-1500), -1.5);
  // A true division, so that every stored value comes back unchanged through degrees.
  for (int v = -1800000000; v <= 1800000000; v += 9973) {
    ASSERT_EQ(ConvertiLatLonADouble(v), v / 1e7);
    ASSERT_EQ(ConvertiLatLonAs32(ConvertiLatLonADouble(v)), v);
  }
}

// One record per report, built under the host's mutex: the constant first
// tag, then the message cut to 1023 characters. A closed context drops the
// report. (Each severity's priority and word are checked with the reports of
// tests/trackfile.)
TEST(LogEvento, OneRecordPerReportUnderTheHostsMutex) {
  evtrec::Reset(true);
  fakeclock::Reset();
  const std::string path(2000, 'p');
  LogEvento(kNotice.Priorita, kNotice.Parola, "Can't open file %s", path.c_str());
  ASSERT_EQ(evtrec::Events().size(), 1u);
  const evtrec::Event& e = evtrec::Events()[0];
  const decltype(e.tags) tags = {{"test:tag", "value"}, {"msg", ("Can't open file " + path).substr(0, 1023)}};
  EXPECT_EQ(make_tuple(e.priority, e.tags, e.logged, e.mutexHeldAtInit), make_tuple(5, tags, true, true));
  evtrec::Reset(false);
  LogEvento(kError.Priorita, kError.Parola, "x");
  EXPECT_TRUE(evtrec::Events().empty());
  EXPECT_EQ(make_tuple(fakeclock::EvtMutexLocks(), fakeclock::EvtMutexUnlocks()), make_tuple(2, 2));
}

}  // namespace
