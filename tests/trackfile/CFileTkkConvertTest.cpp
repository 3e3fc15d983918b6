#include <gtest/gtest.h>
#include <string.h>

#include <memory>
#include <string>

#include "CFileTkk.h"
#include "GuidTkk.h"
#include "TrackMemoryRecords.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

namespace {

class ConvertTest : public ::testing::Test {
 protected:
  void SetUp() override { evtrec::Reset(true); }
  void TearDown() override { evtrec::Reset(false); }
  fixtures::TempDir dir_;
};

// A development track with one variant and no lists (a copy only carries
// the main variant's records).
std::unique_ptr<CFileTkk> DevTrack() {
  std::unique_ptr<CFileTkk> t(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, true)));
  _STagInfoVarianteTKK_fw fw;
  memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
  fw.TimeZone = 1;
  fw.InfoBeacons.TipoBeaconInUso = BEACON_USER;
  _SDatoCoordinateBeacon finish;
  finish.LatI = 456200000;
  finish.LonI = 92800000;
  finish.LarghezzaPista = 12;
  fw.InfoBeacons.LineeBeacon[3][0] = finish;
  finish.LatI += 1000;
  fw.InfoBeacons.LineeBeacon[3][1] = finish;
  EXPECT_TRUE(t->AddTagInfoVariante("GP", "Monza", fw, _STagIndexesVarianteTKK()));
  return t;
}

TEST_F(ConvertTest, DevelopmentTrackBecomesAMakersCopy) {
  auto dev = DevTrack();
  EXPECT_TRUE(dev->IsUserCreatedNewTrack());
  const _STagInfoVarianteTKK_fw source = dev->GetTagInfo()->InfoFw;
  EXPECT_FALSE(dev->TrasformaPistaUtenteInVek(dir_.path(), BEACON_OPTIC));  // false also on success
  EXPECT_TRUE(evtrec::Events().empty());

  const auto files = dir_.Entries();
  ASSERT_EQ(files.size(), 1u);
  std::unique_ptr<CFileTkk> vek(
      static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(dir_.path() + files[0], false, false)));
  ASSERT_TRUE(vek->IsGood());
  EXPECT_TRUE(vek->IsVekTrack());
  ASSERT_EQ(vek->GetTagsInfoVarianti().size(), 1u);
  EXPECT_EQ(vek->GetNomePista(), "GP");
  EXPECT_EQ(vek->GetNomeXDevice(), "Monza");
  EXPECT_FALSE(vek->IsUserCreatedNewTrack());

  // The record is the source's but for the optic set (six copies of the
  // finish line in use) and the maker bit of the GUID.
  _STagInfoVarianteTKK_fw expected = source;
  for (auto& l : expected.InfoBeacons.LineeBeacon[2]) l = source.InfoBeacons.LineeBeacon[3][0];
  expected.Guid.Byte[5] ^= 0x80;
  EXPECT_EQ(memcmp(&vek->GetTagInfo()->InfoFw, &expected, sizeof expected), 0);
  EXPECT_TRUE(IGuidTkk::IsVek(vek->GetTagInfo()->InfoFw.Guid));

  // This track is not changed.
  EXPECT_EQ(memcmp(&dev->GetTagInfo()->InfoFw, &source, sizeof source), 0);
}

TEST_F(ConvertTest, OnlyDevelopmentTracksAreConverted) {
  auto t = fixtures::MakeSmallTrack();
  EXPECT_FALSE(t->TrasformaPistaUtenteInVek(dir_.path(), BEACON_OPTIC));
  ASSERT_EQ(evtrec::Events().size(), 1u);
  EXPECT_EQ(evtrec::Events()[0].severity, "ERROR");
  EXPECT_EQ(evtrec::Events()[0].Message(), "La pista e' gia' Vek");
  EXPECT_TRUE(dir_.Entries().empty());
}

TEST_F(ConvertTest, MakerBitAndReferencePoint) {
  auto t = DevTrack();
  const uint64_t guid = t->GetTagInfo()->InfoFw.Guid.Valore;
  t->TrasformaPistaInVek();
  EXPECT_EQ(uint64_t{t->GetTagInfo()->InfoFw.Guid.Valore}, guid ^ (1ull << 47));
  t->TrasformaPistaInVek();
  EXPECT_EQ(uint64_t{t->GetTagInfo()->InfoFw.Guid.Valore}, guid);

  struct Case {
    double lat, lon;
    int32_t latI, lonI;
  };
  const Case cases[] = {{45.6, 9.28, 456000000, 92800000}, {-0.00000005, 0.0, -1, 0}, {-33.5, -70.25, -335000000, -702500000}};
  for (const Case& c : cases) {
    t->SetBaricentro(c.lat, c.lon);
    EXPECT_EQ(t->GetTagInfo()->InfoFw.LatRif, c.latI);
    EXPECT_EQ(t->GetTagInfo()->InfoFw.LonRif, c.lonI);
  }

  // A maker's track is never a user's, whatever its GUID says.
  std::unique_ptr<CFileTkk> maker(static_cast<CFileTkk*>(IFileTkk::CreateMe(true, false)));
  _STagInfoVarianteTKK_fw fw;
  fw.Guid.Valore = 1ull << 47;
  ASSERT_TRUE(maker->AddTagInfoVariante("", "", fw, _STagIndexesVarianteTKK()));
  EXPECT_FALSE(maker->IsUserCreatedNewTrack());
}

}  // namespace
