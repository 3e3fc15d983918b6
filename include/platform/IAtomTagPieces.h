#ifndef VEKTKK_PLATFORM_IATOMTAGPIECES_H
#define VEKTKK_PLATFORM_IATOMTAGPIECES_H

#include <stddef.h>
#include <stdint.h>

#include <string>

#include "../VekTkkExport.h"

// An optional capability of an atom-tag decoder or encoder: one atom taken
// as its header, its payload in any number of pieces, and its footer. A
// reader can then bring payloads straight into the records that keep them,
// and a writer can send them straight from there, without a copy of the
// whole file in between.
//
// The library asks the decoder and encoder it creates for it with
// dynamic_cast; one that lacks it is used through decode() and append()
// alone, with the same results. Header and footer sizes are those of
// IAtomTagDecoderBin::GetSizeHeader() and GetSizeFooter().
class VEKTKK_API IAtomTagPieces {
 public:
  virtual ~IAtomTagPieces();

  // The tag and payload size that `header` holds.
  virtual void parseHeader(const unsigned char* header, std::string& tag, uint32_t& size) = 0;
  // Writes the header of an atom; false (nothing written) for a tag of more
  // than 4 characters.
  virtual bool makeHeader(const std::string& tag, uint32_t size, unsigned char* header) = 0;

  // The check that the footer carries, computed over the header and then the
  // payload's pieces in order: start from checkBegin(header) and pass each
  // piece through checkAdd. Pieces may be of any size, empty ones included.
  virtual uint32_t checkBegin(const unsigned char* header) = 0;
  virtual uint32_t checkAdd(uint32_t check, const void* piece, size_t size) = 0;
  // Writes the footer for a finished check, or tells whether `footer` is it.
  virtual void makeFooter(uint32_t check, unsigned char* footer) = 0;
  virtual bool footerMatches(uint32_t check, const unsigned char* footer) = 0;
};

#endif  // VEKTKK_PLATFORM_IATOMTAGPIECES_H
