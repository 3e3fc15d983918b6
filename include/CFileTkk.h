#ifndef VEKTKK_CFILETKK_H
#define VEKTKK_CFILETKK_H

#include <stdint.h>

#include <string>
#include <vector>

#include "Coordinate.h"
#include "IFileTkk.h"
#include "TrackFileRecords.h"
#include "VekTkkExport.h"

class CVarianteTkk;
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

  // IVarianteTkk: the file answers for its main variant.
  STagsInfoVariante* GetTagInfo() override;
  std::string GetNomePista() const override;
  // Site name, then a blank and the main variant's device name when there
  // is one.
  std::string GetTrackNameCompleto() const override;
  bool IsTrashed() const override;
  void GetDateTimeTMModifica(tm& when) const override;
  // The comment of the file's first additional-text record.
  const std::string& GetTrackComment() const override;
  void SetTrackComment(const std::string& comment) override;
  std::string GetNationCode() const override;
  std::string GetSubNationCode() const override;
  std::string GetCitta() const override;
  bool GetAuto() const override;
  bool GetKart() const override;
  bool GetMoto() const override;
  _eTipoTracciatoTkk GetTrackTypeCircuitKey() const override;
  void SetTrackTypeCircuitKey(const _eTipoTracciatoTkk& key) override;
  _eTipoRoadSurfaceTkk GetFondoStradaleKey() const override;
  // Replaces the first entry of the main variant's road-surface list; with
  // no such entry, adds a variant first and appends the key.
  void SetFondoStradaleKey(const _eTipoRoadSurfaceTkk& key) override;
  bool GetTrackIsReadOnly() const override;
  std::string GetStringaVarianti() const override;
  std::string GetNamexSito() const override;
  std::string OttieniStringaxTrackTypeCircuitKey() const override;
  std::string OttieniStringaxFondoStradaleKey() const override;
  std::string OttieniStringaxLunghezzaKey() const override;
  std::string GetTrackAddress() const override;
  void SetTrackAddress(const std::string& text) override;
  std::string GetTrackTelephone() const override;
  void SetTrackTelephone(const std::string& text) override;
  std::string GetTrackURL() const override;
  void SetTrackURL(const std::string& text) override;
  std::string GetTrackPostalCode() const override;
  void SetTrackPostalCode(const std::string& text) override;
  unsigned int GetLarghezzaPista() const override;
  void SetLarghezzaPista(unsigned int width) override;
  const std::string* GetTrackLogo() const override;
  SLogo* GetTrackLogoBuffer() const override;
  // Loads the image at `path` as the main variant's logo, creating the logo
  // record when the main variant has none. Nothing happens without a variant
  // or when logos are not loaded.
  void SetTrackLogo(const std::string& path) override;
  float GetTrackLenght() const override;
  _eTipoLunghezzaPista GetTrackLenghtKey() const override;
  void SetTrackLenght(const _eTipoLunghezzaPista* key, const float* metres) override;
  float GetTrackAnglePlot() const override;
  void SetTrackAnglePlot(const float& angle) override;
  bool IsTrackChiuso() const override;
  short GetIdxVariante() const override;
  void AggiornaDataModifica(const tm& when) override;
  bool IsTrackObsoleta() const override;
  unsigned int GetLineeSplitLLH(const _SDatoCoordinateBeacon*& lines,
                                _eTipoBeaconDaUsare type) const override;
  void SetLineeSplitLLH(unsigned int idx, const _SDatoCoordinateBeacon& line,
                        _eTipoBeaconDaUsare type) override;
  void ClearLineaSplitLLH(unsigned int idx, _eTipoBeaconDaUsare type) override;
  const std::string& GetTrackNomignolo() const override;
  bool GetTrackTimeZone(int& zone, int& deltaMin) const override;
  std::string GetNomeXDevice() const override;
  void SetNomeXDevice(const std::string& name) override;
  bool IsGood() const override;
  bool IsVekTrack() const override;
  bool IsDevTrack() const override;
  bool IsUserCreatedNewTrack() const override;
  std::string GetGuidNomeFile() const override;
  std::string GetNomeFileDaFileSystem() const override;

  // IFileTkk
  const std::vector<IVarianteTkk*>& GetVariantiTrack() const override;
  bool IsOpenTrack(_eTipoTracciatoTkk type) const override;
  bool HasShape() const override;
  int32_t GetIdxMainVariante() const override;
  void SetNationCode(const std::string& code) override;
  void SetNamexSito(const std::string& name) override;
  void SetSubNationCode(const std::string& code) override;
  void SetCitta(const std::string& city) override;
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
  void RemoveShape() override;
  bool AssignTrackLength() override;
  bool TrasformaPistaUtenteInVek(const std::string& path, _eTipoBeaconDaUsare type) override;
  bool TrasformaSetDiBeacon(_eTipoBeaconDaUsare type) override;
  void TrasformaPistaInVek() override;
  void SetBaricentro(const double& lat, const double& lon) override;
  bool IsVekTrackWithCorrectBeaconType(std::string& msg) const override;
  int GetTimeZone() const override;
  int GetDeltaMin() const override;
  void SetTimezone(const int& zone) override;
  void SetDeltaMin(const int& minutes) override;
  void GetStrBeaconType(std::string& text) const override;
  bool CanUseBeaconTypeMagnetic() const override;
  bool AreEqualBeacons(_eTipoBeaconDaUsare type, std::string& msg) const override;
  bool AreCoherentBeacons(std::string& msg) const override;
  bool BaricentroCoerente(std::string& msg) const override;
  void GetStrBeaconType(std::string& text, _eTipoBeaconDaUsare type) const override;

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
  VEKTKK_LOCAL bool Escluso() const;
  // One view per variant record, made anew after a read.
  VEKTKK_LOCAL void RicostruisciViste();
  // The main variant, or null when there is none.
  VEKTKK_LOCAL STagsInfoVariante* Main() const;
  // A view of the main variant (of a null record when there is none).
  VEKTKK_LOCAL CVarianteTkk VistaMain() const;
  VEKTKK_LOCAL std::string Salva(const std::string& dir, const std::string& nome,
                                 bool nomeGenerato, bool logoEsterno);
  // The whole file as bytes, in the order readers expect.
  VEKTKK_LOCAL bool Componi(IAtomTagEncoderBin& enc, std::vector<unsigned char>& out,
                             bool logoEsterno) const;
  VEKTKK_LOCAL void ImpostaGuidNomeFile(const std::string& nome);
  // Bytes the saved file will take, to size the output once.
  VEKTKK_LOCAL size_t DimensioneFile(bool logoEsterno) const;

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
