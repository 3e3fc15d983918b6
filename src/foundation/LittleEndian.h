#ifndef VEKTKK_SRC_FOUNDATION_LITTLEENDIAN_H
#define VEKTKK_SRC_FOUNDATION_LITTLEENDIAN_H

#include <stddef.h>
#include <stdint.h>

// Little-endian integers in byte buffers, independent of the host's byte
// order. Encode/Decode are unchecked: the caller has already made sure that
// the bytes are there.
namespace vektkk {

inline void EncodeFixed16(unsigned char* p, uint16_t v) {
  p[0] = static_cast<unsigned char>(v);
  p[1] = static_cast<unsigned char>(v >> 8);
}

inline void EncodeFixed32(unsigned char* p, uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<unsigned char>(v >> (8 * i));
}

inline void EncodeFixed64(unsigned char* p, uint64_t v) {
  for (int i = 0; i < 8; ++i) p[i] = static_cast<unsigned char>(v >> (8 * i));
}

inline uint16_t DecodeFixed16(const unsigned char* p) {
  return static_cast<uint16_t>(p[0] | (p[1] << 8));
}

inline uint32_t DecodeFixed32(const unsigned char* p) {
  uint32_t v = 0;
  for (int i = 3; i >= 0; --i) v = (v << 8) | p[i];
  return v;
}

inline uint64_t DecodeFixed64(const unsigned char* p) {
  uint64_t v = 0;
  for (int i = 7; i >= 0; --i) v = (v << 8) | p[i];
  return v;
}

}  // namespace vektkk

#endif  // VEKTKK_SRC_FOUNDATION_LITTLEENDIAN_H
