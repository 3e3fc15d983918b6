// Hosts built elsewhere call track, variant and summary objects by virtual-table
// slot, so every operation must keep its slot. A reordered header fails here.
#include <gtest/gtest.h>
#include <stddef.h>
#include <string.h>

#include "IFileRiassuntivo.h"
#include "IFileTkk.h"

namespace {

// The slot a pointer to a virtual member function designates. In the
// Itanium C++ ABI such a pointer holds 1 + the byte offset of the slot; the
// ARM variant (32- and 64-bit alike) holds the offset and marks "virtual" in
// the adjustment.
template <typename Pmf>
long Slot(Pmf pmf) {
  ptrdiff_t words[2];
  memcpy(words, &pmf, sizeof words);
#if defined(__arm__) || defined(__aarch64__)
  return (words[1] & 1) == 0 ? -1 : static_cast<long>(words[0] / static_cast<ptrdiff_t>(sizeof(void*)));
#else
  return (words[0] & 1) == 0 ? -1 : static_cast<long>((words[0] - 1) / static_cast<ptrdiff_t>(sizeof(void*)));
#endif
}

// The operations listed in slot order from `first`, each with its name.
void ExpectSlots(long first, std::initializer_list<std::pair<const char*, long>> slots) {
  for (const auto& [name, slot] : slots) EXPECT_EQ(slot, first++) << name;
}
#define SLOTS(first, ...) ExpectSlots(first, {__VA_ARGS__})
#define S(fn) std::make_pair(#fn, Slot(&CLS::fn))

TEST(VtableSlots, EveryOperationKeepsItsSlot) {
#define CLS IVarianteTkk
  SLOTS(0, S(GetTagInfo), S(GetNomePista), S(GetTrackNameCompleto), S(IsTrashed), S(GetDateTimeTMModifica),
        S(GetTrackComment), S(SetTrackComment), S(GetNationCode), S(GetSubNationCode), S(GetCitta),
        S(GetAuto), S(GetKart), S(GetMoto), S(GetTrackTypeCircuitKey), S(SetTrackTypeCircuitKey),
        S(GetFondoStradaleKey), S(SetFondoStradaleKey), S(GetTrackIsReadOnly), S(GetStringaVarianti),
        S(GetNamexSito), S(OttieniStringaxTrackTypeCircuitKey), S(OttieniStringaxFondoStradaleKey),
        S(OttieniStringaxLunghezzaKey), S(GetTrackAddress), S(SetTrackAddress), S(GetTrackTelephone),
        S(SetTrackTelephone), S(GetTrackURL), S(SetTrackURL), S(GetTrackPostalCode), S(SetTrackPostalCode),
        S(GetLarghezzaPista), S(SetLarghezzaPista), S(GetTrackLogo), S(GetTrackLogoBuffer), S(SetTrackLogo),
        S(GetTrackLenght), S(GetTrackLenghtKey), S(SetTrackLenght), S(GetTrackAnglePlot),
        S(SetTrackAnglePlot), S(IsTrackChiuso), S(GetIdxVariante), S(AggiornaDataModifica),
        S(IsTrackObsoleta), S(GetLineeSplitLLH), S(SetLineeSplitLLH), S(ClearLineaSplitLLH),
        S(GetTrackNomignolo), S(GetTrackTimeZone), S(GetNomeXDevice), S(SetNomeXDevice), S(IsGood),
        S(IsVekTrack), S(IsDevTrack), S(IsUserCreatedNewTrack), S(GetGuidNomeFile),
        S(GetNomeFileDaFileSystem));
#undef CLS
#define CLS IFileTkk
  // Inherited operations keep their slots in the file's table; 58 and 59 are
  // the two destructor entries.
  SLOTS(57, S(GetNomeFileDaFileSystem));
  using StrBeacon = void (IFileTkk::*)(std::string&) const;
  using StrBeaconOf = void (IFileTkk::*)(std::string&, _eTipoBeaconDaUsare) const;
  SLOTS(60, S(GetVariantiTrack), S(IsOpenTrack), S(HasShape), S(GetIdxMainVariante), S(SetNationCode),
        S(SetNamexSito), S(SetSubNationCode), S(SetCitta), S(SetTagInfoFile), S(GetTagInfoFile),
        S(AddTagDatiPlus), S(AddDatiFondoStradale), S(AddTagDatiPuntiTracciato), S(AddTagDatiLogo),
        S(AddTagInfoVariante), S(GetGuidVariante), S(GetTagsInfoVarianti), S(GetTagInfoVariante),
        S(LeggiFile), S(SalvaFileInPath), S(SalvaFileInPathLogoEsterno), S(GetDimTkk), S(AssegnaPtrPunti),
        S(RemoveShape), S(AssignTrackLength), S(TrasformaPistaUtenteInVek), S(TrasformaSetDiBeacon),
        S(TrasformaPistaInVek), S(SetBaricentro), S(IsVekTrackWithCorrectBeaconType), S(GetTimeZone),
        S(GetDeltaMin), S(SetTimezone), S(SetDeltaMin),
        std::make_pair("GetStrBeaconType", Slot(StrBeacon(&IFileTkk::GetStrBeaconType))),
        S(CanUseBeaconTypeMagnetic), S(AreEqualBeacons), S(AreCoherentBeacons), S(BaricentroCoerente),
        std::make_pair("GetStrBeaconType(type)", Slot(StrBeaconOf(&IFileTkk::GetStrBeaconType))));
#undef CLS
#define CLS IFileRiassuntivo
  // 0 and 1 are the two destructor entries.
  SLOTS(2, S(ConfrontaConAltro), S(ConfrontaConAltroEsteso), S(SalvaFileDev),
        S(CreaFileAlfabSortedSenzaNazione), S(CreaFileAlfabSortedConNazione), S(CreaFileLatLonSorted),
        S(CreaFileGuidSorted), S(AddVarianteTkk), S(DelFileTkk), S(IsThisFileTkkHere), S(GetDatiRiassuntivi),
        S(GetDatoRiassuntivo), S(GetNumRiassuntivi), S(LeggiRiassuntivo), S(GetDatoRiassuntivoNearest),
        S(getNearestTracksByHeaversine), S(CreaFileAlfabSortedConNazioneTestuale), S(AddFromDir),
        S(CreaDaDirettorio), S(AggiungiDaDirettorio));
#undef CLS
}

}  // namespace
