// Where a variant's records lie in the saved file, as summary files record
// it, and the link of the main variant to the first shape.
#include "CFileTkk.h"
#include "TrackMemoryRecords.h"
#include "platform/IAtomTagDecoderBin.h"
#include "trackfile/TrackFileFormat.h"

using namespace vektkk::tkk;

namespace {
uint32_t Header() { return IAtomTagDecoderBin::GetSizeHeader(); }
uint32_t Footer() { return IAtomTagDecoderBin::GetSizeFooter(); }
}  // namespace

uint32_t CFileTkk::GetOffsetDatiFw(short i) const {
  const uint32_t primo = Header() + Footer() + kSizeFile;
  if (i < 1 || static_cast<size_t>(i) > TagsInfoVarianti.size()) return primo;
  // Summary files store these values as they are, so the formula stays even
  // though, beyond the second variant, it adds neither the payloads nor the
  // footers of the variants before.
  const uint32_t payloadVariante = kSizeVarianteFw + kSizeVarianteSw + kSizeIndici;
  return Header() + Footer() + kSizeFile + payloadVariante + 3 * Footer() +
         static_cast<uint32_t>(i) * 3 * Header();
}

uint32_t CFileTkk::GetOffsetPti(short i) const {
  const size_t n = TagsInfoVarianti.size();
  if (n == 0 || i < 0 || static_cast<size_t>(i) >= n) return 0;
  bool qualcheForma = false;
  for (const STagsInfoVariante* v : TagsInfoVarianti)
    if (v != nullptr && v->Punti != nullptr) qualcheForma = true;
  if (!qualcheForma) return 0;

  const uint32_t atomVariante =
      3 * Header() + 3 * Footer() + kSizeVarianteFw + kSizeVarianteSw + kSizeIndici;
  uint32_t offset = Header() + Footer() + kSizeFile + static_cast<uint32_t>(n) * atomVariante;
  for (size_t k = 0; k < static_cast<size_t>(i); ++k) {
    const STagsInfoVariante* v = TagsInfoVarianti[k];
    if (v == nullptr || v->Punti == nullptr) continue;
    const uint32_t bytes = static_cast<uint32_t>(v->Punti->Punti.size() * kSizePunto);
    offset += Header() + (bytes & ~3u) + Footer();
  }
  return TagsInfoVarianti[static_cast<size_t>(i)] != nullptr ? offset : 0;
}

void CFileTkk::AssegnaPtrPunti() {
  if (TagsInfoVarianti.empty() || TagsInfoVarianti.front() == nullptr || PuntiTracciato.empty())
    return;
  STagsInfoVariante* main = TagsInfoVarianti.front();
  main->Indici = _STagIndexesVarianteTKK();
  main->Indici.IdxPunti = 0;
  main->Punti = PuntiTracciato.front();
}
