#ifndef VEKTKK_TRACKFILEENUMS_H
#define VEKTKK_TRACKFILEENUMS_H

#include <stdint.h>

// Keys stored in track files. Their values are fixed by existing files; the
// records hold them as int32 (the beacon type as one byte).

// Beacon technology of a set of finish and split lines.
enum _eTipoBeaconDaUsare : int32_t {
  BEACON_SCRUTINEERING = 1,
  BEACON_MAGNETIC = 2,
  BEACON_OPTIC = 3,
  BEACON_USER = 4,
  BEACON_IN_USO = 5  // to the line operations: the type the variant uses
};

// Circuit type. Whether a type counts as closed or as open is decided by two
// separate rules (IVarianteTkk::IsTrackChiusoo, CFileTkk::IsOpenTrack).
enum _eTipoTracciatoTkk : int32_t {
  TRACCIATO_RACE_TRACK = 1,
  TRACCIATO_KART_TRACK = 2,
  TRACCIATO_OVAL = 3,
  TRACCIATO_DRAG_STRIP = 5,
  TRACCIATO_RALLY = 6,
  TRACCIATO_HILL_CLIMB = 7,
  TRACCIATO_MOTOCROSS = 8,
  TRACCIATO_OPEN_CIRCUIT = 9,
  TRACCIATO_ROVAL = 10
};

// Road surface, one bit each.
enum _eTipoRoadSurfaceTkk : int32_t {
  FONDO_PAVED = 1,
  FONDO_DIRT = 2,
  FONDO_ICE = 4,
  FONDO_WATER = 8,
  FONDO_COMBO = 16
};

// Standard track lengths: each key is the nominal length in units of 0.1 mm,
// a little above the exact fraction of a mile. 0 means no standard length.
enum _eTipoLunghezzaPista : uint32_t {
  LUNGHEZZA_CUSTOM = 0,
  LUNGHEZZA_1_20_MI = 804672,
  LUNGHEZZA_1_10_MI = 1609344,
  LUNGHEZZA_1_9_MI = 1788160,
  LUNGHEZZA_1_8_MI = 2011680,
  LUNGHEZZA_1_7_MI = 2299063,
  LUNGHEZZA_1_6_MI = 2682240,
  LUNGHEZZA_1_5_MI = 3218689,
  LUNGHEZZA_1_4_MI = 4023361,
  LUNGHEZZA_3_10_MI = 4828033,
  LUNGHEZZA_5_16_MI = 5029201,
  LUNGHEZZA_1_3_MI = 5364481,
  LUNGHEZZA_3_8_MI = 6035041,
  LUNGHEZZA_4_10_MI = 6437378,
  LUNGHEZZA_1_2_MI = 8046722,
  LUNGHEZZA_6_10_MI = 9656067,
  LUNGHEZZA_5_8_MI = 10058403,
  LUNGHEZZA_0_686_MI = 11040103,
  LUNGHEZZA_7_10_MI = 11265411,
  LUNGHEZZA_3_4_MI = 12070083,
  LUNGHEZZA_8_10_MI = 12874756,
  LUNGHEZZA_1_MI = 16093445,
  LUNGHEZZA_2_MI = 32186890
};

static_assert(sizeof(_eTipoRoadSurfaceTkk) == 4, "road surfaces are stored as int32");
static_assert(sizeof(_eTipoLunghezzaPista) == 4, "length keys are stored as 32 bits");

#endif  // VEKTKK_TRACKFILEENUMS_H
