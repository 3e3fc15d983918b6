#include <string.h>

#include "summary/Riassunto.h"
#include "summary/TabellaPosizioni.h"

namespace vektkk {
namespace riassunto {

void ContaNomi::Dimensiona(size_t elementi) {
  size_t capacita = 16;
  while (capacita < 2 * elementi) capacita <<= 1;
  std::vector<Slot> vecchi;
  vecchi.swap(Slot_);
  Slot_.assign(capacita, Slot{0, 0, false});
  Usati_ = 0;
  for (const Slot& s : vecchi) {
    if (!s.Usato) continue;
    Slot& nuovo = Slot_[Cerca(s.Nome)];
    nuovo = s;
    ++Usati_;
  }
}

size_t ContaNomi::Cerca(uint64_t nome) const {
  const size_t maschera = Slot_.size() - 1;
  size_t i = static_cast<size_t>(Mescola(nome)) & maschera;
  while (Slot_[i].Usato && Slot_[i].Nome != nome) i = (i + 1) & maschera;
  return i;
}

void ContaNomi::Costruisci(const std::vector<_SDatoRiassuntivo*>& lista) {
  Slot_.clear();
  Dimensiona(lista.size());
  for (const _SDatoRiassuntivo* r : lista)
    if (r != nullptr) Aggiungi(ChiaveNome(r->FileName));
}

void ContaNomi::Aggiungi(uint64_t nome) {
  if (2 * (Usati_ + 1) > Slot_.size()) Dimensiona(Usati_ + 1);
  Slot& s = Slot_[Cerca(nome)];
  if (!s.Usato) {
    s = Slot{nome, 0, true};
    ++Usati_;
  }
  ++s.Quanti;
}

uint32_t ContaNomi::Quanti(uint64_t nome) const {
  if (Slot_.empty()) return 0;
  return Slot_[Cerca(nome)].Quanti;
}

uint32_t ContaNomi::Togli(uint64_t nome) {
  if (Slot_.empty()) return 0;
  Slot& s = Slot_[Cerca(nome)];
  const uint32_t quanti = s.Quanti;
  s.Quanti = 0;  // the slot stays used, so that searches run on past it
  return quanti;
}

}  // namespace riassunto
}  // namespace vektkk
