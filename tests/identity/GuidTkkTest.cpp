#include <gtest/gtest.h>
#include <string.h>

#include "GuidTkk.h"
#include "support/FakeClock.h"

namespace {

class GuidTkkTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fakeclock::Reset();
    fakeclock::Freeze(fakeclock::Utc(2024, 3, 5, 12, 34, 56));
  }
  void TearDown() override { fakeclock::Reset(); }
};

TEST_F(GuidTkkTest, FlagsAndTimeDecodeBack) {
  struct Case {
    bool isVek, isDev;
    bool bit47, bit48, IsVek, IsDev;
  };
  const Case cases[] = {
      {true, false, false, false, true, false},
      {false, true, true, true, false, true},
      // IsDev reads the type flag: a development GUID of the maker's type
      // answers false, only the decoder sees the development flag.
      {true, true, false, true, true, false},
  };
  for (const auto& c : cases) {
    const _UGuidTkk g = IGuidTkk::GetGuidTkk(c.isVek, c.isDev);
    EXPECT_EQ(((g.Valore >> 47) & 1) != 0, c.bit47);
    EXPECT_EQ(((g.Valore >> 48) & 1) != 0, c.bit48);
    EXPECT_EQ(g.Byte[6] & 0xFE, 0);
    EXPECT_EQ(g.Byte[7], 0);
    EXPECT_EQ(IGuidTkk::IsVek(g), c.IsVek);
    EXPECT_EQ(IGuidTkk::IsDev(g), c.IsDev);

    tm t;
    memset(&t, 0, sizeof t);
    t.tm_wday = 3;
    t.tm_yday = 99;
    t.tm_isdst = 1;
    bool isVek = !c.isVek, isDev = !c.isDev;
    EXPECT_TRUE(IGuidTkk::GetDaGuidTkk(g, t, isVek, isDev));
    EXPECT_EQ(isVek, c.isVek);
    EXPECT_EQ(isDev, c.isDev);
    EXPECT_EQ(t.tm_year, 124);
    EXPECT_EQ(t.tm_mon, 2);
    EXPECT_EQ(t.tm_mday, 5);
    EXPECT_EQ(t.tm_hour, 12);
    EXPECT_EQ(t.tm_min, 34);
    EXPECT_EQ(t.tm_sec, 56);
    EXPECT_EQ(t.tm_wday, 3);
    EXPECT_EQ(t.tm_yday, 99);
    EXPECT_EQ(t.tm_isdst, 1);
  }
}

TEST_F(GuidTkkTest, RandomBitsAreTheLow16BitsOfRand) {
  fakeclock::QueueRand({0x7ABCDEF0});
  const _UGuidTkk g = IGuidTkk::GetGuidTkk(true, false);
  EXPECT_EQ(g.Valore & 0xFFFF, 0xDEF0u);
}

TEST_F(GuidTkkTest, RepeatedRandomNumberInOneSecondBacksOff) {
  fakeclock::QueueRand({0x1111, 0x1111, 0x1111, 0x2222});
  const _UGuidTkk first = IGuidTkk::GetGuidTkk(true, false);
  const _UGuidTkk second = IGuidTkk::GetGuidTkk(true, false);
  EXPECT_NE(first.Valore, second.Valore);
  EXPECT_EQ(second.Valore & 0xFFFF, 0x2222u);
  EXPECT_EQ(fakeclock::UsleepCalls(), 2);
  EXPECT_EQ(fakeclock::UsleepMicros(), 50000);
}

TEST_F(GuidTkkTest, OtherFlagsForgetWhatWasIssued) {
  // Alternating flags within one second may repeat a value: each change of
  // key empties the memory.
  fakeclock::QueueRand({5, 5, 5});
  const _UGuidTkk a = IGuidTkk::GetGuidTkk(true, false);
  (void)IGuidTkk::GetGuidTkk(false, false);
  const _UGuidTkk c = IGuidTkk::GetGuidTkk(true, false);
  EXPECT_EQ(a.Valore, c.Valore);
  EXPECT_EQ(fakeclock::UsleepCalls(), 0);
}

TEST_F(GuidTkkTest, ATakenNumberWaitsUntilTheNextSecond) {
  // rand() keeps repeating: the generator sleeps 25 ms at a time until the
  // clock moves on to a new second, where the same number is free again.
  for (int i = 0; i < 42; ++i) fakeclock::QueueRand({7});
  const _UGuidTkk first = IGuidTkk::GetGuidTkk(true, false);
  const _UGuidTkk second = IGuidTkk::GetGuidTkk(true, false);
  EXPECT_EQ(fakeclock::UsleepCalls(), 40);
  tm t;
  bool isVek, isDev;
  IGuidTkk::GetDaGuidTkk(first, t, isVek, isDev);
  EXPECT_EQ(t.tm_sec, 56);
  IGuidTkk::GetDaGuidTkk(second, t, isVek, isDev);
  EXPECT_EQ(t.tm_sec, 57);
  EXPECT_EQ(second.Valore & 0xFFFF, 7u);
}

TEST(GuidTkk, ZeroGuidDecodesToStartOf2015) {
  _UGuidTkk zero;
  EXPECT_EQ(zero.Valore, 0u);
  tm t;
  memset(&t, 0, sizeof t);
  bool isVek = false, isDev = true;
  EXPECT_TRUE(IGuidTkk::GetDaGuidTkk(zero, t, isVek, isDev));
  EXPECT_TRUE(isVek);
  EXPECT_FALSE(isDev);
  EXPECT_EQ(t.tm_year, 115);
  EXPECT_EQ(t.tm_mon, 0);
  EXPECT_EQ(t.tm_mday, 1);
}

}  // namespace
