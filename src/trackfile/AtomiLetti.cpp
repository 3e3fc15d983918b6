#include "trackfile/AtomiLetti.h"

#include <errno.h>
#include <string.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagPieces.h"
#include "trackfile/TrackFileFormat.h"
#include "foundation/SistemaFile.h"

using namespace vektkk::tkk;

namespace vektkk {
namespace {

// What a read keeps of an atom: a fixed record of its exact size, a list,
// or nothing (atoms of other tags or sizes are checked and then ignored).
enum class Uso { Piccolo, Punti, Fondi, Logo, Ignorato };

bool Uguale(const std::string& tag, const char* nome, size_t lunghezza) {
  return tag.size() == lunghezza && memcmp(tag.data(), nome, lunghezza) == 0;
}
template <size_t N>
bool Uguale(const std::string& tag, const char (&nome)[N]) {
  return Uguale(tag, nome, N - 1);
}

Uso Classifica(const std::string& tag, uint32_t dim, bool senzaLogo, Genere& tipo) {
  if (Uguale(tag, kTagFile) && dim == kSizeFile) tipo = Genere::File;
  else if (Uguale(tag, kTagVarianteFw) && dim == kSizeVarianteFw) tipo = Genere::VarianteFw;
  else if (Uguale(tag, kTagVarianteSw) && dim == kSizeVarianteSw) tipo = Genere::VarianteSw;
  else if (Uguale(tag, kTagIndici) && dim == kSizeIndici) tipo = Genere::Indici;
  else if (Uguale(tag, kTagPunti) && dim != 0 && dim % kSizePunto == 0) tipo = Genere::Punti;
  else if (Uguale(tag, kTagFondi) && dim != 0 && dim % kSizeFondo == 0) tipo = Genere::Fondi;
  else if (Uguale(tag, kTagLogo) && !senzaLogo) tipo = Genere::Logo;
  else return Uso::Ignorato;
  switch (tipo) {
    case Genere::Punti: return Uso::Punti;
    case Genere::Fondi: return Uso::Fondi;
    case Genere::Logo: return Uso::Logo;
    default: return Uso::Piccolo;
  }
}

// A record's list made `n` long. One kept from an earlier read whose memory
// is far more than needed gives it back first.
template <typename V>
unsigned char* Dimensiona(V& v, size_t n) {
  if (v.capacity() / 2 > n) V().swap(v);
  v.resize(n);
  return reinterpret_cast<unsigned char*>(v.data());
}

// Splits a logo payload: the name up to the first zero byte, the image after
// it; with no zero byte all of it is the name and there is no image.
void DividiLogo(const unsigned char* dati, size_t dim, AtomoLetto& a) {
  const void* zero = dim == 0 ? nullptr : memchr(dati, 0, dim);
  const size_t nome = zero == nullptr ? dim : static_cast<size_t>(static_cast<const unsigned char*>(zero) - dati);
  a.NomeLogo.assign(reinterpret_cast<const char*>(dati), nome);
  if (zero == nullptr) {
    Dimensiona(a.Logo->Dati, 0);
  } else {
    unsigned char* immagine = Dimensiona(a.Logo->Dati, dim - nome - 1);
    if (dim > nome + 1) memcpy(immagine, dati + nome + 1, dim - nome - 1);
  }
}

// The file's bytes in order, never more than its size when opened: small
// reads go through a buffer on the stack, large ones straight to their
// place, the buffer filling with what follows in the same call.
class Lettore {
 public:
  Lettore(int fd, uint64_t size) : fd_(fd), daLeggere_(size) {}

  const unsigned char* Dati() const { return buffer_ + inizio_; }
  size_t Disponibili() const { return fine_ - inizio_; }
  void Consuma(size_t n) { inizio_ += n; }

  // At least n (at most the buffer's size) bytes buffered; false when the
  // file ends first.
  bool Assicura(size_t n) {
    if (Disponibili() >= n) return true;
    memmove(buffer_, buffer_ + inizio_, Disponibili());
    fine_ -= inizio_;
    inizio_ = 0;
    while (fine_ < n) {
      // Nothing left to ask for makes the read below find the end.
      const size_t chiesti = static_cast<size_t>(std::min<uint64_t>(kBuffer - fine_, daLeggere_));
      const ssize_t letti = sys::Read(fd_, buffer_ + fine_, chiesti);
      if (letti < 0 && errno == EINTR) continue;
      if (letti <= 0) return false;
      fine_ += static_cast<size_t>(letti);
      daLeggere_ -= static_cast<uint64_t>(letti);
    }
    return true;
  }

