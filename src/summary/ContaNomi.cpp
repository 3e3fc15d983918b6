#include <string.h>

#include "summary/Riassunto.h"
#include "summary/TabellaPosizioni.h"

namespace vektkk {
namespace riassunto {

void ContaNomi::Dimensiona(size_t elementi) {
  Posizioni_.clear();
  size_t capacita = 16;
  while (capacita < 2 * elementi) capacita <<= 1;
  std::vector<Slot> vecchi;
  vecchi.swap(Slot_);
  Slot_.assign(capacita, Slot{0, 0, false, false});
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
  std::vector<uint32_t> posizioni(lista.size());
  // The variants of one file usually follow each other: the slot of the
  // previous name is tried first.
  size_t i = 0;
  for (size_t k = 0; k < lista.size(); ++k) {
    const _SDatoRiassuntivo* r = lista[k];
    if (r == nullptr) {
      posizioni[k] = kNessuno;
      continue;
    }
    const uint64_t nome = ChiaveNome(r->FileName);
    if (!Slot_[i].Usato || Slot_[i].Nome != nome) i = Cerca(nome);
    Slot& s = Slot_[i];
    if (!s.Usato) {
      s = Slot{nome, 0, true, false};
      ++Usati_;
    }
    ++s.Quanti;
    posizioni[k] = static_cast<uint32_t>(i);
  }
  Posizioni_.swap(posizioni);
}

bool ContaNomi::ToltoPerNome(const _SDatoRiassuntivo* r) const {
  return r != nullptr && Tolto(ChiaveNome(r->FileName));
}

void ContaNomi::Aggiungi(uint64_t nome) {
  if (2 * (Usati_ + 1) > Slot_.size()) Dimensiona(Usati_ + 1);
  Slot& s = Slot_[Cerca(nome)];
  if (!s.Usato) {
    s = Slot{nome, 0, true, false};
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
  if (quanti > 0) s.Tolto = true;
  return quanti;
}

bool ContaNomi::Tolto(uint64_t nome) const {
  return !Slot_.empty() && Slot_[Cerca(nome)].Tolto;
}

void ContaNomi::TogliSegno(uint64_t nome) {
  if (!Slot_.empty()) Slot_[Cerca(nome)].Tolto = false;
}

}  // namespace riassunto
}  // namespace vektkk
