#include <gtest/gtest.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "foundation/LittleEndian.h"
#include "support/FakeClock.h"
#include "tkkFlat.h"

namespace {

using fakeclock::MakeTm;

uint64_t Value(const unsigned char* bytes) { return vektkk::DecodeFixed64(bytes); }

// The packed time of 2024-03-05 12:34:56 as the date word lays it out.
const uint64_t kWord20240305 =
    (9u << 26) | (2u << 22) | (4u << 17) | (12u << 12) | (34u << 6) | 56u;

TEST(TkkFlat, FlagHelpers) {
  EXPECT_EQ(tkkIsTipoVek(0), 1);
  EXPECT_EQ(tkkIsTipoVek(1), 0);
  EXPECT_EQ(tkkIsTipoVek(2), 0);
  EXPECT_EQ(tkkIsDev(0), 0);
  EXPECT_EQ(tkkIsDev(1), 1);
  EXPECT_EQ(tkkIsDev(2), 1);
}

TEST(TkkFlat, TrackGuidLayout) {
  const tm when = MakeTm(2024, 3, 5, 12, 34, 56);
  struct Case {
    int isVek, isDev;
    unsigned random;
    uint64_t expected;
  };
  const Case cases[] = {
      {1, 0, 0x12345u, (kWord20240305 << 16) | 0x2345u},
      {0, 0, 0, (kWord20240305 << 16) | (1ull << 47)},
      {1, 1, 0, (kWord20240305 << 16) | (1ull << 48)},
      {0, 1, 0xFFFFu, (kWord20240305 << 16) | (1ull << 47) | (1ull << 48) | 0xFFFFu},
      {1, 2, 0, kWord20240305 << 16},  // only the lowest bit of isDev counts
      {2, 0, 0, kWord20240305 << 16},  // any non-zero isVek is the maker's type
  };
  for (const auto& c : cases) {
    unsigned char out[8];
    memset(out, 0xEE, sizeof out);
    tkkGenerateGuid(out, c.isVek, c.isDev, &when, c.random);
    EXPECT_EQ(Value(out), c.expected) << c.isVek << "/" << c.isDev;
  }
}

TEST(TkkFlat, FileNameGuidLayout) {
  const tm when = MakeTm(2024, 3, 5, 12, 34, 56);
  struct Case {
    int isVek, isDev, random;
    uint64_t expected;
  };
  const Case cases[] = {
      {1, 0, 0x1FF, (kWord20240305 << 8) | 0xFF},
      {0, 0, 0, (kWord20240305 << 8) | (1ull << 40)},
      {1, 1, 0, (kWord20240305 << 8) | (1ull << 39)},
      {1, 2, 0, kWord20240305 << 8},  // isDev 2 leaves bit 39 clear too
      {2, 0, 0, kWord20240305 << 8},
  };
  for (const auto& c : cases) {
    unsigned char out[8];
    memset(out, 0xEE, sizeof out);
    tkkGenerateGuidNomeFile(out, c.isVek, c.isDev, &when, c.random);
    EXPECT_EQ(Value(out), c.expected) << c.isVek << "/" << c.isDev;
  }
}

TEST(TkkFlat, DecodersWriteOnlyTheSixTimeMembers) {
  const tm when = MakeTm(2024, 3, 5, 12, 34, 56);
  unsigned char guid[8];
  unsigned char name[8];
  tkkGenerateGuid(guid, 0, 1, &when, 7);
  tkkGenerateGuidNomeFile(name, 0, 1, &when, 7);

  for (int which = 0; which < 2; ++which) {
    tm back;
    memset(&back, 0, sizeof back);
    back.tm_wday = 6;
    back.tm_yday = 300;
    back.tm_isdst = 1;
    unsigned char isVek = 9, isDev = 9;
    if (which == 0)
      tkkDecodeGuid(guid, &isVek, &isDev, &back);
    else
      tkkDecodeGuidNomeFile(name, &isVek, &isDev, &back);
    EXPECT_EQ(isVek, 0);
    EXPECT_EQ(isDev, 1);
    EXPECT_EQ(back.tm_year, 124);
    EXPECT_EQ(back.tm_mon, 2);
    EXPECT_EQ(back.tm_mday, 5);
    EXPECT_EQ(back.tm_hour, 12);
    EXPECT_EQ(back.tm_min, 34);
    EXPECT_EQ(back.tm_sec, 56);
    EXPECT_EQ(back.tm_wday, 6);
    EXPECT_EQ(back.tm_yday, 300);
    EXPECT_EQ(back.tm_isdst, 1);
  }
}

TEST(TkkFlat, ZeroGuidDecodesToStartOf2015) {
  const unsigned char zero[8] = {0};
  tm back;
  memset(&back, 0, sizeof back);
  unsigned char isVek = 0, isDev = 1;
  tkkDecodeGuid(zero, &isVek, &isDev, &back);
  EXPECT_EQ(isVek, 1);
  EXPECT_EQ(isDev, 0);
  EXPECT_EQ(back.tm_year, 115);
  EXPECT_EQ(back.tm_mday, 1);
}

TEST(TkkFlat, NamesAreEightBase36Digits) {
  struct Case {
    uint64_t value;
    const char* name;
  };
  const uint64_t largest = (0x7FFFFFFFull << 8) | 0xFF | (1ull << 39) | (1ull << 40);
  const Case cases[] = {
      {0, "00000000"},
      {35, "0000000z"},
      {36, "00000010"},
      {largest, "s27to3cv"},
  };
  for (const auto& c : cases) {
    unsigned char in[8];
    vektkk::EncodeFixed64(in, c.value);
    char out[16];
    memset(out, 'X', sizeof out);
    tkkGetNomeFileFromGuid(out, in);
    EXPECT_STREQ(out, c.name);

    unsigned char back[8] = {0};
    EXPECT_NE(tkkGetGuidFromNomeFile(back, c.name), 0);
    EXPECT_EQ(Value(back), c.value);
  }
}

TEST(TkkFlat, NameReadingStopsAtTheFirstForeignCharacter) {
  struct Case {
    const char* text;
    int ok;
    uint64_t value;  // what was added before the failure
  };
  const Case cases[] = {
      {"0000000Z", 0, 0},
      {"0000000a.tkk", 1, 10},
      {"0000Z00a", 0, 10},  // digits 7..5 are added, then Z fails
      {"z000000-", 0, 0},              // fails at once, on the last character
  };
  for (const auto& c : cases) {
    unsigned char out[8] = {0};
    EXPECT_EQ(tkkGetGuidFromNomeFile(out, c.text) != 0, c.ok != 0) << c.text;
    EXPECT_EQ(Value(out), c.value) << c.text;
  }
  unsigned char out[8] = {0};
  ASSERT_NE(tkkGetGuidFromNomeFile(out, "0k3f9zq1.tkk"), 0);
  char name[9];
  tkkGetNomeFileFromGuid(name, out);
  EXPECT_STREQ(name, "0k3f9zq1");
}

// A name shorter than eight characters ending right before an unreadable
// page: reading it must stop at its terminator (it used to read the eighth
// character first, past the end).
TEST(TkkFlat, NameReadingOfAShortNameStaysWithinIt) {
  const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  void* map = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(map, MAP_FAILED);
  char* const end = static_cast<char*>(map) + page;
  ASSERT_EQ(mprotect(end, page, PROT_NONE), 0);
  for (const char* name : {"", "0", "0k3f", "0k3f9zq"}) {
    const size_t size = strlen(name) + 1;
    memcpy(end - size, name, size);
    unsigned char out[8] = {0};
    EXPECT_EQ(tkkGetGuidFromNomeFile(out, end - size), 0) << name;
    EXPECT_EQ(Value(out), 0u) << name;
  }
  munmap(map, 2 * page);
}

TEST(TkkFlat, NameReadingAddsToWhatTheOutputHeld) {
  unsigned char out[8];
  vektkk::EncodeFixed64(out, 1000);
  ASSERT_NE(tkkGetGuidFromNomeFile(out, "00000010"), 0);
  EXPECT_EQ(Value(out), 1036u);
}

}  // namespace
