// The descriptive attributes of a track, answered from its main variant.
// Without a variant the getters answer their defaults and the setters do
// nothing.
#include "CFileTkk.h"
#include "GuidTkk.h"
#include "TrackMemoryRecords.h"
#include "trackfile/TextFields.h"
#include "variants/Vocabolari.h"

using vektkk::CopiaCampo;
using vektkk::FineDi;
using vektkk::LeggiCampoLocale;

STagsInfoVariante* CFileTkk::Main() const {
  return TagsInfoVarianti.empty() ? nullptr : TagsInfoVarianti.front();
}

STagDatiPlus* CFileTkk::MainPlus() const {
  const STagsInfoVariante* main = Main();
  return main != nullptr ? main->DatiPlus : nullptr;
}

std::string CFileTkk::GetNamexSito() const {
  return LeggiCampoLocale(TagInfoFile.NamexSito, FineDi(TagInfoFile));
}

void CFileTkk::SetNamexSito(const std::string& name) {
  CopiaCampo(TagInfoFile.NamexSito, sizeof TagInfoFile.NamexSito,
             IStrConv::convert_stringa_to_utf8(name));
}

std::string CFileTkk::GetGuidNomeFile() const {
  return IStrConv::convert_utf8_to_stringa(
      std::string(TagInfoFile.GuidNomeFile, sizeof TagInfoFile.GuidNomeFile));
}

std::string CFileTkk::GetNomeFileDaFileSystem() const {
  return IStrConv::convert_utf8_to_stringa(
      std::string(NomeFileDaFileSystem, sizeof NomeFileDaFileSystem));
}

std::string CFileTkk::GetNomeXDevice() const {
  const STagsInfoVariante* main = Main();
  return main ? LeggiCampoLocale(main->InfoFw.NomeXDevice, FineDi(main->InfoFw)) : std::string();
}

void CFileTkk::SetNomeXDevice(const std::string& name) {
  STagsInfoVariante* main = Main();
  if (main == nullptr) return;
  CopiaCampo(main->InfoFw.NomeXDevice, sizeof main->InfoFw.NomeXDevice,
             IStrConv::convert_stringa_to_utf8(name));
}

std::string CFileTkk::GetNomePista() const {
  const STagsInfoVariante* main = Main();
  return main ? LeggiCampoLocale(main->InfoSw.NomePista, FineDi(main->InfoSw)) : std::string();
}

std::string CFileTkk::GetTrackNameCompleto() const {
  // The file composes with the device name, a variant view with its track
  // name.
  const std::string device = GetNomeXDevice();
  return GetNamexSito() + (device.empty() ? device : " " + device);
}

std::string CFileTkk::GetNationCode() const {
  const STagsInfoVariante* main = Main();
  return main ? LeggiCampoLocale(main->InfoFw.NationCode, FineDi(main->InfoFw)) : std::string();
}

std::string CFileTkk::GetSubNationCode() const {
  const STagsInfoVariante* main = Main();
  return main ? LeggiCampoLocale(main->InfoFw.SubNationCode, FineDi(main->InfoFw)) : std::string();
}

// The codes are copied as bytes, without conversion, unlike the names.
void CFileTkk::SetNationCode(const std::string& code) {
  STagsInfoVariante* main = Main();
  if (main != nullptr) CopiaCampo(main->InfoFw.NationCode, sizeof main->InfoFw.NationCode, code);
}

void CFileTkk::SetSubNationCode(const std::string& code) {
  STagsInfoVariante* main = Main();
  if (main != nullptr)
    CopiaCampo(main->InfoFw.SubNationCode, sizeof main->InfoFw.SubNationCode, code);
}

