#include <gtest/gtest.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "GuidTkk.h"
#include "TrackMemoryRecords.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

namespace {

class BuildTest : public ::testing::Test {
 protected:
  void SetUp() override { evtrec::Reset(true); }
  void TearDown() override { evtrec::Reset(false); }

  static std::unique_ptr<CFileTkk> Empty(bool readOnly = false, bool dev = false) {
    return std::unique_ptr<CFileTkk>(static_cast<CFileTkk*>(IFileTkk::CreateMe(readOnly, dev)));
  }
  // A track saved once and opened again with the given flags.
  std::unique_ptr<CFileTkk> Reopened(bool soloLettura, bool senzaLogo) {
    const std::string name = "0k3f9zq1";
    fixtures::MakeSmallTrack()->SalvaFileInPath(dir_.path(), &name);
    return std::unique_ptr<CFileTkk>(static_cast<CFileTkk*>(
        IFileTkk::CreateMeUponFile(dir_.path() + name + ".tkk", soloLettura, senzaLogo)));
  }

  fixtures::TempDir dir_;
};

TEST_F(BuildTest, ShapesAreThinnedBelow8000Points) {
  struct Case {
    size_t in, kept, stride;
  };
  const Case cases[] = {{7999, 7999, 1}, {8000, 4000, 2}, {15999, 8000, 2}, {16000, 5334, 3},
                        {24000, 6000, 4}, {1, 1, 1}};
  for (const Case& c : cases) {
    std::vector<_t_s_lla_i> points(c.in);
    for (size_t i = 0; i < c.in; ++i) points[i] = {static_cast<int32_t>(i), 0, 0};
    auto track = Empty();
    const uint16_t idx = track->AddTagDatiPuntiTracciato(points);
    ASSERT_EQ(idx, 0u);
    _STagIndexesVarianteTKK indici;
    indici.IdxPunti = idx;
    ASSERT_TRUE(track->AddTagInfoVariante("", "", _STagInfoVarianteTKK_fw(), indici));
    const auto& kept = track->GetTagInfo()->Punti->Punti;
    ASSERT_EQ(kept.size(), c.kept) << c.in;
    for (size_t k = 0; k < kept.size(); ++k) ASSERT_EQ(kept[k].LatI, static_cast<int32_t>(k * c.stride));
  }
}

TEST_F(BuildTest, AddOperationsReturnIndexes) {
  auto track = Empty();
  EXPECT_EQ(track->AddDatiFondoStradale({}), 0xFFFF);
  EXPECT_EQ(track->AddTagDatiPuntiTracciato({}), 0xFFFF);
  EXPECT_EQ(track->AddTagDatiLogo({}, "a.png"), 0xFFFF);
  EXPECT_EQ(track->AddDatiFondoStradale({FONDO_ICE}), 0);
  EXPECT_EQ(track->AddDatiFondoStradale({FONDO_DIRT, FONDO_WATER}), 1);
  EXPECT_EQ(track->AddTagDatiPuntiTracciato({{1, 2, 3}}), 0);
  EXPECT_EQ(track->AddTagDatiLogo({1, 2}, "a.png"), 0);
  EXPECT_EQ(track->AddTagDatiPlus(STagDatiPlus()), 0);
  EXPECT_EQ(track->AddTagDatiPlus(STagDatiPlus()), 1);
  EXPECT_TRUE(evtrec::Events().empty());
}

TEST_F(BuildTest, VariantIndexesMustNameSomething) {
  auto track = Empty();
  track->AddTagDatiPuntiTracciato({{1, 2, 3}});
  uint16_t _STagIndexesVarianteTKK::*const fields[] = {
      &_STagIndexesVarianteTKK::IdxFondiStradali, &_STagIndexesVarianteTKK::IdxPunti,
      &_STagIndexesVarianteTKK::IdxLogo, &_STagIndexesVarianteTKK::IdxDatiPlus};
  for (auto field : fields) {
    _STagIndexesVarianteTKK indici;
    indici.*field = 1;
    EXPECT_FALSE(track->AddTagInfoVariante("", "", _STagInfoVarianteTKK_fw(), indici));
  }
  EXPECT_TRUE(track->GetTagsInfoVarianti().empty());
  EXPECT_TRUE(evtrec::Events().empty());
}

TEST_F(BuildTest, NewVariantsGetBeaconTypeAndGuid) {
  struct Case {
    bool readOnly, dev;
    uint8_t beaconExpected;
  };
  const Case cases[] = {{false, false, BEACON_USER}, {true, false, BEACON_OPTIC}, {false, true, BEACON_USER}};
  for (const Case& c : cases) {
    auto track = Empty(c.readOnly, c.dev);
    _STagInfoVarianteTKK_fw fw;
    fw.InfoBeacons.TipoBeaconInUso = BEACON_OPTIC;
    ASSERT_TRUE(track->AddTagInfoVariante("GP", "Monza", fw, _STagIndexesVarianteTKK()));
    const _STagInfoVarianteTKK_fw& stored = track->GetTagInfo()->InfoFw;
    EXPECT_EQ(stored.InfoBeacons.TipoBeaconInUso, c.beaconExpected);
    ASSERT_NE(uint64_t{stored.Guid.Valore}, 0u);
    tm when;
    bool isVek = false, isDev = false;
    IGuidTkk::GetDaGuidTkk(stored.Guid, when, isVek, isDev);
    EXPECT_EQ(isVek, c.readOnly);
    EXPECT_EQ(isDev, c.dev);

    // A GUID that comes with the record is kept.
    fw.Guid.Valore = 0x1234;
    ASSERT_TRUE(track->AddTagInfoVariante("", "", fw, _STagIndexesVarianteTKK()));
    EXPECT_EQ(uint64_t{track->GetTagInfoVariante(1)->InfoFw.Guid.Valore}, 0x1234u);
    EXPECT_EQ(track->GetGuidVariante(1).Valore, 0x1234u);
    EXPECT_EQ(track->GetGuidVariante(2).Valore, 0u);
  }
}

TEST_F(BuildTest, NamesAreCutToTheirFields) {
  auto track = Empty();
  const std::string device(40, 'd');
  const std::string pista(300, 'p');
  _STagInfoVarianteTKK_fw fw;
  memcpy(fw.NationCode, "ITA\0", 4);
  ASSERT_TRUE(track->AddTagInfoVariante(pista, device, fw, _STagIndexesVarianteTKK()));
  const STagsInfoVariante* v = track->GetTagInfo();
  EXPECT_EQ(std::string(v->InfoFw.NomeXDevice, 28), device.substr(0, 28));
  EXPECT_EQ(std::string(v->InfoSw.NomePista, 256), pista.substr(0, 256));
  EXPECT_STREQ(v->InfoFw.NationCode, "ITA");  // the field after the name is intact

  ASSERT_TRUE(track->AddTagInfoVariante("GP", "", fw, _STagIndexesVarianteTKK()));
  const STagsInfoVariante* w = track->GetTagInfoVariante(1);
  EXPECT_EQ(std::string(w->InfoSw.NomePista, 4), std::string("GP\0\0", 4));
  EXPECT_EQ(std::string(w->InfoFw.NomeXDevice, 28), std::string(28, '\0'));
}

TEST_F(BuildTest, ObjectsOpenedReadOnlyRefuseChanges) {
  for (const bool senzaLogo : {false, true}) {
    SCOPED_TRACE(senzaLogo ? "without logos" : "read only");
    auto track = Reopened(!senzaLogo, senzaLogo);
    ASSERT_TRUE(track->IsGood());
    evtrec::Reset(true);
    // The lists of the read file hold one entry each: a refused Add answers
    // the index of the last one, except logos and variants.
    EXPECT_EQ(track->AddDatiFondoStradale({FONDO_ICE}), 0);
    EXPECT_EQ(track->AddTagDatiPuntiTracciato({{1, 1, 1}}), 0);
    EXPECT_EQ(track->AddTagDatiPlus(STagDatiPlus()), 0xFFFF);
    EXPECT_EQ(track->AddTagDatiLogo({1, 2, 3}, "a.png"), 0xFFFF);
    EXPECT_FALSE(track->AddTagInfoVariante("", "", _STagInfoVarianteTKK_fw(), _STagIndexesVarianteTKK()));
    const std::string name = "abcdefgh";
    EXPECT_EQ(track->SalvaFileInPath(dir_.path(), &name), "");
    EXPECT_EQ(track->SalvaFileInPath(dir_.path(), nullptr), "");
    EXPECT_EQ(track->SalvaFileInPathLogoEsterno(dir_.path(), name), "");
    ASSERT_EQ(evtrec::Events().size(), 8u);
    for (const auto& e : evtrec::Events()) {
      EXPECT_EQ(e.severity, "ALERT");
      EXPECT_EQ(e.priority, 1);
      EXPECT_EQ(e.Message(), "Excluded, hence skipping!");
    }
    EXPECT_EQ(track->GetTagsInfoVarianti().size(), 1u);
    EXPECT_EQ(dir_.Entries(), std::vector<std::string>{"0k3f9zq1.tkk"});
  }
}

TEST_F(BuildTest, SettingALogoLoadsTheImage) {
  const fixtures::Bytes image = {9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 1};
  fixtures::WriteAll(dir_.path() + "badge.png", image);

  auto track = fixtures::MakeSmallTrack();
  track->AddTagDatiLogo({1}, "other.png");  // the new logo will be the second
  track->SetTrackLogo(dir_.path() + "badge.png");
  const STagsInfoVariante* main = track->GetTagInfo();
  ASSERT_NE(main->Logo, nullptr);
  EXPECT_EQ(main->Logo->Dati, image);
  EXPECT_EQ(main->Logo->NomeFile, "badge.png");
  EXPECT_EQ(main->Indici.IdxLogo, 0);  // written as 0 whatever the position
  EXPECT_EQ(main->Indici.IdxDatiPlus, 0);

  track->SetTrackLogo(dir_.path() + "missing.png");
  EXPECT_EQ(main->Logo, track->GetTrackLogoBuffer());
  EXPECT_TRUE(main->Logo->Dati.empty());
  EXPECT_TRUE(main->Logo->NomeFile.empty());
  EXPECT_EQ(main->Indici.IdxLogo, 0xFFFF);
  EXPECT_EQ(main->Indici.IdxDatiPlus, 0xFFFF);

  auto noVariant = Empty();
  noVariant->SetTrackLogo(dir_.path() + "badge.png");
  EXPECT_EQ(noVariant->GetTrackLogoBuffer(), nullptr);
}

TEST_F(BuildTest, WithoutLogosNoImageIsLoaded) {
  fixtures::WriteAll(dir_.path() + "badge.png", {1, 2, 3});
  auto track = Reopened(false, true);
  evtrec::Reset(true);
  std::vector<unsigned char> buffer = {42};
  EXPECT_EQ(track->SaveTrackFileLogoBuffer(buffer, dir_.path() + "badge.png"), 0u);
  EXPECT_EQ(buffer, std::vector<unsigned char>{42});
  ASSERT_EQ(evtrec::Events().size(), 1u);
  EXPECT_EQ(evtrec::Events()[0].severity, "NOTICE");
  EXPECT_EQ(evtrec::Events()[0].priority, 5);
  EXPECT_EQ(evtrec::Events()[0].Message(), "Forced no logo hence read only");

  track->SetTrackLogo(dir_.path() + "badge.png");  // returns before loading
  EXPECT_EQ(evtrec::Events().size(), 1u);
  EXPECT_EQ(track->GetTrackLogoBuffer(), nullptr);

  auto open = Empty();
  EXPECT_EQ(open->SaveTrackFileLogoBuffer(buffer, dir_.path() + "badge.png"), 3u);
  EXPECT_EQ(buffer, (std::vector<unsigned char>{1, 2, 3}));
}

TEST_F(BuildTest, MainVariantLinksToTheFirstShape) {
  auto track = fixtures::MakeSmallTrack();
  track->AddTagDatiPuntiTracciato({{7, 7, 7}});
  STagsInfoVariante* main = track->GetTagInfo();
  main->Indici.IdxPunti = 1;
  main->Punti = nullptr;
  track->AssegnaPtrPunti();
  EXPECT_EQ(main->Indici.IdxPunti, 0);
  EXPECT_EQ(main->Indici.IdxFondiStradali, 0xFFFF);
  EXPECT_EQ(main->Indici.IdxLogo, 0xFFFF);
  EXPECT_EQ(main->Punti->Punti.size(), 3u);
  EXPECT_NE(main->FondiStradali, nullptr);  // other links stay as they were
  Empty()->AssegnaPtrPunti();                // nothing to link: no effect
}

}  // namespace
