#ifndef VEKTKK_IFILETKK_H
#define VEKTKK_IFILETKK_H

#include <stdint.h>

#include <string>
#include <vector>

#include "Coordinate.h"
#include "GuidTkk.h"
#include "IVarianteTkk.h"
#include "TrackFileRecords.h"
#include "VekTkkExport.h"

struct STagDatiPlus;

// A whole track file: answers for its main variant (index 0) and adds the
// file-level operations. Its virtual members follow those of IVarianteTkk in
// a fixed order that is part of the binary interface (slots 60 to 99).
//
// Objects are made only by the factories; the caller owns them and deletes
// them through the interface. No operation throws; failures are results.
//
// Threads: an object is used by one thread at a time; separate objects may
// be used from separate threads at once. Three operations call the
// process-wide identifier generators, which are safe from any thread:
// AddTagInfoVariante of a variant without GUID (IGuidTkk::GetGuidTkk),
// SalvaFileInPath with no name and TrasformaPistaUtenteInVek
// (IGuidNomeFile::GetNomeFile). See docs/threads.md.
class VEKTKK_API IFileTkk : public IVarianteTkk {
 public:
  // An empty, good track to be built in memory and saved. `readOnly` marks a
  // maker's track, `dev` a development track.
  static IFileTkk* CreateMe(bool readOnly, bool dev);
  // A track read from `path`; returned also when reading fails (ask
  // IsGood). `soloLettura` forbids changing and saving the object;
  // `senzaLogo` also skips loading logos.
  static IFileTkk* CreateMeUponFile(const std::string& path, bool soloLettura, bool senzaLogo);

  // One view per variant record, valid while this object and its list of
  // variants are unchanged (a read or an added variant rebuilds them).
  /* 60 */ virtual const std::vector<IVarianteTkk*>& GetVariantiTrack() const = 0;
  // Whether a circuit type is open. Not the negation of
  // IVarianteTkk::IsTrackChiusoo: types 0, 4, 8 and those above 10 are both.
  /* 61 */ virtual bool IsOpenTrack(_eTipoTracciatoTkk type) const = 0;
  // True when the main variant has a shape with at least one point.
  /* 62 */ virtual bool HasShape() const = 0;
  // The IdxMainVariante field of the file info record.
  /* 63 */ virtual int32_t GetIdxMainVariante() const = 0;
  // The codes are copied byte for byte (no conversion), at most 4 bytes,
  // with no terminator when 4 are copied.
  /* 64 */ virtual void SetNationCode(const std::string& code) = 0;
  /* 65 */ virtual void SetNamexSito(const std::string& name) = 0;
  /* 66 */ virtual void SetSubNationCode(const std::string& code) = 0;
  /* 67 */ virtual void SetCitta(const std::string& city) = 0;
  // Copies `info` over the file info record; a non-empty `name` (local
  // character set) then replaces the site name it carried.
  /* 68 */ virtual void SetTagInfoFile(const std::string& name, const _STagInfoFileTKK& info) = 0;
  /* 69 */ virtual const _STagInfoFileTKK& GetTagInfoFile() const = 0;

  // The Add operations return the index that a variant's
  // _STagIndexesVarianteTKK must carry to use what was added; 0xFFFF means
  // nothing was added. On an object opened read-only they report and add
  // nothing (see each for its answer).

