// Reading a track file: one read of the whole file, one decode, then two
// passes over the atoms (first the shared lists, then the variants).
#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <new>

#include "CFileTkk.h"
#include "GuidNomeFile.h"
#include "TrackMemoryRecords.h"
#include "foundation/LogEvento.h"
#include "platform/IAtomTagDecoderBin.h"
#include "trackfile/LogoFiles.h"
#include "trackfile/TrackFileFormat.h"

using namespace vektkk::tkk;

namespace {

enum class EsitoLettura { Ok, NonApribile, Vuoto, Memoria };

// Larger files cannot be track files: their size does not fit the 32-bit
// size the object keeps.
constexpr uint64_t kDimensioneMassima = 0xFFFFFFFFu;

// The whole file in one buffer; its size is reported even when empty.
// The buffer is not zero-filled first: every byte is read over.
EsitoLettura LeggiTutto(const std::string& path, std::unique_ptr<unsigned char[]>& buffer,
                        uint64_t& size) {
  size = 0;
  // O_NONBLOCK: a FIFO or a device must not keep the open waiting; only a
  // regular file is read, and its reads ignore the flag.
  const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return EsitoLettura::NonApribile;
  struct stat st;
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    close(fd);
    return EsitoLettura::NonApribile;
  }
  size = static_cast<uint64_t>(st.st_size);
  if (size == 0) {
    close(fd);
    return EsitoLettura::Vuoto;
  }
  if (size > kDimensioneMassima || size > SIZE_MAX) {
    close(fd);
    return EsitoLettura::Memoria;
  }
  EsitoLettura esito = EsitoLettura::Ok;
  try {
    const size_t totale = static_cast<size_t>(size);
    buffer.reset(new unsigned char[totale]);
    size_t letti = 0;
    while (letti < totale) {
      const ssize_t n = read(fd, buffer.get() + letti, totale - letti);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      letti += static_cast<size_t>(n);
    }
    if (letti != totale) esito = EsitoLettura::NonApribile;
  } catch (const std::bad_alloc&) {
    esito = EsitoLettura::Memoria;
  }
  close(fd);
  return esito;
}

bool Conta(const std::vector<SAtomTag>& atoms, const char* tag, uint32_t size, size_t& count) {
  count = 0;
  for (const SAtomTag& a : atoms)
    if (a.Tag == tag && a.Dim == size) ++count;
  return count > 0;
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
    Svuota();
    std::unique_ptr<unsigned char[]> buffer;
    uint64_t size = 0;
    const EsitoLettura esito = LeggiTutto(path, buffer, size);
    DimTkk = static_cast<uint32_t>(size);
    switch (esito) {
      case EsitoLettura::NonApribile:
        LogEvento(kError.Priorita, kError.Parola, "Can't open file %s", path.c_str());
        return false;
      case EsitoLettura::Vuoto:
        LogEvento(kError.Priorita, kError.Parola, "Zero length file %s", path.c_str());
        return false;
      case EsitoLettura::Memoria:
        LogEvento(kError.Priorita, kError.Parola, "Can't alloc mem");
        return false;
      case EsitoLettura::Ok:
        break;
    }
    const std::string nomeLogoEsterno = GetNomeFileEsterno(path);

    // The file's own name tells whether it is a maker's or a development
    // track; a name that does not decode leaves both flags as they were.
    const size_t sep = path.find_last_of("\\/");
    if (sep != std::string::npos) {
      tm creazione;
      memset(&creazione, 0, sizeof creazione);
      IGuidNomeFile::GetDaNomeFile(path.substr(sep + 1, kLunghezzaNome), creazione,
                                   TrackIsReadOnly, DevTrack);
    }

    std::unique_ptr<IAtomTagDecoderBin> decoder(IAtomTagDecoderBin::CreateMe());
    if (!decoder) {
      LogEvento(kError.Priorita, kError.Parola, "Can't alloc mem");
      return false;
    }
    std::vector<SAtomTag> atoms;
    const bool decodificato = decoder->decode(buffer.get(), static_cast<size_t>(size), atoms);
    decoder.reset();

    size_t nFile = 0, nFw = 0, nIdx = 0;
    Conta(atoms, kTagFile, kSizeFile, nFile);
    Conta(atoms, kTagVarianteFw, kSizeVarianteFw, nFw);
    Conta(atoms, kTagIndici, kSizeIndici, nIdx);
    if (!decodificato || nFile == 0 || nFw != nIdx) {
      LogEvento(kError.Priorita, kError.Parola, "Can't interpret file %s", path.c_str());
      return false;
    }

    // First pass: road-surface lists, shapes and logos, in file order.
    vektkk::NumeriLogo numeriLogo;
    for (const SAtomTag& a : atoms) {
      if (a.Tag == kTagFondi && a.Dim != 0 && a.Dim % kSizeFondo == 0) {
        auto* fondi = new SFondiStradali;
        FondiStradali.push_back(fondi);
        fondi->Fondi.resize(a.Dim / kSizeFondo);
        memcpy(fondi->Fondi.data(), a.Dati, a.Dim);
      } else if (a.Tag == kTagPunti && a.Dim != 0 && a.Dim % kSizePunto == 0) {
        auto* punti = new SPuntiTracciato;
        PuntiTracciato.push_back(punti);
        punti->Punti.resize(a.Dim / kSizePunto);
        memcpy(punti->Punti.data(), a.Dati, a.Dim);
      } else if (a.Tag == kTagLogo && !SenzaLogo) {
        Loghi.push_back(vektkk::LogoDaAtomo(a.Dati, a.Dim, path, nuovoNomeLogo, numeriLogo));
      }
    }

    // Second pass: variants. The current "Vnfo" and "V_sw" are never
    // cleared, so a variant without its own "V_sw" takes the previous
    // variant's name, and two "Vidx" after one "Vnfo" share its fixed part.
    const SAtomTag* fw = nullptr;
    const SAtomTag* sw = nullptr;
    for (const SAtomTag& a : atoms) {
      if (a.Tag == kTagFile && a.Dim == kSizeFile) {
        memcpy(&TagInfoFile, a.Dati, kSizeFile);
      } else if (a.Tag == kTagVarianteFw && a.Dim == kSizeVarianteFw) {
        fw = &a;
      } else if (a.Tag == kTagVarianteSw && a.Dim == kSizeVarianteSw) {
        sw = &a;
      } else if (a.Tag == kTagIndici && a.Dim == kSizeIndici) {
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
