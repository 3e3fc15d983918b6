// Fuzz target for the atom-tag container: whatever decodes must encode back
// to the very same bytes.
//
// A tag field may hold bytes after its first zero ("p\0ts"); the decoder
// reads the tag only up to that zero, so such an atom cannot be written back
// byte for byte. For those inputs the re-encoded buffer must still decode to
// the same tags and payloads.

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <memory>
#include <vector>

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"

namespace {

// True when the tag field holds only zeros after the tag itself.
bool CanonicalTag(const SAtomTag& atom) {
  const unsigned char* field = atom.Dati - IAtomTagDecoderBin::GetSizeHeader();
  for (size_t i = atom.Tag.size(); i < 4; ++i)
    if (field[i] != 0) return false;
  return true;
}

bool SameAtoms(const std::vector<SAtomTag>& a, const std::vector<SAtomTag>& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i].Tag != b[i].Tag || a[i].Dim != b[i].Dim) return false;
    if (a[i].Dim > 0 && memcmp(a[i].Dati, b[i].Dati, a[i].Dim) != 0) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::unique_ptr<IAtomTagDecoderBin> decoder(IAtomTagDecoderBin::CreateMe());
  std::unique_ptr<IAtomTagEncoderBin> encoder(IAtomTagEncoderBin::CreateMe());
  if (!decoder || !encoder) abort();

  std::vector<SAtomTag> atoms;
  if (!decoder->decode(data, size, atoms)) return 0;

  std::vector<unsigned char> out;
  bool canonical = true;
  for (const SAtomTag& atom : atoms) {
    if (!encoder->append(out, atom.Tag, atom.Dati, atom.Dim, 0)) abort();
    canonical = canonical && CanonicalTag(atom);
  }

  if (canonical) {
    if (out.size() != size || (size > 0 && memcmp(out.data(), data, size) != 0)) abort();
  } else {
    std::vector<SAtomTag> again;
    if (!decoder->decode(out.data(), out.size(), again) || !SameAtoms(atoms, again)) abort();
  }
  return 0;
}