  // The next n bytes to `dest`; false when the file ends first.
  bool Prendi(unsigned char* dest, size_t n) {
    const size_t giaQui = std::min(n, Disponibili());
    if (giaQui > 0) memcpy(dest, Dati(), giaQui);
    Consuma(giaQui);
    size_t fatti = giaQui;
    if (fatti == n) return true;
    inizio_ = fine_ = 0;
    while (fatti < n) {
      const size_t resto = n - fatti;
      if (resto > daLeggere_) return false;
      iovec parti[2] = {{dest + fatti, resto},
                        {buffer_, static_cast<size_t>(std::min<uint64_t>(kBuffer, daLeggere_ - resto))}};
      const ssize_t letti = sys::Readv(fd_, parti, 2);
      if (letti < 0 && errno == EINTR) continue;
      if (letti <= 0) return false;
      daLeggere_ -= static_cast<uint64_t>(letti);
      const size_t k = static_cast<size_t>(letti);
      if (k <= resto) {
        fatti += k;
      } else {
        fatti = n;
        fine_ = k - resto;
      }
    }
    return true;
  }

  // The next n bytes (n at most kBuffer) copied into the list `v` of packed
  // records of their size, whose memory is kept where it fits; false when
  // the file ends first. Filling a new list this way spares the zeroing that
  // resizing it would do before the bytes are read over it.
  template <typename V>
  bool Copia(V& v, size_t n) {
    if (!Assicura(n)) return false;
    using T = typename V::value_type;
    if (v.capacity() / 2 > n / sizeof(T)) V().swap(v);
    const T* primo = reinterpret_cast<const T*>(Dati());
    v.assign(primo, primo + n / sizeof(T));
    Consuma(n);
    return true;
  }

  static constexpr size_t kBuffer = 16 * 1024;

  // Passes over n bytes, adding them to a check.
  bool Salta(size_t n, IAtomTagPieces& pezzi, uint32_t& check) {
    while (n > 0) {
      const size_t pezzo = std::min(n, kBuffer);
      if (!Assicura(pezzo)) return false;
      check = pezzi.checkAdd(check, Dati(), pezzo);
      Consuma(pezzo);
      n -= pezzo;
    }
    return true;
  }

  // Reads whatever of the file is left; false when it is shorter than it was.
  bool Finisci() {
    while (daLeggere_ > 0) {
      if (!Assicura(static_cast<size_t>(std::min<uint64_t>(kBuffer, daLeggere_)))) return false;
      Consuma(Disponibili());
    }
    return true;
  }

