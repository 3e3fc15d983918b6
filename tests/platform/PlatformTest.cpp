#include <gtest/gtest.h>
#include <locale.h>
#include <zlib.h>

#include <memory>
#include <random>

#include "atomtag/Crc32.h"
#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"
#include "platform/IAtomTagPieces.h"
#include "platform/IStrConv.h"

namespace {

using Bytes = std::vector<unsigned char>;
using namespace vekatomtag;

// A flipped bit anywhere, or a size beyond the buffer (also one that wraps
// around with the header and footer on a 32-bit processor), is detected. The
// layout, what the atoms hold and cut or longer files are checked through the
// track files (tests/trackfile, also with a container of decode() alone).
TEST(AtomTag, DamageIsDetected) {
  std::unique_ptr<IAtomTagEncoderBin> encoder(IAtomTagEncoderBin::CreateMe());
  std::unique_ptr<IAtomTagDecoderBin> decoder(IAtomTagDecoderBin::CreateMe());
  Bytes buffer;
  ASSERT_TRUE(encoder->append(buffer, "pts", "abc", 3, 0) && encoder->append(buffer, "e", nullptr, 0, 0));
  unsigned char header[8];
  EXPECT_FALSE(encoder->append(buffer, "LAPSX", "abc", 3, 0) ||
               encoder->append(buffer, "pts", nullptr, 1, 0) ||
               dynamic_cast<IAtomTagPieces&>(*decoder).makeHeader("LAPSX", 3, header));
  std::vector<SAtomTag> atoms;
  EXPECT_TRUE(decoder->decode(buffer.data(), buffer.size(), atoms) && decoder->decode(nullptr, 0, atoms) &&
              !decoder->decode(nullptr, 1, atoms));
  for (size_t i = 0; i < buffer.size(); ++i) {
    Bytes bad = buffer;
    bad[i] ^= static_cast<unsigned char>(1u << (i % 8));
    EXPECT_FALSE(decoder->decode(bad.data(), bad.size(), atoms)) << "bit flipped in byte " << i;
  }
  for (uint32_t size : {0xFFFFFFF0u, 0xFFFFFFF4u, 0xFFFFFFF8u, 0xFFFFFFFFu, 4u}) {
    Bytes bad = buffer;
    for (int i = 0; i < 4; ++i) bad[4 + i] = static_cast<unsigned char>(size >> (8 * i));
    EXPECT_FALSE(decoder->decode(bad.data(), bad.size(), atoms)) << size;
  }
}

// Every way this machine has, forced one at a time, across each way's
// cut-overs (blocks of 256, 64, 16 and 8 bytes, the tails, the tables of
// short buffers) from every alignment, then on a large buffer.
TEST(Crc32, EveryWayMatchesZlib) {
  const uint32_t presets[] = {0, 0x12345678, 0xFFFFFFFF};
  Bytes bytes(size_t{1024} * 1024 + 7);
  std::mt19937 rng(1);
  for (auto& b : bytes) b = static_cast<unsigned char>(rng());
  for (uint32_t preset : presets) EXPECT_EQ(Crc32(preset, nullptr, 0), 0u);
  for (Crc32Via via : {Crc32Via::Portabile, Crc32Via::Clmul, Crc32Via::Vpclmul, Crc32Via::Arm}) {
    if (!Crc32Disponibile(via)) continue;
    for (size_t offset = 0; offset < 16; ++offset)
      for (size_t n = 0; n <= 4096; ++n) {
        const uint32_t preset = presets[(offset + n) % 3];
        ASSERT_EQ(Crc32Con(via, preset, &bytes[offset], n),
                  crc32(preset, &bytes[offset], static_cast<uInt>(n)))
            << static_cast<int>(via) << " offset " << offset << " length " << n;
      }
    EXPECT_EQ(Crc32Con(via, 7, bytes.data(), bytes.size()),
              crc32(7, bytes.data(), static_cast<uInt>(bytes.size())));
  }
}

// Texts are kept as UTF-8 and given to the host in its locale's character
// set: Latin-1 both ways, and a text with a character Latin-1 lacks
// unchanged. (In the "C" locale a conversion, were it tried, would fail on
// any byte above 127 and give the text unchanged as well.)
TEST(IStrConv, Latin1LocaleConvertsBothWaysWholeOrNothing) {
  const std::string saved = setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(setlocale(LC_CTYPE, "en_US.ISO-8859-1"), nullptr) << "test locale missing";
  const std::string utf8 = "N\xC3\xBCrburgring Gro\xC3\x9F", latin1 = "N\xFCrburgring Gro\xDF";
  EXPECT_EQ(IStrConv::convert_stringa_to_utf8(latin1), utf8);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(utf8), latin1);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa("\xE2\x82\xAC 10"), "\xE2\x82\xAC 10");
  setlocale(LC_CTYPE, saved.c_str());
}

}  // namespace
