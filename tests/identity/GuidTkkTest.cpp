#include <gtest/gtest.h>
#include <string.h>

#include "GuidTkk.h"
#include "tkkFlat.h"
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

// The generator packs the current second and the flags as the plain
// function does (its layout is tested there); IsDev reads the type flag, so
// a development GUID of the maker's type answers false and only the decoder
// sees the development flag.
TEST_F(GuidTkkTest, FlagsAndTimeOfTheCurrentSecond) {
  const bool flags[][4] = {
      // isVek, isDev, IsVek(), IsDev()
      {true, false, true, false},
      {false, true, false, true},
      {true, true, true, false},
  };
  const time_t now = fakeclock::Utc(2024, 3, 5, 12, 34, 56);
  for (const auto& f : flags) {
    fakeclock::QueueRand({0x4321});
    const _UGuidTkk g = IGuidTkk::GetGuidTkk(f[0], f[1]);
    _UGuidTkk expected;
    tm t;
    gmtime_r(&now, &t);
    tkkGenerateGuid(expected.Byte, f[0], f[1], &t, 0x4321);
    EXPECT_EQ(g.Valore, expected.Valore);
    EXPECT_EQ(IGuidTkk::IsVek(g), f[2]);
    EXPECT_EQ(IGuidTkk::IsDev(g), f[3]);
    bool isVek = !f[0], isDev = !f[1];
    t.tm_wday = 6;  // only the six date and time members are written
    t.tm_isdst = 1;
    EXPECT_TRUE(IGuidTkk::GetDaGuidTkk(g, t, isVek, isDev));
    EXPECT_EQ(isVek, f[0]);
    EXPECT_EQ(isDev, f[1]);
    EXPECT_EQ(t.tm_wday + t.tm_isdst, 7);
    EXPECT_EQ(timegm(&t), now);
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

}  // namespace
