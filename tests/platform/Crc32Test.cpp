#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <vector>

#include "atomtag/Crc32.h"

namespace {

using Bytes = std::vector<unsigned char>;
using vekatomtag::Crc32;

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

TEST(Crc32Test, CheckValue) {
  const unsigned char text[] = "123456789";
  EXPECT_EQ(Crc32(0, text, 9), 0xCBF43926u);
}

// Across the cut-over to folding, whole and partial 64-byte blocks and the
// 16-byte and byte tails, from every alignment.
TEST(Crc32Test, MatchesZlibAtEveryLengthAndOffset) {
  const Bytes bytes = RandomBytes(16 + 1100, 1);
  for (size_t offset = 0; offset < 16; ++offset)
    for (size_t n = 0; n <= 1100; ++n)
      for (uint32_t preset : kPresets) {
        const unsigned char* p = bytes.data() + offset;
        ASSERT_EQ(Crc32(preset, p, n), Reference(preset, p, n))
            << "offset " << offset << " length " << n << " preset " << preset;
      }
}

TEST(Crc32Test, MatchesZlibOnLargeBuffers) {
  for (size_t n : {size_t{64} * 1024, size_t{1024} * 1024 + 7}) {
    const Bytes bytes = RandomBytes(n, 2);
    for (uint32_t preset : kPresets)
      EXPECT_EQ(Crc32(preset, bytes.data(), n), Reference(preset, bytes.data(), n)) << n;
  }
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
