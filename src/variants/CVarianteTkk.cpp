// The view of one variant record. Variant questions come from the record,
// file questions from its owner; a null record answers defaults.
#include "CVarianteTkk.h"

#include "GuidTkk.h"
#include "IFileTkk.h"
#include "TrackMemoryRecords.h"
#include "trackfile/TextFields.h"
#include "variants/Vocabolari.h"

using vektkk::CopiaCampo;
using vektkk::FineDi;
using vektkk::LeggiCampoLocale;
using vektkk::TestoVuoto;

namespace {

const IFileTkk* Owner(const STagsInfoVariante* r) { return r != nullptr ? r->Owner : nullptr; }
STagDatiPlus* Plus(const STagsInfoVariante* r) { return r != nullptr ? r->DatiPlus : nullptr; }

}  // namespace

CVarianteTkk::CVarianteTkk(STagsInfoVariante* record) : Record(record) {}
CVarianteTkk::~CVarianteTkk() = default;

STagsInfoVariante* CVarianteTkk::GetTagInfo() { return Record; }

std::string CVarianteTkk::GetNomePista() const {
  return Record ? LeggiCampoLocale(Record->InfoSw.NomePista, FineDi(Record->InfoSw)) : std::string();
}

std::string CVarianteTkk::GetTrackNameCompleto() const {
  const std::string pista = GetNomePista();
  return GetNamexSito() + (pista.empty() ? pista : " " + pista);
}

bool CVarianteTkk::IsTrashed() const { return false; }

void CVarianteTkk::GetDateTimeTMModifica(tm& when) const {
  if (const IFileTkk* owner = Owner(Record)) owner->GetDateTimeTMModifica(when);
}

const std::string& CVarianteTkk::GetTrackComment() const {
  return Plus(Record) ? Plus(Record)->Comment : TestoVuoto;
}
void CVarianteTkk::SetTrackComment(const std::string& comment) {
  if (Plus(Record)) Plus(Record)->Comment = comment;
}

std::string CVarianteTkk::GetNationCode() const {
  if (Plus(Record) == nullptr) return std::string();
  return LeggiCampoLocale(Record->InfoFw.NationCode, FineDi(Record->InfoFw));
}
std::string CVarianteTkk::GetSubNationCode() const {
  if (Plus(Record) == nullptr) return std::string();
  return LeggiCampoLocale(Record->InfoFw.SubNationCode, FineDi(Record->InfoFw));
}

std::string CVarianteTkk::GetCitta() const { return Plus(Record) ? Plus(Record)->Citta : std::string(); }

bool CVarianteTkk::GetAuto() const { return true; }
bool CVarianteTkk::GetKart() const { return true; }
bool CVarianteTkk::GetMoto() const { return true; }

_eTipoTracciatoTkk CVarianteTkk::GetTrackTypeCircuitKey() const {
  return Record ? static_cast<_eTipoTracciatoTkk>(Record->InfoFw.TipoTracciato) : TRACCIATO_RACE_TRACK;
}
void CVarianteTkk::SetTrackTypeCircuitKey(const _eTipoTracciatoTkk& key) {
  if (Record) Record->InfoFw.TipoTracciato = key;
}

_eTipoRoadSurfaceTkk CVarianteTkk::GetFondoStradaleKey() const {
  if (Record == nullptr || Record->FondiStradali == nullptr || Record->FondiStradali->Fondi.empty())
    return FONDO_PAVED;
  return Record->FondiStradali->Fondi.front();
}
void CVarianteTkk::SetFondoStradaleKey(const _eTipoRoadSurfaceTkk& key) {
  if (Record == nullptr || Record->FondiStradali == nullptr) return;
  std::vector<_eTipoRoadSurfaceTkk>& fondi = Record->FondiStradali->Fondi;
  if (fondi.empty())
    fondi.push_back(key);
  else
    fondi.front() = key;
}

bool CVarianteTkk::GetTrackIsReadOnly() const { return IsVekTrack(); }
std::string CVarianteTkk::GetStringaVarianti() const { return std::string(); }

std::string CVarianteTkk::GetNamexSito() const {
  const IFileTkk* owner = Owner(Record);
  return owner ? owner->GetNamexSito() : std::string();
}

std::string CVarianteTkk::OttieniStringaxTrackTypeCircuitKey() const {
  return IVarianteTkk::OttieniStringaxTrackTypeCircuitKeyy(GetTrackTypeCircuitKey(), false);
}
std::string CVarianteTkk::OttieniStringaxFondoStradaleKey() const {
  return IVarianteTkk::OttieniStringaxFondoStradaleKeyy(GetFondoStradaleKey(), false);
}
std::string CVarianteTkk::OttieniStringaxLunghezzaKey() const {
  return IVarianteTkk::OttieniStringaxLunghezzaKeyy(GetTrackLenghtKey());
}

std::string CVarianteTkk::GetTrackAddress() const {
  return Plus(Record) ? Plus(Record)->Address : std::string();
}
void CVarianteTkk::SetTrackAddress(const std::string& text) {
  if (Plus(Record)) Plus(Record)->Address = text;
}
std::string CVarianteTkk::GetTrackTelephone() const {
  return Plus(Record) ? Plus(Record)->Telephone : std::string();
}
void CVarianteTkk::SetTrackTelephone(const std::string& text) {
  if (Plus(Record)) Plus(Record)->Telephone = text;
}
std::string CVarianteTkk::GetTrackURL() const { return Plus(Record) ? Plus(Record)->URL : std::string(); }
void CVarianteTkk::SetTrackURL(const std::string& text) {
  if (Plus(Record)) Plus(Record)->URL = text;
}
std::string CVarianteTkk::GetTrackPostalCode() const {
  return Plus(Record) ? Plus(Record)->PostalCode : std::string();
}
void CVarianteTkk::SetTrackPostalCode(const std::string& text) {
  if (Plus(Record)) Plus(Record)->PostalCode = text;
}