 private:
  int fd_;
  uint64_t daLeggere_;
  size_t inizio_ = 0, fine_ = 0;
  unsigned char buffer_[kBuffer];
};

// The payload of a logo: the name through the buffer (it comes first and is
// short), the image straight into the logo's list.
bool LeggiLogo(Lettore& in, uint32_t dim, IAtomTagPieces& pezzi, uint32_t& check, AtomoLetto& a) {
  if (!in.Assicura(std::min<size_t>(dim, 16 * 1024))) return false;
  const size_t visti = std::min<size_t>(dim, in.Disponibili());
  const void* zero = visti == 0 ? nullptr : memchr(in.Dati(), 0, visti);
  if (zero == nullptr && visti < dim) {
    // A name longer than the buffer: the whole payload, then split.
    std::vector<unsigned char> tutto(dim);
    if (!in.Prendi(tutto.data(), dim)) return false;
    check = pezzi.checkAdd(check, tutto.data(), dim);
    DividiLogo(tutto.data(), dim, a);
    return true;
  }
  const size_t nome = zero == nullptr ? visti : static_cast<size_t>(static_cast<const unsigned char*>(zero) - in.Dati());
  const size_t prefisso = zero == nullptr ? visti : nome + 1;
  a.NomeLogo.assign(reinterpret_cast<const char*>(in.Dati()), nome);
  check = pezzi.checkAdd(check, in.Dati(), prefisso);
  in.Consuma(prefisso);
  unsigned char* immagine = Dimensiona(a.Logo->Dati, dim - prefisso);
  if (!in.Prendi(immagine, dim - prefisso)) return false;
  check = pezzi.checkAdd(check, immagine, dim - prefisso);
  return true;
}

}  // namespace

AtomiLetti::~AtomiLetti() {
  for (AtomoLetto& a : Atomi) {
    delete a.Punti;
    delete a.Fondi;
    delete a.Logo;
  }
}

EsitoAtomi LeggiAtomi(int fd, uint64_t size, IAtomTagPieces& pezzi, bool senzaLogo,
                      const Scorte& scorte, AtomiLetti& out) {
  const size_t h = IAtomTagDecoderBin::GetSizeHeader();
  const size_t f = IAtomTagDecoderBin::GetSizeFooter();
  Lettore in(fd, size);
  std::vector<size_t> posizioni;  // of the fixed records in out.Piccoli
  // Room for the fixed records of a file of many variants without moving
  // them (the file's size bounds what they can need).
  out.Piccoli.reserve(static_cast<size_t>(std::min<uint64_t>(size, 64 * 1024)));
  posizioni.reserve(64);
  std::string tag;
  uint64_t resto = size;
  bool valido = true;
  while (resto > 0) {
    if (resto < h + f) {
      valido = false;
      break;
    }
    if (!in.Assicura(h)) return EsitoAtomi::Corto;
    uint32_t dim = 0;
    pezzi.parseHeader(in.Dati(), tag, dim);
    if (resto - h - f < dim) {
      valido = false;
      break;
    }
    uint32_t check = pezzi.checkBegin(in.Dati());
    in.Consuma(h);

    Genere tipo = Genere::File;
    const Uso genere = Classifica(tag, dim, senzaLogo, tipo);
    if (genere != Uso::Ignorato) {
      out.Atomi.emplace_back();
      out.Atomi.back().Tipo = tipo;
      out.Atomi.back().Dim = dim;
    }
    AtomoLetto* a = genere == Uso::Ignorato ? nullptr : &out.Atomi.back();
    unsigned char* dest = nullptr;
    bool letto = true;
    switch (genere) {
      case Uso::Piccolo:
        posizioni.push_back(out.Piccoli.size());
        out.Piccoli.resize(out.Piccoli.size() + dim);
        dest = out.Piccoli.data() + posizioni.back();
        break;
      case Uso::Punti:
        a->Punti = scorte.Punti.Prendi();
        if (dim <= Lettore::kBuffer) {
          letto = in.Copia(a->Punti->Punti, dim);
          if (letto) check = pezzi.checkAdd(check, a->Punti->Punti.data(), dim);
        } else {
          dest = Dimensiona(a->Punti->Punti, dim / kSizePunto);
        }
        break;
      case Uso::Fondi:
        a->Fondi = scorte.Fondi.Prendi();
        dest = Dimensiona(a->Fondi->Fondi, dim / kSizeFondo);
        break;
      case Uso::Logo:
        a->Logo = scorte.Loghi.Prendi();
        letto = LeggiLogo(in, dim, pezzi, check, *a);
        break;
      case Uso::Ignorato:
        letto = in.Salta(dim, pezzi, check);
        break;
    }
    if (dest != nullptr) {
      letto = in.Prendi(dest, dim);
      check = pezzi.checkAdd(check, dest, dim);
    }
    if (!letto || !in.Assicura(f)) return EsitoAtomi::Corto;
    const bool uguale = pezzi.footerMatches(check, in.Dati());
    in.Consuma(f);
    if (!uguale) {
      valido = false;
      break;
    }
    resto -= h + dim + f;
  }
  // As when the whole file is read first: a file cut short is reported as
  // such even where its atoms were found wrong before the cut.
  if (!valido) return in.Finisci() ? EsitoAtomi::NonValido : EsitoAtomi::Corto;

  size_t i = 0;
  for (AtomoLetto& a : out.Atomi)
    if (a.Punti == nullptr && a.Fondi == nullptr && a.Logo == nullptr)
      a.Dati = out.Piccoli.data() + posizioni[i++];
  return EsitoAtomi::Ok;
}

EsitoAtomi DecodificaAtomi(int fd, uint64_t size, IAtomTagDecoderBin& decoder, bool senzaLogo,
                           const Scorte& scorte, AtomiLetti& out) {
  // Not zero-filled: every byte is read over.
  const size_t totale = static_cast<size_t>(size);
  out.Intero.reset(new unsigned char[totale]);
  size_t letti = 0;
  while (letti < totale) {
    const ssize_t n = sys::Read(fd, out.Intero.get() + letti, totale - letti);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return EsitoAtomi::Corto;
    letti += static_cast<size_t>(n);
  }
  std::vector<SAtomTag> atomi;
  if (!decoder.decode(out.Intero.get(), totale, atomi)) return EsitoAtomi::NonValido;
  for (const SAtomTag& s : atomi) {
    Genere tipo = Genere::File;
    const Uso genere = Classifica(s.Tag, s.Dim, senzaLogo, tipo);
    if (genere == Uso::Ignorato) continue;
    out.Atomi.emplace_back();
    AtomoLetto& a = out.Atomi.back();
    a.Tipo = tipo;
    a.Dim = s.Dim;
    if (genere == Uso::Piccolo) {
      a.Dati = s.Dati;
    } else if (genere == Uso::Punti) {
      a.Punti = scorte.Punti.Prendi();
      memcpy(Dimensiona(a.Punti->Punti, s.Dim / kSizePunto), s.Dati, s.Dim);
    } else if (genere == Uso::Fondi) {
      a.Fondi = scorte.Fondi.Prendi();
      memcpy(Dimensiona(a.Fondi->Fondi, s.Dim / kSizeFondo), s.Dati, s.Dim);
    } else {
      a.Logo = scorte.Loghi.Prendi();
      DividiLogo(s.Dati, s.Dim, a);
    }
  }
  return EsitoAtomi::Ok;
}

}  // namespace vektkk
