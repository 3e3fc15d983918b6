#ifndef VEKTKK_PLATFORM_ATOMTAG_ATOMTAGPIECES_H
#define VEKTKK_PLATFORM_ATOMTAG_ATOMTAGPIECES_H

#include "platform/IAtomTagPieces.h"

namespace vekatomtag {

// Atoms in pieces for this container's layout (AtomTagFormat.h); its
// decoder and encoder both offer it.
class AtomTagPieces : public IAtomTagPieces {
 public:
  void parseHeader(const unsigned char* header, std::string& tag, uint32_t& size) override;
  bool makeHeader(const std::string& tag, uint32_t size, unsigned char* header) override;
  uint32_t checkBegin(const unsigned char* header) override;
  uint32_t checkAdd(uint32_t check, const void* piece, size_t size) override;
  void makeFooter(uint32_t check, unsigned char* footer) override;
  bool footerMatches(uint32_t check, const unsigned char* footer) override;
};

}  // namespace vekatomtag

#endif  // VEKTKK_PLATFORM_ATOMTAG_ATOMTAGPIECES_H