  // Additional texts; refused: index of the last existing record.
  /* 70 */ virtual uint16_t AddTagDatiPlus(const STagDatiPlus& plus) = 0;
  // A road-surface list; empty list or refused: as AddTagDatiPlus.
  /* 71 */ virtual uint16_t AddDatiFondoStradale(const std::vector<_eTipoRoadSurfaceTkk>& fondi) = 0;
  // A shape, thinned to fewer than 8000 points by keeping every n-th point.
  /* 72 */ virtual uint16_t AddTagDatiPuntiTracciato(const std::vector<_t_s_lla_i>& punti) = 0;
  // A logo image; empty image or refused: 0xFFFF.
  /* 73 */ virtual uint16_t AddTagDatiLogo(const std::vector<unsigned char>& image,
                                           const std::string& nomeFile) = 0;
  // A variant, its names given in the local character set; false when
  // refused or when an index names nothing. A user's track gets beacon type
  // 4; a variant without GUID gets a new one. The first is the main variant.
  /* 74 */ virtual bool AddTagInfoVariante(const std::string& nomePista,
                                           const std::string& nomeXDevice,
                                           const _STagInfoVarianteTKK_fw& infoFw,
                                           const _STagIndexesVarianteTKK& indici) = 0;
  // GUID of variant i, or a zero GUID.
  /* 75 */ virtual _UGuidTkk GetGuidVariante(short i) const = 0;
  // The variant records; index 0 is the main variant.
  /* 76 */ virtual std::vector<STagsInfoVariante*>& GetTagsInfoVarianti() = 0;
  // Variant record i, or null.
  /* 77 */ virtual STagsInfoVariante* GetTagInfoVariante(short i) const = 0;
  // Empties the object and reads the track file at `path`. True on success;
  // failures are reported to the event log. `nuovoNomeLogo` decides whether
  // an embedded logo is written again, under a numbered name, when its
  // external image file already exists.
  /* 78 */ virtual bool LeggiFile(const std::string& path, bool nuovoNomeLogo) = 0;
  // Saves the track as dir + name + ".tkk" (`dir` ends with a separator).
  // With `nome` null a new name is made that no file in `dir` has yet
  // (after ten seconds of taken names the save gives up).
  // Returns the 8-character name, or "" on failure. The save is atomic: on
  // failure, or if the power goes, any earlier file of that name is intact.
  /* 79 */ virtual std::string SalvaFileInPath(const std::string& dir, const std::string* nome) = 0;
  // As SalvaFileInPath with a given name, but each logo goes to an image
  // file of its own (dir + nome + the last 4 characters of the logo's name)
  // instead of into the track file. Returns `nome`, or "" on failure.
  /* 80 */ virtual std::string SalvaFileInPathLogoEsterno(const std::string& dir,
                                                          const std::string& nome) = 0;
  // Size in bytes of the file last read.
  /* 81 */ virtual uint32_t GetDimTkk() const = 0;
  // Links the main variant to shape 0 and clears its other indexes. Needs a
  // variant and a shape.
  /* 82 */ virtual void AssegnaPtrPunti() = 0;
  // Empties the main variant's shape (its storage is kept).
  /* 83 */ virtual void RemoveShape() = 0;
  // Refreshes length and length key of the main variant from its shape;
  // reports each change at INFO. Always true.
  /* 84 */ virtual bool AssignTrackLength() = 0;
  // Writes a maker's copy of this development track into the directory
  // `path` under a new name, its beacon set `type` made of the finish line
  // in use. Always answers false, also on success.
  /* 85 */ virtual bool TrasformaPistaUtenteInVek(const std::string& path,
                                                  _eTipoBeaconDaUsare type) = 0;
  // Fills all six lines of the set `type` with the finish line of the set in
  // use. True.
  /* 86 */ virtual bool TrasformaSetDiBeacon(_eTipoBeaconDaUsare type) = 0;
  // Toggles the maker bit of the main variant's GUID.
  /* 87 */ virtual void TrasformaPistaInVek() = 0;
  // Reference point of the main variant, in degrees.
  /* 88 */ virtual void SetBaricentro(const double& lat, const double& lon) = 0;
  // Checks: true when the track passes; otherwise `msg` explains.
  /* 89 */ virtual bool IsVekTrackWithCorrectBeaconType(std::string& msg) const = 0;
  /* 90 */ virtual int GetTimeZone() const = 0;
  /* 91 */ virtual int GetDeltaMin() const = 0;
  /* 92 */ virtual void SetTimezone(const int& zone) = 0;
  /* 93 */ virtual void SetDeltaMin(const int& minutes) = 0;
  // Name of the beacon type in use.
  /* 94 */ virtual void GetStrBeaconType(std::string& text) const = 0;
  /* 95 */ virtual bool CanUseBeaconTypeMagnetic() const = 0;
  /* 96 */ virtual bool AreEqualBeacons(_eTipoBeaconDaUsare type, std::string& msg) const = 0;
  /* 97 */ virtual bool AreCoherentBeacons(std::string& msg) const = 0;
  /* 98 */ virtual bool BaricentroCoerente(std::string& msg) const = 0;
  // Name of a beacon type.
  /* 99 */ virtual void GetStrBeaconType(std::string& text, _eTipoBeaconDaUsare type) const = 0;
};

#endif  // VEKTKK_IFILETKK_H
