// Saving a track file: the atoms in their fixed order, written atomically.
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <new>

#include "CFileTkk.h"
#include "GuidNomeFile.h"
#include "TrackMemoryRecords.h"
#include "foundation/DurableFile.h"
#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"
#include "platform/IAtomTagPieces.h"
#include "trackfile/LogoFiles.h"
#include "trackfile/PezziTrack.h"
#include "trackfile/TrackFileFormat.h"

using namespace vektkk::tkk;
using vektkk::LogoDaSalvare;

namespace {

constexpr useconds_t kAttesaNomeOccupato = 25000;  // 25 ms, as the name generator
constexpr std::chrono::seconds kAttesaMassimaNome(10);
// Characters of a logo's NomeFile kept as the extension of its own file.
constexpr size_t kEstensioneLogo = 4;

template <typename T>
bool Aggiungi(IAtomTagEncoderBin& enc, std::vector<unsigned char>& out, const char* tag,
              const std::vector<T>& items) {
  const size_t bytes = items.size() * sizeof(T);
  if (bytes > 0xFFFFFFFFu) return false;
  return enc.append(out, tag, items.data(), static_cast<uint32_t>(bytes), 0);
}

std::string PercorsoTrack(const std::string& dir, const std::string& nome) {
  return dir + nome + "." + kEstensione;
}

}  // namespace

std::string CFileTkk::SalvaFileInPath(const std::string& dir, const std::string* nome) {
  if (Escluso()) return "";
  return nome != nullptr ? Salva(dir, *nome, false, false) : Salva(dir, "", true, false);
}

std::string CFileTkk::SalvaFileInPathLogoEsterno(const std::string& dir, const std::string& nome) {
  if (Escluso()) return "";
  return Salva(dir, nome, false, true);
}

bool CFileTkk::Componi(IAtomTagEncoderBin& enc, std::vector<unsigned char>& out,
                       bool logoEsterno) const {
  out.clear();
  out.reserve(DimensioneFile(logoEsterno));
  bool ok = enc.append(out, kTagFile, &TagInfoFile, kSizeFile, 0);
  for (const STagsInfoVariante* v : TagsInfoVarianti) {
    if (v == nullptr) continue;
    // Indexes are written as they stand; nothing is renumbered.
    ok = ok && enc.append(out, kTagVarianteFw, &v->InfoFw, kSizeVarianteFw, 0);
    ok = ok && enc.append(out, kTagVarianteSw, &v->InfoSw, kSizeVarianteSw, 0);
    ok = ok && enc.append(out, kTagIndici, &v->Indici, kSizeIndici, 0);
  }
  for (const SPuntiTracciato* p : PuntiTracciato) ok = ok && Aggiungi(enc, out, kTagPunti, p->Punti);
  for (const SFondiStradali* f : FondiStradali) ok = ok && Aggiungi(enc, out, kTagFondi, f->Fondi);
  if (!logoEsterno) {
    // Logos left out here may leave IdxLogo values pointing past the written
    // "lgo" atoms; readers skip such variants, and the writer keeps the
    // indexes as they are.
    for (const SLogo* l : Loghi)
      if (LogoDaSalvare(l)) ok = ok && Aggiungi(enc, out, kTagLogo, vektkk::PayloadLogo(*l));
  }
  return ok;
}

size_t CFileTkk::DimensioneFile(bool logoEsterno) const {
  const size_t atomo = IAtomTagDecoderBin::GetSizeHeader() + IAtomTagDecoderBin::GetSizeFooter();
  size_t totale = atomo + kSizeFile;
  for (const STagsInfoVariante* v : TagsInfoVarianti)
    if (v != nullptr) totale += 3 * atomo + kSizeVarianteFw + kSizeVarianteSw + kSizeIndici;
  for (const SPuntiTracciato* p : PuntiTracciato) totale += atomo + p->Punti.size() * kSizePunto;
  for (const SFondiStradali* f : FondiStradali) totale += atomo + f->Fondi.size() * kSizeFondo;
  if (!logoEsterno) {
    for (const SLogo* l : Loghi)
      if (LogoDaSalvare(l)) totale += atomo + l->NomeFile.size() + 1 + l->Dati.size();
  }
  return totale;
}

