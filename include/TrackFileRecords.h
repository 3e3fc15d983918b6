#ifndef VEKTKK_TRACKFILERECORDS_H
#define VEKTKK_TRACKFILERECORDS_H

// The fixed records of a track file. Files hold their bytes exactly as they
// lie here: packed, little-endian, no padding. Sizes and offsets are pinned.

#include <stddef.h>
#include <stdint.h>

#include "DataOraTkk.h"
#include "GuidTkk.h"
#include "TrackFileEnums.h"
#include "VekTkkExport.h"

#pragma pack(push, 1)

// File-wide information, tag "Ptkk", 268 bytes.
struct VEKTKK_API _STagInfoFileTKK {
  int32_t IdxMainVariante;  // index of the main variant
  char NamexSito[256];      // site name, UTF-8, zero-padded, no terminator when full
  char GuidNomeFile[8];     // the file's 8-character name, set when saved

  // IdxMainVariante 0 and an empty site name; GuidNomeFile is left as it is.
  _STagInfoFileTKK();
};

// One beacon line: a point and, in element 0 of a set, the track width.
struct VEKTKK_API _SDatoCoordinateBeacon {
  int32_t LatI;             // 1e-7 degree
  int32_t LonI;             // 1e-7 degree
  int32_t AltI;             // third coordinate of the line, millimetres
  uint32_t LarghezzaPista;  // track width

  _SDatoCoordinateBeacon();
  // A line is used when any of its coordinates is non-zero; the width does
  // not count.
  bool isUsed() const;
};

// Finish and split lines of a variant, one set of 6 per beacon technology:
// the set of type t (1-4) is LineeBeacon[t - 1]. The used lines of a set are
// its leading run of used elements; element 0 is the finish line.
struct VEKTKK_API _SInfoBeacons {
  uint8_t Riservato0;
  uint8_t Riservato1;
  uint8_t TipoBeaconInUso;  // _eTipoBeaconDaUsare in use; 1 to 4 on a good track
  uint8_t Riservato3;
  _SDatoCoordinateBeacon LineeBeacon[4][6];

  // Type 1 in use, everything else zero.
  _SInfoBeacons();

  // Type 5 stands for the type in use; a type that then is not 1 to 4
  // addresses no set (null lines, count 0, width 0, writes ignored).

  // Points `lines` at the 6 entries of the set and counts the used ones up
  // to the first that is not used.
  unsigned int GetLineeSplitLLH(const _SDatoCoordinateBeacon*& lines,
                                _eTipoBeaconDaUsare type) const;
  unsigned int GetNumeroSplit(_eTipoBeaconDaUsare type) const;
  // Copies the whole entry, width included, to position `idx` (below 6).
  void SetLineeSplitLLH(unsigned int idx, const _SDatoCoordinateBeacon& line,
                        _eTipoBeaconDaUsare type);
  void ClearLineaSplitLLH(unsigned int idx, _eTipoBeaconDaUsare type);
  // The track width of a set: the width of its entry 0.
  unsigned int GetLarghezzaPista(_eTipoBeaconDaUsare type) const;
  void SetLarghezzaPista(unsigned int width, _eTipoBeaconDaUsare type);
};

// 32 bits of variant flags.
union VEKTKK_API _UBitFieldVarianteTkk {
  uint32_t Valore;
  uint8_t Byte[4];

  _UBitFieldVarianteTkk() : Valore(0) {}
};

// The fixed part of a variant, tag "Vnfo", 476 bytes.
struct VEKTKK_API _STagInfoVarianteTKK_fw {
  char NomeXDevice[28];         // name shown on the logger, UTF-8, zero-padded
  char NationCode[4];           // zero-padded, no terminator when full
  char SubNationCode[4];
  _UDataOraTkk DataModifica;    // last change, UTC
  int32_t TipoLunghezza;        // _eTipoLunghezzaPista; 0 = none
  float Lunghezza;              // metres
  int32_t LatRif;               // reference point (centroid), 1e-7 degree
  int32_t LonRif;
  int32_t AltRif;               // millimetres
  int32_t TimeZone;             // 50 for a new variant
  int32_t DeltaMin;             // extra minutes of the time zone
  float AnglePlot;              // angle at which the map is drawn
  int32_t TipoTracciato;        // _eTipoTracciatoTkk
  _SInfoBeacons InfoBeacons;
  _UBitFieldVarianteTkk BitField;
  _UGuidTkk Guid;

