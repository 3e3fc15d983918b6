// The four orderings of the sorted sets, the sort by each of them, and the
// cross-indexes between lists, in near-linear time.
#include <algorithm>

#include "foundation/LittleEndian.h"
#include "summary/Riassunto.h"
#include "summary/TabellaPosizioni.h"

namespace vektkk {
namespace riassunto {
namespace {

constexpr size_t kDim = sizeof(_SDatoRiassuntivo);
constexpr size_t kOffName = 0;
constexpr size_t kOffCountry = 28;

const unsigned char* Byte(const _SDatoRiassuntivo& r) {
  return reinterpret_cast<const unsigned char*>(&r);
}

// C-string comparison of unsigned bytes from offset `da`, up to the first
// zero byte or the end of the record.
int ConfrontaC(const _SDatoRiassuntivo& a, const _SDatoRiassuntivo& b, size_t da) {
  const unsigned char* pa = Byte(a);
  const unsigned char* pb = Byte(b);
  for (size_t i = da; i < kDim; ++i) {
    if (pa[i] != pb[i]) return pa[i] < pb[i] ? -1 : 1;
    if (pa[i] == 0) return 0;
  }
  return 0;
}

uint32_t AltaGuid(const _SDatoRiassuntivo& r) { return DecodeFixed32(r.Guid.Byte + 4); }
uint32_t BassaGuid(const _SDatoRiassuntivo& r) { return DecodeFixed32(r.Guid.Byte); }

// `parole` words of a C string from offset `da`, big-endian, the bytes
// after its terminator taken as zero: the words compare as the strings'
// first bytes do. The last byte is zero exactly when the string ends within
// them.
void Prefisso(const _SDatoRiassuntivo& r, size_t da, uint64_t* k, int parole) {
  const unsigned char* p = Byte(r) + da;
  const uint64_t basso7 = 0x7F7F7F7F7F7F7F7FULL;
  bool finita = false;
  for (int w = 0; w < parole; ++w, p += 8) {
    if (finita) {
      k[w] = 0;
      continue;
    }
    uint64_t v = 0;
    for (int i = 0; i < 8; ++i) v = (v << 8) | p[i];
    // The top bit of every zero byte, exactly; the first zero byte of the
    // string is the most significant one.
    const uint64_t zeri = ~(((v & basso7) + basso7) | v | basso7);
    if (zeri != 0) {
      const int prima = __builtin_clzll(zeri) / 8;
      v = prima == 0 ? 0 : v & (~uint64_t{0} << (64 - 8 * prima));
      finita = true;
    }
    k[w] = v;
  }
}

// One record in a sort: its first two keys and its position in the list.
struct Voce {
  uint64_t K;
  uint64_t K2;
  uint32_t Pos;
};

// A least-significant-digit radix sort on the keys: stable, so equal keys
// keep the order of their positions.
void OrdinaRadice(std::vector<Voce>& voci) {
  constexpr int kBit = 11, kCifre = 6;
  constexpr size_t kSecchi = size_t{1} << kBit;
  std::vector<uint32_t> conta(kCifre * kSecchi, 0);
  for (const Voce& v : voci)
    for (int c = 0; c < kCifre; ++c) ++conta[c * kSecchi + ((v.K >> (c * kBit)) & (kSecchi - 1))];
  std::vector<Voce> altre(voci.size());
  for (int c = 0; c < kCifre; ++c) {
    uint32_t* secchi = &conta[c * kSecchi];
    // A digit that all keys share moves nothing.
    if (voci.empty() || secchi[(voci[0].K >> (c * kBit)) & (kSecchi - 1)] == voci.size()) continue;
    uint32_t inizio = 0;
    for (size_t d = 0; d < kSecchi; ++d) {
      const uint32_t n = secchi[d];
      secchi[d] = inizio;
      inizio += n;
    }
    for (const Voce& v : voci) altre[secchi[(v.K >> (c * kBit)) & (kSecchi - 1)]++] = v;
    voci.swap(altre);
  }
}

// Keys of a record: one exact word for the numeric orders; for the
// alphabetical ones the first words of the strings (country, then 32 bytes
// of name), after which only a string that runs on needs the record.
constexpr int kParole = 5;
void Chiavi(Ordine ordine, const _SDatoRiassuntivo& r, uint64_t* k) {
  switch (ordine) {
    case Ordine::AlfabeticoConNazione:
      Prefisso(r, kOffCountry, k, 1);
      Prefisso(r, kOffName, k + 1, 4);
      return;
    case Ordine::AlfabeticoSenzaNazione:
      Prefisso(r, kOffName, k, 4);
      k[4] = 0;
      return;
    case Ordine::LatLon: {
      const uint64_t lat = static_cast<uint32_t>(r.RifLat) ^ 0x80000000u;
      const uint64_t lon = static_cast<uint32_t>(r.RIfLon) ^ 0x80000000u;
      k[0] = (lat << 32) | lon;
      return;
    }
    case Ordine::Guid:
      k[0] = (static_cast<uint64_t>(AltaGuid(r)) << 32) | BassaGuid(r);
      return;
  }
}

}  // namespace

bool Precede(Ordine ordine, const _SDatoRiassuntivo& a, const _SDatoRiassuntivo& b) {
  switch (ordine) {
    case Ordine::AlfabeticoConNazione: {
      const int c = ConfrontaC(a, b, kOffCountry);
      return c != 0 ? c < 0 : ConfrontaC(a, b, kOffName) < 0;
    }
    case Ordine::AlfabeticoSenzaNazione:
      return ConfrontaC(a, b, kOffName) < 0;
    case Ordine::LatLon: {
      const int32_t la = a.RifLat, lb = b.RifLat;
      if (la != lb) return la < lb;
      const int32_t oa = a.RIfLon, ob = b.RIfLon;
      return oa < ob;
    }
    case Ordine::Guid:
      if (AltaGuid(a) != AltaGuid(b)) return AltaGuid(a) < AltaGuid(b);
      return BassaGuid(a) < BassaGuid(b);
  }
  return false;
}

std::vector<uint32_t> Ordina(const Lista& lista, Ordine ordine) {
  return OrdinaEChiavi(lista, ordine, nullptr);
}

std::vector<uint32_t> OrdinaEChiavi(const Lista& lista, Ordine ordine,
                                    std::vector<uint64_t>* chiaviOrdinate) {
  const bool testo = ordine == Ordine::AlfabeticoConNazione ||
                     ordine == Ordine::AlfabeticoSenzaNazione;
  std::vector<Voce> voci;
  voci.reserve(lista.size());
  std::vector<uint32_t> nulli;
  std::vector<uint64_t> parole(testo ? lista.size() * kParole : 0);
  for (size_t i = 0; i < lista.size(); ++i) {
    if (lista[i] == nullptr) {
      nulli.push_back(static_cast<uint32_t>(i));
      continue;
    }
    uint64_t k[kParole] = {0, 0, 0, 0, 0};
    Chiavi(ordine, *lista[i], k);
    if (testo) std::copy(k, k + kParole, &parole[i * kParole]);
    voci.push_back(Voce{k[0], k[1], static_cast<uint32_t>(i)});
  }
  OrdinaRadice(voci);

  // Runs of an equal first word: the next words decide, then (for a string
  // that runs on past them) the ordering itself, then the position.
  if (testo) {
    const bool conNazione = ordine == Ordine::AlfabeticoConNazione;
    auto prima = [&](const Voce& x, const Voce& y) {
      const bool paeseAperto = conNazione && (x.K & 0xFF) != 0;
      if (x.K2 != y.K2 && !paeseAperto) return x.K2 < y.K2;
      // Past a country that runs on into the name the words tell nothing:
      // the ordering itself decides. Otherwise the first two words are
      // equal here.
      const uint64_t* a = &parole[x.Pos * kParole];
      const uint64_t* b = &parole[y.Pos * kParole];
      if (!paeseAperto)
        for (int w = 2; w < kParole; ++w)
          if (a[w] != b[w]) return a[w] < b[w];
      // A name that runs on past the words: with the country first it runs
      // into the country's word, which is equal and ends it.
      if (paeseAperto || (!conNazione && (a[3] & 0xFF) != 0)) {
        if (Precede(ordine, *lista[x.Pos], *lista[y.Pos])) return true;
        if (Precede(ordine, *lista[y.Pos], *lista[x.Pos])) return false;
      }
      return x.Pos < y.Pos;
    };
    for (size_t i = 0; i < voci.size();) {
      size_t j = i + 1;
      while (j < voci.size() && voci[j].K == voci[i].K) ++j;
      if (j - i > 1 && (conNazione || (voci[i].K & 0xFF) != 0))
        std::sort(voci.begin() + static_cast<std::ptrdiff_t>(i),
                  voci.begin() + static_cast<std::ptrdiff_t>(j), prima);
      i = j;
    }
  }
  std::vector<uint32_t> ordinati;
  ordinati.reserve(lista.size());
  for (const Voce& v : voci) ordinati.push_back(v.Pos);
  ordinati.insert(ordinati.end(), nulli.begin(), nulli.end());
  if (chiaviOrdinate != nullptr) {
    chiaviOrdinate->clear();
    chiaviOrdinate->reserve(voci.size());
    for (const Voce& v : voci) chiaviOrdinate->push_back(v.K);
  }
  return ordinati;
}

std::vector<uint32_t> PrimiUguali(const Lista& lista, const std::vector<uint32_t>& ordinati,
                                  const std::vector<uint64_t>& chiavi) {
  // Byte-identical records have the same key, so they lie in one run of
  // equal keys of an order by an exact key; the stable sort puts the first
  // of them first. Only runs of several records are compared.
  std::vector<uint32_t> primi(lista.size(), TabellaPosizioni::kNessuna);
  size_t i = 0;
  while (i < chiavi.size()) {
    size_t j = i + 1;
    while (j < chiavi.size() && chiavi[j] == chiavi[i]) ++j;
    if (j - i <= 16) {
      for (size_t m = i; m < j; ++m) {
        const uint32_t p = ordinati[m];
        primi[p] = p;
        for (size_t l = i; l < m; ++l)
          if (primi[ordinati[l]] == ordinati[l] && StessiByte(lista[ordinati[l]], lista[p])) {
            primi[p] = ordinati[l];
            break;
          }
      }
    } else {
      TabellaPosizioni tabella(j - i);
      for (size_t m = i; m < j; ++m) {
        const uint32_t p = ordinati[m];
        primi[p] = tabella.TrovaOInserisci(HashRecord(lista[p]), p, [&](uint32_t q) {
          return StessiByte(lista[q], lista[p]);
        });
      }
    }
    i = j;
  }
  return primi;
}

std::vector<uint16_t> IndiciIncrociati(const Lista& a, const Lista& b) {
  TabellaPosizioni tabella(b.size());
  for (size_t j = 0; j < b.size(); ++j) {
    const _SDatoRiassuntivo* r = b[j];
    if (r == nullptr) continue;
    tabella.TrovaOInserisci(HashRecord(r), static_cast<uint32_t>(j),
                            [&](uint32_t p) { return StessiByte(b[p], r); });
  }
  std::vector<uint16_t> indici;
  indici.reserve(a.size());
  for (const _SDatoRiassuntivo* r : a) {
    if (r == nullptr) continue;
    const uint32_t p =
        tabella.Trova(HashRecord(r), [&](uint32_t q) { return StessiByte(b[q], r); });
    indici.push_back(p == TabellaPosizioni::kNessuna ? 0xFFFF : static_cast<uint16_t>(p));
  }
  return indici;
}

InsiemeOrdinato CalcolaInsieme(const Lista& riassunti, Ordine primo, Ordine secondo,
                               Ordine terzo, bool conIndice2, bool conIndice3) {
  // Both lists of an index are orders of the same records: the first
  // byte-identical record of b is the first of b's records in the record's
  // class of equals. Classes come from one of the orders by an exact key
  // (every set has one; its keys are kept while sorting).
  auto esatta = [](Ordine o) { return o == Ordine::LatLon || o == Ordine::Guid; };
  std::vector<uint64_t> chiavi;
  const std::vector<uint32_t>* perClassi = nullptr;
  auto ordina = [&](Ordine o, std::vector<uint32_t>& out) {
    const bool tieni = perClassi == nullptr && esatta(o);
    out = OrdinaEChiavi(riassunti, o, tieni ? &chiavi : nullptr);
    if (tieni) perClassi = &out;
  };
  InsiemeOrdinato insieme;
  std::vector<uint32_t> primario, secondario, terziario, proprio;
  ordina(primo, primario);
  insieme.Primario.reserve(primario.size());
  for (uint32_t p : primario) insieme.Primario.push_back(riassunti[p]);
  if (!conIndice2 && !conIndice3) return insieme;
  if (conIndice2) ordina(secondo, secondario);
  if (conIndice3) ordina(terzo, terziario);
  if (perClassi == nullptr) ordina(Ordine::Guid, proprio);
  const std::vector<uint32_t> primi = PrimiUguali(riassunti, *perClassi, chiavi);
  auto indice = [&](const std::vector<uint32_t>& b) {
    std::vector<uint32_t> primaInB(riassunti.size(), TabellaPosizioni::kNessuna);
    for (size_t j = b.size(); j-- > 0;)
      if (primi[b[j]] != TabellaPosizioni::kNessuna) primaInB[primi[b[j]]] = static_cast<uint32_t>(j);
    std::vector<uint16_t> indici;
    indici.reserve(primario.size());
    for (uint32_t p : primario)
      if (primi[p] != TabellaPosizioni::kNessuna)
        indici.push_back(static_cast<uint16_t>(primaInB[primi[p]]));
    return indici;
  };
  if (conIndice2) insieme.Indice2 = indice(secondario);
  if (conIndice3) insieme.Indice3 = indice(terziario);
  return insieme;
}

}  // namespace riassunto
}  // namespace vektkk
