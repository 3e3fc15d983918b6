#ifndef VEKTKK_SRC_TRACKFILE_PEZZITRACK_H
#define VEKTKK_SRC_TRACKFILE_PEZZITRACK_H

#include <stddef.h>
#include <sys/uio.h>

#include <string>
#include <vector>

#include "CFileTkk.h"
#include "TrackMemoryRecords.h"

class IAtomTagPieces;

// A track file as the pieces that writev() sends in order: each atom's
// header, its payload straight from the record that keeps it, its footer.
// Only headers, footers and logo names are made here; the pieces point into
// the records, which must stay unchanged until the bytes are written.
namespace vektkk {

class PezziTrack {
 public:
  // The atoms in the order readers expect: "Ptkk", per variant "Vnfo",
  // "V_sw", "Vidx" (a missing variant skipped), the shapes, the road-surface
  // lists, and (unless `logoEsterno`) the logos worth saving. False when an
  // atom cannot be made (a payload over 4 GB).
  bool Componi(IAtomTagPieces& pezzi, const _STagInfoFileTKK& info,
               const std::vector<STagsInfoVariante*>& varianti,
               const std::vector<CFileTkk::SPuntiTracciato*>& punti,
               const std::vector<CFileTkk::SFondiStradali*>& fondi,
               const std::vector<SLogo*>& loghi, bool logoEsterno);
  // The whole file already in one buffer.
  void Intero(const unsigned char* bytes, size_t size);

  const iovec* Pezzi() const { return pezzi_.data(); }
  size_t Numero() const { return pezzi_.size(); }

 private:
  bool Atomo(IAtomTagPieces& pezzi, const char* tag, const iovec* payload, size_t n);

  std::vector<iovec> pezzi_;
  std::vector<unsigned char> cornici_;  // headers and footers
  size_t usate_ = 0;                    // bytes of cornici_ taken
  std::vector<std::string> nomiLogo_;   // each with its zero byte
};

}  // namespace vektkk

#endif  // VEKTKK_SRC_TRACKFILE_PEZZITRACK_H
