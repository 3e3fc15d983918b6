#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "GuidNomeFile.h"
#include "support/FakeClock.h"

namespace {

class GuidNomeFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fakeclock::Reset();
    fakeclock::Freeze(fakeclock::Utc(2024, 3, 5, 12, 34, 56));
  }
  void TearDown() override { fakeclock::Reset(); }
};

TEST_F(GuidNomeFileTest, NameDecodesToItsTimeAndFlags) {
  const bool flags[][2] = {{true, false}, {false, false}, {true, true}, {false, true}};
  for (const auto& f : flags) {
    const std::string name = IGuidNomeFile::GetNomeFile(f[0], f[1]);
    ASSERT_EQ(name.size(), 8u);
    EXPECT_EQ(name.find_first_not_of("0123456789abcdefghijklmnopqrstuvwxyz"), std::string::npos);

    tm t;
    memset(&t, 0, sizeof t);
    t.tm_wday = 5;  // only the six date and time members are written
    t.tm_yday = 77;
    bool isVek = !f[0], isDev = !f[1];
    ASSERT_TRUE(IGuidNomeFile::GetDaNomeFile(name + ".tkk", t, isVek, isDev));
    EXPECT_EQ(isVek, f[0]);
    EXPECT_EQ(isDev, f[1]);
    EXPECT_EQ(t.tm_wday + t.tm_yday, 5 + 77);
    EXPECT_EQ(timegm(&t), fakeclock::Utc(2024, 3, 5, 12, 34, 56));
  }
}

TEST_F(GuidNomeFileTest, InvalidNamesWriteNothing) {
  for (const char* bad : {"abc", "", "0000000Z", "0k3f9zq!", "0k3f9zq"}) {
    tm t;
    memset(&t, 0x5A, sizeof t);
    tm before = t;
    bool isVek = true, isDev = true;
    EXPECT_FALSE(IGuidNomeFile::GetDaNomeFile(bad, t, isVek, isDev)) << bad;
    EXPECT_EQ(memcmp(&t, &before, sizeof t), 0) << bad;
    EXPECT_TRUE(isVek);
    EXPECT_TRUE(isDev);
  }
}

// The memory of issued names holds only when the new value equals the last
// key, that is when its random byte is 0: any other repeated number in the
// same second gives the same name again.
TEST_F(GuidNomeFileTest, MemoryOfIssuedNamesHoldsOnlyForRandomByteZero) {
  fakeclock::QueueRand({0x105, 0x205});
  EXPECT_EQ(IGuidNomeFile::GetNomeFile(true, false), IGuidNomeFile::GetNomeFile(true, false));
  EXPECT_EQ(fakeclock::UsleepCalls(), 0);

  fakeclock::QueueRand({0x100, 0x200, 0x201});
  const std::string a = IGuidNomeFile::GetNomeFile(true, false);
  const std::string b = IGuidNomeFile::GetNomeFile(true, false);
  EXPECT_NE(a, b);
  EXPECT_EQ(fakeclock::UsleepCalls(), 1);
  EXPECT_EQ(fakeclock::UsleepMicros(), 25000);
}

}  // namespace