// Additional texts are kept as given, never converted.
std::string CFileTkk::GetCitta() const { return MainPlus() ? MainPlus()->Citta : std::string(); }
void CFileTkk::SetCitta(const std::string& city) {
  if (MainPlus()) MainPlus()->Citta = city;
}
std::string CFileTkk::GetTrackAddress() const {
  return MainPlus() ? MainPlus()->Address : std::string();
}
void CFileTkk::SetTrackAddress(const std::string& text) {
  if (MainPlus()) MainPlus()->Address = text;
}
std::string CFileTkk::GetTrackTelephone() const {
  return MainPlus() ? MainPlus()->Telephone : std::string();
}
void CFileTkk::SetTrackTelephone(const std::string& text) {
  if (MainPlus()) MainPlus()->Telephone = text;
}
std::string CFileTkk::GetTrackURL() const { return MainPlus() ? MainPlus()->URL : std::string(); }
void CFileTkk::SetTrackURL(const std::string& text) {
  if (MainPlus()) MainPlus()->URL = text;
}
std::string CFileTkk::GetTrackPostalCode() const {
  return MainPlus() ? MainPlus()->PostalCode : std::string();
}
void CFileTkk::SetTrackPostalCode(const std::string& text) {
  if (MainPlus()) MainPlus()->PostalCode = text;
}
const std::string& CFileTkk::GetTrackNomignolo() const {
  return MainPlus() ? MainPlus()->Nomignolo : vektkk::TestoVuoto;
}

// The file's comment lives in its first additional-text record, whichever
// variant links to it.
const std::string& CFileTkk::GetTrackComment() const {
  return TagsDatiPlus.empty() ? vektkk::TestoVuoto : TagsDatiPlus.front()->Comment;
}
void CFileTkk::SetTrackComment(const std::string& comment) {
  if (!TagsDatiPlus.empty()) TagsDatiPlus.front()->Comment = comment;
}

// Every track serves cars, karts and motorbikes alike.
bool CFileTkk::GetAuto() const { return true; }
bool CFileTkk::GetKart() const { return true; }
bool CFileTkk::GetMoto() const { return true; }
bool CFileTkk::IsTrackObsoleta() const { return false; }
std::string CFileTkk::GetStringaVarianti() const { return std::string(); }

_eTipoTracciatoTkk CFileTkk::GetTrackTypeCircuitKey() const {
  const STagsInfoVariante* main = Main();
  return main ? static_cast<_eTipoTracciatoTkk>(main->InfoFw.TipoTracciato) : TRACCIATO_RACE_TRACK;
}

void CFileTkk::SetTrackTypeCircuitKey(const _eTipoTracciatoTkk& key) {
  if (STagsInfoVariante* main = Main()) main->InfoFw.TipoTracciato = key;
}

bool CFileTkk::IsTrackChiuso() const {
  const STagsInfoVariante* main = Main();
  return main == nullptr ||
         IVarianteTkk::IsTrackChiusoo(static_cast<_eTipoTracciatoTkk>(main->InfoFw.TipoTracciato));
}

_eTipoRoadSurfaceTkk CFileTkk::GetFondoStradaleKey() const {
  const STagsInfoVariante* main = Main();
  if (main == nullptr || main->FondiStradali == nullptr || main->FondiStradali->Fondi.empty())
    return FONDO_PAVED;
  return main->FondiStradali->Fondi.front();
}

void CFileTkk::SetFondoStradaleKey(const _eTipoRoadSurfaceTkk& key) {
  STagsInfoVariante* main = Main();
  if (main != nullptr && main->FondiStradali != nullptr && !main->FondiStradali->Fondi.empty()) {
    main->FondiStradali->Fondi.front() = key;
    return;
  }
  // No entry to replace: a new variant is added first, even when a main
  // variant exists with an empty list, and the key then goes to the main
  // variant's list.
  _STagInfoVarianteTKK_fw nuovo;
  memset(nuovo.NationCode, 0, sizeof nuovo.NationCode + sizeof nuovo.SubNationCode);
  AddTagInfoVariante(std::string(), std::string(), nuovo, _STagIndexesVarianteTKK());
  main = Main();
  if (main == nullptr) return;
  if (main->FondiStradali == nullptr) {
    FondiStradali.push_back(new SFondiStradali);
    main->FondiStradali = FondiStradali.back();
    main->Indici.IdxFondiStradali = static_cast<uint16_t>(FondiStradali.size() - 1);
  }
  main->FondiStradali->Fondi.push_back(key);
}

