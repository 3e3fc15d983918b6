#include "platform/IAtomTagDecoderBin.h"

#include <string.h>

#include <exception>
#include <new>

#include "AtomTagFormat.h"
#include "AtomTagPieces.h"

namespace {

using vekatomtag::GetLe32;
using vekatomtag::kSizeFooter;
using vekatomtag::kSizeHeader;
using vekatomtag::kSizeTag;

class AtomTagDecoderBin final : public IAtomTagDecoderBin, public vekatomtag::AtomTagPieces {
 public:
  bool decode(const unsigned char* buffer, size_t length,
              std::vector<SAtomTag>& atoms) override;
};

// Every bound is checked on the count of bytes left, never by forming a
// pointer past the end, so that a size field near 0xFFFFFFFF cannot wrap.
bool AtomTagDecoderBin::decode(const unsigned char* buffer, size_t length,
                               std::vector<SAtomTag>& atoms) {
  if (buffer == nullptr) return length == 0;
  const unsigned char* p = buffer;
  const unsigned char* const end = buffer + length;
  try {
    while (p != end) {
      const size_t left = static_cast<size_t>(end - p);
      if (left < kSizeHeader) return false;
      const uint32_t size = GetLe32(p + kSizeTag);
      const size_t afterHeader = left - kSizeHeader;
      if (afterHeader < kSizeFooter || afterHeader - kSizeFooter < size) return false;

      const unsigned char* payload = p + kSizeHeader;
      if (vekatomtag::AtomCrc(p, payload, size) != GetLe32(payload + size)) return false;

      SAtomTag atom;
      atom.Tag.assign(reinterpret_cast<const char*>(p), vekatomtag::TagLength(p));
      atom.Dati = payload;
      atom.Dim = size;
      atoms.push_back(atom);
      p = payload + size + kSizeFooter;
    }
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

}  // namespace

IAtomTagDecoderBin* IAtomTagDecoderBin::CreateMe() {
  return new (std::nothrow) AtomTagDecoderBin();
}

unsigned int IAtomTagDecoderBin::GetSizeHeader() { return static_cast<unsigned int>(kSizeHeader); }

unsigned int IAtomTagDecoderBin::GetSizeFooter() { return static_cast<unsigned int>(kSizeFooter); }

IAtomTagDecoderBin::~IAtomTagDecoderBin() = default;
