#ifndef VEKTKK_PLATFORM_ATOMTAG_CRC32X86_H
#define VEKTKK_PLATFORM_ATOMTAG_CRC32X86_H

// CRC-32 on x86-64 by folding with carry-less multiplication: 128 bits at a
// time with PCLMULQDQ, 512 bits at a time with VPCLMULQDQ on AVX-512. Only
// Crc32.h includes this; it chooses between them at run time.

#include <stddef.h>
#include <stdint.h>

#include <immintrin.h>

#include "Crc32Corto.h"

namespace vekatomtag {
namespace crc32_detail {

// Lanes are 16 bytes loaded little-endian, so bit j of a lane is the
// coefficient of x^(127-j): the low half is the half that comes first in the
// data, the higher powers. Each constant below is a polynomial modulo
// P = x^32 + 0x04C11DB7, bit-reflected as a 33-bit number (x^0 at bit 32),
// so that the carry-less product of a 64-bit half by it lines up with a
// lane. Folding a lane forward by D bits multiplies its low half by
// x^(D+32) mod P and its high half by x^(D-32) mod P.
constexpr long long kFold2048Lo = 0x11542778A;  // x^(2048+32) mod P
constexpr long long kFold2048Hi = 0x1322D1430;  // x^(2048-32) mod P
constexpr long long kFold512Lo = 0x154442BD4;   // x^(512+32) mod P
constexpr long long kFold512Hi = 0x1C6E41596;   // x^(512-32) mod P
constexpr long long kFold384Lo = 0x03DB1ECDC;   // x^(384+32) mod P
constexpr long long kFold384Hi = 0x174359406;   // x^(384-32) mod P
constexpr long long kFold256Lo = 0x0F1DA05AA;   // x^(256+32) mod P
constexpr long long kFold256Hi = 0x15A546366;   // x^(256-32) mod P
constexpr long long kFold128Lo = 0x1751997D0;   // x^(128+32) mod P
constexpr long long kFold128Hi = 0x0CCAA009E;   // x^(128-32) mod P
constexpr long long kFold64 = 0x163CD6124;      // x^64 mod P
constexpr long long kMu = 0x1F7011641;          // x^64 div P
constexpr long long kPoly = 0x1DB710641;        // P

// Below these lengths a path does not pay for setting up its registers.
constexpr size_t kMinClmul = 64;
constexpr size_t kMinVpclmul = 256;

#define VEKATOMTAG_CLMUL __attribute__((target("pclmul,sse4.1")))
#define VEKATOMTAG_VPCLMUL \
  __attribute__((target("avx512f,avx512bw,avx512vl,vpclmulqdq,pclmul,sse4.1")))

VEKATOMTAG_CLMUL inline __m128i Load(const unsigned char* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i_u*>(p));  // the unaligned type
}

// x carried forward by the distance that k encodes, added to next.
VEKATOMTAG_CLMUL inline __m128i Fold(__m128i x, __m128i k, __m128i next) {
  return _mm_xor_si128(
      _mm_xor_si128(_mm_clmulepi64_si128(x, k, 0x00), _mm_clmulepi64_si128(x, k, 0x11)), next);
}

// The CRC of a register that holds the data so far, then of the n < 64
// bytes left at p.
VEKATOMTAG_CLMUL inline uint32_t Finisci(__m128i x, const unsigned char* p, size_t n) {
  const __m128i k128 = _mm_set_epi64x(kFold128Hi, kFold128Lo);
  const __m128i low32 = _mm_set_epi32(0, 0, 0, -1);
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
  return Corto(~reg, p, n);
}

// Four lanes of 128 bits, 64 bytes at a time. The loads need no alignment.
VEKATOMTAG_CLMUL inline uint32_t Clmul(uint32_t crc, const unsigned char* p, size_t n) {
  if (n < kMinClmul) return Corto(crc, p, n);
  const __m128i k512 = _mm_set_epi64x(kFold512Hi, kFold512Lo);
  const __m128i k128 = _mm_set_epi64x(kFold128Hi, kFold128Lo);

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
  return Finisci(Fold(Fold(Fold(x0, k128, x1), k128, x2), k128, x3), p, n);
}

VEKATOMTAG_VPCLMUL inline __m512i Load512(const unsigned char* p) {
  return _mm512_loadu_si512(p);
}

// GCC 12 warns, wrongly, that the AVX-512 intrinsics inlined below read an
// uninitialised register: their headers start some results from an undefined
// value that every lane then overwrites.
// Clang knows neither the warning nor the fault.
#pragma GCC diagnostic push
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

// Lane i of a register.
template <int i>
VEKATOMTAG_VPCLMUL inline __m128i Lane(__m512i x) {
  return _mm512_extracti32x4_epi32(x, i);
}

// The same pair of constants in each of the four lanes.
VEKATOMTAG_VPCLMUL inline __m512i Quattro(long long hi, long long lo) {
  return _mm512_set_epi64(hi, lo, hi, lo, hi, lo, hi, lo);
}

VEKATOMTAG_VPCLMUL inline __m512i Fold512(__m512i x, __m512i k, __m512i next) {
  // 0x96: the exclusive or of all three operands.
  return _mm512_ternarylogic_epi64(_mm512_clmulepi64_epi128(x, k, 0x00),
                                   _mm512_clmulepi64_epi128(x, k, 0x11), next, 0x96);
}

// Four registers of four lanes each, 256 bytes at a time; then one register,
// 64 bytes at a time; its lanes are folded into one and the 128-bit path
// finishes.
VEKATOMTAG_VPCLMUL inline uint32_t Vpclmul(uint32_t crc, const unsigned char* p, size_t n) {
  if (n < kMinVpclmul) return Clmul(crc, p, n);
  const __m512i k2048 = Quattro(kFold2048Hi, kFold2048Lo);
  const __m512i k512 = Quattro(kFold512Hi, kFold512Lo);

  __m512i x0 = _mm512_xor_si512(Load512(p), _mm512_castsi128_si512(
                                                _mm_cvtsi32_si128(static_cast<int>(~crc))));
  __m512i x1 = Load512(p + 64);
  __m512i x2 = Load512(p + 128);
  __m512i x3 = Load512(p + 192);
  for (p += 256, n -= 256; n >= 256; p += 256, n -= 256) {
    x0 = Fold512(x0, k2048, Load512(p));
    x1 = Fold512(x1, k2048, Load512(p + 64));
    x2 = Fold512(x2, k2048, Load512(p + 128));
    x3 = Fold512(x3, k2048, Load512(p + 192));
  }
  __m512i x = Fold512(Fold512(Fold512(x0, k512, x1), k512, x2), k512, x3);
  for (; n >= 64; p += 64, n -= 64) x = Fold512(x, k512, Load512(p));

  // Lanes 0, 1 and 2 are carried forward by 384, 256 and 128 bits onto
  // lane 3 (a zero constant leaves lane 3 out of the products).
  const __m512i kLanes = _mm512_set_epi64(0, 0, kFold128Hi, kFold128Lo, kFold256Hi, kFold256Lo,
                                          kFold384Hi, kFold384Lo);
  const __m512i t = Fold512(x, kLanes, _mm512_setzero_si512());
  const __m128i uno = _mm_xor_si128(_mm_xor_si128(Lane<0>(t), Lane<1>(t)),
                                    _mm_xor_si128(Lane<2>(t), Lane<3>(x)));
  return Finisci(uno, p, n);
}

#pragma GCC diagnostic pop

#undef VEKATOMTAG_CLMUL
#undef VEKATOMTAG_VPCLMUL

inline bool HasClmul() {
  __builtin_cpu_init();
  return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
}

inline bool HasVpclmul() {
  __builtin_cpu_init();
  return HasClmul() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
         __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("vpclmulqdq");
}

}  // namespace crc32_detail
}  // namespace vekatomtag

#endif  // VEKTKK_PLATFORM_ATOMTAG_CRC32X86_H
