#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Atom {
  std::string tag;
  std::string payload;
};

// Three atoms: a 3-byte payload, an empty one and a 4-character tag whose
// payload holds zero bytes.
const std::vector<Atom> kAtoms = {
    {"pts", "abc"}, {"e", ""}, {"LAPS", std::string("\x00\x01\xFF\x00\x7F", 5)}};

Bytes Encode(const std::vector<Atom>& atoms) {
  std::unique_ptr<IAtomTagEncoderBin> encoder(IAtomTagEncoderBin::CreateMe());
  Bytes out;
  // An empty payload is passed as null, which the encoder accepts.
  for (const Atom& a : atoms)
    EXPECT_TRUE(encoder->append(out, a.tag, a.payload.empty() ? nullptr : a.payload.data(),
                                static_cast<uint32_t>(a.payload.size()), 0));
  return out;
}

// Decodes the first `length` bytes of `buffer`; `count` receives how many
// atoms were reported.
bool Decode(const Bytes& buffer, size_t length, size_t* count = nullptr) {
  std::unique_ptr<IAtomTagDecoderBin> decoder(IAtomTagDecoderBin::CreateMe());
  std::vector<SAtomTag> atoms;
  const bool ok = decoder->decode(buffer.data(), length, atoms);
  if (count) *count = atoms.size();
  return ok;
}

void PutLe32(Bytes& b, size_t at, uint32_t v) {
  for (int i = 0; i < 4; ++i) b[at + i] = static_cast<unsigned char>(v >> (8 * i));
}

// Offsets where each atom of `atoms` starts, plus the end of the buffer.
std::vector<size_t> Boundaries(const std::vector<Atom>& atoms) {
  std::vector<size_t> at = {0};
  for (const Atom& a : atoms)
    at.push_back(at.back() + IAtomTagDecoderBin::GetSizeHeader() + a.payload.size() +
                 IAtomTagDecoderBin::GetSizeFooter());
  return at;
}

TEST(AtomTag, AppendWritesHeaderPayloadAndCrcFooter) {
  const Bytes out = Encode({{"pts", "\x01\x02\x03"}});
  // CRC-32 of the 8 header bytes and the payload, computed independently.
  const Bytes expected = {'p', 't', 's', 0, 3, 0, 0, 0, 1, 2, 3, 0x7F, 0x7A, 0x3C, 0x38};
  EXPECT_EQ(out, expected);
}

TEST(AtomTag, RoundTripKeepsTagsAndPointsIntoBuffer) {
  const Bytes buffer = Encode(kAtoms);
  const std::vector<size_t> at = Boundaries(kAtoms);
  ASSERT_EQ(buffer.size(), at.back());

  std::unique_ptr<IAtomTagDecoderBin> decoder(IAtomTagDecoderBin::CreateMe());
  std::vector<SAtomTag> atoms;
  ASSERT_TRUE(decoder->decode(buffer.data(), buffer.size(), atoms));
  ASSERT_EQ(atoms.size(), kAtoms.size());
  for (size_t i = 0; i < atoms.size(); ++i) {
    SCOPED_TRACE(kAtoms[i].tag);
    EXPECT_EQ(atoms[i].Tag, kAtoms[i].tag);
    EXPECT_EQ(atoms[i].Dati, buffer.data() + at[i] + IAtomTagDecoderBin::GetSizeHeader());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(atoms[i].Dati), atoms[i].Dim),
              kAtoms[i].payload);
  }
}

TEST(AtomTag, EmptyBufferIsAnEmptySequence) {
  std::unique_ptr<IAtomTagDecoderBin> decoder(IAtomTagDecoderBin::CreateMe());
  std::vector<SAtomTag> atoms;
  EXPECT_TRUE(decoder->decode(nullptr, 0, atoms));
  EXPECT_TRUE(atoms.empty());
}

TEST(AtomTag, TagOfFiveCharactersIsRefused) {
  std::unique_ptr<IAtomTagEncoderBin> encoder(IAtomTagEncoderBin::CreateMe());
  Bytes out = {9, 8, 7};
  EXPECT_FALSE(encoder->append(out, "LAPSX", "abc", 3, 0));
  EXPECT_EQ(out, (Bytes{9, 8, 7}));
}

// Only a prefix ending on an atom boundary is a valid (shorter) sequence;
// every cut reports the atoms that were complete before it.
TEST(AtomTag, EveryTruncationFailsExceptAtBoundaries) {
  const Bytes buffer = Encode(kAtoms);
  const std::vector<size_t> at = Boundaries(kAtoms);
  for (size_t length = 0; length <= buffer.size(); ++length) {
    SCOPED_TRACE(length);
    size_t complete = 0;
    while (complete + 1 < at.size() && at[complete + 1] <= length) ++complete;
    size_t count = 0;
    EXPECT_EQ(Decode(buffer, length, &count), at[complete] == length);
    EXPECT_EQ(count, complete);
  }
}

TEST(AtomTag, FlippedBitAnywhereIsDetected) {
  const Bytes good = Encode(kAtoms);
  const std::vector<size_t> at = Boundaries(kAtoms);
  for (size_t i = 0; i < good.size(); ++i) {
    SCOPED_TRACE(i);
    Bytes bad = good;
    bad[i] ^= static_cast<unsigned char>(1u << (i % 8));
    size_t atomsBefore = 0;
    while (at[atomsBefore + 1] <= i) ++atomsBefore;
    size_t count = 0;
    EXPECT_FALSE(Decode(bad, bad.size(), &count));
    EXPECT_EQ(count, atomsBefore);
  }
}

TEST(AtomTag, SizeFieldBeyondTheBufferFails) {
  for (uint32_t size : {0xFFFFFFF0u, 0xFFFFFFF4u, 0xFFFFFFF8u, 0xFFFFFFFFu, 4u}) {
    SCOPED_TRACE(size);
    Bytes buffer = Encode({{"pts", "abc"}});
    PutLe32(buffer, 4, size);
    EXPECT_FALSE(Decode(buffer, buffer.size()));
  }
}

TEST(AtomTag, TrailingBytesFail) {
  for (size_t extra = 1; extra < 12; ++extra) {
    SCOPED_TRACE(extra);
    Bytes buffer = Encode({{"pts", "abc"}});
    buffer.resize(buffer.size() + extra, 0);
    size_t count = 0;
    EXPECT_FALSE(Decode(buffer, buffer.size(), &count));
    EXPECT_EQ(count, 1u);
  }
}

}  // namespace
