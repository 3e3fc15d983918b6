// Reading a track file: its atoms checked and brought in one by one (or, for
// a container that cannot, decoded from one buffer), then two passes over
// them (first the shared lists, then the variants).
#include <fcntl.h>
#include <stdint.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <deque>
#include <memory>
#include <new>

#include "CFileTkk.h"
#include "GuidNomeFile.h"
#include "TrackMemoryRecords.h"
#include "foundation/SistemaFile.h"
#include "foundation/LogEvento.h"
#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagPieces.h"
#include "trackfile/AtomiLetti.h"
#include "trackfile/LogoFiles.h"
#include "trackfile/TrackFileFormat.h"

using namespace vektkk::tkk;
using vektkk::AtomoLetto;

namespace {

enum class EsitoApertura { Ok, NonApribile, Vuoto, Memoria };

// Larger files cannot be track files: their size does not fit the 32-bit
// size the object keeps.
constexpr uint64_t kDimensioneMassima = 0xFFFFFFFFu;

// Opens a regular file for reading; its size is reported even when empty.
EsitoApertura Apri(const std::string& path, int& fd, uint64_t& size) {
  size = 0;
  // O_NONBLOCK: a FIFO or a device must not keep the open waiting; only a
  // regular file is read, and its reads ignore the flag.
  fd = vektkk::sys::Open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return EsitoApertura::NonApribile;
  struct stat st;
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) return EsitoApertura::NonApribile;
  size = static_cast<uint64_t>(st.st_size);
  if (size == 0) return EsitoApertura::Vuoto;
  if (size > kDimensioneMassima || size > SIZE_MAX) return EsitoApertura::Memoria;
  return EsitoApertura::Ok;
}

struct Descrittore {
  int fd = -1;
  ~Descrittore() {
    if (fd >= 0) vektkk::sys::Close(fd);
  }
};

size_t Conta(const std::deque<AtomoLetto>& atoms, vektkk::Genere tipo) {
  size_t count = 0;
  for (const AtomoLetto& a : atoms) count += a.Tipo == tipo;
  return count;
}

bool IndiceValido(uint16_t idx, size_t count) { return idx == kNessunIndice || idx < count; }

template <typename T>
T* Elemento(const std::vector<T*>& list, uint16_t idx) {
  return idx == kNessunIndice ? nullptr : list[idx];
}

}  // namespace

