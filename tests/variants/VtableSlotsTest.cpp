// Hosts built elsewhere call track, variant and summary objects by virtual-table
// slot, so every operation must keep its slot. A reordered header fails
// here.
#include <gtest/gtest.h>
#include <stddef.h>
#include <string.h>

#include <string>

#include "IFileRiassuntivo.h"
#include "IFileTkk.h"

namespace {

// The slot a pointer to a virtual member function designates. In the
// Itanium C++ ABI such a pointer holds 1 + the byte offset of the slot; the
// ARM variant (32- and 64-bit alike) holds the offset and marks "virtual" in
// the adjustment.
template <typename Pmf>
long Slot(Pmf pmf) {
  static_assert(sizeof(Pmf) == 2 * sizeof(ptrdiff_t), "two-word member function pointer");
  ptrdiff_t words[2];
  memcpy(words, &pmf, sizeof words);
#if defined(__arm__) || defined(__aarch64__)
  if ((words[1] & 1) == 0) return -1;
  return static_cast<long>(words[0] / static_cast<ptrdiff_t>(sizeof(void*)));
#else
  if ((words[0] & 1) == 0) return -1;
  return static_cast<long>((words[0] - 1) / static_cast<ptrdiff_t>(sizeof(void*)));
#endif
}

struct Entry {
  const char* name;
  long slot;
  long expected;
};

#define SLOT(cls, fn, n) Entry{#fn, Slot(&cls::fn), n}

TEST(VtableSlots, VariantOperations) {
  const Entry entries[] = {
      SLOT(IVarianteTkk, GetTagInfo, 0),
      SLOT(IVarianteTkk, GetNomePista, 1),
      SLOT(IVarianteTkk, GetTrackNameCompleto, 2),
      SLOT(IVarianteTkk, IsTrashed, 3),
      SLOT(IVarianteTkk, GetDateTimeTMModifica, 4),
      SLOT(IVarianteTkk, GetTrackComment, 5),
      SLOT(IVarianteTkk, SetTrackComment, 6),
      SLOT(IVarianteTkk, GetNationCode, 7),
      SLOT(IVarianteTkk, GetSubNationCode, 8),
      SLOT(IVarianteTkk, GetCitta, 9),
      SLOT(IVarianteTkk, GetAuto, 10),
      SLOT(IVarianteTkk, GetKart, 11),
      SLOT(IVarianteTkk, GetMoto, 12),
      SLOT(IVarianteTkk, GetTrackTypeCircuitKey, 13),
      SLOT(IVarianteTkk, SetTrackTypeCircuitKey, 14),
      SLOT(IVarianteTkk, GetFondoStradaleKey, 15),
      SLOT(IVarianteTkk, SetFondoStradaleKey, 16),
      SLOT(IVarianteTkk, GetTrackIsReadOnly, 17),
      SLOT(IVarianteTkk, GetStringaVarianti, 18),
      SLOT(IVarianteTkk, GetNamexSito, 19),
      SLOT(IVarianteTkk, OttieniStringaxTrackTypeCircuitKey, 20),
      SLOT(IVarianteTkk, OttieniStringaxFondoStradaleKey, 21),
      SLOT(IVarianteTkk, OttieniStringaxLunghezzaKey, 22),
      SLOT(IVarianteTkk, GetTrackAddress, 23),
      SLOT(IVarianteTkk, SetTrackAddress, 24),
      SLOT(IVarianteTkk, GetTrackTelephone, 25),
      SLOT(IVarianteTkk, SetTrackTelephone, 26),
      SLOT(IVarianteTkk, GetTrackURL, 27),
      SLOT(IVarianteTkk, SetTrackURL, 28),
      SLOT(IVarianteTkk, GetTrackPostalCode, 29),
      SLOT(IVarianteTkk, SetTrackPostalCode, 30),
      SLOT(IVarianteTkk, GetLarghezzaPista, 31),
      SLOT(IVarianteTkk, SetLarghezzaPista, 32),
      SLOT(IVarianteTkk, GetTrackLogo, 33),
      SLOT(IVarianteTkk, GetTrackLogoBuffer, 34),
      SLOT(IVarianteTkk, SetTrackLogo, 35),
      SLOT(IVarianteTkk, GetTrackLenght, 36),
      SLOT(IVarianteTkk, GetTrackLenghtKey, 37),
      SLOT(IVarianteTkk, SetTrackLenght, 38),
      SLOT(IVarianteTkk, GetTrackAnglePlot, 39),
      SLOT(IVarianteTkk, SetTrackAnglePlot, 40),
      SLOT(IVarianteTkk, IsTrackChiuso, 41),
      SLOT(IVarianteTkk, GetIdxVariante, 42),
      SLOT(IVarianteTkk, AggiornaDataModifica, 43),
      SLOT(IVarianteTkk, IsTrackObsoleta, 44),
      SLOT(IVarianteTkk, GetLineeSplitLLH, 45),
      SLOT(IVarianteTkk, SetLineeSplitLLH, 46),
      SLOT(IVarianteTkk, ClearLineaSplitLLH, 47),
      SLOT(IVarianteTkk, GetTrackNomignolo, 48),
      SLOT(IVarianteTkk, GetTrackTimeZone, 49),
      SLOT(IVarianteTkk, GetNomeXDevice, 50),
      SLOT(IVarianteTkk, SetNomeXDevice, 51),
      SLOT(IVarianteTkk, IsGood, 52),
      SLOT(IVarianteTkk, IsVekTrack, 53),
      SLOT(IVarianteTkk, IsDevTrack, 54),
      SLOT(IVarianteTkk, IsUserCreatedNewTrack, 55),
      SLOT(IVarianteTkk, GetGuidNomeFile, 56),
      SLOT(IVarianteTkk, GetNomeFileDaFileSystem, 57),
      // 58 and 59 are the two destructor entries: IFileTkk's first
      // operation sits right after them.
  };
  for (const Entry& e : entries) EXPECT_EQ(e.slot, e.expected) << e.name;
}

TEST(VtableSlots, FileOperations) {
  using StrBeacon = void (IFileTkk::*)(std::string&) const;
  using StrBeaconOf = void (IFileTkk::*)(std::string&, _eTipoBeaconDaUsare) const;
  const Entry entries[] = {
      SLOT(IFileTkk, GetVariantiTrack, 60),
      SLOT(IFileTkk, IsOpenTrack, 61),
      SLOT(IFileTkk, HasShape, 62),
      SLOT(IFileTkk, GetIdxMainVariante, 63),
      SLOT(IFileTkk, SetNationCode, 64),
      SLOT(IFileTkk, SetNamexSito, 65),
      SLOT(IFileTkk, SetSubNationCode, 66),
      SLOT(IFileTkk, SetCitta, 67),
      SLOT(IFileTkk, SetTagInfoFile, 68),
      SLOT(IFileTkk, GetTagInfoFile, 69),
      SLOT(IFileTkk, AddTagDatiPlus, 70),
      SLOT(IFileTkk, AddDatiFondoStradale, 71),
      SLOT(IFileTkk, AddTagDatiPuntiTracciato, 72),
      SLOT(IFileTkk, AddTagDatiLogo, 73),
      SLOT(IFileTkk, AddTagInfoVariante, 74),
      SLOT(IFileTkk, GetGuidVariante, 75),
      SLOT(IFileTkk, GetTagsInfoVarianti, 76),
      SLOT(IFileTkk, GetTagInfoVariante, 77),
      SLOT(IFileTkk, LeggiFile, 78),
      SLOT(IFileTkk, SalvaFileInPath, 79),
      SLOT(IFileTkk, SalvaFileInPathLogoEsterno, 80),
      SLOT(IFileTkk, GetDimTkk, 81),
      SLOT(IFileTkk, AssegnaPtrPunti, 82),
      SLOT(IFileTkk, RemoveShape, 83),
      SLOT(IFileTkk, AssignTrackLength, 84),
      SLOT(IFileTkk, TrasformaPistaUtenteInVek, 85),
      SLOT(IFileTkk, TrasformaSetDiBeacon, 86),
      SLOT(IFileTkk, TrasformaPistaInVek, 87),
      SLOT(IFileTkk, SetBaricentro, 88),
      SLOT(IFileTkk, IsVekTrackWithCorrectBeaconType, 89),
      SLOT(IFileTkk, GetTimeZone, 90),
      SLOT(IFileTkk, GetDeltaMin, 91),
      SLOT(IFileTkk, SetTimezone, 92),
      SLOT(IFileTkk, SetDeltaMin, 93),
      Entry{"GetStrBeaconType(text)", Slot(static_cast<StrBeacon>(&IFileTkk::GetStrBeaconType)), 94},
      SLOT(IFileTkk, CanUseBeaconTypeMagnetic, 95),
      SLOT(IFileTkk, AreEqualBeacons, 96),
      SLOT(IFileTkk, AreCoherentBeacons, 97),
      SLOT(IFileTkk, BaricentroCoerente, 98),
      Entry{"GetStrBeaconType(text, type)", Slot(static_cast<StrBeaconOf>(&IFileTkk::GetStrBeaconType)), 99},
      // Inherited operations keep their slots in the file's table.
      SLOT(IFileTkk, GetNomeFileDaFileSystem, 57),
  };
  for (const Entry& e : entries) EXPECT_EQ(e.slot, e.expected) << e.name;
}

TEST(VtableSlots, SummaryOperations) {
  // 0 and 1 are the two destructor entries.
  const Entry entries[] = {
      SLOT(IFileRiassuntivo, ConfrontaConAltro, 2),
      SLOT(IFileRiassuntivo, ConfrontaConAltroEsteso, 3),
      SLOT(IFileRiassuntivo, SalvaFileDev, 4),
      SLOT(IFileRiassuntivo, CreaFileAlfabSortedSenzaNazione, 5),
      SLOT(IFileRiassuntivo, CreaFileAlfabSortedConNazione, 6),
      SLOT(IFileRiassuntivo, CreaFileLatLonSorted, 7),
      SLOT(IFileRiassuntivo, CreaFileGuidSorted, 8),
      SLOT(IFileRiassuntivo, AddVarianteTkk, 9),
      SLOT(IFileRiassuntivo, DelFileTkk, 10),
      SLOT(IFileRiassuntivo, IsThisFileTkkHere, 11),
      SLOT(IFileRiassuntivo, GetDatiRiassuntivi, 12),
      SLOT(IFileRiassuntivo, GetDatoRiassuntivo, 13),
      SLOT(IFileRiassuntivo, GetNumRiassuntivi, 14),
      SLOT(IFileRiassuntivo, LeggiRiassuntivo, 15),
      SLOT(IFileRiassuntivo, GetDatoRiassuntivoNearest, 16),
      SLOT(IFileRiassuntivo, getNearestTracksByHeaversine, 17),
      SLOT(IFileRiassuntivo, CreaFileAlfabSortedConNazioneTestuale, 18),
      SLOT(IFileRiassuntivo, AddFromDir, 19),
      SLOT(IFileRiassuntivo, CreaDaDirettorio, 20),
      SLOT(IFileRiassuntivo, AggiungiDaDirettorio, 21),
  };
  for (const Entry& e : entries) EXPECT_EQ(e.slot, e.expected) << e.name;
}

}  // namespace
