#include <gtest/gtest.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <tuple>
#include <vector>

#include "DataOraTkk.h"
#include "GuidNomeFile.h"
#include "GuidTkk.h"
#include "foundation/LittleEndian.h"
#include "support/FakeClock.h"
#include "tkkFlat.h"

namespace {

using std::make_tuple;
using vektkk::DecodeFixed64;

// The packed time of 2024-03-05 12:34:56 as the date word lays it out.
const uint64_t kWord = 9u << 26 | 2u << 22 | 4u << 17 | 12u << 12 | 34u << 6 | 56u;
const tm kWhen = fakeclock::MakeTm(2024, 3, 5, 12, 34, 56);
const time_t kWhenUtc = fakeclock::Utc(2024, 3, 5, 12, 34, 56);

// Track GUID: random in bytes 0-1, date word in bytes 2-5 whose spare bit 47
// says "not the maker's type", development flag in bit 48. File-name GUID:
// random in byte 0, word in bytes 1-4, development flag in its spare bit 39,
// type flag in bit 40. Only the lowest bit of isDev counts; any non-zero
// isVek is the maker's type. Neither writes past its eight bytes, and the
// decoders give the flags and the time back.
TEST(TkkFlat, GuidLayouts) {
  // clang-format off
  // File name?, isVek, isDev, random, GUID.
  const std::tuple<bool, int, int, int, uint64_t> cases[] = {
      {false, 1, 0, 0x12345, kWord << 16 | 0x2345}, {false, 0, 0, 0, kWord << 16 | 1ull << 47},
      {false, 1, 1, 0, kWord << 16 | 1ull << 48},   {false, 0, 1, 0xFFFF, kWord << 16 | 3ull << 47 | 0xFFFF},
      {false, 1, 2, 0, kWord << 16},                {false, 2, 0, 0, kWord << 16},
      {true, 1, 0, 0x1FF, kWord << 8 | 0xFF},       {true, 0, 0, 0, kWord << 8 | 1ull << 40},
      {true, 1, 1, 0, kWord << 8 | 1ull << 39},     {true, 1, 2, 0, kWord << 8},
      {true, 2, 0, 0, kWord << 8}};
  // clang-format on
  for (const auto& [nome, isVek, isDev, random, expected] : cases) {
    SCOPED_TRACE(testing::Message() << nome << isVek << isDev);
    std::vector<unsigned char> out(9, 0xEE);
    nome ? tkkGenerateGuidNomeFile(out.data(), isVek, isDev, &kWhen, random)
         : tkkGenerateGuid(out.data(), isVek, isDev, &kWhen, static_cast<unsigned>(random));
    EXPECT_EQ(make_tuple(DecodeFixed64(out.data()), out[8]), make_tuple(expected, 0xEE));
    tm back = {};
    unsigned char vek = 9, dev = 9;
    (nome ? tkkDecodeGuidNomeFile : tkkDecodeGuid)(out.data(), &vek, &dev, &back);
    EXPECT_EQ(make_tuple(vek, dev, timegm(&back)),
              (make_tuple<unsigned char, unsigned char>(isVek != 0, isDev & 1, kWhenUtc)));
  }
  EXPECT_EQ(make_tuple(tkkIsDev(0), tkkIsDev(2)), make_tuple(0, 1));  // the type's question is in every row
}

// Eight base-36 digits, read from the last one and added to what the output
// held; reading stops at the first character that is not a digit. Neither
// way writes past its output. Each text ends right before an unreadable
// page: a short name used to be read past its end (its eighth character first).
TEST(TkkFlat, NamesAreEightBase36Digits) {
  const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  char* map =
      static_cast<char*>(mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  ASSERT_TRUE(map != MAP_FAILED && mprotect(map + page, page, PROT_NONE) == 0);
  const uint64_t largest = 0x7FFFFFFFull << 8 | 0xFF | 3ull << 39;
  // Text, value held before, read?, value after, name written back.
  // clang-format off
  const std::tuple<const char*, uint64_t, bool, uint64_t, const char*> cases[] = {
      {"00000000", 0, 1, 0, "00000000"}, {"0000000z", 0, 1, 35, "0000000z"},
      {"00000010", 0, 1, 36, "00000010"}, {"s27to3cv", 0, 1, largest, "s27to3cv"},
      {"0k3f9zq1.tkk", 0, 1, 43742705689ull, "0k3f9zq1"}, {"00000010", 1000, 1, 1036, "000000ss"},
      {"0000Z00a", 0, 0, 10, nullptr}, {"", 0, 0, 0, nullptr}, {"0k3f9zq", 0, 0, 0, nullptr}};
  // clang-format on
  for (const auto& [text, held, ok, value, name] : cases) {
    SCOPED_TRACE(text);
    char* at = map + page - strlen(text) - 1;
    memcpy(at, text, strlen(text) + 1);
    std::vector<unsigned char> guid(9, 0xEE);
    vektkk::EncodeFixed64(guid.data(), held);
    const bool read = tkkGetGuidFromNomeFile(guid.data(), at) != 0;
    EXPECT_EQ(make_tuple(read, DecodeFixed64(guid.data()), guid[8]), make_tuple(ok, value, 0xEE));
    if (name == nullptr) continue;
    std::string back(10, 'X');
    tkkGetNomeFileFromGuid(&back[0], guid.data());
    EXPECT_EQ(make_tuple(std::string(back.c_str()), back[9]), make_tuple(std::string(name), 'X'));
  }
  munmap(map, 2 * page);
}

struct Generators : ::testing::Test {
  void SetUp() override { fakeclock::Freeze(kWhenUtc); }
  tm t = {};
  bool isVek = false, isDev = false;  // what the decoders give back
  void TearDown() override { fakeclock::Reset(); }
};

// Within one second and one set of flags a repeated random number is drawn
// again after 25 ms; other flags forget what was issued; when every draw
// repeats, the GUID waits for the next second, where the number is free again.
// IsDev reads the type flag: a development GUID of the maker's type answers false.
// A clock that reads a year before 2001 was never set.
TEST_F(Generators, GuidsBackOffFromARepeatedNumber) {
  fakeclock::QueueRand({0x7ABC1111, 0x1111, 0x1111, 0x2222});
  const _UGuidTkk first = IGuidTkk::GetGuidTkk(true, true);
  EXPECT_EQ(make_tuple(first.Valore, IGuidTkk::IsVek(first), IGuidTkk::IsDev(first)),
            make_tuple(kWord << 16 | 1ull << 48 | 0x1111, true, false));
  ASSERT_TRUE(IGuidTkk::GetDaGuidTkk(first, t, isVek, isDev));
  EXPECT_EQ(make_tuple(isVek, isDev, timegm(&t)), make_tuple(true, true, kWhenUtc));
  EXPECT_EQ(IGuidTkk::GetGuidTkk(true, true).Valore, (first.Valore & ~0xFFFFull) | 0x2222);
  const _UDataOraTkk now = IDataOraTkk::GetDataOraTkk();  // the clock's time, as modification dates take it
  tm back;
  memset(&back, 0xEE, sizeof back);  // every field is written: the date's, zero for the others
  EXPECT_TRUE(now.Valore == kWord && IDataOraTkk::GetDaDataOraTkk(now, back) &&
              memcmp(&back, &kWhen, sizeof back) == 0);
  EXPECT_EQ(make_tuple(fakeclock::UsleepCalls(), fakeclock::UsleepMicros()), make_tuple(2, 50000LL));

  fakeclock::QueueRand({5, 5, 5});
  const _UGuidTkk a = IGuidTkk::GetGuidTkk(true, false);
  (void)IGuidTkk::GetGuidTkk(false, false);
  EXPECT_EQ(IGuidTkk::GetGuidTkk(true, false).Valore, a.Valore);
  EXPECT_EQ(fakeclock::UsleepCalls(), 2);

  fakeclock::Freeze(kWhenUtc);
  for (int i = 0; i < 42; ++i) fakeclock::QueueRand({5});
  const _UGuidTkk later = IGuidTkk::GetGuidTkk(true, false);
  EXPECT_EQ(fakeclock::UsleepCalls(), 2 + 40);
  EXPECT_EQ(later.Valore, a.Valore + (1ull << 16));             // the same number, one second later
  fakeclock::Freeze(fakeclock::Utc(2000, 12, 31, 23, 59, 59));  // a clock never set is before 2001
  EXPECT_TRUE(!IDataOraTkk::GetDataOraUTC(t) && usleep(1000000) == 0 && IDataOraTkk::GetDataOraUTC(t));
}

// The memory of issued names holds only when the new value equals the last
// key, that is when its random byte is 0: any other repeated number in the
// same second gives the same name again.
TEST_F(Generators, NamesRememberOnlyARandomByteOfZero) {
  fakeclock::QueueRand({0x105, 0x205});
  EXPECT_EQ(IGuidNomeFile::GetNomeFile(true, false), IGuidNomeFile::GetNomeFile(true, false));
  EXPECT_EQ(fakeclock::UsleepCalls(), 0);
  fakeclock::QueueRand({0x100, 0x200, 0x201});
  EXPECT_NE(IGuidNomeFile::GetNomeFile(true, false), IGuidNomeFile::GetNomeFile(true, false));
  EXPECT_EQ(make_tuple(fakeclock::UsleepCalls(), fakeclock::UsleepMicros()), make_tuple(1, 25000LL));
  // A name gives back the second it was made in and its flags; a text that is not a name is refused.
  isVek = true;
  ASSERT_TRUE(
      IGuidNomeFile::GetDaNomeFile(IGuidNomeFile::GetNomeFile(false, true) + ".tkk", t, isVek, isDev));
  EXPECT_EQ(make_tuple(isVek, isDev, timegm(&t)), make_tuple(false, true, kWhenUtc));
  for (const char* bad : {"abc", "0000000Z"})
    EXPECT_FALSE(IGuidNomeFile::GetDaNomeFile(bad, t, isVek, isDev));
}

}  // namespace
