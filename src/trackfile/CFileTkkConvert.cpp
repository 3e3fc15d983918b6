// Turning a development track into a maker's track, the maker bit, the
// reference point and the length refreshed from the shape.
#include <memory>

#include "CDistanceCalculator.h"
#include "CFileTkk.h"
#include "TrackMemoryRecords.h"
#include "foundation/LogEvento.h"

namespace {

// Bit 7 of byte 5 of a GUID: set for any track that is not the maker's.
constexpr unsigned char kBitMaker = 0x80;
constexpr double kPassiPerGrado = 10000000.0;

int32_t Arrotonda(double gradi) {
  const double scaled = gradi * kPassiPerGrado;
  return static_cast<int32_t>(scaled > 0.0 ? scaled + 0.5 : scaled - 0.5);
}

}  // namespace

void CFileTkk::TrasformaPistaInVek() {
  // A toggle, not a set: applied twice the GUID is as it was.
  if (STagsInfoVariante* main = Main()) main->InfoFw.Guid.Byte[5] ^= kBitMaker;
}

void CFileTkk::SetBaricentro(const double& lat, const double& lon) {
  STagsInfoVariante* main = Main();
  if (main == nullptr) return;
  main->InfoFw.LatRif = Arrotonda(lat);
  main->InfoFw.LonRif = Arrotonda(lon);
}

bool CFileTkk::TrasformaPistaUtenteInVek(const std::string& path, _eTipoBeaconDaUsare type) {
  if (!IsDevTrack()) {
    LogEvento(kError.Priorita, kError.Parola, "La pista e' gia' Vek");
    return false;
  }
  const STagsInfoVariante* main = GetTagInfoVariante(0);
  if (main == nullptr) return false;
  std::unique_ptr<IFileTkk> vek(IFileTkk::CreateMe(true, false));
  if (!vek) return false;
  // Only the main variant's records and names are carried over; the copy
  // has no shape, surfaces, logo, additional texts or site name.
  const _STagInfoVarianteTKK_fw fw = main->InfoFw;
  const _STagIndexesVarianteTKK indici = main->Indici;
  vek->AddTagInfoVariante(GetNomePista(), GetNomeXDevice(), fw, indici);
  if (!vek->TrasformaSetDiBeacon(type)) return false;
  vek->TrasformaPistaInVek();
  vek->SalvaFileInPath(path, nullptr);
  // Hosts have always received false here, also after a good save.
  return false;
}

bool CFileTkk::AssignTrackLength() {
  STagsInfoVariante* main = Main();
  if (main == nullptr) return true;
  // The shape adds nothing: the length assigned here is always 0.0 whatever
  // the points, and devices expect exactly that.
  const double lunghezza = 0.0;
  const std::string nome = GetNomeXDevice();
  _STagInfoVarianteTKK_fw& fw = main->InfoFw;
  if (fw.TipoTracciato == TRACCIATO_OVAL) {
    const _eTipoLunghezzaPista prima = static_cast<_eTipoLunghezzaPista>(fw.TipoLunghezza);
    fw.TipoLunghezza = static_cast<int32_t>(CDistanceCalculator::GetLunghezzaFrazionaria(lunghezza));
    const _eTipoLunghezzaPista dopo = static_cast<_eTipoLunghezzaPista>(fw.TipoLunghezza);
    if (dopo != prima)
      LogEvento(kInfo.Priorita, kInfo.Parola,
                "for track '%s' changed fractionary length for track from %s to %s", nome.c_str(),
                IVarianteTkk::OttieniStringaxLunghezzaKeyy(prima).c_str(),
                IVarianteTkk::OttieniStringaxLunghezzaKeyy(dopo).c_str());
  } else {
    fw.TipoLunghezza = 0;
  }
  const float prima = fw.Lunghezza;
  fw.Lunghezza = static_cast<float>(lunghezza);
  if (fw.Lunghezza != prima)
    LogEvento(kInfo.Priorita, kInfo.Parola, "for track '%s' changed length for track from %.2f m to %.2f m",
              nome.c_str(), static_cast<double>(prima), static_cast<double>(fw.Lunghezza));
  return true;
}
