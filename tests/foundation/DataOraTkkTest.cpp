#include <gtest/gtest.h>
#include <string.h>

#include "DataOraTkk.h"
#include "support/FakeClock.h"

namespace {

using fakeclock::MakeTm;

_SDataOraTkk Pack(int year, int month, int day, int hour, int minute, int second) {
  _UDataOraTkk u;
  u.DataOra.CopiaDaTm(MakeTm(year, month, day, hour, minute, second));
  return u.DataOra;
}

TEST(DataOraTkk, DefaultIsFirstSecondOf2015) {
  _UDataOraTkk zero;
  EXPECT_EQ(zero.Valore, 0u);
  tm t;
  memset(&t, 0x5A, sizeof t);
  EXPECT_TRUE(IDataOraTkk::GetDaDataOraTkk(zero, t));
  const tm expected = MakeTm(2015, 1, 1, 0, 0, 0);
  EXPECT_EQ(memcmp(&t, &expected, sizeof t), 0) << "every other member is cleared";
}

TEST(DataOraTkk, FieldsSitWhereFilesExpectThem) {
  _UDataOraTkk u;
  u.DataOra.CopiaDaTm(MakeTm(2024, 3, 5, 12, 34, 56));
  const uint32_t expected = (9u << 26) | (2u << 22) | (4u << 17) | (12u << 12) | (34u << 6) | 56u;
  EXPECT_EQ(u.Valore, expected);
}

TEST(DataOraTkk, PackAndUnpackWrapsEachFieldToItsWidth) {
  struct Case {
    tm in;
    tm out;
  };
  const Case cases[] = {
      {MakeTm(2046, 12, 31, 23, 59, 59), MakeTm(2046, 12, 31, 23, 59, 59)},
      {MakeTm(2047, 1, 1, 0, 0, 0), MakeTm(2015, 1, 1, 0, 0, 0)},
      {MakeTm(2014, 6, 15, 8, 0, 0), MakeTm(2046, 6, 15, 8, 0, 0)},
      {MakeTm(2020, 1, 1, 0, 0, 60), MakeTm(2020, 1, 1, 0, 0, 60)},  // leap second fits
      {MakeTm(2020, 1, 1, 33, 64, 65), MakeTm(2020, 1, 1, 1, 0, 1)},
  };
  for (const auto& c : cases) {
    _UDataOraTkk u;
    u.DataOra.CopiaDaTm(c.in);
    tm back;
    u.DataOra.CopiaInTm(back);
    EXPECT_EQ(memcmp(&back, &c.out, sizeof back), 0) << c.in.tm_year << "-" << c.in.tm_mon;
  }
}

TEST(DataOraTkk, SpareBitIsKeptAndIgnored) {
  _UDataOraTkk withBit;
  withBit.Valore = 0x80000000u;
  withBit.DataOra.CopiaDaTm(MakeTm(2020, 5, 10, 10, 0, 0));
  EXPECT_EQ(withBit.Valore >> 31, 1u);
  _UDataOraTkk without;
  without.DataOra.CopiaDaTm(MakeTm(2020, 5, 10, 10, 0, 0));
  EXPECT_TRUE(withBit.DataOra == without.DataOra);
  EXPECT_FALSE(withBit.DataOra != without.DataOra);
  EXPECT_TRUE(withBit.DataOra <= without.DataOra);
  EXPECT_TRUE(withBit.DataOra >= without.DataOra);
  EXPECT_FALSE(withBit.DataOra < without.DataOra);
  EXPECT_FALSE(withBit.DataOra > without.DataOra);
}

// Each operator keeps its own rule; they are not one ordering.
TEST(DataOraTkk, ComparisonsFollowTheirOwnRules) {
  struct Case {
    const char* what;
    _SDataOraTkk left, right;
    bool lt, le, gt, ge, eq, ne;
  };
  const Case cases[] = {
      {"later year, earlier month and day", Pack(2020, 5, 10, 10, 0, 0), Pack(2021, 1, 1, 0, 0, 0),
       false, false, false, false, false, true},
      {"swapped", Pack(2021, 1, 1, 0, 0, 0), Pack(2020, 5, 10, 10, 0, 0),
       false, false, true, false, false, true},
      {"every field smaller", Pack(2020, 1, 1, 1, 1, 1), Pack(2021, 2, 2, 2, 2, 2),
       true, true, false, false, false, true},
      {"same day, every time field greater", Pack(2020, 3, 3, 10, 30, 30), Pack(2020, 3, 3, 9, 20, 10),
       false, false, true, true, false, true},
      {"same day, seconds not greater", Pack(2020, 3, 3, 10, 30, 5), Pack(2020, 3, 3, 9, 20, 10),
       false, false, false, false, false, true},
      {"same day, minutes smaller", Pack(2020, 3, 3, 10, 0, 30), Pack(2020, 3, 3, 9, 59, 10),
       false, false, false, false, false, true},
      {"equal", Pack(2020, 3, 3, 10, 0, 30), Pack(2020, 3, 3, 10, 0, 30),
       false, true, false, true, true, false},
      {"one field equal stops <", Pack(2020, 1, 1, 1, 1, 1), Pack(2021, 2, 1, 2, 2, 2),
       false, true, false, false, false, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(c.left < c.right, c.lt);
    EXPECT_EQ(c.left <= c.right, c.le);
    EXPECT_EQ(c.left > c.right, c.gt);
    EXPECT_EQ(c.left >= c.right, c.ge);
    EXPECT_EQ(c.left == c.right, c.eq);
    EXPECT_EQ(c.left != c.right, c.ne);
  }
}

class ClockTest : public ::testing::Test {
 protected:
  void TearDown() override { fakeclock::Reset(); }
};

TEST_F(ClockTest, UnsetClockStillFillsTheTime) {
  fakeclock::Freeze(0);
  tm t;
  memset(&t, 0x5A, sizeof t);
  EXPECT_FALSE(IDataOraTkk::GetDataOraUTC(t));
  EXPECT_EQ(t.tm_year, 70);
  EXPECT_EQ(t.tm_mon, 0);
  EXPECT_EQ(t.tm_mday, 1);
  EXPECT_EQ(t.tm_wday, 4);  // a Thursday, straight from the C library
}

TEST_F(ClockTest, CurrentTimePacksWithSpareBitClear) {
  fakeclock::Freeze(fakeclock::Utc(2024, 3, 5, 12, 34, 56));
  tm t;
  EXPECT_TRUE(IDataOraTkk::GetDataOraUTC(t));
  EXPECT_EQ(t.tm_yday, 64);
  const _UDataOraTkk now = IDataOraTkk::GetDataOraTkk();
  EXPECT_TRUE(now.DataOra == Pack(2024, 3, 5, 12, 34, 56));
  EXPECT_EQ(now.Valore >> 31, 0u);
}

}  // namespace
