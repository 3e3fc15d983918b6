#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <vector>

#include "atomtag/Crc32.h"

namespace {

using Bytes = std::vector<unsigned char>;
using vekatomtag::Crc32;
using vekatomtag::Crc32Con;
using vekatomtag::Crc32Via;

uint32_t Reference(uint32_t crc, const unsigned char* p, size_t n) {
  return static_cast<uint32_t>(crc32(crc, p, static_cast<uInt>(n)));
}

Bytes RandomBytes(size_t n, unsigned seed) {
  std::mt19937 rng(seed);
  Bytes bytes(n);
  for (auto& b : bytes) b = static_cast<unsigned char>(rng());
  return bytes;
}

const uint32_t kPresets[] = {0, 0x12345678, 0xFFFFFFFF};

// Every way this machine has, forced one at a time: the portable way is
// never chosen on its own where the processor has a faster one.
std::vector<Crc32Via> Ways() {
  std::vector<Crc32Via> ways;
  for (Crc32Via via : {Crc32Via::Portabile, Crc32Via::Clmul, Crc32Via::Vpclmul, Crc32Via::Arm})
    if (vekatomtag::Crc32Disponibile(via)) ways.push_back(via);
  return ways;
}

TEST(Crc32Test, CheckValue) {
  const unsigned char text[] = "123456789";
  EXPECT_EQ(Crc32(0, text, 9), 0xCBF43926u);
}

// Across each way's cut-overs, whole and partial blocks of 256, 64 and 16
// bytes and the byte tails, from every alignment; then large buffers.
TEST(Crc32Test, EveryWayMatchesZlib) {
  const Bytes bytes = RandomBytes(16 + 4096, 1);
  const Bytes large = RandomBytes(size_t{1024} * 1024 + 7, 2);
  for (Crc32Via via : Ways()) {
    SCOPED_TRACE(static_cast<int>(via));
    for (size_t offset = 0; offset < 16; ++offset)
      for (size_t n = 0; n <= 4096; ++n) {
        const uint32_t preset = kPresets[(offset + n) % 3];
        const unsigned char* p = bytes.data() + offset;
        ASSERT_EQ(Crc32Con(via, preset, p, n), Reference(preset, p, n))
            << "offset " << offset << " length " << n << " preset " << preset;
      }
    for (size_t n : {size_t{64} * 1024, large.size()})
      for (uint32_t preset : kPresets)
        EXPECT_EQ(Crc32Con(via, preset, large.data(), n), Reference(preset, large.data(), n)) << n;
  }
}

// The chosen way is the fastest that the processor has.
TEST(Crc32Test, ChoosesTheFastestWay) {
  EXPECT_EQ(vekatomtag::Crc32Scelta(), Ways().back());
}

TEST(Crc32Test, ChainsOverAnySplit) {
  const Bytes bytes = RandomBytes(5000, 3);
  const uint32_t whole = Reference(0, bytes.data(), bytes.size());
  for (size_t split : {0, 1, 8, 63, 64, 65, 100, 4096, 4999, 5000})
    EXPECT_EQ(Crc32(Crc32(0, bytes.data(), split), bytes.data() + split, bytes.size() - split),
              whole)
        << split;
}

// The atom codec relies on this: a null buffer yields zlib's initial value.
TEST(Crc32Test, NullBufferGivesZero) {
  for (uint32_t preset : kPresets) EXPECT_EQ(Crc32(preset, nullptr, 0), 0u);
}

}  // namespace
