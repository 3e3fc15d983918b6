// Comparing two summaries. Tracks are matched by file name, the first
// record of a name on the other side; tables of file names replace linear
// searches with the same answers.
#include <string.h>

#include <new>

#include "summary/CFileRiassuntivo.h"
#include "summary/Riassunto.h"
#include "summary/TabellaPosizioni.h"

using vektkk::riassunto::ChiaveNome;
using vektkk::riassunto::Lista;
using vektkk::riassunto::Mescola;
using vektkk::riassunto::TabellaPosizioni;

namespace {

// The records of the other summary through its accessors, whether it is one
// of ours (its removals still pending are applied by the first) or a host's.
Lista RecordDi(IFileRiassuntivo& altro) {
  Lista lista;
  const int n = altro.GetNumRiassuntivi();
  lista.reserve(static_cast<size_t>(n > 0 ? n : 0));
  for (int i = 0; i < n; ++i) {
    const _SDatoRiassuntivo* r = nullptr;
    altro.GetDatoRiassuntivo(r, i);
    lista.push_back(const_cast<_SDatoRiassuntivo*>(r));
  }
  return lista;
}

// The first record of every file name in a list.
class PrimoPerNome {
 public:
  explicit PrimoPerNome(const Lista& lista) : Lista_(lista), Tabella_(lista.size()) {
    for (size_t i = 0; i < lista.size(); ++i) {
      if (lista[i] == nullptr) continue;
      const uint64_t chiave = ChiaveNome(lista[i]->FileName);
      Tabella_.TrovaOInserisci(Mescola(chiave), static_cast<uint32_t>(i),
                               [&](uint32_t p) { return ChiaveNome(lista[p]->FileName) == chiave; });
    }
  }
  const _SDatoRiassuntivo* Trova(const char* nome8) const {
    const uint64_t chiave = ChiaveNome(nome8);
    const uint32_t p = Tabella_.Trova(
        Mescola(chiave), [&](uint32_t q) { return ChiaveNome(Lista_[q]->FileName) == chiave; });
    return p == TabellaPosizioni::kNessuna ? nullptr : Lista_[p];
  }

 private:
  const Lista& Lista_;
  TabellaPosizioni Tabella_;
};

enum class Esito { Uguali, QuiPiuRecenti, AltrovePiuRecenti, SoloQui };

uint32_t Anno(const _SDatoRiassuntivo& r) { return (r.Date.Valore >> 26) & 0x1F; }

Esito Classifica(const _SDatoRiassuntivo& l, const _SDatoRiassuntivo* r, bool sogliaAnno) {
  if (r == nullptr) return Esito::SoloQui;
  if (memcmp(&l, r, sizeof l) == 0) return Esito::Uguali;
  const uint32_t dL = l.Date.Valore, dR = r->Date.Valore;
  if (!sogliaAnno) return dL > dR ? Esito::QuiPiuRecenti : Esito::AltrovePiuRecenti;
  // A date in 2030 or later (Anno above 14) never counts as newer.
  if (dL > dR) return Anno(l) > 14 ? Esito::AltrovePiuRecenti : Esito::QuiPiuRecenti;
  if (dL < dR) return Anno(*r) > 14 ? Esito::QuiPiuRecenti : Esito::AltrovePiuRecenti;
  return Esito::AltrovePiuRecenti;
}

// Both passes of the comparison; `aggiungi(lista, record)` appends one entry
// (lists 0 to 3 from this side's records, 4 from the other's).
template <typename Aggiungi>
void Confronta(const Lista& qui, const Lista& altrove, bool sogliaAnno, Aggiungi aggiungi) {
  const PrimoPerNome primiAltrove(altrove);
  for (const _SDatoRiassuntivo* l : qui) {
    if (l == nullptr) continue;
    aggiungi(static_cast<int>(Classifica(*l, primiAltrove.Trova(l->FileName), sogliaAnno)), *l);
  }
  const PrimoPerNome primiQui(qui);
  for (const _SDatoRiassuntivo* r : altrove)
    if (r != nullptr && primiQui.Trova(r->FileName) == nullptr) aggiungi(4, *r);
}

}  // namespace

bool CFileRiassuntivo::ConfrontaConAltro(IFileRiassuntivo& altro, SConfrontoPiste& esito) {
  std::vector<std::string>* liste[] = {&esito.PisteUguali, &esito.PisteQuiPiuRecenti,
                                       &esito.PisteAltrovePiuRecenti, &esito.PisteSoloQui,
                                       &esito.PisteSoloAltrove};
  Applica();
  try {
    Confronta(Riassunti, RecordDi(altro), true, [&](int n, const _SDatoRiassuntivo& r) {
      liste[n]->push_back(r.GetNomeFile());
    });
  } catch (const std::bad_alloc&) {
  }
  return true;
}

bool CFileRiassuntivo::ConfrontaConAltroEsteso(IFileRiassuntivo& altro,
                                               SConfrontoPisteEsteso& esito) {
  std::vector<SPistaEstesa>* liste[] = {&esito.PisteUguali, &esito.PisteQuiPiuRecenti,
                                        &esito.PisteAltrovePiuRecenti, &esito.PisteSoloQui,
                                        &esito.PisteSoloAltrove};
  Applica();
  try {
    Confronta(Riassunti, RecordDi(altro), false, [&](int n, const _SDatoRiassuntivo& r) {
      const char* state = r.State;
      liste[n]->push_back(SPistaEstesa(r.GetNomeFile(), r.Country, state, r.Name));
    });
  } catch (const std::bad_alloc&) {
  }
  return true;
}
