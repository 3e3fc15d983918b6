#ifndef VEKTKK_PLATFORM_ATOMTAG_CRC32ARM_H
#define VEKTKK_PLATFORM_ATOMTAG_CRC32ARM_H

// CRC-32 with the CRC32 instructions of ARMv8 (little-endian). Only Crc32.h
// includes this, where the compiler targets them.

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <arm_acle.h>

namespace vekatomtag {
namespace crc32_detail {

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

}  // namespace crc32_detail
}  // namespace vekatomtag

#endif  // VEKTKK_PLATFORM_ATOMTAG_CRC32ARM_H
