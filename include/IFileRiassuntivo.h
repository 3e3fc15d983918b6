#ifndef VEKTKK_IFILERIASSUNTIVO_H
#define VEKTKK_IFILERIASSUNTIVO_H

// The track summary: a flat catalogue of track variants, one 128-byte record
// per variant added, kept on disk as a bare array of records (see
// docs/summary-format.md). The summary reports nothing to the event log,
// except the text listing when it cannot write its file or meets a null
// record.

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "DataOraTkk.h"
#include "GuidTkk.h"
#include "VekTkkExport.h"

class IFileTkk;

#pragma pack(push, 1)
// One variant of one track file. Packed, little-endian; the memory layout is
// the file layout. Two records are the same record when all 128 bytes are
// equal, Dummy included.
struct VEKTKK_API _SDatoRiassuntivo {
  char Name[28];        // device name, UTF-8, zero-padded, no terminator when full
  char Country[4];      // nation code, zero-padded
  char State[4];        // sub-nation code, zero-padded
  int32_t RifLat;       // reference point, 1e-7 degree
  int32_t RIfLon;       // 1e-7 degree
  int32_t RifAlt;       // as the track file's reference altitude
  float Length;         // metres
  uint8_t BeaconNumber; // split lines of the default beacon set
  uint8_t BeaconType;   // the default beacon type, 1 to 4
  int16_t VariantIdx;   // index of the variant in its track file
  char FileName[8];     // the track file's 8-character name, no terminator
  _UGuidTkk Guid;       // low word bytes 64..67, high word bytes 68..71
  _UDataOraTkk Date;    // modification date
  uint32_t OffsetFw;    // offset of the variant's info data in the track file
  uint32_t OffsetPti;   // offset of the variant's shape points in the track file
  unsigned char Dummy[44];  // reserved: zero in the records the summary makes

  // All zero except BeaconType 1.
  _SDatoRiassuntivo();
  // FileName as a text of exactly eight characters, zero bytes included.
  std::string GetNomeFile() const;
};
#pragma pack(pop)

static_assert(sizeof(_SDatoRiassuntivo) == 128, "summary record");
static_assert(offsetof(_SDatoRiassuntivo, Country) == 28, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, State) == 32, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, RifLat) == 36, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, RIfLon) == 40, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, RifAlt) == 44, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, Length) == 48, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, BeaconNumber) == 52, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, BeaconType) == 53, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, VariantIdx) == 54, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, FileName) == 56, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, Guid) == 64, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, Date) == 72, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, OffsetFw) == 76, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, OffsetPti) == 80, "summary record layout");
static_assert(offsetof(_SDatoRiassuntivo, Dummy) == 84, "summary record layout");

// A track as the extended comparison lists it: the file name and the raw
// nation, state and name bytes of one record.
struct VEKTKK_API SPistaEstesa {
  std::string NomeFileTkk;
  char Country[4];
  char State[4];
  char Name[28];

  // An empty name and 36 zero bytes.
  SPistaEstesa();
  // Copies 4, 4 and 28 bytes from the three pointers.
  SPistaEstesa(const std::string& nomeFile, const char* country, const char* const& state,
               const char* name);
};

// The answer of IFileRiassuntivo::ConfrontaConAltro: 8-character file names,
// appended (never emptied first).
struct SConfrontoPiste {
  std::vector<std::string> PisteUguali;             // byte-identical on both sides
  std::vector<std::string> PisteQuiPiuRecenti;      // changed, this side newer
  std::vector<std::string> PisteAltrovePiuRecenti;  // changed, this side not newer
  std::vector<std::string> PisteSoloQui;            // only in this summary
  std::vector<std::string> PisteSoloAltrove;        // only in the other summary
};

// The same classification with SPistaEstesa values.
struct SConfrontoPisteEsteso {
  std::vector<SPistaEstesa> PisteUguali;
  std::vector<SPistaEstesa> PisteQuiPiuRecenti;
  std::vector<SPistaEstesa> PisteAltrovePiuRecenti;
  std::vector<SPistaEstesa> PisteSoloQui;
  std::vector<SPistaEstesa> PisteSoloAltrove;
};

// A summary. Positions are indices in its record list (0 first). Virtual
// members keep their slots (destructor 0 and 1, then 2 to 21): hosts built
// elsewhere call them by slot. Objects come from the factories; the caller
// owns them and deletes them through the interface. One thread at a time.
class VEKTKK_API IFileRiassuntivo {
 public:
  static IFileRiassuntivo* CreateMe();
  // A summary read from a binary summary file (empty when it cannot be read).
  static IFileRiassuntivo* CreateMeUponFile(const std::string& path);
  // An empty summary: CreaDaDirettorio does nothing in this design.
  static IFileRiassuntivo* CreateMeUponDir(const std::string& dir);

