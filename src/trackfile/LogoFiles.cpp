#include "trackfile/LogoFiles.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <unistd.h>

#include "foundation/SistemaFile.h"
#include "foundation/DurableFile.h"
#include "platform/IStrConv.h"

namespace vektkk {
namespace {

// A track path ends in the 8-character name, a dot and "tkk": 12 characters.
constexpr size_t kCodaNomeTrack = 12;
// Images this short are not worth a file of their own.
constexpr size_t kMinimoImmagineSuDisco = 5;

bool Esiste(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

bool NomeSicuro(const std::string& nome) {
  return !nome.empty() && nome != "." && nome != ".." &&
         nome.find_first_of("/\\") == std::string::npos;
}

void ScriviImmagine(const SLogo& logo, const std::string& cartella, const std::string& base,
                    const std::string& estensione, bool nuovoNomeLogo, NumeriLogo& numeri) {
  // An image file counts as there when it opens for reading and writing;
  // one that exists but does not open so is neither replaced nor copied.
  // Most reads find the image there: nothing is written then.
  const int fd = sys::Open(logo.NomeFile.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd >= 0) {
    sys::Close(fd);
    if (!nuovoNomeLogo) return;
  } else {
    if (errno != ENOENT) return;
    const EsitoCreazione esito =
        CreaFileEsclusivo(logo.NomeFile, logo.Dati.data(), logo.Dati.size());
    if (esito != EsitoCreazione::GiaEsistente || !nuovoNomeLogo) return;
  }
  // Numbers below the one remembered were found taken or taken by this read.
  unsigned long& n = numeri.emplace(logo.NomeFile, 1).first->second;
  for (;; ++n) {
    const std::string numerato = cartella + base + std::to_string(n) + estensione;
    if (Esiste(numerato)) continue;
    const EsitoCreazione e = CreaFileEsclusivo(numerato, logo.Dati.data(), logo.Dati.size());
    if (e == EsitoCreazione::Creato) ++n;
    if (e != EsitoCreazione::GiaEsistente) return;
  }
}

}  // namespace

std::string NomeSenzaCartella(const std::string& path) {
  const size_t sep = path.find_last_of("/\\");
  return sep == std::string::npos ? path : path.substr(sep + 1);
}

void CompletaLogo(SLogo& logo, const std::string& nome, const std::string& trackPath,
                  bool nuovoNomeLogo, NumeriLogo& numeri) {
  // Base and extension are converted separately; with no dot the whole name
  // counts as the extension.
  const size_t punto = nome.find_last_of('.');
  const std::string base =
      punto == std::string::npos ? std::string() : IStrConv::convert_utf8_to_stringa(nome.substr(0, punto));
  const std::string estensione = IStrConv::convert_utf8_to_stringa(
      punto == std::string::npos ? nome : nome.substr(punto));
  const std::string cartella =
      trackPath.size() > kCodaNomeTrack ? trackPath.substr(0, trackPath.size() - kCodaNomeTrack)
                                        : std::string();
  logo.NomeFile = cartella + base + estensione;
  // The stored name is a bare file name; one that would lead out of the
  // track's directory is kept in memory but never written to.
  if (logo.Dati.size() > kMinimoImmagineSuDisco && NomeSicuro(nome))
    ScriviImmagine(logo, cartella, base, estensione, nuovoNomeLogo, numeri);
}

bool LogoDaSalvare(const SLogo* logo) {
  // Logos of this size or less are neither embedded nor written out.
  constexpr size_t kMinimoLogo = 9;
  return logo != nullptr && !logo->NomeFile.empty() && logo->Dati.size() > kMinimoLogo;
}

std::vector<unsigned char> PayloadLogo(const SLogo& logo) {
  const std::string nome = IStrConv::convert_stringa_to_utf8(NomeSenzaCartella(logo.NomeFile));
  std::vector<unsigned char> payload(nome.begin(), nome.end());
  payload.push_back(0);
  payload.insert(payload.end(), logo.Dati.begin(), logo.Dati.end());
  return payload;
}

}  // namespace vektkk
