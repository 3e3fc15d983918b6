// Building a track in memory: the Add operations. Each returns the index a
// variant's _STagIndexesVarianteTKK must carry to use what was added.
#include <string.h>

#include <memory>
#include <new>
#include <utility>

#include "CFileTkk.h"
#include "CVarianteTkk.h"
#include "GuidTkk.h"
#include "TrackMemoryRecords.h"
#include "foundation/LogEvento.h"
#include "platform/IStrConv.h"
#include "trackfile/TextFields.h"
#include "trackfile/TrackFileFormat.h"

using namespace vektkk::tkk;
using vektkk::CopiaCampo;

namespace {

// Shapes are kept below 8000 points: from 8000 on, every second point is
// kept, from 16000 every third, and so on.
constexpr size_t kPuntiPerPasso = 8000;

template <typename T>
uint16_t UltimoIndice(const std::vector<T*>& list) {
  return static_cast<uint16_t>(list.size() - 1);  // 0xFFFF when empty
}

template <typename T>
bool IndiceValido(uint16_t idx, const std::vector<T*>& list) {
  return idx == kNessunIndice || idx < list.size();
}

template <typename T>
T* Elemento(const std::vector<T*>& list, uint16_t idx) {
  return idx == kNessunIndice ? nullptr : list[idx];
}

}  // namespace

bool CFileTkk::Escluso() const {
  if (!SoloLettura && !SenzaLogo) return false;
  LogEvento(kAlert.Priorita, kAlert.Parola, "Excluded, hence skipping!");
  return true;
}

uint16_t CFileTkk::AddTagDatiPlus(const STagDatiPlus& plus) {
  if (Escluso()) return UltimoIndice(TagsDatiPlus);
  try {
    TagsDatiPlus.reserve(TagsDatiPlus.size() + 1);
    TagsDatiPlus.push_back(new STagDatiPlus(plus));
  } catch (const std::bad_alloc&) {
  }
  return UltimoIndice(TagsDatiPlus);
}

uint16_t CFileTkk::AddDatiFondoStradale(const std::vector<_eTipoRoadSurfaceTkk>& fondi) {
  if (Escluso()) return UltimoIndice(FondiStradali);
  if (fondi.empty()) return kNessunIndice;
  try {
    FondiStradali.reserve(FondiStradali.size() + 1);
    FondiStradali.push_back(new SFondiStradali{fondi});
  } catch (const std::bad_alloc&) {
    return kNessunIndice;
  }
  return UltimoIndice(FondiStradali);
}

uint16_t CFileTkk::AddTagDatiPuntiTracciato(const std::vector<_t_s_lla_i>& punti) {
  if (Escluso()) return UltimoIndice(PuntiTracciato);
  if (punti.empty()) return kNessunIndice;
  try {
    // Copy one point, skip `passo`, copy the next...; the walk may end in
    // the middle of a skip.
    const size_t passo = punti.size() / kPuntiPerPasso;
    std::vector<_t_s_lla_i> diradati;
    diradati.reserve(punti.size() / (passo + 1) + 1);
    for (size_t i = 0; i < punti.size(); i += passo + 1) diradati.push_back(punti[i]);
    PuntiTracciato.reserve(PuntiTracciato.size() + 1);
    PuntiTracciato.push_back(new SPuntiTracciato{std::move(diradati)});
  } catch (const std::bad_alloc&) {
    return kNessunIndice;
  }
  return UltimoIndice(PuntiTracciato);
}

uint16_t CFileTkk::AddTagDatiLogo(const std::vector<unsigned char>& image,
                                  const std::string& nomeFile) {
  if (Escluso()) return kNessunIndice;
  if (image.empty()) return kNessunIndice;
  try {
    Loghi.reserve(Loghi.size() + 1);
    Loghi.push_back(new SLogo{image, nomeFile});
  } catch (const std::bad_alloc&) {
    return kNessunIndice;
  }
  return UltimoIndice(Loghi);
}

bool CFileTkk::AddTagInfoVariante(const std::string& nomePista, const std::string& nomeXDevice,
                                  const _STagInfoVarianteTKK_fw& infoFw,
                                  const _STagIndexesVarianteTKK& indici) {
  if (Escluso()) return false;
  if (!IndiceValido(indici.IdxDatiPlus, TagsDatiPlus) ||
      !IndiceValido(indici.IdxFondiStradali, FondiStradali) ||
      !IndiceValido(indici.IdxPunti, PuntiTracciato) || !IndiceValido(indici.IdxLogo, Loghi))
    return false;
  try {
    std::unique_ptr<STagsInfoVariante> variante(new STagsInfoVariante(this));
    variante->InfoFw = infoFw;
    CopiaCampo(variante->InfoFw.NomeXDevice, sizeof variante->InfoFw.NomeXDevice,
               IStrConv::convert_stringa_to_utf8(nomeXDevice));
    CopiaCampo(variante->InfoSw.NomePista, sizeof variante->InfoSw.NomePista,
               IStrConv::convert_stringa_to_utf8(nomePista));
    variante->Indici = indici;
    variante->DatiPlus = Elemento(TagsDatiPlus, indici.IdxDatiPlus);
    variante->FondiStradali = Elemento(FondiStradali, indici.IdxFondiStradali);
    variante->Punti = Elemento(PuntiTracciato, indici.IdxPunti);
    variante->Logo = Elemento(Loghi, indici.IdxLogo);
    // A user's track always uses the user's beacons.
    if (!TrackIsReadOnly) variante->InfoFw.InfoBeacons.TipoBeaconInUso = BEACON_USER;
    if (variante->InfoFw.Guid.Valore == 0)
      variante->InfoFw.Guid = IGuidTkk::GetGuidTkk(TrackIsReadOnly, DevTrack);
    // Views handed out before stay valid: the new one is appended.
    std::unique_ptr<CVarianteTkk> vista(new CVarianteTkk(variante.get()));
    TagsInfoVarianti.reserve(TagsInfoVarianti.size() + 1);
    VariantiTrack.reserve(VariantiTrack.size() + 1);
    TagsInfoVarianti.push_back(variante.release());
    VariantiTrack.push_back(vista.release());
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}
