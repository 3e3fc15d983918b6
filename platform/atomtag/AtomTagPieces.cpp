#include "AtomTagPieces.h"

#include <string.h>

#include "AtomTagFormat.h"

IAtomTagPieces::~IAtomTagPieces() = default;

namespace vekatomtag {

void AtomTagPieces::parseHeader(const unsigned char* header, std::string& tag, uint32_t& size) {
  tag.assign(reinterpret_cast<const char*>(header), TagLength(header));
  size = GetLe32(header + kSizeTag);
}

bool AtomTagPieces::makeHeader(const std::string& tag, uint32_t size, unsigned char* header) {
  if (tag.size() > kSizeTag) return false;
  memset(header, 0, kSizeTag);
  memcpy(header, tag.data(), tag.size());
  PutLe32(header + kSizeTag, size);
  return true;
}

uint32_t AtomTagPieces::checkBegin(const unsigned char* header) {
  return Crc32(0, header, kSizeHeader);
}

// An empty piece leaves the check alone (Crc32 would give 0 for a null one).
uint32_t AtomTagPieces::checkAdd(uint32_t check, const void* piece, size_t size) {
  return size == 0 ? check : Crc32(check, static_cast<const unsigned char*>(piece), size);
}

void AtomTagPieces::makeFooter(uint32_t check, unsigned char* footer) { PutLe32(footer, check); }

bool AtomTagPieces::footerMatches(uint32_t check, const unsigned char* footer) {
  return GetLe32(footer) == check;
}

}  // namespace vekatomtag
