#include <gtest/gtest.h>

#include <string>

#include "CFileTkk.h"
#include "TrackMemoryRecords.h"
#include "support/TrackFixtures.h"

namespace {

_SDatoCoordinateBeacon Line(int32_t lat, int32_t lon, uint32_t width = 0) {
  _SDatoCoordinateBeacon l;
  l.LatI = lat;
  l.LonI = lon;
  l.LarghezzaPista = width;
  return l;
}

TEST(InfoBeacons, NewSetsAreEmpty) {
  const _SInfoBeacons b;
  EXPECT_EQ(b.TipoBeaconInUso, 1);
  for (int t = 1; t <= 5; ++t) {
    EXPECT_EQ(b.GetNumeroSplit(static_cast<_eTipoBeaconDaUsare>(t)), 0u);
    EXPECT_EQ(b.GetLarghezzaPista(static_cast<_eTipoBeaconDaUsare>(t)), 0u);
  }
  EXPECT_FALSE(Line(0, 0, 12).isUsed());  // a width alone does not make a line
}

TEST(InfoBeacons, CountStopsAtTheFirstUnusedLine) {
  _SInfoBeacons b;
  for (unsigned i : {0u, 1u, 3u}) b.SetLineeSplitLLH(i, Line(1, 1), BEACON_OPTIC);
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 2u);
  b.SetLineeSplitLLH(2, Line(1, 1), BEACON_OPTIC);
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 4u);
  b.SetLineeSplitLLH(6, Line(1, 1), BEACON_OPTIC);  // no position 6
  b.SetLineeSplitLLH(4, Line(1, 1), static_cast<_eTipoBeaconDaUsare>(7));  // no set 7
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 4u);
  b.ClearLineaSplitLLH(1, BEACON_OPTIC);
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 1u);
}

TEST(InfoBeacons, TypeFiveIsTheTypeInUse) {
  _SInfoBeacons b;
  b.TipoBeaconInUso = BEACON_OPTIC;
  b.SetLineeSplitLLH(0, Line(5, 6, 9), BEACON_IN_USO);  // entry 0 carries the width
  const _SDatoCoordinateBeacon* lines = nullptr;
  EXPECT_EQ(b.GetLineeSplitLLH(lines, BEACON_IN_USO), 1u);
  EXPECT_EQ(lines, b.LineeBeacon[2]);
  EXPECT_EQ(b.GetLarghezzaPista(BEACON_OPTIC), 9u);
  b.SetLarghezzaPista(11, BEACON_IN_USO);
  EXPECT_EQ(b.LineeBeacon[2][0].LarghezzaPista, 11u);
  EXPECT_EQ(b.GetLineeSplitLLH(lines, static_cast<_eTipoBeaconDaUsare>(7)), 0u);
  EXPECT_EQ(lines, nullptr);
  b.TipoBeaconInUso = 0;
  EXPECT_EQ(b.GetLineeSplitLLH(lines, BEACON_IN_USO), 0u);
  EXPECT_EQ(lines, nullptr);
}

TEST(InfoBeacons, NamesOfTheTypes) {
  auto t = fixtures::MakeSmallTrack();  // a user's track: type 4 in use
  const char* names[] = {"Unexpected!!!!", "Scrutineering", "Magnetic", "Optic",
                         "User",           "Last!!!!",      "Unexpected!!!!"};
  std::string text;
  for (int type = 0; type <= 6; ++type) {
    t->GetStrBeaconType(text, static_cast<_eTipoBeaconDaUsare>(type));
    EXPECT_EQ(text, names[type]);
  }
  t->GetStrBeaconType(text);
  EXPECT_EQ(text, "User");
}

TEST(InfoBeacons, MovingTheSetCopiesTheFinishLineSixTimes) {
  auto t = fixtures::MakeSmallTrack();
  STagsInfoVariante* main = t->GetTagInfo();
  main->InfoFw.InfoBeacons.TipoBeaconInUso = BEACON_SCRUTINEERING;
  t->SetLineeSplitLLH(0, Line(10, 20, 15), BEACON_IN_USO);
  t->SetLineeSplitLLH(1, Line(11, 21), BEACON_IN_USO);
  t->SetLineeSplitLLH(2, Line(12, 22), BEACON_IN_USO);
  EXPECT_EQ(t->GetLarghezzaPista(), 15u);
  EXPECT_TRUE(t->TrasformaSetDiBeacon(BEACON_OPTIC));
  const _SInfoBeacons& b = main->InfoFw.InfoBeacons;
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 6u);
  for (const auto& l : b.LineeBeacon[2]) {
    EXPECT_EQ(l.LatI, 10);
    EXPECT_EQ(l.LarghezzaPista, 15u);
  }
  EXPECT_EQ(b.GetNumeroSplit(BEACON_SCRUTINEERING), 3u);  // the set in use is unchanged
  EXPECT_EQ(b.TipoBeaconInUso, BEACON_SCRUTINEERING);
  EXPECT_FALSE(t->CanUseBeaconTypeMagnetic());
  t->SetTrackTypeCircuitKey(TRACCIATO_KART_TRACK);
  EXPECT_TRUE(t->CanUseBeaconTypeMagnetic());
}

}  // namespace
