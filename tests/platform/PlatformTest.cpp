#include <gtest/gtest.h>
#include <locale.h>
#include <zlib.h>

#include <memory>
#include <random>

#include "atomtag/Crc32.h"
#include "atomtag/Crc32Corto.h"
#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"
#include "platform/IStrConv.h"

namespace {

using Bytes = std::vector<unsigned char>;
using namespace vekatomtag;

// Three atoms: a 3-byte payload, an empty one and a 4-character tag whose
// payload holds zero bytes.
const std::pair<std::string, std::string> kAtoms[] = {
    {"pts", "abc"}, {"e", ""}, {"LAPS", std::string("\x00\x01\xFF\x00\x7F", 5)}};

class AtomTag : public ::testing::Test {
 protected:
  void SetUp() override {
    at_ = {0};
    for (const auto& a : kAtoms) {
      // An empty payload is passed as null, which the encoder accepts.
      EXPECT_TRUE(encoder_->append(buffer_, a.first, a.second.empty() ? nullptr : a.second.data(),
                                   static_cast<uint32_t>(a.second.size()), 0));
      at_.push_back(buffer_.size());
    }
  }
  // Decodes the first `length` bytes; `count` receives how many atoms were reported.
  bool Decode(const Bytes& b, size_t length, size_t& count) {
    std::vector<SAtomTag> atoms;
    const bool ok = decoder_->decode(b.data(), length, atoms);
    count = atoms.size();
    return ok;
  }
  std::unique_ptr<IAtomTagEncoderBin> encoder_{IAtomTagEncoderBin::CreateMe()};
  std::unique_ptr<IAtomTagDecoderBin> decoder_{IAtomTagDecoderBin::CreateMe()};
  Bytes buffer_;
  std::vector<size_t> at_;  // where each atom starts, and the end
};

TEST_F(AtomTag, AtomIsHeaderPayloadAndCrcFooter) {
  Bytes out;
  ASSERT_TRUE(encoder_->append(out, "pts", "\x01\x02\x03", 3, 0));
  // The CRC-32 of the 8 header bytes and the payload, computed independently.
  EXPECT_EQ(out, (Bytes{'p', 't', 's', 0, 3, 0, 0, 0, 1, 2, 3, 0x7F, 0x7A, 0x3C, 0x38}));
  EXPECT_FALSE(encoder_->append(out, "LAPSX", "abc", 3, 0));
  EXPECT_FALSE(encoder_->append(out, "pts", nullptr, 1, 0));
  EXPECT_EQ(out.size(), 15u);

  std::vector<SAtomTag> atoms;
  ASSERT_TRUE(decoder_->decode(buffer_.data(), buffer_.size(), atoms));
  ASSERT_EQ(atoms.size(), 3u);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(atoms[i].Tag, kAtoms[i].first);
    EXPECT_EQ(atoms[i].Dati, buffer_.data() + at_[i] + IAtomTagDecoderBin::GetSizeHeader());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(atoms[i].Dati), atoms[i].Dim), kAtoms[i].second);
  }
  EXPECT_TRUE(decoder_->decode(nullptr, 0, atoms));
  EXPECT_FALSE(decoder_->decode(nullptr, 1, atoms));
  EXPECT_EQ(IAtomTagDecoderBin::GetSizeHeader(), 8u);
  EXPECT_EQ(IAtomTagDecoderBin::GetSizeFooter(), 4u);
}

// Only a prefix ending on an atom boundary is a valid (shorter) sequence, and
// bytes after the last atom are not; a flipped bit or a size beyond the
// buffer is detected. Each reports the atoms complete before the damage.
TEST_F(AtomTag, DamageIsDetectedAfterTheAtomsBeforeIt) {
  Bytes longer = buffer_;
  longer.resize(buffer_.size() + 12, 0);
  size_t count = 0;
  for (size_t length = 0; length <= longer.size(); ++length) {
    size_t complete = 0;
    while (complete + 1 < at_.size() && at_[complete + 1] <= length) ++complete;
    EXPECT_EQ(Decode(longer, length, count), at_[complete] == length) << "cut at " << length;
    EXPECT_EQ(count, complete) << "cut at " << length;
  }
  for (size_t i = 0; i < buffer_.size(); ++i) {
    Bytes bad = buffer_;
    bad[i] ^= static_cast<unsigned char>(1u << (i % 8));
    size_t before = 0;
    while (at_[before + 1] <= i) ++before;
    EXPECT_FALSE(Decode(bad, bad.size(), count)) << "bit flipped in byte " << i;
    EXPECT_EQ(count, before) << "bit flipped in byte " << i;
  }
  for (uint32_t size : {0xFFFFFFF0u, 0xFFFFFFF4u, 0xFFFFFFF8u, 0xFFFFFFFFu, 4u}) {
    Bytes bad(buffer_.begin(), buffer_.begin() + 15);
    for (int i = 0; i < 4; ++i) bad[4 + i] = static_cast<unsigned char>(size >> (8 * i));
    EXPECT_FALSE(Decode(bad, bad.size(), count)) << size;
  }
}