void CFileTkk::ImpostaGuidNomeFile(const std::string& nome) {
  memset(TagInfoFile.GuidNomeFile, 0, sizeof TagInfoFile.GuidNomeFile);
  memcpy(TagInfoFile.GuidNomeFile, nome.data(), std::min(nome.size(), kLunghezzaNome));
}

std::string CFileTkk::Salva(const std::string& dir, const std::string& nome, bool nomeGenerato,
                            bool logoEsterno) {
  char guidPrecedente[sizeof TagInfoFile.GuidNomeFile];
  memcpy(guidPrecedente, TagInfoFile.GuidNomeFile, sizeof guidPrecedente);
  try {
    std::unique_ptr<IAtomTagEncoderBin> enc(IAtomTagEncoderBin::CreateMe());
    if (!enc) return "";

    // Each atom goes out straight from the records; a container that cannot
    // make atoms in pieces gets the whole file composed in one buffer.
    auto* capace = dynamic_cast<IAtomTagPieces*>(enc.get());
    std::vector<unsigned char> bytes;
    vektkk::PezziTrack pezzi;
    const auto componi = [&]() {
      if (capace != nullptr)
        return pezzi.Componi(*capace, TagInfoFile, TagsInfoVarianti, PuntiTracciato,
                             FondiStradali, Loghi, logoEsterno);
      if (!Componi(*enc, bytes, logoEsterno)) return false;
      pezzi.Intero(bytes.data(), bytes.size());
      return true;
    };
    if (!nomeGenerato) {
      ImpostaGuidNomeFile(nome);
      if (componi() &&
          vektkk::ScriviFileAtomico(PercorsoTrack(dir, nome), pezzi.Pezzi(), pezzi.Numero())) {
        // The images follow the track, so a save that fails leaves the old
        // images too. Each goes to dir + nome + the last 4 characters of its
        // name (two logos of one extension share the file); one that cannot
        // be written is skipped and the save still succeeds.
        if (logoEsterno) {
          for (const SLogo* l : Loghi) {
            if (!LogoDaSalvare(l)) continue;
            const std::string& n = l->NomeFile;
            const std::string ext =
                n.size() > kEstensioneLogo ? n.substr(n.size() - kEstensioneLogo) : n;
            vektkk::ScriviFileAtomico(dir + nome + ext, l->Dati.data(), l->Dati.size());
          }
        }
        return nome;
      }
    } else {
      // The name generator may repeat a name within one second: a generated
      // name is used only once no file in `dir` has it, and claiming it is
      // one step with creating the file, so no earlier track is replaced.
      // A clock that does not move would repeat the same names for ever:
      // after ten seconds of taken names the save gives up.
      const auto inizio = std::chrono::steady_clock::now();
      while (std::chrono::steady_clock::now() - inizio < kAttesaMassimaNome) {
        const std::string generato = IGuidNomeFile::GetNomeFile(TrackIsReadOnly, DevTrack);
        const std::string path = PercorsoTrack(dir, generato);
        if (access(path.c_str(), F_OK) == 0) {
          usleep(kAttesaNomeOccupato);
          continue;
        }
        ImpostaGuidNomeFile(generato);
        if (!componi()) break;
        const vektkk::EsitoCreazione esito =
            vektkk::CreaFileEsclusivo(path, pezzi.Pezzi(), pezzi.Numero());
        if (esito == vektkk::EsitoCreazione::Creato) return generato;
        if (esito == vektkk::EsitoCreazione::Errore) break;
        usleep(kAttesaNomeOccupato);
      }
    }
  } catch (const std::bad_alloc&) {
  }
  memcpy(TagInfoFile.GuidNomeFile, guidPrecedente, sizeof guidPrecedente);
  return "";
}
