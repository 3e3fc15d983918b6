#ifndef VEKTKK_CVARIANTETKK_H
#define VEKTKK_CVARIANTETKK_H

#include <string>

#include "IVarianteTkk.h"
#include "VekTkkExport.h"

struct STagsInfoVariante;

// A light view of one variant record of a track file. It answers variant
// questions from its own record and file questions from the record's owner.
// It owns nothing: it is valid while the owning file and its list of
// variants are unchanged. A view over a null record answers defaults.
class VEKTKK_API CVarianteTkk : public IVarianteTkk {
 public:
  explicit CVarianteTkk(STagsInfoVariante* record);
  ~CVarianteTkk() override;

  STagsInfoVariante* GetTagInfo() override;
  std::string GetNomePista() const override;
  // The owner's site name, then a blank and this variant's track name when
  // there is one (the file composes with the device name instead).
  std::string GetTrackNameCompleto() const override;
  bool IsTrashed() const override;
  // The main variant's date, whichever variant is viewed.
  void GetDateTimeTMModifica(tm& when) const override;
  const std::string& GetTrackComment() const override;
  void SetTrackComment(const std::string& comment) override;
  // The codes are answered only when the record has an additional-text
  // record.
  std::string GetNationCode() const override;
  std::string GetSubNationCode() const override;
  std::string GetCitta() const override;
  bool GetAuto() const override;
  bool GetKart() const override;
  bool GetMoto() const override;
  _eTipoTracciatoTkk GetTrackTypeCircuitKey() const override;
  void SetTrackTypeCircuitKey(const _eTipoTracciatoTkk& key) override;
  _eTipoRoadSurfaceTkk GetFondoStradaleKey() const override;
  // Replaces the first entry of the record's road-surface list; never adds
  // a variant.
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
  // Renames the record's logo; never loads a file.
  void SetTrackLogo(const std::string& path) override;
  float GetTrackLenght() const override;
  _eTipoLunghezzaPista GetTrackLenghtKey() const override;
  void SetTrackLenght(const _eTipoLunghezzaPista* key, const float* metres) override;
  float GetTrackAnglePlot() const override;
  void SetTrackAnglePlot(const float& angle) override;
  bool IsTrackChiuso() const override;
  // Position of the record in the owner's list, or -1.
  short GetIdxVariante() const override;
  // Writes this record's date (reading gives the main variant's).
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

 private:
  STagsInfoVariante* Record;
};

#endif  // VEKTKK_CVARIANTETKK_H
