#include <string.h>

#include "TrackFileRecords.h"
#include "TrackMemoryRecords.h"

_STagInfoFileTKK::_STagInfoFileTKK() : IdxMainVariante(0) {
  memset(NamexSito, 0, sizeof NamexSito);
}

_SDatoCoordinateBeacon::_SDatoCoordinateBeacon() : LatI(0), LonI(0), AltI(0), LarghezzaPista(0) {}

bool _SDatoCoordinateBeacon::isUsed() const { return LatI != 0 || LonI != 0 || AltI != 0; }

_SInfoBeacons::_SInfoBeacons()
    : Riservato0(0), Riservato1(0), TipoBeaconInUso(BEACON_SCRUTINEERING), Riservato3(0) {}

_STagInfoVarianteTKK_fw::_STagInfoVarianteTKK_fw()
    : TipoLunghezza(0),
      Lunghezza(0.0f),
      LatRif(0),
      LonRif(0),
      AltRif(0),
      TimeZone(50),
      DeltaMin(0),
      AnglePlot(0.0f),
      TipoTracciato(TRACCIATO_RACE_TRACK) {
  // NationCode and SubNationCode are deliberately not touched.
  memset(NomeXDevice, 0, sizeof NomeXDevice);
}

_STagInfoVarianteTKK_sw::_STagInfoVarianteTKK_sw() { memset(NomePista, 0, sizeof NomePista); }

_STagIndexesVarianteTKK::_STagIndexesVarianteTKK()
    : IdxFondiStradali(0xFFFF), IdxPunti(0xFFFF), IdxLogo(0xFFFF), IdxDatiPlus(0xFFFF) {}

STagsInfoVariante::STagsInfoVariante(const IFileTkk* owner)
    : Owner(owner), FondiStradali(nullptr), Punti(nullptr), Logo(nullptr), DatiPlus(nullptr) {}