std::string CFileTkk::OttieniStringaxTrackTypeCircuitKey() const {
  return IVarianteTkk::OttieniStringaxTrackTypeCircuitKeyy(GetTrackTypeCircuitKey(), false);
}
std::string CFileTkk::OttieniStringaxFondoStradaleKey() const {
  return IVarianteTkk::OttieniStringaxFondoStradaleKeyy(GetFondoStradaleKey(), false);
}
std::string CFileTkk::OttieniStringaxLunghezzaKey() const {
  return IVarianteTkk::OttieniStringaxLunghezzaKeyy(GetTrackLenghtKey());
}

float CFileTkk::GetTrackLenght() const {
  const STagsInfoVariante* main = Main();
  return main ? main->InfoFw.Lunghezza : 0.0f;
}

_eTipoLunghezzaPista CFileTkk::GetTrackLenghtKey() const {
  const STagsInfoVariante* main = Main();
  return main ? static_cast<_eTipoLunghezzaPista>(main->InfoFw.TipoLunghezza) : LUNGHEZZA_CUSTOM;
}

void CFileTkk::SetTrackLenght(const _eTipoLunghezzaPista* key, const float* metres) {
  if (STagsInfoVariante* main = Main()) main->InfoFw.ImpostaLunghezzaPista(key, metres);
}

float CFileTkk::GetTrackAnglePlot() const {
  const STagsInfoVariante* main = Main();
  return main ? main->InfoFw.AnglePlot : 0.0f;
}

void CFileTkk::SetTrackAnglePlot(const float& angle) {
  if (STagsInfoVariante* main = Main()) main->InfoFw.AnglePlot = angle;
}

bool CFileTkk::GetTrackTimeZone(int& zone, int& deltaMin) const {
  const STagsInfoVariante* main = Main();
  if (main == nullptr) return false;
  zone = main->InfoFw.TimeZone;
  deltaMin = main->InfoFw.DeltaMin;
  return true;
}

int CFileTkk::GetTimeZone() const { return Main() ? Main()->InfoFw.TimeZone : 0; }
int CFileTkk::GetDeltaMin() const { return Main() ? Main()->InfoFw.DeltaMin : 0; }
void CFileTkk::SetTimezone(const int& zone) {
  if (STagsInfoVariante* main = Main()) main->InfoFw.TimeZone = zone;
}
void CFileTkk::SetDeltaMin(const int& minutes) {
  if (STagsInfoVariante* main = Main()) main->InfoFw.DeltaMin = minutes;
}

void CFileTkk::GetDateTimeTMModifica(tm& when) const {
  if (const STagsInfoVariante* main = Main()) main->InfoFw.DataModifica.DataOra.CopiaInTm(when);
}

void CFileTkk::AggiornaDataModifica(const tm& when) {
  if (STagsInfoVariante* main = Main()) main->InfoFw.DataModifica.DataOra.CopiaDaTm(when);
}

bool CFileTkk::HasShape() const {
  const STagsInfoVariante* main = Main();
  return main != nullptr && main->Punti != nullptr && !main->Punti->Punti.empty();
}

void CFileTkk::RemoveShape() {
  STagsInfoVariante* main = Main();
  if (main != nullptr && main->Punti != nullptr) main->Punti->Punti.clear();
}

bool CFileTkk::IsUserCreatedNewTrack() const {
  const STagsInfoVariante* main = Main();
  if (TrackIsReadOnly || main == nullptr) return false;
  return !IGuidTkk::IsVek(main->InfoFw.Guid);
}

const std::vector<IVarianteTkk*>& CFileTkk::GetVariantiTrack() const { return VariantiTrack; }
