#ifndef VEKTKK_PLATFORM_ATOMTAG_CRC32ARM_H
#define VEKTKK_PLATFORM_ATOMTAG_CRC32ARM_H

// CRC-32 with the CRC32 instructions of ARMv8, in 64-bit or 32-bit state
// (little-endian). They are optional before ARMv8.1 and absent from ARMv7,
// so unless the compiler already targets them they are compiled into this
// function alone and used where the kernel reports them (HasArmCrc). Only
// Crc32.h includes this.

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <sys/auxv.h>

#if defined(__aarch64__)
#include <arm_acle.h>
#endif

#if defined(__ARM_FEATURE_CRC32)
#define VEKATOMTAG_ARMCRC
#elif defined(__aarch64__)
#define VEKATOMTAG_ARMCRC __attribute__((target("+crc")))
#else
// 32-bit state: ARMv8 always has the floating point unit that armhf's
// calling convention needs.
#define VEKATOMTAG_ARMCRC __attribute__((target("arch=armv8-a+crc+simd")))
#endif

namespace vekatomtag {
namespace crc32_detail {

VEKATOMTAG_ARMCRC inline uint32_t Arm(uint32_t crc, const unsigned char* p, size_t n) {
  uint32_t c = ~crc;
#if defined(__aarch64__)
  for (; n > 0 && (reinterpret_cast<uintptr_t>(p) & 7) != 0; --n) c = __crc32b(c, *p++);
  for (; n >= 8; n -= 8, p += 8) {
    uint64_t v;
    memcpy(&v, p, sizeof v);
    c = __crc32d(c, v);
  }
  for (; n > 0; --n) c = __crc32b(c, *p++);
#else
  for (; n > 0 && (reinterpret_cast<uintptr_t>(p) & 3) != 0; --n)
    c = __builtin_arm_crc32b(c, *p++);
  for (; n >= 4; n -= 4, p += 4) {
    uint32_t v;
    memcpy(&v, p, sizeof v);
    c = __builtin_arm_crc32w(c, v);
  }
  for (; n > 0; --n) c = __builtin_arm_crc32b(c, *p++);
#endif
  return ~c;
}

#undef VEKATOMTAG_ARMCRC

// Whether this processor has the instructions, as the kernel reports them
// (HWCAP_CRC32 in 64-bit state, HWCAP2_CRC32 in 32-bit state).
inline bool HasArmCrc() {
#if defined(__ARM_FEATURE_CRC32)
  return true;
#elif defined(__aarch64__)
  return (getauxval(AT_HWCAP) & (1UL << 7)) != 0;
#else
  return (getauxval(AT_HWCAP2) & (1UL << 4)) != 0;
#endif
}

}  // namespace crc32_detail
}  // namespace vekatomtag

#endif  // VEKTKK_PLATFORM_ATOMTAG_CRC32ARM_H