  /* 0, 1 */ virtual ~IFileRiassuntivo();
  // Matches tracks by file name, first record of a name on the other side.
  // Changed records: the newer date wins, but a date in 2030 or later never
  // counts as newer (kept as designed). Always true.
  /* 2 */ virtual bool ConfrontaConAltro(IFileRiassuntivo& altro, SConfrontoPiste& esito) = 0;
  // As ConfrontaConAltro without the 2030 rule; equal dates count as
  // "elsewhere newer". Always true.
  /* 3 */ virtual bool ConfrontaConAltroEsteso(IFileRiassuntivo& altro,
                                               SConfrontoPisteEsteso& esito) = 0;
  // Writes the records in their current order as a binary summary file.
  // Always true.
  /* 4 */ virtual bool SalvaFileDev(const std::string& path) = 0;
  // The sorted sets: path1 gets the records sorted by the primary order,
  // path2 and path3 (skipped when empty) the cross-index of path1's records
  // into a second and a third order. False, and no file at all, when the
  // summary is empty; true otherwise, whatever happened to the files.
  //   SenzaNazione: name;           indexes into lat/lon and GUID order
  //   ConNazione:   country, name;  indexes into lat/lon and GUID order
  //   LatLon:       lat, lon;       indexes into name and GUID order
  //   Guid:         high, low word; indexes into name and lat/lon order
  /* 5 */ virtual bool CreaFileAlfabSortedSenzaNazione(const std::string& path1,
                                                       const std::string& path2,
                                                       const std::string& path3) = 0;
  /* 6 */ virtual bool CreaFileAlfabSortedConNazione(const std::string& path1,
                                                     const std::string& path2,
                                                     const std::string& path3) = 0;
  /* 7 */ virtual bool CreaFileLatLonSorted(const std::string& path1, const std::string& path2,
                                            const std::string& path3) = 0;
  /* 8 */ virtual bool CreaFileGuidSorted(const std::string& path1, const std::string& path2,
                                          const std::string& path3) = 0;
  // Appends one record for variant `idx` of `track`; nothing when the track
  // is null, not a CFileTkk, not good, or has no such variant.
  /* 9 */ virtual void AddVarianteTkk(const IFileTkk* track, short idx) = 0;
  // Removes every record of the file `nome` (its first 8 characters; a
  // shorter name matches the records whose name is 8 zero bytes). Returns
  // the number of records left.
  /* 10 */ virtual int DelFileTkk(const std::string& nome) = 0;
  /* 11 */ virtual bool IsThisFileTkkHere(const std::string& nome) = 0;
  // Borrowed pointers, valid until the summary changes.
  /* 12 */ virtual void GetDatiRiassuntivi(std::vector<const _SDatoRiassuntivo*>& out) = 0;
  // False and a null `out` for a position out of range.
  /* 13 */ virtual bool GetDatoRiassuntivo(const _SDatoRiassuntivo*& out, int idx) = 0;
  /* 14 */ virtual int GetNumRiassuntivi() = 0;
  // Replaces the content with the records of a binary summary file; a file
  // that is missing, unreadable or not a multiple of 128 bytes leaves the
  // summary empty.
  /* 15 */ virtual void LeggiRiassuntivo(const std::string& path) = 0;
  // WARNING: this does not find the nearest track on real data. It compares
  // the degrees given with the records' raw coordinates multiplied by -1e7
  // (a planar distance between mismatched units) and is kept exactly so,
  // since summaries and devices depend on it; no host should rely on it to find a
  // track. Use getNearestTracksByHeaversine. Returns the position of the
  // record it picks (the first on a tie), or the number of entries when
  // there is no record.
  /* 16 */ virtual int GetDatoRiassuntivoNearest(double lat, double lon) = 0;
  // Appends to `out`, in position order, every record nearer than `maxDist`
  // metres to (lat, lon) in degrees (haversine); returns out's size.
  /* 17 */ virtual int getNearestTracksByHeaversine(double lat, double lon, int maxDist,
                                                    std::vector<int>& out) = 0;
  // The text listing sorted by country and name (see docs/summary-format.md).
  // False when the file could not be written (reported at ERROR).
  /* 18 */ virtual bool CreaFileAlfabSortedConNazioneTestuale(const std::string& path) = 0;
  // Reserved: these three do nothing and answer false.
  /* 19 */ virtual bool AddFromDir(const std::string& dir) = 0;
  /* 20 */ virtual bool CreaDaDirettorio(const std::string& dir) = 0;
  /* 21 */ virtual bool AggiungiDaDirettorio(const std::string& dir) = 0;
};

#endif  // VEKTKK_IFILERIASSUNTIVO_H
