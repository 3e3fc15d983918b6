// The descriptive attributes of a track, answered from its main variant.
// Where the file answers exactly as a view of its main variant would, it
// asks such a view; without a variant the view's defaults are the file's.
// The file differs from a view in its own places: the full name, the
// nation codes, the comment, the date, the road-surface setter and the
// file-wide flags and names.
#include "CFileTkk.h"
#include "CVarianteTkk.h"
#include "TrackMemoryRecords.h"
#include "trackfile/TextFields.h"
#include "variants/Vocabolari.h"

using vektkk::CopiaCampo;
using vektkk::FineDi;
using vektkk::LeggiCampoLocale;

STagsInfoVariante* CFileTkk::Main() const {
  return TagsInfoVarianti.empty() ? nullptr : TagsInfoVarianti.front();
}

CVarianteTkk CFileTkk::VistaMain() const { return CVarianteTkk(Main()); }

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

std::string CFileTkk::GetNomeXDevice() const { return VistaMain().GetNomeXDevice(); }
void CFileTkk::SetNomeXDevice(const std::string& name) { VistaMain().SetNomeXDevice(name); }
std::string CFileTkk::GetNomePista() const { return VistaMain().GetNomePista(); }

std::string CFileTkk::GetTrackNameCompleto() const {
  // The file composes with the device name, a variant view with its track
  // name.
  const std::string device = GetNomeXDevice();
  return GetNamexSito() + (device.empty() ? device : " " + device);
}

// Unlike a view, the file answers the codes whether or not the main variant
// has an additional-text record.
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

// Additional texts of the main variant, kept as given, never converted.
std::string CFileTkk::GetCitta() const { return VistaMain().GetCitta(); }
void CFileTkk::SetCitta(const std::string& city) {
  if (Main() != nullptr && Main()->DatiPlus != nullptr) Main()->DatiPlus->Citta = city;
}
std::string CFileTkk::GetTrackAddress() const { return VistaMain().GetTrackAddress(); }
void CFileTkk::SetTrackAddress(const std::string& text) { VistaMain().SetTrackAddress(text); }
std::string CFileTkk::GetTrackTelephone() const { return VistaMain().GetTrackTelephone(); }
void CFileTkk::SetTrackTelephone(const std::string& text) { VistaMain().SetTrackTelephone(text); }
std::string CFileTkk::GetTrackURL() const { return VistaMain().GetTrackURL(); }
void CFileTkk::SetTrackURL(const std::string& text) { VistaMain().SetTrackURL(text); }
std::string CFileTkk::GetTrackPostalCode() const { return VistaMain().GetTrackPostalCode(); }
void CFileTkk::SetTrackPostalCode(const std::string& text) { VistaMain().SetTrackPostalCode(text); }
// The name lives in the record, not in the short-lived view.
const std::string& CFileTkk::GetTrackNomignolo() const { return VistaMain().GetTrackNomignolo(); }

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
  return VistaMain().GetTrackTypeCircuitKey();
}
void CFileTkk::SetTrackTypeCircuitKey(const _eTipoTracciatoTkk& key) {
  VistaMain().SetTrackTypeCircuitKey(key);
}
bool CFileTkk::IsTrackChiuso() const { return VistaMain().IsTrackChiuso(); }
_eTipoRoadSurfaceTkk CFileTkk::GetFondoStradaleKey() const { return VistaMain().GetFondoStradaleKey(); }

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

float CFileTkk::GetTrackLenght() const { return VistaMain().GetTrackLenght(); }
_eTipoLunghezzaPista CFileTkk::GetTrackLenghtKey() const { return VistaMain().GetTrackLenghtKey(); }
void CFileTkk::SetTrackLenght(const _eTipoLunghezzaPista* key, const float* metres) {
  VistaMain().SetTrackLenght(key, metres);
}
float CFileTkk::GetTrackAnglePlot() const { return VistaMain().GetTrackAnglePlot(); }
void CFileTkk::SetTrackAnglePlot(const float& angle) { VistaMain().SetTrackAnglePlot(angle); }

bool CFileTkk::GetTrackTimeZone(int& zone, int& deltaMin) const {
  return VistaMain().GetTrackTimeZone(zone, deltaMin);
}
int CFileTkk::GetTimeZone() const { return Main() ? Main()->InfoFw.TimeZone : 0; }
int CFileTkk::GetDeltaMin() const { return Main() ? Main()->InfoFw.DeltaMin : 0; }
void CFileTkk::SetTimezone(const int& zone) {
  if (STagsInfoVariante* main = Main()) main->InfoFw.TimeZone = zone;
}
void CFileTkk::SetDeltaMin(const int& minutes) {
  if (STagsInfoVariante* main = Main()) main->InfoFw.DeltaMin = minutes;
}

// A view reads the date through its owner, that is here.
void CFileTkk::GetDateTimeTMModifica(tm& when) const {
  if (const STagsInfoVariante* main = Main()) main->InfoFw.DataModifica.DataOra.CopiaInTm(when);
}
void CFileTkk::AggiornaDataModifica(const tm& when) { VistaMain().AggiornaDataModifica(when); }

bool CFileTkk::HasShape() const {
  const STagsInfoVariante* main = Main();
  return main != nullptr && main->Punti != nullptr && !main->Punti->Punti.empty();
}

void CFileTkk::RemoveShape() {
  STagsInfoVariante* main = Main();
  if (main != nullptr && main->Punti != nullptr) main->Punti->Punti.clear();
}

bool CFileTkk::IsUserCreatedNewTrack() const { return VistaMain().IsUserCreatedNewTrack(); }

const std::vector<IVarianteTkk*>& CFileTkk::GetVariantiTrack() const { return VariantiTrack; }
