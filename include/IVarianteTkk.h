#ifndef VEKTKK_IVARIANTETKK_H
#define VEKTKK_IVARIANTETKK_H

#include <time.h>

#include <string>
#include <vector>

#include "TrackFileEnums.h"
#include "TrackFileRecords.h"
#include "VekTkkExport.h"

struct SLogo;
struct STagsInfoVariante;

// One configuration of a circuit: a whole track file answering for its main
// variant (IFileTkk), or a view of one variant record (CVarianteTkk).
//
// Hosts built elsewhere call these objects through their virtual tables, so
// the order of the virtual members below is part of the binary interface
// (slot numbers in the comments): never reorder them, only add after the
// last. Texts are in the local character set; getters of a track never fail
// and answer fixed defaults when a record is missing.
class VEKTKK_API IVarianteTkk {
 public:
  // Vocabulary of the keys stored in track files. The lookups match keys
  // exactly; `strict` asks for "" rather than the first text of the table
  // for an unknown key.
  static std::string OttieniStringaxLunghezzaKeyy(_eTipoLunghezzaPista key);
  static std::string OttieniStringaxFondoStradaleKeyy(_eTipoRoadSurfaceTkk key, bool strict);
  static std::string OttieniStringaxTrackTypeCircuitKeyy(_eTipoTracciatoTkk key, bool strict);
  // Append the texts offered for choice to `list`, without clearing it.
  static void GetElencoStringheFondoStradale(std::vector<std::string>& list);
  static void GetElencoStringheTrackType(std::vector<std::string>& list);
  // Whether a circuit type is closed. Not the negation of
  // CFileTkk::IsOpenTrack: types 0, 4, 8 and those above 10 are both.
  static bool IsTrackChiusoo(_eTipoTracciatoTkk type);

  // Time zone (hours from UTC and extra minutes) for a nation and its state
  // code, from fixed tables; codes are compared exactly. Hours become 50,
  // "not determined", first; an unknown code is reported and leaves the
  // outputs as they stand then. Nothing is returned.
  static void GetTimeZoneFromNation(const std::string& nation, const std::string& subNation,
                                    int& hours, int& minutes);
  // Minutes become 0 whatever the state; nine states leave the hours as
  // they were.
  static void GetUSTimeZoneFromState(const std::string& state, int& hours, int& minutes);
  static void GetAustraliaTimeZoneFromState(const std::string& state, int& hours, int& minutes);
  static void GetCanadaTimeZoneFromState(const std::string& province, int& hours, int& minutes);

