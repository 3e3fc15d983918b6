#ifndef VEKTKK_PLATFORM_ATOMTAG_CRC32CORTO_H
#define VEKTKK_PLATFORM_ATOMTAG_CRC32CORTO_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace vekatomtag {
namespace crc32_detail {

// Eight tables of the reflected polynomial, made by the compiler: table k
// carries a byte k positions further. Together they take 8 bytes a step.
struct TabelleCrc {
  uint32_t t[8][256];
  constexpr TabelleCrc() : t() {
    for (uint32_t i = 0; i < 256; ++i) {
      uint32_t c = i;
      for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1u)));
      t[0][i] = c;
    }
    for (uint32_t i = 0; i < 256; ++i)
      for (int k = 1; k < 8; ++k) t[k][i] = (t[k - 1][i] >> 8) ^ t[0][t[k - 1][i] & 0xFF];
  }
};

inline constexpr TabelleCrc kTabelleCrc{};

// The CRC of a few bytes (the headers, the records' tails), where calling
// out to zlib costs more than the bytes: slicing by 8 on little-endian
// processors, a byte at a time otherwise.
inline uint32_t Corto(uint32_t crc, const unsigned char* p, size_t n) {
  const auto& t = kTabelleCrc.t;
  uint32_t c = ~crc;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  for (; n >= 8; n -= 8, p += 8) {
    uint32_t lo, hi;
    memcpy(&lo, p, 4);
    memcpy(&hi, p + 4, 4);
    lo ^= c;
    c = t[7][lo & 0xFF] ^ t[6][(lo >> 8) & 0xFF] ^ t[5][(lo >> 16) & 0xFF] ^ t[4][lo >> 24] ^
        t[3][hi & 0xFF] ^ t[2][(hi >> 8) & 0xFF] ^ t[1][(hi >> 16) & 0xFF] ^ t[0][hi >> 24];
  }
#endif
  for (; n > 0; --n) c = (c >> 8) ^ t[0][(c ^ *p++) & 0xFF];
  return ~c;
}

}  // namespace crc32_detail
}  // namespace vekatomtag

#endif  // VEKTKK_PLATFORM_ATOMTAG_CRC32CORTO_H
