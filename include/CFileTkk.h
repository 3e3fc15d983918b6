#ifndef VEKTKK_CFILETKK_H
#define VEKTKK_CFILETKK_H

#include <stdint.h>

#include <string>
#include <vector>

#include "Coordinate.h"
#include "IFileTkk.h"
#include "TrackFileRecords.h"
#include "VekTkkExport.h"

class IAtomTagEncoderBin;
struct SLogo;
struct STagDatiPlus;
struct STagsInfoVariante;

// The track file object. It owns every record of the file: the variant
// records, additional texts, road-surface lists, shapes and logos (variant
// records only point into the other lists). Made only by the IFileTkk
// factories; one thread at a time.
class VEKTKK_API CFileTkk : public IFileTkk {
 public:
  // One road-surface list: the payload of one "srfs" atom.
  struct SFondiStradali {
    std::vector<_eTipoRoadSurfaceTkk> Fondi;
  };
  // One shape: the payload of one "pts" atom.
  struct SPuntiTracciato {
    std::vector<_t_s_lla_i> Punti;
  };

  CFileTkk(bool readOnly, bool dev);
  CFileTkk(const std::string& path, bool soloLettura, bool senzaLogo);
  ~CFileTkk() override;
  CFileTkk(const CFileTkk&) = delete;
  CFileTkk& operator=(const CFileTkk&) = delete;

  // IVarianteTkk
  STagsInfoVariante* GetTagInfo() override;
  bool IsTrashed() const override;
  bool GetTrackIsReadOnly() const override;
  const std::string* GetTrackLogo() const override;
  SLogo* GetTrackLogoBuffer() const override;
  // Loads the image at `path` as the main variant's logo, creating the logo
  // record when the main variant has none. Nothing happens without a variant
  // or when logos are not loaded.
  void SetTrackLogo(const std::string& path) override;
  short GetIdxVariante() const override;
  bool IsGood() const override;
  bool IsVekTrack() const override;
  bool IsDevTrack() const override;

  // IFileTkk
  int32_t GetIdxMainVariante() const override;
  void SetTagInfoFile(const std::string& name, const _STagInfoFileTKK& info) override;
  const _STagInfoFileTKK& GetTagInfoFile() const override;
  uint16_t AddTagDatiPlus(const STagDatiPlus& plus) override;
  uint16_t AddDatiFondoStradale(const std::vector<_eTipoRoadSurfaceTkk>& fondi) override;
  uint16_t AddTagDatiPuntiTracciato(const std::vector<_t_s_lla_i>& punti) override;
  uint16_t AddTagDatiLogo(const std::vector<unsigned char>& image,
                          const std::string& nomeFile) override;
  bool AddTagInfoVariante(const std::string& nomePista, const std::string& nomeXDevice,
                          const _STagInfoVarianteTKK_fw& infoFw,
                          const _STagIndexesVarianteTKK& indici) override;
  _UGuidTkk GetGuidVariante(short i) const override;
  std::vector<STagsInfoVariante*>& GetTagsInfoVarianti() override;
  STagsInfoVariante* GetTagInfoVariante(short i) const override;
  bool LeggiFile(const std::string& path, bool nuovoNomeLogo) override;
  std::string SalvaFileInPath(const std::string& dir, const std::string* nome) override;
  std::string SalvaFileInPathLogoEsterno(const std::string& dir, const std::string& nome) override;
  uint32_t GetDimTkk() const override;
  void AssegnaPtrPunti() override;

  // Frees all variant records, additional texts, road-surface lists, shapes
  // and logos and sets the size to 0; file info, flags and file-system name
  // stay.
  void Svuota();
  // Copies the 8 bytes of the file-system name to `out` (no terminator).
  void GetNomeFile(char* out) const;
  // Offset in the file of the "Vnfo" atom of variant i as summary files
  // record it (kept exactly, also where it does not match the layout).
  uint32_t GetOffsetDatiFw(short i) const;
  // Offset in the file of the "pts" atom of variant i's shape, or 0.
  uint32_t GetOffsetPti(short i) const;
  // Reads the file at `path` into `buffer` (emptied first). Returns the
  // number of bytes read, 0 when logos are not loaded or on failure.
  uint32_t SaveTrackFileLogoBuffer(std::vector<unsigned char>& buffer, const std::string& path);

 private:
  // True (after reporting) when the object may not be changed or saved.
  bool Escluso() const;
  std::string Salva(const std::string& dir, const std::string& nome, bool nomeGenerato,
                    bool logoEsterno);
  // The whole file as bytes, in the order readers expect.
  bool Componi(IAtomTagEncoderBin& enc, std::vector<unsigned char>& out, bool logoEsterno) const;
  void ImpostaGuidNomeFile(const std::string& nome);
  // Bytes the saved file will take, to size the output once.
  size_t DimensioneFile(bool logoEsterno) const;

  bool TrackIsReadOnly;
  bool DevTrack;
  bool Good;
  bool SoloLettura;
  bool SenzaLogo;
  _STagInfoFileTKK TagInfoFile;
  std::vector<IVarianteTkk*> VariantiTrack;
  std::vector<STagsInfoVariante*> TagsInfoVarianti;
  std::vector<STagDatiPlus*> TagsDatiPlus;
  std::vector<SFondiStradali*> FondiStradali;
  std::vector<SPuntiTracciato*> PuntiTracciato;
  std::vector<SLogo*> Loghi;
  char NomeFileDaFileSystem[8];
  uint32_t DimTkk;
};

// The name of the external logo file of a track: always the empty text.
VEKTKK_API std::string GetNomeFileEsterno(const std::string& path);

#endif  // VEKTKK_CFILETKK_H