  /*  0 */ virtual STagsInfoVariante* GetTagInfo() = 0;
  /*  1 */ virtual std::string GetNomePista() const = 0;
  /*  2 */ virtual std::string GetTrackNameCompleto() const = 0;
  /*  3 */ virtual bool IsTrashed() const = 0;
  /*  4 */ virtual void GetDateTimeTMModifica(tm& when) const = 0;
  /*  5 */ virtual const std::string& GetTrackComment() const = 0;
  /*  6 */ virtual void SetTrackComment(const std::string& comment) = 0;
  /*  7 */ virtual std::string GetNationCode() const = 0;
  /*  8 */ virtual std::string GetSubNationCode() const = 0;
  /*  9 */ virtual std::string GetCitta() const = 0;
  /* 10 */ virtual bool GetAuto() const = 0;
  /* 11 */ virtual bool GetKart() const = 0;
  /* 12 */ virtual bool GetMoto() const = 0;
  /* 13 */ virtual _eTipoTracciatoTkk GetTrackTypeCircuitKey() const = 0;
  /* 14 */ virtual void SetTrackTypeCircuitKey(const _eTipoTracciatoTkk& key) = 0;
  /* 15 */ virtual _eTipoRoadSurfaceTkk GetFondoStradaleKey() const = 0;
  /* 16 */ virtual void SetFondoStradaleKey(const _eTipoRoadSurfaceTkk& key) = 0;
  /* 17 */ virtual bool GetTrackIsReadOnly() const = 0;
  /* 18 */ virtual std::string GetStringaVarianti() const = 0;
  /* 19 */ virtual std::string GetNamexSito() const = 0;
  /* 20 */ virtual std::string OttieniStringaxTrackTypeCircuitKey() const = 0;
  /* 21 */ virtual std::string OttieniStringaxFondoStradaleKey() const = 0;
  /* 22 */ virtual std::string OttieniStringaxLunghezzaKey() const = 0;
  /* 23 */ virtual std::string GetTrackAddress() const = 0;
  /* 24 */ virtual void SetTrackAddress(const std::string& text) = 0;
  /* 25 */ virtual std::string GetTrackTelephone() const = 0;
  /* 26 */ virtual void SetTrackTelephone(const std::string& text) = 0;
  /* 27 */ virtual std::string GetTrackURL() const = 0;
  /* 28 */ virtual void SetTrackURL(const std::string& text) = 0;
  /* 29 */ virtual std::string GetTrackPostalCode() const = 0;
  /* 30 */ virtual void SetTrackPostalCode(const std::string& text) = 0;
  // Track width of the beacon set in use.
  /* 31 */ virtual unsigned int GetLarghezzaPista() const = 0;
  /* 32 */ virtual void SetLarghezzaPista(unsigned int width) = 0;
  // Name of the logo's image file, or null when there is none.
  /* 33 */ virtual const std::string* GetTrackLogo() const = 0;
  // The logo record, or null.
  /* 34 */ virtual SLogo* GetTrackLogoBuffer() const = 0;
  /* 35 */ virtual void SetTrackLogo(const std::string& path) = 0;
  /* 36 */ virtual float GetTrackLenght() const = 0;
  /* 37 */ virtual _eTipoLunghezzaPista GetTrackLenghtKey() const = 0;
  // Sets key and length together (either pointer may be null): a valid
  // key decides the length in whole metres.
  /* 38 */ virtual void SetTrackLenght(const _eTipoLunghezzaPista* key, const float* metres) = 0;
  /* 39 */ virtual float GetTrackAnglePlot() const = 0;
  /* 40 */ virtual void SetTrackAnglePlot(const float& angle) = 0;
  /* 41 */ virtual bool IsTrackChiuso() const = 0;
  /* 42 */ virtual short GetIdxVariante() const = 0;
  /* 43 */ virtual void AggiornaDataModifica(const tm& when) = 0;
  /* 44 */ virtual bool IsTrackObsoleta() const = 0;
  // Lines of a beacon set (type 5: the set in use): `lines` points at its 6
  // entries, the result counts the used ones up to the first unused.
  /* 45 */ virtual unsigned int GetLineeSplitLLH(const _SDatoCoordinateBeacon*& lines,
                                                 _eTipoBeaconDaUsare type) const = 0;
  /* 46 */ virtual void SetLineeSplitLLH(unsigned int idx, const _SDatoCoordinateBeacon& line,
                                         _eTipoBeaconDaUsare type) = 0;
  /* 47 */ virtual void ClearLineaSplitLLH(unsigned int idx, _eTipoBeaconDaUsare type) = 0;
  /* 48 */ virtual const std::string& GetTrackNomignolo() const = 0;
  // Hours and extra minutes of the time zone; false when there is no
  // variant, the outputs then untouched.
  /* 49 */ virtual bool GetTrackTimeZone(int& zone, int& deltaMin) const = 0;
  /* 50 */ virtual std::string GetNomeXDevice() const = 0;
  /* 51 */ virtual void SetNomeXDevice(const std::string& name) = 0;
  /* 52 */ virtual bool IsGood() const = 0;
  // A maker's track: the same flag as GetTrackIsReadOnly.
  /* 53 */ virtual bool IsVekTrack() const = 0;
  /* 54 */ virtual bool IsDevTrack() const = 0;
  /* 55 */ virtual bool IsUserCreatedNewTrack() const = 0;
  /* 56 */ virtual std::string GetGuidNomeFile() const = 0;
  /* 57 */ virtual std::string GetNomeFileDaFileSystem() const = 0;
  /* 58, 59 */ virtual ~IVarianteTkk();
};

#endif  // VEKTKK_IVARIANTETKK_H