unsigned int CVarianteTkk::GetLarghezzaPista() const {
  return Record ? Record->InfoFw.InfoBeacons.GetLarghezzaPista(BEACON_IN_USO) : 0;
}
void CVarianteTkk::SetLarghezzaPista(unsigned int width) {
  if (Record) Record->InfoFw.InfoBeacons.SetLarghezzaPista(width, BEACON_IN_USO);
}

const std::string* CVarianteTkk::GetTrackLogo() const {
  if (Record == nullptr) return nullptr;
  if (Record->Logo != nullptr) return &Record->Logo->NomeFile;
  if (!Record->NomeFileLogoEsterno.empty()) return &Record->NomeFileLogoEsterno;
  return nullptr;
}
SLogo* CVarianteTkk::GetTrackLogoBuffer() const { return Record ? Record->Logo : nullptr; }
void CVarianteTkk::SetTrackLogo(const std::string& path) {
  if (Record != nullptr && Record->Logo != nullptr) Record->Logo->NomeFile = path;
}

float CVarianteTkk::GetTrackLenght() const { return Record ? Record->InfoFw.Lunghezza : 0.0f; }
_eTipoLunghezzaPista CVarianteTkk::GetTrackLenghtKey() const {
  return Record ? static_cast<_eTipoLunghezzaPista>(Record->InfoFw.TipoLunghezza) : LUNGHEZZA_CUSTOM;
}
void CVarianteTkk::SetTrackLenght(const _eTipoLunghezzaPista* key, const float* metres) {
  if (Record) Record->InfoFw.ImpostaLunghezzaPista(key, metres);
}

float CVarianteTkk::GetTrackAnglePlot() const { return Record ? Record->InfoFw.AnglePlot : 0.0f; }
void CVarianteTkk::SetTrackAnglePlot(const float& angle) {
  if (Record) Record->InfoFw.AnglePlot = angle;
}

bool CVarianteTkk::IsTrackChiuso() const {
  return Record == nullptr ||
         IVarianteTkk::IsTrackChiusoo(static_cast<_eTipoTracciatoTkk>(Record->InfoFw.TipoTracciato));
}

short CVarianteTkk::GetIdxVariante() const {
  const IFileTkk* owner = Owner(Record);
  if (owner == nullptr) return -1;
  const short n = static_cast<short>(owner->GetVariantiTrack().size());
  for (short i = 0; i < n; ++i)
    if (owner->GetTagInfoVariante(i) == Record) return i;
  return -1;
}

void CVarianteTkk::AggiornaDataModifica(const tm& when) {
  if (Record) Record->InfoFw.DataModifica.DataOra.CopiaDaTm(when);
}

bool CVarianteTkk::IsTrackObsoleta() const { return false; }

unsigned int CVarianteTkk::GetLineeSplitLLH(const _SDatoCoordinateBeacon*& lines,
                                            _eTipoBeaconDaUsare type) const {
  if (Record == nullptr) {
    lines = nullptr;
    return 0;
  }
  return Record->InfoFw.InfoBeacons.GetLineeSplitLLH(lines, type);
}
void CVarianteTkk::SetLineeSplitLLH(unsigned int idx, const _SDatoCoordinateBeacon& line,
                                    _eTipoBeaconDaUsare type) {
  if (Record) Record->InfoFw.InfoBeacons.SetLineeSplitLLH(idx, line, type);
}
void CVarianteTkk::ClearLineaSplitLLH(unsigned int idx, _eTipoBeaconDaUsare type) {
  if (Record) Record->InfoFw.InfoBeacons.ClearLineaSplitLLH(idx, type);
}

const std::string& CVarianteTkk::GetTrackNomignolo() const {
  return Plus(Record) ? Plus(Record)->Nomignolo : TestoVuoto;
}

bool CVarianteTkk::GetTrackTimeZone(int& zone, int& deltaMin) const {
  if (Record == nullptr) return false;
  zone = Record->InfoFw.TimeZone;
  deltaMin = Record->InfoFw.DeltaMin;
  return true;
}

std::string CVarianteTkk::GetNomeXDevice() const {
  return Record ? LeggiCampoLocale(Record->InfoFw.NomeXDevice, FineDi(Record->InfoFw)) : std::string();
}
void CVarianteTkk::SetNomeXDevice(const std::string& name) {
  if (Record)
    CopiaCampo(Record->InfoFw.NomeXDevice, sizeof Record->InfoFw.NomeXDevice,
               IStrConv::convert_stringa_to_utf8(name));
}

bool CVarianteTkk::IsGood() const { return Owner(Record) != nullptr && Owner(Record)->IsGood(); }
bool CVarianteTkk::IsVekTrack() const { return Owner(Record) != nullptr && Owner(Record)->IsVekTrack(); }
bool CVarianteTkk::IsDevTrack() const { return Owner(Record) != nullptr && Owner(Record)->IsDevTrack(); }

bool CVarianteTkk::IsUserCreatedNewTrack() const {
  const IFileTkk* owner = Owner(Record);
  if (owner == nullptr || owner->IsVekTrack()) return false;
  return !IGuidTkk::IsVek(Record->InfoFw.Guid);
}

std::string CVarianteTkk::GetGuidNomeFile() const {
  return Owner(Record) ? Owner(Record)->GetGuidNomeFile() : std::string();
}
std::string CVarianteTkk::GetNomeFileDaFileSystem() const {
  return Owner(Record) ? Owner(Record)->GetNomeFileDaFileSystem() : std::string();
}