  // Zeroes everything but the nation and sub-nation codes, which are left as
  // they happen to be (fill them before saving); TimeZone 50, TipoTracciato 1.
  _STagInfoVarianteTKK_fw();

  // Sets both length fields. A valid standard key (either pointer may be
  // null) is stored with its length in whole metres and `metres` is
  // ignored; otherwise the key is 0 and the length that of `metres`, or 0.
  void ImpostaLunghezzaPista(const _eTipoLunghezzaPista* key, const float* metres);
};

// The variant's track name, tag "V_sw", 256 bytes.
struct VEKTKK_API _STagInfoVarianteTKK_sw {
  char NomePista[256];  // UTF-8, zero-padded

  _STagInfoVarianteTKK_sw();
};

// Where a variant's lists are, tag "Vidx", 8 bytes: positions among the
// file's "srfs", "pts" and "lgo" atoms (0-based, counted per tag) and among
// the object's additional-text records. 0xFFFF means none.
struct VEKTKK_API _STagIndexesVarianteTKK {
  uint16_t IdxFondiStradali;
  uint16_t IdxPunti;
  uint16_t IdxLogo;
  uint16_t IdxDatiPlus;

  // All four 0xFFFF.
  _STagIndexesVarianteTKK();
};

#pragma pack(pop)

static_assert(sizeof(_STagInfoFileTKK) == 268, "Ptkk payload");
static_assert(offsetof(_STagInfoFileTKK, NamexSito) == 4, "Ptkk layout");
static_assert(offsetof(_STagInfoFileTKK, GuidNomeFile) == 260, "Ptkk layout");

static_assert(sizeof(_SDatoCoordinateBeacon) == 16, "beacon line");
static_assert(offsetof(_SDatoCoordinateBeacon, LarghezzaPista) == 12, "beacon line layout");

static_assert(sizeof(_SInfoBeacons) == 388, "beacon sets");
static_assert(offsetof(_SInfoBeacons, TipoBeaconInUso) == 2, "beacon sets layout");
static_assert(offsetof(_SInfoBeacons, LineeBeacon) == 4, "beacon sets layout");

static_assert(sizeof(_UBitFieldVarianteTkk) == 4, "variant flags");

static_assert(sizeof(_STagInfoVarianteTKK_fw) == 476, "Vnfo payload");
static_assert(offsetof(_STagInfoVarianteTKK_fw, NationCode) == 28, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, SubNationCode) == 32, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, DataModifica) == 36, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, TipoLunghezza) == 40, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, Lunghezza) == 44, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, LatRif) == 48, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, LonRif) == 52, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, AltRif) == 56, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, TimeZone) == 60, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, DeltaMin) == 64, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, AnglePlot) == 68, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, TipoTracciato) == 72, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, InfoBeacons) == 76, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, BitField) == 464, "Vnfo layout");
static_assert(offsetof(_STagInfoVarianteTKK_fw, Guid) == 468, "Vnfo layout");

static_assert(sizeof(_STagInfoVarianteTKK_sw) == 256, "V_sw payload");

static_assert(sizeof(_STagIndexesVarianteTKK) == 8, "Vidx payload");
static_assert(offsetof(_STagIndexesVarianteTKK, IdxPunti) == 2, "Vidx layout");
static_assert(offsetof(_STagIndexesVarianteTKK, IdxLogo) == 4, "Vidx layout");
static_assert(offsetof(_STagIndexesVarianteTKK, IdxDatiPlus) == 6, "Vidx layout");

#endif  // VEKTKK_TRACKFILERECORDS_H
