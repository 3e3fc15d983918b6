#ifndef VEKTKK_SRC_TRACKFILE_ATOMILETTI_H
#define VEKTKK_SRC_TRACKFILE_ATOMILETTI_H

#include <stddef.h>
#include <stdint.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "TrackMemoryRecords.h"

class IAtomTagDecoderBin;
class IAtomTagPieces;

// The atoms of a track file as a read brings them in, before they become the
// object's records: the fixed records as bytes, shapes, road-surface lists
// and logos already in the records that will keep them. Nothing reaches the
// object, nor the disk, until the whole file has been checked.
namespace vektkk {

// What an atom that a read keeps holds, told by its tag and size once.
enum class Genere { File, VarianteFw, VarianteSw, Indici, Punti, Fondi, Logo };

struct AtomoLetto {
  Genere Tipo = Genere::File;
  uint32_t Dim = 0;
  // A fixed record ("Ptkk", "Vnfo", "V_sw", "Vidx" of their sizes): its bytes.
  const unsigned char* Dati = nullptr;
  // At most one of these, owned until taken.
  CFileTkk::SPuntiTracciato* Punti = nullptr;
  CFileTkk::SFondiStradali* Fondi = nullptr;
  SLogo* Logo = nullptr;
  std::string NomeLogo;  // with Logo: the name stored before the image
};

// Records of an object's previous read, filled again by the next one so that
// reading a file again allocates (and faults in) nothing new. The records not
// used again are freed with the stock.
template <typename T>
class Scorta {
 public:
  explicit Scorta(std::vector<T*>& lista) { usati_.swap(lista); }
  ~Scorta() {
    for (size_t i = prossimo_; i < usati_.size(); ++i) delete usati_[i];
  }
  Scorta(const Scorta&) = delete;
  Scorta& operator=(const Scorta&) = delete;
  T* Prendi() { return prossimo_ < usati_.size() ? usati_[prossimo_++] : new T; }

 private:
  std::vector<T*> usati_;
  size_t prossimo_ = 0;
};

struct Scorte {
  Scorta<CFileTkk::SPuntiTracciato>& Punti;
  Scorta<CFileTkk::SFondiStradali>& Fondi;
  Scorta<SLogo>& Loghi;
};

class AtomiLetti {
 public:
  AtomiLetti() = default;
  ~AtomiLetti();
  AtomiLetti(const AtomiLetti&) = delete;
  AtomiLetti& operator=(const AtomiLetti&) = delete;

  // In file order (only the atoms a read uses). A deque, so that growing it
  // never holds an old and a new copy at once: a file of many small atoms
  // would otherwise peak at three times the list.
  std::deque<AtomoLetto> Atomi;
  std::vector<unsigned char> Piccoli;  // the fixed records' bytes
  std::unique_ptr<unsigned char[]> Intero;  // the whole file, when decoded at once
};

enum class EsitoAtomi {
  Ok,
  Corto,     // the file ended (or failed) before the size it had when opened
  NonValido  // not a sequence of whole atoms with correct checks
};

// Reads the `size` bytes of the open file `fd` atom by atom: fixed records
// through a small buffer, larger payloads straight into their records, each
// atom checked in place. A size field is never trusted beyond the bytes left
// in the file. With `senzaLogo` logos are checked but not kept.
EsitoAtomi LeggiAtomi(int fd, uint64_t size, IAtomTagPieces& pezzi, bool senzaLogo,
                      const Scorte& scorte, AtomiLetti& out);

// The same for a container without that capability: the whole file read
// into one buffer and decoded at once, the payloads then copied out.
EsitoAtomi DecodificaAtomi(int fd, uint64_t size, IAtomTagDecoderBin& decoder, bool senzaLogo,
                           const Scorte& scorte, AtomiLetti& out);

}  // namespace vektkk

#endif  // VEKTKK_SRC_TRACKFILE_ATOMILETTI_H
