#ifndef VEKTKK_PLATFORM_IATOMTAGDECODERBIN_H
#define VEKTKK_PLATFORM_IATOMTAGDECODERBIN_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "../VekTkkExport.h"

// One atom of a decoded buffer. `Dati` points into the buffer that was
// decoded and is valid only as long as that buffer.
struct SAtomTag {
  std::string Tag;             // up to 4 characters, compared exactly
  const unsigned char* Dati;   // the payload
  uint32_t Dim;                // the payload's size in bytes
};

// Reads an atom-tag container: a flat sequence of atoms, each an 8-byte
// header (the tag's 4 bytes, zero-padded; the payload size, uint32
// little-endian), the payload, and a 4-byte footer (CRC-32 of header and
// payload, little-endian).
//
// Provided by a small platform library of its own (libvekatomtag) so that a
// device can link its own implementation instead.
class VEKTKK_API IAtomTagDecoderBin {
 public:
  // A new decoder owned by the caller (delete it), or null when none can be
  // made.
  static IAtomTagDecoderBin* CreateMe();
  // Bytes of an atom's header and footer; the same for every atom.
  static unsigned int GetSizeHeader();
  static unsigned int GetSizeFooter();

  virtual ~IAtomTagDecoderBin();

  // Appends one entry per atom of `buffer`, in order. True when the whole
  // buffer is a sequence of complete atoms with correct CRCs; false on the
  // first atom cut short, a bad CRC or trailing bytes, in which case `atoms`
  // holds the atoms before the bad one. Never reads outside the buffer.
  virtual bool decode(const unsigned char* buffer, size_t length,
                      std::vector<SAtomTag>& atoms) = 0;
};

#endif  // VEKTKK_PLATFORM_IATOMTAGDECODERBIN_H
