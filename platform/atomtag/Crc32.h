#ifndef VEKTKK_PLATFORM_ATOMTAG_CRC32_H
#define VEKTKK_PLATFORM_ATOMTAG_CRC32_H

// CRC-32 exactly as zlib's crc32() computes it: polynomial 0x04C11DB7 taken
// bit-reflected (0xEDB88320), register preset to 0xFFFFFFFF and the result
// inverted. It chains: Crc32(Crc32(0, a, na), b, nb) == Crc32(0, a+b, na+nb).
// As with zlib, a null buffer yields 0 whatever CRC is passed in.
//
// Several ways compute it, the fastest that the processor has being chosen
// once at run time, so that the library still runs on processors without
// the newer instructions:
//   x86-64: folding 512 bits at a time with VPCLMULQDQ (AVX-512), or 128
//           bits at a time with PCLMULQDQ and SSE4.1 (Crc32X86.h);
//   ARM (GCC, Linux): the CRC32 instructions of ARMv8 where the processor
//           has them (Crc32Arm.h);
//   everywhere: zlib, which stays the reference.
// The folding ways take short buffers and their last bytes eight at a time
// through tables (Crc32Corto.h): a call into zlib costs more than they do.
// Tests reach each way that the machine has through Crc32Con.
//
// Everything is defined here, inline, so that whatever is built from the
// container's sources gets the CRC with them.

#include <stddef.h>
#include <stdint.h>

#include "Crc32Zlib.h"

#if defined(__x86_64__) && defined(__GNUC__)
#define VEKATOMTAG_CRC32_X86 1
#include "Crc32X86.h"
#elif (defined(__aarch64__) || defined(__arm__)) && defined(__linux__) && \
    (defined(__ARM_FEATURE_CRC32) || (defined(__GNUC__) && !defined(__clang__))) && \
    defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define VEKATOMTAG_CRC32_ARM 1
#include "Crc32Arm.h"
#endif

namespace vekatomtag {

// The ways of computing the CRC, slowest first.
enum class Crc32Via { Portabile, Clmul, Vpclmul, Arm };

namespace crc32_detail {

inline Crc32Via Migliore() {
#if defined(VEKATOMTAG_CRC32_X86)
  if (HasVpclmul()) return Crc32Via::Vpclmul;
  if (HasClmul()) return Crc32Via::Clmul;
#elif defined(VEKATOMTAG_CRC32_ARM)
  if (HasArmCrc()) return Crc32Via::Arm;
#endif
  return Crc32Via::Portabile;
}

}  // namespace crc32_detail

// Whether this build on this processor can compute the CRC that way.
inline bool Crc32Disponibile(Crc32Via via) {
  switch (via) {
    case Crc32Via::Portabile:
      return true;
#if defined(VEKATOMTAG_CRC32_X86)
    case Crc32Via::Clmul:
      return crc32_detail::HasClmul();
    case Crc32Via::Vpclmul:
      return crc32_detail::HasVpclmul();
#elif defined(VEKATOMTAG_CRC32_ARM)
    case Crc32Via::Arm:
      return crc32_detail::HasArmCrc();
#endif
    default:
      return false;
  }
}

// The way chosen for this process: the fastest available.
inline Crc32Via Crc32Scelta() {
  static const Crc32Via via = crc32_detail::Migliore();
  return via;
}

// The CRC computed that way, which must be available (Crc32Disponibile).
inline uint32_t Crc32Con(Crc32Via via, uint32_t crc, const unsigned char* p, size_t n) {
  if (p == nullptr) return 0;
  switch (via) {
#if defined(VEKATOMTAG_CRC32_X86)
    case Crc32Via::Vpclmul:
      return crc32_detail::Vpclmul(crc, p, n);
    case Crc32Via::Clmul:
      return crc32_detail::Clmul(crc, p, n);
#elif defined(VEKATOMTAG_CRC32_ARM)
    case Crc32Via::Arm:
      return crc32_detail::Arm(crc, p, n);
#endif
    default:
      return crc32_detail::Zlib(crc, p, n);
  }
}

inline uint32_t Crc32(uint32_t crc, const unsigned char* p, size_t n) {
  return Crc32Con(Crc32Scelta(), crc, p, n);
}

}  // namespace vekatomtag

#endif  // VEKTKK_PLATFORM_ATOMTAG_CRC32_H
