#ifndef VEKTKK_PLATFORM_ATOMTAG_CRC32_H
#define VEKTKK_PLATFORM_ATOMTAG_CRC32_H

// CRC-32 exactly as zlib's crc32() computes it: polynomial 0x04C11DB7 taken
// bit-reflected (0xEDB88320), register preset to 0xFFFFFFFF and the result
// inverted. It chains: Crc32(Crc32(0, a, na), b, nb) == Crc32(0, a+b, na+nb).
// As with zlib, a null buffer yields 0 whatever CRC is passed in.
//
// x86-64: buffers of 64 bytes or more are folded 512 bits at a time with
// carry-less multiplication (PCLMULQDQ and SSE4.1), chosen at run time so
// that the library still runs on processors without them. ARMv8 with the
// CRC32 extension: its CRC instructions. Otherwise, and for short buffers
// and the last few bytes: zlib, which stays the reference.
//
// Everything is defined here, inline, so that whatever is built from the
// container's sources gets the CRC with them.

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <zlib.h>

#if defined(__x86_64__) && defined(__GNUC__)
#define VEKATOMTAG_CRC32_CLMUL 1
#include <smmintrin.h>
#include <wmmintrin.h>
#elif defined(__ARM_FEATURE_CRC32) && defined(__BYTE_ORDER__) && \
    __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define VEKATOMTAG_CRC32_ARM 1
#include <arm_acle.h>
#endif

namespace vekatomtag {
namespace crc32_detail {

// zlib's crc32 over any length: its own length type is 32-bit.
inline uint32_t Zlib(uint32_t crc, const unsigned char* p, size_t n) {
  constexpr size_t kChunk = size_t{1} << 30;
  uLong c = crc;
  for (; n > kChunk; n -= kChunk, p += kChunk) c = crc32(c, p, static_cast<uInt>(kChunk));
  return static_cast<uint32_t>(crc32(c, p, static_cast<uInt>(n)));
}

#if defined(VEKATOMTAG_CRC32_CLMUL)

// Lanes are 16 bytes loaded little-endian, so bit j of a lane is the
// coefficient of x^(127-j): the low half is the half that comes first in the
// data, the higher powers. Each constant below is a polynomial modulo
// P = x^32 + 0x04C11DB7, bit-reflected as a 33-bit number (x^0 at bit 32),
// so that the carry-less product of a 64-bit half by it lines up with a
// lane. Folding a lane forward by D bits multiplies its low half by
// x^(D+32) mod P and its high half by x^(D-32) mod P.
constexpr long long kFold512Lo = 0x154442BD4;  // x^(4*128+32) mod P
constexpr long long kFold512Hi = 0x1C6E41596;  // x^(4*128-32) mod P
constexpr long long kFold128Lo = 0x1751997D0;  // x^(128+32) mod P
constexpr long long kFold128Hi = 0x0CCAA009E;  // x^(128-32) mod P
constexpr long long kFold64 = 0x163CD6124;     // x^64 mod P
constexpr long long kMu = 0x1F7011641;         // x^64 div P
constexpr long long kPoly = 0x1DB710641;       // P
constexpr size_t kMinClmul = 64;

__attribute__((target("pclmul,sse4.1"))) inline __m128i Load(const unsigned char* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// x carried forward by the distance that k encodes, added to next.
__attribute__((target("pclmul,sse4.1"))) inline __m128i Fold(__m128i x, __m128i k,
                                                              __m128i next) {
  return _mm_xor_si128(
      _mm_xor_si128(_mm_clmulepi64_si128(x, k, 0x00), _mm_clmulepi64_si128(x, k, 0x11)), next);
}

// n >= kMinClmul. The loads need no alignment.
__attribute__((target("pclmul,sse4.1"))) inline uint32_t Clmul(uint32_t crc,
                                                                const unsigned char* p,
                                                                size_t n) {
  const __m128i k512 = _mm_set_epi64x(kFold512Hi, kFold512Lo);
  const __m128i k128 = _mm_set_epi64x(kFold128Hi, kFold128Lo);
  const __m128i low32 = _mm_set_epi32(0, 0, 0, -1);

  // The preset register goes into the first four bytes.
  __m128i x0 = _mm_xor_si128(Load(p), _mm_cvtsi32_si128(static_cast<int>(~crc)));
  __m128i x1 = Load(p + 16);
  __m128i x2 = Load(p + 32);
  __m128i x3 = Load(p + 48);
  for (p += 64, n -= 64; n >= 64; p += 64, n -= 64) {
    x0 = Fold(x0, k512, Load(p));
    x1 = Fold(x1, k512, Load(p + 16));
    x2 = Fold(x2, k512, Load(p + 32));
    x3 = Fold(x3, k512, Load(p + 48));
  }
  __m128i x = Fold(Fold(Fold(x0, k128, x1), k128, x2), k128, x3);
  for (; n >= 16; p += 16, n -= 16) x = Fold(x, k128, Load(p));

  // The register is x * x^32 mod P. From 128 bits to 96: the low half times
  // x^96 mod P; to 64: the low 32 bits times x^64 mod P.
  const __m128i kReduce = _mm_set_epi64x(kFold64, kFold128Hi);
  x = _mm_xor_si128(_mm_clmulepi64_si128(x, kReduce, 0x00), _mm_srli_si128(x, 8));
  x = _mm_xor_si128(_mm_clmulepi64_si128(_mm_and_si128(x, low32), kReduce, 0x10),
                    _mm_srli_si128(x, 4));
  // Barrett: q = (first 32 bits * mu) div x^32; the remainder is what
  // adding q * P leaves in the last 32 bits.
  const __m128i kBarrett = _mm_set_epi64x(kPoly, kMu);
  const __m128i q = _mm_and_si128(
      _mm_clmulepi64_si128(_mm_and_si128(x, low32), kBarrett, 0x00), low32);
  x = _mm_xor_si128(x, _mm_clmulepi64_si128(q, kBarrett, 0x10));
  const uint32_t reg = static_cast<uint32_t>(_mm_extract_epi32(x, 1));
  return Zlib(~reg, p, n);
}

inline bool HasClmul() {
  static const bool has = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
  }();
  return has;
}

#elif defined(VEKATOMTAG_CRC32_ARM)

inline uint32_t Arm(uint32_t crc, const unsigned char* p, size_t n) {
  uint32_t c = ~crc;
  for (; n > 0 && (reinterpret_cast<uintptr_t>(p) & 7) != 0; --n) c = __crc32b(c, *p++);
  for (; n >= 8; n -= 8, p += 8) {
    uint64_t v;
    memcpy(&v, p, sizeof v);
    c = __crc32d(c, v);
  }
  for (; n > 0; --n) c = __crc32b(c, *p++);
  return ~c;
}

#endif

}  // namespace crc32_detail

inline uint32_t Crc32(uint32_t crc, const unsigned char* p, size_t n) {
  if (p == nullptr) return 0;
#if defined(VEKATOMTAG_CRC32_CLMUL)
  if (n >= crc32_detail::kMinClmul && crc32_detail::HasClmul())
    return crc32_detail::Clmul(crc, p, n);
  return crc32_detail::Zlib(crc, p, n);
#elif defined(VEKATOMTAG_CRC32_ARM)
  return crc32_detail::Arm(crc, p, n);
#else
  return crc32_detail::Zlib(crc, p, n);
#endif
}

}  // namespace vekatomtag

#endif  // VEKTKK_PLATFORM_ATOMTAG_CRC32_H
