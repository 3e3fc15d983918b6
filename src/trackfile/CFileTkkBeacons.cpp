// The main variant's beacon sets, as a view of the main variant answers.
#include "CFileTkk.h"
#include "CVarianteTkk.h"
#include "TrackMemoryRecords.h"
#include "variants/Vocabolari.h"

unsigned int CFileTkk::GetLineeSplitLLH(const _SDatoCoordinateBeacon*& lines,
                                        _eTipoBeaconDaUsare type) const {
  return VistaMain().GetLineeSplitLLH(lines, type);
}

void CFileTkk::SetLineeSplitLLH(unsigned int idx, const _SDatoCoordinateBeacon& line,
                                _eTipoBeaconDaUsare type) {
  VistaMain().SetLineeSplitLLH(idx, line, type);
}

void CFileTkk::ClearLineaSplitLLH(unsigned int idx, _eTipoBeaconDaUsare type) {
  VistaMain().ClearLineaSplitLLH(idx, type);
}

unsigned int CFileTkk::GetLarghezzaPista() const { return VistaMain().GetLarghezzaPista(); }
void CFileTkk::SetLarghezzaPista(unsigned int width) { VistaMain().SetLarghezzaPista(width); }

void CFileTkk::GetStrBeaconType(std::string& text, _eTipoBeaconDaUsare type) const {
  text = vektkk::NomeTipoBeacon(type);
}

void CFileTkk::GetStrBeaconType(std::string& text) const {
  const STagsInfoVariante* main = Main();
  if (main == nullptr) return;
  GetStrBeaconType(text, static_cast<_eTipoBeaconDaUsare>(main->InfoFw.InfoBeacons.TipoBeaconInUso));
}

bool CFileTkk::CanUseBeaconTypeMagnetic() const {
  const STagsInfoVariante* main = Main();
  return main != nullptr && main->InfoFw.TipoTracciato == TRACCIATO_KART_TRACK;
}

bool CFileTkk::TrasformaSetDiBeacon(_eTipoBeaconDaUsare type) {
  STagsInfoVariante* main = Main();
  if (main == nullptr) return true;
  _SInfoBeacons& beacons = main->InfoFw.InfoBeacons;
  const _SDatoCoordinateBeacon* inUso = nullptr;
  beacons.GetLineeSplitLLH(inUso, BEACON_IN_USO);
  if (inUso == nullptr) return true;
  // Every position gets the finish line, width included; the split lines
  // are not carried over. Devices rely on this.
  const _SDatoCoordinateBeacon finish = inUso[0];
  for (unsigned int i = 0; i < 6; ++i) beacons.SetLineeSplitLLH(i, finish, type);
  return true;
}
