#ifndef VEKTKK_SRC_SUMMARY_TABELLAPOSIZIONI_H
#define VEKTKK_SRC_SUMMARY_TABELLAPOSIZIONI_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <vector>

#include "IFileRiassuntivo.h"

namespace vektkk {
namespace riassunto {

// Positions in a list, found by a hash of the item they hold: a table with
// open addressing that keeps, for every distinct item, the first position
// stored for it. The caller supplies the hash and the equality (the table
// holds no items, only positions). Sized once for `elementi` positions.
class TabellaPosizioni {
 public:
  static constexpr uint32_t kNessuna = UINT32_MAX;

  explicit TabellaPosizioni(size_t elementi) {
    size_t capacita = 16;
    while (capacita < 2 * elementi) capacita <<= 1;
    Slot_.assign(capacita, Slot{0, kNessuna});
    Maschera_ = capacita - 1;
  }

  // The position stored for an item of hash `h` for which `uguale(pos)` is
  // true, or kNessuna.
  template <typename Uguale>
  uint32_t Trova(uint64_t h, Uguale uguale) const {
    for (size_t i = static_cast<size_t>(h) & Maschera_;; i = (i + 1) & Maschera_) {
      const Slot& s = Slot_[i];
      if (s.Pos == kNessuna) return kNessuna;
      if (s.Hash == static_cast<uint32_t>(h >> 32) && uguale(s.Pos)) return s.Pos;
    }
  }

  // As Trova; when nothing is found, stores `pos` and returns it.
  template <typename Uguale>
  uint32_t TrovaOInserisci(uint64_t h, uint32_t pos, Uguale uguale) {
    for (size_t i = static_cast<size_t>(h) & Maschera_;; i = (i + 1) & Maschera_) {
      Slot& s = Slot_[i];
      if (s.Pos == kNessuna) {
        s = Slot{static_cast<uint32_t>(h >> 32), pos};
        return pos;
      }
      if (s.Hash == static_cast<uint32_t>(h >> 32) && uguale(s.Pos)) return s.Pos;
    }
  }

 private:
  // The slot is chosen by the low bits of the hash and holds its high half.
  struct Slot {
    uint32_t Hash;
    uint32_t Pos;
  };
  std::vector<Slot> Slot_;
  size_t Maschera_;
};

// How many records of each file name (its 8 bytes as a number) a list
// holds. A name whose count falls to 0 is absent.
class ContaNomi {
 public:
  void Costruisci(const std::vector<_SDatoRiassuntivo*>& lista);
  void Aggiungi(uint64_t nome);
  // The count of a name, 0 when absent.
  uint32_t Quanti(uint64_t nome) const;
  // Forgets a name and marks it removed; returns how many records it had.
  uint32_t Togli(uint64_t nome);
  // Whether the name was removed since the mark was last cleared.
  bool Tolto(uint64_t nome) const;
  void TogliSegno(uint64_t nome);
  // Whether the record at position i of the list the table was built from
  // has a removed name: no search while the table has not grown since.
  bool ToltoInPosizione(size_t i, const _SDatoRiassuntivo* r) const {
    if (i >= Posizioni_.size()) return ToltoPerNome(r);
    const uint32_t slot = Posizioni_[i];
    return slot != kNessuno && Slot_[slot].Tolto;
  }
  void DimenticaPosizioni() { Posizioni_.clear(); }

 private:
  struct Slot {
    uint64_t Nome;
    uint32_t Quanti;
    bool Usato;
    bool Tolto;
  };
  static constexpr uint32_t kNessuno = 0xFFFFFFFFu;
  size_t Cerca(uint64_t nome) const;
  bool ToltoPerNome(const _SDatoRiassuntivo* r) const;
  void Dimensiona(size_t elementi);
  std::vector<Slot> Slot_;
  size_t Usati_ = 0;
  // The slot of each entry of the list the table was built from (kNessuno
  // for a null entry); dropped when the slots move.
  std::vector<uint32_t> Posizioni_;
};

inline uint64_t Mescola(uint64_t h) {
  h ^= h >> 33;
  h *= 0xff51afd7ed558ccdULL;
  h ^= h >> 33;
  h *= 0xc4ceb9fe1a85ec53ULL;
  h ^= h >> 33;
  return h;
}

// A hash of all 128 bytes of a record.
inline uint64_t HashRecord(const _SDatoRiassuntivo* r) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(r);
  uint64_t a = 0x9E3779B97F4A7C15ULL, b = 0x2545F4914F6CDD1DULL;
  for (size_t i = 0; i < sizeof(_SDatoRiassuntivo); i += 16) {
    uint64_t x, y;
    memcpy(&x, p + i, 8);
    memcpy(&y, p + i + 8, 8);
    a = (a ^ x) * 0x100000001B3ULL + (b >> 29);
    b = (b ^ y) * 0xC2B2AE3D27D4EB4FULL + (a >> 31);
  }
  return Mescola(a ^ (b * 31));
}

inline bool StessiByte(const _SDatoRiassuntivo* a, const _SDatoRiassuntivo* b) {
  return memcmp(a, b, sizeof(_SDatoRiassuntivo)) == 0;
}

}  // namespace riassunto
}  // namespace vektkk

#endif  // VEKTKK_SRC_SUMMARY_TABELLAPOSIZIONI_H
