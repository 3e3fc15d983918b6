#ifndef VEKTKK_PLATFORM_IATOMTAGENCODERBIN_H
#define VEKTKK_PLATFORM_IATOMTAGENCODERBIN_H

#include <stdint.h>

#include <string>
#include <vector>

#include "../VekTkkExport.h"

// Writes atoms in the layout that IAtomTagDecoderBin reads.
class VEKTKK_API IAtomTagEncoderBin {
 public:
  // A new encoder owned by the caller (delete it), or null when none can be
  // made.
  static IAtomTagEncoderBin* CreateMe();

  virtual ~IAtomTagEncoderBin();

  // Appends one atom (header, `size` bytes from `payload`, footer) to the
  // end of `out`. `flag` is reserved and always 0. Refuses a tag of more than
  // 4 characters, leaving `out` as it was.
  virtual bool append(std::vector<unsigned char>& out, const std::string& tag,
                      const void* payload, uint32_t size, int flag) = 0;
};

#endif  // VEKTKK_PLATFORM_IATOMTAGENCODERBIN_H
