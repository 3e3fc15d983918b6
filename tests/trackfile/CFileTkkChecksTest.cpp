#include <gtest/gtest.h>
#include <math.h>
#include <string.h>

#include <string>

#include "CFileTkk.h"
#include "Coordinate.h"
#include "TrackMemoryRecords.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

namespace {

constexpr double kRadius = 6372797.560856;
constexpr double kRefLat = 45.62;
constexpr double kRefLon = 9.28;

// A line due north of the reference point, `metres` away along the meridian.
_SDatoCoordinateBeacon North(double metres) {
  _SDatoCoordinateBeacon l;
  l.LatI = ConvertiLatLonAs32(kRefLat + metres / kRadius * 180.0 / M_PI);
  l.LonI = ConvertiLatLonAs32(kRefLon);
  return l;
}

class ChecksTest : public ::testing::Test {
 protected:
  void SetUp() override {
    evtrec::Reset(true);
    track_ = fixtures::MakeSmallTrack();  // device name "Monza GP", type 4 in use
    track_->SetBaricentro(kRefLat, kRefLon);
    main_ = track_->GetTagInfo();
  }
  void TearDown() override { evtrec::Reset(false); }
  _SInfoBeacons& Beacons() { return main_->InfoFw.InfoBeacons; }

  std::unique_ptr<CFileTkk> track_;
  STagsInfoVariante* main_ = nullptr;
  std::string msg_ = "untouched";
};

TEST_F(ChecksTest, LinesMustLieWithin1000MetresOfTheReferencePoint) {
  EXPECT_TRUE(track_->BaricentroCoerente(msg_));  // no line at all
  EXPECT_EQ(msg_, "");
  track_->SetLineeSplitLLH(0, North(999.5), BEACON_IN_USO);
  track_->SetLineeSplitLLH(1, North(999.5), BEACON_IN_USO);
  EXPECT_TRUE(track_->BaricentroCoerente(msg_));
  track_->SetLineeSplitLLH(1, North(1000.5), BEACON_IN_USO);
  EXPECT_FALSE(track_->BaricentroCoerente(msg_));
  EXPECT_EQ(msg_, "split n.1 is far from average point for track Monza GP distance = 1000 ref distance = 1000");
  track_->SetLineeSplitLLH(0, North(2500.2), BEACON_IN_USO);
  EXPECT_FALSE(track_->BaricentroCoerente(msg_));
  EXPECT_EQ(msg_, "lap is far from average point for track Monza GP distance = 2500 ref distance = 1000");
}

TEST_F(ChecksTest, UnitedStatesLinesLieWest) {
  _SDatoCoordinateBeacon east = North(0);
  east.LonI = 1;
  _SDatoCoordinateBeacon zero = North(0);
  zero.LonI = 0;
  track_->SetLineeSplitLLH(0, zero, BEACON_IN_USO);
  track_->SetLineeSplitLLH(1, east, BEACON_IN_USO);
  struct Case {
    const char* nation;
    bool passes;
  };
  const Case cases[] = {{"USA", false}, {"US", false}, {"ITA", true}, {"U", true}};
  for (const Case& c : cases) {
    track_->SetNationCode(c.nation);
    EXPECT_EQ(track_->AreCoherentBeacons(msg_), c.passes) << c.nation;
    EXPECT_EQ(msg_, c.passes ? "" : "split n.1 has not coherent coordinate");
  }
  track_->SetNationCode("USA");
  track_->SetLineeSplitLLH(0, east, BEACON_IN_USO);
  EXPECT_FALSE(track_->AreCoherentBeacons(msg_));
  EXPECT_EQ(msg_, "lap has not coherent coordinate");
}

TEST_F(ChecksTest, EqualBeaconsCompareCountsThenPositions) {
  EXPECT_TRUE(track_->AreEqualBeacons(BEACON_OPTIC, msg_));  // both empty
  for (unsigned i = 0; i < 3; ++i) Beacons().SetLineeSplitLLH(i, North(i + 1.0), BEACON_USER);
  for (unsigned i = 0; i < 2; ++i) Beacons().SetLineeSplitLLH(i, North(i + 1.0), BEACON_OPTIC);
  EXPECT_FALSE(track_->AreEqualBeacons(BEACON_OPTIC, msg_));
  EXPECT_EQ(msg_, "we have 3 beacons in set User and 2 beacons in set Optic");

  _SDatoCoordinateBeacon same = North(3.0);
  same.AltI = 99;  // height and width do not count
  same.LarghezzaPista = 7;
  Beacons().SetLineeSplitLLH(2, same, BEACON_OPTIC);
  EXPECT_TRUE(track_->AreEqualBeacons(BEACON_OPTIC, msg_));
  EXPECT_EQ(msg_, "");

  const _SDatoCoordinateBeacon u1 = Beacons().LineeBeacon[3][1];
  _SDatoCoordinateBeacon moved = u1;
  moved.LonI += 5;
  Beacons().SetLineeSplitLLH(1, moved, BEACON_OPTIC);
  EXPECT_FALSE(track_->AreEqualBeacons(BEACON_OPTIC, msg_));
  EXPECT_EQ(msg_, "we have  different split n. 1(" + std::to_string(u1.LatI) + ";" +
                      std::to_string(u1.LonI) + ") in set User and coordinates " +
                      std::to_string(moved.LatI) + ";" + std::to_string(moved.LonI) + " in set Optic");

  const _SDatoCoordinateBeacon u0 = Beacons().LineeBeacon[3][0];
  Beacons().SetLineeSplitLLH(0, moved, BEACON_OPTIC);
  EXPECT_FALSE(track_->AreEqualBeacons(BEACON_OPTIC, msg_));
  EXPECT_EQ(msg_, "we have  different lap (" + std::to_string(u0.LatI) + ";" + std::to_string(u0.LonI) +
                      ") in set User and coordinates " + std::to_string(moved.LatI) + ";" +
                      std::to_string(moved.LonI) + " in set Optic");
}

TEST_F(ChecksTest, BeaconTypeMustSuitTheCircuit) {
  // Scrutineering in use: passes without a word.
  Beacons().TipoBeaconInUso = BEACON_SCRUTINEERING;
  EXPECT_TRUE(track_->IsVekTrackWithCorrectBeaconType(msg_));
  EXPECT_EQ(msg_, "untouched");
  // Magnetic on a kart track passes too.
  Beacons().TipoBeaconInUso = BEACON_MAGNETIC;
  track_->SetTrackTypeCircuitKey(TRACCIATO_KART_TRACK);
  EXPECT_TRUE(track_->IsVekTrackWithCorrectBeaconType(msg_));
  EXPECT_TRUE(evtrec::Events().empty());

  // Optic, same lines as the scrutineering set: fails with a report.
  Beacons().TipoBeaconInUso = BEACON_OPTIC;
  EXPECT_FALSE(track_->IsVekTrackWithCorrectBeaconType(msg_));
  EXPECT_EQ(msg_, "Track Monza GP has beacon type Optic and circuit type 2");
  // Different lines: fails with the other report and the comparison's text.
  Beacons().SetLineeSplitLLH(0, North(1.0), BEACON_OPTIC);
  EXPECT_FALSE(track_->IsVekTrackWithCorrectBeaconType(msg_));
  EXPECT_EQ(msg_, "we have 1 beacons in set Optic and 0 beacons in set Scrutineering");

  ASSERT_EQ(evtrec::Events().size(), 2u);
  EXPECT_EQ(evtrec::Events()[0].severity, "ERROR");
  EXPECT_EQ(evtrec::Events()[0].Message(), "beacons are same for track Monza GP ");
  EXPECT_EQ(evtrec::Events()[1].severity, "ERROR");
  EXPECT_EQ(evtrec::Events()[1].Message(), "beacons are different for track Monza GP ");
}

}  // namespace