Bytes RandomBytes(size_t n, unsigned seed) {
  std::mt19937 rng(seed);
  Bytes bytes(n);
  for (auto& b : bytes) b = static_cast<unsigned char>(rng());
  return bytes;
}

uint32_t Zlib(uint32_t crc, const unsigned char* p, size_t n) {
  return static_cast<uint32_t>(crc32(crc, p, static_cast<uInt>(n)));
}

// Every way this machine has, forced one at a time, across each way's
// cut-overs (blocks of 256, 64, 16 and 8 bytes, the tails) from every
// alignment, then on large buffers. The table-driven way of short buffers
// is checked on its own too: processors with their own CRC instructions
// never reach it.
TEST(Crc32, EveryWayMatchesZlib) {
  const unsigned char text[] = "123456789";
  EXPECT_EQ(Crc32(0, text, 9), 0xCBF43926u);
  const uint32_t presets[] = {0, 0x12345678, 0xFFFFFFFF};
  for (uint32_t preset : presets) EXPECT_EQ(Crc32(preset, nullptr, 0), 0u);
  const Bytes bytes = RandomBytes(16 + 4096, 1), large = RandomBytes(size_t{1024} * 1024 + 7, 2);
  for (size_t offset = 0; offset < 16; ++offset)
    for (size_t n = 0; n <= 300; ++n) {
      const uint32_t preset = presets[(offset + n) % 3];
      ASSERT_EQ(crc32_detail::Corto(preset, bytes.data() + offset, n), Zlib(preset, bytes.data() + offset, n))
          << n;
    }
  Crc32Via fastest = Crc32Via::Portabile;
  for (Crc32Via via : {Crc32Via::Portabile, Crc32Via::Clmul, Crc32Via::Vpclmul, Crc32Via::Arm}) {
    if (!Crc32Disponibile(via)) continue;
    fastest = via;
    SCOPED_TRACE(static_cast<int>(via));
    for (size_t offset = 0; offset < 16; ++offset)
      for (size_t n = 0; n <= 4096; ++n) {
        const uint32_t preset = presets[(offset + n) % 3];
        const unsigned char* p = bytes.data() + offset;
        ASSERT_EQ(Crc32Con(via, preset, p, n), Zlib(preset, p, n)) << "offset " << offset << " length " << n;
      }
    for (size_t n : {size_t{64} * 1024, large.size()})
      for (uint32_t preset : presets)
        EXPECT_EQ(Crc32Con(via, preset, large.data(), n), Zlib(preset, large.data(), n));
  }
  EXPECT_EQ(Crc32Scelta(), fastest);  // the fastest that the processor has
}

// Texts of a Latin-1 locale (generated by the build for the tests, LOCPATH)
// convert both ways; a text that cannot be converted is kept as it was.
TEST(IStrConv, Latin1LocaleConvertsBothWays) {
  const std::string saved = setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(setlocale(LC_CTYPE, "en_US.ISO-8859-1"), nullptr) << "test locale missing";
  const std::string utf8 = "N\xC3\xBCrburgring Gro\xC3\x9F", latin1 = "N\xFCrburgring Gro\xDF",
                    euro = "\xE2\x82\xAC 10";
  EXPECT_EQ(IStrConv::convert_stringa_to_utf8(latin1), utf8);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(utf8), latin1);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(euro), euro);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(""), "");
  setlocale(LC_CTYPE, saved.c_str());
}

}  // namespace