bool CFileTkk::LeggiFile(const std::string& path, bool nuovoNomeLogo) {
  // Whatever the outcome, the views match the variants read.
  struct Viste {
    CFileTkk* file;
    ~Viste() { file->RicostruisciViste(); }
  } viste{this};
  try {
    // The lists of the previous read are filled again where they fit; what
    // they do not use is freed before the read returns.
    vektkk::Scorta<SPuntiTracciato> puntiPrecedenti(PuntiTracciato);
    vektkk::Scorta<SFondiStradali> fondiPrecedenti(FondiStradali);
    vektkk::Scorta<SLogo> loghiPrecedenti(Loghi);
    const vektkk::Scorte scorte{puntiPrecedenti, fondiPrecedenti, loghiPrecedenti};
    Svuota();
    Descrittore file;
    uint64_t size = 0;
    const EsitoApertura apertura = Apri(path, file.fd, size);
    DimTkk = static_cast<uint32_t>(size);
    switch (apertura) {
      case EsitoApertura::NonApribile:
        LogEvento(kError.Priorita, kError.Parola, "Can't open file %s", path.c_str());
        return false;
      case EsitoApertura::Vuoto:
        LogEvento(kError.Priorita, kError.Parola, "Zero length file %s", path.c_str());
        return false;
      case EsitoApertura::Memoria:
        LogEvento(kError.Priorita, kError.Parola, "Can't alloc mem");
        return false;
      case EsitoApertura::Ok:
        break;
    }
    const std::string nomeLogoEsterno = GetNomeFileEsterno(path);

    // The file's own name tells whether it is a maker's or a development
    // track; a name that does not decode leaves both flags as they were.
    const size_t sep = path.find_last_of("\\/");
    if (sep != std::string::npos) {
      tm creazione;  // not kept
      IGuidNomeFile::GetDaNomeFile(path.substr(sep + 1, kLunghezzaNome), creazione,
                                   TrackIsReadOnly, DevTrack);
    }

    std::unique_ptr<IAtomTagDecoderBin> decoder(IAtomTagDecoderBin::CreateMe());
    if (!decoder) {
      LogEvento(kError.Priorita, kError.Parola, "Can't alloc mem");
      return false;
    }
    vektkk::AtomiLetti letti;
    auto* pezzi = dynamic_cast<IAtomTagPieces*>(decoder.get());
    const vektkk::EsitoAtomi esito =
        pezzi != nullptr ? vektkk::LeggiAtomi(file.fd, size, *pezzi, SenzaLogo, scorte, letti)
                         : vektkk::DecodificaAtomi(file.fd, size, *decoder, SenzaLogo, scorte, letti);
    decoder.reset();
    if (esito == vektkk::EsitoAtomi::Corto) {
      LogEvento(kError.Priorita, kError.Parola, "Can't open file %s", path.c_str());
      return false;
    }
    const std::deque<AtomoLetto>& atoms = letti.Atomi;

    using vektkk::Genere;
    if (esito != vektkk::EsitoAtomi::Ok || Conta(atoms, Genere::File) == 0 ||
        Conta(atoms, Genere::VarianteFw) != Conta(atoms, Genere::Indici)) {
      LogEvento(kError.Priorita, kError.Parola, "Can't interpret file %s", path.c_str());
      return false;
    }

    // First pass: road-surface lists, shapes and logos, in file order. Only
    // now, with the whole file checked, are logo images written to disk.
    vektkk::NumeriLogo numeriLogo;
    for (AtomoLetto& a : letti.Atomi) {
      if (a.Fondi != nullptr) {
        FondiStradali.push_back(a.Fondi);
        a.Fondi = nullptr;
      } else if (a.Punti != nullptr) {
        PuntiTracciato.push_back(a.Punti);
        a.Punti = nullptr;
      } else if (a.Logo != nullptr) {
        Loghi.push_back(a.Logo);
        a.Logo = nullptr;
        vektkk::CompletaLogo(*Loghi.back(), a.NomeLogo, path, nuovoNomeLogo, numeriLogo);
      }
    }

    // Second pass: variants. The current "Vnfo" and "V_sw" are never
    // cleared, so a variant without its own "V_sw" takes the previous
    // variant's name, and two "Vidx" after one "Vnfo" share its fixed part.
    const AtomoLetto* fw = nullptr;
    const AtomoLetto* sw = nullptr;
    for (const AtomoLetto& a : atoms) {
      if (a.Tipo == Genere::File) {
        memcpy(&TagInfoFile, a.Dati, kSizeFile);
      } else if (a.Tipo == Genere::VarianteFw) {
        fw = &a;
      } else if (a.Tipo == Genere::VarianteSw) {
        sw = &a;
      } else if (a.Tipo == Genere::Indici) {
        _STagIndexesVarianteTKK indici;
        memcpy(&indici, a.Dati, kSizeIndici);
        if (!IndiceValido(indici.IdxFondiStradali, FondiStradali.size()) ||
            !IndiceValido(indici.IdxPunti, PuntiTracciato.size()) ||
            (!SenzaLogo && !IndiceValido(indici.IdxLogo, Loghi.size())))
          continue;
        if (fw == nullptr) {
          LogEvento(kError.Priorita, kError.Parola, "Can't find STagInfoVarianteTKK_fw");
          return false;
        }
        auto* variante = new STagsInfoVariante(this);
        TagsInfoVarianti.push_back(variante);
        memcpy(&variante->InfoFw, fw->Dati, kSizeVarianteFw);
        if (sw != nullptr) memcpy(&variante->InfoSw, sw->Dati, kSizeVarianteSw);
        variante->Indici = indici;
        variante->FondiStradali = Elemento(FondiStradali, indici.IdxFondiStradali);
        variante->Punti = Elemento(PuntiTracciato, indici.IdxPunti);
        if (!SenzaLogo) variante->Logo = Elemento(Loghi, indici.IdxLogo);
        variante->NomeFileLogoEsterno = nomeLogoEsterno;
      }
    }
    return true;
  } catch (const std::bad_alloc&) {
    LogEvento(kError.Priorita, kError.Parola, "Can't alloc mem");
    return false;
  }
}
