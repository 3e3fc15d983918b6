#ifndef VEKTKK_PLATFORM_ATOMTAG_CRC32ZLIB_H
#define VEKTKK_PLATFORM_ATOMTAG_CRC32ZLIB_H

#include <stddef.h>
#include <stdint.h>

#include <zlib.h>

namespace vekatomtag {
namespace crc32_detail {

// zlib's crc32 over any length: its own length type is 32-bit. The
// reference and the portable way.
inline uint32_t Zlib(uint32_t crc, const unsigned char* p, size_t n) {
  constexpr size_t kChunk = size_t{1} << 30;
  uLong c = crc;
  for (; n > kChunk; n -= kChunk, p += kChunk) c = crc32(c, p, static_cast<uInt>(kChunk));
  return static_cast<uint32_t>(crc32(c, p, static_cast<uInt>(n)));
}

}  // namespace crc32_detail
}  // namespace vekatomtag

#endif  // VEKTKK_PLATFORM_ATOMTAG_CRC32ZLIB_H
