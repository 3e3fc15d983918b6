#ifndef VEKTKK_PLATFORM_ATOMTAG_ATOMTAGFORMAT_H
#define VEKTKK_PLATFORM_ATOMTAG_ATOMTAGFORMAT_H

// Layout shared by the atom-tag decoder and encoder:
//   header  tag name (4 bytes, zero-padded) + payload size (uint32 LE)
//   payload
//   footer  CRC-32 of header and payload (uint32 LE)

#include <stddef.h>
#include <stdint.h>

#include "Crc32.h"

namespace vekatomtag {

constexpr size_t kSizeTag = 4;
constexpr size_t kSizeHeader = 8;
constexpr size_t kSizeFooter = 4;

inline void PutLe32(unsigned char* p, uint32_t v) {
  p[0] = static_cast<unsigned char>(v);
  p[1] = static_cast<unsigned char>(v >> 8);
  p[2] = static_cast<unsigned char>(v >> 16);
  p[3] = static_cast<unsigned char>(v >> 24);
}

inline uint32_t GetLe32(const unsigned char* p) {
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
         static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

// Characters of the tag in a header: up to the first zero of its four bytes.
inline size_t TagLength(const unsigned char* header) {
  size_t n = 0;
  while (n < kSizeTag && header[n] != 0) ++n;
  return n;
}

// CRC-32 of a header followed by `size` payload bytes. The payload is left
// out when empty: Crc32, like zlib, treats a null buffer as a request for the
// initial value and would discard the header's CRC.
inline uint32_t AtomCrc(const unsigned char* header, const unsigned char* payload,
                        uint32_t size) {
  uint32_t crc = Crc32(0, header, kSizeHeader);
  if (size > 0) crc = Crc32(crc, payload, size);
  return crc;
}

}  // namespace vekatomtag

#endif  // VEKTKK_PLATFORM_ATOMTAG_ATOMTAGFORMAT_H
