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
// a fixed order that is part of the binary interface.
//
// Objects are made only by the factories; the caller owns them and deletes
// them through the interface. No operation throws; failures are results.
class VEKTKK_API IFileTkk : public IVarianteTkk {
 public:
  // An empty, good track to be built in memory and saved. `readOnly` marks a
  // maker's track, `dev` a development track.
  static IFileTkk* CreateMe(bool readOnly, bool dev);
  // A track read from `path`; returned also when reading fails (ask
  // IsGood). `soloLettura` forbids changing and saving the object;
  // `senzaLogo` also skips loading logos.
  static IFileTkk* CreateMeUponFile(const std::string& path, bool soloLettura, bool senzaLogo);

  // The IdxMainVariante field of the file info record.
  virtual int32_t GetIdxMainVariante() const = 0;
  // Copies `info` over the file info record; a non-empty `name` (local
  // character set) then replaces the site name it carried.
  virtual void SetTagInfoFile(const std::string& name, const _STagInfoFileTKK& info) = 0;
  // The file info record.
  virtual const _STagInfoFileTKK& GetTagInfoFile() const = 0;

  // The Add operations return the index that a variant's
  // _STagIndexesVarianteTKK must carry to use what was added; 0xFFFF means
  // nothing was added. On an object opened read-only they report and add
  // nothing (see each for its answer).

  // Additional texts; refused: index of the last existing record.
  virtual uint16_t AddTagDatiPlus(const STagDatiPlus& plus) = 0;
  // A road-surface list; empty list or refused: as AddTagDatiPlus.
  virtual uint16_t AddDatiFondoStradale(const std::vector<_eTipoRoadSurfaceTkk>& fondi) = 0;
  // A shape, thinned to fewer than 8000 points by keeping every n-th point.
  virtual uint16_t AddTagDatiPuntiTracciato(const std::vector<_t_s_lla_i>& punti) = 0;
  // A logo image; empty image or refused: 0xFFFF.
  virtual uint16_t AddTagDatiLogo(const std::vector<unsigned char>& image,
                                  const std::string& nomeFile) = 0;
  // A variant, its names given in the local character set; false when
  // refused or when an index names nothing. A user's track gets beacon type
  // 4; a variant without GUID gets a new one. The first is the main variant.
  virtual bool AddTagInfoVariante(const std::string& nomePista, const std::string& nomeXDevice,
                                  const _STagInfoVarianteTKK_fw& infoFw,
                                  const _STagIndexesVarianteTKK& indici) = 0;

  // GUID of variant i, or a zero GUID.
  virtual _UGuidTkk GetGuidVariante(short i) const = 0;
  // The variant records; index 0 is the main variant.
  virtual std::vector<STagsInfoVariante*>& GetTagsInfoVarianti() = 0;
  // Variant record i, or null.
  virtual STagsInfoVariante* GetTagInfoVariante(short i) const = 0;

  // Empties the object and reads the track file at `path`. True on success;
  // failures are reported to the event log. `nuovoNomeLogo` decides whether
  // an embedded logo is written again, under a numbered name, when its
  // external image file already exists.
  virtual bool LeggiFile(const std::string& path, bool nuovoNomeLogo) = 0;
  // Saves the track as dir + name + ".tkk" (`dir` ends with a separator).
  // With `nome` null a new name is made that no file in `dir` has yet.
  // Returns the 8-character name, or "" on failure. The save is atomic: on
  // failure, or if the power goes, any earlier file of that name is intact.
  virtual std::string SalvaFileInPath(const std::string& dir, const std::string* nome) = 0;
  // As SalvaFileInPath with a given name, but each logo goes to an image
  // file of its own (dir + nome + the logo's extension) instead of into the
  // track file. Returns `nome`, or "" on failure.
  virtual std::string SalvaFileInPathLogoEsterno(const std::string& dir,
                                                 const std::string& nome) = 0;
  // Size in bytes of the file last read.
  virtual uint32_t GetDimTkk() const = 0;
  // Links the main variant to shape 0 and clears its other indexes. Needs a
  // variant and a shape.
  virtual void AssegnaPtrPunti() = 0;
};

#endif  // VEKTKK_IFILETKK_H
