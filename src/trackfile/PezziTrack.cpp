#include "trackfile/PezziTrack.h"

#include <stdint.h>

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagPieces.h"
#include "platform/IStrConv.h"
#include "trackfile/LogoFiles.h"
#include "trackfile/TrackFileFormat.h"

using namespace vektkk::tkk;

namespace vektkk {
namespace {

template <typename T>
iovec Pezzo(const T* p, size_t bytes) {
  return {const_cast<T*>(p), bytes};
}

template <typename T>
iovec Pezzo(const std::vector<T>& items) {
  return Pezzo(items.data(), items.size() * sizeof(T));
}

}  // namespace

bool PezziTrack::Atomo(IAtomTagPieces& pezzi, const char* tag, const iovec* payload, size_t n) {
  uint64_t size = 0;
  for (size_t i = 0; i < n; ++i) size += payload[i].iov_len;
  if (size > 0xFFFFFFFFu) return false;
  const size_t h = IAtomTagDecoderBin::GetSizeHeader();
  unsigned char* header = cornici_.data() + usate_;
  unsigned char* footer = header + h;
  usate_ += h + IAtomTagDecoderBin::GetSizeFooter();
  if (!pezzi.makeHeader(tag, static_cast<uint32_t>(size), header)) return false;
  uint32_t check = pezzi.checkBegin(header);
  pezzi_.push_back(Pezzo(header, h));
  for (size_t i = 0; i < n; ++i) {
    check = pezzi.checkAdd(check, payload[i].iov_base, payload[i].iov_len);
    if (payload[i].iov_len > 0) pezzi_.push_back(payload[i]);
  }
  pezzi.makeFooter(check, footer);
  pezzi_.push_back(Pezzo(footer, IAtomTagDecoderBin::GetSizeFooter()));
  return true;
}

bool PezziTrack::Componi(IAtomTagPieces& pezzi, const _STagInfoFileTKK& info,
                         const std::vector<STagsInfoVariante*>& varianti,
                         const std::vector<CFileTkk::SPuntiTracciato*>& punti,
                         const std::vector<CFileTkk::SFondiStradali*>& fondi,
                         const std::vector<SLogo*>& loghi, bool logoEsterno) {
  pezzi_.clear();
  nomiLogo_.clear();
  usate_ = 0;
  // Room for every header and footer up front: the pieces point into it.
  const size_t atomi = 1 + 3 * varianti.size() + punti.size() + fondi.size() + loghi.size();
  cornici_.resize(atomi * (IAtomTagDecoderBin::GetSizeHeader() +
                           IAtomTagDecoderBin::GetSizeFooter()));
  nomiLogo_.reserve(loghi.size());
  pezzi_.reserve(3 * atomi + loghi.size());

  iovec p = Pezzo(&info, kSizeFile);
  bool ok = Atomo(pezzi, kTagFile, &p, 1);
  for (const STagsInfoVariante* v : varianti) {
    if (v == nullptr) continue;
    // Indexes are written as they stand; nothing is renumbered.
    p = Pezzo(&v->InfoFw, kSizeVarianteFw);
    ok = ok && Atomo(pezzi, kTagVarianteFw, &p, 1);
    p = Pezzo(&v->InfoSw, kSizeVarianteSw);
    ok = ok && Atomo(pezzi, kTagVarianteSw, &p, 1);
    p = Pezzo(&v->Indici, kSizeIndici);
    ok = ok && Atomo(pezzi, kTagIndici, &p, 1);
  }
  for (const CFileTkk::SPuntiTracciato* s : punti) {
    p = Pezzo(s->Punti);
    ok = ok && Atomo(pezzi, kTagPunti, &p, 1);
  }
  for (const CFileTkk::SFondiStradali* f : fondi) {
    p = Pezzo(f->Fondi);
    ok = ok && Atomo(pezzi, kTagFondi, &p, 1);
  }
  if (!logoEsterno) {
    // Logos left out here may leave IdxLogo values pointing past the written
    // "lgo" atoms; readers skip such variants, and the writer keeps the
    // indexes as they are.
    for (const SLogo* l : loghi) {
      if (!ok || !LogoDaSalvare(l)) continue;
      nomiLogo_.push_back(IStrConv::convert_stringa_to_utf8(NomeSenzaCartella(l->NomeFile)));
      const std::string& nome = nomiLogo_.back();
      // The name's own terminator is the zero byte between name and image.
      const iovec payload[2] = {Pezzo(nome.c_str(), nome.size() + 1), Pezzo(l->Dati)};
      ok = Atomo(pezzi, kTagLogo, payload, 2);
    }
  }
  return ok;
}

void PezziTrack::Intero(const unsigned char* bytes, size_t size) {
  pezzi_.assign(1, Pezzo(bytes, size));
}

}  // namespace vektkk
