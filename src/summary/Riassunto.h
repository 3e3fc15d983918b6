#ifndef VEKTKK_SRC_SUMMARY_RIASSUNTO_H
#define VEKTKK_SRC_SUMMARY_RIASSUNTO_H

// What the summary's operations share: the finder predicates, the four
// orderings, and the tables that find a record again by its bytes or by its
// file name in constant time.

#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

#include "GuidTkk.h"
#include "IFileRiassuntivo.h"

namespace vektkk {
namespace riassunto {

using Lista = std::vector<_SDatoRiassuntivo*>;

// ---- Finder predicates; each is false for a null entry. ----

// Matches the records of a file name: its first 8 characters, or 8 zero
// bytes when the name is shorter.
struct STrovaNomeFile {
  char Nome[8];
  explicit STrovaNomeFile(const std::string& nome) {
    memset(Nome, 0, sizeof Nome);
    if (nome.size() >= sizeof Nome) memcpy(Nome, nome.data(), sizeof Nome);
  }
  bool operator()(const _SDatoRiassuntivo* r) const {
    return r != nullptr && memcmp(r->FileName, Nome, sizeof Nome) == 0;
  }
};

struct STrovaGuidTkk {
  _UGuidTkk Guid;
  explicit STrovaGuidTkk(const _UGuidTkk& guid) : Guid(guid) {}
  bool operator()(const _SDatoRiassuntivo* r) const {
    return r != nullptr && memcmp(r->Guid.Byte, Guid.Byte, 4) == 0 &&
           memcmp(r->Guid.Byte + 4, Guid.Byte + 4, 4) == 0;
  }
};

struct STrovaIdxVariante {
  int Idx;
  explicit STrovaIdxVariante(int idx) : Idx(idx) {}
  bool operator()(const _SDatoRiassuntivo* r) const {
    return r != nullptr && static_cast<int>(r->VariantIdx) == Idx;
  }
};

// The 8 bytes of a file name as one number (equal names, equal numbers).
inline uint64_t ChiaveNome(const char* nome8) {
  uint64_t k;
  memcpy(&k, nome8, sizeof k);
  return k;
}

// ---- Orderings of the sorted sets ----

enum class Ordine { AlfabeticoConNazione, AlfabeticoSenzaNazione, LatLon, Guid };

// The strict less-than of an ordering, exactly as devices sort. String
// fields compare as C strings of unsigned bytes from the field on, reading
// into the next fields up to the first zero byte; unlike a bare strcmp they
// stop at the end of the record (a record without any zero byte after the
// field compares as if one followed it).
bool Precede(Ordine ordine, const _SDatoRiassuntivo& a, const _SDatoRiassuntivo& b);

// Positions of `lista` in the order `ordine`: records that compare equal keep
// their order in the list (the sort is stable); null entries come last.
std::vector<uint32_t> Ordina(const Lista& lista, Ordine ordine);

// For every entry of `lista`, the position of the first entry with the same
// 128 bytes (itself when it is the first); null entries get UINT32_MAX.
// `ordinati` is `lista` in an order by an exact key (LatLon or Guid) and
// `chiavi` the keys of its non-null records, in that order.
std::vector<uint32_t> PrimiUguali(const Lista& lista, const std::vector<uint32_t>& ordinati,
                                  const std::vector<uint64_t>& chiavi);
// Ordina, also giving the first key of every non-null record in the order.
std::vector<uint32_t> OrdinaEChiavi(const Lista& lista, Ordine ordine,
                                    std::vector<uint64_t>* chiaviOrdinate);

// For every non-null record of `a`, the position in `b` of the first record
// with the same 128 bytes, counted over every entry of `b` and modulo 65536,
// or 0xFFFF when there is none: the cross-index file's contents.
std::vector<uint16_t> IndiciIncrociati(const Lista& a, const Lista& b);

// One sorted set computed in memory: the records in the primary
// order and the two cross-indexes (empty when not asked for).
struct InsiemeOrdinato {
  Lista Primario;
  std::vector<uint16_t> Indice2;
  std::vector<uint16_t> Indice3;
};
InsiemeOrdinato CalcolaInsieme(const Lista& riassunti, Ordine primo, Ordine secondo,
                               Ordine terzo, bool conIndice2, bool conIndice3);

// The text listing of `lista` (docs/summary-format.md); `nulli` counts the
// null entries left out.
std::string TestoRiassuntivo(const Lista& lista, size_t& nulli);

}  // namespace riassunto
}  // namespace vektkk

#endif  // VEKTKK_SRC_SUMMARY_RIASSUNTO_H
